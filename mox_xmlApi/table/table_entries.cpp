#include "mox_xmlApi/table/table_entries.h"

#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/entries/entry_reader.h"
#include "mox_xmlApi/entries/entry_writer.h"
#include "mox_xmlApi/table/host_records.h"
#include "mox_xmlApi/table/write_plan.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

XmlNode* NodeAt(std::uint64_t position) noexcept {
    return reinterpret_cast<XmlNode*>(static_cast<std::uintptr_t>(position));
}

std::uint64_t PositionOf(const XmlNode* entry) noexcept {
    return reinterpret_cast<std::uintptr_t>(entry);
}

// The entry after a position, or null.
XmlNode* EntryAfter(const TableCursor& cursor, std::uint64_t position) noexcept {
    XmlNode* entry = NodeAt(position);
    return XmlDocument::NextChildElement(cursor.table, entry);
}

ValuePlaces PlacesOf(const TableCursor& cursor, const XmlNode* entry) noexcept {
    EntryValueRecord value;
    EntryUiRecord ui;
    if (entry == nullptr || !ReadEntry(cursor, *entry, &value, &ui)) return {};
    return {!value.Value.empty(), !ui.Value.empty()};
}

// What the host's records say, and what of it is to be written.
struct Change {
    EntryValueRecord value;
    EntryUiRecord ui;
    HostValue valueText;
    HostValue uiText;
    WritePlan plan;

    bool TakeValue(const TableEntryValueInfoStruct& record) {
        value = FieldsOf(record);
        if (!valueText.Take(record)) return false;
        value.Value = valueText.View();
        return true;
    }

    bool TakeUi(const TableEntryUInfoStruct& record, const TableEntryValueInfoStruct* textOf,
                std::uint16_t type) {
        ui = FieldsOf(record);
        if (textOf != nullptr && !uiText.Take(*textOf, type)) return false;
        ui.Value = uiText.View();
        return true;
    }

    void Decide(const WritePlan& decision) noexcept {
        plan = decision;
        if (MovesText()) ui.Value = valueText.View();
    }

    // A value that the host never set is not moved.
    bool MovesText() const noexcept { return plan.movesValue && valueText.IsSet(); }
};

// False for a cursor that is not ready.
bool WriteChange(const TableCursor& cursor, XmlNode* entry, const Change& change, bool onlySet) {
    const EntryValueRecord* value = change.plan.writesValue ? &change.value : nullptr;
    const EntryUiRecord* ui = change.plan.writesUi ? &change.ui : nullptr;
    if (!WriteEntry(cursor, entry, value, ui, onlySet)) return false;
    // The writer of the presentation data may have ended before their value.
    if (change.MovesText()) WriteUiValue(cursor, entry, change.ui, onlySet);
    return true;
}

bool IsProtected(const XmlNode* entry) noexcept {
    WideView mark;
    return XmlDocument::GetAttribute(entry, names::kEud, mark) && mark == names::kTrue;
}

// A name for look-ups: that of the value record, or else of the presentation record.
WideView KeyOf(const TableEntryValueInfoStruct* value, const TableEntryUInfoStruct* ui) noexcept {
    if (value != nullptr) return NameOf(*value);
    return ui != nullptr ? NameOf(*ui) : WideView();
}

bool SetAtPosition(const TableCursor& cursor, std::uint64_t& position, const Change& change, bool force,
                   bool mark) {
    if (!cursor.IsReady()) return false;
    XmlNode* entry = EntryAfter(cursor, position);
    if (entry == nullptr) return false;
    position = PositionOf(entry);
    if (!force && IsProtected(entry)) return true;
    WriteChange(cursor, entry, change, false);
    if (mark) MarkEntry(cursor, entry);  // without `mark` an entry written by position keeps the mark it has
    return true;
}

bool SetByName(const TableCursor& cursor, XmlNode* entry, const Change& change, bool force, bool mark) {
    if (entry == nullptr) return false;
    if (!force && IsProtected(entry)) return true;
    if (!WriteChange(cursor, entry, change, false)) return false;
    if (mark) {
        MarkEntry(cursor, entry);
    } else {
        cursor.document->RemoveAttribute(entry, names::kEud);
    }
    return true;
}

// The entry of that name for an update, if there is one, else a new one. Null when `before` is no entry of the table.
XmlNode* FindOrInsert(const TableCursor& cursor, const XmlNode* before, WideView name, bool update) {
    XmlNode* entry = update ? FindEntry(cursor, name) : nullptr;
    if (entry != nullptr) return entry;
    return cursor.document->InsertChild(cursor.table, names::kVar, std::nullopt, before);
}

}  // namespace

XmlNode* FindEntry(const TableCursor& cursor, WideView name) noexcept {
    XmlNode* entry = nullptr;
    cursor.document->FindChildByNameAttribute(cursor.table, name, entry);
    return entry;
}

void MarkEntry(const TableCursor& cursor, XmlNode* entry) {
    if (XmlDocument::FindAttribute(cursor.table, names::kEud) == nullptr) {
        cursor.document->SetAttribute(cursor.table, names::kEud, names::kTrue);
    }
    cursor.document->SetAttribute(entry, names::kEud, names::kTrue);
}

bool AddEntry(const TableCursor& cursor, const XmlNode* before, WideView name, const EntryValueRecord* value,
              const EntryUiRecord* ui, bool mark, bool update) {
    if (!cursor.IsReady()) return false;
    XmlNode* entry = FindOrInsert(cursor, before, name, update);
    if (entry == nullptr) return false;
    WriteEntry(cursor, entry, value, ui, true);
    if (mark) MarkEntry(cursor, entry);
    return true;
}

bool GetEntry(const TableCursor& cursor, TextBuffers& buffers, std::uint64_t* position,
              TableEntryValueInfoStruct* value, TableEntryUInfoStruct* ui) {
    if (value == nullptr && ui == nullptr) return false;
    EntryValueRecord entryValue;
    EntryUiRecord entryUi;
    const bool byName = position == nullptr || *position == kByName;
    const XmlNode* entry = nullptr;
    if (byName) {
        // Before the records are cleared: both may be one object of the host.
        entry = FindEntry(cursor, value != nullptr ? NameOf(*value) : WideView());
        if (value != nullptr) entryValue.id = value->id;  // stays the result's id when the entry has none
    } else if (value != nullptr) {
        value->TableEntryBaseInfoStruct::Clear();
    }
    if (ui != nullptr) ui->Clear();

    if (position != nullptr && !cursor.IsReady()) return false;
    if (!byName) entry = EntryAfter(cursor, *position);
    if (entry == nullptr) return false;
    if (!byName)
        *position = PositionOf(entry);  // an entry that cannot be read is passed over by the next call
    if (!ReadEntry(cursor, *entry, &entryValue, &entryUi)) return false;
    const bool isFilled =
        (value == nullptr || FillValueRecord(entryValue, entryUi, ui == nullptr, buffers, *value)) &&
        (ui == nullptr || FillUiRecord(entryValue, entryUi, buffers, *ui));
    buffers.DropLarge();
    return isFilled;
}

bool SetEntry(const TableCursor& cursor, std::uint64_t* position, const TableEntryValueInfoStruct* value,
              TableEntryUInfoStruct* ui, bool force, bool mark) {
    if (ui != nullptr && !IsKnownOwner(ui->prov_owner)) ui->prov_owner = 0;  // hosts read the correction back
    if (position != nullptr && *position == kByName) return false;
    XmlNode* entry = nullptr;
    if (position == nullptr) {
        entry = FindEntry(cursor, KeyOf(value, ui));
    } else if (cursor.IsReady()) {
        entry = EntryAfter(cursor, *position);
    }

    Change change;
    if (value != nullptr && !change.TakeValue(*value)) return false;
    if (ui != nullptr && !change.TakeUi(*ui, ui, ui->type)) return false;
    change.Decide(PlanSet({value != nullptr, ui != nullptr}, PlacesOf(cursor, entry)));
    return position == nullptr ? SetByName(cursor, entry, change, force, mark)
                               : SetAtPosition(cursor, *position, change, force, mark);
}

bool AddHostEntry(const TableCursor& cursor, const std::uint64_t* position,
                  const TableEntryValueInfoStruct* value, const TableEntryUInfoStruct* ui, bool mark,
                  bool update) {
    constexpr std::uint16_t kNoControl = 0xFFFF;
    if (ui != nullptr && ui->control == kNoControl) ui = nullptr;
    if (!cursor.IsReady()) return false;

    Change change;
    if (value != nullptr && !change.TakeValue(*value)) return false;
    if (ui != nullptr) {
        // A text other than 16-bit is taken from the value record, as hosts that fill both expect.
        const TableEntryValueInfoStruct* textOf = ui->type == kTypeWideString ? ui : value;
        if (!change.TakeUi(*ui, textOf, ui->type)) return false;
    }
    change.Decide(PlanAdd({value != nullptr, ui != nullptr}, PlacesOf(cursor, EntryAfter(cursor, 0))));

    const WideView name = KeyOf(value, ui);
    XmlNode* entry = nullptr;
    if (position != nullptr && *position == kByName) {
        if (update) entry = FindEntry(cursor, name);
    } else {
        entry = FindOrInsert(cursor, position == nullptr ? nullptr : NodeAt(*position), name, update);
    }
    if (entry == nullptr) return false;
    WriteChange(cursor, entry, change, true);
    if (mark) MarkEntry(cursor, entry);
    return true;
}

}  // namespace mox
