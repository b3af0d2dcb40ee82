// The nodes of the tree, and how they are linked.
//
//   parent --first--> child <--> child <--> child       next:      null after the last child
//                       |                     ^         previous:  of the first child, the last one
//                       +------previous-------+         parent:    of each child, its parent
//
// An element keeps its character data in `value`; there are no text nodes and no namespaces. A node that is in no
// list has no parent. Children are added and removed in constant time, whatever their number; their positions are
// counted where somebody wants to know them.
#ifndef MOX_XMLAPI_XML_XML_NODE_H
#define MOX_XMLAPI_XML_XML_NODE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <stdexcept>

#include "mox_xmlApi/xml/xml_array.h"
#include "mox_xmlApi/xml/xml_text.h"

namespace mox {

// The W3C numbering of node types, as far as this tree has them. Attributes are no nodes here: what a node of
// that kind would add, its kind and its index, follows from where it lies.
enum class XmlNodeKind : std::int32_t {
    Element = 1,
    ProcessingInstruction = 7,  // the XML declaration alone
    Comment = 8,
    Document = 9,
};

struct XmlAttribute {
    XmlText name{};
    XmlText value{};
};

struct XmlNode;

// What a list of children can be given, an index of them; from then on it keeps the first child there.
struct ChildListAttachment {
    XmlNode* first = nullptr;
};

// The children of a node, in order, to read. They are changed by the functions below XmlNode.
//
// A plain value of 12 bytes, as XmlText is; it refers to the children and does not own them. The iterators stay good
// while other children come and go.
class ChildList {
  public:
    class Iterator {
      public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = XmlNode*;
        using difference_type = std::ptrdiff_t;
        using pointer = XmlNode* const*;
        using reference = XmlNode*;

        Iterator() = default;
        Iterator(const ChildList* list, XmlNode* node) noexcept : list_(list), node_(node) {}

        XmlNode* operator*() const noexcept { return node_; }
        Iterator& operator++() noexcept;
        Iterator& operator--() noexcept;
        Iterator operator++(int) noexcept {
            const Iterator old = *this;
            ++*this;
            return old;
        }
        Iterator operator--(int) noexcept {
            const Iterator old = *this;
            --*this;
            return old;
        }
        friend bool operator==(const Iterator& a, const Iterator& b) noexcept { return a.node_ == b.node_; }
        friend bool operator!=(const Iterator& a, const Iterator& b) noexcept { return a.node_ != b.node_; }

      private:
        const ChildList* list_ = nullptr;
        XmlNode* node_ = nullptr;  // null at the end
    };

    static constexpr std::size_t kLargestSize = 0x7FFFFFFF;

    std::size_t Size() const noexcept { return size_; }
    bool IsEmpty() const noexcept { return size_ == 0; }
    Iterator begin() const noexcept { return {this, First()}; }
    Iterator end() const noexcept { return {this, nullptr}; }

    // Null for an empty list.
    XmlNode* First() const noexcept {
        return hasAttachment_ == 0 ? static_cast<XmlNode*>(Address()) : Attached()->first;
    }
    XmlNode* Last() const noexcept;

    // The child at `position`, which is walked to. Throws std::out_of_range beyond the end.
    XmlNode* At(std::size_t position) const;

    // Throws std::length_error when the list has as many children as it can: no more can be added.
    void CheckRoom() const {
        if (size_ == kLargestSize) throw std::length_error("vector<T> too long");
    }

    // What is attached to the list, or null.
    ChildListAttachment* Attached() const noexcept {
        return hasAttachment_ == 0 ? nullptr : static_cast<ChildListAttachment*>(Address());
    }
    // Attaches something, which must outlive its attachment, or with null takes away what there is.
    void Attach(ChildListAttachment* attachment) noexcept {
        XmlNode* const first = First();
        hasAttachment_ = attachment != nullptr ? 1 : 0;
        SetAddress(attachment);
        SetFirst(first);
    }

  private:
    friend void AppendChild(XmlNode& parent, XmlNode& child) noexcept;
    friend void InsertChildBefore(XmlNode& child, XmlNode& next) noexcept;
    friend void UnlinkChild(XmlNode& child) noexcept;

    void* Address() const noexcept {
        void* address = nullptr;
        std::memcpy(&address, address_.data(), sizeof address);
        return address;
    }
    void SetAddress(void* address) noexcept { std::memcpy(address_.data(), &address, sizeof address); }
    void SetFirst(XmlNode* first) noexcept {
        if (hasAttachment_ == 0) {
            SetAddress(first);
        } else {
            Attached()->first = first;
        }
    }

    std::uint32_t size_ : 31 = 0;
    std::uint32_t hasAttachment_ : 1 = 0;
    // Of the first child, or of what is attached.
    alignas(std::uint32_t) std::array<std::byte, sizeof(void*)> address_{};
};

struct XmlNode {
    XmlNodeKind kind : 8;
    std::uint32_t scanCost : 24 = 0;  // kept for ChildLookup
    XmlText name{};
    XmlText value{};
    ChildList children{};
    XmlArray<XmlAttribute> attributes{};
    XmlNode* next = nullptr;
    XmlNode* previous = nullptr;
    XmlNode* parent = nullptr;
};

static_assert(sizeof(void*) != 8 || sizeof(XmlNode) == 80, "a large document is nodes for the most part");

// The first attribute of a node of that name, or null.
inline XmlAttribute* FindInAttributes(const XmlNode& node, WideView name) noexcept {
    for (XmlAttribute& attribute : node.attributes) {
        if (SameText(attribute.name.View(), name)) return &attribute;
    }
    return nullptr;
}

// Links `child`, which is in no list, to `parent` as its last child. There must be room.
inline void AppendChild(XmlNode& parent, XmlNode& child) noexcept {
    child.parent = &parent;
    ++parent.children.size_;
    XmlNode* const first = parent.children.First();
    if (first == nullptr) {
        child.previous = &child;
        parent.children.SetFirst(&child);
        return;
    }
    XmlNode* const last = first->previous;
    last->next = &child;
    child.previous = last;
    first->previous = &child;
}

// Links `child`, which is in no list, before `next`, which is in one. There must be room.
inline void InsertChildBefore(XmlNode& child, XmlNode& next) noexcept {
    XmlNode& parent = *next.parent;
    XmlNode* const previous = next.previous;
    child.parent = &parent;
    child.previous = previous;
    child.next = &next;
    next.previous = &child;
    if (parent.children.First() == &next) {
        parent.children.SetFirst(&child);
    } else {
        previous->next = &child;
    }
    ++parent.children.size_;
}

// Takes `child` out of the list that it is in.
inline void UnlinkChild(XmlNode& child) noexcept {
    ChildList& siblings = child.parent->children;
    XmlNode* const first = siblings.First();
    (child.next != nullptr ? child.next : first)->previous = child.previous;
    if (&child == first) {
        siblings.SetFirst(child.next);
    } else {
        child.previous->next = child.next;
    }
    --siblings.size_;
    child.parent = nullptr;
    child.next = nullptr;
    child.previous = nullptr;
}

// How many siblings come before the node; -1 for one that is in no list. Counts them.
inline std::int64_t PositionOf(const XmlNode& node) noexcept {
    if (node.parent == nullptr) return -1;
    std::int64_t position = 0;
    for (const XmlNode* child = node.parent->children.First(); child != &node; child = child->next)
        ++position;
    return position;
}

inline ChildList::Iterator& ChildList::Iterator::operator++() noexcept {
    node_ = node_->next;
    return *this;
}

inline ChildList::Iterator& ChildList::Iterator::operator--() noexcept {
    node_ = node_ == nullptr ? list_->Last() : node_->previous;
    return *this;
}

inline XmlNode* ChildList::Last() const noexcept {
    XmlNode* const first = First();
    return first == nullptr ? nullptr : first->previous;
}

inline XmlNode* ChildList::At(std::size_t position) const {
    if (position >= size_) throw std::out_of_range("invalid vector<T> subscript");
    XmlNode* child = First();
    for (; position != 0; --position)
        child = child->next;
    return child;
}

}  // namespace mox

#endif
