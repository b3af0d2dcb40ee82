// The children of a node: a growable array of pointers that keeps every item's `index` equal to its position.
//
// A plain value like the array beneath it; Release gives its storage back and leaves the items alone.
#ifndef MOX_XMLAPI_XML_XML_LIST_H
#define MOX_XMLAPI_XML_XML_LIST_H

#include <cstdint>

#include "mox_xmlApi/xml/xml_array.h"

namespace mox {

template <class Item>
class XmlList {
  public:
    std::size_t Size() const noexcept { return items_.Size(); }
    bool IsEmpty() const noexcept { return items_.IsEmpty(); }
    Item* const* begin() const noexcept { return items_.begin(); }
    Item* const* end() const noexcept { return items_.end(); }

    // The item at `position`. Throws std::out_of_range beyond the end.
    Item* At(std::size_t position) const { return items_.At(position); }

    // Whether `item` is in this list; its own index says where it would have to be.
    bool Contains(const Item* item) const noexcept {
        return item->index >= 0 && static_cast<std::uint64_t>(item->index) < Size() &&
               items_.begin()[item->index] == item;
    }

    // Room, as XmlArray gives it.
    void Reserve(XmlPool& pool, std::size_t more) { items_.Reserve(pool, more); }

    // Takes `count` items as the whole list, which must be empty, in storage of just that size. Their indices
    // are their positions already. Throws as XmlArray does; the list stays empty then.
    void Take(XmlPool& pool, Item* const* items, std::size_t count) { items_.Take(pool, items, count); }

    // Adds `item` as the last one. Room must have been reserved.
    void Append(Item* item) noexcept {
        item->index = static_cast<std::int64_t>(Size());
        items_.Append(item);
    }

    // Adds `item` at `position`, at most Size(). Room must have been reserved.
    void Insert(std::size_t position, Item* item) noexcept {
        items_.Insert(position, item);
        Renumber(position);
    }

    // Takes the item at `position`, which must be there, out of the list; its index becomes -1.
    void RemoveAt(std::size_t position) noexcept {
        items_.begin()[position]->index = -1;
        items_.RemoveAt(position);
        Renumber(position);
    }

    // Takes the last item out of the list and returns it with index -1; null for an empty list.
    Item* RemoveLast() noexcept {
        if (IsEmpty()) return nullptr;
        Item* last = items_.end()[-1];
        items_.Truncate(Size() - 1);
        last->index = -1;
        return last;
    }

    // Keeps the items for which `keep(item)` is true, in order, in one pass; `keep` disposes of the others.
    // Returns how many went.
    template <class Keep>
    std::size_t KeepIf(Keep keep) {
        std::size_t kept = 0;
        for (Item* item : items_) {
            if (!keep(item)) continue;
            item->index = static_cast<std::int64_t>(kept);
            items_.begin()[kept++] = item;
        }
        const std::size_t removed = Size() - kept;
        items_.Truncate(kept);
        return removed;
    }

    // Gives the storage back and leaves the list empty.
    void Release(XmlPool& pool) noexcept { items_.Release(pool); }

  private:
    void Renumber(std::size_t from) noexcept {
        for (std::size_t i = from; i < Size(); ++i)
            items_.begin()[i]->index = static_cast<std::int64_t>(i);
    }

    XmlArray<Item*> items_;
};

}  // namespace mox

#endif
