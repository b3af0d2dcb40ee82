#include "mox_xmlApi/xml/name_index.h"

#include <bit>
#include <memory>
#include <new>

#include "mox_xmlApi/platform/prefetch.h"

namespace mox {
namespace {

// Roughly where the markup before a name in the loaded text begins.
std::uintptr_t MarkupBefore(WideView name) noexcept {
    return reinterpret_cast<std::uintptr_t>(name.data()) - 16 * sizeof(wchar16);
}

}  // namespace

std::size_t NameIndex::SizeFor(std::size_t names) noexcept {
    constexpr std::size_t kMinSize = 16;
    return std::bit_ceil(names * 2 + kMinSize);
}

NameIndex::Slot* NameIndex::AllocateSlots(XmlPool& pool, std::size_t size) noexcept {
    auto* slots = static_cast<Slot*>(pool.TryAllocate(size * sizeof(Slot)));
    if (slots != nullptr) std::uninitialized_fill_n(slots, size, Slot());
    return slots;
}

NameIndex* NameIndex::Make(XmlPool& pool, XmlNode& parent, NamedChildren which) noexcept {
    const std::size_t size = SizeFor(parent.children.Size());
    Slot* slots = AllocateSlots(pool, size);
    void* memory = pool.TryAllocate(sizeof(NameIndex));
    if (slots == nullptr || memory == nullptr) {
        pool.Free(slots, size * sizeof(Slot));
        pool.Free(memory, sizeof(NameIndex));
        return nullptr;
    }
    auto* index = new (memory) NameIndex(slots, size, which);
    parent.children.Attach(index);
    for (XmlNode* child : parent.children) {
        const XmlAttribute* name = index->CoveredName(*child);
        if (name == nullptr || index->Add(pool, *child, name->value.View(), Order::Last)) continue;
        Destroy(pool, parent);
        return nullptr;
    }
    return index;
}

void NameIndex::Destroy(XmlPool& pool, XmlNode& parent) noexcept {
    auto* index = static_cast<NameIndex*>(parent.children.Attached());
    parent.children.Attach(nullptr);
    index->links_.Release(pool);
    pool.Free(index->slots_, index->size_ * sizeof(Slot));
    pool.Delete(index);
}

// The name under which the index has the child, or null.
const XmlAttribute* NameIndex::CoveredName(const XmlNode& child) const noexcept {
    return IsMeant(child, which_) ? NameAttribute(child) : nullptr;
}

// Makes room for one more name. The children are not examined: no two slots have the same name.
bool NameIndex::Reserve(XmlPool& pool) noexcept {
    if (used_ + used_ / 2 < size_) return true;
    const std::size_t size = SizeFor(used_);
    Slot* slots = AllocateSlots(pool, size);
    if (slots == nullptr) return false;
    for (const Slot* slot = slots_; slot != slots_ + size_; ++slot) {
        if (slot->child == nullptr) continue;
        std::size_t place = slot->hash & (size - 1);
        while (slots[place].child != nullptr)
            place = (place + 1) & (size - 1);
        slots[place] = *slot;
    }
    pool.Free(slots_, size_ * sizeof(Slot));
    slots_ = slots;
    found_ = slots;
    size_ = size;
    return true;
}

// Whether a child comes before or after all its siblings.
NameIndex::Order NameIndex::OrderOf(const XmlNode& child) noexcept {
    if (child.next == nullptr) return Order::Last;
    return child.parent->children.First() == &child ? Order::First : Order::Unknown;
}

bool NameIndex::Insert(XmlPool& pool, XmlNode& child) noexcept {
    const XmlAttribute* name = CoveredName(child);
    return name == nullptr || Add(pool, child, name->value.View(), OrderOf(child));
}

bool NameIndex::Add(XmlPool& pool, XmlNode& child, WideView name, Order order) noexcept {
    if (!Reserve(pool)) return false;
    const std::uint32_t hash = HashOf(name);
    Slot& slot = *Find(hash, name, nullptr);
    if (slot.child == nullptr) {
        slot.hash = hash & 0x7FFFFFFF;
        SetChild(slot, child);
        ++used_;
        return true;
    }
    if (order == Order::Unknown || !links_.Reserve(pool)) return false;
    slot.hasDuplicate = 1;
    if (order == Order::Last) {
        links_.AddLast(*slot.child, child);
    } else {
        links_.AddFirst(*slot.child, child);
        SetChild(slot, child);
    }
    return true;
}

void NameIndex::Remove(const XmlNode& child) noexcept {
    Slot* slot = found_;
    if (slot->child != &child) {
        const XmlAttribute* name = CoveredName(child);
        if (name == nullptr) return;
        slot = Find(HashOf(name->value.View()), name->value.View(), &child);
    }
    if (slot->hasDuplicate == 0) return Erase(slot);
    bool hasDuplicate = false;
    SetChild(*slot, *links_.Remove(*slot->child, child, hasDuplicate));
    slot->hasDuplicate = hasDuplicate ? 1 : 0;
}

// Slots after the free one move up, so that no search ends there too early.
void NameIndex::Erase(Slot* slot) noexcept {
    const std::size_t mask = size_ - 1;
    auto hole = static_cast<std::size_t>(slot - slots_);
    for (std::size_t place = (hole + 1) & mask; slots_[place].child != nullptr; place = (place + 1) & mask) {
        const std::size_t distance = (place - slots_[place].hash) & mask;
        if (distance < ((place - hole) & mask)) continue;
        slots_[hole] = slots_[place];
        hole = place;
    }
    slots_[hole] = Slot();
    --used_;
}

void NameIndex::SetChild(Slot& slot, XmlNode& child) noexcept {
    const std::uintptr_t text = MarkupBefore(NameAttribute(child)->value.View());
    if (origin_ == 0) origin_ = text;
    slot.child = &child;
    slot.textLine = static_cast<std::int32_t>(static_cast<std::int64_t>(text - origin_) / kCacheLine);
}

}  // namespace mox
