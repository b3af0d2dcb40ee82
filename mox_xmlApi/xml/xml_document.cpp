#include "mox_xmlApi/xml/xml_document.h"

#include <algorithm>

#include "mox_xmlApi/platform/prefetch.h"
#include "mox_xmlApi/xml/child_index.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

bool HasName(const XmlNode& node, WideView name) noexcept {
    return SameText(node.name.View(), name);
}

bool IsElement(const XmlNode& node) noexcept {
    return node.kind == XmlNodeKind::Element;
}

XmlAttribute* FindInAttributes(const XmlNode& node, WideView name) noexcept {
    for (XmlAttribute& attribute : node.attributes) {
        if (SameText(attribute.name.View(), name)) return &attribute;
    }
    return nullptr;
}

void ReleaseAttribute(XmlAttribute& attribute, XmlPool& pool) noexcept {
    attribute.name.Release(pool);
    attribute.value.Release(pool);
}

// The choice that removal by content makes for one child.
struct ContentMatch {
    WideView attributeName;
    WideView value;
    bool matchElementName;

    bool IsRefused() const noexcept { return attributeName.empty() && !matchElementName; }

    bool operator()(const XmlNode& child) const noexcept {
        WideView found;
        if (!attributeName.empty() && XmlDocument::GetAttribute(&child, attributeName, found))
            return SameText(found, value);
        return matchElementName && HasName(child, value);
    }
};

// For a walk from element to element that reads them: what comes soon, in the tree and in the loaded text.
void PrefetchAfter(const XmlNode& element) noexcept {
    constexpr int kLines = 4;  // that an element of a few attributes takes with its children, roughly
    PrefetchAhead(&element, kLines);
    PrefetchAhead(element.name.View().data(), kLines);
}

template <class Qualifies>
XmlNode* NextElement(const XmlNode* parent, XmlNode*& cursor, Qualifies qualifies) noexcept {
    if (parent == nullptr) return nullptr;
    const std::size_t count = parent->children.Size();
    std::size_t position = cursor == nullptr ? 0 : static_cast<std::size_t>(cursor->index + 1);
    for (; position < count; ++position) {
        XmlNode* child = parent->children.begin()[position];
        if (!IsElement(*child) || !qualifies(*child)) continue;
        PrefetchAfter(*child);
        return cursor = child;
    }
    return nullptr;
}

}  // namespace

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

void XmlDocument::FreeNode(XmlNode* node) noexcept {
    for (XmlAttribute& attribute : node->attributes)
        ReleaseAttribute(attribute, *pool_);
    ChildIndex::GiveUp(*pool_, *node);
    node->attributes.Release(*pool_);
    node->children.Release(*pool_);
    node->name.Release(*pool_);
    node->value.Release(*pool_);
    pool_->Delete(node);
}

// Goes down to a node without children and back up again. The way back needs no memory: the place that a child
// had in the list holds the parent of the list's owner while the child is being destroyed.
void XmlDocument::DestroyNode(XmlNode*& node) noexcept {
    XmlNode* current = std::exchange(node, nullptr);
    XmlNode* parent = nullptr;
    while (current != nullptr) {
        if (!current->children.IsEmpty()) {
            XmlNode* child = current->children.ReplaceLast(parent);
            parent = std::exchange(current, child);
            continue;
        }
        FreeNode(current);
        current = parent;
        if (parent != nullptr) parent = parent->children.PopLast();
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
    if (before != nullptr && !parent->children.Contains(before)) return nullptr;

    parent->children.Reserve(*pool_, 1);
    XmlNode* child = CreateNode(name, value, kind);
    const std::size_t position =
        before == nullptr ? parent->children.Size() : static_cast<std::size_t>(before->index);
    ChildIndex::BeforeInsert(*pool_, *parent, position);
    parent->children.Insert(position, child);
    return child;
}

XmlNode& XmlDocument::AppendElement(XmlNode& parent, WideView name, WideView value) {
    parent.children.Reserve(*pool_, 1);
    XmlNode* child = CreateNode(WideView(), value, XmlNodeKind::Element);
    child->name = XmlText::Slice(name);
    parent.children.Append(child);
    return *child;
}

bool XmlDocument::AddDeclaration() {
    XmlNode* declaration =
        InsertChild(root, names::kXml, std::nullopt, nullptr, XmlNodeKind::ProcessingInstruction);
    if (declaration == nullptr) return false;
    WriteAttribute(*declaration, names::kVersion, names::kVersionText);
    WriteAttribute(*declaration, names::kEncoding, names::kEncodingText);
    return true;
}

bool XmlDocument::AppendNode(XmlNode* parent, XmlNode* node) {
    if (parent == nullptr || node == nullptr || node->kind == XmlNodeKind::Document) return false;
    parent->children.Reserve(*pool_, 1);
    parent->children.Append(node);
    return true;
}

XmlNode* XmlDocument::DetachLastChild(XmlNode* parent) noexcept {
    if (parent->children.IsEmpty()) return nullptr;
    ChildIndex::BeforeRemove(*pool_, *parent, *parent->children.end()[-1]);
    return parent->children.RemoveLast();
}

void XmlDocument::RemoveChild(XmlNode& parent, XmlNode* child) noexcept {
    ChildIndex::BeforeRemove(*pool_, parent, *child);
    parent.children.RemoveAt(static_cast<std::size_t>(child->index));
    DestroyNode(child);
}

int XmlDocument::RemoveNode(XmlNode* parent, XmlNode* node) noexcept {
    if (parent == nullptr || node == nullptr || !IsElement(*node) || !parent->children.Contains(node))
        return 0;
    RemoveChild(*parent, node);
    return 1;
}

bool XmlDocument::RemoveChildWhere(XmlNode* parent, WideView attributeName, WideView value,
                                   std::uint64_t occurrence, bool matchElementName) noexcept {
    const ContentMatch matches{attributeName, value, matchElementName};
    if (matches.IsRefused() || parent == nullptr) return false;
    std::uint64_t earlier = 0;
    for (XmlNode* child : parent->children) {
        if (!matches(*child)) continue;
        if (occurrence == kFirstMatch || earlier == occurrence) {
            RemoveChild(*parent, child);
            return true;
        }
        ++earlier;
    }
    return false;
}

std::size_t XmlDocument::RemoveChildrenWhere(XmlNode* parent, WideView attributeName, WideView value,
                                             std::uint64_t firstOccurrence, bool matchElementName) noexcept {
    const ContentMatch matches{attributeName, value, matchElementName};
    if (matches.IsRefused() || parent == nullptr) return 0;
    const std::uint64_t keep = firstOccurrence == kFirstMatch ? 0 : firstOccurrence;
    const bool byName = SameText(attributeName, names::kName) && !value.empty() && !matchElementName;
    XmlNode* sole = nullptr;
    if (byName && keep == 0 && ChildIndex::FindSole(*pool_, *parent, value, sole)) {
        if (sole != nullptr) RemoveChild(*parent, sole);
        return sole != nullptr ? 1 : 0;
    }
    std::uint64_t earlier = 0;
    ChildIndex::GiveUp(*pool_, *parent);
    return parent->children.KeepIf([&](XmlNode* child) {
        if (!matches(*child) || earlier++ < keep) return true;
        DestroyNode(child);
        return false;
    });
}

bool XmlDocument::RemoveAttribute(XmlNode* node, WideView name) noexcept {
    XmlAttribute* attribute = node == nullptr ? nullptr : FindInAttributes(*node, name);
    if (attribute == nullptr) return false;
    if (SameText(name, names::kName)) ChildIndex::BeforeRename(*pool_, *node);
    ReleaseAttribute(*attribute, *pool_);
    node->attributes.RemoveAt(static_cast<std::size_t>(attribute - node->attributes.begin()));
    return true;
}

const XmlAttribute* XmlDocument::FindAttribute(const XmlNode* node, WideView name) noexcept {
    return node != nullptr && IsElement(*node) ? FindInAttributes(*node, name) : nullptr;
}

bool XmlDocument::GetAttribute(const XmlNode* node, WideView name, WideView& out) noexcept {
    const XmlAttribute* attribute = FindAttribute(node, name);
    if (attribute == nullptr) return false;
    out = attribute->value.View();
    return true;
}

// False when there is no such attribute.
bool XmlDocument::ReplaceAttribute(XmlNode& node, WideView name, WideView value) {
    XmlAttribute* attribute = FindInAttributes(node, name);
    if (attribute == nullptr) return false;
    const bool renames = SameText(name, names::kName) && !SameText(attribute->value.View(), value);
    if (renames) ChildIndex::BeforeRename(*pool_, node);
    attribute->value.Assign(*pool_, value);
    return true;
}

// Takes `name` over, also when it throws.
void XmlDocument::AppendAttribute(XmlNode& node, XmlText name, WideView value) {
    XmlAttribute attribute{name, XmlText()};
    try {
        node.attributes.Reserve(*pool_, 1);
        attribute.value.Assign(*pool_, value);
    } catch (...) {
        ReleaseAttribute(attribute, *pool_);
        throw;
    }
    if (SameText(name.View(), names::kName)) ChildIndex::BeforeRename(*pool_, node);
    node.attributes.Append(attribute);
}

void XmlDocument::WriteAttribute(XmlNode& node, WideView name, WideView value) {
    if (!ReplaceAttribute(node, name, value)) AppendAttribute(node, XmlText::Slice(name), value);
}

bool XmlDocument::SetAttribute(XmlNode* node, WideView name, std::optional<WideView> value) {
    if (node == nullptr) return false;
    const WideView text = value.value_or(WideView());
    if (!ReplaceAttribute(*node, name, text)) AppendAttribute(*node, XmlText::Copy(*pool_, name), text);
    return true;
}

bool XmlDocument::SetText(XmlNode* element, WideView text) {
    if (element == nullptr || !IsElement(*element)) return false;
    WriteText(*element, text);
    return true;
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
    for (std::uint64_t i = position; i < parent->children.Size(); ++i) {
        XmlNode* child = parent->children.begin()[i];
        if (!IsElement(*child) || !HasName(*child, name)) continue;
        position = i + 1;
        return child;
    }
    return nullptr;
}

XmlNode* XmlDocument::FindChildElement(const XmlNode* parent, WideView name) noexcept {
    std::uint64_t position = 0;
    return FindChildElement(parent, name, position);
}

XmlNode* XmlDocument::FindTableElement(XmlNode* parent, WideView tableName) const noexcept {
    if (parent == nullptr) return nullptr;
    const auto isTable = [](const XmlNode& node) { return IsElement(node) && HasName(node, names::kTable); };
    if (!tableName.empty()) {
        XmlNode* first = ChildIndex::Find(*pool_, *parent, tableName);
        if (first == nullptr || isTable(*first)) return first;
    }
    for (XmlNode* child : parent->children) {
        if (!isTable(*child)) continue;
        const XmlAttribute* name = FindInAttributes(*child, names::kName);
        if (name != nullptr && SameText(name->value.View(), tableName)) return child;
    }
    return nullptr;
}

bool XmlDocument::FindChildByNameAttribute(XmlNode* parent, WideView value, XmlNode*& out) const noexcept {
    if (parent == nullptr) return false;
    XmlNode* found = nullptr;
    if (!value.empty()) {
        found = ChildIndex::Find(*pool_, *parent, value);
    } else {
        const auto hasName = [](const XmlNode* child) {
            return FindInAttributes(*child, names::kName) != nullptr;
        };
        XmlNode* const* first = std::find_if(parent->children.begin(), parent->children.end(), hasName);
        if (first != parent->children.end()) found = *first;
    }
    if (found == nullptr) return false;
    out = found;
    return true;
}

}  // namespace mox
