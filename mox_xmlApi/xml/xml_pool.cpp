#include "mox_xmlApi/xml/xml_pool.h"

#include <algorithm>
#include <functional>
#include <limits>

#include "mox_xmlApi/platform/large_pages.h"
#include "mox_xmlApi/xml/address_sorter.h"

namespace mox {

XmlPool* XmlPool::Create() {
    static_assert(sizeof(XmlPool) % kAlignment == 0 && sizeof(XmlPool) < kFirstSlab / 2);
    auto* memory = static_cast<std::byte*>(::operator new(kFirstSlab));
    auto* pool = new (memory) XmlPool(memory + sizeof(XmlPool), memory + kFirstSlab);
    PoisonMemory(pool->next_, kFirstSlab - sizeof(XmlPool));
    return pool;
}

void XmlPool::Destroy(XmlPool* pool) noexcept {
    if (pool == nullptr) return;
    for (LargeBlock* block = pool->large_; block != nullptr;) {
        LargeBlock* next = block->next;
        ::operator delete(block);
        block = next;
    }
    for (Slab* slab = pool->slabs_; slab != nullptr;) {
        Slab* next = slab->next;
        ::operator delete(slab->allocation);
        slab = next;
    }
    pool->~XmlPool();
    ::operator delete(pool);
}

void* XmlPool::TryAllocate(std::size_t bytes) noexcept {
    try {
        return Allocate(bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* XmlPool::AllocateWithRoom(std::size_t bytes, std::size_t room) {
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max() / 4;
    if (bytes > kMost || room > kMost) throw std::bad_alloc();
    const std::size_t size = bytes > kLargestSmall ? LargeSize(bytes) : BlockSize(bytes);
    if (size + room > static_cast<std::size_t>(end_ - next_)) StartSlab(size + room);
    if (bytes <= kLargestSmall) return Allocate(bytes);
    std::byte* block = std::exchange(next_, next_ + size);
    UnpoisonMemory(block, size);
    return new (block) LargeBlock{nullptr, nullptr, size, true} + 1;
}

// ---- Blocks above kLargestTiny

void* XmlPool::AllocateLarger(std::size_t bytes) {
    if (bytes > kLargestSmall) return AllocateLarge(bytes);
    const std::size_t sizeClass = ClassOf(bytes);
    if (void* block = Reuse(sizeClass, bytes); block != nullptr) return block;
    const std::size_t size = SizeOf(sizeClass);
    if (static_cast<std::size_t>(end_ - next_) < size) StartRegion(size);
    end_ -= size;
    UnpoisonMemory(end_, size);
    return end_;
}

void XmlPool::FreeLarger(void* block, std::size_t bytes) noexcept {
    if (bytes > kLargestSmall) return FreeLarge(block);
    freed_ += static_cast<std::ptrdiff_t>(bytes);
    AddFreeBlock(block, ClassOf(bytes));
}

void* XmlPool::AllocateLarge(std::size_t bytes) {
    if (bytes > std::numeric_limits<std::size_t>::max() / 2) throw std::bad_alloc();
    const std::size_t size = LargeSize(bytes);
    std::byte* memory = TakeFromRuns(size);
    if (memory == nullptr && IsMergingDue()) {
        MergeNeighbours();
        memory = TakeFromRuns(size);
    }
    if (memory != nullptr) return new (memory) LargeBlock{nullptr, nullptr, size, true} + 1;
    memory = AsBytes(::operator new(size));
    PreferLargePages(memory, size);
    auto* block = new (memory) LargeBlock{large_, nullptr, size, false};
    if (large_ != nullptr) large_->previous = block;
    large_ = block;
    bytesHeld_ += size;
    return block + 1;
}

void XmlPool::FreeLarge(void* memory) noexcept {
    LargeBlock* block = static_cast<LargeBlock*>(memory) - 1;
    if (block->isInSlab) {
        freed_ += static_cast<std::ptrdiff_t>(block->bytes);
        AddFree({AsBytes(block), AsBytes(block) + block->bytes});
        return;
    }
    if (block->next != nullptr) block->next->previous = block->previous;
    (block->previous != nullptr ? block->previous->next : large_) = block->next;
    bytesHeld_ -= block->bytes;
    ::operator delete(block);
}

// ---- The region

// Replaces the region by one of at least `atLeast` bytes, which must not be more than kLargestSmall. Throws
// std::bad_alloc and leaves the region as it is then.
void XmlPool::StartRegion(std::size_t atLeast) {
    freed_ = std::max(freed_, std::ptrdiff_t{0});
    if (StartRegionInBlock(atLeast)) return;
    if (IsMergingDue()) {
        MergeNeighbours();
        if (StartRegionInBlock(atLeast)) return;
    }
    if (StartRegionInRun()) return;
    StartSlab(nextSlabSize_);
    nextSlabSize_ = std::min(nextSlabSize_ * 2, kLargestSlab);
}

bool XmlPool::StartRegionInBlock(std::size_t atLeast) noexcept {
    for (std::size_t sizeClass = ClassOf(atLeast); sizeClass < kClasses; ++sizeClass) {
        if (void* block = TakeFreeBlock(sizeClass); block != nullptr) {
            UseRegion({AsBytes(block), AsBytes(block) + SizeOf(sizeClass)});
            return true;
        }
    }
    return false;
}

bool XmlPool::StartRegionInRun() noexcept {
    for (FreeRun*& runs : runs_) {
        if (runs == nullptr) continue;
        UseRegion(TakeRun(runs));
        return true;
    }
    return false;
}

void XmlPool::StartSlab(std::size_t regionBytes) {
    const PagedBlock memory = AllocatePaged(sizeof(Slab) + RoundUp(regionBytes));
    const auto size = static_cast<std::size_t>(memory.end - memory.begin);
    slabs_ = new (memory.begin) Slab{slabs_, memory.allocation, size};
    UseRegion(slabs_->Memory());
    bytesHeld_ += size;
}

void XmlPool::UseRegion(Piece piece) noexcept {
    FreeRegion();
    next_ = piece.begin;
    end_ = piece.end;
    PoisonMemory(piece.begin, piece.Size());
}

// What is left of the region is too small for the block at hand, but not for others.
void XmlPool::FreeRegion() noexcept {
    AddFree({next_, end_});
    next_ = end_;
}

// ---- Free memory

// Makes the piece one run or, when it is too small for that, a few blocks of the size classes.
void XmlPool::AddFree(Piece piece) noexcept {
    UnpoisonMemory(piece.begin, piece.Size());
    if (piece.Size() > kLargestSmall) {
        FreeRun*& runs = runs_[RunClassOf(piece.Size())];
        runs = new (piece.begin) FreeRun{runs, piece.Size()};
        PoisonMemory(runs + 1, piece.Size() - sizeof(FreeRun));
        return;
    }
    while (piece.Size() != 0) {
        std::size_t sizeClass = ClassOf(piece.Size());
        if (sizeClass != 0 && SizeOf(sizeClass) > piece.Size()) --sizeClass;
        AddFreeBlock(piece.begin, sizeClass);
        piece.begin += SizeOf(sizeClass);
    }
}

XmlPool::Piece XmlPool::TakeRun(FreeRun*& runs) noexcept {
    return std::exchange(runs, runs->next)->Whole();
}

// Memory for a large block; null when no run has room for it, or only one that is not the first of its list.
std::byte* XmlPool::TakeFromRuns(std::size_t bytes) noexcept {
    for (std::size_t runClass = RunClassOf(bytes); runClass < kRunClasses; ++runClass) {
        FreeRun*& runs = runs_[runClass];
        if (runs == nullptr || runs->bytes < bytes) continue;
        const Piece run = TakeRun(runs);
        AddFree({run.begin + bytes, run.end});
        UnpoisonMemory(run.begin, bytes);
        return run.begin;
    }
    return nullptr;
}

// ---- Merging

// All free memory, ordered by address. The smallest blocks have no room for their size and so have their own list.
struct XmlPool::FreeMemory {
    FreeBlock* smallest;
    FreeRun* larger;

    // The piece at the highest address; null pointers when there is no more.
    Piece TakeHighest() noexcept {
        if (larger != nullptr && (smallest == nullptr ||
                                  std::greater<>()(static_cast<void*>(larger), static_cast<void*>(smallest))))
            return TakeRun(larger);
        if (smallest == nullptr) return {nullptr, nullptr};
        std::byte* begin = AsBytes(std::exchange(smallest, smallest->next));
        return {begin, begin + kAlignment};
    }
};

XmlPool::FreeMemory XmlPool::TakeFreeMemory() noexcept {
    FreeRegion();
    AddressSorter<FreeBlock> smallest;
    while (void* block = TakeFreeBlock(0))
        smallest.Add(new (block) FreeBlock);
    AddressSorter<FreeRun> larger;
    for (std::size_t sizeClass = 1; sizeClass < kClasses; ++sizeClass) {
        while (void* block = TakeFreeBlock(sizeClass))
            larger.Add(new (block) FreeRun{nullptr, SizeOf(sizeClass)});
    }
    for (FreeRun*& runs : runs_) {
        while (runs != nullptr)
            larger.Add(std::exchange(runs, runs->next));
    }
    return {smallest.Finish(), larger.Finish()};
}

// Orders the slabs by address, the highest first. Returns how many bytes all have together.
std::size_t XmlPool::SortSlabs() noexcept {
    AddressSorter<Slab> sorter;
    std::size_t bytes = kFirstSlab;
    while (slabs_ != nullptr) {
        bytes += slabs_->bytes;
        sorter.Add(std::exchange(slabs_, slabs_->next));
    }
    slabs_ = sorter.Finish();
    return bytes;
}

// Makes free blocks and runs that touch one another one piece each. Slabs that are free as a whole, other than the
// first, go back to the system.
//
// The work depends on how many free blocks there are: a few for each piece that this call leaves, and those that are
// freed until the next call. `mergeAfter_` grows with both, so that over time each freed byte costs a fixed amount of
// work at most. The share of the used bytes keeps pools with few large blocks from merging again and again.
void XmlPool::MergeNeighbours() noexcept {
    constexpr std::size_t kUsedShare = 16;
    constexpr std::size_t kBytesPerPiece = 16;
    FreeMemory free = TakeFreeMemory();
    std::size_t usedBytes = SortSlabs();
    std::size_t pieces = 0;
    Slab** slab = &slabs_;
    for (Piece piece = free.TakeHighest(); piece.begin != nullptr;) {
        const Piece lower = free.TakeHighest();
        if (lower.end == piece.begin) {
            piece.begin = lower.begin;
            continue;
        }
        usedBytes -= piece.Size();
        while (*slab != nullptr &&
               std::greater<>()(static_cast<void*>(*slab), static_cast<void*>(piece.begin)))
            slab = &(*slab)->next;
        if (*slab != nullptr && (*slab)->Memory() == piece) {
            ReleaseSlab(*slab);
        } else {
            AddFree(piece);
            ++pieces;
        }
        piece = lower;
    }
    freed_ = 0;
    mergeAfter_ = static_cast<std::ptrdiff_t>(
        std::max({kMinFreedToMerge, usedBytes / kUsedShare, pieces * kBytesPerPiece}));
}

// `link` is the pointer to the slab in the list.
void XmlPool::ReleaseSlab(Slab*& link) noexcept {
    Slab* slab = std::exchange(link, link->next);
    bytesHeld_ -= slab->bytes;
    ::operator delete(slab->allocation);
}

}  // namespace mox
