#include "mox_xmlApi/table/entry_removal.h"

#include "mox_xmlApi/xml/xml_names.h"

namespace mox {

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
