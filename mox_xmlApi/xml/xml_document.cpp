#include "mox_xmlApi/xml/xml_document.h"

#include <algorithm>

#include "mox_xmlApi/xml/child_lookup.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

bool HasName(const XmlNode& node, WideView name) noexcept {
    return SameText(node.name.View(), name);
}

bool IsElement(const XmlNode& node) noexcept {
    return node.kind == XmlNodeKind::Element;
}

void ReleaseAttribute(XmlAttribute& attribute, XmlPool& pool) noexcept {
    attribute.name.Release(pool);
    attribute.value.Release(pool);
}

// The child after the position of `cursor`. That is usually a child of `parent`; for one of another parent, or of none,
// the number of siblings before it counts.
XmlNode* ChildAfter(const XmlNode& parent, const XmlNode* cursor) noexcept {
    if (cursor == nullptr) return parent.children.First();
    if (cursor->parent == &parent) return cursor->next;
    XmlNode* child = parent.children.First();
    for (std::int64_t position = PositionOf(*cursor); position >= 0 && child != nullptr; --position)
        child = child->next;
    return child;
}

template <class Qualifies>
XmlNode* NextElement(const XmlNode* parent, XmlNode*& cursor, Qualifies qualifies) noexcept {
    if (parent == nullptr) return nullptr;
    for (XmlNode* child = ChildAfter(*parent, cursor); child != nullptr; child = child->next) {
        if (!IsElement(*child) || !qualifies(*child)) continue;
        return cursor = child;
    }
    return nullptr;
}

}  // namespace

// The choice that removal by content makes for one child.
struct XmlDocument::ContentMatch {
    WideView attributeName;
    WideView value;
    bool matchElementName;

    bool IsRefused() const noexcept { return attributeName.empty() && !matchElementName; }
    bool IsByNameAlone() const noexcept { return !matchElementName && SameText(attributeName, names::kName); }

    bool operator()(const XmlNode& child) const noexcept {
        WideView found;
        if (!attributeName.empty() && GetAttribute(&child, attributeName, found))
            return SameText(found, value);
        return matchElementName && HasName(child, value);
    }
};

XmlDocument::XmlDocument() : pool_(XmlPool::Create()), ownsPool_(true) {
    try {
        Attach(nullptr);
    } catch (...) {
        XmlPool::Destroy(pool_);
        throw;
    }
}

XmlDocument::XmlDocument(XmlPool& shared) : pool_(&shared), ownsPool_(false) {
    Attach(nullptr);
}

XmlDocument::XmlDocument(XmlPool& shared, XmlNode* node) : pool_(&shared), ownsPool_(false) {
    Attach(node);
}

XmlDocument::~XmlDocument() {
    if (ownsPool_) {
        XmlPool::Destroy(pool_);
    } else if (ownsRoot) {
        DestroyNode(root);
    }
}

void XmlDocument::Attach(XmlNode* node) {
    root = node != nullptr ? node : NewDocumentNode();
    ownsRoot = node == nullptr;
    writable = true;
    loaded = node != nullptr;
}

XmlNode* XmlDocument::NewDocumentNode() {
    return CreateNode(WideView(), std::nullopt, XmlNodeKind::Document);
}

XmlNode* XmlDocument::CreateNode(WideView name, std::optional<WideView> value, XmlNodeKind kind) {
    pool_->MergeIfMostlyFree();
    auto* node = pool_->New<XmlNode>(kind);
    try {
        node->name.Assign(*pool_, name);
        const bool takesValue = kind == XmlNodeKind::Element || kind == XmlNodeKind::Comment;
        if (value.has_value() && takesValue) node->value.Assign(*pool_, *value);
    } catch (...) {
        DestroyNode(node);
        throw;
    }
    return node;
}

// A host's position may still refer to the node: it leads nowhere then.
void XmlDocument::FreeNode(XmlNode* node) noexcept {
    for (XmlAttribute& attribute : node->attributes)
        ReleaseAttribute(attribute, *pool_);
    if (node->children.Attached() != nullptr) ChildLookup::Invalidate(*pool_, *node);
    node->attributes.Release(*pool_);
    node->name.Release(*pool_);
    node->value.Release(*pool_);
    node->parent = nullptr;
    node->next = nullptr;
    pool_->Delete(node);
}

// Needs no memory and no stack: the children of a node are put into the chain of its siblings before it is freed.
void XmlDocument::DestroyNode(XmlNode*& node) noexcept {
    for (XmlNode* current = std::exchange(node, nullptr); current != nullptr;) {
        if (XmlNode* first = current->children.First(); first != nullptr) {
            first->previous->next = current->next;
            current->next = first;
        }
        XmlNode* const next = current->next;
        FreeNode(current);
        current = next;
    }
}

XmlNode* XmlDocument::InsertChild(XmlNode* parent, WideView name, std::optional<WideView> value,
                                  const XmlNode* before, XmlNodeKind kind) {
    if (parent == nullptr) return nullptr;
    const bool isDocument = parent->kind == XmlNodeKind::Document;
    if (!isDocument && !IsElement(*parent)) return nullptr;
    if (kind == XmlNodeKind::ProcessingInstruction) {
        const bool hasValue = value.has_value() && !value->empty();
        if (!isDocument || !parent->children.IsEmpty() || hasValue) return nullptr;
        before = nullptr;
    } else if (kind != XmlNodeKind::Element) {
        return nullptr;
    }
    if (before != nullptr && before->parent != parent) return nullptr;

    parent->children.CheckRoom();
    XmlNode* child = CreateNode(name, value, kind);
    if (before == nullptr) {
        AppendChild(*parent, *child);
    } else {
        InsertChildBefore(*child, *const_cast<XmlNode*>(before));
    }
    return child;
}

XmlNode& XmlDocument::AppendElement(XmlNode& parent, WideView name, WideView value) {
    parent.children.CheckRoom();
    XmlNode* child = CreateNode(WideView(), value, XmlNodeKind::Element);
    child->name = XmlText::Slice(name);
    AppendChild(parent, *child);
    return *child;
}

bool XmlDocument::AddDeclaration() {
    XmlNode* declaration =
        InsertChild(root, names::kXml, std::nullopt, nullptr, XmlNodeKind::ProcessingInstruction);
    if (declaration == nullptr) return false;
    SetAttribute(*declaration, names::kVersion, names::kVersionText);
    SetAttribute(*declaration, names::kEncoding, names::kEncodingText);
    return true;
}

bool XmlDocument::AppendNode(XmlNode* parent, XmlNode* node) {
    if (parent == nullptr || node == nullptr || node->kind == XmlNodeKind::Document) return false;
    parent->children.CheckRoom();
    AppendChild(*parent, *node);
    ChildLookup::Entered(*pool_, *node);
    return true;
}

XmlNode* XmlDocument::DetachLastChild(XmlNode* parent) noexcept {
    XmlNode* last = parent->children.Last();
    if (last == nullptr) return nullptr;
    ChildLookup::Leaves(*last);
    UnlinkChild(*last);
    return last;
}

void XmlDocument::RemoveChild(XmlNode* child) noexcept {
    ChildLookup::Leaves(*child);
    UnlinkChild(*child);
    DestroyNode(child);
}

int XmlDocument::RemoveNode(XmlNode* parent, XmlNode* node) noexcept {
    if (parent == nullptr || node == nullptr || !IsElement(*node) || node->parent != parent) return 0;
    RemoveChild(node);
    return 1;
}

// Frees the matches from the number `first` on, and no more than `most`. An index of the names leads from match to
// match; all other matches are looked for among all the children.
std::size_t XmlDocument::RemoveMatches(XmlNode* parent, const ContentMatch& matches, std::uint64_t first,
                                       std::uint64_t most) noexcept {
    if (matches.IsRefused() || parent == nullptr) return 0;
    NameIndex* index = nullptr;
    const bool isByNameAlone = matches.IsByNameAlone();
    if (isByNameAlone) {
        index = ChildLookup::IndexOf(*pool_, *parent, NamedChildren::All);
    } else if (most != 1) {
        ChildLookup::Invalidate(*pool_, *parent);
    }
    std::uint64_t earlier = 0;
    std::size_t removed = 0;
    std::size_t examined = 0;
    XmlNode* child = index != nullptr ? index->FirstToRemove(matches.value) : parent->children.First();
    while (child != nullptr && removed < most) {
        XmlNode* const next = index != nullptr ? index->After(*child) : child->next;
        ++examined;
        const bool isMatch = index != nullptr ? IsElement(*child) : matches(*child);
        if (isMatch && earlier++ >= first) {
            RemoveChild(child);
            ++removed;
        }
        child = next;
    }
    // Charged twice: a removal usually examines all children, and others are likely to follow.
    if (index == nullptr && isByNameAlone) ChildLookup::ChargeScan(*parent, 2 * examined);
    return removed;
}

bool XmlDocument::RemoveChildWhere(XmlNode* parent, WideView attributeName, WideView value,
                                   std::uint64_t occurrence, bool matchElementName) noexcept {
    const std::uint64_t first = occurrence == kFirstMatch ? 0 : occurrence;
    return RemoveMatches(parent, {attributeName, value, matchElementName}, first, 1) == 1;
}

std::size_t XmlDocument::RemoveChildrenWhere(XmlNode* parent, WideView attributeName, WideView value,
                                             std::uint64_t firstOccurrence, bool matchElementName) noexcept {
    const std::uint64_t first = firstOccurrence == kFirstMatch ? 0 : firstOccurrence;
    return RemoveMatches(parent, {attributeName, value, matchElementName}, first, kEveryMatch);
}

bool XmlDocument::RemoveAttribute(XmlNode* node, WideView name) noexcept {
    XmlAttribute* attribute = node == nullptr ? nullptr : FindInAttributes(*node, name);
    if (attribute == nullptr) return false;
    const auto remove = [&] {
        ReleaseAttribute(*attribute, *pool_);
        node->attributes.RemoveAt(static_cast<std::size_t>(attribute - node->attributes.begin()));
    };
    if (SameText(name, names::kName)) {
        const ChildLookup::Renaming renaming(*pool_, *node);
        remove();
    } else {
        remove();
    }
    return true;
}

// False when there is no such attribute.
bool XmlDocument::ReplaceAttribute(XmlNode& node, WideView name, WideView value) {
    XmlAttribute* attribute = FindInAttributes(node, name);
    if (attribute == nullptr) return false;
    if (SameText(name, names::kName) && !SameText(attribute->value.View(), value)) {
        const ChildLookup::Renaming renaming(*pool_, node);
        attribute->value.Assign(*pool_, value);
    } else {
        attribute->value.Assign(*pool_, value);
    }
    return true;
}

void XmlDocument::AppendAttribute(XmlNode& node, WideView name, WideView value) {
    XmlAttribute attribute{XmlText::Slice(name), XmlText()};
    node.attributes.Reserve(*pool_, 1);
    attribute.value.Assign(*pool_, value);
    node.attributes.Append(attribute);
    if (SameText(name, names::kName)) ChildLookup::Entered(*pool_, node);
}

void XmlDocument::SetAttribute(XmlNode& node, WideView name, WideView value) {
    if (!ReplaceAttribute(node, name, value)) AppendAttribute(node, name, value);
}

XmlNode* XmlDocument::NextChildElement(const XmlNode* parent, XmlNode*& cursor) noexcept {
    return NextElement(parent, cursor, [](const XmlNode&) { return true; });
}

XmlNode* XmlDocument::NextSettingsElement(const XmlNode* parent, XmlNode*& cursor) noexcept {
    return NextElement(parent, cursor, [](const XmlNode& node) { return HasName(node, names::kSettings); });
}

XmlNode* XmlDocument::FindChildElement(const XmlNode* parent, WideView name,
                                       std::uint64_t& position) noexcept {
    if (parent == nullptr) return nullptr;
    std::uint64_t i = 0;
    for (XmlNode* child : parent->children) {
        if (i++ < position || !IsElement(*child) || !HasName(*child, name)) continue;
        position = i;
        return child;
    }
    return nullptr;
}

XmlNode* XmlDocument::FindChildElement(const XmlNode* parent, WideView name) noexcept {
    if (parent == nullptr) return nullptr;
    XmlNode* child = parent->children.First();
    while (child != nullptr && (!IsElement(*child) || !HasName(*child, name)))
        child = child->next;
    return child;
}

XmlNode* XmlDocument::FindTableElement(XmlNode* parent, WideView tableName) const noexcept {
    if (parent == nullptr) return nullptr;
    return ChildLookup::Find(*pool_, *parent, NamedChildren::Tables, tableName);
}

bool XmlDocument::FindChildByNameAttribute(XmlNode* parent, WideView value, XmlNode*& out) const noexcept {
    if (parent == nullptr) return false;
    XmlNode* found = nullptr;
    if (!value.empty()) {
        found = ChildLookup::Find(*pool_, *parent, NamedChildren::All, value);
    } else {
        found = parent->children.First();
        while (found != nullptr && NameAttribute(*found) == nullptr)
            found = found->next;
    }
    if (found == nullptr) return false;
    out = found;
    return true;
}

}  // namespace mox
