#include "mox_xmlApi/xml/child_index.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>

#include "mox_xmlApi/platform/prefetch.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

// Lists shorter than this are scanned always.
constexpr std::size_t kFewChildren = 16;
// An index is made when scans have looked at the children of a parent as many times over.
constexpr std::size_t kScansPerIndex = 12;
constexpr std::uint32_t kHashBits = (1U << 31) - 1;
// Names that share a place beyond this many were chosen to: such a list is scanned.
constexpr std::size_t kLongestProbe = 64;

// Roughly where the markup before a name in the loaded text begins.
std::uintptr_t MarkupBefore(WideView name) noexcept {
    return reinterpret_cast<std::uintptr_t>(name.data()) - 16 * sizeof(wchar16);
}

const XmlAttribute* NameOf(const XmlNode& node) noexcept {
    for (const XmlAttribute& attribute : node.attributes) {
        if (SameText(attribute.name.View(), names::kName)) return &attribute;
    }
    return nullptr;
}

bool IsCalled(const XmlNode& node, WideView name) noexcept {
    const XmlAttribute* attribute = NameOf(node);
    return attribute != nullptr && SameText(attribute->value.View(), name);
}

std::uint32_t HashOf(WideView name) noexcept {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15U;
    std::uint64_t hash = name.size();
    for (; name.size() >= 4; name.remove_prefix(4)) {
        std::uint64_t units = 0;
        std::memcpy(&units, name.data(), sizeof units);
        hash = std::rotl((hash ^ units) * kMultiplier, 29);
    }
    for (const wchar16 unit : name)
        hash = std::rotl((hash ^ unit) * kMultiplier, 29);
    hash *= kMultiplier;
    const auto upper = static_cast<std::uint32_t>(hash >> 33);
    return upper < 2 ? upper + 2 : upper;  // never 0 or kRemoved
}

// Adds to the account of `parent` that a scan has looked at so many of its children.
void CountScan(XmlNode& parent, std::uint64_t looked) noexcept {
    constexpr std::uint32_t kMost = (1U << 31) - 1;
    const std::uint64_t scanned = std::min<std::uint64_t>(parent.scanned + looked, kMost);
    parent.scanned = static_cast<std::uint32_t>(scanned) & kMost;
}

XmlNode* Scan(XmlNode& parent, WideView name) noexcept {
    for (XmlNode* child : parent.children) {
        if (!IsCalled(*child, name)) continue;
        CountScan(parent, static_cast<std::uint64_t>(child->index) + 1);
        return child;
    }
    CountScan(parent, parent.children.Size());
    return nullptr;
}

bool HasPaidForIndex(const XmlNode& parent) noexcept {
    constexpr std::size_t kMost = (std::size_t{1} << 31) - 1;
    return parent.scanned >= std::min(parent.children.Size() * kScansPerIndex, kMost);
}

}  // namespace

XmlNode* ChildIndex::Find(XmlPool& pool, XmlNode& parent, WideView name) noexcept {
    const ChildIndex* index = Ready(pool, parent);
    if (index == nullptr) return Scan(parent, name);
    const Slot* slot = index->LookUp(name);
    return slot == nullptr ? nullptr : slot->child;
}

bool ChildIndex::FindSole(XmlPool& pool, XmlNode& parent, WideView name, XmlNode*& child) noexcept {
    const ChildIndex* index = Ready(pool, parent);
    if (index == nullptr) {
        CountScan(parent, parent.children.Size());
        return false;
    }
    const Slot* slot = index->LookUp(name);
    if (slot != nullptr && slot->hasLater) return false;
    child = slot == nullptr ? nullptr : slot->child;
    return true;
}

// The index of `parent`, covering all its children; null when they are to be scanned.
ChildIndex* ChildIndex::Ready(XmlPool& pool, XmlNode& parent) noexcept {
    ChildIndex* index = parent.children.Attached();
    if (index == nullptr) {
        if (parent.children.Size() < kFewChildren || !HasPaidForIndex(parent)) return nullptr;
        return Make(pool, parent);
    }
    if (index->renames_ != pool.Renames()) {
        GiveUp(pool, parent);
        return nullptr;
    }
    if (index->Cover(parent) || (index->Grow(pool, parent.children.Size()) && index->Cover(parent)))
        return index;
    GiveUp(pool, parent);
    return nullptr;
}

std::size_t ChildIndex::SizeFor(std::size_t children) noexcept {
    return std::bit_ceil(children * 2 + kFewChildren);
}

ChildIndex::Slot* ChildIndex::AllocateSlots(XmlPool& pool, std::size_t size) noexcept {
    auto* slots = static_cast<Slot*>(pool.TryAllocate(size * sizeof(Slot)));
    if (slots != nullptr) std::uninitialized_fill_n(slots, size, Slot());
    return slots;
}

// Gives the slots the room that so many children need. The children are not looked at: no two slots have one name.
// False when there is no memory, no need of more room, or when the names defeat the index.
bool ChildIndex::Grow(XmlPool& pool, std::size_t children) noexcept {
    const std::size_t size = SizeFor(children);
    if (size <= size_ && HasRoom()) return false;
    Slot* slots = AllocateSlots(pool, size);
    if (slots == nullptr) return false;
    ChildIndex larger(slots, size, renames_);
    for (const Slot* slot = slots_; slot != slots_ + size_; ++slot) {
        if (slot->child == nullptr || larger.Put(*slot)) continue;
        pool.Free(slots, size * sizeof(Slot));
        return false;
    }
    pool.Free(slots_, size_ * sizeof(Slot));
    slots_ = larger.slots_;
    size_ = larger.size_;
    used_ = larger.used_;
    return true;
}

// Puts a slot where its hash belongs. False when too many others have that place.
bool ChildIndex::Put(const Slot& slot) noexcept {
    std::size_t place = slot.hash & (size_ - 1);
    for (std::size_t probe = 0; probe < kLongestProbe; ++probe, place = (place + 1) & (size_ - 1)) {
        if (slots_[place].hash != 0) continue;
        slots_[place] = slot;
        ++used_;
        return true;
    }
    return false;
}

// Null when there is no memory, or when the names defeat the index; scans begin to pay for another one then.
ChildIndex* ChildIndex::Make(XmlPool& pool, XmlNode& parent) noexcept {
    parent.scanned = 0;
    const std::size_t size = SizeFor(parent.children.Size());
    Slot* slots = AllocateSlots(pool, size);
    auto* memory = pool.TryAllocate(sizeof(ChildIndex));
    if (slots == nullptr || memory == nullptr) {
        pool.Free(slots, size * sizeof(Slot));
        pool.Free(memory, sizeof(ChildIndex));
        return nullptr;
    }
    auto* index = new (memory) ChildIndex(slots, size, pool.Renames());
    parent.children.Attach(index);
    if (index->Cover(parent)) return index;
    GiveUp(pool, parent);
    return nullptr;
}

// Enters the children that were appended since the last look-up. False when the index is too small for them,
// or when their names defeat it.
bool ChildIndex::Cover(const XmlNode& parent) noexcept {
    for (; covered_ < parent.children.Size(); ++covered_) {
        XmlNode* child = parent.children.begin()[covered_];
        child->isCovered = 1;
        if (!Enter(child)) return false;
    }
    return true;
}

bool ChildIndex::Enter(XmlNode* child) noexcept {
    const XmlAttribute* name = NameOf(*child);
    if (name == nullptr) return true;
    if (!HasRoom()) return false;
    if (origin_ == 0) origin_ = MarkupBefore(name->value.View());
    const std::uint32_t hash = HashOf(name->value.View());
    Slot* removed = nullptr;
    std::size_t place = hash & (size_ - 1);
    for (std::size_t probe = 0; probe < kLongestProbe; ++probe, place = (place + 1) & (size_ - 1)) {
        Slot& slot = slots_[place];
        if (slot.hash == 0) {
            if (removed == nullptr) ++used_;
            (removed == nullptr ? slot : *removed) = SlotFor(child, hash, name->value.View());
            return true;
        }
        if (slot.hash == kRemoved) {
            if (removed == nullptr) removed = &slot;
        } else if (slot.hash == hash && IsCalled(*slot.child, name->value.View())) {
            slot.hasLater = true;
            return true;
        }
    }
    if (removed == nullptr) return false;
    *removed = SlotFor(child, hash, name->value.View());
    return true;
}

ChildIndex::Slot ChildIndex::SlotFor(XmlNode* child, std::uint32_t hash, WideView name) const noexcept {
    const auto distance = static_cast<std::int64_t>(MarkupBefore(name) - origin_);
    return {child, hash & kHashBits, false, static_cast<std::int32_t>(distance / kCacheLine)};
}

// Has the child and the text that it was loaded from fetched side by side. In a large document neither is in a cache,
// and where the text lies would show only when the child is there.
void ChildIndex::Prefetch(const Slot& slot) const noexcept {
    constexpr int kTextLines = 3;
    constexpr int kNodeLines = 5;  // attributes and the node of the value mostly lie behind it
    PrefetchMemory(origin_ + static_cast<std::uintptr_t>(std::int64_t{slot.place} * kCacheLine), kTextLines);
    PrefetchMemory(reinterpret_cast<std::uintptr_t>(slot.child), kNodeLines);
}

const ChildIndex::Slot* ChildIndex::LookUp(WideView name) const noexcept {
    const std::uint32_t hash = HashOf(name);
    std::size_t place = hash & (size_ - 1);
    for (std::size_t probe = 0; probe < kLongestProbe; ++probe, place = (place + 1) & (size_ - 1)) {
        const Slot& slot = slots_[place];
        if (slot.hash == 0) return nullptr;
        if (slot.hash != hash) continue;
        Prefetch(slot);
        if (IsCalled(*slot.child, name)) return &slot;
    }
    return nullptr;
}

ChildIndex::Slot* ChildIndex::SlotOf(const XmlNode& child) noexcept {
    const XmlAttribute* name = NameOf(child);
    if (name == nullptr) return nullptr;
    std::size_t place = HashOf(name->value.View()) & (size_ - 1);
    for (std::size_t probe = 0; probe < kLongestProbe; ++probe, place = (place + 1) & (size_ - 1)) {
        if (slots_[place].child == &child) return &slots_[place];
    }
    return nullptr;
}

void ChildIndex::BeforeInsert(XmlPool& pool, XmlNode& parent, std::size_t position) noexcept {
    const ChildIndex* index = parent.children.Attached();
    if (index != nullptr && position < index->covered_) GiveUp(pool, parent);
}

void ChildIndex::BeforeRemove(XmlPool& pool, XmlNode& parent, const XmlNode& child) noexcept {
    ChildIndex* index = parent.children.Attached();
    if (index == nullptr || static_cast<std::size_t>(child.index) >= index->covered_) return;
    if (index->renames_ != pool.Renames()) return GiveUp(pool, parent);
    if (Slot* slot = index->SlotOf(child); slot != nullptr) {
        if (slot->hasLater) return GiveUp(pool, parent);
        *slot = {nullptr, kRemoved, false, 0};
    }
    --index->covered_;
}

void ChildIndex::BeforeRename(XmlPool& pool, const XmlNode& child) noexcept {
    if (child.isCovered != 0) pool.CountRename();
}

void ChildIndex::GiveUp(XmlPool& pool, XmlNode& parent) noexcept {
    ChildIndex* index = parent.children.Attached();
    if (index == nullptr) return;
    parent.children.Attach(nullptr);
    pool.Free(index->slots_, index->size_ * sizeof(Slot));
    pool.Delete(index);
}

}  // namespace mox
