// What the tests of the tree, the parser and the writer share: wide texts, trees as plain values and as short
// ASCII texts, and a source of numbers that is the same on every system.
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

namespace mox::test {

// ---- Texts
// ---------------------------------------------------------------------------------------------------

// Wide text from a literal, on every system.
inline WideString Wide(std::u16string_view text) {
    return {text.begin(), text.end()};
}
inline WideString Wide(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

// The text in printable ASCII; what is not printable, a single quote and a backslash come with a backslash.
inline std::string Shown(WideView text) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string shown;
    for (const wchar16 wide : text) {
        const auto unit = static_cast<unsigned>(wide);
        if (unit == '\n' || unit == '\t' || unit == '\r') {
            shown += unit == '\n' ? "\\n" : unit == '\t' ? "\\t" : "\\r";
        } else if (unit == '\'' || unit == '\\') {
            shown.append(1, '\\').append(1, static_cast<char>(unit));
        } else if (unit >= 0x20 && unit < 0x7F) {
            shown += static_cast<char>(unit);
        } else {
            shown += "\\u";
            for (int shift = 12; shift >= 0; shift -= 4)
                shown += kDigits[(unit >> shift) & 0xF];
        }
    }
    return shown;
}

inline std::string Join(std::initializer_list<std::string_view> parts) {
    std::string joined;
    for (const std::string_view part : parts)
        joined += part;
    return joined;
}

inline std::string Quoted(WideView text) {
    return Join({"'", Shown(text), "'"});
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

// ---- Trees as plain values
// -----------------------------------------------------------------------------------

struct PlainNode {
    XmlNodeKind kind = XmlNodeKind::Element;
    WideString name{};
    WideString value{};
    std::vector<std::pair<WideString, WideString>> attributes{};
    std::vector<PlainNode> children{};

    friend bool operator==(const PlainNode&, const PlainNode&) = default;
};

using PlainAttributes = std::vector<std::pair<std::string_view, std::string_view>>;

inline PlainNode Element(std::string_view name, const PlainAttributes& attributes = {},
                         std::string_view value = {}, std::vector<PlainNode> children = {}) {
    PlainNode node{XmlNodeKind::Element, Wide(name), Wide(value), {}, std::move(children)};
    for (const auto& [key, text] : attributes)
        node.attributes.emplace_back(Wide(key), Wide(text));
    return node;
}
inline PlainNode Comment(std::string_view text) {
    return {XmlNodeKind::Comment, {}, Wide(text), {}, {}};
}
inline PlainNode Declaration(const PlainAttributes& attributes = {{"version", "1.0"}}) {
    PlainNode node = Element("xml", attributes);
    node.kind = XmlNodeKind::ProcessingInstruction;
    return node;
}

// A tree in one line: name{attribute='text' ...}'value'(child child ...), where parts that are empty are left
// out; a comment is !'text', the declaration ?xml{...}, a document #(...).
inline std::string Dump(const PlainNode& node) {
    std::string dump;
    if (node.kind == XmlNodeKind::Comment) dump += "!";
    if (node.kind == XmlNodeKind::ProcessingInstruction) dump += "?";
    if (node.kind == XmlNodeKind::Document) dump += "#";
    dump += Shown(node.name);
    std::string_view separator = "{";
    for (const auto& [name, value] : node.attributes) {
        dump += Join({separator, Shown(name), "=", Quoted(value)});
        separator = " ";
    }
    if (!node.attributes.empty()) dump += "}";
    if (!node.value.empty() || node.kind == XmlNodeKind::Comment) dump += Quoted(node.value);
    separator = "(";
    for (const PlainNode& child : node.children) {
        dump += Join({separator, Dump(child)});
        separator = " ";
    }
    if (!node.children.empty()) dump += ")";
    return dump;
}

// The plain form of a tree. Every link that leads elsewhere than it must is a failure of the running test.
inline PlainNode Plain(const XmlNode& node) {
    PlainNode plain{node.kind, WideString(node.name.View()), WideString(node.value.View()), {}, {}};
    for (const XmlAttribute& attribute : node.attributes)
        plain.attributes.emplace_back(attribute.name.View(), attribute.value.View());
    const XmlNode* previous = node.children.Last();
    for (const XmlNode* child : node.children) {
        EXPECT_EQ(child->parent, &node) << Shown(plain.name) << " child " << Shown(child->name.View());
        EXPECT_EQ(child->previous, previous) << Shown(plain.name) << " child " << Shown(child->name.View());
        previous = child;
        plain.children.push_back(Plain(*child));
    }
    EXPECT_EQ(plain.children.size(), node.children.Size()) << Shown(plain.name);
    return plain;
}

inline std::string Dump(const XmlNode* node) {
    return node == nullptr ? "null" : Dump(Plain(*node));
}

// The nodes below a document in one line; "" for none.
inline std::string DumpChildren(const PlainNode& node) {
    std::string dump;
    for (const PlainNode& child : node.children)
        dump += Join({dump.empty() ? "" : " ", Dump(child)});
    return dump;
}
inline std::string DumpChildren(const XmlNode* node) {
    return DumpChildren(Plain(*node));
}

// Appends an attribute even if there is one of that name, as the parser does.
inline void AddAttribute(XmlDocument& document, XmlNode* node, WideView name, WideView value) {
    const auto isCalledSo = [&](const mox::XmlAttribute& attribute) { return attribute.name.View() == name; };
    if (std::none_of(node->attributes.begin(), node->attributes.end(), isCalledSo)) {
        document.SetAttribute(node, name, value);
        return;
    }
    XmlPool& pool = document.Pool();
    node->attributes.Reserve(pool, 1);
    node->attributes.Append({XmlText::Copy(pool, name), XmlText::Copy(pool, value)});
}

// Makes the tree and appends it to the children of `parent`.
inline XmlNode* Build(XmlDocument& document, XmlNode* parent, const PlainNode& plain) {
    XmlNode* node = document.CreateNode(plain.name, plain.value, plain.kind);
    for (const auto& [name, value] : plain.attributes)
        AddAttribute(document, node, name, value);
    for (const PlainNode& child : plain.children)
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
inline std::string Written(const PlainNode& plain) {
    XmlDocument document;
    return Written(Build(document, document.root, plain));
}

// ---- Numbers
// -------------------------------------------------------------------------------------------------

// The same sequence for the same seed, with every compiler.
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    // A number from 0 to count - 1; `count` is not 0.
    std::size_t Below(std::size_t count) { return static_cast<std::size_t>(Next() % count); }
    bool OneIn(std::size_t count) { return Below(count) == 0; }

    template <class List>
    const auto& Pick(const List& list) {
        return *std::next(std::begin(list), static_cast<std::ptrdiff_t>(Below(std::size(list))));
    }

  private:
    std::uint64_t Next() {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = (state_ ^ (state_ >> 30)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31);
    }

    std::uint64_t state_;
};

}  // namespace mox::test

#endif
