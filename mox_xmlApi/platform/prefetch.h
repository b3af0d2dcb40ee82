// Prefetching: memory that is needed soon is fetched while other work is done.
#ifndef MOX_XMLAPI_PLATFORM_PREFETCH_H
#define MOX_XMLAPI_PLATFORM_PREFETCH_H

#include <cstdint>

#if defined(_MSC_VER)
#include <intrin.h>
#endif

namespace mox {

inline constexpr std::int32_t kCacheLine = 64;  // bytes

// Prefetches `lines` cache lines from `address` on. Only a hint: any address is allowed, and nothing is read.
inline void PrefetchMemory(std::uintptr_t address, int lines) noexcept {
    for (int line = 0; line < lines; ++line, address += kCacheLine) {
#if defined(_MSC_VER)
        _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
#elif defined(__GNUC__)
        __builtin_prefetch(reinterpret_cast<const void*>(address));
        asm volatile("");  // otherwise the compiler drops calls of a function that only prefetches
#endif
    }
}

}  // namespace mox

#endif
