// Writing: records into one entry element, in place.
#ifndef MOX_XMLAPI_ENTRIES_ENTRY_WRITER_H
#define MOX_XMLAPI_ENTRIES_ENTRY_WRITER_H

#include "mox_xmlApi/entries/entry_records.h"
#include "mox_xmlApi/entries/table_cursor.h"

namespace mox {

// Writes the records, each of which may be null, into the element `entry`: the value record as far as its
// `writeMask` selects, and the "UI" child. With a UI record the entry's own "Value" child is left alone.
// `onlySet` skips fields that are zero, false or empty. False for a cursor that is not ready. May throw
// std::bad_alloc or std::length_error; what was written by then stays.
bool WriteEntry(const TableCursor& cursor, XmlNode* entry, const EntryValueRecord* value,
                const EntryUiRecord* ui, bool onlySet);

// Writes the "UI" child `uiElement` of an entry: its attributes, then its children. "Value" is written only when the
// element has a "Comment" child and the record none; otherwise the writing ends with the comment. False for a cursor
// that is not ready and when a new comment replaced one. Throws as WriteEntry.
bool WriteEntryUi(const TableCursor& cursor, XmlNode* uiElement, const EntryUiRecord& ui, bool onlySet);

// Puts the value of the record into the "UI" child of `entry`, whatever its comment: an existing "Value" child gets the
// text, a missing one is appended unless the text is empty, and its "loc" is written as WriteEntryUi writes it. Nothing
// is done to an entry without a "UI" child. Throws as WriteEntry.
void WriteUiValue(const TableCursor& cursor, XmlNode* entry, const EntryUiRecord& ui, bool onlySet);

}  // namespace mox

#endif
