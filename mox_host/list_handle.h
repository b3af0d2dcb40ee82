// What is behind a mox_list: rows of numbers, with all their texts in one block.
#ifndef MOX_HOST_LIST_HANDLE_H
#define MOX_HOST_LIST_HANDLE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/document/diagnose.hpp"
#include "mox_xmlApi/front/entry.hpp"

namespace mox::host {

// A text of a TextBlock.
struct TextSlice {
    std::size_t at = 0;
    std::size_t size = 0;
};

// Texts, each with a zero byte after it.
class TextBlock {
  public:
    // Throws std::bad_alloc.
    TextSlice Add(std::string_view text) {
        const TextSlice slice{bytes_.size(), text.size()};
        bytes_.append(text);
        bytes_ += '\0';
        return slice;
    }
    const char* TextOf(TextSlice slice) const noexcept { return bytes_.data() + slice.at; }

    // Makes room for texts of that size together. Throws std::bad_alloc.
    void Reserve(std::size_t size) { bytes_.reserve(size); }

  private:
    std::string bytes_;
};

struct EntryRow {
    TextSlice name;
    TextSlice value;
    TextSlice shownName;
    TextSlice comment;
    TextSlice uiValue;
    bool hasValue;  // false: a record cannot hold it
    bool hasUi;
    bool hasUiValue;
    ValueType type;
    Shape shape;
    Control control;
    Owner owner;
    std::uint32_t providerIndex;
    std::uint32_t id;
};

struct DiagnosticRow {
    Severity severity;
    std::uint32_t encoding;  // MOX_ENCODING_...
    Position position;
    TextSlice message;
};

}  // namespace mox::host

struct mox_list {
    enum class Kind { Names, Entries, Diagnostics };

    explicit mox_list(Kind newKind) noexcept : kind(newKind) {}

    void AddName(std::string_view name) { names.push_back(texts.Add(name)); }
    void AddEntry(const mox::Entry& entry);
    // Makes room for the entries of most sections, so that the list seldom has to grow. Throws std::bad_alloc.
    void ReserveEntries() {
        constexpr std::size_t kEntries = 64;
        constexpr std::size_t kTextOfOne = 32;
        entries.reserve(kEntries);
        texts.Reserve(kEntries * kTextOfOne);
    }
    void AddDiagnostic(const mox::Diagnostic& diagnostic);

    Kind kind;
    mox::host::TextBlock texts;
    // One of these, the one of `kind`.
    std::vector<mox::host::TextSlice> names;
    std::vector<mox::host::EntryRow> entries;
    std::vector<mox::host::DiagnosticRow> diagnostics;
};

#endif
