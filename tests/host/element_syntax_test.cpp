// What stands inside elements: names, attributes, text and entities.
#include "tests/host/syntax_support.h"

namespace host {
namespace {

TEST(ElementSyntax, NamesAreLettersDigitsUnderscoresAndColons) {
    EXPECT_EQ(Reprinted("<_:aZ09 _=\"1\" :=\"2\" a:b_9=\"3\"/>"), "<_:aZ09 _=\"1\" :=\"2\" a:b_9=\"3\"/>\n");
    for (const std::string_view text :
         {"<a-b/>", "<a.b/>",    "<1a/>",          "<-a/>",          "<.a/>",        "<a$/>",   "< a/>",
          "</>",    "<>",        "<a b-c=\"1\"/>", "<a b.c=\"1\"/>", "<a 1=\"1\"/>", "<\xE9/>", "<a\xFF/>",
          "<a-/>",  "<a></a-b>", "<1/>",           "<@/>",           "<[/>",         "<`/>",    "<{/>",
          "<//>",   "<;/>"}) {
        EXPECT_FALSE(Loads(text));
    }
}

TEST(ElementSyntax, BytesBeyondAsciiInNamesCountAsTheUnitsTheyBecome) {
    // 0x80 becomes U+FF80, a Katakana letter; 0xE9 becomes U+FFE9, an arrow.
    EXPECT_EQ(Reprinted("<\x80 a\x80=\"1\"/>"), "<\x80 a\x80=\"1\"/>\n");
    EXPECT_FALSE(Loads("<a\xE9/>"));
}

TEST(ElementSyntax, AttributesMayStandCloseAndLoose) {
    EXPECT_EQ(Reprinted("<a x=\"1\"y=\"2\"/>"), "<a x=\"1\" y=\"2\"/>\n");
    EXPECT_EQ(Reprinted("<a\r\n\tx\t=\n\"1\" />"), "<a x=\"1\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"1\" x=\"2\"></a>"), "<a x=\"1\" x=\"2\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"\"/>"), "<a x=\"\"/>\n");
    EXPECT_EQ(Reprinted("<a x =\"1\" y= \"2\" z\t=\r\n\"3\"_=\"4\"></a>"),
              "<a x=\"1\" y=\"2\" z=\"3\" _=\"4\"/>\n");
}

TEST(ElementSyntax, AttributeTextIsKeptToTheLetter) {
    EXPECT_EQ(Reprinted("<a x=\"1 > 2\"/>"), "<a x=\"1 &gt; 2\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\" 'q'\t\r\n \"/>"), "<a x=\" &apos;q&apos;\t\r\n \"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"&amp;&apos;&gt;&lt;&quot;\"/>"), "<a x=\"&amp;&apos;&gt;&lt;&quot;\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"&amp;lt;\"/>"), "<a x=\"&amp;lt;\"/>\n");
    EXPECT_EQ(Reprinted("<a x=\"  /=  \" y=\"a&amp;b&amp;c\" z=\"two\">three</a>"),
              "<a x=\"  /=  \" y=\"a&amp;b&amp;c\" z=\"two\">three</a>\n");
}

TEST(ElementSyntax, AttributesThatAreNoneFail) {
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
                                        "<a x==\"1\"/>",
                                        "<a x></a>",
                                        "<a x=\"1'/>",
                                        "<a x y=\"1\"/>",
                                        "<a x ",
                                        "<a x= ",
                                        "<a x=\"1",
                                        "<a x=\"&",
                                        "<a x=\"&amp",
                                        "<a x=\"&;\"/>",
                                        "<a x=\"&AMP;\"/>",
                                        "<a x=\"a & b\"/>",
                                        "<a &amp;/>",
                                        "<&lt;/>"}) {
        EXPECT_FALSE(Loads(text));
    }
}

TEST(ElementSyntax, EmptyElementHasTwoForms) {
    for (const std::string_view text :
         {"<a/>", "<a></a>", "<a > \n </a>", "<a> \n </a>", "<a />", "<a \n/>", "<a \t></a>"})
        EXPECT_EQ(Reprinted(text), "<a/>\n") << text;
    for (const std::string_view text : {"<a/ >", "<a/", "<a / >", "<a//>", "<a/x"})
        EXPECT_FALSE(Loads(text));
}

TEST(ElementSyntax, OtherCharactersInAStartTagFail) {
    for (const std::string_view text :
         {"<a?>", "<a!>", "<a \"/>", "<a =\"1\"/>", "<a &/>", "<a</a>", "<a<b/>", "<a ;>", "<a\n"})
        EXPECT_FALSE(Loads(text));
}

TEST(ElementSyntax, ElementsNest) {
    EXPECT_EQ(Reprinted("<a><b><c/><d></d></b><e/></a>"),
              "<a>\n\t<b>\n\t\t<c/>\n\t\t<d/>\n\t</b>\n\t<e/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a><a><a/></a></a>"), "<a>\n\t<a>\n\t\t<a/>\n\t</a>\n</a>\n");
    EXPECT_FALSE(Loads("<a><b></a></b>"));
    EXPECT_FALSE(Loads("<a><b></a>"));
}

TEST(ElementSyntax, EndTagRepeatsTheNameAndNothingElse) {
    for (const std::string_view text :
         {"<a></a >", "<a></A>", "<a></ a>", "<a></b>",     "<a></ab>",     "<ab></a>",
          "<a></a",   "<a></",   "<a><",     "<a>",         "<a>x",         "<a></a x=\"1\">",
          "</a>",     "<a></>",  "<a></aa>", "<aa></a>",    "<a></a/>",     "<a></a\n>",
          "<a>< /a>", "<a> ",    "<a>text<", "<a>text<b/>", "<a>text<b/> ", "<a>text<!--c-->"}) {
        EXPECT_FALSE(Loads(text));
    }
}

TEST(ElementSyntax, PiecesOfTextAreJoinedByALineFeed) {
    EXPECT_EQ(Reprinted("<a> one <b/> two </a>"), "<a>\n\tone \ntwo \n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a>1<!--c-->2<b/><b/>3</a>"), "<a>\n\t1\n2\n3\n\t<!--c-->\n\t<b/>\n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a>1<b>2<c>3</c>4</b>5<d>6</d>7</a>"),
              "<a>\n\t1\n5\n7\n\t<b>\n\t\t2\n4\n\t\t<c>3</c>\n\t</b>\n\t<d>6</d>\n</a>\n");
    EXPECT_EQ(Reprinted("<a> <b/>1</a>"), "<a>\n\t1\n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a> <b/> \n<c/> </a>"), "<a>\n\t<b/>\n\t<c/>\n</a>\n");
}

TEST(ElementSyntax, LeadingWhiteSpaceOfTextIsDroppedAndTrailingKept) {
    EXPECT_EQ(Reprinted("<a> \t\r\nx \t</a>"), "<a>x \t</a>\n");
    EXPECT_EQ(Reprinted("<a> x y</a>"), "<a>x y</a>\n");
    EXPECT_EQ(Reprinted("<a>x\r</a>"), "<a>x\r</a>\n");
    EXPECT_EQ(Reprinted("<a>\r\n\tone\r\n\t</a>"), "<a>\n\tone\r\n\t\n</a>\n");
    EXPECT_EQ(Reprinted("<a>one  two\n\n\tthree</a>"), "<a>\n\tone  two\n\n\tthree\n</a>\n");
    EXPECT_EQ(Reprinted("<a>\vx\f</a>"), "<a>\vx\f</a>\n");
    EXPECT_EQ(Reprinted("<a> &amp; </a>"), "<a>&amp; </a>\n");
}

TEST(ElementSyntax, EntitiesInTextAreDecoded) {
    EXPECT_EQ(Reprinted("<a>&lt;&amp;</a>"), "<a>&lt;&amp;</a>\n");
    EXPECT_EQ(Reprinted("<a>&amp;lt; > \"'</a>"), "<a>&amp;lt; &gt; &quot;&apos;</a>\n");
    EXPECT_EQ(Reprinted("<a>&lt; <b/>&gt;</a>"), "<a>\n\t&lt; \n&gt;\n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a>1 > 2 = ]]> / ? ! --</a>"), "<a>1 &gt; 2 = ]]&gt; / ? ! --</a>\n");
    EXPECT_EQ(Reprinted("<a>&quot;x&apos;&gt;</a>"), "<a>&quot;x&apos;&gt;</a>\n");
    EXPECT_EQ(Reprinted("<a>one&amp;two&amp;three<b/>&lt;four</a>"),
              "<a>\n\tone&amp;two&amp;three\n&lt;four\n\t<b/>\n</a>\n");
    EXPECT_EQ(Reprinted("<a>&amp;amp;&lt;b/&gt;</a>"), "<a>&amp;amp;&lt;b/&gt;</a>\n");
}

TEST(ElementSyntax, UnknownEntitiesInTextFail) {
    for (const std::string_view text :
         {"<a>&lt;&#65;</a>", "<a>&#x41;</a>", "<a>&nbsp;</a>", "<a>&LT;</a>", "<a>&lt </a>", "<a>& ;</a>",
          "<a>&;</a>", "<a>&lt", "<a>&lt;", "<a>&", "<a>a&b</a>", "<a>&lt&gt;</a>", "<a>& lt;</a>",
          "<a>&ltx;</a>", "<a>&&amp;</a>", "<a>x & y</a>", "<a>&lt</a>", "<a>&amp</a>;",
          "<a>&am<b/>p;</a>"}) {
        EXPECT_FALSE(Loads(text));
    }
}

}  // namespace
}  // namespace host
