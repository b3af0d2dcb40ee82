#include "bench/allocation_counter.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <dlfcn.h>
#include <malloc.h>

// The C library's own names for the functions that are replaced here.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier): the names are not ours
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
// NOLINTEND(bugprone-reserved-identifier)
}

namespace bench {
namespace {

// The program has one thread.
bool counting = false;
std::uint64_t allocations = 0;
std::int64_t bytes = 0;

void* Taken(void* block) {
    if (counting && block != nullptr) {
        ++allocations;
        bytes += static_cast<std::int64_t>(malloc_usable_size(block));
    }
    return block;
}

void Given(void* block) {
    if (counting && block != nullptr) bytes -= static_cast<std::int64_t>(malloc_usable_size(block));
}

void CountDuring(const std::function<void()>& work) {
    struct Switch {
        Switch() { counting = true; }
        ~Switch() { counting = false; }
    };
    allocations = 0;
    bytes = 0;
    const Switch on;
    work();
}

}  // namespace

std::uint64_t CountAllocationsOf(const std::function<void()>& work) {
    CountDuring(work);
    return allocations;
}

std::int64_t BytesRetainedBy(const std::function<void()>& work) {
    CountDuring(work);
    return bytes;
}

}  // namespace bench

extern "C" {

void* malloc(std::size_t size) noexcept {
    return bench::Taken(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return bench::Taken(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) noexcept {
    bench::Given(block);
    void* moved = __libc_realloc(block, size);
    // One that failed has left the old block alone.
    if (moved == nullptr && size != 0 && block != nullptr) bench::Taken(block);
    return bench::Taken(moved);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return bench::Taken(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return bench::Taken(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    void* taken = bench::Taken(__libc_memalign(alignment, size));
    if (taken == nullptr) return ENOMEM;
    *block = taken;
    return 0;
}

void free(void* block) noexcept {
    bench::Given(block);
    __libc_free(block);
}

}  // extern "C"
