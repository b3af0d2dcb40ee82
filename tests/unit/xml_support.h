// What the tests of the tree, the parser and the writer share: wide texts, and trees of the model, from short literals
// and as short texts.
#ifndef MOX_XMLAPI_TESTS_UNIT_XML_SUPPORT_H
#define MOX_XMLAPI_TESTS_UNIT_XML_SUPPORT_H

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_document.h"
#include "mox_xmlApi/xml/xml_output.h"
#include "mox_xmlApi/xml/xml_writer.h"
#include "tests/model/dump.h"
#include "tests/model/tree.h"
#include "tests/random_numbers.h"
#include "tests/tree_in_model.h"

namespace mox::test {

using model::Quoted;
using model::Shown;

// ---- Texts
// ---------------------------------------------------------------------------------------------------

// Wide text from a literal, on every system.
inline WideString Wide(std::u16string_view text) {
    return {text.begin(), text.end()};
}
inline WideString Wide(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

inline std::string Join(std::initializer_list<std::string_view> parts) {
    std::string joined;
    for (const std::string_view part : parts)
        joined += part;
    return joined;
}

// ---- Pools
// ---------------------------------------------------------------------------------------------------

// A pool that goes at the end of its scope.
class OwnPool {
  public:
    OwnPool() = default;
    ~OwnPool() { XmlPool::Destroy(pool_); }
    OwnPool(const OwnPool&) = delete;
    OwnPool& operator=(const OwnPool&) = delete;

    XmlPool& operator*() const { return *pool_; }
    XmlPool* operator->() const { return pool_; }

  private:
    XmlPool* pool_ = XmlPool::Create();
};

// ---- Trees of the model
// -------------------------------------------------------------------------------------------

using PlainAttributes = std::vector<std::pair<std::string_view, std::string_view>>;

inline model::NodePtr Element(std::string_view name, const PlainAttributes& attributes = {},
                              std::string_view value = {}, std::vector<model::NodePtr> children = {}) {
    model::NodePtr node = model::NewElement(name, Wide(value));
    for (const auto& [key, text] : attributes)
        node->attributes.emplace_back(Wide(key), Wide(text));
    node->children = std::move(children);
    return node;
}
inline model::NodePtr Comment(std::string_view text) {
    return std::make_shared<model::Node>(model::Node{model::Kind::Comment, {}, Wide(text)});
}
inline model::NodePtr Declaration(const PlainAttributes& attributes = {{"version", "1.0"}}) {
    model::NodePtr node = Element("xml", attributes);
    node->kind = model::Kind::Declaration;
    return node;
}

// The model's form of a tree. Every link that leads elsewhere than it must is a failure of the running test.
inline model::NodePtr Plain(const XmlNode& node) {
    EXPECT_EQ(WrongLink(node), "");
    return CopyToModel(node);
}

// A tree in one line, see model::Dump.
inline std::string Dump(const XmlNode* node) {
    return node == nullptr ? "null" : model::Dump(*Plain(*node));
}
// The nodes below a document in one line; "" for none.
inline std::string DumpChildren(const XmlNode* node) {
    return model::DumpChildren(*Plain(*node));
}

// Appends an attribute even if there is one of that name, as the parser does.
inline void AddAttribute(XmlDocument& document, XmlNode* node, WideView name, WideView value) {
    const auto isCalledSo = [&](const mox::XmlAttribute& attribute) { return attribute.name.View() == name; };
    if (std::none_of(node->attributes.begin(), node->attributes.end(), isCalledSo)) {
        document.SetAttribute(*node, name, value);
        (node->attributes.end() - 1)->name = XmlText::Copy(document.Pool(), name);
        return;
    }
    XmlPool& pool = document.Pool();
    node->attributes.Reserve(pool, 1);
    node->attributes.Append({XmlText::Copy(pool, name), XmlText::Copy(pool, value)});
}

// Makes the tree and appends it to the children of `parent`.
inline XmlNode* Build(XmlDocument& document, XmlNode* parent, const model::NodePtr& plain) {
    XmlNode* node = document.CreateNode(plain->name, plain->value, KindInLibrary(plain->kind));
    for (const auto& [name, value] : plain->attributes)
        AddAttribute(document, node, name, value);
    for (const model::NodePtr& child : plain->children)
        Build(document, node, child);
    EXPECT_TRUE(document.AppendNode(parent, node));
    return node;
}

// ---- Parsing and writing in one line
// -------------------------------------------------------------------------

// What a parse gave: the nodes below the document, or "failed" and, in brackets, those that stayed.
inline std::string Outcome(bool parsed, const std::string& nodes) {
    if (parsed) return nodes;
    return nodes.empty() ? "failed" : Join({"failed [", nodes, "]"});
}
inline std::string Outcome(bool parsed, const XmlNode* root) {
    return Outcome(parsed, DumpChildren(root));
}
inline std::string Parsed(WideView text) {
    XmlDocument document;
    const bool parsed = document.Parse(text, document.root);
    return Outcome(parsed, document.root);
}
inline std::string Parsed(std::string_view ascii) {
    return Parsed(WideView(Wide(ascii)));
}

// The text that is written for the node: its units, and readable.
inline WideString WrittenUnits(const XmlNode& node) {
    XmlOutput out;
    WriteDocument(node, out);
    return out.Text();
}
inline std::string Written(const XmlNode* node) {
    return Shown(WrittenUnits(*node));
}
inline std::string Written(const model::NodePtr& plain) {
    XmlDocument document;
    return Written(Build(document, document.root, plain));
}

}  // namespace mox::test

#endif
