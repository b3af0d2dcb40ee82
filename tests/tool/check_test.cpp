// check: positions and reasons of failures, warnings and notes.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using Check = ToolTest;

struct Broken {
    std::string text;
    std::string line;
};

// Checks the texts as narrow and as wide files, all in one run; what is said of both is the same.
void ExpectLines(const std::vector<Broken>& cases) {
    for (const bool isWide : {false, true}) {
        std::vector<std::string> call{"check"};
        std::string lines;
        for (const Broken& broken : cases) {
            const std::string name = std::to_string(call.size()) + ".xml";
            WriteBytes(name, isWide ? Wide(broken.text) : Narrow(broken.text));
            lines.append(name).append(":").append(broken.line).append("\n");
            call.push_back(name);
        }
        const Result result = RunTool(call);
        EXPECT_EQ(result.code, 3);
        EXPECT_EQ(result.out, lines);
        EXPECT_EQ(result.err, "");
    }
}

TEST_F(Check, ElementsAndTags) {
    ExpectLines({
        {"<a>\n<b>\n</c>\n</a>", "3:1: found \"</c\", wanted \"</b>\" for the element that begins in line 2"},
        {"<Table>\n\n</Tabel>",
         "3:1: found \"</Tabel\", wanted \"</Table>\" for the element that begins in line 1"},
        {"<a></ab>", "1:4: found \"</ab\", wanted \"</a>\" for the element that begins in line 1"},
        {"<a></a >", "1:7: found a space, wanted \"</a>\" for the element that begins in line 1"},
        {"<a>\n\t<b>",
         "2:5: found the end of the file, wanted \"</b>\" for the element that begins in line 2"},
        {"<a.b/>",
         "1:3: found \".\", wanted an attribute, \">\" or \"/>\" in the tag of \"a\" (a name has no \"-\" "
         "and no \".\")"},
        {"<a/\n>", "1:4: found a line end, wanted \">\" behind \"/\""},
        {"</a>", "1:1: found \"</a\", wanted an element name: no element is open here"},
        {"<a>1 < 2</a>",
         "1:7: found a space, wanted an element name behind \"<\" (in a text it is written \"&lt;\")"},
        {"<a/>\n\r\n text", "3:2: found \"text\", wanted \"<\" or the end of the file"},
        {"<a/><b/>",
         "1:5: found \"<b\", wanted a line end before the next element or comment at the top level"},
    });
}

TEST_F(Check, AttributesAndReferences) {
    const std::string references = "wanted \"&amp;\", \"&apos;\", \"&gt;\", \"&lt;\" or \"&quot;\"";
    ExpectLines({
        {"<a b-c=\"\"/>", "1:5: found \"-\", wanted \"=\" behind \"b\" (a name has no \"-\" and no \".\")"},
        {"<a b='x'/>",
         "1:6: found \"'\", wanted a double quote (\") before the value of \"b\" (single quotes are not "
         "known)"},
        {"<a b=\"x\n/>",
         "2:3: found the end of the file, wanted the closing quote (\") of the value that begins in "
         "line 1"},
        {"<a\n b=\"x>\n<c/>",
         "3:1: found \"<c\", wanted the closing quote (\") of the value that begins in line 2 (in "
         "a value it is written \"&lt;\")"},
        {"<a b=\"&amp;&#x41;\"/>", "1:12: found \"&#x41;\", " + references},
        {"<a>\n&amp;&nbsp;</a>", "2:6: found \"&nbsp;\", " + references},
        {"<a>R & D</a>", "1:6: found \"&\", " + references},
    });
}

TEST_F(Check, CommentsAndDeclarations) {
    ExpectLines({
        {"<!DOCTYPE a>",
         "1:1: found \"<!DOCTYPE\", wanted a comment, \"<!--\" (there is no DOCTYPE and no CDATA)"},
        {"<a>\n<![CDATA[x]]></a>",
         "2:1: found \"<![CDATA\", wanted a comment, \"<!--\" (there is no DOCTYPE and no CDATA)"},
        {"<!-- a > b -->", "1:8: found \">\", wanted \"-->\" (a comment has no \">\" and no \"--\" inside)"},
        {"\n<!-- a", "2:7: found the end of the file, wanted \"-->\" for the comment that begins in line 2"},
        {"<!---->\n<?xml version=\"1.0\"?>",
         "2:1: found \"<?xml\", wanted no \"<?\" here: the declaration is the first thing in a file"},
        {"<?php?>", "1:3: found \"php\", wanted \"xml\" and a space behind \"<?\""},
        {"<?xml?>", "1:3: found \"xml\", wanted \"xml\" and a space behind \"<?\""},
        {"<?xml encoding=\"UTF-8\"?>",
         "1:23: found \"?\", wanted an attribute \"version\" in the declaration"},
        {"<?xml version=\"1.0\">", "1:20: found \">\", wanted an attribute or \"?>\""},
        {"<a><?pi?></a>", "1:4: found \"<?pi\", wanted an element: \"<?\" stands only at the very beginning"},
    });
}

TEST_F(Check, ColumnsCountUnits) {
    WriteBytes("w.xml", Wide("<a>ä\xF0\x9F\x95\x92\t&</a>"));
    EXPECT_EQ(RunTool({"check", "w.xml"}).out.substr(0, 25), "w.xml:1:8: found \"&\", wan");
    WriteBytes("n.xml", "<a>\xE4\t&</a>");
    EXPECT_EQ(RunTool({"check", "n.xml"}).out.substr(0, 25), "n.xml:1:6: found \"&\", wan");
}

TEST_F(Check, TheFormIsSeenInFilesThatHoldNextToNothing) {
    const auto form = [](const std::string& bytes) {
        WriteBytes("x.xml", bytes);
        return Data({"show", "x.xml"});
    };
    const std::string other = "document without settings or table, ";
    EXPECT_EQ(form(""), other + "wide\n");
    EXPECT_EQ(form("\n"), other + "narrow\n");
    EXPECT_EQ(form(std::string("\n\0", 2)), other + "wide\n");
    EXPECT_EQ(form("<a/>"), other + "narrow\n");
    EXPECT_EQ(form(Wide("\n\n<a/>")), other + "wide\n");
}

TEST_F(Check, ByteOrderMarksAndOtherEncodings) {
    WriteBytes("utf16.xml", "\xFF\xFE" + Wide("<a/>"));
    EXPECT_EQ(RunTool({"check", "utf16.xml"}).out,
              "utf16.xml:1:1: found a byte-order mark, wanted no mark: the text begins with \"<\"\n");
    WriteBytes("utf8.xml", "\xEF\xBB\xBF<a/>");
    EXPECT_EQ(RunTool({"check", "utf8.xml"}).out,
              "utf8.xml:1:1: found byte 0xEF, wanted no mark: the text begins with \"<\"\n");
    WriteBytes("letter.xml", "<a>\n<\xE4/></a>");
    EXPECT_EQ(RunTool({"check", "letter.xml"}).out,
              "letter.xml:2:2: found byte 0xE4, wanted an element name behind \"<\" "
              "(in a text it is written \"&lt;\")\n");
}

TEST_F(Check, NothingIsSaidOfAGoodFile) {
    WriteBytes("a.xml", Narrow(Settings("\t<Table name=\"S\">\n" + Var("k", "1") + "\t</Table>\n")));
    WriteBytes("t.xml", Wide(TableDocument(Var("ä", "ö"))));
    EXPECT_EQ(Data({"check", "a.xml", "t.xml"}), "");
    EXPECT_EQ(Data({"check", "a.xml", "t.xml", "--json"}), "[]\n");
}

TEST_F(Check, SettingsWithoutTheirMark) {
    WriteBytes("a.xml", Narrow("<Settings>\n</Settings>\n"));
    EXPECT_EQ(Data({"check", "a.xml"}),
              "a.xml:1:1: warning: there is neither a \"Settings\" with its mark nor a \"Table\": hosts see "
              "an empty "
              "document\n"
              "a.xml:1:2: warning: this \"Settings\" lacks the mark xmlns:noNamespaceSchemaLocation: hosts "
              "do not see "
              "its sections\n");
    WriteBytes("b.xml", Narrow("<Settings/>\n" + Settings("").substr(39) + Settings("").substr(39)));
    EXPECT_EQ(Data({"check", "b.xml"}),
              "b.xml:1:2: warning: this \"Settings\" lacks the mark xmlns:noNamespaceSchemaLocation: hosts "
              "do not see "
              "its sections\n"
              "b.xml:4:2: warning: hosts read the first marked \"Settings\" alone, which is in line 2\n");
}

TEST_F(Check, EntriesWithoutAKnownType) {
    WriteBytes("a.xml",
               Narrow(Settings("<Table name=\"S\">\n<Var name=\"a\"/>\n<Var name=\"b\" type=\"float\"/>\n"
                               "<Lease/>\n<Var name=\"c\" type=\"long\" array=\"list\"/>\n"
                               "<Var type=\"long\"/>\n</Table>\n<History/>\n<Table/>\n")));
    const std::string end = ": hosts cannot read it, and exports of its section end here\n";
    EXPECT_EQ(
        Data({"check", "a.xml"}),
        "a.xml:4:2: warning: entry a has no type" + end +
            "a.xml:5:2: warning: entry b has the unknown type \"float\"" + end +
            "a.xml:6:2: warning: <Lease> counts as an entry and has no type" + end +
            "a.xml:7:2: warning: entry c has array=\"list\", which counts as no array\n"
            "a.xml:8:2: warning: an entry without a name cannot be found\n"
            "a.xml:10:2: warning: <History> is no section, but enumerations and exports take it for one\n"
            "a.xml:11:2: warning: a section without a name cannot be found\n");
}

TEST_F(Check, DuplicateNames) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\">\n" + Var("k", "1") + Var("K", "1") +
                                        Var("k", "2") + "</Table>\n<Table name=\"S\"/>\n")));
    EXPECT_EQ(Data({"check", "a.xml"}),
              "a.xml:10:4: warning: a second entry k: hosts read the first, in line 4\n"
              "a.xml:14:2: warning: a second section S: hosts read the first, in line 3\n");
}

TEST_F(Check, CharactersThatTheNarrowFormLoses) {
    WriteBytes("n.xml", Narrow(Settings("<!-- \xE4\xE5 -->\n")));
    EXPECT_EQ(Data({"check", "n.xml"}),
              "n.xml:3:6: warning: not ASCII (2 bytes from here on): hosts read byte 0xE4 as U+FFE4\n");
    WriteBytes("w.xml", Wide(Settings("<!-- ä -->\n")));
    EXPECT_EQ(Data({"check", "w.xml"}),
              "w.xml:3:6: note: not ASCII (1 units from here on): the narrow form would lose them\n");
    EXPECT_EQ(Data({"check", "--quiet", "w.xml"}), "");
}

TEST_F(Check, OtherSurprises) {
    WriteBytes("lines.xml", Narrow(Settings("<Table name=\"S\">\n" + Var("k", "1\n2") + "</Table>\n")));
    EXPECT_EQ(
        Data({"check", "lines.xml"}),
        "lines.xml:4:4: warning: the value of entry k has line ends: each save adds indentation to it\n");
    WriteBytes("tail.xml", Narrow(Settings("")) + "lost");
    EXPECT_EQ(
        Data({"check", "tail.xml"}),
        "tail.xml:4:1: warning: the text ends here: 4 bytes behind it are not read, and lost by a save\n");
    WriteBytes("t.xml", Narrow(TableDocument("") + "<Table/>\n"));
    EXPECT_EQ(Data({"check", "t.xml"}),
              "t.xml:2:2: warning: a table document has to be wide: hosts cannot read this one\n"
              "t.xml:4:2: warning: hosts read the first table alone, which is in line 2\n");
}

TEST_F(Check, TheHighestCodeOfAllFilesIsReturned) {
    WriteBytes("good.xml", Narrow(Settings("")));
    WriteBytes("bad.xml", "<a>");
    const Result unread = RunTool({"check", "bad.xml", "none.xml", "[good.xml,x]", "good.xml"});
    EXPECT_EQ(unread.code, 4);
    EXPECT_EQ(unread.out.rfind("bad.xml:1:4: found", 0), 0U);
    EXPECT_EQ(unread.err,
              "mox-xml: none.xml: the file cannot be opened\n"
              "mox-xml: [good.xml,x]: the file cannot be opened\n");
    EXPECT_EQ(RunTool({"check", "good.xml", "bad.xml"}).code, 3);
    EXPECT_EQ(RunTool({"check", "--wide", "good.xml"}).code, 3);
    EXPECT_EQ(RunTool({"check", "--no-such-option", "good.xml"}).code, 2);
    EXPECT_EQ(RunTool({"check"}).code, 2);
}

TEST_F(Check, FindingsAsJson) {
    WriteBytes("bad ä.xml", "<a>\n&</a>");
    const Result result = RunTool({"check", "bad ä.xml", "--json"});
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.out,
              "[\n  {\n    \"file\": \"bad ä.xml\",\n    \"line\": 2,\n    \"column\": 1,\n"
              "    \"severity\": \"error\",\n    \"message\": \"found \\\"&\\\", wanted \\\"&amp;\\\", "
              "\\\"&apos;\\\", \\\"&gt;\\\", \\\"&lt;\\\" or \\\"&quot;\\\"\"\n  }\n]\n");
}

}  // namespace
}  // namespace tool
