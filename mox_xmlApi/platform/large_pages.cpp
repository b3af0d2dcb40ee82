#include "mox_xmlApi/platform/large_pages.h"

#if defined(__linux__)
#include <cstdint>
#include <sys/mman.h>
#endif

namespace mox {

void PreferLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) noexcept {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr std::size_t kPage = std::size_t{2} << 20;
    if (bytes < 2 * kPage) return;
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (begin + kPage - 1) & ~(kPage - 1);
    const std::uintptr_t last = (begin + bytes) & ~(kPage - 1);
    madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#endif
}

}  // namespace mox
