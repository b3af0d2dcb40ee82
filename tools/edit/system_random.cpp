#include "tools/edit/system_random.h"

#include <array>
#include <cstddef>

#if defined(_WIN32)
#include <windows.h>
// After windows.h:
#include <bcrypt.h>
#else
#include <cerrno>
#include <sys/random.h>
#include <sys/types.h>
#endif

#include "mox_xmlApi/document/text_format.h"
#include "tools/exit_error.h"

namespace mox::tool {
namespace {

using RandomBytes = std::array<unsigned char, 32>;

#if defined(_WIN32)

bool FillWithRandomBytes(RandomBytes& bytes) noexcept {
    return BCryptGenRandom(nullptr, bytes.data(), static_cast<ULONG>(bytes.size()),
                           BCRYPT_USE_SYSTEM_PREFERRED_RNG) == 0;
}

#else

bool FillWithRandomBytes(RandomBytes& bytes) noexcept {
    ssize_t count = -1;
    do {
        count = getrandom(bytes.data(), bytes.size(), 0);  // up to 256 bytes come at once
    } while (count < 0 && errno == EINTR);
    return count == static_cast<ssize_t>(bytes.size());
}

#endif

}  // namespace

std::string RandomSecret() {
    RandomBytes bytes{};
    if (!FillWithRandomBytes(bytes))
        throw ExitError(ExitCode::kIoError, "the system gives no random numbers");
    std::string digits;
    for (const unsigned char byte : bytes)
        digits += Hex(byte, 2);
    return digits;
}

}  // namespace mox::tool
