// Which texts are documents: the top level, the declaration, comments. What stands inside elements is in
// element_syntax_test.cpp.
#include "tests/host/syntax_support.h"

namespace host {
namespace {

TEST(DocumentSyntax, EmptyFileIsAnEmptyDocument) {
    for (const std::string_view bytes :
         {std::string_view(), std::string_view(" \r\n\t"), std::string_view("\0", 1)})
        EXPECT_EQ(SaveBytes(LoadBytes(bytes, 0)), NarrowFile(Lines({kEmptyRoot})));
    for (const std::string_view bytes :
         {std::string_view(), std::string_view(" \0\n\0", 4), std::string_view("\0\0", 2)})
        EXPECT_EQ(SaveBytes(LoadBytes(bytes, 1)), NarrowFile(Lines({kEmptyRoot})));
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
    EXPECT_FALSE(Loads("<a/> x"));
    for (const std::string_view text : {">", "&amp;", "<", "< ", "&lt;a/>", "text<a/>"})
        EXPECT_FALSE(Loads(text));
}

TEST(DocumentSyntax, OneCharacterAfterATopLevelNodeIsPassedOver) {
    EXPECT_EQ(Reprinted("<a/>"), "<a/>\n");
    EXPECT_EQ(Reprinted("<a/>x"), "<a/>\n");
    EXPECT_EQ(Reprinted("<a/>\n<b/>"), "<a/>\n<b/>\n");
    EXPECT_EQ(Reprinted("<a/>x<b/>x \n <c/> "), "<a/>\n<b/>\n<c/>\n");
    EXPECT_EQ(Reprinted("<!--a--><<b/>"), "<!--a-->\n<b/>\n");
    EXPECT_EQ(Reprinted("<a/>>\n<b/>;<!--c-->-<d/>"), "<a/>\n<b/>\n<!--c-->\n<d/>\n");
    for (const std::string_view text : {"<a/><", "<a/>&", "<a/> ", "<a></a>>", "<a/>x \n\t"})
        EXPECT_EQ(Reprinted(text), "<a/>\n") << text;
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
    EXPECT_EQ(Reprinted(" \n<?xml \t version = \"1.0\"\r\n?>"), "<?xml version=\"1.0\"?>\n");
    EXPECT_FALSE(Loads("<a/>\n<?xml version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<!--a-->\n<?xml version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?xml version=\"1.0\"?>\n<?xml version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<a><?xml version=\"1.0\"?></a>"));
    EXPECT_FALSE(Loads("<a>text<?x?></a>"));
}

TEST(DocumentSyntax, DeclarationNeedsAVersionOfAnyText) {
    EXPECT_EQ(Reprinted("<?xml encoding=\"x\"  a=\"&lt;\"version = \"\" ?>"),
              "<?xml encoding=\"x\" a=\"&lt;\" version=\"\"?>\n");
    EXPECT_EQ(Reprinted("<?xml standalone=\"no\" version=\"1\"version=\"&lt;any&gt;\"?>"),
              "<?xml standalone=\"no\" version=\"1\" version=\"&lt;any&gt;\"?>\n");
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
    EXPECT_FALSE(Loads("<?xml version=\"1.0\" x?>"));
    EXPECT_FALSE(Loads("<?xmlversion=\"1.0\"?>"));
}

TEST(DocumentSyntax, OtherInstructionsFail) {
    EXPECT_FALSE(Loads("<?xml-stylesheet version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?XML version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?xmlx version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<? xml version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?php version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?php echo?>"));
    EXPECT_FALSE(Loads("<?xm version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?xml1 version=\"1.0\"?>"));
    EXPECT_FALSE(Loads("<?\?>"));
}

TEST(DocumentSyntax, CommentsAreKeptToTheLetter) {
    EXPECT_EQ(Reprinted("<!-- a - b -->"), "<!-- a - b -->\n");
    EXPECT_EQ(Reprinted("<!-- &amp; & < \n\" -->"), "<!-- &amp; & < \n\" -->\n");
    EXPECT_EQ(Reprinted("<!---->"), "<!---->\n");
    EXPECT_EQ(Reprinted("<!---a-b- c-->"), "<!---a-b- c-->\n");
    EXPECT_EQ(Reprinted("<!--a-b-c- - - -d-->"), "<!--a-b-c- - - -d-->\n");
    EXPECT_EQ(Reprinted("<!--- -->"), "<!--- -->\n");
    EXPECT_EQ(Reprinted("<!--\t\n &unknown; &#65; \"'\r\n-->"), "<!--\t\n &unknown; &#65; \"'\r\n-->\n");
    EXPECT_EQ(Reprinted("<a> <!--x--> <!--y--> </a>"), "<a>\n\t<!--x-->\n\t<!--y-->\n</a>\n");
}

TEST(DocumentSyntax, CommentsThatAreNoneFail) {
    for (const std::string_view text :
         {"<!-- a > b -->", "<!-- <b> -->", "<!-->-->",  "<!--->-->", "<!--a->-->", "<!-- a -- b -->",
          "<!-- a --->",    "<!----->",     "<!------>", "<!-->",     "<!--->",     "<!- a -->",
          "<! -- a -->",    "<!",           "<!-",       "<!--",      "<!-- a",     "<!-- a -",
          "<!-- a --",      "<a><!-- a --"}) {
        EXPECT_FALSE(Loads(text));
    }
}

TEST(DocumentSyntax, DoctypeAndCharacterDataSectionsFail) {
    EXPECT_FALSE(Loads("<!DOCTYPE a>\n<a/>"));
    EXPECT_FALSE(Loads("<a><![CDATA[x]]></a>"));
    EXPECT_FALSE(Loads("<![CDATA[x]]>"));
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
