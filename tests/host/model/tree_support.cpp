#include "tests/host/model/tree_support.h"

#include <algorithm>

namespace host::model {

Text Wide(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

const Text* FindAttribute(const Node& node, std::string_view name) {
    if (node.kind != Kind::Element) return nullptr;
    for (const auto& [key, value] : node.attributes) {
        if (key == Wide(name)) return &value;
    }
    return nullptr;
}

Text AttributeOf(const Node& node, std::string_view name) {
    const Text* value = FindAttribute(node, name);
    return value == nullptr ? Text() : *value;
}

bool HasAttribute(const Node& node, std::string_view name, std::string_view value) {
    const Text* found = FindAttribute(node, name);
    return found != nullptr && *found == Wide(value);
}

void SetAttribute(Node& node, std::string_view name, const Text& value) {
    for (auto& [key, old] : node.attributes) {
        if (key == Wide(name)) {
            old = value;
            return;
        }
    }
    node.attributes.emplace_back(Wide(name), value);
}

void RemoveAttribute(Node& node, std::string_view name) {
    const auto found = std::find_if(node.attributes.begin(), node.attributes.end(),
                                    [&](const auto& attribute) { return attribute.first == Wide(name); });
    if (found != node.attributes.end()) node.attributes.erase(found);
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

std::size_t PlaceOf(const Node& parent, const Node* child) {
    std::size_t place = 0;
    while (place < parent.children.size() && parent.children[place].get() != child)
        ++place;
    return place;
}

NodePtr NextElement(const Node& parent, const Node* current) {
    std::size_t place = current == nullptr ? 0 : PlaceOf(parent, current) + 1;
    while (place < parent.children.size() && parent.children[place]->kind != Kind::Element)
        ++place;
    return place < parent.children.size() ? parent.children[place] : nullptr;
}

}  // namespace host::model
