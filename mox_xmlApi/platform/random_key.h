// A random key for hash functions, so that nobody can prepare texts of one hash.
#ifndef MOX_XMLAPI_PLATFORM_RANDOM_KEY_H
#define MOX_XMLAPI_PLATFORM_RANDOM_KEY_H

#include <cstdint>

namespace mox {

struct HashKey {
    std::uint64_t start = 0;
    std::uint64_t multiplier = 1;  // odd
};

// The key of this process: chosen at the first call, the same from then on. Where the system gives no random numbers
// it is made of the time and of addresses.
HashKey ProcessHashKey() noexcept;

}  // namespace mox

#endif
