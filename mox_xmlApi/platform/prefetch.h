// Asking the processor for memory before it is used, so that it comes while other work is done.
#ifndef MOX_XMLAPI_PLATFORM_PREFETCH_H
#define MOX_XMLAPI_PLATFORM_PREFETCH_H

#include <cstdint>

#if defined(_MSC_VER)
#include <intrin.h>
#endif

namespace mox {

inline constexpr std::int32_t kCacheLine = 64;  // bytes

// Asks for some lines from `address` on. Only a hint: nothing need be there, and nothing is read.
inline void PrefetchMemory(std::uintptr_t address, int lines) noexcept {
    for (int line = 0; line < lines; ++line, address += kCacheLine) {
#if defined(_MSC_VER)
        _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
#elif defined(__GNUC__)
        __builtin_prefetch(reinterpret_cast<const void*>(address));
        asm volatile("");  // a function that does nothing else would pass for one whose calls can be left out
#endif
    }
}

// For a walk through memory from end to end: what lies some way ahead of the place in use. The processor looks ahead
// by itself, but no farther than the end of a page.
inline void PrefetchAhead(const void* place, int lines = 1) noexcept {
    constexpr std::uintptr_t kAhead = 1024;
    PrefetchMemory(reinterpret_cast<std::uintptr_t>(place) + kAhead, lines);
}

}  // namespace mox

#endif
