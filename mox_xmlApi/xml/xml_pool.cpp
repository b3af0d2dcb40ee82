#include "mox_xmlApi/xml/xml_pool.h"

#include <algorithm>
#include <limits>

#include "mox_xmlApi/platform/large_pages.h"

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
        ::operator delete(slab);
        slab = next;
    }
    pool->~XmlPool();
    ::operator delete(pool);
}

void XmlPool::AddSlab(std::size_t atLeast) {
    StartSlab(std::max(nextSlabSize_, atLeast + sizeof(Slab)));
    nextSlabSize_ = std::min(nextSlabSize_ * 2, kLargestSlab);
}

void* XmlPool::TryAllocate(std::size_t bytes) noexcept {
    try {
        return Allocate(bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void XmlPool::Reserve(std::size_t bytes) {
    if (bytes <= static_cast<std::size_t>(end_ - next_)) return;
    if (bytes > std::numeric_limits<std::size_t>::max() / 2) throw std::bad_alloc();
    StartSlab(bytes + sizeof(Slab));
}

void XmlPool::StartSlab(std::size_t size) {
    size = (size + kAlignment - 1) / kAlignment * kAlignment;
    auto* memory = static_cast<std::byte*>(::operator new(size));
    PreferLargePages(memory, size);
    KeepRestOfSlab();
    slabs_ = new (memory) Slab{slabs_};
    next_ = memory + sizeof(Slab);
    end_ = memory + size;
    PoisonMemory(next_, size - sizeof(Slab));
    bytesHeld_ += size;
}

// What is left of a slab is too small for the block at hand, but not for others: it joins the free lists.
void XmlPool::KeepRestOfSlab() noexcept {
    while (static_cast<std::size_t>(end_ - next_) >= kAlignment) {
        const std::size_t rest = std::min(static_cast<std::size_t>(end_ - next_), kLargestSmall);
        std::size_t sizeClass = ClassOf(rest);
        if (sizeClass != 0 && SizeOf(sizeClass) > rest) --sizeClass;
        UnpoisonMemory(next_, SizeOf(sizeClass));
        KeepForReuse(next_, sizeClass);
        next_ += SizeOf(sizeClass);
    }
}

void* XmlPool::AllocateLarge(std::size_t bytes) {
    if (bytes > std::numeric_limits<std::size_t>::max() - sizeof(LargeBlock)) throw std::bad_alloc();
    void* memory = ::operator new(sizeof(LargeBlock) + bytes);
    PreferLargePages(memory, bytes);
    auto* block = new (memory) LargeBlock{large_, nullptr, bytes, 0};
    if (large_ != nullptr) large_->previous = block;
    large_ = block;
    bytesHeld_ += sizeof(LargeBlock) + bytes;
    return block + 1;
}

void XmlPool::FreeLarge(void* memory) noexcept {
    LargeBlock* block = static_cast<LargeBlock*>(memory) - 1;
    if (block->next != nullptr) block->next->previous = block->previous;
    (block->previous != nullptr ? block->previous->next : large_) = block->next;
    bytesHeld_ -= sizeof(LargeBlock) + block->bytes;
    ::operator delete(block);
}

}  // namespace mox
