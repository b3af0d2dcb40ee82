// sections, keys, get, set, delete.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using KeyVerbs = ToolTest;

const std::string kCamera = Settings("\t<Table name=\"Camera\">\n" + Var("Model", "VC-1240M") +
                                     Var("Exposure", "1800") + "\t</Table>\n\t<Table name=\"Lens\"/>\n");

TEST_F(KeyVerbs, SectionsAndKeysComeOnePerLineInDocumentOrder) {
    WriteBytes("a.xml", Narrow(kCamera));
    EXPECT_EQ(Data({"sections", "a.xml"}), "Camera\nLens\n");
    EXPECT_EQ(Data({"keys", "a.xml", "Camera"}), "Model\nExposure\n");
    EXPECT_EQ(Data({"keys", "a.xml", "Lens"}), "");
}

TEST_F(KeyVerbs, ElementsThatNobodyCanAskForAreNotListed) {
    WriteBytes("a.xml", Narrow(Settings("<Other name=\"x\"/><Table/><Table name=\"S\"><Var type=\"long\"/>"
                                        "<Var name=\"no type\"/><Var name=\"k\" type=\"long\"/></Table>")));
    EXPECT_EQ(Data({"sections", "a.xml"}), "S\n");
    EXPECT_EQ(Data({"keys", "a.xml", "S"}), "k\n");
}

TEST_F(KeyVerbs, NamesAsJson) {
    WriteBytes("a.xml", Narrow(kCamera));
    EXPECT_EQ(Data({"sections", "a.xml", "--json"}), "[\n  \"Camera\",\n  \"Lens\"\n]\n");
    EXPECT_EQ(Data({"keys", "a.xml", "Lens", "--json"}), "[]\n");
    EXPECT_EQ(Data({"--help"}).rfind("Examples:\n", 0), 0U);
}

TEST_F(KeyVerbs, GetWritesTheValue) {
    WriteBytes("a.xml", Narrow(kCamera));
    EXPECT_EQ(Data({"get", "a.xml", "Camera", "Exposure"}), "1800\n");
    EXPECT_EQ(Data({"get", "a.xml", "Camera", "Exposure", "--json"}), "\"1800\"\n");
    EXPECT_EQ(Data({"get", "a.xml", "Camera", "Exposure", "--default", "5"}), "1800\n");
}

TEST_F(KeyVerbs, GetTakesAnEmptyValueFromThePresentationData) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\"><Var name=\"k\" type=\"long\"><UI><Value>7</Value>"
                                        "</UI></Var></Table>")));
    EXPECT_EQ(Data({"get", "a.xml", "S", "k"}), "7\n");
}

TEST_F(KeyVerbs, ValuesWithLineEndsComeAsTheyAre) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\">" + Var("k", "1\n\t2 \r\n") + "</Table>")));
    EXPECT_EQ(Data({"get", "a.xml", "S", "k"}), "1\n\t2 \r\n\n");
    EXPECT_EQ(Data({"get", "a.xml", "S", "k", "--json"}), "\"1\\n\\t2 \\r\\n\"\n");
}

TEST_F(KeyVerbs, WhatIsNotThereGivesOne) {
    WriteBytes("a.xml", Narrow(kCamera));
    Fails(1, {"keys", "a.xml", "camera"}, "a.xml: no section camera\n");
    Fails(1, {"get", "a.xml", "Camera", "model"}, "a.xml: no key Camera/model\n");
    Fails(1, {"get", "a.xml", "Nope", "Model"}, "a.xml: no key Nope/Model\n");
    Fails(1, {"get", "a.xml", "Camera", ""}, "a.xml: no key Camera/\"\"\n");
    Fails(1, {"delete", "a.xml", "Camera", "model"}, "a.xml: no key Camera/model\n");
    Fails(1, {"delete", "a.xml", "Nope"}, "a.xml: no section Nope\n");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kCamera));
    EXPECT_EQ(Data({"get", "a.xml", "Camera", "model", "--default", ""}), "\n");
}

TEST_F(KeyVerbs, SetChangesTheValueAndNothingElse) {
    const std::string before =
        Settings("\t<Table name=\"S\">\n\t\t<!-- c -->\n" + Var("a", "1") + "\t</Table>\n");
    const std::string after = Settings(
        "\t<Table name=\"S\">\n\t\t<!-- c -->\n\t\t<Var name=\"a\" type=\"string\" "
        "array=\"\">\n\t\t\t<Value loc=\"\">2 &lt; 3</Value>\n\t\t</Var>\n\t</Table>\n");
    WriteBytes("a.xml", Narrow(before));
    EXPECT_EQ(Data({"set", "a.xml", "S", "a", "2 < 3"}), "");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(after));
}

TEST_F(KeyVerbs, SetMakesSectionsAndKeys) {
    WriteBytes("a.xml", Narrow(Settings("")));
    EXPECT_EQ(Data({"set", "a.xml", "S", "k", "v"}), "");
    EXPECT_EQ(ReadBytes("a.xml"),
              Narrow(Settings("\t<Table name=\"S\">\n" + Var("k", "v") + "\t</Table>\n")));
}

TEST_F(KeyVerbs, SetWithTypesStoresTheirText) {
    WriteBytes("a.xml", Narrow(Settings("")));
    Data({"set", "a.xml", "S", "int", "-00120", "--int"});
    Data({"set", "a.xml", "S", "--int", "least", "-2147483648"});
    Data({"set", "a.xml", "S", "plus", "+5", "--int"});
    Data({"set", "a.xml", "S", "hex", "00ffA1", "--hex"});
    Data({"set", "a.xml", "S", "none", "", "--hex"});
    Data({"set", "a.xml", "S", "text", "012", "--string"});
    EXPECT_EQ(Data({"get", "a.xml", "S", "int"}), "-120\n");
    EXPECT_EQ(Data({"get", "a.xml", "S", "least"}), "-2147483648\n");
    EXPECT_EQ(Data({"get", "a.xml", "S", "plus"}), "5\n");
    EXPECT_EQ(Data({"get", "a.xml", "S", "hex"}), "00FFA1\n");
    EXPECT_EQ(Data({"get", "a.xml", "S", "none"}), "\n");
    EXPECT_EQ(Data({"get", "a.xml", "S", "text"}), "012\n");
}

TEST_F(KeyVerbs, SetRefusesWhatIsNoNumberAndNoBytes) {
    WriteBytes("a.xml", Narrow(kCamera));
    for (const char* const text : {"", "12x", " 12", "2147483648", "+-1"})
        Fails(2, {"set", "a.xml", "Camera", "Exposure", "--int", "--", text}, "is no decimal number");
    for (const char* const text : {"1", "0g", "0x11"})
        Fails(2, {"set", "a.xml", "Camera", "Exposure", text, "--hex"}, "--hex wants");
    Fails(2, {"set", "a.xml", "Camera", "Exposure", "1", "--hex", "--int"}, "excludes");
    Fails(2, {"set", "a.xml", "Camera", "", "1"}, "a key has a name");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kCamera));
}

TEST_F(KeyVerbs, ArgumentsMeanThemselves) {
    WriteBytes("a.xml", Narrow(Settings("")));
    std::string lines;
    for (const char* const text : {"[a,b]", "{}", "%%", "get", "--json", "-5", "/slash", "a\\\"b \\"}) {
        Data({"set", "--", "a.xml", "get", text, text});
        lines.append(text).append("\tstring\t").append(text).append("\n");
    }
    EXPECT_EQ(Data({"entries", "a.xml", "--section", "get"}), lines);
    EXPECT_EQ(Data({"get", "a.xml", "get", "--", "--json"}), "--json\n");
    EXPECT_EQ(Data({"set", "a.xml", "S", "number", "-5"}), "");
    EXPECT_EQ(Data({"get", "a.xml", "S", "number"}), "-5\n");
}

TEST_F(KeyVerbs, NamesWithSpacesNonAsciiAndEmptyOnes) {
    WriteBytes("größe \xF0\x9F\x95\x92.xml", Wide(Settings("")));
    const std::string file = "größe \xF0\x9F\x95\x92.xml";
    Data({"set", file, "Schließ einheit", " Kraft \xF0\x9F\x95\x92 ", "4½ „min“"});
    Data({"set", file, "", "in the empty section", ""});
    EXPECT_EQ(Data({"sections", file}), "Schließ einheit\n\n");
    EXPECT_EQ(Data({"keys", file, "Schließ einheit"}), " Kraft \xF0\x9F\x95\x92 \n");
    EXPECT_EQ(Data({"keys", file, ""}), "in the empty section\n");
    EXPECT_EQ(Data({"get", file, "Schließ einheit", " Kraft \xF0\x9F\x95\x92 "}), "4½ „min“\n");
    EXPECT_EQ(Data({"get", file, "", "in the empty section"}), "\n");
    EXPECT_EQ(Data({"delete", file, ""}), "");
    EXPECT_EQ(Data({"sections", file}), "Schließ einheit\n");
    EXPECT_EQ(ReadBytes(file).size() % 2, 0U);
}

TEST_F(KeyVerbs, DeleteRemovesEveryKeyOfTheNameOrTheSection) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\">" + Var("a", "1") + Var("b", "2") + Var("a", "3") +
                                        "</Table><Table name=\"T\"/>")));
    EXPECT_EQ(Data({"delete", "a.xml", "S", "a"}), "");
    EXPECT_EQ(Data({"keys", "a.xml", "S"}), "b\n");
    EXPECT_EQ(Data({"delete", "a.xml", "S"}), "");
    EXPECT_EQ(Data({"sections", "a.xml"}), "T\n");
}

TEST_F(KeyVerbs, CreateMakesAFileThatIsWideUnlessToldOtherwise) {
    Fails(4, {"set", "new.xml", "S", "k", "v"}, "new.xml: the file cannot be opened");
    EXPECT_FALSE(Exists("new.xml"));
    const std::string text = Settings("\t<Table name=\"S\">\n" + Var("k", "v") + "\t</Table>\n");
    Data({"set", "new.xml", "S", "k", "v", "--create", "--backup"});
    EXPECT_EQ(ReadBytes("new.xml"), Wide(text));
    Data({"set", "narrow.xml", "S", "k", "v", "--create", "--narrow"});
    EXPECT_EQ(ReadBytes("narrow.xml"), Narrow(text));
    Data({"set", "narrow.xml", "S", "k", "w", "--create"});
    EXPECT_EQ(Data({"get", "narrow.xml", "S", "k"}), "w\n");
}

TEST_F(KeyVerbs, ADocumentOfAnotherKindIsRefused) {
    const std::string table = Wide(TableDocument(""));
    const std::string unmarked = Narrow("<Settings>\n<Table name=\"S\"/>\n</Settings>\n");
    WriteBytes("table.xml", table);
    WriteBytes("unmarked.xml", unmarked);
    Fails(2, {"sections", "table.xml"}, "this is a table document");
    Fails(2, {"get", "unmarked.xml", "S", "k"}, "this is a document without settings or table");
    Fails(2, {"set", "table.xml", "S", "k", "v", "--create"}, "this is a table document");
    Fails(2, {"set", "unmarked.xml", "S", "k", "v"}, "see \"mox-xml check\"");
    Fails(2, {"delete", "unmarked.xml", "S"}, "see \"mox-xml check\"");
    EXPECT_EQ(ReadBytes("table.xml"), table);
    EXPECT_EQ(ReadBytes("unmarked.xml"), unmarked);
}

}  // namespace
}  // namespace tool
