#include "mox_xmlApi/xml/same_name_links.h"

#include <memory>

#include "mox_xmlApi/platform/multiply.h"

namespace mox {

// Where the search for a child begins.
std::size_t SameNameLinks::PlaceOf(const XmlNode* child) const noexcept {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(MultiplyAndFold(reinterpret_cast<std::uintptr_t>(child), kMultiplier)) &
           (size_ - 1);
}

// The place of the child, or the free one where the search for it ends.
std::size_t SameNameLinks::Find(const XmlNode* child) const noexcept {
    std::size_t place = PlaceOf(child);
    while (links_[place].child != nullptr && links_[place].child != child)
        place = (place + 1) & (size_ - 1);
    return place;
}

XmlNode* SameNameLinks::After(const XmlNode& child) const noexcept {
    return used_ == 0 ? nullptr : LinkOf(&child).next;
}

bool SameNameLinks::Reserve(XmlPool& pool) noexcept {
    constexpr std::size_t kMinSize = 16;
    if ((used_ + 2) * 3 / 2 <= size_) return true;
    const std::size_t size = size_ == 0 ? kMinSize : size_ * 2;
    auto* links = static_cast<Link*>(pool.TryAllocate(size * sizeof(Link)));
    if (links == nullptr) return false;
    std::uninitialized_fill_n(links, size, Link());
    const SameNameLinks old = *this;
    links_ = links;
    size_ = size;
    used_ = 0;
    for (const Link* link = old.links_; link != old.links_ + old.size_; ++link) {
        if (link->child != nullptr) Put(*link);
    }
    pool.Free(old.links_, old.size_ * sizeof(Link));
    return true;
}

void SameNameLinks::Put(const Link& link) noexcept {
    links_[Find(link.child)] = link;
    ++used_;
}

// Lets a child that was the only one of its name head a chain.
void SameNameLinks::Begin(XmlNode& first) noexcept {
    if (LinkOf(&first).child == nullptr) Put({&first, &first, nullptr});
}

void SameNameLinks::AddLast(XmlNode& first, XmlNode& child) noexcept {
    Begin(first);
    Link& link = LinkOf(&first);
    XmlNode* const last = link.previous;
    link.previous = &child;
    LinkOf(last).next = &child;
    Put({&child, last, nullptr});
}

void SameNameLinks::AddFirst(XmlNode& first, XmlNode& child) noexcept {
    Begin(first);
    Link& link = LinkOf(&first);
    XmlNode* const last = link.previous;
    link.previous = &child;
    Put({&child, last, &first});
}

XmlNode* SameNameLinks::Remove(XmlNode& first, const XmlNode& child, bool& isChain) noexcept {
    const Link removed = LinkOf(&child);
    XmlNode* const newFirst = &child == &first ? removed.next : &first;
    if (&child != &first) LinkOf(removed.previous).next = removed.next;
    LinkOf(removed.next != nullptr ? removed.next : newFirst).previous = removed.previous;
    Erase(&child);
    isChain = LinkOf(newFirst).next != nullptr;
    if (!isChain) Erase(newFirst);
    return newFirst;
}

// Links after the free one move up, so that no search ends there too early.
void SameNameLinks::Erase(const XmlNode* child) noexcept {
    const std::size_t mask = size_ - 1;
    std::size_t hole = Find(child);
    for (std::size_t place = (hole + 1) & mask; links_[place].child != nullptr; place = (place + 1) & mask) {
        const std::size_t distance = (place - PlaceOf(links_[place].child)) & mask;
        if (distance < ((place - hole) & mask)) continue;
        links_[hole] = links_[place];
        hole = place;
    }
    links_[hole] = Link();
    --used_;
}

void SameNameLinks::Release(XmlPool& pool) noexcept {
    pool.Free(links_, size_ * sizeof(Link));
    *this = SameNameLinks();
}

}  // namespace mox
