#include "mox_xmlApi/xml/child_lookup.h"

#include <algorithm>

namespace mox {
namespace {

// Lists shorter than this are always scanned.
constexpr std::size_t kFewChildren = 16;
// Making an index of some children takes about as long as scanning them so often.
constexpr std::size_t kScansPerIndex = 4;
constexpr std::size_t kLargestCost = (1U << 24) - 1;  // that fits into XmlNode

bool HavePaidForIndex(const XmlNode& parent) noexcept {
    const std::size_t count = parent.children.Size();
    return count >= kFewChildren && parent.scanCost >= std::min(count * kScansPerIndex, kLargestCost);
}

XmlNode* Scan(XmlNode& parent, NamedChildren which, WideView name) noexcept {
    std::size_t examined = 0;
    XmlNode* child = parent.children.First();
    for (; child != nullptr; child = child->next) {
        ++examined;
        if (IsNamed(*child, name) && IsMeant(*child, which)) break;
    }
    ChildLookup::ChargeScan(parent, examined);
    return child;
}

}  // namespace

XmlNode* ChildLookup::FindWithoutIndex(XmlPool& pool, XmlNode& parent, NamedChildren which,
                                       WideView name) noexcept {
    const NameIndex* index = IndexOf(pool, parent, which);
    return index == nullptr ? Scan(parent, which, name) : index->First(name);
}

NameIndex* ChildLookup::IndexOf(XmlPool& pool, XmlNode& parent, NamedChildren which) noexcept {
    NameIndex* index = AttachedIndex(&parent);
    if (index != nullptr && index->Which() == which) return index;
    if (!HavePaidForIndex(parent)) return nullptr;
    Invalidate(pool, parent);
    parent.scanCost = 0;
    return NameIndex::Make(pool, parent, which);
}

void ChildLookup::ChargeScan(XmlNode& parent, std::size_t examined) noexcept {
    parent.scanCost = std::min(parent.scanCost + examined, kLargestCost) & kLargestCost;
}

void ChildLookup::Entered(XmlPool& pool, XmlNode& child) noexcept {
    NameIndex* index = AttachedIndex(child.parent);
    if (index != nullptr && !index->Insert(pool, child)) Invalidate(pool, *child.parent);
}

void ChildLookup::Leaves(const XmlNode& child) noexcept {
    if (NameIndex* index = AttachedIndex(child.parent); index != nullptr) index->Remove(child);
}

void ChildLookup::Invalidate(XmlPool& pool, XmlNode& parent) noexcept {
    if (AttachedIndex(&parent) != nullptr) NameIndex::Destroy(pool, parent);
}

}  // namespace mox
