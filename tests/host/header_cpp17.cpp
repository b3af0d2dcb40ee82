// The public header in C++17, with nothing included before it.
#include "mox_xmlApi/mox_xmlApi.h"

static_assert(sizeof(wchar16) == 2, "texts are in 16-bit units");

using DisposeTable = void (*)(void** handleAddress);
using GetInt = int32_t (*)(moxSettings* settings, const wchar16* section, const wchar16* key,
                           int32_t defaultValue);

// Taking addresses makes the declarations checked against what a C++ host expects of them.
DisposeTable disposeTable = xmlTableDispose;
GetInt getInt = xmlGetProfileInt;
