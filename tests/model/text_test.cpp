#include "tests/model/text.h"

#include <utility>

#include "tests/model/model_support.h"

namespace model {
namespace {

// The nodes of a text; after "failed", those that were complete.
std::string Parsed(std::string_view text) {
    Node document{Kind::Document};
    const bool parsed = ParseInto(document, Wide(text));
    EXPECT_EQ(Parse(Wide(text)) != nullptr, parsed) << text;
    return (parsed ? "" : "failed ") + DumpChildren(document);
}

TEST(ModelParser, DeclarationsCommentsElementsAndAttributes) {
    EXPECT_EQ(Parsed("<?xml version=\"1.0\" encoding=\"x\"?>\n<!-- a - b -->\n<r k=\"v\"l = \"\"><c/></r>"),
              "?xml{version='1.0' encoding='x'} !' a - b ' r{k='v' l=''}(c)");
    EXPECT_EQ(Parsed(" \t\r\n"), "");
    EXPECT_EQ(Parsed("<a x=\"1\" x=\"2\"></a>"), "a{x='1' x='2'}");
    EXPECT_EQ(Parsed("<_:a1 xs:b_2=\"\"/>"), "_:a1{xs:b_2=''}");
}

TEST(ModelParser, TextLosesItsLeadingSpaceAndItsPiecesAreJoined) {
    EXPECT_EQ(Parsed("<a> one <b/> two </a>"), "a'one \\ntwo '(b)");
    EXPECT_EQ(Parsed("<a>1<!--c-->2<b/> <b/>3</a>"), "a'1\\n2\\n3'(!'c' b b)");
    EXPECT_EQ(Parsed("<a> \n </a>"), "a");
    EXPECT_EQ(Parsed("<a>]]> ' \" = \r\n\t</a>"), "a']]> \\' \" = \\r\\n\\t'");
}

TEST(ModelParser, TheFiveEntitiesAreDecodedOnce) {
    EXPECT_EQ(Parsed("<a k=\"&lt;&amp;&gt;&quot;&apos;\">&lt;&amp;lt;</a>"), "a{k='<&>\"\\''}'<&lt;'");
}

TEST(ModelParser, OneUnitAfterATopLevelNodeIsPassedOver) {
    EXPECT_EQ(Parsed("<a/>x<b/>\n<!--c--><"), "a b !'c'");
    EXPECT_EQ(Parsed("<a/><b/>"), "failed a");
    EXPECT_EQ(Parsed("<a/>xx"), "failed a");
}

TEST(ModelParser, WhatIsNotInTheDialectFails) {
    for (const char* text : {"x",
                             "<",
                             "<a",
                             "<a ",
                             "<a>",
                             "<a></a",
                             "<a></a >",
                             "<a></A>",
                             "<a><b></a></b>",
                             "</a>",
                             "<a/ >",
                             "< a/>",
                             "<a-b/>",
                             "<a.b/>",
                             "<1/>",
                             "<a x='1'/>",
                             "<a x=\"<\"/>",
                             "<a x/>",
                             "<a x=\"1\"",
                             "<a>&#65;</a>",
                             "<a>&nbsp;</a>",
                             "<a>&amp</a>",
                             "<a>&amp;",
                             "<a x=\"&\"/>",
                             "<!DOCTYPE a>",
                             "<![CDATA[x]]>",
                             "<!-- > -->",
                             "<!-- -- -->",
                             "<!--->",
                             "<!-- a",
                             "<?xml?>",
                             "<?xml encoding=\"x\"?>",
                             "<?xml version=\"1\">",
                             "<?php version=\"1\"?>",
                             "<?xml version=\"1\"? >",
                             "<a><?xml version=\"1\"?></a>"}) {
        EXPECT_EQ(Parsed(text), "failed ") << text;
    }
    EXPECT_EQ(Parsed("<a/>\n<?xml version=\"1\"?>"), "failed a");
}

TEST(ModelParser, LettersBeyondAsciiAreWhatTheCallerSays) {
    const auto isAny = [](wchar16 unit) { return unit != '/' && unit != '>'; };
    const Text text = Wide("<") + Text(1, wchar16{0xE9}) + Wide("/>");
    EXPECT_EQ(Parse(text), nullptr);
    EXPECT_EQ(DumpChildren(*Parse(text, {isAny, isAny})), "\\u00E9");
}

TEST(ModelWriter, EveryShapeOfAnElement) {
    EXPECT_EQ(WrittenText(*First("<Name></Name>")), "<Name/>");
    EXPECT_EQ(WrittenText(*First("<Name a=\"1\"/>")), "<Name a=\"1\"/>");
    EXPECT_EQ(WrittenText(*First("<Value>a&lt;b</Value>")), "<Value>a&lt;b</Value>");
    EXPECT_EQ(WrittenText(*First("<e><c/>v</e>")), "<e>\\n\\tv\\n\\t<c/>\\n</e>");
    EXPECT_EQ(WrittenText(*First("<p><e>one\ntwo</e></p>")),
              "<p>\\n\\t<e>\\n\\t\\tone\\ntwo\\n\\t</e>\\n</p>");
    EXPECT_EQ(WrittenText(*First("<e k=\"x&quot;y'z > &amp;&lt;\"/>")),
              "<e k=\"x&quot;y&apos;z &gt; &amp;&lt;\"/>");
}

TEST(ModelWriter, CommentsAreNotEscapedAndTopLevelNodesEndTheirLine) {
    const NodePtr document = Parse(Wide("<?xml version=\"1.0\"?>\n<!-- a & b -->\n<a><!--c--></a>"));
    EXPECT_EQ(WrittenText(*document),
              "<?xml version=\"1.0\"?>\\n<!-- a & b -->\\n<a>\\n\\t<!--c-->\\n</a>\\n");
    EXPECT_EQ(Shown(WrittenAt(2, *document->children[2])), "\\t\\t<a>\\n\\t\\t\\t<!--c-->\\n\\t\\t</a>");
    EXPECT_EQ(WrittenText(Node{Kind::Document}), "");
}

TEST(ModelBytes, BothFormsOfAFileEndWithAZero) {
    const Text text = {'a', 0xE9, 0x101, 0xFF80};
    EXPECT_EQ(WideBytes(text), std::string("a\0\xE9\0\x01\x01\x80\xFF\0\0", 10));
    EXPECT_EQ(NarrowBytes(text), std::string("a\xE9\x01\x80\0", 5));
    EXPECT_EQ(WideBytes(Text()), std::string(2, '\0'));
    EXPECT_EQ(NarrowBytes(Text()), std::string(1, '\0'));
}

TEST(ModelBytes, AreReadUpToTheFirstZero) {
    EXPECT_EQ(FromWideBytes({"a\0\x01\x02\0\0b\0", 8}), (Text{'a', 0x201}));
    EXPECT_EQ(FromWideBytes({"a\0b", 3}), Text{'a'});
    EXPECT_EQ(FromNarrowBytes({"a\x7F\x80\xFF\0b", 6}), (Text{'a', 0x7F, 0xFF80, 0xFFFF}));
}

}  // namespace
}  // namespace model
