// The header must be a whole program's first include, in C++17.
#include "mox_host/mox_host.h"

static_assert(sizeof(mox_entry) == 112 && offsetof(mox_entry, comment) == 80);
static_assert(MOX_NO_NODE == SIZE_MAX && MOX_ALL == -1);
