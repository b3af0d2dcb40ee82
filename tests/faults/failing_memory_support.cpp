#include "tests/faults/failing_memory_support.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(_WIN32)
#include "tests/faults/import_table_support.h"
#endif

namespace faults {
namespace {

std::atomic<std::int64_t> liveBlocks{0};
std::atomic<bool> isArmed{false};
std::uint64_t firstToFail = 0;
Failing howToFail = Failing::Once;
std::uint64_t asked = 0;
std::uint64_t injected = 0;

// Whether the allocation that is asked for has to fail.
bool Fails() noexcept {
    if (!isArmed) return false;
    ++asked;
    const bool fails = howToFail == Failing::Once ? asked == firstToFail : asked >= firstToFail;
    if (fails) ++injected;
    return fails;
}

void* Counted(void* block) noexcept {
    if (block != nullptr) ++liveBlocks;
    return block;
}

void Uncount(const void* block) noexcept {
    if (block != nullptr) --liveBlocks;
}

#if defined(_WIN32)

void* (*realMalloc)(std::size_t) = nullptr;
void* (*realCalloc)(std::size_t, std::size_t) = nullptr;
void* (*realRealloc)(void*, std::size_t) = nullptr;
void (*realFree)(void*) = nullptr;

void* Malloc(std::size_t size) {
    return Fails() ? nullptr : Counted(realMalloc(size));
}

void* Calloc(std::size_t count, std::size_t size) {
    return Fails() ? nullptr : Counted(realCalloc(count, size));
}

void* Realloc(void* block, std::size_t size) {
    if (Fails()) return nullptr;
    void* moved = realRealloc(block, size);
    if (block == nullptr) return Counted(moved);
    if (size == 0) Uncount(block);
    return moved;
}

void Free(void* block) {
    Uncount(block);
    realFree(block);
}

// Before the first test, so that what is counted when it comes is counted when it goes.
[[maybe_unused]] const bool isInstalled = [] {
    ReplaceImports(Modules::All, "free", &Free, realFree);
    ReplaceImports(Modules::All, "realloc", &Realloc, realRealloc);
    ReplaceImports(Modules::All, "calloc", &Calloc, realCalloc);
    ReplaceImports(Modules::All, "malloc", &Malloc, realMalloc);
    return true;
}();

#else

void* Allocate(std::size_t size, std::size_t alignment) noexcept {
    if (Fails()) return nullptr;
    if (alignment <= alignof(std::max_align_t)) return Counted(std::malloc(size == 0 ? 1 : size));
    return Counted(std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment));
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment) {
    void* block = Allocate(size, alignment);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void Release(void* block) noexcept {
    Uncount(block);
    std::free(block);
}

#endif

}  // namespace

std::int64_t LiveBlocks() {
    return liveBlocks;
}

namespace {

// The first exception of a thread allocates memory that later ones use again. Where that fails, some runtimes end the
// program instead of throwing.
void ThrowAndCatch() {
    try {
        throw std::bad_alloc();
    } catch (const std::bad_alloc&) {
        return;
    }
}

}  // namespace

FailingMemory::FailingMemory(std::uint64_t first, Failing how) {
    ThrowAndCatch();
    firstToFail = first;
    howToFail = how;
    asked = 0;
    injected = 0;
    isArmed = true;
}

void FailingMemory::Stop() {
    isArmed = false;
}

std::uint64_t FailingMemory::Asked() {
    return asked;
}

std::uint64_t FailingMemory::Injected() {
    return injected;
}

}  // namespace faults

#if !defined(_WIN32)

void* operator new(std::size_t size) {
    return faults::AllocateOrThrow(size, 1);
}
void* operator new[](std::size_t size) {
    return faults::AllocateOrThrow(size, 1);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return faults::AllocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return faults::AllocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return faults::Allocate(size, 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return faults::Allocate(size, 1);
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return faults::Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return faults::Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* block) noexcept {
    faults::Release(block);
}
void operator delete[](void* block) noexcept {
    faults::Release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    faults::Release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    faults::Release(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    faults::Release(block);
}
void operator delete[](void* block, std::align_val_t) noexcept {
    faults::Release(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    faults::Release(block);
}
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept {
    faults::Release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    faults::Release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    faults::Release(block);
}
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    faults::Release(block);
}
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    faults::Release(block);
}

#endif
