// Memory at the very end of a page, with a page after it that must not be touched.
#ifndef MOX_XMLAPI_TESTS_UNIT_PAGE_END_H
#define MOX_XMLAPI_TESTS_UNIT_PAGE_END_H

#include <cstddef>
#include <cstring>
#include <new>
#include <string_view>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace mox::test {

// The last units of a page. Whoever reads or writes past them ends the test program.
template <class Unit>
class PageEnd {
  public:
    PageEnd() {
#if defined(_WIN32)
        memory_ = static_cast<std::byte*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS));
        if (memory_ == nullptr) throw std::bad_alloc();
        if (VirtualAlloc(memory_, kPage, MEM_COMMIT, PAGE_READWRITE) == nullptr) throw std::bad_alloc();
#else
        void* memory = mmap(nullptr, 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        memory_ = static_cast<std::byte*>(memory);
        if (mprotect(memory_, kPage, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
#endif
    }
    ~PageEnd() {
#if defined(_WIN32)
        VirtualFree(memory_, 0, MEM_RELEASE);
#else
        munmap(memory_, 2 * kPage);
#endif
    }
    PageEnd(const PageEnd&) = delete;
    PageEnd& operator=(const PageEnd&) = delete;

    // The last `count` units, at most 64 KiB.
    Unit* Last(std::size_t count) const {
        return static_cast<Unit*>(static_cast<void*>(memory_ + kPage)) - count;
    }
    // A copy of `text` there.
    Unit* Holding(std::basic_string_view<Unit> text) const {
        Unit* units = Last(text.size());
        std::memcpy(units, text.data(), text.size() * sizeof(Unit));
        return units;
    }

  private:
    static constexpr std::size_t kPage = std::size_t{64} * 1024;  // a multiple of every system's

    std::byte* memory_;
};

}  // namespace mox::test

#endif
