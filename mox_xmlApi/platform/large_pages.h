// Large memory pages for large blocks, where the system supports them.
#ifndef MOX_XMLAPI_PLATFORM_LARGE_PAGES_H
#define MOX_XMLAPI_PLATFORM_LARGE_PAGES_H

#include <cstddef>

namespace mox {

// Asks the system to back the block with large pages: filling it then costs one page fault per 2 MiB instead of one
// per 4 KiB. Only a hint: small blocks are left alone, and nothing fails when the system declines.
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
