#include "fuzz/work.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace mox::fuzz {
namespace {

// The least that any work may take, and how much for each unit. Both are several times the most that was seen.
constexpr std::uint64_t kWorkWithoutInput = 200000;
constexpr std::uint64_t kWorkPerUnit = 60;

std::uint64_t edges = 0;
std::uint64_t bytesMoved = 0;

}  // namespace

std::uint64_t WorkDone() noexcept {
    return edges + bytesMoved / 16;
}

void CheckWork(std::uint64_t work, std::uint64_t size, const char* what) {
    static const bool isShown = std::getenv("MOX_FUZZ_SHOW_WORK") != nullptr;
    if (isShown) {
        std::fprintf(stderr, "work: %llu for %llu: %s\n", static_cast<unsigned long long>(work),
                     static_cast<unsigned long long>(size), what);
    }
    if (work <= kWorkWithoutInput + kWorkPerUnit * size) return;
    std::fprintf(stderr, "expected: work in proportion to the input; %s took %llu for %llu\n", what,
                 static_cast<unsigned long long>(work), static_cast<unsigned long long>(size));
    std::fflush(stderr);
    std::abort();
}

}  // namespace mox::fuzz

#if defined(MOX_FUZZ_COUNTS_WORK)

// The linker leads calls of each name to the function with the prefix __wrap_, and calls with the prefix __real_ to the
// function itself (CMakeLists.txt). The compiler adds the calls of the first two to the library, those of __asan_* to
// all code.
extern "C" {

void* __real___asan_memcpy(void* to, const void* from, std::size_t size);
void* __real___asan_memmove(void* to, const void* from, std::size_t size);
void* __real___asan_memset(void* to, int byte, std::size_t size);
int __real_memcmp(const void* a, const void* b, std::size_t size);
int __real_bcmp(const void* a, const void* b, std::size_t size);
void* __real_memchr(const void* bytes, int byte, std::size_t size);

void __wrap___sanitizer_cov_trace_pc_guard(std::uint32_t* /*guard*/) {
    ++mox::fuzz::edges;
}

void __wrap___sanitizer_cov_trace_pc_guard_init(std::uint32_t* /*begin*/, std::uint32_t* /*end*/) {}

void* __wrap___asan_memcpy(void* to, const void* from, std::size_t size) {
    mox::fuzz::bytesMoved += size;
    return __real___asan_memcpy(to, from, size);
}

void* __wrap___asan_memmove(void* to, const void* from, std::size_t size) {
    mox::fuzz::bytesMoved += size;
    return __real___asan_memmove(to, from, size);
}

void* __wrap___asan_memset(void* to, int byte, std::size_t size) {
    mox::fuzz::bytesMoved += size;
    return __real___asan_memset(to, byte, size);
}

int __wrap_memcmp(const void* a, const void* b, std::size_t size) {
    mox::fuzz::bytesMoved += size;
    return __real_memcmp(a, b, size);
}

int __wrap_bcmp(const void* a, const void* b, std::size_t size) {
    mox::fuzz::bytesMoved += size;
    return __real_bcmp(a, b, size);
}

void* __wrap_memchr(const void* bytes, int byte, std::size_t size) {
    void* found = __real_memchr(bytes, byte, size);
    mox::fuzz::bytesMoved +=
        found == nullptr
            ? size
            : static_cast<std::size_t>(static_cast<const char*>(found) - static_cast<const char*>(bytes));
    return found;
}

}  // extern "C"

#endif
