// Which texts are documents and what is made of them: each is loaded and, where it loads, saved again.
#include "tests/host/host_support.h"

namespace host {
namespace {

// The saved form of a document without a settings root, less the root that loading appends.
std::string Reprinted(std::string_view text) {
    const Profile profile = LoadText(text);
    EXPECT_NE(profile, nullptr) << text;
    const std::string bytes = SaveBytes(profile);
    const std::string end = NarrowFile(Lines({kEmptyRoot}));
    EXPECT_TRUE(bytes.ends_with(end)) << bytes;
    return bytes.substr(0, bytes.size() - end.size());
}

testing::AssertionResult Loads(std::string_view text) {
    if (LoadText(text) != nullptr) return testing::AssertionSuccess() << text;
    return testing::AssertionFailure() << text;
}

TEST(DocumentSyntax, EmptyFileIsAnEmptyDocument) {
    const Profile narrow = LoadBytes("", 0);
    ASSERT_NE(narrow, nullptr);
    EXPECT_EQ(SaveBytes(narrow), NarrowFile(Lines({kEmptyRoot})));
    const Profile wide = LoadBytes("", 1);
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(SaveBytes(wide), NarrowFile(Lines({kEmptyRoot})));
}

TEST(DocumentSyntax, WhiteSpaceAloneIsAnEmptyDocument) {
    for (const std::string_view text : {" ", " \t\r\n", "\n\n\n"})
        EXPECT_EQ(Reprinted(text), "");
}

TEST(DocumentSyntax, OtherSpacesAreNoWhiteSpace) {
    EXPECT_FALSE(Loads("\v"));
    EXPECT_FALSE(Loads("\f<a/>"));
    EXPECT_FALSE(Loads("\xA0<a/>"));
    EXPECT_FALSE(Loads("<a\f/>"));
}

TEST(DocumentSyntax, TextOutsideOfElementsFails) {
    EXPECT_FALSE(Loads("x"));
    EXPECT_FALSE(Loads("x<a/>"));
    EXPECT_FALSE(Loads("<a/>\nx"));
    EXPECT_FALSE(Loads("<a/>xx"));
}

TEST(DocumentSyntax, OneCharacterAfterATopLevelNodeIsPassedOver) {
    EXPECT_EQ(Reprinted("<a/>"), "<a/>\n");
    EXPECT_EQ(Reprinted("<a/>x"), "<a/>\n");
    EXPECT_EQ(Reprinted("<a/>\n<b/>"), "<a/>\n<b/>\n");
    EXPECT_EQ(Reprinted("<a/>x<b/>x \n <c/> "), "<a/>\n<b/>\n<c/>\n");
    EXPECT_EQ(Reprinted("<!--a--><<b/>"), "<!--a-->\n<b/>\n");
}

TEST(DocumentSyntax, TopLevelNodesRightAfterEachOtherFail) {
    EXPECT_FALSE(Loads("<a/><b/>"));
    EXPECT_FALSE(Loads("<a></a><b/>"));
    EXPECT_FALSE(Loads("<!--a--><b/>"));
    EXPECT_FALSE(Loads("<?xml version=\"1.0\"?><b/>"));
}

TEST(DocumentSyntax, DeclarationComesFirst) {
    EXPECT_EQ(Reprinted("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>\n");
    EXPECT_EQ(Reprinted(" \n<?xml version=\"1.0\"?>"), "<?xml version=\"1.0\"?>\n");
    EXPECT_FALSE(Loads("<a/>\n<?xml version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<!--a-->\n<?xml version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?xml version=\"1.0\"?>\n<?xml version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<a><?xml version=\"1.0\"?></a>"));
}

TEST(DocumentSyntax, DeclarationNeedsAVersionOfAnyText) {
    EXPECT_EQ(Reprinted("<?xml encoding=\"x\"  a=\"&lt;\"version = \"\" ?>"),
              "<?xml encoding=\"x\" a=\"&lt;\" version=\"\"?>\n");
    EXPECT_FALSE(Loads("<?xml encoding=\"UTF-8\"?>"));
    EXPECT_FALSE(Loads("<?xml ?>"));
    EXPECT_FALSE(Loads("<?xml?>"));
    EXPECT_FALSE(Loads("<?xml Version=\"1.0\"?>"));
}

TEST(DocumentSyntax, DeclarationHasToBeComplete) {
    EXPECT_FALSE(Loads("<?"));
    EXPECT_FALSE(Loads("<?xml"));
    EXPECT_FALSE(Loads("<?xml "));
    EXPECT_FALSE(Loads("<?xml version=\"1.0\""));
    EXPECT_FALSE(Loads("<?xml version=\"1.0\"?"));
    EXPECT_FALSE(Loads("<?xml version=\"1.0\">"));
    EXPECT_FALSE(Loads("<?xml version=\"1.0\"/>"));
    EXPECT_FALSE(Loads("<?xml version=\"1.0\"? >"));
}

TEST(DocumentSyntax, OtherInstructionsFail) {
    EXPECT_FALSE(Loads("<?xml-stylesheet version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?XML version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?xmlx version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<? xml version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?php version=\"1.0\"?>"));
}

TEST(DocumentSyntax, CommentsAreKeptToTheLetter) {
    EXPECT_EQ(Reprinted("<!-- a - b -->"), "<!-- a - b -->\n");
    EXPECT_EQ(Reprinted("<!-- &amp; & < \n\" -->"), "<!-- &amp; & < \n\" -->\n");
    EXPECT_EQ(Reprinted("<!---->"), "<!---->\n");
    EXPECT_EQ(Reprinted("<!---a-b- c-->"), "<!---a-b- c-->\n");
    EXPECT_EQ(Reprinted("<a> <!--x--> <!--y--> </a>"), "<a>\n\t<!--x-->\n\t<!--y-->\n</a>\n");
}

TEST(DocumentSyntax, CommentsThatAreNoneFail) {
    EXPECT_FALSE(Loads("<!-- a > b -->"));
    EXPECT_FALSE(Loads("<!-- a -- b -->"));
    EXPECT_FALSE(Loads("<!-- a --->"));
    EXPECT_FALSE(Loads("<!-->"));
    EXPECT_FALSE(Loads("<!--->"));
    EXPECT_FALSE(Loads("<!- a -->"));
    EXPECT_FALSE(Loads("<! -- a -->"));
    EXPECT_FALSE(Loads("<!-- a"));
    EXPECT_FALSE(Loads("<!-- a --"));
    EXPECT_FALSE(Loads("<a><!-- a --"));
}

TEST(DocumentSyntax, DoctypeAndCharacterDataSectionsFail) {
    EXPECT_FALSE(Loads("<!DOCTYPE a>\n<a/>"));
    EXPECT_FALSE(Loads("<a><![CDATA[x]]></a>"));
}

TEST(DocumentSyntax, NamesAreLettersDigitsUnderscoresAndColons) {
    EXPECT_EQ(Reprinted("<_:aZ09 _=\"1\" :=\"2\" a:b_9=\"3\"/>"), "<_:aZ09 _=\"1\" :=\"2\" a:b_9=\"3\"/>\n");
    for (const std::string_view text :
         {"<a-b/>", "<a.b/>", "<1a/>", "<-a/>", "<.a/>", "<a$/>", "< a/>", "</>", "<>", "<a b-c=\"1\"/>",
          "<a b.c=\"1\"/>", "<a 1=\"1\"/>", "<\xE9/>", "<a\xFF/>"}) {
        EXPECT_FALSE(Loads(text));
    }
}

TEST(DocumentSyntax, BytesBeyondAsciiInNamesCountAsTheUnitsTheyBecome) {
    // 0x80 becomes U+FF80, a Katakana letter; 0xE9 becomes U+FFE9, an arrow.
    EXPECT_EQ(Reprinted("<\x80 a\x80=\"1\"/>"), "<\x80 a\x80=\"1\"/>\n");
    EXPECT_FALSE(Loads("<a\xE9/>"));
}

TEST(DocumentSyntax, AttributesMayStandCloseAndLoose) {
    EXPECT_EQ(Reprinted("<a x=\"1\"y=\"2\"/>"), "<a x=\"1\" y=\"2\"/>\n");
    EXPECT_EQ(Reprinted("<a\r\n\tx\t=\n\"1\" />"), "<a x=\"1\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"1\" x=\"2\"></a>"), "<a x=\"1\" x=\"2\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"\"/>"), "<a x=\"\"/>\n");
}

TEST(DocumentSyntax, AttributeTextIsKeptToTheLetter) {
    EXPECT_EQ(Reprinted("<a x=\"1 > 2\"/>"), "<a x=\"1 &gt; 2\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\" 'q'\t\r\n \"/>"), "<a x=\" &apos;q&apos;\t\r\n \"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"&amp;&apos;&gt;&lt;&quot;\"/>"), "<a x=\"&amp;&apos;&gt;&lt;&quot;\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"&amp;lt;\"/>"), "<a x=\"&amp;lt;\"/>\n");
}

TEST(DocumentSyntax, AttributesThatAreNoneFail) {
    for (const std::string_view text : {"<a x='1'/>",
                                        "<a x=\"1 < 2\"/>",
                                        "<a x=1/>",
                                        "<a x/>",
                                        "<a x=/>",
                                        "<a \"1\"/>",
                                        "<a x\"1\"/>",
                                        "<a x=\"1/>",
                                        "<a x=\"1\"",
                                        "<a x=\"1\" ",
                                        "<a x=\"",
                                        "<a x=",
                                        "<a x",
                                        "<a ",
                                        "<a",
                                        "<a x=\"&#65;\"/>",
                                        "<a x=\"&#x41;\"/>",
                                        "<a x=\"&nbsp;\"/>",
                                        "<a x=\"&\"/>",
                                        "<a x=\"&amp\"/>",
                                        "<a x=\"&lt",
                                        "<a x=\"&lt;",
                                        "<a x==\"1\"/>"}) {
        EXPECT_FALSE(Loads(text));
    }
}

TEST(DocumentSyntax, EmptyElementHasTwoForms) {
    EXPECT_EQ(Reprinted("<a></a>"), "<a/>\n");
    EXPECT_EQ(Reprinted("<a > \n </a>"), "<a/>\n");
    EXPECT_EQ(Reprinted("<a />"), "<a/>\n");
    EXPECT_FALSE(Loads("<a/ >"));
    EXPECT_FALSE(Loads("<a/"));
    EXPECT_FALSE(Loads("<a / >"));
}

TEST(DocumentSyntax, EndTagRepeatsTheNameAndNothingElse) {
    for (const std::string_view text :
         {"<a></a >", "<a></A>", "<a></ a>", "<a></b>", "<a></ab>", "<ab></a>", "<a></a", "<a></", "<a><",
          "<a>", "<a>x", "<a><b></a></b>", "<a></a x=\"1\">", "</a>", "<a></>"}) {
        EXPECT_FALSE(Loads(text));
    }
}

TEST(DocumentSyntax, PiecesOfTextAreJoinedByALineFeed) {
    EXPECT_EQ(Reprinted("<a> one <b/> two </a>"), "<a>\n\tone \ntwo \n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a>1<!--c-->2<b/><b/>3</a>"), "<a>\n\t1\n2\n3\n\t<!--c-->\n\t<b/>\n\t<b/>\n</a>\n");
}

TEST(DocumentSyntax, LeadingWhiteSpaceOfTextIsDroppedAndTrailingKept) {
    EXPECT_EQ(Reprinted("<a> \t\r\nx \t</a>"), "<a>x \t</a>\n");
    EXPECT_EQ(Reprinted("<a> x y</a>"), "<a>x y</a>\n");
    EXPECT_EQ(Reprinted("<a>x\r</a>"), "<a>x\r</a>\n");
}

TEST(DocumentSyntax, EntitiesInTextAreDecoded) {
    EXPECT_EQ(Reprinted("<a>&lt;&amp;</a>"), "<a>&lt;&amp;</a>\n");
    EXPECT_EQ(Reprinted("<a>&amp;lt; > \"'</a>"), "<a>&amp;lt; &gt; &quot;&apos;</a>\n");
    EXPECT_EQ(Reprinted("<a>&lt; <b/>&gt;</a>"), "<a>\n\t&lt; \n&gt;\n\t<b/>\n</a>\n");
}

TEST(DocumentSyntax, UnknownEntitiesInTextFail) {
    for (const std::string_view text :
         {"<a>&lt;&#65;</a>", "<a>&#x41;</a>", "<a>&nbsp;</a>", "<a>&LT;</a>", "<a>&lt </a>", "<a>& ;</a>",
          "<a>&;</a>", "<a>&lt", "<a>&lt;", "<a>&", "<a>a&b</a>", "<a>&lt&gt;</a>", "<a>& lt;</a>"}) {
        EXPECT_FALSE(Loads(text));
    }
}

TEST(DocumentSyntax, EveryPrefixOfADocumentIsSafe) {
    const std::string text =
        "<?xml version=\"1.0\"?>\n<a x=\"&lt;\">t&amp;<b y=\"2\"/><!-- c --><d>e</d></a>\n<!--f-->";
    std::string loaded;
    for (std::size_t size = 1; size <= text.size(); ++size) {
        loaded.append(1, LoadText(text.substr(0, size)) != nullptr ? '+' : '-');
    }
    // Ends after the declaration, the element and the comment are documents, with or without the line feed.
    std::string expected(text.size(), '-');
    for (const std::size_t size : {21U, 22U, 72U, 73U, 81U})
        expected[size - 1] = '+';
    EXPECT_EQ(loaded, expected);
}

}  // namespace
}  // namespace host
