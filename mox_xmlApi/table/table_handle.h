// What a host's table handle refers to: a document and the cursor on its "Table" element.
#ifndef MOX_XMLAPI_TABLE_TABLE_HANDLE_H
#define MOX_XMLAPI_TABLE_TABLE_HANDLE_H

#include <memory>

#include "mox_xmlApi/entries/table_cursor.h"
#include "mox_xmlApi/table/host_records.h"
#include "mox_xmlApi/xml/xml_document.h"

namespace mox {

struct SpareHandle;

struct TableHandle {
    // A table with a document of its own, which is empty until a table is opened or created in it.
    TableHandle();
    // A table over an element of another document's tree, which lies in the pool `shared`. It never frees the element,
    // and may be released but not used after that is gone. The cursor is ready.
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
    std::weak_ptr<SpareHandle> profile;  // expires with the profile of a section handle; empty for a table
};

// A section handle that was released, for the next one of its profile: a host that enumerates sections takes and
// releases one after the other. It belongs to the profile.
struct SpareHandle {
    // A handle of the section `element`: the one in `spare` if there is one. Creates `spare` if it is null. Throws
    // std::bad_alloc.
    static std::unique_ptr<TableHandle> Take(std::shared_ptr<SpareHandle>& spare, XmlPool& pool,
                                             XmlNode* element);
    // Releases the handle of a section or table. It becomes the spare of its profile if that still exists and has none,
    // and is destroyed otherwise. Null is fine.
    static void Release(std::unique_ptr<TableHandle> handle) noexcept;

    std::unique_ptr<TableHandle> handle;
};

}  // namespace mox

#endif
