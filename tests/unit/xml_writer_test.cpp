// From a tree to text, where the exports do not show it: trees that no file gives, parts of trees, and pieces of output.
// How documents are laid out is in tests/host/document_layout_test.cpp.
#include "mox_xmlApi/xml/xml_writer.h"

#include <gtest/gtest.h>
#include <string>

#include "mox_xmlApi/xml/xml_document.h"
#include "mox_xmlApi/xml/xml_output.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Build;
using test::Comment;
using test::Declaration;
using test::Element;
using test::Shown;
using test::Wide;
using test::Written;

std::string Escaped(WideView text) {
    XmlOutput out;
    XmlEscape(text, out);
    return Shown(out.Text());
}

std::string WrittenAt(std::size_t depth, const model::NodePtr& plain) {
    XmlDocument document;
    XmlOutput out;
    WriteNode(*Build(document, document.root, plain), out, depth);
    return Shown(out.Text());
}

// ---- Escaping

TEST(XmlEscapeText, CopiesAllButTheFiveCharacters) {
    EXPECT_EQ(Escaped("\t\r\n ;#/=?!-"_w), "\\t\\r\\n ;#/=?!-");
    EXPECT_EQ(Escaped(Wide(std::u16string_view(u"\0\u0101\xD800\uFFFF\u0126\u203C", 6))),
              "\\u0000\\u0101\\uD800\\uFFFF\\u0126\\u203C");
    EXPECT_EQ(Escaped(WideView()), "");
}

TEST(XmlEscapeText, LongTextsAreEscapedWhole) {
    std::string text;
    std::string expected;
    for (int i = 0; i < 2000; ++i) {
        text += std::string(static_cast<std::size_t>(i % 7), 'x') + "<\"";
        expected += std::string(static_cast<std::size_t>(i % 7), 'x') + "&lt;&quot;";
    }
    EXPECT_EQ(Escaped(Wide(text)), expected);
}

TEST(XmlEscapeText, AppendsToWhatIsThere) {
    XmlOutput out;
    out.Append("<a>"_w);
    XmlEscape("<"_w, out);
    EXPECT_EQ(Shown(out.Text()), "<a>&lt;");
}

// ---- Attributes

TEST(XmlWriteAttributes, NamesAreNotEscaped) {
    EXPECT_EQ(Written(Element("a<&", {{"k\"&", ""}})), "<a<& k\"&=\"\"/>");
}

TEST(XmlWriteAttributes, NothingForNone) {
    XmlDocument document;
    XmlOutput out;
    WriteAttributes(*Build(document, document.root, Element("a", {}, "t", {Element("b")})), out);
    EXPECT_EQ(Shown(out.Text()), "");
}

// ---- Elements

TEST(XmlWriteNode, SingleLineValueStandsBetweenTheTags) {
    EXPECT_EQ(Written(Element("Value", {}, "12")), "<Value>12</Value>");
    EXPECT_EQ(Written(Element("Name", {}, "a<b")), "<Name>a&lt;b</Name>");
    EXPECT_EQ(Written(Element("Name", {{"k", "v"}}, " \t\r ")), "<Name k=\"v\"> \\t\\r </Name>");
}

TEST(XmlWriteNode, ValueWithLineFeedsStandsOnLinesOfItsOwn) {
    EXPECT_EQ(WrittenAt(1, Element("e", {}, "one\ntwo")), "\\t<e>\\n\\t\\tone\\ntwo\\n\\t</e>");
    EXPECT_EQ(Written(Element("e", {}, "\n")), "<e>\\n\\t\\n\\n</e>");
}

TEST(XmlWriteNode, LongNamesAreWrittenWhole) {
    for (const std::size_t length : {127U, 128U, 129U, 5000U}) {
        const std::string name(length, 'n');
        EXPECT_EQ(WrittenAt(0, Element(name, {{name, "v"}}, "text")),
                  "<" + name + " " + name + "=\"v\">text</" + name + ">");
        EXPECT_EQ(WrittenAt(0, Element(name, {}, "", {Element("c")})),
                  "<" + name + ">\\n\\t<c/>\\n</" + name + ">");
    }
}

TEST(XmlWriteNode, IndentsByTheGivenDepth) {
    EXPECT_EQ(WrittenAt(3, Element("a")), "\\t\\t\\t<a/>");
    EXPECT_EQ(WrittenAt(3, Comment("c")), "\\t\\t\\t<!--c-->");
    EXPECT_EQ(WrittenAt(1, Declaration()), "\\t<?xml version=\"1.0\"?>");
    EXPECT_EQ(WrittenAt(1, Element("a", {}, "", {Element("b")})), "\\t<a>\\n\\t\\t<b/>\\n\\t</a>");
}

TEST(XmlWriteNode, DeclarationHasItsAttributesInOrder) {
    EXPECT_EQ(Written(Declaration({{"version", "1.0"}, {"encoding", "UTF-8"}})),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    EXPECT_EQ(Written(Declaration({{"encoding", "a\"b"}, {"version", ""}})),
              "<?xml encoding=\"a&quot;b\" version=\"\"?>");
    EXPECT_EQ(Written(Declaration({})), "<?xml?>");
}

TEST(XmlWriteNode, ValueAndChildrenOfADeclarationOrCommentAreNotWritten) {
    XmlDocument document;
    XmlNode* declaration = Build(document, document.root, Declaration());
    Build(document, declaration, Element("lost"));
    XmlNode* comment = Build(document, document.root, Comment("c"));
    Build(document, comment, Element("lost"));
    document.SetAttribute(*comment, "k"_w, "lost"_w);
    EXPECT_EQ(Written(document.root), "<?xml version=\"1.0\"?>\\n<!--c-->\\n");
}

TEST(XmlWriteNode, ManyChildrenAndLevelsAreWrittenInOrder) {
    model::NodePtr tree = Element("e", {}, "", {Element("x")});
    std::string expected = "<e>\\n\\t<x/>\\n</e>";
    for (int i = 0; i < 40; ++i) {
        std::string indented;
        std::string line;
        const std::string text = expected + "\\n";
        for (std::size_t at = 0; at < text.size(); at = text.find("\\n", at) + 2)
            indented += test::Join({"\\t", text.substr(at, text.find("\\n", at) + 2 - at)});
        expected = test::Join({"<p>\\n\\t<b/>\\n", indented, "\\t<a/>\\n</p>"});
        tree = Element("p", {}, "", {Element("b"), tree, Element("a")});
    }
    EXPECT_EQ(Written(tree), expected);
}

// ---- Documents

TEST(XmlWriteDocument, EmptyDocumentGivesNoText) {
    const XmlDocument document;
    EXPECT_EQ(Written(document.root), "");
}

TEST(XmlWriteDocument, SubtreeHasNoLineFeedAfterIt) {
    XmlDocument document;
    const XmlNode* e = Build(document, document.root, Element("e", {}, "", {Element("c")}));
    EXPECT_EQ(Written(e), "<e>\\n\\t<c/>\\n</e>");
    EXPECT_EQ(Written(e->children.At(0)), "<c/>");
}

TEST(XmlWriteDocument, AppendsToWhatIsThere) {
    XmlDocument document;
    const XmlNode* e = Build(document, document.root, Element("e"));
    XmlOutput out;
    out.Append("before "_w);
    WriteDocument(*e, out);
    WriteDocument(*document.root, out);
    EXPECT_EQ(Shown(out.Text()), "before <e/><e/>\\n");
}

// ---- Narrow texts

// The bytes that are written for an element "a" with this text and attribute value.
std::string NarrowBytes(std::u16string_view text) {
    XmlDocument document;
    XmlNode* a = Build(document, document.root, Element("a"));
    document.SetText(*a, Wide(text));
    document.SetAttribute(*a, "k"_w, Wide(text));
    NarrowXmlOutput out;
    WriteDocument(*a, out);
    return out.Text();
}

TEST(XmlWriteNarrow, EscapesByTheWholeUnit) {
    EXPECT_EQ(NarrowBytes(u"<"), "<a k=\"&lt;\">&lt;</a>");
    EXPECT_EQ(NarrowBytes(u"\u0126\u203C\u0422\u013E\u0127"), "<a k=\"&<\">'\">&<\">'</a>");
}

}  // namespace
}  // namespace mox
