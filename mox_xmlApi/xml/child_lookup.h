// Finding a child by its name, and the decision when a parent gets an index of the names of its children.
//
// Most lists are short, or are asked a few times and never again: they are scanned. Each scan is charged to the parent.
// When the scans of a parent have cost as much as making an index, one is made, and look-ups take constant time from
// then on. So all look-ups together never cost more than a constant factor of the better of both ways.
//
// The index follows what is done to the children. What it cannot follow makes it invalid, and the scans after that pay
// for another one; so does a lack of memory, which never fails a call. Children and their names change through
// XmlDocument alone, which gives the notices below.
#ifndef MOX_XMLAPI_XML_CHILD_LOOKUP_H
#define MOX_XMLAPI_XML_CHILD_LOOKUP_H

#include <cstddef>

#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/name_index.h"
#include "mox_xmlApi/xml/xml_node.h"
#include "mox_xmlApi/xml/xml_pool.h"

namespace mox {

class ChildLookup {
  public:
    // The first child of `parent`, of those that are meant, whose name is `name`; null without one.
    static XmlNode* Find(XmlPool& pool, XmlNode& parent, NamedChildren which, WideView name) noexcept {
        const NameIndex* index = AttachedIndex(&parent);
        const bool isUsable = index != nullptr && index->Which() == which;
        return isUsable ? index->First(name) : FindWithoutIndex(pool, parent, which, name);
    }

    // The index of `parent`, made now when scans have paid for it; null if the children are to be scanned. The
    // caller reports to ChargeScan how many it has examined.
    static NameIndex* IndexOf(XmlPool& pool, XmlNode& parent, NamedChildren which) noexcept;
    static void ChargeScan(XmlNode& parent, std::size_t examined) noexcept;

    // Notices. After a child has come or got its name, and before it goes or loses its name.
    static void Entered(XmlPool& pool, XmlNode& child) noexcept;
    static void Leaves(const XmlNode& child) noexcept;
    // Before many of the children go at once, and before the parent itself goes.
    static void Invalidate(XmlPool& pool, XmlNode& parent) noexcept;

    // Gives both notices around a change of the attribute "name" of a node, also when the change throws.
    class Renaming {
      public:
        Renaming(XmlPool& pool, XmlNode& node) noexcept : pool_(pool), node_(node) { Leaves(node); }
        ~Renaming() { Entered(pool_, node_); }
        Renaming(const Renaming&) = delete;
        Renaming& operator=(const Renaming&) = delete;

      private:
        XmlPool& pool_;
        XmlNode& node_;
    };

  private:
    static NameIndex* AttachedIndex(const XmlNode* parent) noexcept {
        return parent == nullptr ? nullptr : static_cast<NameIndex*>(parent->children.Attached());
    }
    static XmlNode* FindWithoutIndex(XmlPool& pool, XmlNode& parent, NamedChildren which,
                                     WideView name) noexcept;
};

}  // namespace mox

#endif
