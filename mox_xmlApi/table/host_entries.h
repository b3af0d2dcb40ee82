// Entries on their way between a table and the host's records, by position or by name.
#ifndef MOX_XMLAPI_TABLE_HOST_ENTRIES_H
#define MOX_XMLAPI_TABLE_HOST_ENTRIES_H

#include <cstdint>

#include "mox_xmlApi/entries/table_cursor.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/table/host_records.h"

namespace mox {

// The work of xmlTableEntryGet, xmlTableEntrySet and xmlTableEntryAdd on a handle that is not null. Arguments, results
// and exceptions are theirs; flags are bool here.
bool GetHostEntry(const TableCursor& cursor, TextBuffers& buffers, std::uint64_t* position,
                  TableEntryValueInfoStruct* value, TableEntryUInfoStruct* ui);
bool SetHostEntry(const TableCursor& cursor, std::uint64_t* position, const TableEntryValueInfoStruct* value,
                  TableEntryUInfoStruct* ui, bool force, bool setEud);
bool AddHostEntry(const TableCursor& cursor, const std::uint64_t* position,
                  const TableEntryValueInfoStruct* value, const TableEntryUInfoStruct* ui, bool setEud,
                  bool update);

}  // namespace mox

#endif
