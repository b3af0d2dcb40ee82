#include "tests/host/thrower/thrower.h"

#include <cstdint>

extern "C" void ThrowStamp() {
    throw static_cast<std::int32_t>(0x80000008U);
}
