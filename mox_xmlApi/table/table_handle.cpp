#include "mox_xmlApi/table/table_handle.h"

namespace mox {

TableHandle::TableHandle() : cursor{true, true, &document, nullptr, true} {}

TableHandle::TableHandle(XmlPool& shared, XmlNode* element)
    : document(shared, element), cursor{true, true, &document, element, false} {}

bool TableHandle::Open(TableHeader& header, bool withSchema) {
    const bool opened = OpenTable(cursor, header, withSchema);
    cursor.documentReady = opened;
    cursor.tableReady = opened;
    return opened;
}

void TableHandle::CreateNew(const TableHeader& header, bool asDocument) {
    if (asDocument && !document.AddDeclaration()) return;
    TableHeader wanted = header;
    Open(wanted, asDocument);
}

}  // namespace mox
