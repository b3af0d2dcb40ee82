// The parser inside elements: tags, names, attributes, character data, entities.
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

// ---- Tags

TEST(XmlParserElement, EmptyElementInBothForms) {
    EXPECT_EQ(Parsed("<a/>"), "a");
    EXPECT_EQ(Parsed("<a></a>"), "a");
    EXPECT_EQ(Parsed("<a> \n </a>"), "a");
    EXPECT_EQ(Parsed("<a \n/>"), "a");
    EXPECT_EQ(Parsed("<a \t></a>"), "a");
}

TEST(XmlParserElement, SlashAndBracketStandTogether) {
    EXPECT_EQ(Parsed("<a/ >"), "failed");
    EXPECT_EQ(Parsed("<a//>"), "failed");
    EXPECT_EQ(Parsed("<a/"), "failed");
    EXPECT_EQ(Parsed("<a/x"), "failed");
}

TEST(XmlParserElement, StartTagMustBeClosed) {
    for (const char* text : {"<a", "<a ", "<a\n", "<a>", "<a> ", "<a><", "<a></", "<a></a"})
        EXPECT_EQ(Parsed(text), "failed") << text;
}

TEST(XmlParserElement, OtherCharactersInTheStartTagFail) {
    for (const char* text : {"<a?>", "<a!>", "<a \"/>", "<a =\"1\"/>", "<a &/>", "<a</a>", "<a<b/>", "<a ;>"})
        EXPECT_EQ(Parsed(text), "failed") << text;
}

TEST(XmlParserElement, EndTagHasTheSameNameAndNoWhitespace) {
    EXPECT_EQ(Parsed("<a></a >"), "failed");
    EXPECT_EQ(Parsed("<a></ a>"), "failed");
    EXPECT_EQ(Parsed("<a></A>"), "failed");
    EXPECT_EQ(Parsed("<a></b>"), "failed");
    EXPECT_EQ(Parsed("<a></aa>"), "failed");
    EXPECT_EQ(Parsed("<aa></a>"), "failed");
    EXPECT_EQ(Parsed("<a></>"), "failed");
    EXPECT_EQ(Parsed("<a></a/>"), "failed");
    EXPECT_EQ(Parsed("<a></a\n>"), "failed");
    EXPECT_EQ(Parsed("<a>< /a>"), "failed");
}

TEST(XmlParserElement, ElementsNest) {
    EXPECT_EQ(Parsed("<a><b><c/><d></d></b><e/></a>"), "a(b(c d) e)");
    EXPECT_EQ(Parsed("<a><a><a/></a></a>"), "a(a(a))");
}

TEST(XmlParserElement, ElementsMustNotOverlap) {
    EXPECT_EQ(Parsed("<a><b></a></b>"), "failed");
    EXPECT_EQ(Parsed("<a><b></a>"), "failed");
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

// ---- Names

TEST(XmlParserName, StartsWithALetterUnderscoreOrColon) {
    EXPECT_EQ(Parsed("<a/>"), "a");
    EXPECT_EQ(Parsed("<Z/>"), "Z");
    EXPECT_EQ(Parsed("<_/>"), "_");
    EXPECT_EQ(Parsed("<:/>"), ":");
    for (const char* text : {"<1/>", "<-a/>", "<.a/>", "<@/>", "<[/>", "<`/>", "<{/>", "<//>", "<;/>"})
        EXPECT_EQ(Parsed(text), "failed") << text;
}

TEST(XmlParserName, GoesOnWithLettersDigitsUnderscoresAndColons) {
    EXPECT_EQ(Parsed("<a0_:Z9/>"), "a0_:Z9");
    EXPECT_EQ(Parsed("<xs:element1 xsi:type_2=\"\"/>"), "xs:element1{xsi:type_2=''}");
}

TEST(XmlParserName, HyphenAndFullStopEndIt) {
    EXPECT_EQ(Parsed("<a-b/>"), "failed");
    EXPECT_EQ(Parsed("<a.b/>"), "failed");
    EXPECT_EQ(Parsed("<a-/>"), "failed");
    EXPECT_EQ(Parsed("<a x-y=\"1\"/>"), "failed");
    EXPECT_EQ(Parsed("<a x.y=\"1\"/>"), "failed");
    EXPECT_EQ(Parsed("<a></a-b>"), "failed");
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

// ---- Attributes

TEST(XmlParserAttribute, AllAreKeptInOrderWithTheirPositions) {
    EXPECT_EQ(Parsed("<a x=\"1\" y=\"\" z=\"3\"/>"), "a{x='1' y='' z='3'}");
    EXPECT_EQ(Parsed("<a x=\"1\"></a>"), "a{x='1'}");
}

TEST(XmlParserAttribute, ManyAreKept) {
    std::string text = "<a";
    std::string expected = "a{";
    for (int i = 0; i < 100; ++i) {
        text += Join({" k", std::to_string(i), "=\"", std::to_string(i), "\""});
        expected += Join({i == 0 ? "k" : " k", std::to_string(i), "='", std::to_string(i), "'"});
    }
    EXPECT_EQ(Parsed(text + "/>"), expected + "}");
}

TEST(XmlParserAttribute, DuplicatesAreBothKept) {
    EXPECT_EQ(Parsed("<a x=\"1\" x=\"2\"/>"), "a{x='1' x='2'}");
}

TEST(XmlParserAttribute, WhitespaceMayStandAroundTheEqualsSign) {
    EXPECT_EQ(Parsed("<a x =\"1\" y= \"2\" z\t=\r\n\"3\"/>"), "a{x='1' y='2' z='3'}");
}

TEST(XmlParserAttribute, NoWhitespaceIsNeededBetweenThem) {
    EXPECT_EQ(Parsed("<a x=\"1\"y=\"2\"/>"), "a{x='1' y='2'}");
    EXPECT_EQ(Parsed("<a x=\"1\"_=\"2\"></a>"), "a{x='1' _='2'}");
}

TEST(XmlParserAttribute, NeedsAnEqualsSignAndADoubleQuote) {
    for (const char* text : {"<a x/>", "<a x></a>", "<a x=/>", "<a x=1/>", "<a x \"1\"/>", "<a x==\"1\"/>",
                             "<a x='1'/>", "<a x=\"1'/>", "<a x y=\"1\"/>"})
        EXPECT_EQ(Parsed(text), "failed") << text;
}

TEST(XmlParserAttribute, TextThatEndsInsideItFails) {
    for (const char* text : {"<a x", "<a x ", "<a x=", "<a x= ", "<a x=\"", "<a x=\"1", "<a x=\"1\"",
                             "<a x=\"1\" ", "<a x=\"&", "<a x=\"&amp", "<a x=\"&amp;"})
        EXPECT_EQ(Parsed(text), "failed") << text;
}

TEST(XmlParserAttribute, ValueMayHoldAllButBracketAndQuote) {
    EXPECT_EQ(Parsed("<a x=\"1 > 2\"/>"), "a{x='1 > 2'}");
    EXPECT_EQ(Parsed("<a x=\"1 < 2\"/>"), "failed");
    EXPECT_EQ(Parsed("<a x=\"  '\t\n\r/>=  \"/>"), "a{x='  \\'\\t\\n\\r/>=  '}");
}

TEST(XmlParserAttribute, ValueDecodesEntities) {
    EXPECT_EQ(Parsed("<a x=\"&lt;&amp;&gt;&quot;&apos;\" y=\"a&amp;b&amp;c\" z=\"&amp;lt;\"/>"),
              "a{x='<&>\"\\'' y='a&b&c' z='&lt;'}");
}

TEST(XmlParserAttribute, ValueAfterOneWithEntitiesIsWhole) {
    EXPECT_EQ(Parsed("<a x=\"&lt;1\" y=\"two\">three</a>"), "a{x='<1' y='two'}'three'");
}

TEST(XmlParserAttribute, UnknownEntityFails) {
    for (const char* text : {"<a x=\"&\"/>", "<a x=\"&;\"/>", "<a x=\"&#65;\"/>", "<a x=\"&nbsp;\"/>",
                             "<a x=\"&amp\"/>", "<a x=\"&AMP;\"/>", "<a x=\"a & b\"/>"})
        EXPECT_EQ(Parsed(text), "failed") << text;
}

TEST(XmlParserAttribute, ValueKeepsLoneSurrogatesAndZeros) {
    EXPECT_EQ(Parsed16(std::u16string_view(u"<a x=\"\xD800\0\xDFFF\uFFFF\"/>", 13)),
              "a{x='\\uD800\\u0000\\uDFFF\\uFFFF'}");
}

// ---- Character data

TEST(XmlParserText, LeadingWhitespaceIsDroppedAndTrailingKept) {
    EXPECT_EQ(Parsed("<a> one <b/> two </a>"), "a'one \\ntwo '(b)");
    EXPECT_EQ(Parsed("<a>\r\n\tone\r\n\t</a>"), "a'one\\r\\n\\t'");
}

TEST(XmlParserText, PiecesAreJoinedByALineFeed) {
    EXPECT_EQ(Parsed("<a>1<b/>2<c></c>3<!--x-->4</a>"), "a'1\\n2\\n3\\n4'(b c !'x')");
}

TEST(XmlParserText, PieceOfWhitespaceAloneIsNone) {
    EXPECT_EQ(Parsed("<a>1<b/> \n<c/>2</a>"), "a'1\\n2'(b c)");
    EXPECT_EQ(Parsed("<a> <b/> <c/> </a>"), "a(b c)");
    EXPECT_EQ(Parsed("<a><b/>1</a>"), "a'1'(b)");
}

TEST(XmlParserText, PiecesStayWithTheirOwnElement) {
    EXPECT_EQ(Parsed("<a>1<b>2<c>3</c>4</b>5<d>6</d>7</a>"), "a'1\\n5\\n7'(b'2\\n4'(c'3') d'6')");
}

TEST(XmlParserText, WhitespaceInsideIsKept) {
    EXPECT_EQ(Parsed("<a>one  two\n\n\tthree</a>"), "a'one  two\\n\\n\\tthree'");
}

TEST(XmlParserText, OtherUnicodeSpacesInFrontAreText) {
    EXPECT_EQ(Parsed16(u"<a>\u00A0x</a>"), "a'\\u00A0x'");
    EXPECT_EQ(Parsed("<a>\vx\f</a>"), "a'\\u000Bx\\u000C'");
}

TEST(XmlParserText, BracketQuotesAndEqualsSignsAreText) {
    EXPECT_EQ(Parsed("<a>1 > 2 \"x\" 'y' = ]]> / ? ! --</a>"), "a'1 > 2 \"x\" \\'y\\' = ]]> / ? ! --'");
}

TEST(XmlParserText, KeepsLoneSurrogatesAndZeros) {
    EXPECT_EQ(Parsed16(std::u16string_view(u"<a>\0\xDC00 \xD83D\xDE00\uFEFF\0</a>", 14)),
              "a'\\u0000\\uDC00 \\uD83D\\uDE00\\uFEFF\\u0000'");
}

TEST(XmlParserText, MustBeFollowedByAnEndTag) {
    for (const char* text : {"<a>text", "<a>text<", "<a>text<b/>", "<a>text<b/> ", "<a>text<!--c-->"})
        EXPECT_EQ(Parsed(text), "failed") << text;
}

TEST(XmlParserText, LongTextIsKeptWhole) {
    const std::string piece(100000, 'x');
    EXPECT_EQ(Parsed(Join({"<a>", piece, "<b/>", piece, "</a>"})), Join({"a'", piece, "\\n", piece, "'(b)"}));
}

// ---- Entities in character data

TEST(XmlParserEntity, TheFiveAreDecoded) {
    EXPECT_EQ(Parsed("<a>&lt;&amp;</a>"), "a'<&'");
    EXPECT_EQ(Parsed("<a>&quot;x&apos;&gt;</a>"), "a'\"x\\'>'");
    EXPECT_EQ(Parsed("<a>one&amp;two&amp;three<b/>&lt;four</a>"), "a'one&two&three\\n<four'(b)");
}

TEST(XmlParserEntity, DecodedTextIsNotDecodedAgain) {
    EXPECT_EQ(Parsed("<a>&amp;lt;&amp;amp;</a>"), "a'&lt;&amp;'");
    EXPECT_EQ(Parsed("<a>&lt;b/&gt;</a>"), "a'<b/>'");
}

TEST(XmlParserEntity, WhitespaceInFrontIsDroppedAndBehindKept) {
    EXPECT_EQ(Parsed("<a> &amp; </a>"), "a'& '");
}

TEST(XmlParserEntity, OthersFail) {
    EXPECT_EQ(Parsed("<a>&lt;&#65;</a>"), "failed");
    for (const char* text : {"<a>&#x41;</a>", "<a>&nbsp;</a>", "<a>&LT;</a>", "<a>&ltx;</a>", "<a>& lt;</a>",
                             "<a>&lt ;</a>", "<a>&;</a>", "<a>&&amp;</a>", "<a>x & y</a>"})
        EXPECT_EQ(Parsed(text), "failed") << text;
}

TEST(XmlParserEntity, WithoutASemicolonFails) {
    EXPECT_EQ(Parsed("<a>&lt</a>"), "failed");
    EXPECT_EQ(Parsed("<a>&amp</a>;"), "failed");
    EXPECT_EQ(Parsed("<a>&am<b/>p;</a>"), "failed");
    EXPECT_EQ(Parsed(Join({"<a>&", std::string(100000, 'x'), "</a>"})), "failed");
}

TEST(XmlParserEntity, AtTheEndOfTheTextFails) {
    EXPECT_EQ(Parsed("<a>&amp;"), "failed");
    EXPECT_EQ(Parsed("<a>&amp"), "failed");
    EXPECT_EQ(Parsed("<a>&"), "failed");
}

TEST(XmlParserEntity, OutsideTextAndValuesFails) {
    EXPECT_EQ(Parsed("<a &amp;/>"), "failed");
    EXPECT_EQ(Parsed("<&lt;/>"), "failed");
    EXPECT_EQ(Parsed("&lt;a/>"), "failed");
}

}  // namespace
}  // namespace mox
