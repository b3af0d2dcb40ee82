// The text that a save builds up, in wide units or in narrow bytes.
//
// It grows by chunks that are never moved, so that a large text is written once and no more memory than it
// needs is touched. A narrow text keeps the low byte of each unit.
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
    // The most units that Room can be asked for.
    static constexpr std::size_t kMostRoom = 2048;

    // Makes room for `count` units in a row and returns where they begin; Advance says how many were written.
    // Throws std::bad_alloc; what was written stays then.
    Unit* Room(std::size_t count) {
        if (count > static_cast<std::size_t>(end_ - next_)) AddChunk();
        return next_;
    }
    void Advance(Unit* next) noexcept { next_ = next; }

    // Each throws as Room does.
    void Append(wchar16 unit) {
        *Room(1) = Narrow(unit);
        ++next_;
    }
    void Append(WideView text) {
        for (; text.size() > kMostRoom; text.remove_prefix(kMostRoom))
            AppendPiece(text.substr(0, kMostRoom));
        AppendPiece(text);
    }
    void Append(std::size_t count, wchar16 unit) {
        for (; count > kMostRoom; count -= kMostRoom)
            AppendRun(kMostRoom, unit);
        AppendRun(count, unit);
    }

    // Calls `take(units, count)` for each stretch of what was written, in order, as long as it returns true.
    // Returns whether it always did.
    template <class Take>
    bool ForEachChunk(Take take) const {
        for (const Chunk& chunk : chunks_) {
            const bool isLast = &chunk == &chunks_.back();
            const Unit* end = isLast ? next_ : chunk.end;
            if (!take(chunk.units.get(), static_cast<std::size_t>(end - chunk.units.get()))) return false;
        }
        return true;
    }

    // All that was written in one piece.
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
    static_assert(kMostRoom <= kFirstChunk);

    struct Chunk {
        std::unique_ptr<Unit[]> units;
        Unit* end;  // of what was written, for all chunks but the last
    };

    void AppendPiece(WideView text) { next_ = CopyUnits(Room(text.size()), text); }

    void AppendRun(std::size_t count, wchar16 unit) {
        Unit* to = Room(count);
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
