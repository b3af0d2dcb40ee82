// The memory of one document: nodes, lists and texts come from here and come back when they are removed.
//
//   slab:   [ used ............ | next_ ..... free ..... end_ ]
//           the first one is small, the others up to 64 KiB, or larger where Reserve was told what is to come
//   free_:  one list of returned blocks for each size class; a block is reused for its own class only
//   large:  blocks above kLargestSmall, each from the system, chained so that one can go back alone
//
// A pool is dropped as a whole: its slabs and large blocks are released without a look at what they hold, so
// whatever lives in it must need no destructor.
#ifndef MOX_XMLAPI_XML_XML_POOL_H
#define MOX_XMLAPI_XML_XML_POOL_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

#include "mox_xmlApi/platform/poison.h"

namespace mox {

class XmlPool {
  public:
    // Makes an empty pool. It lies inside its own first slab: a small document costs one allocation.
    // Throws std::bad_alloc.
    static XmlPool* Create();

    // Releases the pool and everything that was ever taken from it.
    static void Destroy(XmlPool* pool) noexcept;

    XmlPool(const XmlPool&) = delete;
    XmlPool& operator=(const XmlPool&) = delete;

    // A block of at least `bytes` bytes, aligned for pointers. Throws std::bad_alloc and changes nothing
    // then.
    void* Allocate(std::size_t bytes) {
        if (bytes > kLargestSmall) return AllocateLarge(bytes);
        const std::size_t sizeClass = ClassOf(bytes);
        if (void* returned = TakeReturned(sizeClass); returned != nullptr) return returned;
        const std::size_t size = SizeOf(sizeClass);
        if (static_cast<std::size_t>(end_ - next_) < size) AddSlab(size);
        std::byte* block = next_;
        next_ += size;
        UnpoisonMemory(block, size);
        return block;
    }

    // Takes a block back; `bytes` is what Allocate was asked for. Null is fine.
    void Free(void* block, std::size_t bytes) noexcept {
        if (block == nullptr) return;
        if (bytes > kLargestSmall) return FreeLarge(block);
        KeepForReuse(block, ClassOf(bytes));
    }

    // For an object whose size is known only once it has been written. ReserveScratch returns kScratchSize bytes to
    // write it to, which stay free. CommitScratch turns the first `used` of them, at most kScratchSize, into a block as
    // Allocate returns it, and returns that block: usually it lies where it was written, else it is a copy. No other
    // function of the pool may be called between the two; a scratch that is never committed needs no clean-up.
    // ReserveScratch throws std::bad_alloc and changes nothing then.
    void* ReserveScratch() {
        if (static_cast<std::size_t>(end_ - next_) < kScratchSize) AddSlab(kScratchSize);
        UnpoisonMemory(next_, kScratchSize);
        return next_;
    }
    void* CommitScratch(std::size_t used) noexcept {
        const std::size_t sizeClass = ClassOf(used);
        void* block = TakeReturned(sizeClass);
        if (block != nullptr) {
            std::memcpy(block, next_, used);
            PoisonMemory(next_, kScratchSize);
            return block;
        }
        block = next_;
        next_ += SizeOf(sizeClass);
        PoisonMemory(next_, kScratchSize - SizeOf(sizeClass));
        return block;
    }

    // A new object of a type that needs no destructor.
    template <class T, class... Arguments>
    T* New(Arguments&&... arguments) {
        static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= kAlignment);
        return new (Allocate(sizeof(T))) T{std::forward<Arguments>(arguments)...};
    }

    // Takes an object back that New gave.
    template <class T>
    void Delete(T* object) noexcept {
        Free(object, sizeof(T));
    }

    // Makes room for small blocks of `bytes` bytes together, in one piece: a load knows roughly what it is
    // going to need. Throws std::bad_alloc and changes nothing then.
    void Reserve(std::size_t bytes);

    // Allocate for what can be done without: null when there is no memory.
    void* TryAllocate(std::size_t bytes) noexcept;

    // How many bytes a block has that was asked for with `bytes`: callers may use them all.
    static std::size_t BlockSize(std::size_t bytes) noexcept {
        return bytes > kLargestSmall ? bytes : SizeOf(ClassOf(bytes));
    }

    // How many bytes the pool has taken from the system.
    std::size_t BytesHeld() const noexcept { return bytesHeld_; }

    static constexpr std::size_t kAlignment = 8;
    static constexpr std::size_t kLargestSmall = 4096;
    static constexpr std::size_t kFirstSlab = 16 * 1024;
    static constexpr std::size_t kLargestSlab = 64 * 1024;
    static constexpr std::size_t kScratchSize = 384;

  private:
    struct FreeBlock {
        FreeBlock* next;
    };
    struct Slab {
        Slab* next;
    };
    struct LargeBlock {
        LargeBlock* next;
        LargeBlock* previous;
        std::size_t bytes;
        std::size_t padding;  // what follows is aligned for vector instructions
    };

    // Classes of every multiple of 8 up to 256, then four to each doubling up to kLargestSmall.
    static constexpr std::size_t kFineLimit = 256;
    static constexpr std::size_t kFineClasses = kFineLimit / kAlignment;
    static constexpr std::size_t kClasses = kFineClasses + 4 * std::size_t{4};

    static std::size_t ClassOf(std::size_t bytes) noexcept {
        if (bytes <= kFineLimit) return bytes == 0 ? 0 : (bytes - 1) / kAlignment;
        const auto doubling = static_cast<std::size_t>(std::bit_width(bytes - 1)) - 1;  // of kFineLimit: 8
        const std::size_t quarter = ((bytes - 1) >> (doubling - 2)) & 3;
        return kFineClasses + (doubling - 8) * 4 + quarter;
    }

    static std::size_t SizeOf(std::size_t sizeClass) noexcept {
        if (sizeClass < kFineClasses) return (sizeClass + 1) * kAlignment;
        const std::size_t doubling = (sizeClass - kFineClasses) / 4 + 8;
        const std::size_t quarter = (sizeClass - kFineClasses) % 4;
        return (std::size_t{1} << doubling) + ((quarter + 1) << (doubling - 2));
    }

    XmlPool(std::byte* next, std::byte* end) noexcept : next_(next), end_(end) {}
    ~XmlPool() = default;

    // A block that was given back; null when there is none of that class.
    void* TakeReturned(std::size_t sizeClass) noexcept {
        FreeBlock* block = free_[sizeClass];
        if (block == nullptr) return nullptr;
        UnpoisonMemory(block, SizeOf(sizeClass));
        free_[sizeClass] = block->next;
        return block;
    }

    void KeepForReuse(void* block, std::size_t sizeClass) noexcept {
        auto* freed = static_cast<FreeBlock*>(block);
        freed->next = free_[sizeClass];
        free_[sizeClass] = freed;
        PoisonMemory(block, SizeOf(sizeClass));
    }

    void AddSlab(std::size_t atLeast);
    void StartSlab(std::size_t size);
    void KeepRestOfSlab() noexcept;
    void* AllocateLarge(std::size_t bytes);
    void FreeLarge(void* memory) noexcept;

    std::byte* next_;
    std::byte* end_;
    Slab* slabs_ = nullptr;  // without the first, which holds the pool itself
    LargeBlock* large_ = nullptr;
    std::size_t nextSlabSize_ = 2 * kFirstSlab;
    std::size_t bytesHeld_ = kFirstSlab;
    std::array<FreeBlock*, kClasses> free_{};
};

}  // namespace mox

#endif
