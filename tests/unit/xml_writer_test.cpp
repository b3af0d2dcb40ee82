// From a tree to text.
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

TEST(XmlEscapeText, ReplacesTheFiveCharacters) {
    EXPECT_EQ(Escaped("a&b'c>d<e\"f"_w), "a&amp;b&apos;c&gt;d&lt;e&quot;f");
    EXPECT_EQ(Escaped("&&&&&"_w), "&amp;&amp;&amp;&amp;&amp;");
}

TEST(XmlEscapeText, DoesNotSpareWhatLooksLikeAnEntity) {
    EXPECT_EQ(Escaped("&amp;&#65;"_w), "&amp;amp;&amp;#65;");
}

TEST(XmlEscapeText, CopiesEverythingElse) {
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

TEST(XmlWriteAttributes, StandInOrderEscapedInDoubleQuotes) {
    EXPECT_EQ(Written(Element("Name", {{"a", "1"}, {"b", ""}, {"k", "x\"y'z"}, {"l", "1 > 0 & 0 < 1"}})),
              "<Name a=\"1\" b=\"\" k=\"x&quot;y&apos;z\" l=\"1 &gt; 0 &amp; 0 &lt; 1\"/>");
}

TEST(XmlWriteAttributes, DuplicatesAreBothWritten) {
    EXPECT_EQ(Written(Element("a", {{"k", "1"}, {"k", "2"}})), "<a k=\"1\" k=\"2\"/>");
}

TEST(XmlWriteAttributes, LineFeedsInsideStandAsTheyAre) {
    EXPECT_EQ(Written(Element("a", {{"k", "1\n\t2\r"}})), "<a k=\"1\\n\\t2\\r\"/>");
}

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

TEST(XmlWriteNode, ChildlessElementWithoutAValueIsOneTag) {
    EXPECT_EQ(Written(Element("Name")), "<Name/>");
    EXPECT_EQ(Written(Element("Name", {{"a", "1"}})), "<Name a=\"1\"/>");
}

TEST(XmlWriteNode, SingleLineValueStandsBetweenTheTags) {
    EXPECT_EQ(Written(Element("Value", {}, "12")), "<Value>12</Value>");
    EXPECT_EQ(Written(Element("Name", {}, "a<b")), "<Name>a&lt;b</Name>");
    EXPECT_EQ(Written(Element("Name", {{"k", "v"}}, " \t\r ")), "<Name k=\"v\"> \\t\\r </Name>");
}

TEST(XmlWriteNode, ClosingBracketInAValueIsEscaped) {
    EXPECT_EQ(Written(Element("a", {}, "1 > 0")), "<a>1 &gt; 0</a>");
}

TEST(XmlWriteNode, ValueWithLineFeedsStandsOnLinesOfItsOwn) {
    EXPECT_EQ(WrittenAt(1, Element("e", {}, "one\ntwo")), "\\t<e>\\n\\t\\tone\\ntwo\\n\\t</e>");
    EXPECT_EQ(Written(Element("e", {}, "\n")), "<e>\\n\\t\\n\\n</e>");
}

TEST(XmlWriteNode, ValueStandsBeforeTheChildren) {
    EXPECT_EQ(Written(Element("e", {}, "v", {Element("c")})), "<e>\\n\\tv\\n\\t<c/>\\n</e>");
    EXPECT_EQ(WrittenAt(2, Element("e", {}, "one\ntwo", {Element("c")})),
              "\\t\\t<e>\\n\\t\\t\\tone\\ntwo\\n\\t\\t\\t<c/>\\n\\t\\t</e>");
}

TEST(XmlWriteNode, ChildrenStandOneTabDeeperEach) {
    EXPECT_EQ(Written(Element("a", {{"k", "v"}}, "",
                              {Element("b", {}, "", {Element("c", {}, "1"), Comment("n")}), Element("d")})),
              "<a k=\"v\">\\n\\t<b>\\n\\t\\t<c>1</c>\\n\\t\\t<!--n-->\\n\\t</b>\\n\\t<d/>\\n</a>");
}

TEST(XmlWriteNode, LongNamesAreWrittenWhole) {
    for (const std::size_t length : {127, 128, 129, 5000}) {
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

TEST(XmlWriteNode, CommentIsNotEscaped) {
    EXPECT_EQ(Written(Comment(" note ")), "<!-- note -->");
    EXPECT_EQ(Written(Comment("a & b < c \"d\"")), "<!--a & b < c \"d\"-->");
    EXPECT_EQ(Written(Comment("")), "<!---->");
    EXPECT_EQ(WrittenAt(1, Element("a", {}, "", {Comment("two\nlines")})),
              "\\t<a>\\n\\t\\t<!--two\\nlines-->\\n\\t</a>");
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
    document.SetAttribute(comment, "k"_w, "lost"_w);
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

TEST(XmlWriteDocument, EveryTopLevelNodeEndsWithALineFeed) {
    XmlDocument document;
    Build(document, document.root, Declaration());
    Build(document, document.root, Comment("c"));
    Build(document, document.root, Element("Settings", {}, "", {Element("Table", {{"name", "S"}})}));
    EXPECT_EQ(Written(document.root),
              "<?xml version=\"1.0\"?>\\n<!--c-->\\n<Settings>\\n\\t<Table name=\"S\"/>\\n</Settings>\\n");
}

TEST(XmlWriteDocument, SubtreeHasNoLineFeedBehindIt) {
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

TEST(XmlWriteDocument, LineFeedsOfAValueDoNotComeBackAsTheyWere) {
    XmlDocument document;
    Build(document, document.root, Element("p", {}, "", {Element("e", {}, "one\ntwo")}));
    EXPECT_EQ(test::Parsed(WideView(test::WrittenUnits(*document.root))), "p(e'one\\ntwo\\n\\t')");
}

// ---- Narrow texts

// The bytes that are written for an element "a" with this text and attribute value.
std::string NarrowBytes(std::u16string_view text) {
    XmlDocument document;
    XmlNode* a = Build(document, document.root, Element("a"));
    document.SetText(a, Wide(text));
    document.SetAttribute(a, "k"_w, Wide(text));
    NarrowXmlOutput out;
    WriteDocument(*a, out);
    return out.Text();
}

TEST(XmlWriteNarrow, KeepsTheLowByteOfEachUnit) {
    EXPECT_EQ(NarrowBytes(u"b\u00E9\u0101\uFFC3"), "<a k=\"b\xE9\x01\xC3\">b\xE9\x01\xC3</a>");
    EXPECT_EQ(NarrowBytes(u"\u0100x"), std::string("<a k=\"\0x\">\0x</a>", 16));
}

TEST(XmlWriteNarrow, EscapesByTheWholeUnit) {
    EXPECT_EQ(NarrowBytes(u"<"), "<a k=\"&lt;\">&lt;</a>");
    EXPECT_EQ(NarrowBytes(u"\u0126\u203C\u0422\u013E\u0127"), "<a k=\"&<\">'\">&<\">'</a>");
}

TEST(XmlWriteNarrow, FindsLineFeedsByTheWholeUnit) {
    EXPECT_EQ(NarrowBytes(u"\u010A"), "<a k=\"\n\">\n</a>");
    EXPECT_EQ(NarrowBytes(u"\n"), "<a k=\"\n\">\n\t\n\n</a>");
}

}  // namespace
}  // namespace mox
