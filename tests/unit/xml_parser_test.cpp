// The parser between the nodes: top level, declaration, comments, and what is left after a failure. What
// stands inside elements is in xml_parser_content_test.cpp.
#include "mox_xmlApi/xml/xml_parser.h"

#include <gtest/gtest.h>
#include <string>

#include "mox_xmlApi/xml/xml_document.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Parsed;
using test::Wide;

// ---- Top level

TEST(XmlParser, EmptyTextIsAnEmptyDocument) {
    EXPECT_EQ(Parsed(""), "");
}

TEST(XmlParser, WhitespaceAloneIsAnEmptyDocument) {
    EXPECT_EQ(Parsed(" \t\r\n \n"), "");
}

TEST(XmlParser, OtherUnicodeSpacesAreNoWhitespace) {
    for (const char16_t space : {u'\v', u'\f', u'\u00A0', u'\u2003', u'\u3000', u'\uFEFF'})
        EXPECT_EQ(Parsed(WideView(Wide(std::u16string(1, space) + u"<a/>"))), "failed") << unsigned{space};
}

TEST(XmlParser, SingleElementNeedsNothingBehindIt) {
    EXPECT_EQ(Parsed("<a/>"), "a");
    EXPECT_EQ(Parsed("  \n<a></a>"), "a");
}

TEST(XmlParser, OneUnitBehindTheLastNodeIsIgnoredWhateverItIs) {
    EXPECT_EQ(Parsed("<a/>x"), "a");
    EXPECT_EQ(Parsed("<a/><"), "a");
    EXPECT_EQ(Parsed("<a/>&"), "a");
    EXPECT_EQ(Parsed("<a/> "), "a");
    EXPECT_EQ(Parsed("<a></a>>"), "a");
    EXPECT_EQ(Parsed("<!--c-->x"), "!'c'");
    EXPECT_EQ(Parsed(WideView(Wide(std::u16string_view(u"<a/>\0", 5)))), "a");
}

TEST(XmlParser, SecondUnitBehindTheLastNodeMustBeWhitespace) {
    EXPECT_EQ(Parsed("<a/>xx"), "failed [a]");
    EXPECT_EQ(Parsed("<a/>x \n\t"), "a");
    EXPECT_EQ(Parsed("<a/> x"), "failed [a]");
}

TEST(XmlParser, TopLevelNodesNeedOneUnitBetweenThem) {
    EXPECT_EQ(Parsed("<a/>\n<b/>"), "a b");
    EXPECT_EQ(Parsed("<a/><b/>"), "failed [a]");
    EXPECT_EQ(Parsed("<a></a><b></b>"), "failed [a]");
    EXPECT_EQ(Parsed("<!--c--><a/>"), "failed [!'c']");
    EXPECT_EQ(Parsed("<?xml version=\"1.0\"?><a/>"), "failed [?xml{version='1.0'}]");
}

TEST(XmlParser, UnitBetweenTopLevelNodesIsNotLookedAt) {
    EXPECT_EQ(Parsed("<a/>x<b/>"), "a b");
    EXPECT_EQ(Parsed("<a/><<b/>"), "a b");
    EXPECT_EQ(Parsed("<a/>>\n<b/>;<!--c-->-<d/>"), "a b !'c' d");
}

TEST(XmlParser, TextAtTopLevelFails) {
    EXPECT_EQ(Parsed("a"), "failed");
    EXPECT_EQ(Parsed("text<a/>"), "failed");
    EXPECT_EQ(Parsed(">"), "failed");
    EXPECT_EQ(Parsed("&amp;"), "failed");
}

TEST(XmlParser, ByteOrderMarkFails) {
    EXPECT_EQ(Parsed(WideView(Wide(u"\uFEFF<a/>"))), "failed");
}

TEST(XmlParser, BareOpeningBracketFails) {
    EXPECT_EQ(Parsed("<"), "failed");
    EXPECT_EQ(Parsed("< "), "failed");
    EXPECT_EQ(Parsed("< a/>"), "failed");
    EXPECT_EQ(Parsed("<>"), "failed");
    EXPECT_EQ(Parsed("</a>"), "failed");
}

// ---- Declaration

TEST(XmlParserDeclaration, IsTheFirstNodeWithItsAttributes) {
    EXPECT_EQ(Parsed("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"), "?xml{version='1.0' encoding='UTF-8'}");
    EXPECT_EQ(Parsed("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>"),
              "?xml{version='1.0' encoding='UTF-8'} a");
}

TEST(XmlParserDeclaration, HasNoValue) {
    XmlDocument document;
    ASSERT_TRUE(document.Parse(Wide("<?xml version=\"1.0\"?>"), document.root));
    EXPECT_EQ(document.root->children.At(0)->kind, XmlNodeKind::ProcessingInstruction);
    EXPECT_TRUE(document.root->children.At(0)->value.IsEmpty());
}

TEST(XmlParserDeclaration, WhitespaceMayStandBeforeItAndBetweenItsParts) {
    EXPECT_EQ(Parsed(" \n<?xml \t version = \"1.0\"\r\n?>"), "?xml{version='1.0'}");
}

TEST(XmlParserDeclaration, NeedsAVersionWhateverItsValue) {
    EXPECT_EQ(Parsed("<?xml encoding=\"UTF-8\"?>"), "failed");
    EXPECT_EQ(Parsed("<?xml ?>"), "failed");
    EXPECT_EQ(Parsed("<?xml Version=\"1.0\"?>"), "failed");
    EXPECT_EQ(Parsed("<?xml version=\"\"?>"), "?xml{version=''}");
    EXPECT_EQ(Parsed("<?xml version=\"&lt;any&gt;\"?>"), "?xml{version='<any>'}");
}

TEST(XmlParserElement, KeepsAnyNumberOfAttributes) {
    for (const int count : {0, 1, 2, 15, 16, 17, 31, 32, 33, 47, 48, 49, 1000}) {
        std::string attributes;
        std::string expected;
        for (int i = 0; i < count; ++i) {
            const std::string number = std::to_string(i);
            attributes += " k" + number + "=\"v" + number + '"';
            expected += (i == 0 ? "k" : " k") + number + "='v" + number + "'";
        }
        EXPECT_EQ(Parsed("<a" + attributes + "><b" + attributes + "/></a>"),
                  count == 0 ? "a(b)" : "a{" + expected + "}(b{" + expected + "})")
            << count;
    }
}

TEST(XmlParserDeclaration, KeepsOtherAttributesInAnyOrder) {
    EXPECT_EQ(Parsed("<?xml standalone=\"no\" encoding=\"x\" version=\"1\"version=\"2\"?>"),
              "?xml{standalone='no' encoding='x' version='1' version='2'}");
}

TEST(XmlParserDeclaration, NeedsExactlyThatName) {
    EXPECT_EQ(Parsed("<?xml-stylesheet version=\"1.0\"?>"), "failed");
    EXPECT_EQ(Parsed("<?XML version=\"1.0\"?>"), "failed");
    EXPECT_EQ(Parsed("<?xm version=\"1.0\"?>"), "failed");
    EXPECT_EQ(Parsed("<?xml1 version=\"1.0\"?>"), "failed");
    EXPECT_EQ(Parsed("<?php echo?>"), "failed");
    EXPECT_EQ(Parsed("<? xml version=\"1.0\"?>"), "failed");
    EXPECT_EQ(Parsed("<?\?>"), "failed");
}

TEST(XmlParserDeclaration, NeedsWhitespaceBehindItsName) {
    EXPECT_EQ(Parsed("<?xml?>"), "failed");
    EXPECT_EQ(Parsed("<?xmlversion=\"1.0\"?>"), "failed");
    EXPECT_EQ(Parsed("<?xml"), "failed");
    EXPECT_EQ(Parsed("<?xml "), "failed");
}

TEST(XmlParserDeclaration, NeedsItsClosingPairUnparted) {
    EXPECT_EQ(Parsed("<?xml version=\"1.0\"? >"), "failed");
    EXPECT_EQ(Parsed("<?xml version=\"1.0\">"), "failed");
    EXPECT_EQ(Parsed("<?xml version=\"1.0\"/>"), "failed");
    EXPECT_EQ(Parsed("<?xml version=\"1.0\"?"), "failed");
    EXPECT_EQ(Parsed("<?xml version=\"1.0\""), "failed");
    EXPECT_EQ(Parsed("<?xml version=\"1.0\" x?>"), "failed");
}

TEST(XmlParserDeclaration, FailsAfterAnyOtherNode) {
    EXPECT_EQ(Parsed("<a/>\n<?xml version=\"1.0\"?>"), "failed [a]");
    EXPECT_EQ(Parsed("<!--c-->\n<?xml version=\"1.0\"?>"), "failed [!'c']");
    EXPECT_EQ(Parsed("<?xml version=\"1.0\"?>\n<?xml version=\"1.0\"?>"), "failed [?xml{version='1.0'}]");
}

TEST(XmlParserDeclaration, FailsInsideAnElement) {
    EXPECT_EQ(Parsed("<a><?xml version=\"1.0\"?></a>"), "failed");
    EXPECT_EQ(Parsed("<a>text<?x?></a>"), "failed");
}

TEST(XmlParserDeclaration, FailsBelowAnElementThatReceivesTheTopLevelNodes) {
    XmlDocument document;
    XmlNode* element = test::Build(document, document.root, test::Element("e"));
    EXPECT_FALSE(document.Parse(Wide("<?xml version=\"1.0\"?>"), element));
    EXPECT_EQ(test::Dump(element), "e");
}

// ---- Comments

TEST(XmlParserComment, KeepsItsTextVerbatim) {
    EXPECT_EQ(Parsed("<!-- a - b -->"), "!' a - b '");
    EXPECT_EQ(Parsed("<!--\t\n x &amp; &unknown; &#65; < \"'\r\n-->"),
              "!'\\t\\n x &amp; &unknown; &#65; < \"\\'\\r\\n'");
}

TEST(XmlParserComment, MayBeEmpty) {
    EXPECT_EQ(Parsed("<!---->"), "!''");
}

TEST(XmlParserComment, HasNoName) {
    XmlDocument document;
    ASSERT_TRUE(document.Parse(Wide("<!--c-->"), document.root));
    EXPECT_TRUE(document.root->children.At(0)->name.IsEmpty());
    EXPECT_TRUE(document.root->children.At(0)->attributes.IsEmpty());
}

TEST(XmlParserComment, BracketInsideFails) {
    EXPECT_EQ(Parsed("<!-- a > b -->"), "failed");
    EXPECT_EQ(Parsed("<!-->-->"), "failed");
    EXPECT_EQ(Parsed("<!--->-->"), "failed");
    EXPECT_EQ(Parsed("<!--a->-->"), "failed");
    EXPECT_EQ(Parsed("<!-- <b> -->"), "failed");
}

TEST(XmlParserComment, TwoDashesInsideFail) {
    EXPECT_EQ(Parsed("<!-- a -- b -->"), "failed");
    EXPECT_EQ(Parsed("<!----->"), "failed");
    EXPECT_EQ(Parsed("<!--a--->"), "failed");
    EXPECT_EQ(Parsed("<!------>"), "failed");
}

TEST(XmlParserComment, SingleDashesMayStandAnywhere) {
    EXPECT_EQ(Parsed("<!--a-b-c- - - -d-->"), "!'a-b-c- - - -d'");
    EXPECT_EQ(Parsed("<!---a-->"), "!'-a'");
    EXPECT_EQ(Parsed("<!--- -->"), "!'- '");
    EXPECT_EQ(Parsed("<!--a - -->"), "!'a - '");
}

TEST(XmlParserComment, MustBeClosed) {
    for (const char* text : {"<!", "<!-", "<!--", "<!-- a", "<!-- a -", "<!-- a --"})
        EXPECT_EQ(Parsed(text), "failed") << text;
}

TEST(XmlParserComment, OtherMarkupWithAnExclamationMarkFails) {
    EXPECT_EQ(Parsed("<!DOCTYPE a>"), "failed");
    EXPECT_EQ(Parsed("<![CDATA[x]]>"), "failed");
    EXPECT_EQ(Parsed("<a><![CDATA[x]]></a>"), "failed");
    EXPECT_EQ(Parsed("<!-a-->"), "failed");
    EXPECT_EQ(Parsed("<! -- a -->"), "failed");
}

TEST(XmlParserComment, StandsBetweenElementsInOrder) {
    EXPECT_EQ(Parsed("<a><!--1--><b/><!--2--></a>\n<!--3-->"), "a(!'1' b !'2') !'3'");
}

TEST(XmlParserComment, KeepsZerosWhenTheTextItselfHasThem) {
    EXPECT_EQ(Parsed(WideView(Wide(std::u16string_view(u"<!--a\0-\0b-->", 12)))), "!'a\\u0000-\\u0000b'");
}

// ---- Failures and ends

TEST(XmlParserFailure, KeepsTopLevelNodesThatWereComplete) {
    EXPECT_EQ(Parsed("<?xml version=\"1.0\"?>\n<!--c-->\n<a k=\"v\">t<b/></a>\n<d>"),
              "failed [?xml{version='1.0'} !'c' a{k='v'}'t'(b)]");
}

TEST(XmlParserFailure, DropsTheNodeThatFailedWithItsWholeSubtree) {
    EXPECT_EQ(Parsed("<a><b><c k=\"v\">text</c><d/></b>"), "failed");
    EXPECT_EQ(Parsed("<a k=\"v\"><b/></x>"), "failed");
}

TEST(XmlParserFailure, LeavesTheDocumentReadyForAnotherParse) {
    XmlDocument document;
    EXPECT_FALSE(document.Parse(Wide("<a/>\n<b><c/>"), document.root));
    EXPECT_TRUE(document.Parse(Wide("<d/>"), document.root));
    EXPECT_EQ(test::DumpChildren(document.root), "a d");
}

TEST(XmlParserFailure, GivesItsMemoryBack) {
    XmlDocument document;
    std::size_t held = 0;
    for (int round = 0; round < 300; ++round) {
        EXPECT_FALSE(document.Parse(Wide("<a k=\"v\" l=\"&amp;\"><b>one<c/>two</b><!--x--><d e=\"f\""),
                                    document.root));
        if (round == 0) held = document.Pool().BytesHeld();
    }
    EXPECT_EQ(document.Pool().BytesHeld(), held);
}

// Only after the end of a top-level node, or one unit further, is a cut text a document.
TEST(XmlParserFailure, EveryCutTextFailsUnlessItEndsBetweenNodes) {
    const std::string_view text =
        "<?xml version=\"1.0\"?>\n<!--c-->\n<a x=\"&lt;1\" y = \"2\">t&amp;t<b/><!--d--> u<c>v</c></a>\n";
    std::string passed;
    for (std::size_t length = 0; length <= text.size(); ++length) {
        if (Parsed(text.substr(0, length)).substr(0, 6) != "failed") passed += std::to_string(length) + " ";
    }
    EXPECT_EQ(text.size(), 86U);
    EXPECT_EQ(passed, "0 21 22 30 31 85 86 ");
}

TEST(XmlParser, TopLevelNodesGoToTheGivenParent) {
    XmlDocument document;
    XmlNode* element =
        test::Build(document, document.root, test::Element("e", {}, "old", {test::Element("first")}));
    EXPECT_TRUE(document.Parse(Wide("<a/>\n<!--c-->\n<b/>"), element));
    EXPECT_EQ(test::DumpChildren(document.root), "e'old'(first a !'c' b)");
}

TEST(XmlParser, WithoutAParentNothingIsParsed) {
    XmlDocument document;
    EXPECT_FALSE(document.Parse("<a/>"_w, nullptr));
    EXPECT_TRUE(document.root->children.IsEmpty());
}

TEST(XmlParser, ParsingAloneDoesNotMakeTheDocumentLoaded) {
    XmlDocument document;
    EXPECT_TRUE(document.Parse(Wide("<a/>"), document.root));
    EXPECT_FALSE(document.loaded);
}

TEST(XmlParser, CallersTextIsLeftAlone) {
    XmlDocument document;
    WideString text = Wide("<a k=\"&lt;\">&amp;x</a>");
    const WideString before = text;
    ASSERT_TRUE(document.Parse(text, document.root));
    EXPECT_TRUE(text == before);
    text.assign(text.size(), wchar16{'#'});
    EXPECT_EQ(test::DumpChildren(document.root), "a{k='<'}'&x'");
}

}  // namespace
}  // namespace mox
