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

// Whether the table keeps its values in the presentation data: its first entry has one there and none of its own. The
// exports then put the value of every entry that has none of its own there, too.
inline bool KeepsValuesInUi(void* handle) {
    std::uint64_t position = 0;
    Entry16 first;
    return ReadNext(handle, position, first) == Step::Entry && !IsFilled(first.value) &&
           first.ui.has_value() && IsFilled(first.ui->value);
}

// Whether the table holds the values as asked for. That of an entry may be in its presentation data when it has none of
// its own.
template <class String>
bool HoldsValues(void* handle, const BasicEntry<String>& entry) {
    BasicEntry<String> read;
    if (!ReadByName(handle, entry.name, read)) return false;
    if (entry.value.has_value() && read.value != entry.value) {
        const bool isInUi = read.value == String() && read.ui.has_value() && read.ui->value == entry.value;
        if (!isInUi) return false;
    }
    if (!entry.ui.has_value() || !entry.ui->value.has_value()) return true;
    return read.ui.has_value() && read.ui->value == entry.ui->value;
}

// Writes the value record to the first entry of its name, which has a value of its own, and leaves its mark. The export
// takes marks away when it finds the entry by name, so the entry is looked for from the start. Returns false for a name
// of 259 units: an entry with a longer one is read with that name, too.
inline bool SetKeepingMark(void* handle, TableEntryValueInfoStruct& value, Mark mark) {
    const UnitsView name = NameIn(value);
    if (name.size() + 1 == std::size(value.name)) return false;
    std::uint64_t before = 0;
    std::uint64_t position = 0;
    Entry16 entry;
    for (Step step = Step::Unreadable; step != Step::End; before = position) {
        step = ReadNext(handle, position, entry);
        if (step == Step::Entry && Text(entry.name).units() == name)
            return xmlTableEntrySet(handle, &before, &value, nullptr, 1, static_cast<std::int32_t>(mark));
    }
    return false;
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

// Writes what the entry says, to the first entry of its name, which is `old`, or to a new one before the position.
//
// As a rule the value record is written first, which gives the entry its own value, and then both records for the
// presentation data. In a table that keeps its values in the presentation data, an entry without a value of its own
// gets it there, and with it a control "text":
//   <UI control="num"><Value>1</Value></UI>    put({name, "2"}), after the value record:
//   <UI control="text"><Value>2</Value></UI>   after both records, with the control that was there:
//   <UI control="num"><Value>2</Value></UI>
template <class String>
bool WriteEntry(void* handle, std::uint64_t before, const BasicEntry<String>& entry, const Entry16* old,
                Mark mark) {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    if (!PutEntry(entry, value) || (entry.ui.has_value() && !PutPresentation(*entry.ui, ui))) return false;
    const bool hasOwnValue = old != nullptr && IsFilled(old->value);
    const bool hasOldUi = old != nullptr && old->ui.has_value();
    const bool keepsValuesInUi = KeepsValuesInUi(handle);
    const bool movesValue = keepsValuesInUi && !hasOwnValue;

    // 1. The value for the presentation data. When the entry's own one goes there, too, both have to be the same.
    std::optional<Text> uiText;
    if (entry.ui.has_value() && entry.ui->value.has_value()) uiText.emplace(*entry.ui->value);
    if (movesValue && entry.value.has_value()) {
        const Text text(*entry.value);
        if (!uiText.has_value()) uiText = text;
        if (!text.units().empty() && text.units() != uiText->units()) return false;
    }

    // 2. Whether presentation data are written: those asked for, or else what a value that goes there overwrites. A
    // value that stays is written along with them, so it has to be known.
    const bool writesUi = entry.ui.has_value() || (movesValue && hasOldUi);
    if (!entry.ui.has_value() && writesUi) ui.control = static_cast<std::uint16_t>(old->ui->control);
    std::u16string oldText;
    if (writesUi && hasOldUi && !uiText.has_value()) {
        if (!old->ui->value.has_value()) return false;
        oldText = *old->ui->value;
        if (movesValue) uiText.emplace(oldText);
    }

    // 3. The entry with its value.
    if (keepsValuesInUi && hasOwnValue) {
        if (!SetKeepingMark(handle, value, mark)) return false;
    } else {
        if (movesValue && uiText.has_value() && !PutValue(*uiText, value.type, value)) return false;
        if (!xmlTableEntryAdd(handle, &before, &value, nullptr, static_cast<std::int32_t>(mark), 1))
            return false;
    }

    // 4. The presentation data with their value.
    return !writesUi || WritePresentation(handle, &before, value, ui, uiText, oldText, mark);
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

// Gives an entry without a value of its own the value in its presentation data. The export takes all else out of them
// but the comment, so it is given back.
inline bool SetUiValue(void* handle, TableEntryValueInfoStruct& value, const Text& text, const Entry16& old,
                       Mark mark) {
    TableEntryUInfoStruct ui;
    if (old.ui.has_value()) {
        Presentation16 kept = *old.ui;
        kept.comment.clear();
        if (!PutPresentation(kept, ui)) return false;
    }
    if (!xmlTableEntrySet(handle, nullptr, &value, nullptr, 1, static_cast<std::int32_t>(mark))) return false;
    return !old.ui.has_value() || WritePresentation(handle, nullptr, value, ui, std::nullopt, text, mark);
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
    if (!isFilled && !force) return false;
    if (!isFilled && KeepsValuesInUi(handle))
        return SetUiValue(handle, value, text, old, mark) && HoldsValues(handle, wanted);
    if (!isFilled) {
        if (!xmlTableEntryAdd(handle, nullptr, &value, nullptr, flag, 1)) return false;
        isFilled = !wanted.value->empty();
    }
    // An entry with a value of its own keeps it in the same place; the export sees to marks.
    if (isFilled && !xmlTableEntrySet(handle, nullptr, &value, nullptr, force ? 1 : 0, flag)) return false;
    return HoldsValues(handle, wanted);
}

}  // namespace front
}  // namespace mox

#endif
