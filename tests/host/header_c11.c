/* The public header in C11, with nothing included before it. */
#include "mox_xmlApi/mox_xmlApi.h"

_Static_assert(sizeof(wchar16) == 2, "texts are in 16-bit units");

typedef void (*DisposeTable)(void** handleAddress);
typedef int32_t (*GetInt)(moxSettings* settings, const wchar16* section, const wchar16* key,
                          int32_t defaultValue);

/* Taking addresses makes the declarations checked against what a C host expects of them. */
DisposeTable disposeTable = xmlTableDispose;
GetInt getInt = xmlGetProfileInt;
