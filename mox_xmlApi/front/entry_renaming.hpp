// How the C++ front renames an entry in its place.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
// xmlTableEntrySet can do it, but which of its two records it writes depends on the values that the entry has:
//
//   Own value   UI value   Value record alone   Presentation record alone   Both records
//   yes         none       writes it            writes nothing              writes the value record
//   yes         yes        writes it            writes it                   writes both, except for the own value
//   none        yes        moves the value      writes it                   writes the presentation record
//   none        none       moves the value      writes nothing              writes both
//
// "Moves the value" means that the value record, with its name, is written, and its value goes to the presentation data;
// a value that is not set stays where it is. "Writes nothing" still sets or removes "eud".
#ifndef MOX_XMLAPI_FRONT_ENTRY_RENAMING_HPP
#define MOX_XMLAPI_FRONT_ENTRY_RENAMING_HPP

#include <cstdint>
#include <optional>
#include <string>

#include "mox_xmlApi/front/entry.hpp"
#include "mox_xmlApi/front/entry_reading.hpp"
#include "mox_xmlApi/front/entry_writing.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox::front {

// ---- records for the exports

// A record that names an entry and selects only the fields of the mask.
inline void FillNameRecord(UnitsView name, std::uint16_t type, std::uint16_t mask,
                           TableEntryValueInfoStruct& record) noexcept {
    SetRecordName(name, record);
    record.type = type;
    record.writeMask = mask;
}

// Presentation data that keep the comment that there is, and have the same value as before. Returns false if a record
// cannot hold them.
inline bool FillSameUi(UnitsView name, const Entry16& entry, const Presentation16& ui,
                       TableEntryUInfoStruct& record) {
    if (!ui.value.has_value()) return false;
    SetRecordName(name, record);
    record.type = TypeCodeOf(entry);
    Presentation16 rest = ui;
    rest.comment.clear();
    return FillUiRecord(rest, record) && SetRecordValue(Text(*ui.value), record.type, record);
}

inline bool RefuseRecord(const Target& target) {
    return target.Refuse(
        Reason::NotStored,
        "the value of the presentation data contains half of a surrogate pair, which a record of "
        "this type cannot hold");
}

inline bool RefuseValuesInUi(const Target& target) {
    return target.Refuse(
        Reason::NotStored,
        "the table keeps its values in the presentation data, and the exports would write them");
}

// Renames an entry that has a value of its own: the exports then write the name alone.
inline bool RenameByValue(void* handle, std::uint64_t before, const Text& newName, const Entry16& entry) {
    TableEntryValueInfoStruct record;
    FillNameRecord(newName.units(), TypeCodeOf(entry), kMaskName, record);
    return xmlTableEntrySet(handle, &before, &record, nullptr, 1, 0);
}

// Renames an entry without one: it gets the value that reads return anyway and, with the new name, loses it again, also
// if memory runs out. Nothing else can make the second write fail: the entry is there, and records of all types hold an
// empty value.
inline bool RenameByTemporaryValue(void* handle, std::uint64_t before, const Text& name, const Text& newName,
                                   const Entry16& entry) {
    TableEntryValueInfoStruct added;
    FillNameRecord(name.units(), TypeCodeOf(entry), kMaskValue, added);
    const bool hasUiValue = HasUiValue(entry) && entry.ui->value.has_value();
    const Text value = hasUiValue ? Text(*entry.ui->value) : Text("0");
    TableEntryValueInfoStruct renamed;
    FillNameRecord(newName.units(), TypeCodeOf(entry), kMaskName | kMaskValue, renamed);
    if (!SetRecordValue(value, added.type, added) || !SetRecordValue(Text(""), renamed.type, renamed) ||
        !xmlTableEntryAdd(handle, nullptr, &added, nullptr, 0, 1))
        return false;
    std::uint64_t position = before;  // the export moves the other one
    try {
        return xmlTableEntrySet(handle, &before, &renamed, nullptr, 1, 0);
    } catch (...) {
        renamed.writeMask = kMaskValue;
        xmlTableEntrySet(handle, &position, &renamed, nullptr, 1, 0);
        throw;
    }
}

// The same in a table that keeps its values in the presentation data. The export writes the name and the value there,
// and takes away the rest, which is written again.
inline bool RenameByUi(void* handle, std::uint64_t before, const Text& newName, const Entry16& entry,
                       TableEntryUInfoStruct& ui) {
    TableEntryValueInfoStruct record;
    FillNameRecord(newName.units(), TypeCodeOf(entry), kMaskName, record);
    const Text value(*entry.ui->value);
    if (value.units().empty()) return xmlTableEntrySet(handle, &before, &record, &ui, 1, 0);
    const auto restore = [&] {
        return WritePresentation(handle, nullptr, record, ui, std::nullopt, value, Eud::DoNotSet);
    };
    return SetRecordValue(value, record.type, record) &&
           xmlTableEntrySet(handle, &before, &record, nullptr, 1, 0) && restore();
}

// Gives the entry after the position, which was read as `entry`, another name, and changes nothing else. Returns false if
// the exports cannot do that.
inline bool WriteName(void* handle, std::uint64_t before, const Text& name, const Text& newName,
                      const Entry16& entry) {
    if (HasText(entry.value)) return RenameByValue(handle, before, newName, entry);
    if (!KeepsValuesInUi(handle)) return RenameByTemporaryValue(handle, before, name, newName, entry);
    TableEntryUInfoStruct ui;
    return entry.ui.has_value() && FillSameUi(newName.units(), entry, *entry.ui, ui) &&
           RenameByUi(handle, before, newName, entry, ui);
}

}  // namespace mox::front

#endif
