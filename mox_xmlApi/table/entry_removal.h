// Removing entries from a table.
#ifndef MOX_XMLAPI_TABLE_ENTRY_REMOVAL_H
#define MOX_XMLAPI_TABLE_ENTRY_REMOVAL_H

#include <cstdint>

#include "mox_xmlApi/entries/table_cursor.h"

namespace mox {

// Removes the entry called `name` that has `occurrence` entries of that name before it; -1 means the first.
// An empty name matches an empty "name" only. With `removeAll` every further match goes too. Returns whether
// any went; false for a cursor that is not ready. Does not throw.
bool RemoveEntry(const TableCursor& cursor, WideView name, std::int64_t occurrence, bool removeAll) noexcept;

// Removes every child whose node name is "Var", whatever else the table holds. False for a cursor that is not
// ready; true also when there was none. Does not throw.
bool RemoveEntries(const TableCursor& cursor) noexcept;

}  // namespace mox

#endif
