// The parser where the exports do not show it: units that no host can hand over in a document, many and long things,
// what is left after a failure. Which texts are documents is in tests/host/: document_syntax_test.cpp and
// refused_texts_test.cpp.
#include "mox_xmlApi/xml/xml_parser.h"

#include <gtest/gtest.h>
#include <string>

#include "mox_xmlApi/xml/xml_document.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Join;
using test::Parsed;
using test::Wide;

std::string Parsed16(std::u16string_view text) {
    return Parsed(WideView(Wide(text)));
}

// ---- Units and sizes

TEST(XmlParser, OtherUnicodeSpacesAreNoWhitespace) {
    for (const char16_t space : {u'\v', u'\f', u'\u00A0', u'\u2003', u'\u3000', u'\uFEFF'})
        EXPECT_EQ(Parsed(WideView(Wide(std::u16string(1, space) + u"<a/>"))), "failed") << unsigned{space};
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

TEST(XmlParserElement, ManyChildrenAndLevelsKeepTheirOrder) {
    std::string text;
    std::string expected;
    for (int i = 0; i < 200; ++i) {
        text += Join({"<a><b i=\"", std::to_string(i), "\"/>"});
        expected += Join({i == 0 ? "a(b{i='" : " a(b{i='", std::to_string(i), "'}"});
    }
    for (int i = 200; i-- > 0;) {
        text += "<c/></a>";
        expected += " c)";
    }
    EXPECT_EQ(Parsed(text), expected);
}

TEST(XmlParserName, LettersBeyondAsciiBelongToNames) {
    EXPECT_EQ(Parsed16(u"<\u00E9/>"), "\\u00E9");
    EXPECT_EQ(Parsed16(u"<caf\u00E9 \u0416\u4E2D=\"1\"></caf\u00E9>"), "caf\\u00E9{\\u0416\\u4E2D='1'}");
}

TEST(XmlParserName, OtherUnitsBeyondAsciiDoNot) {
    for (const char16_t unit :
         {u'\u00D7', u'\u00A0', u'\u2028', u'\u20AC', u'\uFFFF', char16_t{0xD800}, char16_t{0xDFFF}}) {
        EXPECT_EQ(Parsed16(std::u16string(u"<").append(1, unit).append(u"/>")), "failed") << unsigned{unit};
        EXPECT_EQ(Parsed16(std::u16string(u"<a").append(1, unit).append(u"/>")), "failed") << unsigned{unit};
    }
}

TEST(XmlParserName, ZeroDoesNotBelongToNames) {
    EXPECT_EQ(Parsed16(std::u16string_view(u"<a\0/>", 5)), "failed");
    EXPECT_EQ(Parsed16(std::u16string_view(u"<\0/>", 4)), "failed");
}

TEST(XmlParserAttribute, ValueKeepsLoneSurrogatesAndZeros) {
    EXPECT_EQ(Parsed16(std::u16string_view(u"<a x=\"\xD800\0\xDFFF\uFFFF\"/>", 13)),
              "a{x='\\uD800\\u0000\\uDFFF\\uFFFF'}");
}

TEST(XmlParserText, OtherUnicodeSpacesInFrontAreText) {
    EXPECT_EQ(Parsed16(u"<a>\u00A0x</a>"), "a'\\u00A0x'");
    EXPECT_EQ(Parsed("<a>\vx\f</a>"), "a'\\u000Bx\\u000C'");
}

TEST(XmlParserText, KeepsLoneSurrogatesAndZeros) {
    EXPECT_EQ(Parsed16(std::u16string_view(u"<a>\0\xDC00 \xD83D\xDE00\uFEFF\0</a>", 14)),
              "a'\\u0000\\uDC00 \\uD83D\\uDE00\\uFEFF\\u0000'");
}

TEST(XmlParserText, LongTextIsKeptWhole) {
    const std::string piece(100000, 'x');
    EXPECT_EQ(Parsed(Join({"<a>", piece, "<b/>", piece, "</a>"})), Join({"a'", piece, "\\n", piece, "'(b)"}));
}

TEST(XmlParserEntity, MayBeOfAnyLengthAndIsUnknownThen) {
    EXPECT_EQ(Parsed(Join({"<a>&", std::string(100000, 'x'), "</a>"})), "failed");
    EXPECT_EQ(Parsed(Join({"<a>&", std::string(100000, 'x'), ";</a>"})), "failed");
}

TEST(XmlParserComment, KeepsZerosWhenTheTextItselfHasThem) {
    EXPECT_EQ(Parsed(WideView(Wide(std::u16string_view(u"<!--a\0-\0b-->", 12)))), "!'a\\u0000-\\u0000b'");
}

TEST(XmlParser, ZeroAfterTheLastNodeIsPassedOverLikeAnyUnit) {
    EXPECT_EQ(Parsed16(std::u16string_view(u"<a/>\0", 5)), "a");
}

// ---- Nodes

TEST(XmlParserDeclaration, HasNoValue) {
    XmlDocument document;
    ASSERT_TRUE(document.Parse(Wide("<?xml version=\"1.0\"?>"), document.root));
    EXPECT_EQ(document.root->children.At(0)->kind, XmlNodeKind::ProcessingInstruction);
    EXPECT_TRUE(document.root->children.At(0)->value.IsEmpty());
}

TEST(XmlParserComment, HasNoName) {
    XmlDocument document;
    ASSERT_TRUE(document.Parse(Wide("<!--c-->"), document.root));
    EXPECT_TRUE(document.root->children.At(0)->name.IsEmpty());
    EXPECT_TRUE(document.root->children.At(0)->attributes.IsEmpty());
}

// ---- After a failure

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

// ---- What a parse is given

TEST(XmlParser, TopLevelNodesGoToTheGivenParent) {
    XmlDocument document;
    XmlNode* element =
        test::Build(document, document.root, test::Element("e", {}, "old", {test::Element("first")}));
    EXPECT_TRUE(document.Parse(Wide("<a/>\n<!--c-->\n<b/>"), element));
    EXPECT_EQ(test::DumpChildren(document.root), "e'old'(first a !'c' b)");
}

TEST(XmlParserDeclaration, FailsBelowAnElementThatReceivesTheTopLevelNodes) {
    XmlDocument document;
    XmlNode* element = test::Build(document, document.root, test::Element("e"));
    EXPECT_FALSE(document.Parse(Wide("<?xml version=\"1.0\"?>"), element));
    EXPECT_EQ(test::Dump(element), "e");
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
