// The tree of a document as plain structs, and the few things that are done with it.
//
// This folder is the model: what documents, entries and tables are and what the functions of the library do with
// them, written down once more as slowly and as obviously as the rules allow. It shares no code with the library.
// The tests use it as their oracle: the parser and the writer over random documents, the exports over random
// calls, and the fuzz targets over whatever they come upon. Its own tests are beside it.
//
// It recurses on the depth of a document, which the library must not: some thousands of levels are its limit.
#ifndef MOX_XMLAPI_TESTS_MODEL_TREE_H
#define MOX_XMLAPI_TESTS_MODEL_TREE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mox_xmlApi/platform/wchar16.h"

namespace model {

using Text = std::basic_string<wchar16>;
using View = std::basic_string_view<wchar16>;

enum class Kind { Element, Declaration, Comment, Document };

struct Node;
using NodePtr = std::shared_ptr<Node>;

struct Node {
    Kind kind = Kind::Element;
    Text name{};   // of an element; "xml" of a declaration
    Text value{};  // the text of an element or a comment
    std::vector<std::pair<Text, Text>> attributes{};
    std::vector<NodePtr> children{};
};

// 16-bit text of ASCII.
Text Wide(std::string_view ascii);

// Both have the same kind, name, value, attributes and children, down to the last level.
bool IsSame(const Node& a, const Node& b);
// A tree of its own that is the same.
NodePtr Copy(const Node& node);

// The first attribute of that name, or null.
const Text* FindAttribute(const Node& node, View name);
const Text* FindAttribute(const Node& node, std::string_view name);
// Its value, empty without one.
Text AttributeOf(const Node& node, std::string_view name);
bool HasAttribute(const Node& node, std::string_view name, std::string_view value);
// The first attribute of that name gets the value; without one it is added.
void SetAttribute(Node& node, View name, const Text& value);
void SetAttribute(Node& node, std::string_view name, const Text& value);
// Removes the first attribute of that name. False without one.
bool RemoveAttribute(Node& node, View name);
bool RemoveAttribute(Node& node, std::string_view name);

bool IsElement(const Node& node, std::string_view name);
// The first child element of that name, or null.
NodePtr FindElement(const Node& parent, std::string_view name);
NodePtr NewElement(std::string_view name, const Text& value = {});
// The number of a child among all children; the number of children when it is none of them.
std::size_t IndexOf(const Node& parent, const Node* child);
// The element child after `current`, the first one when that is null; null at the end.
NodePtr NextElement(const Node& parent, const Node* current);

// Removes one child and says whether there was one to remove: of those that match the one that has `occurrence` others
// before it, or the first for kFirstMatch. A child matches by the value of an attribute. Without that attribute, or
// when none is asked for, it matches by its own name if `matchName` is set.
inline constexpr std::uint64_t kFirstMatch = ~std::uint64_t{0};
bool RemoveChildWhere(Node& parent, View attribute, View value, std::uint64_t occurrence, bool matchName);

}  // namespace model

#endif
