// What a table can do with its entries: add them, find them, read and write them by position or by name.
#ifndef MOX_XMLAPI_TABLE_TABLE_ENTRIES_H
#define MOX_XMLAPI_TABLE_TABLE_ENTRIES_H

#include <cstdint>

#include "mox_xmlApi/entries/entry_records.h"
#include "mox_xmlApi/entries/table_cursor.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/table/host_records.h"

namespace mox {

// A host's enumeration position: 0 before the first entry, kByName for none, else an entry.
inline constexpr std::uint64_t kByName = ~std::uint64_t{0};

// The first child of the table called `name`, or, when that is empty, the first that has a name at all. Null
// without.
XmlNode* FindEntry(const TableCursor& cursor, WideView name) noexcept;

// Marks an entry "eud"="true", and its table unless that has an "eud" already. May throw std::bad_alloc.
void MarkEntry(const TableCursor& cursor, XmlNode* entry);

// Adds a "Var" entry before the entry `before`, or as the last one when that is null, and writes the records,
// each of which may be null, into it. With `update` the first entry that FindEntry gives for `name` is
// written instead, if there is one. With `mark` the entry is marked. False for a cursor that is not ready and
// for a `before` that is no entry of the table. May throw std::bad_alloc or std::length_error; a new entry
// whose writing fails so stays.
bool AddEntry(const TableCursor& cursor, const XmlNode* before, WideView name, const EntryValueRecord* value,
              const EntryUiRecord* ui, bool mark, bool update);

// The work of xmlTableEntryGet, xmlTableEntrySet and xmlTableEntryAdd on a handle that is not null.
bool GetEntry(const TableCursor& cursor, TextBuffers& buffers, std::uint64_t* position,
              TableEntryValueInfoStruct* value, TableEntryUInfoStruct* ui);
bool SetEntry(const TableCursor& cursor, std::uint64_t* position, const TableEntryValueInfoStruct* value,
              TableEntryUInfoStruct* ui, bool force, bool mark);
bool AddHostEntry(const TableCursor& cursor, const std::uint64_t* position,
                  const TableEntryValueInfoStruct* value, const TableEntryUInfoStruct* ui, bool mark,
                  bool update);

}  // namespace mox

#endif
