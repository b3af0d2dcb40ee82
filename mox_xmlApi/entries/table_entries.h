// The entries of a table, on the library's own records: finding, reading by name, adding and removing them, and the
// attribute "eud" that protects them.
#ifndef MOX_XMLAPI_ENTRIES_TABLE_ENTRIES_H
#define MOX_XMLAPI_ENTRIES_TABLE_ENTRIES_H

#include <cstdint>

#include "mox_xmlApi/entries/entry_reader.h"
#include "mox_xmlApi/entries/entry_records.h"
#include "mox_xmlApi/entries/table_cursor.h"

namespace mox {

// The first child of the table called `name`; for an empty `name` the first that has a name at all. Null if there is
// none. Does not throw.
inline XmlNode* FindEntry(const TableCursor& cursor, WideView name) noexcept {
    XmlNode* entry = nullptr;
    cursor.document->FindChildByNameAttribute(cursor.table, name, entry);
    return entry;
}

// Reads the value text of the entry that FindEntry returns for `name`, as ReadEntryText does. `text` is a view that
// lasts until the entry changes. False if there is no such entry or it has no known type. Does not throw.
inline bool ReadEntryByName(const TableCursor& cursor, WideView name, WideView& text) noexcept {
    const XmlNode* entry = FindEntry(cursor, name);
    return entry != nullptr && ReadEntryText(*entry, text);
}

// The entry to write: with `update` the one that FindEntry returns for `name`, if there is one; otherwise a new "Var"
// before the entry `before`, or after the last one if that is null. Null if `before` is no entry of the table. May throw
// std::bad_alloc or std::length_error; nothing has changed then.
XmlNode* FindOrInsertEntry(const TableCursor& cursor, const XmlNode* before, WideView name, bool update);

// Appends a new entry and writes the records, each of which may be null, into it. False for a cursor that is not ready.
// May throw std::bad_alloc or std::length_error; a new entry whose writing fails in this way stays.
bool AddEntry(const TableCursor& cursor, const EntryValueRecord* value, const EntryUiRecord* ui);

// Whether `entry` carries "eud"="true". Does not throw.
bool HasEud(const XmlNode* entry) noexcept;
// Gives the entry "eud"="true", and its table as well unless that has an "eud" already. May throw std::bad_alloc.
void SetEud(const TableCursor& cursor, XmlNode* entry);

// Removes the entry called `name` that has `occurrence` entries of that name before it; -1 means the first. An empty
// name matches an empty "name" only. With `removeAll` every further match is removed as well. Returns whether any was
// removed; false for a cursor that is not ready. Does not throw.
bool RemoveEntry(const TableCursor& cursor, WideView name, std::int64_t occurrence, bool removeAll) noexcept;

// Removes every child whose node name is "Var"; all other children stay. True also if there was none; false for a cursor
// that is not ready. Does not throw.
bool RemoveEntries(const TableCursor& cursor) noexcept;

}  // namespace mox

#endif
