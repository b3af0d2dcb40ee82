// How the C++ front changes single parts of an entry: its name, its "eud", and fields of its presentation data, which
// can also be cleared.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
// front/entry_renaming.hpp has a table of what xmlTableEntrySet writes, on which all of this depends.
#ifndef MOX_XMLAPI_FRONT_ENTRY_FIELDS_HPP
#define MOX_XMLAPI_FRONT_ENTRY_FIELDS_HPP

#include <cstdint>
#include <optional>
#include <string>

#include "mox_xmlApi/front/entry.hpp"
#include "mox_xmlApi/front/entry_reading.hpp"
#include "mox_xmlApi/front/entry_rebuilding.hpp"
#include "mox_xmlApi/front/entry_renaming.hpp"
#include "mox_xmlApi/front/entry_writing.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox::front {

// ---- "eud"

// Sets or removes the "eud" of the first entry of that name, which may have no known type.
inline bool SetEud(void* handle, const Target& target, const Text& name, bool isSet) {
    if (!RequireLookUpName(target, name)) return false;
    TableEntryValueInfoStruct value;
    FillNameRecord(name.units(), 0, kMaskName, value);
    if (!xmlTableEntryIsExist(handle, &value)) return ExplainMissing(handle, target, name);
    if (!target.RequireUntroubled(Troubled::kValue | Troubled::kOther)) return false;
    // What is written here besides "eud" is what there is.
    Entry16 entry;
    TableEntryUInfoStruct ui;
    SetRecordName(name.units(), ui);
    const bool isReadable = ReadByName(handle, name, entry);
    const bool hasUiValue = isReadable && HasUiValue(entry);
    const bool usesValue = hasUiValue && HasText(entry.value);
    if (hasUiValue && !usesValue && !FillSameUi(name.units(), entry, *entry.ui, ui))
        return RefuseRecord(target);
    const bool isWritten = xmlTableEntrySet(handle, nullptr, usesValue ? &value : nullptr,
                                            usesValue ? nullptr : &ui, 1, isSet ? 1 : 0);
    return isWritten ? target.Succeed()
                     : target.Refuse(Reason::NotStored, "the library refused to change eud");
}

// ---- the name

// Gives the first entry of that name another one, in its place.
inline bool RenameEntry(void* handle, const Target& target, const Text& name, const Text& newName) {
    if (!RequireLookUpName(target, name) || !RequireLookUpName(target, newName)) return false;
    Entry16 entry;
    if (!ReadByName(handle, name, entry)) return ExplainMissing(handle, target, name);
    if (newName.units() == name.units()) return target.Succeed();
    TableEntryBaseInfoStruct key;
    SetLookUpName(newName, key);
    if (xmlTableEntryIsExist(handle, &key))
        return target.Refuse(Reason::NameTaken, "there is an entry of the new name");
    if (!target.RequireKept(newName.units(), TextPlace::Attribute, "the new name") ||
        !target.RequireUntroubled(Troubled::kValue | Troubled::kOther) || !RequirePosition(target))
        return false;

    const std::optional<std::uint64_t> before = FindPositionBefore(handle, name.units());
    if (!before.has_value()) return RefuseWritten(target);
    if (!HasText(entry.value) && KeepsValuesInUi(handle)) {
        if (!entry.ui.has_value() || entry.ui->control == Control::None) return RefuseValuesInUi(target);
        if (!entry.ui->value.has_value()) return RefuseRecord(target);
    }
    if (WriteName(handle, *before, name, newName, entry)) return target.Succeed();
    return target.Refuse(Reason::NotStored, "the exports cannot write the new name");
}

// ---- presentation data

inline bool RefuseFields(const Target& target) {
    return target.Refuse(Reason::NotStored, "the exports cannot write the fields");
}

// Writes fields of presentation data; those that are empty or zero stay as they are.
inline bool AddUiFields(void* handle, const Target& target, const Entry16& old, const Presentation16& added) {
    EntryPlan plan;
    if (!plan.Decide(handle, target, Entry16{old.name, std::nullopt, old.type, old.shape, 0, added}, &old))
        return false;
    plan.value.writeMask = kMaskName;
    return plan.Execute(handle, 0, Eud::DoNotSet) || RefuseFields(target);
}

// The value of presentation data that had none. Its destructor removes it again, unless that is done, by writing the
// presentation data as they were. If there is no memory for that, it stays.
class TemporaryUiValue {
  public:
    // `record` has the presentation data of the entry that comes after the position. It outlives this object.
    TemporaryUiValue(void* handle, std::uint64_t before, TableEntryUInfoStruct& record) noexcept
        : handle_(handle), before_(before), record_(record) {}
    TemporaryUiValue(const TemporaryUiValue&) = delete;
    TemporaryUiValue& operator=(const TemporaryUiValue&) = delete;
    ~TemporaryUiValue() {
        if (isRemoved_) return;
        try {
            xmlTableEntrySet(handle_, &before_, nullptr, &record_, 1, 0);
        } catch (...) {  // NOLINT(bugprone-empty-catch): nothing is left to try
        }
    }
    void IsRemoved() noexcept { isRemoved_ = true; }

  private:
    void* handle_;
    std::uint64_t before_;
    TableEntryUInfoStruct& record_;
    bool isRemoved_ = false;
};

// Clears displayed name and provider where the presentation data have a value, or the entry has none at all: the export
// then writes them as a whole, except for the comment. Of an entry with a value of its own alone, they get one for a
// moment, which takes a comment. Returns nullopt if it is none of these cases.
inline std::optional<bool> ClearUiFieldsInPlace(void* handle, const Text& name, const Entry16& old,
                                                const Presentation16& ui) {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct record;
    FillNameRecord(name.units(), TypeCodeOf(old), kMaskName, value);
    if (!FillSameUi(name.units(), old, ui, record)) return std::nullopt;
    const std::optional<std::uint64_t> found = FindPositionBefore(handle, name.units());
    if (!found.has_value()) return false;
    std::uint64_t before = *found;
    if (HasUiValue(old)) return xmlTableEntrySet(handle, &before, nullptr, &record, 1, 0);
    if (!HasText(old.value)) return xmlTableEntrySet(handle, &before, &value, &record, 1, 0);
    if (old.ui->comment.empty()) return std::nullopt;
    TableEntryUInfoStruct temporary;
    TableEntryUInfoStruct same;
    TableEntryValueInfoStruct text = value;
    if (!FillSameUi(name.units(), old, *old.ui, temporary) || !FillSameUi(name.units(), old, *old.ui, same) ||
        !SetRecordValue(Text("0"), text.type, text) || !SetRecordValue(Text("0"), text.type, temporary))
        return false;
    TemporaryUiValue added(handle, before, same);
    if (!xmlTableEntryAdd(handle, nullptr, &text, &temporary, 0, 1) ||
        !xmlTableEntrySet(handle, &before, nullptr, &record, 1, 0))
        return false;
    added.IsRemoved();
    return true;
}

// Gives the presentation data of the first entry of that name the fields that `change` sets, empty ones too.
template <class Change>
bool ChangeUi(void* handle, const Target& target, const Text& name, Change change) {
    if (!RequireLookUpName(target, name)) return false;
    Entry16 old;
    if (!ReadByName(handle, name, old)) return ExplainMissing(handle, target, name);
    if (!target.RequireUntroubled(Troubled::kValue | Troubled::kOther)) return false;
    Presentation16 before;
    before.value = std::u16string();
    if (old.ui.has_value()) before = *old.ui;
    Presentation16 ui = before;
    change(ui);

    // What of it is new, and whether something is cleared.
    Presentation16 added;
    added.control = ui.control;
    if (ui.comment != before.comment) added.comment = ui.comment;
    if (ui.shownName != before.shownName) added.shownName = ui.shownName;
    if (ui.providerIndex != before.providerIndex) added.providerIndex = ui.providerIndex;
    if (ui.providerOwner != before.providerOwner) added.providerOwner = ui.providerOwner;
    const bool adds = !added.comment.empty() || !added.shownName.empty() || added.providerIndex != 0 ||
                      added.providerOwner != Owner::None;
    const bool clearsComment = ui.comment.empty() && !before.comment.empty();
    const bool clearsOther = (ui.shownName.empty() && !before.shownName.empty()) ||
                             (ui.providerIndex == 0 && before.providerIndex != 0) ||
                             (ui.providerOwner == Owner::None && before.providerOwner != Owner::None);
    if (!RequirePresentation(target, added, old.type)) return false;

    if (!clearsComment && !clearsOther)
        return (!adds || AddUiFields(handle, target, old, added)) && target.Succeed();
    if (!RequirePosition(target)) return false;
    if (!clearsComment) {
        const std::optional<bool> isWritten = ClearUiFieldsInPlace(handle, name, old, ui);
        if (isWritten.has_value()) return *isWritten ? target.Succeed() : RefuseFields(target);
    }
    Entry16 wanted = old;
    wanted.ui = ui;
    return RebuildEntry(handle, target, name, wanted);
}

}  // namespace mox::front

#endif
