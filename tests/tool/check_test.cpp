// check: syntax errors with their positions, warnings and notes.
#include <gmock/gmock.h>

#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using Check = ToolTest;

struct Case {
    std::string text;
    std::string diagnostic;  // without the name of the file
};

// Checks the texts as narrow and as wide files; expects the same error for both. One run checks all files.
void ExpectErrors(const std::vector<Case>& cases) {
    for (const bool isWide : {false, true}) {
        std::vector<std::string> call{"check"};
        std::string lines;
        for (const Case& test : cases) {
            const std::string name = std::to_string(call.size()) + ".xml";
            WriteBytes(name, isWide ? Wide(test.text) : Narrow(test.text));
            lines.append(name).append(":").append(test.diagnostic).append("\n");
            call.push_back(name);
        }
        const Result result = RunTool(call);
        EXPECT_EQ(result.code, 3);
        EXPECT_EQ(result.out, lines);
        EXPECT_EQ(result.err, "");
    }
}

TEST_F(Check, ElementsAndTags) {
    ExpectErrors({
        {"<a>\n<b>\n</c>\n</a>",
         "3:1: found \"</c\", expected \"</b>\" to close the element that begins on line 2"},
        {"<Table>\n\n</Tabel>",
         "3:1: found \"</Tabel\", expected \"</Table>\" to close the element that begins on line 1"},
        {"<a></ab>", "1:4: found \"</ab\", expected \"</a>\" to close the element that begins on line 1"},
        {"<a></a >", "1:7: found a space, expected \"</a>\" to close the element that begins on line 1"},
        {"<a>\n\t<b>",
         "2:5: found the end of the file, expected \"</b>\" to close the element that begins on line 2"},
        {"<a.b/>",
         "1:3: found \".\", expected an attribute, \">\" or \"/>\" in the tag of \"a\" (names cannot contain "
         "\"-\" or \".\")"},
        {"<a/\n>", "1:4: found a line break, expected \">\" after \"/\""},
        {"</a>", "1:1: found \"</a\", expected a start tag (no element is open here)"},
        {"<a>1 < 2</a>",
         "1:7: found a space, expected an element name after \"<\" (in text, write \"<\" as \"&lt;\")"},
        {"<a/>\n\r\n text", "3:2: found \"text\", expected \"<\" or the end of the file"},
        {"<a/><b/>", "1:5: found \"<b\", expected a line break before the next top-level element or comment"},
    });
}

TEST_F(Check, AttributesAndReferences) {
    const std::string references = "expected \"&amp;\", \"&apos;\", \"&gt;\", \"&lt;\" or \"&quot;\"";
    ExpectErrors({
        {"<a b-c=\"\"/>",
         "1:5: found \"-\", expected \"=\" after \"b\" (names cannot contain \"-\" or \".\")"},
        {"<a b='x'/>",
         "1:6: found \"'\", expected a double quote (\") before the value of \"b\" (single quotes are not "
         "supported)"},
        {"<a b=\"x\n/>",
         "2:3: found the end of the file, expected a double quote (\") to close the value that begins on "
         "line 1"},
        {"<a\n b=\"x>\n<c/>",
         "3:1: found \"<c\", expected a double quote (\") to close the value that begins on line 2 (in a "
         "value, write \"<\" as \"&lt;\")"},
        {"<a b=\"&amp;&#x41;\"/>", "1:12: found \"&#x41;\", " + references},
        {"<a>\n&amp;&nbsp;</a>", "2:6: found \"&nbsp;\", " + references},
        {"<a>R & D</a>", "1:6: found \"&\", " + references},
    });
}

TEST_F(Check, CommentsAndDeclarations) {
    const std::string elementOrComment =
        "expected an element or a comment (\"<?\" is allowed only in the XML declaration, at the start of "
        "the "
        "file)";
    ExpectErrors({
        {"<!DOCTYPE a>", "1:1: found \"<!DOCTYPE\", expected \"<!--\" (DOCTYPE and CDATA are not supported)"},
        {"<a>\n<![CDATA[x]]></a>",
         "2:1: found \"<![CDATA\", expected \"<!--\" (DOCTYPE and CDATA are not supported)"},
        {"<!-- a > b -->", "1:8: found \">\", expected \"-->\" (comments cannot contain \">\" or \"--\")"},
        {"\n<!-- a",
         "2:7: found the end of the file, expected \"-->\" to close the comment that begins on line 2"},
        {"<!---->\n<?xml version=\"1.0\"?>", "2:1: found \"<?xml\", " + elementOrComment},
        {"<a><?pi?></a>", "1:4: found \"<?pi\", " + elementOrComment},
        {"<?php?>", "1:3: found \"php\", expected \"xml\" after \"<?\""},
        {"<?xmlx ?>", "1:3: found \"xmlx\", expected \"xml\" after \"<?\""},
        {"<?xml?>", "1:6: found \"?\", expected white space after \"<?xml\""},
        {"<?xml", "1:6: found the end of the file, expected white space after \"<?xml\""},
        {"<?xml encoding=\"UTF-8\"?>",
         "1:23: found \"?\", expected an attribute \"version\" in the XML declaration"},
        {"<?xml version=\"1.0\">", "1:20: found \">\", expected an attribute or \"?>\""},
    });
}

TEST_F(Check, ColumnsCountUnits) {
    WriteBytes("w.xml", Wide("<a>ä\xF0\x9F\x95\x92\t&</a>"));
    EXPECT_EQ(RunTool({"check", "w.xml"}).out.substr(0, 25), "w.xml:1:8: found \"&\", exp");
    WriteBytes("n.xml", "<a>\xE4\t&</a>");
    EXPECT_EQ(RunTool({"check", "n.xml"}).out.substr(0, 25), "n.xml:1:6: found \"&\", exp");
}

TEST_F(Check, DetectsTheFormOfNearlyEmptyFiles) {
    const auto form = [](const std::string& bytes) {
        WriteBytes("x.xml", bytes);
        return Succeeds({"show", "x.xml"});
    };
    const std::string other = "document without settings or a table, ";
    EXPECT_EQ(form(""), other + "wide\n");
    EXPECT_EQ(form("\n"), other + "narrow\n");
    EXPECT_EQ(form(std::string("\n\0", 2)), other + "wide\n");
    EXPECT_EQ(form("<a/>"), other + "narrow\n");
    EXPECT_EQ(form(Wide("\n\n<a/>")), other + "wide\n");
}

TEST_F(Check, ByteOrderMarksAndOtherEncodings) {
    WriteBytes("utf16.xml", "\xFF\xFE" + Wide("<a/>"));
    EXPECT_EQ(
        RunTool({"check", "utf16.xml"}).out,
        "utf16.xml:1:1: found a byte-order mark, expected \"<\" (byte-order marks are not supported); the "
        "text is UTF-16 with the low byte first and a byte-order mark (see \"mox-xml convert --from "
        "utf-16\")\n");
    WriteBytes("utf8.xml", "\xEF\xBB\xBF<a/>");
    EXPECT_EQ(
        RunTool({"check", "utf8.xml"}).out,
        "utf8.xml:1:1: found a byte-order mark, expected \"<\" (byte-order marks are not supported); the "
        "text is UTF-8 with a byte-order mark (see \"mox-xml convert --from utf-8\")\n");
    WriteBytes("byte.xml", "\xEF<a/>");
    EXPECT_EQ(RunTool({"check", "byte.xml"}).out,
              "byte.xml:1:1: found byte 0xEF, expected \"<\" or the end of the file\n");
    WriteBytes("letter.xml", "<a>\n<\xE4/></a>");
    EXPECT_EQ(RunTool({"check", "letter.xml"}).out,
              "letter.xml:2:2: found byte 0xE4, expected an element name after \"<\" "
              "(in text, write \"<\" as \"&lt;\")\n");
}

TEST_F(Check, AFileWithoutProblemsGivesNoOutput) {
    WriteBytes("a.xml", Narrow(Settings("\t<Table name=\"S\">\n" + Var("k", "1") + "\t</Table>\n")));
    WriteBytes("t.xml", Wide(TableDocument(Var("ä", "ö"))));
    EXPECT_EQ(Succeeds({"check", "a.xml", "t.xml"}), "");
    EXPECT_EQ(Succeeds({"check", "a.xml", "t.xml", "--json"}), "[]\n");
}

TEST_F(Check, SettingsWithoutASchemaAttribute) {
    const std::string noAttribute =
        ":1:2: warning: \"Settings\" has no attribute \"xmlns:noNamespaceSchemaLocation\": hosts do not see "
        "its "
        "sections\n";
    WriteBytes("a.xml", Narrow("<Settings>\n</Settings>\n"));
    EXPECT_EQ(Succeeds({"check", "a.xml"}),
              "a.xml:1:1: warning: neither a \"Settings\" element with a schema attribute nor a \"Table\" "
              "element: hosts see an empty document\n"
              "a.xml" +
                  noAttribute);
    WriteBytes("b.xml", Narrow("<Settings/>\n" + Settings("").substr(39) + Settings("").substr(39)));
    EXPECT_EQ(Succeeds({"check", "b.xml"}),
              "b.xml" + noAttribute +
                  "b.xml:4:2: warning: another \"Settings\" element: hosts read only the one on line 2\n");
}

TEST_F(Check, EntriesThatHostsCannotReadOrFind) {
    WriteBytes("a.xml",
               Narrow(Settings("<Table name=\"S\">\n<Var name=\"a\"/>\n<Var name=\"b\" type=\"float\"/>\n"
                               "<Lease/>\n<Var name=\"c\" type=\"long\" array=\"list\"/>\n"
                               "<Var type=\"long\"/>\n</Table>\n<History/>\n<Table/>\n")));
    const std::string end = ": hosts cannot read it, and exports of its section stop here\n";
    EXPECT_EQ(
        Succeeds({"check", "a.xml"}),
        "a.xml:4:2: warning: entry a has no type" + end +
            "a.xml:5:2: warning: entry b has the unknown type \"float\"" + end +
            "a.xml:6:2: warning: <Lease> counts as an entry but has no type" + end +
            "a.xml:7:2: warning: entry c has array=\"list\", which is neither \"array\" nor \"vector\" and "
            "has no effect\n"
            "a.xml:8:2: warning: entry without a name: hosts cannot find it by name\n"
            "a.xml:10:2: warning: <History> is not a section, but enumerations and exports treat it as one\n"
            "a.xml:11:2: warning: section without a name: hosts cannot find it by name\n");
}

TEST_F(Check, DuplicateNames) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\">\n" + Var("k", "1") + Var("K", "1") +
                                        Var("k", "2") + "</Table>\n<Table name=\"S\"/>\n")));
    EXPECT_EQ(Succeeds({"check", "a.xml"}),
              "a.xml:10:4: warning: duplicate entry k: hosts read only the one on line 4\n"
              "a.xml:14:2: warning: duplicate section S: hosts read only the one on line 3\n");
}

TEST_F(Check, NonAsciiText) {
    WriteBytes("n.xml", Narrow(Settings("<!-- \xE4\xE5 -->\n")));
    EXPECT_EQ(Succeeds({"check", "n.xml"}),
              "n.xml:3:6: warning: non-ASCII text (2 bytes in the whole file): hosts read byte 0xE4 as "
              "U+FFE4; the text is 8-bit text other than UTF-8 (see \"mox-xml convert --from latin1\")\n");
    WriteBytes("w.xml", Wide(Settings("<!-- ä -->\n")));
    EXPECT_EQ(Succeeds({"check", "w.xml"}),
              "w.xml:3:6: note: non-ASCII text (1 unit in the whole file): a narrow file cannot store it\n");
    EXPECT_EQ(Succeeds({"check", "--quiet", "w.xml"}), "");
}

TEST_F(Check, LineBreaksUnreadBytesAndTableDocuments) {
    WriteBytes("lines.xml", Narrow(Settings("<Table name=\"S\">\n" + Var("k", "1\n2") + "</Table>\n")));
    EXPECT_EQ(Succeeds({"check", "lines.xml"}),
              "lines.xml:4:4: warning: the value of entry k contains line breaks: each save adds indentation "
              "to it\n");
    WriteBytes("tail.xml", Narrow(Settings("")) + "lost");
    EXPECT_EQ(Succeeds({"check", "tail.xml"}),
              "tail.xml:4:1: warning: the text ends here: hosts ignore what follows (4 bytes), and saving "
              "discards it\n");
    WriteBytes("t.xml", Narrow(TableDocument("") + "<Table/>\n"));
    EXPECT_EQ(Succeeds({"check", "t.xml"}),
              "t.xml:2:2: warning: table documents must be wide: hosts cannot read this narrow one\n"
              "t.xml:4:2: warning: another \"Table\" element: hosts read only the one on line 2\n");
}

TEST_F(Check, ExitsWithTheHighestCodeOfAllFiles) {
    WriteBytes("valid.xml", Narrow(Settings("")));
    WriteBytes("broken.xml", "<a>");
    const Result result = RunTool({"check", "broken.xml", "none.xml", "[valid.xml,x]", "valid.xml"});
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.out.rfind("broken.xml:1:4: found", 0), 0U);
    EXPECT_THAT(result.err, testing::MatchesRegex("mox-xml: none.xml: cannot open the file: .+\n"
                                                  "mox-xml: .valid.xml,x.: cannot open the file: .+\n"));
    EXPECT_EQ(RunTool({"check", "valid.xml", "broken.xml"}).code, 3);
    EXPECT_EQ(RunTool({"check", "--wide", "valid.xml"}).code, 3);
    EXPECT_EQ(RunTool({"check", "--no-such-option", "valid.xml"}).code, 2);
    EXPECT_EQ(RunTool({"check"}).code, 2);
}

TEST_F(Check, DiagnosticsAsJson) {
    WriteBytes("broken ä.xml", "<a>\n&</a>");
    const Result result = RunTool({"check", "broken ä.xml", "--json"});
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.out,
              "[\n  {\n    \"file\": \"broken ä.xml\",\n    \"line\": 2,\n    \"column\": 1,\n"
              "    \"severity\": \"error\",\n    \"message\": \"found \\\"&\\\", expected \\\"&amp;\\\", "
              "\\\"&apos;\\\", \\\"&gt;\\\", \\\"&lt;\\\" or \\\"&quot;\\\"\"\n  }\n]\n");
}

}  // namespace
}  // namespace tool
