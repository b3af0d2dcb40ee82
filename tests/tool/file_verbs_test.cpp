// show, export, convert, diff.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using FileVerbs = ToolTest;

const std::string kInner =
    "\t<!-- note -->\n"
    "\t<Table name=\"A\" first_id=\"5\" type=\"0010\" editable=\"true\" eud=\"true\">\n"
    "\t\t<Var name=\"k\" id=\"5\" type=\"long\" array=\"\" eud=\"true\">\n\t\t\t<Value>1</Value>\n"
    "\t\t\t<UI control=\"num\" access=\"hidden\" flags=\"0003\" prov_owner=\"erg\" name=\"K\" minVal=\"0\" "
    "maxVal=\"9\" "
    "regen=\"r\">\n\t\t\t\t<Comment>c</Comment>\n\t\t\t\t<Value>2</Value>\n\t\t\t</UI>\n\t\t</Var>\n"
    "\t\t<Lease hours=\"12\"/>\n"
    "\t</Table>\n"
    "\t<History>\n\t\t<Change by=\"x\">text</Change>\n\t</History>\n";

TEST_F(FileVerbs, ShowPrintsEverythingAsATree) {
    WriteBytes("a.xml", Narrow(Settings(kInner)));
    EXPECT_EQ(Succeeds({"show", "a.xml"}),
              "settings document, narrow\n"
              "# \" note \"\n"
              "section A  [first id 5, type 0010, editable, eud]\n"
              "  k = \"1\"  [long, id 5, eud]\n"
              "    shown as num \"K\"  [value \"2\", minimum \"0\", maximum \"9\", access hidden, flags "
              "0003, regen \"r\", "
              "provider erg]\n"
              "    comment \"c\"\n"
              "  <Lease> hours=\"12\"\n"
              "<History>\n"
              "  <Change> by=\"x\" \"text\"\n");
}

TEST_F(FileVerbs, ShowPrintsTablesAndDocumentsOfNoKind) {
    WriteBytes("t.xml", Wide(TableDocument(Var("Ä", "line\nend"))));
    EXPECT_EQ(Succeeds({"show", "t.xml"}),
              "table document, wide\ntable Tools\n  Ä = \"line\\nend\"  [string]\n");
    WriteBytes("e.xml", "");
    EXPECT_EQ(Succeeds({"show", "e.xml"}), "document without settings or a table, wide\n");
    EXPECT_EQ(Succeeds({"show", "e.xml", "--json"}),
              "{\n  \"kind\": \"other\",\n  \"form\": \"wide\",\n  \"sections\": []\n}\n");
}

TEST_F(FileVerbs, ShowAsJson) {
    WriteBytes("a.xml",
               Wide(Settings("<Table name=\"Ä\"><Var name=\"k\" type=\"byte\" array=\"array\" eud=\"true\">"
                             "<Value>00</Value></Var><Var name=\"x\" type=\"what\"/></Table>")));
    EXPECT_EQ(
        Succeeds({"show", "a.xml", "--json"}),
        "{\n  \"kind\": \"settings\",\n  \"form\": \"wide\",\n  \"sections\": [\n    {\n      "
        "\"name\": \"Ä\",\n"
        "      \"first_id\": 0,\n      \"type\": \"0000\",\n      \"editable\": false,\n      "
        "\"entries\": [\n"
        "        {\n          \"name\": \"k\",\n          \"type\": \"byte\",\n          \"shape\": "
        "\"array\",\n"
        "          \"eud\": true,\n          \"value\": [\n            0\n          ]\n        },\n"
        "        {\n          \"name\": \"x\",\n          \"type\": \"what\",\n          \"readable\": "
        "false,\n          \"other\": [\n            {\n              \"index\": 0,\n              "
        "\"depth\": 0,\n"
        "              \"element\": \"Var\",\n              \"attributes\": [\n                {\n"
        "                  \"name\": \"name\",\n                  \"value\": \"x\"\n                },\n"
        "                {\n                  \"name\": \"type\",\n                  \"value\": \"what\"\n"
        "                }\n              ]\n            }\n          ]\n"
        "        }\n      ]\n    }\n  ]\n}\n");
}

TEST_F(FileVerbs, ShowATableAsJson) {
    WriteBytes("t.xml", Wide(TableDocument(Var("k", "a"))));
    EXPECT_EQ(Succeeds({"show", "t.xml", "--json"}),
              "{\n  \"kind\": \"table\",\n  \"form\": \"wide\",\n  \"table\": {\n    \"name\": \"Tools\",\n"
              "    \"first_id\": 0,\n    \"type\": \"0000\",\n    \"editable\": false,\n    \"entries\": [\n"
              "      {\n        \"name\": \"k\",\n        \"type\": \"string\",\n        \"value\": \"a\"\n"
              "      }\n    ]\n  }\n}\n");
}

TEST_F(FileVerbs, PrintsASurrogateWithoutAPartner) {
    std::string bytes = Wide(TableDocument(Var("k", "@")));
    const std::size_t at = bytes.find(std::string("@\0", 2));
    bytes.replace(at, 2, "\x3D\xD8");
    WriteBytes("t.xml", bytes);
    EXPECT_EQ(Succeeds({"entry", "get", "t.xml", "k"}), "\xED\xA0\xBD\n");
    EXPECT_NE(Succeeds({"show", "t.xml", "--json"}).find("\xEF\xBF\xBD"), std::string::npos);
}

TEST_F(FileVerbs, ExportWritesValuesOrPresentationData) {
    WriteBytes("a.xml", Narrow(Settings(kInner)));
    Succeeds({"export", "a.xml", "v.xml", "--values"});
    EXPECT_NE(ReadBytes("v.xml").find("<Var name=\"k\" id=\"5\" type=\"long\""), std::string::npos);
    EXPECT_EQ(ReadBytes("v.xml").find("<UI"), std::string::npos);
    Succeeds({"export", "a.xml", "u.xml", "--ui"});
    EXPECT_NE(ReadBytes("u.xml").find("<UI control=\"num\" prov_owner=\"erg\" name=\"K\">"),
              std::string::npos);
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(Settings(kInner)));
    Fails(2, {"export", "a.xml", "x.xml"}, "export requires either --values or --ui");
    Fails(2, {"export", "a.xml", "x.xml", "--ui", "--values"}, "export requires either --values or --ui");
    Fails(4, {"export", "a.xml", "no folder/x.xml", "--ui"}, "no folder/x.xml: cannot ");
    EXPECT_FALSE(Exists("x.xml"));
}

TEST_F(FileVerbs, ConvertChangesOnlyTheForm) {
    const std::string text =
        "<Settings   xmlns:noNamespaceSchemaLocation=\"\">\r\n <Table name=\"S\" eud=\"true\">\n"
        "<!-- c --> x &amp;\n</Table>\n\n</Settings>";
    WriteBytes("a.xml", text);
    Succeeds({"convert", "--wide", "a.xml", "w.xml"});
    EXPECT_EQ(ReadBytes("w.xml"), Wide(text));
    EXPECT_EQ(ReadBytes("a.xml"), text);
    Succeeds({"convert", "--narrow", "w.xml", "--backup"});
    EXPECT_EQ(ReadBytes("w.xml"), Narrow(text));
    EXPECT_EQ(ReadBytes("w.xml.bak"), Wide(text));
    Succeeds({"convert", "--narrow", "w.xml"});
    EXPECT_EQ(ReadBytes("w.xml"), Narrow(text));
}

TEST_F(FileVerbs, ConvertLosesTextOnlyWithLossy) {
    const std::string wide = Wide(Settings("<Table name=\"Öl\"/>\n"));
    WriteBytes("a.xml", wide);
    Fails(4, {"convert", "--narrow", "a.xml"},
          "a.xml:3:14: a narrow file cannot store this character (--lossy keeps only its low byte)");
    EXPECT_EQ(ReadBytes("a.xml"), wide);
    Succeeds({"convert", "--narrow", "--lossy", "a.xml", "n.xml"});
    EXPECT_EQ(ReadBytes("n.xml"), Narrow(Settings("<Table name=\"\xD6l\"/>\n")));
    const Result back = RunTool({"convert", "--wide", "n.xml"});
    EXPECT_EQ(back.code, 0);
    EXPECT_EQ(back.err,
              "mox-xml: n.xml: warning: the bytes from 0x80 on become U+FF80 to U+FFFF, as the library reads "
              "them (see \"mox-xml convert --from latin1\")\n");
    EXPECT_EQ(ReadBytes("n.xml"), Wide(Settings("<Table name=\"\xEF\xBF\x96l\"/>\n")));
}

TEST_F(FileVerbs, ConvertRejectsInvalidArguments) {
    WriteBytes("t.xml", Wide(TableDocument("")));
    Fails(2, {"convert", "t.xml"}, "convert requires either --wide or --narrow");
    Fails(2, {"convert", "t.xml", "--wide", "--narrow"}, "convert requires either --wide or --narrow");
    Fails(2, {"convert", "t.xml", "--narrow"}, "t.xml: a table document must be wide");
    Fails(2, {"convert", "t.xml", "--wide", "--from", "utf8"}, "utf8");
    Fails(3, {"convert", "t.xml", "--wide", "--from", "narrow"}, "t.xml:1:2: found the end of the file");
    EXPECT_EQ(ReadBytes("t.xml"), Wide(TableDocument("")));
}

TEST_F(FileVerbs, DiffIgnoresFormOrderLayoutAndComments) {
    WriteBytes("a.xml",
               Narrow(Settings("<Table name=\"A\" type=\"0010\"><Var name=\"k\" type=\"long\" id=\"1\">"
                               "<Value>1</Value></Var><Var name=\"l\" type=\"bool\"/></Table>\n"
                               "<Table name=\"B\"/>\n<!-- a -->\n")));
    WriteBytes("b.xml",
               Wide("<Settings xsi:noNamespaceSchemaLocation=\"\"><Table name=\"B\"/><Table type=\"10\" "
                    "name=\"A\"> <Var type=\"bool\" name=\"l\" array=\"\"></Var>\n<Var id=\"1\" name=\"k\" "
                    "type=\"long\" Value=\"1\"/></Table></Settings>"));
    EXPECT_EQ(Succeeds({"diff", "a.xml", "b.xml"}), "");
    EXPECT_EQ(Succeeds({"diff", "a.xml", "b.xml", "--json"}), "[]\n");
}

TEST_F(FileVerbs, DiffPrintsWhatWasAddedRemovedAndChanged) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"A\" first_id=\"1\">" + Var("k", "1") +
                                        Var("gone", "x") + Var("k", "2") + "</Table><Table name=\"Old/1\">" +
                                        Var("o", "1") + "</Table>")));
    WriteBytes("b.xml",
               Narrow(Settings(
                   "<Table name=\"A\" editable=\"true\"><Var name=\"k\" type=\"long\"><Value>1</Value><UI "
                   "control=\"num\" minVal=\"3\"/></Var>" +
                   Var("new", "a\nb") + Var("k", "3") + "</Table><Table name=\"\"/>")));
    const Result result = RunTool({"diff", "a.xml", "b.xml"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out,
              "~ A first_id: \"1\" -> \"0\"\n"
              "~ A editable: \"false\" -> \"true\"\n"
              "~ A/k type: \"string\" -> \"long\"\n"
              "~ A/k ui.control: \"\" -> \"num\"\n"
              "~ A/k ui.minimum: \"\" -> \"3\"\n"
              "- A/gone string: \"x\"\n"
              "~ A/k#2 value: \"2\" -> \"3\"\n"
              "+ A/new string: \"a\\nb\"\n"
              "- \"Old/1\"\n"
              "- \"Old/1\"/o string: \"1\"\n"
              "+ \"\"\n");
}

TEST_F(FileVerbs, DiffAsJsonAndBetweenKinds) {
    WriteBytes("a.xml", Wide(TableDocument(Var("k", "1"))));
    WriteBytes("b.xml", Wide(TableDocument(Var("k", "2"))));
    WriteBytes("s.xml", Wide(Settings("")));
    const Result changed = RunTool({"diff", "a.xml", "b.xml", "--json"});
    EXPECT_EQ(changed.code, 1);
    EXPECT_EQ(changed.out,
              "[\n  {\n    \"change\": \"changed\",\n    \"section\": \"Tools\",\n    \"entry\": \"k\",\n"
              "    \"field\": \"value\",\n    \"before\": \"1\",\n    \"after\": \"2\"\n  }\n]\n");
    EXPECT_EQ(RunTool({"diff", "a.xml", "s.xml"}).out,
              "~ a table document -> a settings document\n- Tools\n"
              "- Tools/k string: \"1\"\n");
}

TEST_F(FileVerbs, DiffFailsIfAFileCannotBeReadOrParsed) {
    WriteBytes("a.xml", Narrow(Settings("")));
    WriteBytes("broken.xml", "<a>");
    Fails(4, {"diff", "a.xml", "none.xml"}, "none.xml: cannot open the file");
    Fails(3, {"diff", "broken.xml", "a.xml"}, "broken.xml:1:4: found the end of the file");
}

}  // namespace
}  // namespace tool
