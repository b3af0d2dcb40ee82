// Texts that are no documents. Each is given as an image and as a file, for a profile and for a table.
#include "tests/host/table_support.h"

namespace host {
namespace {

class RefusedText : public testing::TestWithParam<std::string_view> {};

TEST_P(RefusedText, IsNoDocument) {
    const std::string_view text = GetParam();
    EXPECT_EQ(LoadText(text), nullptr);
    EXPECT_EQ(LoadTable(text), nullptr);
    EXPECT_EQ(LoadBytes(text, 0), nullptr);
    // In a wide file bytes beyond ASCII would become other characters.
    const auto isAscii = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
    if (!std::all_of(text.begin(), text.end(), isAscii)) return;
    const ScratchFile file;
    WriteBytes(file.Path(), WideFile(text));
    EXPECT_EQ(Profile(xmlProfileNew(file.Name(), nullptr, 0, 1)), nullptr);
    EXPECT_EQ(Table(xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 0)), nullptr);
}

INSTANTIATE_TEST_SUITE_P(WhiteSpace, RefusedText, testing::Values("\v", "\f<a/>", "\xA0<a/>", "<a\f/>"));

INSTANTIATE_TEST_SUITE_P(TopLevel, RefusedText,
                         testing::Values("x", "x<a/>", "<a/>\nx", "<a/>xx", "<a/> x", ">", "&amp;", "<", "< ",
                                         "&lt;a/>", "text<a/>", "<a/><b/>", "<a></a><b/>", "<!--a--><b/>",
                                         "<?xml version=\"1.0\"?><b/>"));

INSTANTIATE_TEST_SUITE_P(
    Declaration, RefusedText,
    testing::Values("<a/>\n<?xml version=\"1.0\"?>", "<!--a-->\n<?xml version=\"1.0\"?>",
                    "<?xml version=\"1.0\"?>\n<?xml version=\"1.0\"?>", "<a><?xml version=\"1.0\"?></a>",
                    "<a>text<?x?></a>", "<?xml encoding=\"UTF-8\"?>", "<?xml ?>", "<?xml?>",
                    "<?xml Version=\"1.0\"?>", "<?", "<?xml", "<?xml ", "<?xml version=\"1.0\"",
                    "<?xml version=\"1.0\"?", "<?xml version=\"1.0\">", "<?xml version=\"1.0\"/>",
                    "<?xml version=\"1.0\"? >", "<?xml version=\"1.0\" x?>", "<?xmlversion=\"1.0\"?>",
                    "<?xml-stylesheet version=\"1.0\"?>", "<?XML version=\"1.0\"?>",
                    "<?xmlx version=\"1.0\"?>", "<? xml version=\"1.0\"?>", "<?php version=\"1.0\"?>",
                    "<?php echo?>", "<?xm version=\"1.0\"?>", "<?xml1 version=\"1.0\"?>", "<?\?>"));

INSTANTIATE_TEST_SUITE_P(Comment, RefusedText,
                         testing::Values("<!-- a > b -->", "<!-- <b> -->", "<!-->-->", "<!--->-->",
                                         "<!--a->-->", "<!-- a -- b -->", "<!-- a --->", "<!----->",
                                         "<!------>", "<!-->", "<!--->", "<!- a -->", "<! -- a -->", "<!",
                                         "<!-", "<!--", "<!-- a", "<!-- a -", "<!-- a --", "<a><!-- a --"));

INSTANTIATE_TEST_SUITE_P(Doctype, RefusedText,
                         testing::Values("<!DOCTYPE a>\n<a/>", "<a><![CDATA[x]]></a>", "<![CDATA[x]]>"));

INSTANTIATE_TEST_SUITE_P(Name, RefusedText,
                         testing::Values("<a-b/>", "<a.b/>", "<1a/>", "<-a/>", "<.a/>", "<a$/>", "< a/>",
                                         "</>", "<>", "<a b-c=\"1\"/>", "<a b.c=\"1\"/>", "<a 1=\"1\"/>",
                                         "<\xE9/>", "<a\xFF/>", "<a-/>", "<a></a-b>", "<1/>", "<@/>", "<[/>",
                                         "<`/>", "<{/>", "<//>", "<;/>", "<a\xE9/>"));

INSTANTIATE_TEST_SUITE_P(
    Attribute, RefusedText,
    testing::Values("<a x='1'/>", "<a x=\"1 < 2\"/>", "<a x=1/>", "<a x/>", "<a x=/>", "<a \"1\"/>",
                    "<a x\"1\"/>", "<a x=\"1/>", "<a x=\"1\"", "<a x=\"1\" ", "<a x=\"", "<a x=", "<a x",
                    "<a ", "<a", "<a x=\"&#65;\"/>", "<a x=\"&#x41;\"/>", "<a x=\"&nbsp;\"/>", "<a x=\"&\"/>",
                    "<a x=\"&amp\"/>", "<a x=\"&lt", "<a x=\"&lt;", "<a x==\"1\"/>", "<a x></a>",
                    "<a x=\"1'/>", "<a x y=\"1\"/>", "<a x ", "<a x= ", "<a x=\"1", "<a x=\"&", "<a x=\"&amp",
                    "<a x=\"&;\"/>", "<a x=\"&AMP;\"/>", "<a x=\"a & b\"/>", "<a &amp;/>", "<&lt;/>"));

INSTANTIATE_TEST_SUITE_P(StartTag, RefusedText,
                         testing::Values("<a/ >", "<a/", "<a / >", "<a//>", "<a/x", "<a?>", "<a!>", "<a \"/>",
                                         "<a =\"1\"/>", "<a &/>", "<a</a>", "<a<b/>", "<a ;>", "<a\n"));

INSTANTIATE_TEST_SUITE_P(EndTag, RefusedText,
                         testing::Values("<a><b></a></b>", "<a><b></a>", "<a></a >", "<a></A>", "<a></ a>",
                                         "<a></b>", "<a></ab>", "<ab></a>", "<a></a", "<a></", "<a><", "<a>",
                                         "<a>x", "<a></a x=\"1\">", "</a>", "<a></>", "<a></aa>", "<aa></a>",
                                         "<a></a/>", "<a></a\n>", "<a>< /a>", "<a> ", "<a>text<",
                                         "<a>text<b/>", "<a>text<b/> ", "<a>text<!--c-->"));

INSTANTIATE_TEST_SUITE_P(Entity, RefusedText,
                         testing::Values("<a>&lt;&#65;</a>", "<a>&#x41;</a>", "<a>&nbsp;</a>", "<a>&LT;</a>",
                                         "<a>&lt </a>", "<a>& ;</a>", "<a>&;</a>", "<a>&lt", "<a>&lt;",
                                         "<a>&", "<a>a&b</a>", "<a>&lt&gt;</a>", "<a>& lt;</a>",
                                         "<a>&ltx;</a>", "<a>&&amp;</a>", "<a>x & y</a>", "<a>&lt</a>",
                                         "<a>&amp</a>;", "<a>&am<b/>p;</a>"));

}  // namespace
}  // namespace host
