// The C++ front after <windows.h> with all its macros, min and max included.
#if defined(_WIN32)
#include <windows.h>
#endif

#include "mox_xmlApi/mox_xmlApi.hpp"

// Templates are compiled when they are used.
bool UseAfterWindows(mox::Profile& profile, mox::Table& table);
bool UseAfterWindows(mox::Profile& profile, mox::Table& table) {
    return profile.getInt("S", "K").has_value() && table.put({"A", "1"}) && !table.list16().empty() &&
           profile.saveReplacing("x") && table.saveReplacing("y");
}
