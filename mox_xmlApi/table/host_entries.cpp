#include "mox_xmlApi/table/host_entries.h"

#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/entries/entry_reader.h"
#include "mox_xmlApi/entries/entry_writer.h"
#include "mox_xmlApi/entries/table_entries.h"
#include "mox_xmlApi/table/host_records.h"
#include "mox_xmlApi/table/write_plan.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

// A host's position: 0 before the first entry, kByName for none, otherwise the address of an entry.
constexpr std::uint64_t kByName = ~std::uint64_t{0};

XmlNode* EntryAt(std::uint64_t position) noexcept {
    return reinterpret_cast<XmlNode*>(static_cast<std::uintptr_t>(position));
}

std::uint64_t PositionAt(const XmlNode* entry) noexcept {
    return reinterpret_cast<std::uintptr_t>(entry);
}

// The entry after a position, or null.
XmlNode* EntryAfter(const TableCursor& cursor, std::uint64_t position) noexcept {
    XmlNode* entry = EntryAt(position);
    return XmlDocument::NextChildElement(cursor.table, entry);
}

ValueLocation LocationOf(const TableCursor& cursor, const XmlNode* entry) noexcept {
    EntryValueRecord value;
    EntryUiRecord ui;
    if (entry == nullptr || !ReadEntry(cursor, *entry, &value, &ui)) return {};
    return {!value.Value.empty(), !ui.Value.empty()};
}

// The contents of the host's records, and what of them is to be written.
struct Change {
    EntryValueRecord value;
    EntryUiRecord ui;
    HostValue valueText;
    HostValue uiText;
    WritePlan plan;

    bool ReadValue(const TableEntryValueInfoStruct& record) {
        value = FieldsOf(record);
        if (!valueText.Read(record)) return false;
        value.Value = valueText.View();
        return true;
    }

    bool ReadUi(const TableEntryUInfoStruct& record, const TableEntryValueInfoStruct* textOf,
                std::uint16_t type) {
        ui = FieldsOf(record);
        if (textOf != nullptr && !uiText.Read(*textOf, type)) return false;
        ui.Value = uiText.View();
        return true;
    }

    void Decide(const WritePlan& decision) noexcept {
        plan = decision;
        if (MovesValue()) ui.Value = valueText.View();
    }

    // A value that the host never set is not moved.
    bool MovesValue() const noexcept { return plan.movesValue && valueText.IsSet(); }
};

// False for a cursor that is not ready.
bool WriteChange(const TableCursor& cursor, XmlNode* entry, const Change& change, bool onlySet) {
    const EntryValueRecord* value = change.plan.writesValue ? &change.value : nullptr;
    const EntryUiRecord* ui = change.plan.writesUi ? &change.ui : nullptr;
    if (!WriteEntry(cursor, entry, value, ui, onlySet)) return false;
    // The writer of the presentation data may have ended before their value.
    if (change.MovesValue()) WriteUiValue(cursor, entry, change.ui, onlySet);
    return true;
}

// The name to look up: that of the value record or, without one, of the presentation record.
WideView KeyOf(const TableEntryValueInfoStruct* value, const TableEntryUInfoStruct* ui) noexcept {
    if (value != nullptr) return NameOf(*value);
    return ui != nullptr ? NameOf(*ui) : WideView();
}

bool SetAtPosition(const TableCursor& cursor, std::uint64_t& position, const Change& change, bool force,
                   bool setEud) {
    if (!cursor.IsReady()) return false;
    XmlNode* entry = EntryAfter(cursor, position);
    if (entry == nullptr) return false;
    position = PositionAt(entry);
    if (!force && HasEud(entry)) return true;
    WriteChange(cursor, entry, change, false);
    if (setEud)
        SetEud(cursor, entry);  // otherwise an entry that is written by position keeps the "eud" that it has
    return true;
}

bool SetByName(const TableCursor& cursor, XmlNode* entry, const Change& change, bool force, bool setEud) {
    if (entry == nullptr) return false;
    if (!force && HasEud(entry)) return true;
    if (!WriteChange(cursor, entry, change, false)) return false;
    if (setEud) {
        SetEud(cursor, entry);
    } else {
        cursor.document->RemoveAttribute(entry, names::kEud);
    }
    return true;
}

}  // namespace

bool GetHostEntry(const TableCursor& cursor, TextBuffers& buffers, std::uint64_t* position,
                  TableEntryValueInfoStruct* value, TableEntryUInfoStruct* ui) {
    if (value == nullptr && ui == nullptr) return false;
    EntryValueRecord entryValue;
    EntryUiRecord entryUi;
    const bool byName = position == nullptr || *position == kByName;
    const XmlNode* entry = nullptr;
    if (byName) {
        // Before the records are cleared: both may be one object of the host.
        entry = FindEntry(cursor, value != nullptr ? NameOf(*value) : WideView());
        if (value != nullptr) entryValue.id = value->id;  // remains the result if the entry has no id
    } else if (value != nullptr) {
        value->TableEntryBaseInfoStruct::Clear();
    }
    if (ui != nullptr) ui->Clear();

    if (position != nullptr && !cursor.IsReady()) return false;
    if (!byName) entry = EntryAfter(cursor, *position);
    if (entry == nullptr) return false;
    if (!byName)
        *position = PositionAt(entry);  // also if the entry cannot be read: the next call continues after it
    if (!ReadEntry(cursor, *entry, &entryValue, &entryUi)) return false;
    const bool isFilled =
        (value == nullptr || FillValueRecord(entryValue, entryUi, ui == nullptr, buffers, *value)) &&
        (ui == nullptr || FillUiRecord(entryValue, entryUi, buffers, *ui));
    buffers.ReleaseLarge();
    return isFilled;
}

bool SetHostEntry(const TableCursor& cursor, std::uint64_t* position, const TableEntryValueInfoStruct* value,
                  TableEntryUInfoStruct* ui, bool force, bool setEud) {
    if (ui != nullptr && !IsKnownOwner(ui->prov_owner)) ui->prov_owner = 0;  // hosts read the correction back
    if (position != nullptr && *position == kByName) return false;
    XmlNode* entry = nullptr;
    if (position == nullptr) {
        entry = FindEntry(cursor, KeyOf(value, ui));
    } else if (cursor.IsReady()) {
        entry = EntryAfter(cursor, *position);
    }

    Change change;
    if (value != nullptr && !change.ReadValue(*value)) return false;
    if (ui != nullptr && !change.ReadUi(*ui, ui, ui->type)) return false;
    change.Decide(PlanSet({value != nullptr, ui != nullptr}, LocationOf(cursor, entry)));
    return position == nullptr ? SetByName(cursor, entry, change, force, setEud)
                               : SetAtPosition(cursor, *position, change, force, setEud);
}

bool AddHostEntry(const TableCursor& cursor, const std::uint64_t* position,
                  const TableEntryValueInfoStruct* value, const TableEntryUInfoStruct* ui, bool setEud,
                  bool update) {
    constexpr std::uint16_t kNoControl = 0xFFFF;
    if (ui != nullptr && ui->control == kNoControl) ui = nullptr;
    if (!cursor.IsReady()) return false;

    Change change;
    if (value != nullptr && !change.ReadValue(*value)) return false;
    if (ui != nullptr) {
        // A text other than 16-bit is taken from the value record, as hosts that fill both expect.
        const TableEntryValueInfoStruct* textOf = ui->type == kTypeWideString ? ui : value;
        if (!change.ReadUi(*ui, textOf, ui->type)) return false;
    }
    change.Decide(PlanAdd({value != nullptr, ui != nullptr}, LocationOf(cursor, EntryAfter(cursor, 0))));

    const WideView name = KeyOf(value, ui);
    XmlNode* entry = nullptr;
    if (position != nullptr && *position == kByName) {
        if (update) entry = FindEntry(cursor, name);
    } else {
        entry = FindOrInsertEntry(cursor, position == nullptr ? nullptr : EntryAt(*position), name, update);
    }
    if (entry == nullptr) return false;
    WriteChange(cursor, entry, change, true);
    if (setEud) SetEud(cursor, entry);
    return true;
}

}  // namespace mox
