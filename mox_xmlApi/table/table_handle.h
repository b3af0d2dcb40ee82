// What a host's table handle refers to: a document and the cursor on its "Table" element.
#ifndef MOX_XMLAPI_TABLE_TABLE_HANDLE_H
#define MOX_XMLAPI_TABLE_TABLE_HANDLE_H

#include "mox_xmlApi/entries/table_cursor.h"
#include "mox_xmlApi/table/host_records.h"
#include "mox_xmlApi/xml/xml_document.h"

namespace mox {

struct TableHandle {
    // A table with a document of its own, which is empty until a table is opened or created in it.
    TableHandle();
    // A table over an element of another document's tree, which lies in the pool `shared`. It never frees the element
    // and must not outlive it. The cursor is ready.
    TableHandle(XmlPool& shared, XmlNode* element);
    TableHandle(const TableHandle&) = delete;
    TableHandle& operator=(const TableHandle&) = delete;

    // Opens the table of the document. The handle is ready if that succeeds, which is also the result. May throw as
    // OpenTable does.
    bool Open(TableHeader& header, bool withSchema);

    // Creates a table in the empty document, with the declaration and the schema location if `asDocument`. May throw as
    // OpenTable does.
    void CreateNew(const TableHeader& header, bool asDocument);

    XmlDocument document;
    TableCursor cursor;
    TextBuffers buffers;
};

}  // namespace mox

#endif
