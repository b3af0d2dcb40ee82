// sections, keys, get, set, delete.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using KeyVerbs = ToolTest;

const std::string kCamera = Settings("\t<Table name=\"Camera\">\n" + Var("Model", "VC-1240M") +
                                     Var("Exposure", "1800") + "\t</Table>\n\t<Table name=\"Lens\"/>\n");

TEST_F(KeyVerbs, ListsSectionsAndKeysInDocumentOrder) {
    WriteBytes("a.xml", Narrow(kCamera));
    EXPECT_EQ(Succeeds({"sections", "a.xml"}), "Camera\nLens\n");
    EXPECT_EQ(Succeeds({"keys", "a.xml", "Camera"}), "Model\nExposure\n");
    EXPECT_EQ(Succeeds({"keys", "a.xml", "Lens"}), "");
}

TEST_F(KeyVerbs, DoesNotListElementsThatHostsCannotFind) {
    WriteBytes("a.xml", Narrow(Settings("<Other name=\"x\"/><Table/><Table name=\"S\"><Var type=\"long\"/>"
                                        "<Var name=\"no type\"/><Var name=\"k\" type=\"long\"/></Table>")));
    EXPECT_EQ(Succeeds({"sections", "a.xml"}), "S\n");
    EXPECT_EQ(Succeeds({"keys", "a.xml", "S"}), "k\n");
}

TEST_F(KeyVerbs, NamesAsJson) {
    WriteBytes("a.xml", Narrow(kCamera));
    EXPECT_EQ(Succeeds({"sections", "a.xml", "--json"}), "[\n  \"Camera\",\n  \"Lens\"\n]\n");
    EXPECT_EQ(Succeeds({"keys", "a.xml", "Lens", "--json"}), "[]\n");
    EXPECT_EQ(Succeeds({"--help"}).rfind("Examples:\n", 0), 0U);
}

TEST_F(KeyVerbs, GetPrintsTheValue) {
    WriteBytes("a.xml", Narrow(kCamera));
    EXPECT_EQ(Succeeds({"get", "a.xml", "Camera", "Exposure"}), "1800\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "Camera", "Exposure", "--json"}), "\"1800\"\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "Camera", "Exposure", "--default", "5"}), "1800\n");
}

TEST_F(KeyVerbs, GetTakesAnEmptyValueFromThePresentationData) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\"><Var name=\"k\" type=\"long\"><UI><Value>7</Value>"
                                        "</UI></Var></Table>")));
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k"}), "7\n");
}

TEST_F(KeyVerbs, GetPrintsLineBreaksAsTheyAre) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\">" + Var("k", "1\n\t2 \r\n") + "</Table>")));
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k"}), "1\n\t2 \r\n\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k", "--json"}), "\"1\\n\\t2 \\r\\n\"\n");
}

TEST_F(KeyVerbs, MissingNamesExitWithOne) {
    WriteBytes("a.xml", Narrow(kCamera));
    Fails(1, {"keys", "a.xml", "camera"}, "a.xml: no section camera\n");
    Fails(1, {"get", "a.xml", "Camera", "model"}, "a.xml: no key Camera/model\n");
    Fails(1, {"get", "a.xml", "Nope", "Model"}, "a.xml: no key Nope/Model\n");
    Fails(1, {"get", "a.xml", "Camera", ""}, "a.xml: no key Camera/\"\"\n");
    Fails(1, {"delete", "a.xml", "Camera", "model"}, "a.xml: no key Camera/model\n");
    Fails(1, {"delete", "a.xml", "Nope"}, "a.xml: no section Nope\n");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kCamera));
    EXPECT_EQ(Succeeds({"get", "a.xml", "Camera", "model", "--default", ""}), "\n");
}

TEST_F(KeyVerbs, SetChangesTheValueAndNothingElse) {
    const std::string before =
        Settings("\t<Table name=\"S\">\n\t\t<!-- c -->\n" + Var("a", "1") + "\t</Table>\n");
    const std::string after = Settings(
        "\t<Table name=\"S\">\n\t\t<!-- c -->\n\t\t<Var name=\"a\" type=\"string\" "
        "array=\"\">\n\t\t\t<Value loc=\"\">2 &lt; 3</Value>\n\t\t</Var>\n\t</Table>\n");
    WriteBytes("a.xml", Narrow(before));
    EXPECT_EQ(Succeeds({"set", "a.xml", "S", "a", "2 < 3"}), "");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(after));
}

TEST_F(KeyVerbs, SetAddsMissingSectionsAndKeys) {
    WriteBytes("a.xml", Narrow(Settings("")));
    EXPECT_EQ(Succeeds({"set", "a.xml", "S", "k", "v"}), "");
    EXPECT_EQ(ReadBytes("a.xml"),
              Narrow(Settings("\t<Table name=\"S\">\n" + Var("k", "v") + "\t</Table>\n")));
}

TEST_F(KeyVerbs, SetStoresNumbersAndBytesAsText) {
    WriteBytes("a.xml", Narrow(Settings("")));
    Succeeds({"set", "a.xml", "S", "int", "-00120", "--int"});
    Succeeds({"set", "a.xml", "S", "--int", "minimum", "-2147483648"});
    Succeeds({"set", "a.xml", "S", "plus", "+5", "--int"});
    Succeeds({"set", "a.xml", "S", "hex", "00ffA1", "--hex"});
    Succeeds({"set", "a.xml", "S", "none", "", "--hex"});
    Succeeds({"set", "a.xml", "S", "text", "012", "--string"});
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "int"}), "-120\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "minimum"}), "-2147483648\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "plus"}), "5\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "hex"}), "00FFA1\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "none"}), "\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "text"}), "012\n");
}

TEST_F(KeyVerbs, SetRejectsMalformedNumbersAndBytes) {
    WriteBytes("a.xml", Narrow(kCamera));
    for (const char* const text : {"", "12x", " 12", "2147483648", "+-1"})
        Fails(2, {"set", "a.xml", "Camera", "Exposure", "--int", "--", text},
              "is not a decimal number from -2147483648 to 2147483647");
    for (const char* const text : {"1", "0g", "0x11"})
        Fails(2, {"set", "a.xml", "Camera", "Exposure", text, "--hex"}, "--hex ");
    Fails(2, {"set", "a.xml", "Camera", "Exposure", "1", "--hex", "--int"}, "excludes");
    Fails(2, {"set", "a.xml", "Camera", "", "1"}, "the key must not be empty");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kCamera));
}

TEST_F(KeyVerbs, ArgumentsAreTakenLiterally) {
    WriteBytes("a.xml", Narrow(Settings("")));
    std::string lines;
    for (const char* const text : {"[a,b]", "{}", "%%", "get", "--json", "-5", "/slash", "a\\\"b \\"}) {
        Succeeds({"set", "--", "a.xml", "get", text, text});
        lines.append(text).append("\tstring\t").append(text).append("\n");
    }
    EXPECT_EQ(Succeeds({"entries", "a.xml", "--section", "get"}), lines);
    EXPECT_EQ(Succeeds({"get", "a.xml", "get", "--", "--json"}), "--json\n");
    EXPECT_EQ(Succeeds({"set", "a.xml", "S", "number", "-5"}), "");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "number"}), "-5\n");
}

TEST_F(KeyVerbs, NamesMayBeNonAsciiEmptyOrContainSpaces) {
    WriteBytes("größe \xF0\x9F\x95\x92.xml", Wide(Settings("")));
    const std::string file = "größe \xF0\x9F\x95\x92.xml";
    Succeeds({"set", file, "Schließ einheit", " Kraft \xF0\x9F\x95\x92 ", "4½ „min“"});
    Succeeds({"set", file, "", "in the empty section", ""});
    EXPECT_EQ(Succeeds({"sections", file}), "Schließ einheit\n\n");
    EXPECT_EQ(Succeeds({"keys", file, "Schließ einheit"}), " Kraft \xF0\x9F\x95\x92 \n");
    EXPECT_EQ(Succeeds({"keys", file, ""}), "in the empty section\n");
    EXPECT_EQ(Succeeds({"get", file, "Schließ einheit", " Kraft \xF0\x9F\x95\x92 "}), "4½ „min“\n");
    EXPECT_EQ(Succeeds({"get", file, "", "in the empty section"}), "\n");
    EXPECT_EQ(Succeeds({"delete", file, ""}), "");
    EXPECT_EQ(Succeeds({"sections", file}), "Schließ einheit\n");
    EXPECT_EQ(ReadBytes(file).size() % 2, 0U);
}

TEST_F(KeyVerbs, DeleteRemovesAllKeysOfTheNameOrTheSection) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\">" + Var("a", "1") + Var("b", "2") + Var("a", "3") +
                                        "</Table><Table name=\"T\"/>")));
    EXPECT_EQ(Succeeds({"delete", "a.xml", "S", "a"}), "");
    EXPECT_EQ(Succeeds({"keys", "a.xml", "S"}), "b\n");
    EXPECT_EQ(Succeeds({"delete", "a.xml", "S"}), "");
    EXPECT_EQ(Succeeds({"sections", "a.xml"}), "T\n");
}

TEST_F(KeyVerbs, CreatedFilesAreWideByDefault) {
    Fails(4, {"set", "new.xml", "S", "k", "v"}, "new.xml: cannot open the file");
    EXPECT_FALSE(Exists("new.xml"));
    const std::string text = Settings("\t<Table name=\"S\">\n" + Var("k", "v") + "\t</Table>\n");
    Succeeds({"set", "new.xml", "S", "k", "v", "--create", "--backup"});
    EXPECT_EQ(ReadBytes("new.xml"), Wide(text));
    Succeeds({"set", "narrow.xml", "S", "k", "v", "--create", "--narrow"});
    EXPECT_EQ(ReadBytes("narrow.xml"), Narrow(text));
    Succeeds({"set", "narrow.xml", "S", "k", "w", "--create"});
    EXPECT_EQ(Succeeds({"get", "narrow.xml", "S", "k"}), "w\n");
}

TEST_F(KeyVerbs, RejectsDocumentsOfAnotherKind) {
    const std::string table = Wide(TableDocument(""));
    const std::string noSchema = Narrow("<Settings>\n<Table name=\"S\"/>\n</Settings>\n");
    WriteBytes("table.xml", table);
    WriteBytes("no_schema.xml", noSchema);
    Fails(2, {"sections", "table.xml"},
          "table.xml: found a table document, expected a settings document (see \"mox-xml check\")");
    Fails(2, {"get", "no_schema.xml", "S", "k"},
          "found a document without settings or a table, expected a settings document");
    Fails(2, {"set", "table.xml", "S", "k", "v", "--create"},
          "table.xml: found a table document, expected a settings document (see \"mox-xml check\")");
    Fails(2, {"set", "no_schema.xml", "S", "k", "v"}, "see \"mox-xml check\"");
    Fails(2, {"delete", "no_schema.xml", "S"}, "see \"mox-xml check\"");
    EXPECT_EQ(ReadBytes("table.xml"), table);
    EXPECT_EQ(ReadBytes("no_schema.xml"), noSchema);
}

}  // namespace
}  // namespace tool
