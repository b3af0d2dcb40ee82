// Reading: one entry element into records.
#ifndef MOX_XMLAPI_ENTRIES_ENTRY_READER_H
#define MOX_XMLAPI_ENTRIES_ENTRY_READER_H

#include "mox_xmlApi/entries/entry_records.h"
#include "mox_xmlApi/entries/table_cursor.h"

namespace mox {

// Reads `entry` into the records, each of which may be null. Fields that the element does not mention keep
// what they had. False for a cursor that is not ready, and for an entry without a known type; what was read
// by then stays in the record. Does not throw.
bool ReadEntry(const TableCursor& cursor, const XmlNode& entry, EntryValueRecord* value,
               EntryUiRecord* ui) noexcept;

// Reads the "UI" child `uiElement` of an entry. False for a cursor that is not ready. Does not throw.
bool ReadEntryUi(const TableCursor& cursor, const XmlNode& uiElement, EntryUiRecord& ui) noexcept;

// The text that a key read gives for `entry`: its value, or the value of its presentation data when that is empty. The
// same as ReadEntry with both records, without reading what is not wanted. False for an entry without a known type, and
// `text` is then untouched. Does not throw.
bool ReadEntryText(const XmlNode& entry, WideView& text) noexcept;

}  // namespace mox

#endif
