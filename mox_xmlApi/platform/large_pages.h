// Large memory pages for large blocks, where the system supports them.
#ifndef MOX_XMLAPI_PLATFORM_LARGE_PAGES_H
#define MOX_XMLAPI_PLATFORM_LARGE_PAGES_H

#include <cstddef>

namespace mox {

// Asks the system to use large pages for the `bytes` bytes at `memory`: filling them then takes one page fault for each
// 2 MiB instead of one for each 4 KiB. Blocks below 4 MiB stay as they are. Nothing fails if the system refuses.
void PreferLargePages(void* memory, std::size_t bytes) noexcept;

// Memory that is used from a page boundary on.
struct PagedBlock {
    void* allocation;  // what operator delete takes
    std::byte* begin;
    std::byte* end;
};

// Allocates a block of at least `bytes` bytes with large pages preferred. A block that fills most of one or two such
// pages, but might contain none where operator new puts it, begins with a page and has room up to the end of the last
// one. Throws std::bad_alloc.
PagedBlock AllocatePaged(std::size_t bytes);

}  // namespace mox

#endif
