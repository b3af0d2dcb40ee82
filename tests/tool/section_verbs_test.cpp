// section set|rename|copy: what they change, byte for byte, and what they refuse.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using SectionVerbs = ToolTest;

// What no save of the library would keep as it is: "eud", the layout, and values with line breaks.
const std::string kContent =
    " eud=\"true\">\n\t\t<!-- note -->\n<Var name=\"k\" type=\"long\" eud=\"true\"><Value>1</Value>"
    "<UI control=\"num\" minVal=\"0\" maxVal=\"9\" access=\"hidden\"><Comment>c\nd</Comment></UI></Var>"
    "<Odd>x</Odd></Table>\r\n";

std::string SectionOf(const std::string& name) {
    return "   <Table name=\"" + name + "\"" + kContent;
}

TEST_F(SectionVerbs, RenameChangesTheNameAndNothingElse) {
    for (const bool isWide : {false, true}) {
        const auto bytes = [isWide](const std::string& name) {
            const std::string text = Settings("\t<Table name=\"B\"/>\r\n" + SectionOf(name));
            return isWide ? Wide(text) : Narrow(text);
        };
        WriteBytes("a.xml", bytes("A"));
        EXPECT_EQ(Succeeds({"section", "rename", "a.xml", "A", "C & D", "--backup"}), "");
        EXPECT_EQ(ReadBytes("a.xml"), bytes("C &amp; D"));
        EXPECT_EQ(ReadBytes("a.xml.bak"), bytes("A"));
        EXPECT_EQ(Succeeds({"section", "rename", "a.xml", "C & D", "A"}), "");
        EXPECT_EQ(ReadBytes("a.xml"), bytes("A"));
    }
}

TEST_F(SectionVerbs, CopyAddsASectionWithAllThatTheOtherHas) {
    WriteBytes("a.xml", Narrow(Settings("\r\n" + SectionOf("A") + "\t<Table name=\"B\"/>\n")));
    EXPECT_EQ(Succeeds({"section", "copy", "a.xml", "A", "C"}), "");
    EXPECT_EQ(ReadBytes("a.xml"),
              Narrow(Settings("\r\n" + SectionOf("A") + SectionOf("C") + "\t<Table name=\"B\"/>\n")));
    EXPECT_EQ(Succeeds({"section", "copy", "a.xml", "B", "D"}), "");
    EXPECT_EQ(Succeeds({"sections", "a.xml"}), "A\nC\nB\nD\n");
}

TEST_F(SectionVerbs, SetChangesAttributesAndNothingElse) {
    WriteBytes("a.xml", Narrow(Settings(SectionOf("A"))));
    EXPECT_EQ(
        Succeeds({"section", "set", "a.xml", "A", "--editable", "--first-id", "7", "--type-code", "255"}),
        "");
    const std::string with =
        Settings("   <Table name=\"A\" eud=\"true\" first_id=\"7\" type=\"00FF\" editable=\"true\"" +
                 kContent.substr(std::string(" eud=\"true\"").size()));
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(with));
    EXPECT_EQ(Succeeds({"section", "set", "a.xml", "A", "--no-editable"}), "");
    EXPECT_NE(ReadBytes("a.xml").find(" editable=\"false\">"), std::string::npos);
    Fails(2, {"section", "set", "a.xml", "A", "--no-editable", "--editable"}, "excludes");
    Fails(4, {"section", "set", "a.xml", "A", "--first-id", "4294967295"},
          "the file would not contain what was to be written; nothing was changed");
}

TEST_F(SectionVerbs, RefuseWhatCannotBeKeptAndSayWhy) {
    const std::string bytes = Narrow(Settings(SectionOf("A") + "<Table name=\"B\"/>\n"));
    WriteBytes("a.xml", bytes);
    for (const std::string verb : {"rename", "copy"}) {
        Fails(2, {"section", verb, "a.xml", "A", "B"},
              "mox-xml: a.xml: there is a section B already (see \"mox-xml section " + verb + " --help\")\n");
        Fails(1, {"section", verb, "a.xml", "None", "C"}, "mox-xml: a.xml: no section None\n");
        Fails(4, {"section", verb, "a.xml", "A", ""},
              "mox-xml: a.xml: the new name is empty; nothing was changed\n");
        Fails(4, {"section", verb, "a.xml", "A", "\u00DC"}, "a narrow file keeps 7-bit text only");
        Fails(4, {"section", verb, "a.xml", "A", "x\x01"}, "contains the control character U+0001");
        Fails(2, {"section", verb, "a.xml", "A"}, "NEW is required");
    }
    EXPECT_EQ(ReadBytes("a.xml"), bytes);
    WriteBytes("t.xml", Wide(TableDocument("")));
    Fails(2, {"section", "rename", "t.xml", "Tools", "C"}, "expected a settings document");
}

TEST_F(SectionVerbs, ApplyChangesWhetherASectionIsEditable) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\">" + Var("k", "1") + "</Table>\n")));
    WriteBytes("b.xml",
               Narrow(Settings("<Table name=\"S\" editable=\"true\">" + Var("k", "2") + "</Table>\n")));
    WriteBytes("changes.json", RunTool({"diff", "a.xml", "b.xml", "--json"}).out);
    EXPECT_EQ(Succeeds({"apply", "a.xml", "changes.json"}), "");
    EXPECT_EQ(Succeeds({"diff", "a.xml", "b.xml"}), "");
}

}  // namespace
}  // namespace tool
