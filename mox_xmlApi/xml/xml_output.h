// The text that a save produces, in wide units or in narrow bytes.
//
// It grows in chunks that are never moved, so that every unit is written once and no memory beyond the text's size is
// touched. A narrow text keeps the low byte of each unit.
#ifndef MOX_XMLAPI_XML_XML_OUTPUT_H
#define MOX_XMLAPI_XML_XML_OUTPUT_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "mox_xmlApi/platform/copy_units.h"
#include "mox_xmlApi/platform/large_pages.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

template <class Unit>
class BasicXmlOutput {
  public:
    // The largest count that Reserve takes.
    static constexpr std::size_t kMaxReserve = 2048;

    // Makes room for `count` contiguous units and returns where they begin. The caller writes some of them and passes
    // the address after the last one to Commit. Throws std::bad_alloc; what was written before stays.
    Unit* Reserve(std::size_t count) {
        if (count > static_cast<std::size_t>(end_ - next_)) AddChunk();
        return next_;
    }
    void Commit(Unit* next) noexcept { next_ = next; }

    // Each throws as Reserve does.
    void Append(wchar16 unit) {
        *Reserve(1) = Narrow(unit);
        ++next_;
    }
    void Append(WideView text) {
        for (; text.size() > kMaxReserve; text.remove_prefix(kMaxReserve))
            AppendPiece(text.substr(0, kMaxReserve));
        AppendPiece(text);
    }
    void Append(std::size_t count, wchar16 unit) {
        for (; count > kMaxReserve; count -= kMaxReserve)
            AppendRun(kMaxReserve, unit);
        AppendRun(count, unit);
    }

    // Calls `visit(units, count)` for each chunk of what was written, in order, until one call returns false. Returns
    // whether all returned true.
    template <class Visit>
    bool ForEachChunk(Visit visit) const {
        for (const Chunk& chunk : chunks_) {
            const bool isLast = &chunk == &chunks_.back();
            const Unit* end = isLast ? next_ : chunk.end;
            if (!visit(chunk.units.get(), static_cast<std::size_t>(end - chunk.units.get()))) return false;
        }
        return true;
    }

    // Everything that was written, as one string.
    std::basic_string<Unit> Text() const {
        std::basic_string<Unit> text;
        ForEachChunk([&](const Unit* units, std::size_t count) {
            text.append(units, count);
            return true;
        });
        return text;
    }

    static constexpr Unit Narrow(wchar16 unit) noexcept { return static_cast<Unit>(unit); }

  private:
    static constexpr std::size_t kFirstChunk = 8 * 1024;
    static constexpr std::size_t kLargestChunk = 8 * 1024 * 1024;
    static_assert(kMaxReserve <= kFirstChunk);

    struct Chunk {
        std::unique_ptr<Unit[]> units;
        Unit* end;  // of what was written; not kept for the last chunk
    };

    void AppendPiece(WideView text) { next_ = CopyUnits(Reserve(text.size()), text); }

    void AppendRun(std::size_t count, wchar16 unit) {
        Unit* to = Reserve(count);
        next_ = std::fill_n(to, count, Narrow(unit));
    }

    void AddChunk() {
        std::unique_ptr<Unit[]> units(new Unit[nextSize_]);
        PreferLargePages(units.get(), nextSize_ * sizeof(Unit));
        chunks_.reserve(chunks_.size() + 1);
        if (!chunks_.empty()) chunks_.back().end = next_;
        chunks_.push_back({std::move(units), nullptr});
        next_ = chunks_.back().units.get();
        end_ = next_ + nextSize_;
        nextSize_ = std::min(nextSize_ * 2, kLargestChunk);
    }

    std::vector<Chunk> chunks_;
    Unit* next_ = nullptr;
    Unit* end_ = nullptr;
    std::size_t nextSize_ = kFirstChunk;
};

using XmlOutput = BasicXmlOutput<wchar16>;
using NarrowXmlOutput = BasicXmlOutput<char>;

}  // namespace mox

#endif
