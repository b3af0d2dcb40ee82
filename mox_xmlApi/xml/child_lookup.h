// Finding a child by its name, and the decision when a parent gets an index of the names of its children.
//
// Most lists are short, or are asked a few times and never again: they are scanned. Each scan is charged to the parent.
// When the scans have looked at the children often enough that making an index would have cost less, one is made, and
// what remains constant from then on is the time of a look-up. So a look-up never costs more than a constant factor of
// what the better of both ways would have cost.
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

    // The index of `parent`, made now when scans have paid for it; null when the children are to be scanned. Whoever
    // scans them says afterwards how many it has looked at.
    static const NameIndex* IndexOf(XmlPool& pool, XmlNode& parent, NamedChildren which) noexcept;
    static void ChargeScan(XmlNode& parent, std::size_t lookedAt) noexcept;

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
