// The same in C++.
#include "host_calls.h"

extern "C" int Start() {
    return CallAll(MOX_STR("other_cpp_settings.xml"), MOX_STR("other_cpp_table.xml"));
}
