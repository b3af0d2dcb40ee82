// A C host of mox_host made by a compiler and a linker of the MSVC family. The exit code is 0 when all was as expected.
#include "host_calls.h"

int Start(void) {
    return CallAll(MOX_STR("other_c_settings.xml"), MOX_STR("other_c_table.xml"));
}
