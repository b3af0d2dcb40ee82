#include "mox_xmlApi/platform/large_pages.h"

#include <new>

#include "mox_xmlApi/platform/speedup.h"

#if defined(__linux__)
#include <cstdint>
#include <sys/mman.h>
#endif

namespace mox {
namespace {

#if defined(__linux__) && defined(MADV_HUGEPAGE)

constexpr std::size_t kPage = std::size_t{2} << 20;

std::uintptr_t PageEnd(std::uintptr_t address) noexcept {
    return (address + kPage - 1) & ~(kPage - 1);
}

void AskForLargePages(std::uintptr_t begin, std::uintptr_t end) noexcept {
    const std::uintptr_t first = PageEnd(begin);
    const std::uintptr_t last = end & ~(kPage - 1);
    madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
}

#endif

}  // namespace

void PreferLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) noexcept {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    if (Has(Speedup::LargePages) && bytes >= 2 * kPage) AskForLargePages(begin, begin + bytes);
#endif
}

PagedBlock AllocatePaged(std::size_t bytes) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    if (Has(Speedup::LargePages) && bytes >= kPage / 2 && bytes <= 2 * kPage) {
        const std::size_t whole = PageEnd(bytes);
        if (whole - bytes <= kPage / 2) bytes = whole;
        // Not operator new with an alignment: memory in which the C library has aligned a block is given back to the
        // system with the block, and the next document would have to fetch it again.
        auto* allocation = static_cast<std::byte*>(::operator new(bytes + kPage));
        const auto address = reinterpret_cast<std::uintptr_t>(allocation);
        std::byte* begin = allocation + (PageEnd(address) - address);
        AskForLargePages(PageEnd(address), PageEnd(address) + bytes);
        return {allocation, begin, begin + bytes};
    }
#endif
    auto* allocation = static_cast<std::byte*>(::operator new(bytes));
    PreferLargePages(allocation, bytes);
    return {allocation, allocation, allocation + bytes};
}

}  // namespace mox
