// Finding a child by the value of its "name" attribute without looking at all the others.
//
// A parent with many children gets an index once look-ups have scanned its list often enough to pay for one:
//
//   children:  [ c0 c1 c2 ... covered | appended since, not yet entered ]
//   slots:     hash of the name -> the first covered child of that name, and whether there are later ones
//
// It answers exactly as the scan of the list would:
// - it covers a prefix of the list; what was appended since enters at the next look-up, so that a child
//   can be appended first and named afterwards;
// - a look-up compares the child's present name before it answers;
// - removing a covered child takes its slot out. When another child of that name may come after it, when a
//   child is inserted among the covered ones, or when the name of a covered child has changed, the index is given up,
//   and made anew when scans have paid for it again.
// Children and names change through XmlDocument alone, which gives the notices below. The memory is the
// pool's; when there is none, the list is scanned as before.
#ifndef MOX_XMLAPI_XML_CHILD_INDEX_H
#define MOX_XMLAPI_XML_CHILD_INDEX_H

#include <cstddef>
#include <cstdint>

#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_node.h"
#include "mox_xmlApi/xml/xml_pool.h"

namespace mox {

class ChildIndex {
  public:
    // The first child of `parent` whose "name" is `name`, which is not empty; null without one.
    static XmlNode* Find(XmlPool& pool, XmlNode& parent, WideView name) noexcept;

    // Whether the index can say that no more than one child of `parent` is called `name`; `child` is that one
    // then, or null. False also when there is no index, after what a look-up would have added to the account
    // of `parent`.
    static bool FindSole(XmlPool& pool, XmlNode& parent, WideView name, XmlNode*& child) noexcept;

    // Notices, each given before the change.
    static void BeforeInsert(XmlPool& pool, XmlNode& parent, std::size_t position) noexcept;
    static void BeforeRemove(XmlPool& pool, XmlNode& parent, const XmlNode& child) noexcept;
    static void BeforeRename(XmlPool& pool, const XmlNode& child) noexcept;
    // Gives the index of `parent` up: before many of its children go at once, and before it goes itself.
    static void GiveUp(XmlPool& pool, XmlNode& parent) noexcept;

  private:
    struct Slot {
        XmlNode* child = nullptr;  // null with a hash of kRemoved: passed over, used again by the next one
        std::uint32_t hash : 31 = 0;
        std::uint32_t hasLater : 1 = 0;
        std::int32_t place = 0;  // of the child's text: how many cache lines it lies behind origin_
    };
    static constexpr std::uint32_t kRemoved = 1;

    ChildIndex(Slot* slots, std::size_t size, std::uint64_t renames) noexcept
        : slots_(slots), size_(size), renames_(renames) {}

    static ChildIndex* Ready(XmlPool& pool, XmlNode& parent) noexcept;
    static ChildIndex* Make(XmlPool& pool, XmlNode& parent) noexcept;
    static std::size_t SizeFor(std::size_t children) noexcept;
    static Slot* AllocateSlots(XmlPool& pool, std::size_t size) noexcept;
    bool Grow(XmlPool& pool, std::size_t children) noexcept;
    bool Put(const Slot& slot) noexcept;
    bool HasRoom() const noexcept { return used_ + used_ / 2 < size_; }
    bool Cover(const XmlNode& parent) noexcept;
    bool Enter(XmlNode* child) noexcept;
    Slot SlotFor(XmlNode* child, std::uint32_t hash, WideView name) const noexcept;
    void Prefetch(const Slot& slot) const noexcept;
    const Slot* LookUp(WideView name) const noexcept;
    Slot* SlotOf(const XmlNode& child) noexcept;

    Slot* slots_;
    std::size_t size_;           // a power of two
    std::size_t used_ = 0;       // slots that are not free, removed ones included
    std::size_t covered_ = 0;    // children at the front of the list
    std::uint64_t renames_;      // the pool's count when the index was made
    std::uintptr_t origin_ = 0;  // where the text of the first child that was entered lies
};

}  // namespace mox

#endif
