// How the C++ front writes entries. A write succeeds only if the table then holds what was asked for; whether it can is
// decided before anything is changed. What the exports store of a record depends on what the entry, and the first entry
// of the table, already hold: docs/file-format.md has the rules under "Changing entries".
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_ENTRY_WRITING_HPP
#define MOX_XMLAPI_FRONT_ENTRY_WRITING_HPP

#include <cstddef>
#include <cstdint>
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

template <class String>
bool HasUiValue(const BasicEntry<String>& entry) noexcept {
    return entry.ui.has_value() && HasText(entry.ui->value);
}

// Whether the table keeps its values in the presentation data, which is when its first entry has a value there and none
// of its own. The exports then write the value of every entry without one of its own to its presentation data.
inline bool KeepsValuesInUi(void* handle) {
    std::uint64_t position = 0;
    Entry16 first;
    return ReadNext(handle, position, first) == Step::Entry && !HasText(first.value) && HasUiValue(first);
}

// ---- what can be written

template <class String>
bool RequireTextKept(const Target& target, const String& text, TextPlace place, const char* what) {
    const Text converted(text);
    return target.RequireValid(converted, what) && target.RequireKept(converted.units(), place, what);
}

// Whether a record of that type can hold the value: only the type UcString has room for unpaired surrogates.
template <class String>
bool RequireRecordValue(const Target& target, const String& value, ValueType type, const char* what) {
    if (type == ValueType::UcString || !HasUnpairedSurrogate(Text(value).units())) return true;
    return target.problem != nullptr &&
           target.Refuse(
               Reason::NotStored,
               std::string(what) + " contains half of a surrogate pair, which takes the type UcString");
}

template <class String>
bool RequireValue(const Target& target, const std::optional<String>& value, ValueType type,
                  const char* what) {
    return !value.has_value() || (RequireTextKept(target, *value, TextPlace::Element, what) &&
                                  RequireRecordValue(target, *value, type, what));
}

template <class String>
bool RequirePresentation(const Target& target, const BasicPresentation<String>& ui, ValueType type) {
    if (!IsKnownControl(ui.control))
        return target.Refuse(Reason::NotStored, "the control has no name in files");
    if (!IsKnownOwner(ui.providerOwner))
        return target.Refuse(Reason::NotStored, "the provider's owner has no name in files");
    return RequireTextKept(target, ui.comment, TextPlace::Element, "the comment") &&
           RequireTextKept(target, ui.shownName, TextPlace::Attribute, "the displayed name") &&
           RequireValue(target, ui.value, type, "the value of the presentation data");
}

// Whether each field of the entry can be stored. Its name has been checked.
template <class String>
bool RequireFields(const Target& target, const BasicEntry<String>& entry) {
    if (!IsKnownType(entry.type, entry.shape))
        return target.Refuse(Reason::NotStored,
                             "the type has no name in files, so that nobody could read the entry");
    return RequireValue(target, entry.value, entry.type, "the value") &&
           (!entry.ui.has_value() || RequirePresentation(target, *entry.ui, entry.type));
}

// ---- writing an entry

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

// Finds the entry of a name of fewer than 259 units; an entry with a longer name is read with its first 259. Returns
// the position before it, or nullopt if there is none that can be read.
inline std::optional<std::uint64_t> FindPositionBefore(void* handle, UnitsView name) {
    std::uint64_t position = 0;
    Entry16 entry;
    for (;;) {
        const std::uint64_t before = position;
        const Step step = ReadNext(handle, position, entry);
        if (step == Step::End) return std::nullopt;
        if (step == Step::Entry && Text(entry.name).units() == name) return before;
    }
}

inline bool RequirePosition(const Target& target) {
    return target.name.size() < kMostNameUnits ||
           target.Refuse(Reason::NotStored,
                         "an entry whose name has 259 units cannot be told from longer ones here");
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

// What a write of an entry does:
//
//   1. Write the entry and its value, by the value record alone.
//   2. Write the presentation data, by both records; with a comment and a value this takes two calls.
//
// (The attributes of <Var> are left out here.) In most tables an entry has its value in its own <Value>. Then
// put({"A", "2", ..., ui}), where ui has the control Number, the comment "mm" and the value "9", does this:
//
//   before           <Var><Value>1</Value></Var>
//   step 1           <Var><Value>2</Value></Var>
//   step 2, call 1   <Var><Value>2</Value><UI control="num"><Comment>mm</Comment></UI></Var>
//   step 2, call 2   <Var><Value>2</Value><UI control="num"><Comment>mm</Comment><Value>9</Value></UI></Var>
//
// In a table that keeps its values in the presentation data, the value of an entry that has none of its own goes there,
// and step 1 changes the control to "text". There put({"A", "2", ...}), without presentation data, does this:
//
//   before           <Var><UI control="num"><Value>1</Value></UI></Var>
//   step 1           <Var><UI control="text"><Value>2</Value></UI></Var>
//   step 2           <Var><UI control="num"><Value>2</Value></UI></Var>
struct EntryPlan {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    bool isWrittenByPosition = false;  // step 1 would move the value of the entry to the presentation data
    bool writesUi = false;
    std::optional<Text> newUiValue{};  // that step 2 writes, or none
    std::u16string oldUiValue{};       // that it keeps otherwise

    // Decides how `entry` is written to the first entry of its name, which is `old`, or to a new one if that is null.
    // Returns false if it cannot be, which the target reports.
    template <class String>
    bool Decide(void* handle, const Target& target, const BasicEntry<String>& entry, const Entry16* old) {
        if (!FillValueRecord(entry, value) || (entry.ui.has_value() && !FillUiRecord(*entry.ui, ui)))
            return target.Refuse(Reason::NotStored, "a record cannot hold the entry");
        const bool hasOwnValue = old != nullptr && HasText(old->value);
        const bool hasOldUi = old != nullptr && old->ui.has_value();
        const bool keepsValuesInUi = KeepsValuesInUi(handle);
        const bool valueGoesToUi = keepsValuesInUi && !hasOwnValue;

        // Which value do the presentation data get? Where the entry's value goes there, both have to be the same.
        if (entry.ui.has_value() && entry.ui->value.has_value()) newUiValue.emplace(*entry.ui->value);
        if (valueGoesToUi && entry.value.has_value()) {
            const Text text(*entry.value);
            if (!newUiValue.has_value()) newUiValue = text;
            if (!text.units().empty() && text.units() != newUiValue->units())
                return target.Refuse(
                    Reason::NotStored,
                    "the table keeps its values in the presentation data, which cannot hold two");
        }
        if (newUiValue.has_value() && !valueGoesToUi && !CanStoreUiValue(entry, old))
            return target.Refuse(Reason::NotStored,
                                 "presentation data without a comment cannot be given a value");

        // Presentation data are written if they are asked for, or to restore the control that step 1 changes. A value of
        // theirs that stays is written again, so it has to be one that a record can hold.
        writesUi = entry.ui.has_value() || (valueGoesToUi && hasOldUi);
        if (!entry.ui.has_value() && writesUi) ui.control = static_cast<std::uint16_t>(old->ui->control);
        if (writesUi && hasOldUi && !newUiValue.has_value()) {
            if (!old->ui->value.has_value() ||
                !RequireRecordValue(Target{}, *old->ui->value, entry.type, "the value"))
                return target.Refuse(
                    Reason::NotStored,
                    "the value of the presentation data contains half of a surrogate pair, which a "
                    "record of this type cannot hold");
            oldUiValue = *old->ui->value;
            if (valueGoesToUi) newUiValue.emplace(oldUiValue);
        }

        isWrittenByPosition = keepsValuesInUi && hasOwnValue;
        if (isWrittenByPosition) return RequirePosition(target);
        return !valueGoesToUi || !newUiValue.has_value() || SetRecordValue(*newUiValue, value.type, value) ||
               target.Refuse(Reason::NotStored, "a record cannot hold the value");
    }

    // Carries it out. `before` is where a new entry goes. Returns false if an export fails, which none is known to do.
    bool Execute(void* handle, std::uint64_t before, Eud eud) {
        const auto flag = static_cast<std::int32_t>(eud);
        if (isWrittenByPosition) {
            // The export removes "eud" from an entry that it finds by name.
            std::optional<std::uint64_t> position = FindPositionBefore(handle, NameOf(value));
            if (!position.has_value()) return false;
            if (!xmlTableEntrySet(handle, &*position, &value, nullptr, 1, flag)) return false;
        } else if (!xmlTableEntryAdd(handle, &before, &value, nullptr, flag, 1)) {
            return false;
        }
        return !writesUi || WritePresentation(handle, &before, value, ui, newUiValue, oldUiValue, eud);
    }

  private:
    // The exports store a value of presentation data only beside a comment; an empty one need not be stored.
    template <class String>
    bool CanStoreUiValue(const BasicEntry<String>& entry, const Entry16* old) const {
        if (entry.ui.has_value() && !entry.ui->comment.empty()) return true;
        if (old != nullptr && old->ui.has_value() && !old->ui->comment.empty()) return true;
        return newUiValue->units().empty() && (old == nullptr || !HasUiValue(*old));
    }
};

// Removes the entries of a name that was new before, unless Keep is called. Needs no memory.
class NewEntry {
  public:
    NewEntry(void* handle, const TableEntryBaseInfoStruct& name) noexcept : handle_(handle), name_(name) {}
    NewEntry(const NewEntry&) = delete;
    NewEntry& operator=(const NewEntry&) = delete;
    ~NewEntry() {
        if (handle_ != nullptr) xmlTableRemoveEntry(handle_, &name_, -1, 1);
    }
    void Keep() noexcept { handle_ = nullptr; }

  private:
    void* handle_;
    TableEntryBaseInfoStruct name_;
};

// Reports that the table does not hold what was written. Nothing is known to cause this but a part that an entry has
// twice, and that was not found when the document was opened.
inline bool RefuseWritten(const Target& target) {
    return target.Refuse(Reason::Ambiguous, "the entry does not have the values that were written to it");
}

// Adds an entry before the position, 0 for the end. Adds nothing if that fails.
template <class String>
bool AddEntry(void* handle, const Target& target, std::uint64_t before, const BasicEntry<String>& entry,
              Eud eud) {
    const Text name(entry.name);
    if (!RequireLookUpName(target, name)) return false;
    TableEntryBaseInfoStruct record;
    SetLookUpName(name, record);
    if (xmlTableEntryIsExist(handle, &record))
        return target.Refuse(Reason::NameTaken, "there is an entry of that name");
    if (!target.RequireKept(name.units(), TextPlace::Attribute, "the name") || !RequireFields(target, entry))
        return false;
    EntryPlan plan;
    if (!plan.Decide(handle, target, entry, nullptr)) return false;
    NewEntry added(handle, record);
    if (!plan.Execute(handle, before, eud))
        return target.Refuse(Reason::NotStored, "the library refused the entry");
    if (!HoldsValues(handle, entry)) return RefuseWritten(target);
    added.Keep();
    return target.Succeed();
}

// Changes the first entry of that name, or adds one at the end.
template <class String>
bool PutEntry(void* handle, const Target& target, const BasicEntry<String>& entry, Eud eud) {
    const Text name(entry.name);
    if (!RequireLookUpName(target, name)) return false;
    TableEntryBaseInfoStruct record;
    SetLookUpName(name, record);
    if (!xmlTableEntryIsExist(handle, &record)) return AddEntry(handle, target, 0, entry, eud);
    if (!target.RequireUntroubled(Troubled::kValue | Troubled::kOther) || !RequireFields(target, entry))
        return false;
    Entry16 old;
    const bool isReadable = ReadByName(handle, name, old);
    // An entry without a type may have presentation data that nobody sees, and that a write to them could damage.
    if (!isReadable && (entry.ui.has_value() || KeepsValuesInUi(handle)))
        return target.Refuse(
            Reason::Unreadable,
            "the entry has no known type; give it one before its presentation data are written");
    EntryPlan plan;
    if (!plan.Decide(handle, target, entry, isReadable ? &old : nullptr)) return false;
    if (!plan.Execute(handle, 0, eud))
        return target.Refuse(Reason::NotStored, "the library refused the entry");
    return HoldsValues(handle, entry) ? target.Succeed() : RefuseWritten(target);
}

// ---- writing a value

// Sets the value of an entry without one of its own in its presentation data. The export removes everything else from
// them but the comment, so the rest is written again, also if memory runs out.
inline bool SetUiValue(void* handle, TableEntryValueInfoStruct& value, const Text& text, const Entry16& old,
                       Eud eud) {
    const auto flag = static_cast<std::int32_t>(eud);
    if (!old.ui.has_value()) return xmlTableEntrySet(handle, nullptr, &value, nullptr, 1, flag);
    TableEntryUInfoStruct ui;
    Presentation16 rest = *old.ui;
    rest.comment.clear();
    if (!FillUiRecord(rest, ui)) return false;
    const auto restore = [&] {
        return WritePresentation(handle, nullptr, value, ui, std::nullopt, text, eud);
    };
    try {
        return xmlTableEntrySet(handle, nullptr, &value, nullptr, 1, flag) && restore();
    } catch (...) {
        restore();
        throw;
    }
}

// What a write of a value is to be read back as: the entry's own value, or the one that reads of the key return.
enum class ReadBack { Own, Effective };

// Sets the value of the first entry of that name. Without `force`, an entry with eud="true" or without a value of its
// own is left alone.
inline bool SetEntryValue(void* handle, const Target& target, const Text& name, const Text& text, bool force,
                          Eud eud, ReadBack readBack = ReadBack::Own) {
    if (!RequireLookUpName(target, name) || !target.RequireValid(text, "the value") ||
        !target.RequireKept(text.units(), TextPlace::Element, "the value"))
        return false;
    Entry16 old;
    if (!ReadByName(handle, name, old)) return ExplainMissing(handle, target, name);
    const bool hadOwnValue = HasText(old.value);
    const bool goesToUi = !hadOwnValue && force && KeepsValuesInUi(handle);
    if (!target.RequireUntroubled(goesToUi ? Troubled::kValue | Troubled::kOther : Troubled::kValue) ||
        !RequireRecordValue(target, StringOf<std::u16string>(text.units()), old.type, "the value"))
        return false;
    // (Where the value goes to the presentation data, their attribute "Value", which no read returns, would stay.)
    if (readBack == ReadBack::Effective && text.units().empty() && HasUiValue(old) && !target.IsLossy())
        return target.Refuse(Reason::NotStored,
                             "an empty value would be read as the value that the presentation data have");
    if (!hadOwnValue && !force)
        return target.Refuse(Reason::NotStored,
                             "the entry has no value of its own, so that nobody can tell whether it has eud");

    TableEntryValueInfoStruct value;
    Entry16 wanted;
    wanted.name = old.name;
    wanted.value = StringOf<std::u16string>(text.units());
    wanted.type = old.type;
    wanted.shape = old.shape;
    if (!FillValueRecord(wanted, value))
        return target.Refuse(Reason::NotStored, "a record cannot hold the value");
    value.writeMask = kMaskValue;
    const auto flag = static_cast<std::int32_t>(eud);
    bool isWritten = true;
    if (goesToUi) {
        isWritten = SetUiValue(handle, value, text, old, eud);
    } else {
        if (!hadOwnValue) isWritten = xmlTableEntryAdd(handle, nullptr, &value, nullptr, flag, 1);
        // The export writes the value of an entry that has one of its own to the same place, and handles "eud".
        if (isWritten && (hadOwnValue || HasText(wanted.value)))
            isWritten = xmlTableEntrySet(handle, nullptr, &value, nullptr, force ? 1 : 0, flag);
    }
    if (!isWritten) return target.Refuse(Reason::NotStored, "the library refused the value");
    if (HoldsValues(handle, wanted)) return target.Succeed();
    return force ? RefuseWritten(target) : target.Refuse(Reason::Protected, "the entry has eud=\"true\"");
}

// Writes a value to the entry of that name, or adds an entry with it.
inline bool SetTypedValue(void* handle, const Target& target, const Text& name, const TypedText& value) {
    if (!RequireLookUpName(target, name) || !target.RequireValid(value.text, "the value")) return false;
    TableEntryBaseInfoStruct record;
    SetLookUpName(name, record);
    if (xmlTableEntryIsExist(handle, &record))
        return SetEntryValue(handle, target, name, value.text, true, Eud::DoNotSet, ReadBack::Effective);
    Entry16 entry;
    entry.name = StringOf<std::u16string>(name.units());
    entry.value = StringOf<std::u16string>(value.text.units());
    entry.type = value.type;
    return AddEntry(handle, target, 0, entry, Eud::DoNotSet);
}

}  // namespace front
}  // namespace mox

#endif
