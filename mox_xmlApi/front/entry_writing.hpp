// How the C++ front writes entries, so that what was asked for is what the table then holds, or the call fails. What
// the exports store of a record depends on what the entry, and the table's first entry, hold already; the rules are in
// docs/file-format.md, "Changing entries".
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_ENTRY_WRITING_HPP
#define MOX_XMLAPI_FRONT_ENTRY_WRITING_HPP

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>

#include "mox_xmlApi/front/entry_reading.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox {

// Whether a write sets the mark "eud" on the entry, which protects it from setValueUnlessMarked, and on its table.
enum class Mark : std::int32_t { No = 0, Set = 1 };

namespace front {

// A text that is known to be something, even when a record cannot hold it.
template <class String>
bool IsFilled(const std::optional<String>& value) noexcept {
    return !value.has_value() || !value->empty();
}

// Sees to it that values can be written to a table whose first entry has a value in its presentation data alone: there
// the exports hand every new value over to presentation data, which do not take it. While this lives, such a table
// begins with an empty entry.
class PlainFirstEntry {
  public:
    explicit PlainFirstEntry(void* handle) : handle_(handle) {
        std::uint64_t position = 0;
        Entry16 first;
        if (ReadNext(handle, position, first) != Step::Entry || IsFilled(first.value) ||
            !first.ui.has_value() || !IsFilled(first.ui->value)) {
            return;
        }
        TableEntryValueInfoStruct empty;
        std::size_t length = 0;
        do {
            isGood_ = length + 1 < std::size(name_.name);
            if (!isGood_) return;
            name_.name[length++] = '_';
        } while (xmlTableEntryIsExist(handle, &name_));
        PutName(NameIn(name_), empty);
        isThere_ = true;
        isGood_ = xmlTableEntryAdd(handle, &position, &empty, nullptr, 0, 0);
    }
    ~PlainFirstEntry() {
        if (isThere_) xmlTableRemoveEntry(handle_, &name_, 0, 0);
    }
    PlainFirstEntry(const PlainFirstEntry&) = delete;
    PlainFirstEntry& operator=(const PlainFirstEntry&) = delete;

    bool IsGood() const noexcept { return isGood_; }

  private:
    void* handle_;
    TableEntryBaseInfoStruct name_;
    bool isThere_ = false;
    bool isGood_ = true;
};

// Whether the table holds the values as asked for.
template <class String>
bool HoldsValues(void* handle, const BasicEntry<String>& entry) {
    BasicEntry<String> read;
    if (!ReadByName(handle, entry.name, read)) return false;
    if (entry.value.has_value() && read.value != entry.value) return false;
    if (!entry.ui.has_value() || !entry.ui->value.has_value()) return true;
    return read.ui.has_value() && read.ui->value == entry.ui->value;
}

// Writes presentation data to an entry; the records have all but their value. Without a comment the export stores the
// value with the rest, so it has to be told the present one when that is to stay.
inline bool WritePresentation(void* handle, std::uint64_t* before, TableEntryValueInfoStruct& value,
                              TableEntryUInfoStruct& ui, const std::optional<Text>& newText, const Text& text,
                              Mark mark) {
    const auto flag = static_cast<std::int32_t>(mark);
    ui.type = value.type;
    TableEntryValueInfoStruct* const textOf = value.type == kWideType ? &ui : &value;
    if (!PutValue(newText.value_or(text), value.type, *textOf)) return false;
    if (!xmlTableEntryAdd(handle, before, &value, &ui, flag, 1)) return false;
    const bool hasComment = !ViewOf(ui.GetComment_w()).empty();
    if (!newText.has_value() || !hasComment) return true;
    return ui.SetComment_w(nullptr) && xmlTableEntryAdd(handle, before, &value, &ui, flag, 1);
}

// Writes what the entry says, to the first entry of its name or to a new one before the position.
// `old` is the entry that there is already.
template <class String>
bool WriteEntry(void* handle, std::uint64_t before, const BasicEntry<String>& entry, const Entry16* old,
                Mark mark) {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    if (!PutEntry(entry, value) || (entry.ui.has_value() && !PutPresentation(*entry.ui, ui))) return false;

    const PlainFirstEntry plain(handle);
    if (!plain.IsGood() ||
        !xmlTableEntryAdd(handle, &before, &value, nullptr, static_cast<std::int32_t>(mark), 1)) {
        return false;
    }
    if (!entry.ui.has_value()) return true;

    std::optional<Text> newText;
    if (entry.ui->value.has_value()) newText.emplace(*entry.ui->value);
    std::u16string oldText;
    if (old != nullptr && old->ui.has_value()) {
        if (!old->ui->value.has_value() && !newText.has_value()) return false;
        oldText = old->ui->value.value_or(std::u16string());
    }
    return WritePresentation(handle, &before, value, ui, newText, oldText, mark);
}

// The entry goes before the position, 0 for the end.
template <class String>
bool AddEntry(void* handle, std::uint64_t before, const BasicEntry<String>& entry, Mark mark) {
    TableEntryBaseInfoStruct key;
    if (!PutKey(entry.name, key)) return false;
    if (xmlTableEntryIsExist(handle, &key)) return false;
    if (WriteEntry(handle, before, entry, nullptr, mark) && HoldsValues(handle, entry)) return true;
    xmlTableRemoveEntry(handle, &key, -1, 1);
    return false;
}

template <class String>
bool PutEntryInto(void* handle, const BasicEntry<String>& entry, Mark mark) {
    TableEntryBaseInfoStruct key;
    if (!PutKey(entry.name, key)) return false;
    if (!xmlTableEntryIsExist(handle, &key)) return AddEntry(handle, 0, entry, mark);
    Entry16 old;
    const bool hasOld = ReadByName(handle, entry.name, old);
    return WriteEntry(handle, 0, entry, hasOld ? &old : nullptr, mark) && HoldsValues(handle, entry);
}

inline bool SetEntryValue(void* handle, const Text& name, const Text& text, bool force, Mark mark) {
    Entry16 old;
    if (!text.isValid() || !ReadByName(handle, name, old)) return false;
    TableEntryValueInfoStruct value;
    Entry16 wanted;
    wanted.name = old.name;
    wanted.value = StringOf<std::u16string>(text.units());
    wanted.type = old.type;
    wanted.shape = old.shape;
    if (!PutEntry(wanted, value)) return false;
    value.writeMask = kMaskValue;

    const auto flag = static_cast<std::int32_t>(mark);
    bool isFilled = IsFilled(old.value);
    if (!isFilled) {
        if (!force) return false;
        const PlainFirstEntry plain(handle);
        if (!plain.IsGood() || !xmlTableEntryAdd(handle, nullptr, &value, nullptr, flag, 1)) return false;
        isFilled = !wanted.value->empty();
    }
    // An entry with a value of its own keeps it in the same place; the export sees to marks.
    if (isFilled && !xmlTableEntrySet(handle, nullptr, &value, nullptr, force ? 1 : 0, flag)) return false;
    return HoldsValues(handle, wanted);
}

}  // namespace front
}  // namespace mox

#endif
