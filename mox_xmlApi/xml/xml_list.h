// The children of a node: a growable array of pointers that keeps every item's `index` equal to its position.
//
// A plain value of 16 bytes: copying it copies the reference. Release gives its storage back and leaves the
// items alone. Most parents have one child, which needs no storage:
//
//   room for one:   [ item | size | 0 ]
//   room for more:  [ items | size | capacity ]     items -> [ item 0 | item 1 | ... ]
//                                          in front of them: the attachment
#ifndef MOX_XMLAPI_XML_XML_LIST_H
#define MOX_XMLAPI_XML_XML_LIST_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "mox_xmlApi/xml/xml_pool.h"

namespace mox {

// `Attachment` is the type of what can be attached to a list; the list does not look at it.
template <class Item, class Attachment = void>
class XmlList {
  public:
    constexpr XmlList() noexcept : only_(nullptr) {}

    std::size_t Size() const noexcept { return size_; }
    bool IsEmpty() const noexcept { return size_ == 0; }
    Item* const* begin() const noexcept { return IsInline() ? &only_ : items_; }
    Item* const* end() const noexcept { return begin() + size_; }

    // The item at `position`. Throws std::out_of_range beyond the end.
    Item* At(std::size_t position) const {
        if (position >= size_) throw std::out_of_range("invalid vector<T> subscript");
        return begin()[position];
    }

    // Whether `item` is in this list; its own index says where it would have to be.
    bool Contains(const Item* item) const noexcept {
        return item->index >= 0 && static_cast<std::uint64_t>(item->index) < Size() &&
               begin()[item->index] == item;
    }

    // Makes room for `more` further items, so that as many Append and Insert calls cannot fail.
    // Throws std::bad_alloc or std::length_error; the list stays as it was then.
    void Reserve(XmlPool& pool, std::size_t more) {
        if (more <= Room() - size_) return;
        if (more > kLargestSize - size_) throw std::length_error("vector<T> too long");
        Move(pool, std::max(size_ + more, std::size_t{size_} + size_ / 2));
    }

    // Takes `count` items as the whole list, which must be empty, in storage of just that size. Their indices
    // are their positions already. Throws std::bad_alloc or std::length_error; the list stays empty then.
    void Take(XmlPool& pool, Item* const* items, std::size_t count) {
        if (count > kLargestSize) throw std::length_error("vector<T> too long");
        if (count > Room()) Move(pool, count);
        if (count > 2) {
            std::copy_n(items, count, Items());
        } else if (count != 0) {  // as most often: no call
            Items()[0] = items[0];
            Items()[count - 1] = items[count - 1];
        }
        size_ = static_cast<std::uint32_t>(count);
    }

    // Adds `item` as the last one. Room must have been reserved.
    void Append(Item* item) noexcept {
        item->index = static_cast<std::int64_t>(Size());
        Items()[size_++] = item;
    }

    // Adds `item` at `position`, at most Size(). Room must have been reserved.
    void Insert(std::size_t position, Item* item) noexcept {
        Item** items = Items();
        std::copy_backward(items + position, items + size_, items + size_ + 1);
        items[position] = item;
        ++size_;
        Renumber(position);
    }

    // Takes the item at `position`, which must be there, out of the list; its index becomes -1.
    void RemoveAt(std::size_t position) noexcept {
        Item** items = Items();
        items[position]->index = -1;
        std::copy(items + position + 1, items + size_, items + position);
        --size_;
        Renumber(position);
    }

    // Takes the last item out of the list and returns it with index -1; null for an empty list.
    Item* RemoveLast() noexcept {
        if (IsEmpty()) return nullptr;
        Item* last = PopLast();
        last->index = -1;
        return last;
    }

    // For a list that is being taken apart, and not empty. Puts another pointer into the last place and returns the
    // item that was there; the second gives the last place up and returns what it holds. Neither looks at an item.
    Item* ReplaceLast(Item* other) noexcept { return std::exchange(Items()[size_ - 1], other); }
    Item* PopLast() noexcept { return Items()[--size_]; }

    // Keeps the items for which `keep(item)` is true, in order, in one pass; `keep` disposes of the others.
    // Returns how many went.
    template <class Keep>
    std::size_t KeepIf(Keep keep) {
        Item** items = Items();
        std::size_t kept = 0;
        for (std::size_t i = 0; i < size_; ++i) {
            Item* item = items[i];
            if (!keep(item)) continue;
            item->index = static_cast<std::int64_t>(kept);
            items[kept++] = item;
        }
        const std::size_t removed = size_ - kept;
        size_ = static_cast<std::uint32_t>(kept);
        return removed;
    }

    // What is attached to the list, or null. Only a list that has storage, as one with two items has, can be
    // given something.
    Attachment* Attached() const noexcept { return IsInline() ? nullptr : *AttachmentOf(items_); }
    void Attach(Attachment* attachment) noexcept { *AttachmentOf(items_) = attachment; }

    // Gives the storage back and leaves the list empty.
    void Release(XmlPool& pool) noexcept {
        FreeStorage(pool);
        *this = XmlList();
    }

  private:
    static constexpr std::size_t kLargestSize = std::numeric_limits<std::uint32_t>::max() / 2;

    bool IsInline() const noexcept { return capacity_ == 0; }
    std::size_t Room() const noexcept { return IsInline() ? 1 : capacity_; }
    Item** Items() noexcept { return IsInline() ? &only_ : items_; }

    static Attachment** AttachmentOf(Item** items) noexcept {
        return static_cast<Attachment**>(static_cast<void*>(items - 1));
    }
    static constexpr std::size_t BytesFor(std::size_t capacity) noexcept {
        return (1 + capacity) * sizeof(Item*);
    }

    void Renumber(std::size_t from) noexcept {
        Item** items = Items();
        for (std::size_t i = from; i < size_; ++i)
            items[i]->index = static_cast<std::int64_t>(i);
    }

    void Move(XmlPool& pool, std::size_t wanted) {
        const std::size_t bytes = XmlPool::BlockSize(BytesFor(wanted));
        void* block = pool.Allocate(bytes);
        auto* items = static_cast<Item**>(block) + 1;
        new (block) Attachment*(Attached());
        std::copy_n(begin(), size_, items);
        FreeStorage(pool);
        items_ = items;
        capacity_ = static_cast<std::uint32_t>(bytes / sizeof(Item*) - 1);
    }

    void FreeStorage(XmlPool& pool) const noexcept {
        if (!IsInline()) pool.Free(AttachmentOf(items_), BytesFor(capacity_));
    }

    union {
        Item* only_;
        Item** items_;
    };
    std::uint32_t size_ = 0;
    std::uint32_t capacity_ = 0;  // 0: the only item there is room for lies in the list itself
};

}  // namespace mox

#endif
