// A keyed hash table of the children of one parent: from a name, the value of the attribute "name", to the first child
// of that name in document order, and from there to the others.
//
//   slots:  hash of the name -> the first child of that name, and whether it has others
//   links:  for each child whose name occurs more than once, the next of that name
//
// It answers as a scan of all children would, as long as it is notified of each child that is added, removed or
// renamed. The key of the hash is random, so that names with equal hashes cannot be prepared. The memory is the pool's.
// Nothing throws.
#ifndef MOX_XMLAPI_XML_NAME_INDEX_H
#define MOX_XMLAPI_XML_NAME_INDEX_H

#include <cstddef>
#include <cstdint>

#include "mox_xmlApi/platform/prefetch.h"
#include "mox_xmlApi/platform/random_key.h"
#include "mox_xmlApi/platform/speedup.h"
#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/name_hash.h"
#include "mox_xmlApi/xml/same_name_links.h"
#include "mox_xmlApi/xml/xml_names.h"
#include "mox_xmlApi/xml/xml_node.h"
#include "mox_xmlApi/xml/xml_pool.h"

namespace mox {

// The children that an index covers, or a look-up considers.
enum class NamedChildren : std::uint8_t {
    All,     // of any kind
    Tables,  // elements called "Table" alone
};

// The first attribute "name" of a node, or null.
inline const XmlAttribute* NameAttribute(const XmlNode& node) noexcept {
    return FindInAttributes(node, names::kName);
}

// Whether that attribute has the value `name`.
inline bool IsNamed(const XmlNode& child, WideView name) noexcept {
    const XmlAttribute* attribute = NameAttribute(child);
    return attribute != nullptr && SameText(attribute->value.View(), name);
}

// Whether the node is one of the children that are meant.
inline bool IsMeant(const XmlNode& node, NamedChildren which) noexcept {
    return which == NamedChildren::All ||
           (node.kind == XmlNodeKind::Element && SameText(node.name.View(), names::kTable));
}

// As the attachment of a list of children it also keeps their first one.
class NameIndex : public ChildListAttachment {
  public:
    // An index of the children of `parent`, attached to them. Null when there is no memory for it.
    static NameIndex* Make(XmlPool& pool, XmlNode& parent, NamedChildren which) noexcept;
    // Detaches it and gives its memory back.
    static void Destroy(XmlPool& pool, XmlNode& parent) noexcept;

    NamedChildren Which() const noexcept { return which_; }

    // The first child of that name, or null.
    XmlNode* First(WideView name) const noexcept;
    // The same, for a child that is about to be removed: Remove then need not search for it.
    XmlNode* FirstToRemove(WideView name) noexcept {
        found_ = Find(HashOf(name), name, nullptr);
        return found_->child;
    }
    // The next child of the same name after one that these or After gave, or null.
    XmlNode* After(const XmlNode& child) const noexcept { return links_.After(child); }

    // Takes in a child that has come or was named. False when it cannot: there is no memory, or other children have
    // that name and which of them comes first would take a scan. The index is of no use then.
    bool Insert(XmlPool& pool, XmlNode& child) noexcept;
    // Takes out a child, before it goes or its name does.
    void Remove(const XmlNode& child) noexcept;

  private:
    struct Slot {
        XmlNode* child = nullptr;
        std::uint32_t hash : 31 = 0;
        std::uint32_t hasDuplicate : 1 = 0;
        std::int32_t textLine = 0;  // distance of the child's text from origin_, in cache lines
    };
    enum class Order : std::uint8_t { First, Last, Unknown };

    NameIndex(Slot* slots, std::size_t size, NamedChildren which) noexcept
        : slots_(slots), found_(slots), size_(size), key_(ProcessHashKey()), which_(which) {}

    static std::size_t SizeFor(std::size_t names) noexcept;
    static Slot* AllocateSlots(XmlPool& pool, std::size_t size) noexcept;
    static Order OrderOf(const XmlNode& child) noexcept;

    const XmlAttribute* CoveredName(const XmlNode& child) const noexcept;
    std::uint32_t HashOf(WideView name) const noexcept;
    Slot* Find(std::uint32_t hash, WideView name, const XmlNode* likely) const noexcept;
    bool Add(XmlPool& pool, XmlNode& child, WideView name, Order order) noexcept;
    bool Reserve(XmlPool& pool) noexcept;
    void Erase(Slot* slot) noexcept;
    void SetChild(Slot& slot, XmlNode& child) noexcept;
    void PrefetchText(const Slot& slot) const noexcept;

    Slot* slots_;
    Slot* found_;                // by FirstToRemove; otherwise any slot
    std::size_t size_;           // a power of two
    std::size_t used_ = 0;       // one for each name
    std::uintptr_t origin_ = 0;  // where the text of the first child that was taken in lies
    HashKey key_;
    SameNameLinks links_;
    NamedChildren which_;
};

// Look-ups are inline: reads of keys consist of little else.

inline std::uint32_t NameIndex::HashOf(WideView name) const noexcept {
    return static_cast<std::uint32_t>(HashName(key_, name) >> 33);
}

// The slot of the name, or the free one where the search for it ends. `likely`, if it is not null, is a child of that
// name: where it is the first one, nothing is compared.
inline NameIndex::Slot* NameIndex::Find(std::uint32_t hash, WideView name,
                                        const XmlNode* likely) const noexcept {
    for (std::size_t place = hash & (size_ - 1);; place = (place + 1) & (size_ - 1)) {
        Slot& slot = slots_[place];
        if (slot.child == likely || slot.child == nullptr) return &slot;
        if (slot.hash != hash) continue;
        if (likely == nullptr) PrefetchText(slot);
        if (SameText(NameAttribute(*slot.child)->value.View(), name)) return &slot;
    }
}

inline XmlNode* NameIndex::First(WideView name) const noexcept {
    return Find(HashOf(name), name, nullptr)->child;
}

// Prefetches the text that the child was loaded from, while the child is fetched: in a large document neither is in a
// cache, and the child has the exact address of the text.
inline void NameIndex::PrefetchText(const Slot& slot) const noexcept {
    constexpr int kLines = 3;
    if constexpr (Has(Speedup::TextPrefetch)) {
        PrefetchMemory(origin_ + static_cast<std::uintptr_t>(std::int64_t{slot.textLine} * kCacheLine),
                       kLines);
    }
}

}  // namespace mox

#endif
