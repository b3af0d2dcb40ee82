// What is made of the texts that are documents: each is loaded and saved again. Those that are none are in
// refused_texts_test.cpp.
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

TEST(DocumentSyntax, DeclarationComesFirst) {
    EXPECT_EQ(Reprinted("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>\n");
    EXPECT_EQ(Reprinted(" \n<?xml version=\"1.0\"?>"), "<?xml version=\"1.0\"?>\n");
    EXPECT_EQ(Reprinted(" \n<?xml \t version = \"1.0\"\r\n?>"), "<?xml version=\"1.0\"?>\n");
}

TEST(DocumentSyntax, DeclarationNeedsAVersionOfAnyText) {
    EXPECT_EQ(Reprinted("<?xml encoding=\"x\"  a=\"&lt;\"version = \"\" ?>"),
              "<?xml encoding=\"x\" a=\"&lt;\" version=\"\"?>\n");
    EXPECT_EQ(Reprinted("<?xml standalone=\"no\" version=\"1\"version=\"&lt;any&gt;\"?>"),
              "<?xml standalone=\"no\" version=\"1\" version=\"&lt;any&gt;\"?>\n");
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

TEST(DocumentSyntax, NamesAreLettersDigitsUnderscoresAndColons) {
    EXPECT_EQ(Reprinted("<_:aZ09 _=\"1\" :=\"2\" a:b_9=\"3\"/>"), "<_:aZ09 _=\"1\" :=\"2\" a:b_9=\"3\"/>\n");
}

TEST(DocumentSyntax, BytesBeyondAsciiInNamesCountAsTheUnitsTheyBecome) {
    // 0x80 becomes U+FF80, a Katakana letter; 0xE9 becomes U+FFE9, an arrow.
    EXPECT_EQ(Reprinted("<\x80 a\x80=\"1\"/>"), "<\x80 a\x80=\"1\"/>\n");
}

TEST(DocumentSyntax, AttributesMayStandCloseAndLoose) {
    EXPECT_EQ(Reprinted("<a x=\"1\"y=\"2\"/>"), "<a x=\"1\" y=\"2\"/>\n");
    EXPECT_EQ(Reprinted("<a\r\n\tx\t=\n\"1\" />"), "<a x=\"1\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"1\" x=\"2\"></a>"), "<a x=\"1\" x=\"2\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"\"/>"), "<a x=\"\"/>\n");
    EXPECT_EQ(Reprinted("<a x =\"1\" y= \"2\" z\t=\r\n\"3\"_=\"4\"></a>"),
              "<a x=\"1\" y=\"2\" z=\"3\" _=\"4\"/>\n");
}

TEST(DocumentSyntax, AttributeTextIsKeptToTheLetter) {
    EXPECT_EQ(Reprinted("<a x=\"1 > 2\"/>"), "<a x=\"1 &gt; 2\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\" 'q'\t\r\n \"/>"), "<a x=\" &apos;q&apos;\t\r\n \"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"&amp;&apos;&gt;&lt;&quot;\"/>"), "<a x=\"&amp;&apos;&gt;&lt;&quot;\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"&amp;lt;\"/>"), "<a x=\"&amp;lt;\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"  /=  \" y=\"a&amp;b&amp;c\" z=\"two\">three</a>"),
              "<a x=\"  /=  \" y=\"a&amp;b&amp;c\" z=\"two\">three</a>\n");
}

TEST(DocumentSyntax, EmptyElementHasTwoForms) {
    for (const std::string_view text :
         {"<a/>", "<a></a>", "<a > \n </a>", "<a> \n </a>", "<a />", "<a \n/>", "<a \t></a>"})
        EXPECT_EQ(Reprinted(text), "<a/>\n") << text;
}

TEST(DocumentSyntax, ElementsNest) {
    EXPECT_EQ(Reprinted("<a><b><c/><d></d></b><e/></a>"),
              "<a>\n\t<b>\n\t\t<c/>\n\t\t<d/>\n\t</b>\n\t<e/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a><a><a/></a></a>"), "<a>\n\t<a>\n\t\t<a/>\n\t</a>\n</a>\n");
}

TEST(DocumentSyntax, PiecesOfTextAreJoinedByALineFeed) {
    EXPECT_EQ(Reprinted("<a> one <b/> two </a>"), "<a>\n\tone \ntwo \n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a>1<!--c-->2<b/><b/>3</a>"), "<a>\n\t1\n2\n3\n\t<!--c-->\n\t<b/>\n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a>1<b>2<c>3</c>4</b>5<d>6</d>7</a>"),
              "<a>\n\t1\n5\n7\n\t<b>\n\t\t2\n4\n\t\t<c>3</c>\n\t</b>\n\t<d>6</d>\n</a>\n");
    EXPECT_EQ(Reprinted("<a> <b/>1</a>"), "<a>\n\t1\n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a> <b/> \n<c/> </a>"), "<a>\n\t<b/>\n\t<c/>\n</a>\n");
}

TEST(DocumentSyntax, LeadingWhiteSpaceOfTextIsDroppedAndTrailingKept) {
    EXPECT_EQ(Reprinted("<a> \t\r\nx \t</a>"), "<a>x \t</a>\n");
    EXPECT_EQ(Reprinted("<a> x y</a>"), "<a>x y</a>\n");
    EXPECT_EQ(Reprinted("<a>x\r</a>"), "<a>x\r</a>\n");
    EXPECT_EQ(Reprinted("<a>\r\n\tone\r\n\t</a>"), "<a>\n\tone\r\n\t\n</a>\n");
    EXPECT_EQ(Reprinted("<a>one  two\n\n\tthree</a>"), "<a>\n\tone  two\n\n\tthree\n</a>\n");
    EXPECT_EQ(Reprinted("<a>\vx\f</a>"), "<a>\vx\f</a>\n");
    EXPECT_EQ(Reprinted("<a> &amp; </a>"), "<a>&amp; </a>\n");
}

TEST(DocumentSyntax, EntitiesInTextAreDecoded) {
    EXPECT_EQ(Reprinted("<a>&lt;&amp;</a>"), "<a>&lt;&amp;</a>\n");
    EXPECT_EQ(Reprinted("<a>&amp;lt; > \"'</a>"), "<a>&amp;lt; &gt; &quot;&apos;</a>\n");
    EXPECT_EQ(Reprinted("<a>&lt; <b/>&gt;</a>"), "<a>\n\t&lt; \n&gt;\n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a>1 > 2 = ]]> / ? ! --</a>"), "<a>1 &gt; 2 = ]]&gt; / ? ! --</a>\n");
    EXPECT_EQ(Reprinted("<a>&quot;x&apos;&gt;</a>"), "<a>&quot;x&apos;&gt;</a>\n");
    EXPECT_EQ(Reprinted("<a>one&amp;two&amp;three<b/>&lt;four</a>"),
              "<a>\n\tone&amp;two&amp;three\n&lt;four\n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a>&amp;amp;&lt;b/&gt;</a>"), "<a>&amp;amp;&lt;b/&gt;</a>\n");
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
