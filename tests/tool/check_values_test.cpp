// check: parts of entries that are there twice or are unknown, and with --values, values that do not suit their entry.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using CheckValues = ToolTest;

TEST_F(CheckValues, PartsThatAreDoubledOrUnknown) {
    WriteBytes(
        "a.xml",
        Narrow(Settings(
            "<Table name=\"S\" first_id=\"5000000000\">\n"
            "<Var name=\"a\" type=\"long\" id=\"1\" id=\"2\"><Value>1</Value>\n<Value>2</Value></Var>\n"
            "<Var name=\"b\" type=\"long\"><UI control=\"num\"/>\n<UI control=\"nun\"/></Var>\n"
            "<Var name=\"c\" type=\"long\">\n<UI prov_owner=\"x\" access=\"secret\"/></Var>\n"
            "<Var name=\"d\" type=\"long\"><Value/><UI><Value>7</Value></UI></Var>\n"
            "<Var name=\"e\" type=\"long\"><Value>\x01</Value></Var></Table>\n")));
    const std::string out = Succeeds({"check", "a.xml"});
    EXPECT_NE(out.find("a.xml:3:2: warning: first_id=\"5000000000\" has more than 32 bits: hosts read "),
              std::string::npos);
    EXPECT_EQ(
        out.substr(out.find('\n') + 1),
        "a.xml:4:2: warning: <Var> has several attributes \"id\": which one counts depends on who reads it\n"
        "a.xml:5:2: warning: entry a has several \"Value\" elements: writes change another one than reads\n"
        "a.xml:7:2: warning: entry b has several \"UI\" elements: writes change another one than reads\n"
        "a.xml:7:2: warning: control=\"nun\" is unknown: hosts read \"text\"\n"
        "a.xml:9:2: warning: prov_owner=\"x\" is unknown: hosts read \"app\"\n"
        "a.xml:9:2: warning: access=\"secret\" is unknown: hosts read \"editable\"\n"
        "a.xml:10:2: warning: the value of entry d is empty: hosts read that of its presentation data, "
        "\"7\"\n"
        "a.xml:11:34: warning: control character U+0001 (1 such character in the whole file): no XML parser "
        "reads it\n");
}

TEST_F(CheckValues, DeepNesting) {
    std::string deep;
    for (int i = 0; i < 300; ++i)
        deep += "<a>";
    for (int i = 0; i < 300; ++i)
        deep += "</a>";
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\"/>\n" + deep)));
    const std::string out = Succeeds({"check", "a.xml"});
    EXPECT_NE(
        out.find("warning: elements are nested 301 levels deep: each save indents every line by its level\n"),
        std::string::npos)
        << out;
}

TEST_F(CheckValues, ValuesThatDoNotSuitTheEntry) {
    const auto value = [](const std::string& attributes, const std::string& text,
                          const std::string& ui = "") {
        return "<Var " + attributes + "><Value>" + text + "</Value>" + ui + "</Var>\n";
    };
    WriteBytes(
        "a.xml",
        Narrow(Settings(
            "<Table name=\"S\">\n" + value("name=\"a\" type=\"long\"", "12a") +
            value("name=\"b\" type=\"short\"", "40000") + value("name=\"c\" type=\"byte\"", "256") +
            value("name=\"d\" type=\"bool\"", "maybe") +
            value("name=\"e\" type=\"long\"", "5", "<UI control=\"num\" minVal=\"6\" maxVal=\"9\"/>") +
            value("name=\"f\" type=\"double\"", "9.5", "<UI control=\"num\" minVal=\"6\" maxVal=\"9\"/>") +
            value("name=\"g\" type=\"string\"", "on", "<UI control=\"num\"/>") +
            value("name=\"h\" type=\"string\"", "5", "<UI control=\"switch\"/>") +
            value("name=\"i\" type=\"long\"", "7", "<UI control=\"num\" minVal=\"6\" maxVal=\"9\"/>") +
            value("name=\"j\" type=\"long\" array=\"array\"", "x") +
            value("name=\"k\" type=\"ulong\"", "4294967295") + value("name=\"l\" type=\"long\"", "") +
            "</Table>\n")));
    EXPECT_EQ(Succeeds({"check", "a.xml"}), "");
    EXPECT_EQ(Succeeds({"check", "a.xml", "--values"}),
              "a.xml:4:2: warning: the value of entry a, \"12a\", is not a value of its type long\n"
              "a.xml:5:2: warning: the value of entry b, \"40000\", is out of the range of its type short\n"
              "a.xml:6:2: warning: the value of entry c, \"256\", is out of the range of its type byte\n"
              "a.xml:7:2: warning: the value of entry d, \"maybe\", is not a value of its type bool\n"
              "a.xml:8:2: warning: the value of entry e, 5, is below its minimum 6\n"
              "a.xml:9:2: warning: the value of entry f, 9.5, is above its maximum 9\n"
              "a.xml:10:2: warning: the value of entry g, \"on\", is not a number, which the control \"num\" "
              "shows\n"
              "a.xml:11:2: warning: the value of entry h, \"5\", is not a truth value, which the control "
              "\"switch\" "
              "shows\n");
}

}  // namespace
}  // namespace tool
