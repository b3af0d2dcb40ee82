// The cursor that binds a document to one "Table" element.
#ifndef MOX_XMLAPI_ENTRIES_TABLE_CURSOR_H
#define MOX_XMLAPI_ENTRIES_TABLE_CURSOR_H

#include <cstdint>

#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_document.h"

namespace mox {

// The attributes of a "Table" element. `name` is a view, after OpenTable of the tree: a header is not kept beyond the
// call in which it was read.
struct TableHeader {
    WideView name{};
    std::uint32_t first_id = 0;
    std::uint16_t type = 0;
    bool editable = false;
};

struct TableCursor {
    bool documentReady = false;
    bool tableReady = false;
    XmlDocument* document = nullptr;  // not owned
    XmlNode* table = nullptr;         // the current "Table" element, set by OpenTable
    // Set: the table is the first "Table" child of the document node, made when there is none.
    // Clear: the node that the document is attached to is the table itself.
    bool openExisting = false;

    bool IsReady() const noexcept { return documentReady && tableReady; }
};

// The header that `table` has; what is missing is 0, false or empty. The name is a view of the tree. Does not throw.
TableHeader ReadTableHeader(const XmlNode& table) noexcept;

// Finds or makes the table element of the cursor's document.
//
// A table that exists must have the name that `header` asks for, unless that is empty; `header` then takes
// its values. A new one is given the values of `header`, and with `withSchema` the schema location. Returns
// false when the name differs (cursor and header are unchanged) or there is no document node. May throw
// std::bad_alloc or std::length_error; a table that was made by then stays.
bool OpenTable(TableCursor& cursor, TableHeader& header, bool withSchema);

}  // namespace mox

#endif
