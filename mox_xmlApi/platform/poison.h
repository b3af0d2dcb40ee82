// Tells AddressSanitizer which memory of a pool is free, so that a use after removal is reported although the memory was
// never returned to the system. Without the sanitizer both functions do nothing.
#ifndef MOX_XMLAPI_PLATFORM_POISON_H
#define MOX_XMLAPI_PLATFORM_POISON_H

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MOX_ADDRESS_SANITIZER 1
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define MOX_ADDRESS_SANITIZER 1
#endif

#if defined(MOX_ADDRESS_SANITIZER)
#include <sanitizer/asan_interface.h>
#endif

namespace mox {

// Any access to the bytes is reported from now on.
inline void PoisonMemory([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) noexcept {
#if defined(MOX_ADDRESS_SANITIZER)
    ASAN_POISON_MEMORY_REGION(memory, bytes);
#endif
}

// The bytes may be accessed again.
inline void UnpoisonMemory([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) noexcept {
#if defined(MOX_ADDRESS_SANITIZER)
    ASAN_UNPOISON_MEMORY_REGION(memory, bytes);
#endif
}

}  // namespace mox

#endif
