// entries, entry get|set|add|remove.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using EntryVerbs = ToolTest;

const std::string kDrill =
    "\t<Var name=\"Drill 3\" id=\"1\" type=\"double\" array=\"\">\n\t\t<Value>3.0</Value>\n"
    "\t\t<UI control=\"num\" prov_index=\"7\" prov_owner=\"app\" name=\"Drill\" minVal=\"1\">\n"
    "\t\t\t<Comment>in mm</Comment>\n\t\t</UI>\n\t</Var>\n";
const std::string kTools = TableDocument(kDrill +
                                         "\t<Var name=\"Bits\" type=\"byte\" array=\"array\">\n"
                                         "\t\t<Value>00FF</Value>\n\t</Var>\n");

TEST_F(EntryVerbs, EntriesListsNameTypeAndValue) {
    WriteBytes("t.xml", Wide(kTools));
    EXPECT_EQ(Succeeds({"entries", "t.xml"}), "Drill 3\tdouble\t3.0\nBits\tbyte array\t00FF\n");
}

TEST_F(EntryVerbs, JsonHasAllFieldsOfAnEntry) {
    WriteBytes("t.xml", Wide(TableDocument(kDrill)));
    const std::string entry =
        "\"name\": \"Drill 3\",\n  \"type\": \"double\",\n  \"id\": 1,\n  \"value\": 3.0,\n  \"ui\": {\n"
        "    \"control\": \"num\",\n    \"provider\": \"app\",\n    \"provider_index\": 7,\n    \"minimum\": "
        "\"1\",\n"
        "    \"shown_name\": \"Drill\",\n    \"comment\": \"in mm\"\n  }\n}\n";
    EXPECT_EQ(Succeeds({"entry", "get", "t.xml", "Drill 3", "--json"}), "{\n  " + entry);
    EXPECT_EQ(Succeeds({"entries", "t.xml", "--json"}).front(), '[');
    EXPECT_EQ(Succeeds({"entry", "get", "t.xml", "Drill 3"}), "3.0\n");
}

TEST_F(EntryVerbs, MissingNamesExitWithOne) {
    WriteBytes("t.xml", Wide(kTools));
    Fails(1, {"entry", "get", "t.xml", "Drill"}, "t.xml: no entry Drill\n");
    Fails(1, {"entry", "set", "t.xml", "Drill", "1"}, "t.xml: no entry Drill\n");
    Fails(1, {"entry", "remove", "t.xml", "Drill"}, "t.xml: no entry Drill\n");
    Fails(1, {"entry", "add", "t.xml", "New", "1", "--before", "Drill"}, "t.xml: no entry Drill\n");
    Fails(1, {"entry", "get", "t.xml", ""}, "t.xml: no entry \"\"\n");
    EXPECT_EQ(ReadBytes("t.xml"), Wide(kTools));
}

TEST_F(EntryVerbs, SetChangesOnlyTheValue) {
    WriteBytes("t.xml", Wide(TableDocument(kDrill)));
    Succeeds({"entry", "set", "t.xml", "Drill 3", "3.2"});
    EXPECT_EQ(Succeeds({"entry", "get", "t.xml", "Drill 3"}), "3.2\n");
    EXPECT_EQ(Succeeds({"diff", "t.xml", "t.xml"}), "");
    const std::string after = ReadBytes("t.xml");
    WriteBytes("old.xml", Wide(TableDocument(kDrill)));
    EXPECT_EQ(RunTool({"diff", "old.xml", "t.xml"}).out, "~ Tools/Drill 3 value: \"3.0\" -> \"3.2\"\n");
    EXPECT_EQ(ReadBytes("t.xml"), after);
}

TEST_F(EntryVerbs, SetChangesOnlyTheFieldsThatAreGiven) {
    WriteBytes("old.xml", Wide(TableDocument(kDrill)));
    WriteBytes("t.xml", Wide(TableDocument(kDrill)));
    Succeeds({"entry", "set", "t.xml", "Drill 3", "--comment", "Länge in mm", "--id", "12"});
    EXPECT_EQ(
        RunTool({"diff", "old.xml", "t.xml"}).out,
        "~ Tools/Drill 3 id: \"1\" -> \"12\"\n~ Tools/Drill 3 ui.comment: \"in mm\" -> \"Länge in mm\"\n");
    Succeeds({"entry", "set", "t.xml", "Drill 3", "4", "--type", "long", "--vector", "--control", "text"});
    EXPECT_EQ(Succeeds({"entries", "t.xml"}), "Drill 3\tlong vector\t4\n");
    EXPECT_NE(Succeeds({"show", "t.xml"}).find("shown as text \"Drill\"  [minimum \"1\", provider app 7]"),
              std::string::npos);
}

TEST_F(EntryVerbs, AddInsertsAtTheEndOrBeforeAnotherEntry) {
    WriteBytes("t.xml", Wide(TableDocument("")));
    Succeeds({"entry", "add", "t.xml", "b", "2", "--type", "double", "--id", "5"});
    Succeeds({"entry", "add", "t.xml", "c"});
    Succeeds({"entry", "add", "t.xml", "ä ", "01", "--before", "b", "--type", "byte", "--array"});
    EXPECT_EQ(Succeeds({"entries", "t.xml"}), "ä \tbyte array\t01\nb\tdouble\t2\nc\tstring\t\n");
    EXPECT_EQ(Succeeds({"entry", "get", "t.xml", "b", "--json"}),
              "{\n  \"name\": \"b\",\n  \"type\": \"double\",\n  \"id\": 5,\n  \"value\": 2.0,\n  \"text\": "
              "\"2\"\n}\n");
}

TEST_F(EntryVerbs, AddStoresPresentationData) {
    WriteBytes("t.xml", Wide(TableDocument("")));
    Succeeds({"entry", "add", "t.xml", "a", "1", "--control", "switch", "--shown-name", "An/Aus", "--comment",
              "c", "--provider", "erg", "--provider-index", "3", "--ui-value", "x"});
    EXPECT_NE(
        Succeeds({"show", "t.xml"})
            .find("  a = \"1\"  [string]\n    shown as switch \"An/Aus\"  [value \"x\", provider erg 3]\n"
                  "    comment \"c\"\n"),
        std::string::npos);
}

TEST_F(EntryVerbs, RejectsInvalidArguments) {
    WriteBytes("t.xml", Wide(kTools));
    Fails(2, {"entry", "add", "t.xml", "a", "--type", "float"},
          "unknown type float (expected short, long, double, string, bool, char, byte, ushort, ulong or "
          "ucstring)");
    Fails(2, {"entry", "add", "t.xml", "a", "--control", "slider"},
          "unknown control slider (expected num, text,");
    Fails(2, {"entry", "add", "t.xml", "a", "--provider", "me"},
          "unknown provider me (expected app, dwg or erg)");
    Fails(2, {"entry", "add", "t.xml", "a", "--id", "x"},
          "invalid value: --id = x (see \"mox-xml entry add --help\")");
    Fails(2, {"entry", "add", "t.xml", "Bits"},
          "t.xml: Bits: there is an entry of that name (see \"mox-xml entry add --help\")");
    Fails(2, {"entry", "add", "t.xml", ""}, "the entry name must not be empty");
    Fails(2, {"entry", "set", "t.xml", "Bits"}, "entry set requires a value or another field to change");
    Fails(2, {"entry", "get", "t.xml", "Bits", "--id"}, "unknown option --id; an argument");
    Fails(2, {"entry", "show", "t.xml"}, "unknown verb show (see \"mox-xml entry --help\")");
    Fails(2, {"entry"}, "mox-xml: a verb is required (see \"mox-xml entry --help\")");
    EXPECT_EQ(ReadBytes("t.xml"), Wide(kTools));
}

TEST_F(EntryVerbs, RejectsEntriesThatTheTableCannotStore) {
    WriteBytes("t.xml", Wide(kTools));
    Fails(4, {"entry", "add", "t.xml", std::string(300, 'n'), "1"}, "t.xml: nnn");
    Fails(4, {"entry", "add", "t.xml", "a", "--ui-value", "1"}, "t.xml: a: ");
    EXPECT_EQ(ReadBytes("t.xml"), Wide(kTools));
}

// The first entry has its value in its presentation data, and so have the others then.
TEST_F(EntryVerbs, ATableWithItsValuesInThePresentationDataTakesOneValuePerEntry) {
    const std::string table = TableDocument(
        "\t<Var name=\"a\" type=\"long\">\n\t\t<UI control=\"num\">\n\t\t\t<Value>1</Value>\n\t\t</UI>\n"
        "\t</Var>\n");
    WriteBytes("t.xml", Wide(table));
    Fails(4, {"entry", "set", "t.xml", "a", "2", "--ui-value", "3"},
          "t.xml: the file would not contain what was to be written; nothing was changed");
    Fails(4, {"entry", "add", "t.xml", "b", "2", "--ui-value", "3"}, "t.xml: b: ");
    EXPECT_EQ(ReadBytes("t.xml"), Wide(table));
    Succeeds({"entry", "set", "t.xml", "a", "2", "--id", "7"});
    Succeeds({"entry", "add", "t.xml", "b", "1", "--control", "switch"});
    EXPECT_EQ(Succeeds({"entry", "get", "t.xml", "a"}), "2\n");
    EXPECT_EQ(Succeeds({"entry", "get", "t.xml", "b"}), "1\n");
    const std::string shown = Succeeds({"show", "t.xml"});
    EXPECT_NE(shown.find("shown as num  [value \"2\"]"), std::string::npos) << shown;
    EXPECT_NE(shown.find("shown as switch  [value \"1\"]"), std::string::npos) << shown;
}

TEST_F(EntryVerbs, RemoveRemovesTheFirstOrAll) {
    WriteBytes("t.xml", Wide(TableDocument(Var("a", "1") + Var("b", "2") + Var("a", "3") + Var("a", "4"))));
    Succeeds({"entry", "remove", "t.xml", "a"});
    EXPECT_EQ(Succeeds({"entries", "t.xml"}), "b\tstring\t2\na\tstring\t3\na\tstring\t4\n");
    Succeeds({"entry", "remove", "t.xml", "a", "--all"});
    EXPECT_EQ(Succeeds({"entries", "t.xml"}), "b\tstring\t2\n");
}

TEST_F(EntryVerbs, WorksOnSections) {
    WriteBytes("s.xml", Narrow(Settings("<Table name=\"A b\">" + Var("k", "1") + "</Table>")));
    EXPECT_EQ(Succeeds({"entries", "s.xml", "--section", "A b"}), "k\tstring\t1\n");
    Succeeds({"entry", "set", "s.xml", "k", "2", "--section", "A b", "--type", "long"});
    Succeeds({"entry", "add", "s.xml", "new", "x", "--section", "A b"});
    EXPECT_EQ(Succeeds({"entries", "s.xml", "--section", "A b"}), "k\tlong\t2\nnew\tstring\tx\n");
    Succeeds({"entry", "remove", "s.xml", "k", "--section", "A b"});
    EXPECT_EQ(Succeeds({"keys", "s.xml", "A b"}), "new\n");
    Fails(1, {"entries", "s.xml", "--section", "Nope"}, "s.xml: no section Nope");
    Fails(2, {"entries", "s.xml"},
          "s.xml: found a settings document, expected a table document (for a section of a settings "
          "document, use --section)");
    Fails(4, {"entry", "add", "s.xml", "a", "--comment", "ü", "--section", "A b"},
          "s.xml: A b/a: the comment contains U+00FC, and a narrow file keeps 7-bit text only (see \"mox-xml "
          "convert --wide\")");
    EXPECT_EQ(ReadBytes("s.xml")[1], '?');  // narrow as before
}

TEST_F(EntryVerbs, NarrowTableDocumentsCanOnlyBeReadAndConverted) {
    WriteBytes("t.xml", Narrow(kTools));
    EXPECT_EQ(Succeeds({"entry", "get", "t.xml", "Bits"}), "00FF\n");
    Fails(4, {"entry", "set", "t.xml", "Bits", "11"},
          "t.xml: a table document must be wide (see \"mox-xml convert --wide\")");
    EXPECT_EQ(ReadBytes("t.xml"), Narrow(kTools));
    Succeeds({"convert", "--wide", "t.xml"});
    EXPECT_EQ(ReadBytes("t.xml"), Wide(kTools));
}

TEST_F(EntryVerbs, GetFindsWhatHostsFind) {
    WriteBytes("s.xml", Narrow(Settings("<Table name=\"S\"><Var name=\"a\" type=\"odd\"/>" + Var("a", "2") +
                                        Var("b", "3") + "</Table>")));
    Fails(1, {"entry", "get", "s.xml", "a", "--section", "S"}, "s.xml: no entry a\n");
    Fails(1, {"get", "s.xml", "S", "a"}, "s.xml: no key S/a\n");
    EXPECT_EQ(Succeeds({"entry", "get", "s.xml", "b", "--section", "S"}), "3\n");
}

}  // namespace
}  // namespace tool
