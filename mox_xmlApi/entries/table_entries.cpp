#include "mox_xmlApi/entries/table_entries.h"

#include "mox_xmlApi/entries/entry_writer.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {

XmlNode* FindOrInsertEntry(const TableCursor& cursor, const XmlNode* before, WideView name, bool update) {
    XmlNode* entry = update ? FindEntry(cursor, name) : nullptr;
    if (entry != nullptr) return entry;
    return cursor.document->InsertChild(cursor.table, names::kVar, std::nullopt, before);
}

bool AddEntry(const TableCursor& cursor, const EntryValueRecord* value, const EntryUiRecord* ui) {
    if (!cursor.IsReady()) return false;
    XmlNode& entry = cursor.document->AppendElement(*cursor.table, names::kVar);
    return WriteEntry(cursor, &entry, value, ui, true);
}

bool HasEud(const XmlNode* entry) noexcept {
    WideView eud;
    return XmlDocument::GetAttribute(entry, names::kEud, eud) && eud == names::kTrue;
}

void SetEud(const TableCursor& cursor, XmlNode* entry) {
    if (XmlDocument::FindAttribute(cursor.table, names::kEud) == nullptr) {
        cursor.document->SetAttribute(*cursor.table, names::kEud, names::kTrue);
    }
    cursor.document->SetAttribute(*entry, names::kEud, names::kTrue);
}

bool RemoveEntry(const TableCursor& cursor, WideView name, std::int64_t occurrence, bool removeAll) noexcept {
    if (!cursor.IsReady() || cursor.table == nullptr) return false;
    XmlDocument& document = *cursor.document;
    const auto number = static_cast<std::uint64_t>(occurrence);  // -1 is XmlDocument::kFirstMatch
    if (!removeAll) return document.RemoveChildWhere(cursor.table, names::kName, name, number, false);
    return document.RemoveChildrenWhere(cursor.table, names::kName, name, number, false) != 0;
}

bool RemoveEntries(const TableCursor& cursor) noexcept {
    if (!cursor.IsReady() || cursor.table == nullptr) return false;
    cursor.document->RemoveChildrenWhere(cursor.table, WideView(), names::kVar, XmlDocument::kFirstMatch,
                                         true);
    return true;
}

}  // namespace mox
