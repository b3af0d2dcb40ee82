#include "tests/faults/tree_check_support.h"

#include <set>
#include <vector>

#include "mox_xmlApi/xml/xml_document.h"

namespace faults {
namespace {

using mox::WideString;
using mox::WideView;
using mox::XmlDocument;
using mox::XmlNode;
using mox::XmlNodeKind;
using mox::operator""_w;

// Reads every unit: a text that refers to memory which is gone is found by the sanitizer or by valgrind.
bool IsReadable(WideView text) {
    unsigned all = 0;
    for (const wchar16 unit : text)
        all |= unit;
    return all <= 0xFFFF;
}

const mox::XmlAttribute* NameOf(const XmlNode& node) {
    for (const mox::XmlAttribute& attribute : node.attributes) {
        if (attribute.name.View() == "name"_w) return &attribute;
    }
    return nullptr;
}

bool IsNamed(const XmlNode& node, WideView name) {
    const mox::XmlAttribute* found = NameOf(node);
    return found != nullptr && (name.empty() || found->value.View() == name);
}

bool IsTableNamed(const XmlNode& node, WideView name) {
    const mox::XmlAttribute* found = NameOf(node);
    return node.kind == XmlNodeKind::Element && node.name.View() == "Table"_w && found != nullptr &&
           found->value.View() == name;
}

template <class Qualifies>
const XmlNode* Scan(const XmlNode& parent, Qualifies qualifies) {
    for (const XmlNode* child : parent.children) {
        if (qualifies(*child)) return child;
    }
    return nullptr;
}

bool LookUpsAgree(const XmlDocument& document, XmlNode& parent) {
    constexpr std::size_t kMost = 20;
    std::set<WideString> names = {WideString(), WideString("no such name"_w)};
    for (const XmlNode* child : parent.children) {
        if (const auto* name = NameOf(*child); name != nullptr && names.size() < kMost)
            names.emplace(name->value.View());
    }
    for (const WideString& name : names) {
        XmlNode* entry = nullptr;
        document.FindChildByNameAttribute(&parent, name, entry);
        if (entry != Scan(parent, [&](const XmlNode& child) { return IsNamed(child, name); })) return false;
        const XmlNode* table = document.FindTableElement(&parent, name);
        if (table != Scan(parent, [&](const XmlNode& child) { return IsTableNamed(child, name); }))
            return false;
    }
    return true;
}

// Whether the children of a node lead to each other, to the last one and to their parent, and are as many as they say.
bool AreLinked(const XmlNode& parent) {
    std::size_t count = 0;
    const XmlNode* previous = parent.children.Last();
    for (const XmlNode* child : parent.children) {
        if (child->parent != &parent || child->previous != previous) return false;
        previous = child;
        ++count;
    }
    return count == parent.children.Size() && previous == parent.children.Last();
}

bool StandsWhereItMay(const XmlNode& parent, const XmlNode& child) {
    switch (child.kind) {
        case XmlNodeKind::Element:
            return !child.name.View().empty();
        case XmlNodeKind::Comment:
            return child.children.IsEmpty() && child.attributes.IsEmpty();
        case XmlNodeKind::ProcessingInstruction:
            return parent.kind == XmlNodeKind::Document && parent.children.First() == &child &&
                   child.children.IsEmpty();
        case XmlNodeKind::Document:
            break;
    }
    return false;
}

const char* WhatIsWrong(const XmlDocument& document, XmlNode& node) {
    if (!IsReadable(node.name.View()) || !IsReadable(node.value.View())) return "a text";
    for (const mox::XmlAttribute& attribute : node.attributes) {
        if (attribute.name.IsEmpty()) return "an attribute without a name";
        if (!IsReadable(attribute.name.View()) || !IsReadable(attribute.value.View())) return "an attribute";
    }
    if (!AreLinked(node)) return "children that are not linked as they must be";
    for (const XmlNode* child : node.children) {
        if (!StandsWhereItMay(node, *child)) return "a node that must not stand there";
    }
    return LookUpsAgree(document, node) ? nullptr : "a look-up that differs from a scan";
}

}  // namespace

testing::AssertionResult IsSound(const XmlDocument& document) {
    std::vector<XmlNode*> left{document.root};
    while (!left.empty()) {
        XmlNode& node = *left.back();
        left.pop_back();
        if (const char* wrong = WhatIsWrong(document, node); wrong != nullptr)
            return testing::AssertionFailure() << "the tree has " << wrong;
        left.insert(left.end(), node.children.begin(), node.children.end());
    }
    return testing::AssertionSuccess();
}

}  // namespace faults
