// How the C++ front writes entries. A write succeeds only if the table then holds what was asked for. What the exports
// store of a record depends on what the entry, and the first entry of the table, already hold: docs/file-format.md has
// the rules under "Changing entries".
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

// Whether a write sets eud="true" on the entry, which then is left alone by setValueUnlessEud and by xmlTableEntrySet
// without force, and on its table if that has no "eud" yet. What a write with DoNotSet does to an "eud" that the entry
// has is said at each function.
enum class Eud : std::int32_t { DoNotSet = 0, Set = 1 };

namespace front {

// Whether a value that was read has text. One that a record cannot hold (nullopt) does.
template <class String>
bool HasText(const std::optional<String>& value) noexcept {
    return !value.has_value() || !value->empty();
}

// Whether the table keeps its values in the presentation data, which is when its first entry has a value there and none
// of its own. The exports then write the value of every entry without one of its own to its presentation data.
inline bool KeepsValuesInUi(void* handle) {
    std::uint64_t position = 0;
    Entry16 first;
    return ReadNext(handle, position, first) == Step::Entry && !HasText(first.value) &&
           first.ui.has_value() && HasText(first.ui->value);
}

// Whether the table holds the values that `entry` has. The value of an entry that has none of its own may be in its
// presentation data.
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

// Writes the value record to the first entry of its name, which has a value of its own, and keeps its "eud". The export
// removes "eud" from an entry that it finds by name, so the entry is found by position. Returns false for a name of 259
// units, because an entry with a longer name is read with that name, too.
inline bool SetValueKeepingEud(void* handle, TableEntryValueInfoStruct& value, Eud eud) {
    const UnitsView name = NameOf(value);
    if (name.size() + 1 == std::size(value.name)) return false;
    std::uint64_t before = 0;
    std::uint64_t position = 0;
    Entry16 entry;
    for (Step step = Step::Unreadable; step != Step::End; before = position) {
        step = ReadNext(handle, position, entry);
        if (step == Step::Entry && Text(entry.name).units() == name)
            return xmlTableEntrySet(handle, &before, &value, nullptr, 1, static_cast<std::int32_t>(eud));
    }
    return false;
}

// Writes presentation data to the first entry of the records' name, or to a new one before the position. The records
// hold everything but the value of the presentation data. That becomes `newValue` or, if there is none, stays
// `oldValue`, which has to be passed because the export stores the value of a record that has no comment.
inline bool WritePresentation(void* handle, std::uint64_t* before, TableEntryValueInfoStruct& value,
                              TableEntryUInfoStruct& ui, const std::optional<Text>& newValue,
                              const Text& oldValue, Eud eud) {
    const auto flag = static_cast<std::int32_t>(eud);
    ui.type = value.type;
    TableEntryValueInfoStruct* const recordOfText = value.type == kWideType ? &ui : &value;
    if (!SetRecordValue(newValue.value_or(oldValue), value.type, *recordOfText)) return false;
    if (!xmlTableEntryAdd(handle, before, &value, &ui, flag, 1)) return false;
    // A record with a comment stores the comment alone, so the value takes a second call without it.
    const bool hasComment = !ViewOf(ui.GetComment_w()).empty();
    if (!newValue.has_value() || !hasComment) return true;
    return ui.SetComment_w(nullptr) && xmlTableEntryAdd(handle, before, &value, &ui, flag, 1);
}

// Writes `entry` to the first entry of its name, which is `old`, or to a new one before the position. Returns false for
// what cannot be stored; an entry that existed may then have been changed in part.
//
//   1. Decide which value the presentation data get.
//   2. Decide whether presentation data are written, and which value of theirs has to stay.
//   3. Write the entry and its value, by the value record alone.
//   4. Write the presentation data, by both records; with a comment and a value this takes two calls.
//
// (The attributes of <Var> are left out here.) In most tables an entry has its value in its own <Value>. Then
// put({"A", "2", ..., ui}), where ui has the control Number, the comment "mm" and the value "9", does this:
//
//   before           <Var><Value>1</Value></Var>
//   step 3           <Var><Value>2</Value></Var>
//   step 4, call 1   <Var><Value>2</Value><UI control="num"><Comment>mm</Comment></UI></Var>
//   step 4, call 2   <Var><Value>2</Value><UI control="num"><Comment>mm</Comment><Value>9</Value></UI></Var>
//
// In a table that keeps its values in the presentation data, the value of an entry that has none of its own goes there,
// and step 3 changes the control to "text". There put({"A", "2", ...}), without presentation data, does this:
//
//   before           <Var><UI control="num"><Value>1</Value></UI></Var>
//   step 3           <Var><UI control="text"><Value>2</Value></UI></Var>
//   step 4           <Var><UI control="num"><Value>2</Value></UI></Var>
template <class String>
bool WriteEntry(void* handle, std::uint64_t before, const BasicEntry<String>& entry, const Entry16* old,
                Eud eud) {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    if (!FillValueRecord(entry, value) || (entry.ui.has_value() && !FillUiRecord(*entry.ui, ui)))
        return false;
    const bool hasOwnValue = old != nullptr && HasText(old->value);
    const bool hasOldUi = old != nullptr && old->ui.has_value();
    const bool keepsValuesInUi = KeepsValuesInUi(handle);
    const bool valueGoesToUi = keepsValuesInUi && !hasOwnValue;

    // 1. Where the entry's value goes to the presentation data as well, both values have to be the same.
    std::optional<Text> newUiValue;
    if (entry.ui.has_value() && entry.ui->value.has_value()) newUiValue.emplace(*entry.ui->value);
    if (valueGoesToUi && entry.value.has_value()) {
        const Text text(*entry.value);
        if (!newUiValue.has_value()) newUiValue = text;
        if (!text.units().empty() && text.units() != newUiValue->units()) return false;
    }

    // 2. Presentation data are written if they are asked for, or to restore the control that step 3 changes. A value of
    // theirs that stays is written again, so it has to be one that a record can hold.
    const bool writesUi = entry.ui.has_value() || (valueGoesToUi && hasOldUi);
    if (!entry.ui.has_value() && writesUi) ui.control = static_cast<std::uint16_t>(old->ui->control);
    std::u16string oldUiValue;
    if (writesUi && hasOldUi && !newUiValue.has_value()) {
        if (!old->ui->value.has_value()) return false;
        oldUiValue = *old->ui->value;
        if (valueGoesToUi) newUiValue.emplace(oldUiValue);
    }

    // 3. xmlTableEntryAdd would move the value of an entry that has one of its own to the presentation data.
    if (keepsValuesInUi && hasOwnValue) {
        if (!SetValueKeepingEud(handle, value, eud)) return false;
    } else {
        if (valueGoesToUi && newUiValue.has_value() && !SetRecordValue(*newUiValue, value.type, value))
            return false;
        if (!xmlTableEntryAdd(handle, &before, &value, nullptr, static_cast<std::int32_t>(eud), 1))
            return false;
    }

    // 4.
    return !writesUi || WritePresentation(handle, &before, value, ui, newUiValue, oldUiValue, eud);
}

// Adds an entry before the position, 0 for the end. Returns false, with nothing added, if the name exists already or
// the entry cannot be stored.
template <class String>
bool AddEntry(void* handle, std::uint64_t before, const BasicEntry<String>& entry, Eud eud) {
    TableEntryBaseInfoStruct name;
    if (!SetLookUpName(entry.name, name)) return false;
    if (xmlTableEntryIsExist(handle, &name)) return false;
    if (WriteEntry(handle, before, entry, nullptr, eud) && HoldsValues(handle, entry)) return true;
    xmlTableRemoveEntry(handle, &name, -1, 1);
    return false;
}

// Changes the first entry of that name, or adds one at the end. Returns false for what cannot be stored.
template <class String>
bool PutEntry(void* handle, const BasicEntry<String>& entry, Eud eud) {
    TableEntryBaseInfoStruct name;
    if (!SetLookUpName(entry.name, name)) return false;
    if (!xmlTableEntryIsExist(handle, &name)) return AddEntry(handle, 0, entry, eud);
    Entry16 old;
    const bool isReadable = ReadByName(handle, entry.name, old);
    return WriteEntry(handle, 0, entry, isReadable ? &old : nullptr, eud) && HoldsValues(handle, entry);
}

// Sets the value of an entry without one of its own in its presentation data. The export removes everything else from
// them but the comment, so the rest is written again.
inline bool SetUiValue(void* handle, TableEntryValueInfoStruct& value, const Text& text, const Entry16& old,
                       Eud eud) {
    TableEntryUInfoStruct ui;
    if (old.ui.has_value()) {
        Presentation16 rest = *old.ui;
        rest.comment.clear();
        if (!FillUiRecord(rest, ui)) return false;
    }
    if (!xmlTableEntrySet(handle, nullptr, &value, nullptr, 1, static_cast<std::int32_t>(eud))) return false;
    return !old.ui.has_value() || WritePresentation(handle, nullptr, value, ui, std::nullopt, text, eud);
}

// Sets the value of the first entry of that name. Without `force`, an entry with eud="true" or without a value of its
// own is left alone. Returns whether the entry has the value now.
inline bool SetEntryValue(void* handle, const Text& name, const Text& text, bool force, Eud eud) {
    Entry16 old;
    if (!text.isValid() || !ReadByName(handle, name, old)) return false;
    TableEntryValueInfoStruct value;
    Entry16 wanted;
    wanted.name = old.name;
    wanted.value = StringOf<std::u16string>(text.units());
    wanted.type = old.type;
    wanted.shape = old.shape;
    if (!FillValueRecord(wanted, value)) return false;
    value.writeMask = kMaskValue;

    const auto flag = static_cast<std::int32_t>(eud);
    bool hasOwnValue = HasText(old.value);
    if (!hasOwnValue && !force) return false;
    if (!hasOwnValue && KeepsValuesInUi(handle))
        return SetUiValue(handle, value, text, old, eud) && HoldsValues(handle, wanted);
    if (!hasOwnValue) {
        if (!xmlTableEntryAdd(handle, nullptr, &value, nullptr, flag, 1)) return false;
        hasOwnValue = HasText(wanted.value);
    }
    // The export writes the value of an entry that has one of its own to the same place, and handles "eud".
    if (hasOwnValue && !xmlTableEntrySet(handle, nullptr, &value, nullptr, force ? 1 : 0, flag)) return false;
    return HoldsValues(handle, wanted);
}

}  // namespace front
}  // namespace mox

#endif
