// A multiplication that standard C++ lacks.
#ifndef MOX_XMLAPI_PLATFORM_MULTIPLY_H
#define MOX_XMLAPI_PLATFORM_MULTIPLY_H

#include <cstdint>

#if defined(_MSC_VER) && defined(_M_X64)
#include <intrin.h>
#endif

namespace mox {

// The product has 128 bits: the exclusive or of its two halves.
inline std::uint64_t MultiplyAndFold(std::uint64_t a, std::uint64_t b) noexcept {
#if defined(__SIZEOF_INT128__)
    __extension__ using Product = unsigned __int128;
    const Product product = static_cast<Product>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#elif defined(_MSC_VER) && defined(_M_X64)
    std::uint64_t upper = 0;
    const std::uint64_t lower = _umul128(a, b, &upper);
    return lower ^ upper;
#else
    const std::uint64_t lowerA = a & 0xFFFFFFFF;
    const std::uint64_t lowerB = b & 0xFFFFFFFF;
    const std::uint64_t middle = (a >> 32) * lowerB + (lowerA * lowerB >> 32);
    const std::uint64_t other = lowerA * (b >> 32) + (middle & 0xFFFFFFFF);
    return (a * b) ^ ((a >> 32) * (b >> 32) + (middle >> 32) + (other >> 32));
#endif
}

}  // namespace mox

#endif
