// Chains of children that share a name, beside the tree: for each of them the one before and the one after.
//
//   a hash table:  child -> { previous, next }      previous of the first is the last, next of the last is null
//
// Only names that occur more than once have entries. The table goes by the address of a child, so that any one can be
// taken out of a long chain without a walk.
#ifndef MOX_XMLAPI_XML_SAME_NAME_LINKS_H
#define MOX_XMLAPI_XML_SAME_NAME_LINKS_H

#include <cstddef>
#include <cstdint>

#include "mox_xmlApi/xml/xml_node.h"
#include "mox_xmlApi/xml/xml_pool.h"

namespace mox {

class SameNameLinks {
  public:
    // The child after `child`, which need not be in a chain; null for the last one.
    XmlNode* After(const XmlNode& child) const noexcept;

    // Makes room for two more children. False when there is no memory for it; nothing has changed then.
    bool Reserve(XmlPool& pool) noexcept;

    // Each needs room. `first` heads a chain or is still the only one of its name.
    void AddLast(XmlNode& first, XmlNode& child) noexcept;
    void AddFirst(XmlNode& first, XmlNode& child) noexcept;

    // Takes a child out of the chain that `first` heads. Returns the first one now; `isChain` becomes false when that
    // is the only one left, and is in no chain any more.
    XmlNode* Remove(XmlNode& first, const XmlNode& child, bool& isChain) noexcept;

    // Gives the memory back; all chains are gone then.
    void Release(XmlPool& pool) noexcept;

  private:
    struct Link {
        const XmlNode* child = nullptr;
        XmlNode* previous = nullptr;
        XmlNode* next = nullptr;
    };

    std::size_t PlaceOf(const XmlNode* child) const noexcept;
    std::size_t Find(const XmlNode* child) const noexcept;
    Link& LinkOf(const XmlNode* child) const noexcept { return links_[Find(child)]; }
    void Put(const Link& link) noexcept;
    void Begin(XmlNode& first) noexcept;
    void Erase(const XmlNode* child) noexcept;

    Link* links_ = nullptr;
    std::size_t size_ = 0;  // a power of two, or 0
    std::size_t used_ = 0;
};

}  // namespace mox

#endif
