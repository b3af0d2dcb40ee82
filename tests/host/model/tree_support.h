// A tree of plain structs for the random tests. Together with the files beside it, it is the slow and obvious
// form of the rules and shares no code with the library.
#ifndef MOX_XMLAPI_TESTS_HOST_MODEL_TREE_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_MODEL_TREE_SUPPORT_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/host/host_support.h"

namespace host::model {

using Text = WideText;

enum class Kind { Element, Declaration, Comment, Document };

struct Node;
using NodePtr = std::shared_ptr<Node>;

struct Node {
    Kind kind = Kind::Element;
    Text name{};
    Text value{};
    std::vector<std::pair<Text, Text>> attributes{};
    std::vector<NodePtr> children{};
};

// ASCII as wide text.
Text Wide(std::string_view ascii);

// The first attribute of that name of an element, or null.
const Text* FindAttribute(const Node& node, std::string_view name);
// Its value, empty without one.
Text AttributeOf(const Node& node, std::string_view name);
bool HasAttribute(const Node& node, std::string_view name, std::string_view value);
void SetAttribute(Node& node, std::string_view name, const Text& value);
void RemoveAttribute(Node& node, std::string_view name);

bool IsElement(const Node& node, std::string_view name);
// The first child element of that name, or null.
NodePtr FindElement(const Node& parent, std::string_view name);
NodePtr NewElement(std::string_view name, const Text& value = {});
// The number of a child among all children; the number of children when it is none of them.
std::size_t PlaceOf(const Node& parent, const Node* child);
// The element child after `current`, the first one when that is null; null at the end.
NodePtr NextElement(const Node& parent, const Node* current);

}  // namespace host::model

#endif
