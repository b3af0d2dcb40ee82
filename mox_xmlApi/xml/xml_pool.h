// The memory of one document: nodes, lists and texts come from here and come back when they are removed.
//
//   slab:    [ used ... | free | used ... | next_ ... region ... end_ | used ... | free | used ... ]
//            the first one is small, the others up to 64 KiB, or larger where AllocateWithRoom was told what is to come
//   region:  the free memory that blocks are cut from: blocks up to kLargestTiny from its beginning, larger ones from
//            its end, so that blocks of similar size become neighbours
//   free_:   free blocks, one list for each size class. They serve requests of their class at once
//   runs_:   free memory in pieces that are larger than every class
//   large_:  blocks above kLargestSmall that came from the system one by one and go back to it. A large block lies in
//            a run instead where one has room, and in the region when it comes with room
//
// When the region is used up, the smallest free block that is large enough becomes the next one. When there is none
// and enough was freed since the last time, free neighbours are merged, and slabs that are free as a whole go back to
// the system. Runs are next, and only then another slab comes from the system.
//
// A pool is dropped as a whole: its slabs and large blocks are released without a look at what they hold, so
// whatever lives in it must need no destructor.
#ifndef MOX_XMLAPI_XML_XML_POOL_H
#define MOX_XMLAPI_XML_XML_POOL_H

#include <algorithm>
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
        if (bytes > kLargestTiny) return AllocateLarger(bytes);
        const std::size_t sizeClass = ClassOf(bytes);
        if (void* block = Reuse(sizeClass, bytes); block != nullptr) return block;
        const std::size_t size = SizeOf(sizeClass);
        if (static_cast<std::size_t>(end_ - next_) < size) StartRegion(size);
        std::byte* block = next_;
        next_ += size;
        UnpoisonMemory(block, size);
        return block;
    }

    // Takes a block back; `bytes` is what Allocate was asked for. Null is fine.
    void Free(void* block, std::size_t bytes) noexcept {
        if (block == nullptr) return;
        if (bytes > kLargestTiny) return FreeLarger(block, bytes);
        freed_ += static_cast<std::ptrdiff_t>(bytes);
        AddFreeBlock(block, ClassOf(bytes));
    }

    // For an object whose size is known only once it has been written. ReserveScratch returns kScratchSize bytes to
    // write it to, which stay free. CommitScratch turns the first `used` of them, at most kScratchSize, into a block as
    // Allocate returns it, and returns that block: usually it lies where it was written, else it is a copy. No other
    // function of the pool may be called between the two; a scratch that is never committed needs no clean-up.
    // ReserveScratch throws std::bad_alloc and changes nothing then.
    void* ReserveScratch() {
        if (static_cast<std::size_t>(end_ - next_) < kScratchSize) StartRegion(kScratchSize);
        UnpoisonMemory(next_, kScratchSize);
        return next_;
    }
    void* CommitScratch(std::size_t used) noexcept {
        const std::size_t sizeClass = ClassOf(used);
        void* block = Reuse(sizeClass, used);
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

    // Allocate, and room for further small blocks of `room` bytes together: a load knows roughly what it is going to
    // need. A large block lies in one piece of memory with the room. Free takes it back as any other block. Throws
    // std::bad_alloc and changes nothing then.
    void* AllocateWithRoom(std::size_t bytes, std::size_t room);

    // To be called before objects that stay for long are made one by one. When more than half of the pool has been
    // freed, merges free neighbours first: the new objects lie close together then, instead of one here and one there
    // between free blocks that could not be merged any more.
    void MergeIfMostlyFree() noexcept {
        if (freed_ > static_cast<std::ptrdiff_t>(bytesHeld_ / 2)) MergeNeighbours();
    }

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
    static constexpr std::size_t kFirstSlab = 2 * 1024;
    static constexpr std::size_t kLargestSlab = 64 * 1024;
    static constexpr std::size_t kScratchSize = 384;

  private:
    struct Piece {
        std::byte* begin;
        std::byte* end;

        std::size_t Size() const noexcept { return static_cast<std::size_t>(end - begin); }
        friend bool operator==(const Piece&, const Piece&) = default;
    };
    struct FreeBlock {
        FreeBlock* next;
    };
    struct FreeRun {
        FreeRun* next;
        std::size_t bytes;

        Piece Whole() noexcept { return {AsBytes(this), AsBytes(this) + bytes}; }
    };
    struct Slab {
        Slab* next;
        void* allocation;   // the memory from the system that it lies in
        std::size_t bytes;  // with this head

        Piece Memory() noexcept { return {AsBytes(this + 1), AsBytes(this) + bytes}; }
    };
    // From the system, what follows the head is aligned for vector instructions.
    struct LargeBlock {
        LargeBlock* next;
        LargeBlock* previous;
        std::size_t bytes;  // with this head
        bool isInSlab;      // and so not in the list
    };
    struct FreeMemory;

    // A large block of `bytes` bytes with its head.
    static constexpr std::size_t LargeSize(std::size_t bytes) noexcept {
        return sizeof(LargeBlock) + RoundUp(bytes);
    }

    static std::byte* AsBytes(void* memory) noexcept { return static_cast<std::byte*>(memory); }
    static constexpr std::size_t RoundUp(std::size_t bytes) noexcept {
        return (bytes + kAlignment - 1) / kAlignment * kAlignment;
    }

    // Classes of every multiple of 8 up to 256, then four to each doubling up to kLargestSmall.
    static constexpr std::size_t kLargestTiny = 256;
    static constexpr std::size_t kFineClasses = kLargestTiny / kAlignment;
    static constexpr std::size_t kClasses = kFineClasses + 4 * std::size_t{4};

    static std::size_t ClassOf(std::size_t bytes) noexcept {
        if (bytes <= kLargestTiny) return (bytes - (bytes != 0 ? 1 : 0)) / kAlignment;
        const auto doubling = static_cast<std::size_t>(std::bit_width(bytes - 1)) - 1;  // of kLargestTiny: 8
        const std::size_t quarter = ((bytes - 1) >> (doubling - 2)) & 3;
        return kFineClasses + (doubling - 8) * 4 + quarter;
    }

    static std::size_t SizeOf(std::size_t sizeClass) noexcept {
        if (sizeClass < kFineClasses) return (sizeClass + 1) * kAlignment;
        const std::size_t doubling = (sizeClass - kFineClasses) / 4 + 8;
        const std::size_t quarter = (sizeClass - kFineClasses) % 4;
        return (std::size_t{1} << doubling) + ((quarter + 1) << (doubling - 2));
    }

    // Runs have lists for those below 8 KiB, 16 KiB and so on; the last has those of 64 KiB and more.
    static constexpr std::size_t kRunClasses = 5;

    // How many bytes must have been freed before a merge, at least.
    static constexpr std::size_t kMinFreedToMerge = 16 * 1024;

    static std::size_t RunClassOf(std::size_t bytes) noexcept {
        const auto doubling = static_cast<std::size_t>(std::bit_width(bytes / kLargestSmall)) - 1;
        return std::min(doubling, kRunClasses - 1);
    }

    XmlPool(std::byte* next, std::byte* end) noexcept : next_(next), end_(end) {}
    ~XmlPool() = default;

    // A free block of the class; null when there is none.
    void* TakeFreeBlock(std::size_t sizeClass) noexcept {
        FreeBlock* block = free_[sizeClass];
        if (block == nullptr) return nullptr;
        UnpoisonMemory(block, SizeOf(sizeClass));
        free_[sizeClass] = block->next;
        return block;
    }

    void AddFreeBlock(void* block, std::size_t sizeClass) noexcept {
        auto* freed = static_cast<FreeBlock*>(block);
        freed->next = free_[sizeClass];
        free_[sizeClass] = freed;
        PoisonMemory(block, SizeOf(sizeClass));
    }

    // A free block of the class for a request of `bytes` bytes; null when there is none.
    void* Reuse(std::size_t sizeClass, std::size_t bytes) noexcept {
        void* block = TakeFreeBlock(sizeClass);
        if (block != nullptr) freed_ -= static_cast<std::ptrdiff_t>(bytes);
        return block;
    }

    void* AllocateLarger(std::size_t bytes);
    void FreeLarger(void* block, std::size_t bytes) noexcept;
    void* AllocateLarge(std::size_t bytes);
    void FreeLarge(void* memory) noexcept;

    void StartRegion(std::size_t atLeast);
    bool StartRegionInBlock(std::size_t atLeast) noexcept;
    bool StartRegionInRun() noexcept;
    void StartSlab(std::size_t regionBytes);
    void UseRegion(Piece piece) noexcept;
    void FreeRegion() noexcept;

    void AddFree(Piece piece) noexcept;
    static Piece TakeRun(FreeRun*& runs) noexcept;
    std::byte* TakeFromRuns(std::size_t bytes) noexcept;

    bool IsMergingDue() const noexcept { return freed_ >= mergeAfter_; }
    void MergeNeighbours() noexcept;
    FreeMemory TakeFreeMemory() noexcept;
    std::size_t SortSlabs() noexcept;
    void ReleaseSlab(Slab*& link) noexcept;

    std::byte* next_;
    std::byte* end_;
    Slab* slabs_ = nullptr;  // without the first, which holds the pool itself
    LargeBlock* large_ = nullptr;
    std::size_t nextSlabSize_ = 2 * kFirstSlab;
    std::size_t bytesHeld_ = kFirstSlab;
    std::ptrdiff_t freed_ = 0;  // bytes since the last merging, less those that serve their own class again
    std::ptrdiff_t mergeAfter_ = kMinFreedToMerge;
    std::array<FreeBlock*, kClasses> free_{};
    std::array<FreeRun*, kRunClasses> runs_{};
};

}  // namespace mox

#endif
