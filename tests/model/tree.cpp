#include "tests/model/tree.h"

#include <algorithm>

namespace model {

Text Wide(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

bool IsSame(const Node& a, const Node& b) {
    return a.kind == b.kind && a.name == b.name && a.value == b.value && a.attributes == b.attributes &&
           std::equal(a.children.begin(), a.children.end(), b.children.begin(), b.children.end(),
                      [](const NodePtr& one, const NodePtr& other) { return IsSame(*one, *other); });
}

NodePtr Copy(const Node& node) {
    auto copy = std::make_shared<Node>(node);
    for (NodePtr& child : copy->children)
        child = Copy(*child);
    return copy;
}

const Text* FindAttribute(const Node& node, View name) {
    for (const auto& [key, value] : node.attributes) {
        if (key == name) return &value;
    }
    return nullptr;
}

const Text* FindAttribute(const Node& node, std::string_view name) {
    return FindAttribute(node, View(Wide(name)));
}

Text AttributeOf(const Node& node, std::string_view name) {
    const Text* value = FindAttribute(node, name);
    return value == nullptr ? Text() : *value;
}

bool HasAttribute(const Node& node, std::string_view name, std::string_view value) {
    const Text* found = FindAttribute(node, name);
    return found != nullptr && *found == Wide(value);
}

void SetAttribute(Node& node, View name, const Text& value) {
    for (auto& [key, old] : node.attributes) {
        if (key == name) {
            old = value;
            return;
        }
    }
    node.attributes.emplace_back(name, value);
}

void SetAttribute(Node& node, std::string_view name, const Text& value) {
    SetAttribute(node, View(Wide(name)), value);
}

bool RemoveAttribute(Node& node, View name) {
    const auto found = std::find_if(node.attributes.begin(), node.attributes.end(),
                                    [&](const auto& attribute) { return attribute.first == name; });
    if (found == node.attributes.end()) return false;
    node.attributes.erase(found);
    return true;
}

bool RemoveAttribute(Node& node, std::string_view name) {
    return RemoveAttribute(node, View(Wide(name)));
}

bool IsElement(const Node& node, std::string_view name) {
    return node.kind == Kind::Element && node.name == Wide(name);
}

NodePtr FindElement(const Node& parent, std::string_view name) {
    for (const NodePtr& child : parent.children) {
        if (IsElement(*child, name)) return child;
    }
    return nullptr;
}

NodePtr NewElement(std::string_view name, const Text& value) {
    auto node = std::make_shared<Node>();
    node->name = Wide(name);
    node->value = value;
    return node;
}

std::size_t IndexOf(const Node& parent, const Node* child) {
    std::size_t index = 0;
    while (index < parent.children.size() && parent.children[index].get() != child)
        ++index;
    return index;
}

NodePtr NextElement(const Node& parent, const Node* current) {
    std::size_t index = current == nullptr ? 0 : IndexOf(parent, current) + 1;
    while (index < parent.children.size() && parent.children[index]->kind != Kind::Element)
        ++index;
    return index < parent.children.size() ? parent.children[index] : nullptr;
}

bool RemoveChildWhere(Node& parent, View attribute, View value, std::uint64_t occurrence, bool matchName) {
    std::uint64_t before = 0;
    for (auto child = parent.children.begin(); child != parent.children.end(); ++child) {
        const Node& node = **child;
        const Text* found =
            attribute.empty() || node.kind != Kind::Element ? nullptr : FindAttribute(node, attribute);
        const bool matches = found != nullptr ? *found == value : matchName && node.name == value;
        if (!matches) continue;
        if (occurrence == kFirstMatch || before == occurrence) {
            parent.children.erase(child);
            return true;
        }
        ++before;
    }
    return false;
}

}  // namespace model
