// What hosts hold as a table handle: a document and the cursor on its "Table" element.
#ifndef MOX_XMLAPI_TABLE_TABLE_HANDLE_H
#define MOX_XMLAPI_TABLE_TABLE_HANDLE_H

#include "mox_xmlApi/entries/table_cursor.h"
#include "mox_xmlApi/table/host_records.h"
#include "mox_xmlApi/xml/xml_document.h"

namespace mox {

struct TableHandle {
    // A table with a document of its own, empty until a table is opened or made in it.
    TableHandle();
    // A table over an element that lies in another document's tree, in the pool `shared`. It never frees the
    // element and must not outlive it. The cursor is ready; `header` takes what the element says.
    TableHandle(XmlPool& shared, XmlNode* element, TableHeader& header);
    // The same for callers that want nothing of the header: it is not read.
    TableHandle(XmlPool& shared, XmlNode* element);
    TableHandle(const TableHandle&) = delete;
    TableHandle& operator=(const TableHandle&) = delete;

    // Opens the table and makes the handle ready or unready by the result, which is returned. May throw as
    // OpenTable.
    bool Open(TableHeader& header, bool withSchema);

    // Makes a new table in the empty document, with the declaration and the schema location when
    // `asDocument`. When that fails, the handle finds nothing and refuses everything. May throw as OpenTable.
    void CreateNew(const TableHeader& header, bool asDocument);

    XmlDocument document;
    TableCursor cursor;
    TextBuffers buffers;
};

}  // namespace mox

#endif
