// What the operations on a tree do, told by plain values: lists of structs, walked from the beginning.
#ifndef MOX_XMLAPI_TESTS_UNIT_DOCUMENT_MODEL_H
#define MOX_XMLAPI_TESTS_UNIT_DOCUMENT_MODEL_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "mox_xmlApi/xml/xml_document.h"
#include "tests/unit/xml_support.h"

namespace mox::test {

template <class Place>
auto At(std::vector<Place>& list, std::size_t position) {
    return list.begin() + static_cast<std::ptrdiff_t>(position);
}

inline const WideString* ModelAnyAttribute(const PlainNode& node, const WideString& name) {
    for (const auto& [key, value] : node.attributes) {
        if (key == name) return &value;
    }
    return nullptr;
}

inline const WideString* ModelGetAttribute(const PlainNode& node, const WideString& name) {
    return node.kind == XmlNodeKind::Element ? ModelAnyAttribute(node, name) : nullptr;
}

inline void ModelSetAttribute(PlainNode& node, const WideString& name, const WideString& value) {
    for (auto& attribute : node.attributes) {
        if (attribute.first != name) continue;
        attribute.second = value;
        return;
    }
    node.attributes.emplace_back(name, value);
}

inline bool ModelRemoveAttribute(PlainNode& node, const WideString& name) {
    for (std::size_t i = 0; i < node.attributes.size(); ++i) {
        if (node.attributes[i].first != name) continue;
        node.attributes.erase(At(node.attributes, i));
        return true;
    }
    return false;
}

inline bool ModelRemoveChildWhere(PlainNode& parent, const WideString& attribute, const WideString& value,
                                  std::uint64_t occurrence, bool matchName) {
    if (attribute.empty() && !matchName) return false;
    std::uint64_t matches = 0;
    for (std::size_t i = 0; i < parent.children.size(); ++i) {
        if (occurrence != XmlDocument::kFirstMatch && matches > occurrence) return false;
        const PlainNode& child = parent.children[i];
        bool match = child.name == value;
        if (!attribute.empty()) {
            const WideString* found = ModelGetAttribute(child, attribute);
            if (found == nullptr && !matchName) continue;
            if (found != nullptr) match = *found == value;
        }
        if (!match) continue;
        if (occurrence == XmlDocument::kFirstMatch || matches == occurrence) {
            parent.children.erase(At(parent.children, i));
            return true;
        }
        ++matches;
    }
    return false;
}

// Whether both are the same tree, and the links between its nodes are whole.
inline bool IsSame(const XmlNode& node, const PlainNode& plain) {
    if (node.kind != plain.kind || node.name.View() != plain.name || node.value.View() != plain.value)
        return false;
    if (node.attributes.Size() != plain.attributes.size() || node.children.Size() != plain.children.size())
        return false;
    for (std::size_t i = 0; i < plain.attributes.size(); ++i) {
        const XmlAttribute& attribute = node.attributes.At(i);
        if (attribute.name.View() != plain.attributes[i].first) return false;
        if (attribute.value.View() != plain.attributes[i].second) return false;
    }
    const XmlNode* previous = node.children.Last();
    auto expected = plain.children.begin();
    for (const XmlNode* child : node.children) {
        if (child->parent != &node || child->previous != previous || !IsSame(*child, *expected++))
            return false;
        previous = child;
    }
    return previous == node.children.Last();
}

}  // namespace mox::test

#endif
