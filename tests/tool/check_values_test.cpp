// check: parts of entries that are there twice or are unknown, and with --values, values that do not suit their entry.
#include <string>
#include <utility>
#include <vector>

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
            value("name=\"j\" type=\"string\" array=\"array\"", "x") +
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

TEST_F(CheckValues, ItemsOfArraysAndCharacters) {
    const auto value = [](const std::string& name, const std::string& attributes, const std::string& text,
                          const std::string& ui = "") {
        return "<Var name=\"" + name + "\" " + attributes + "><Value>" + text + "</Value>" + ui + "</Var>\n";
    };
    const std::string longs = "type=\"long\" array=\"array\"";
    const std::string limits = "<UI minVal=\"0\" maxVal=\"9\"/>";
    WriteBytes("a.xml", Wide(Settings("<Table name=\"S\">\n" + value("a", longs, "1 x 2 y") +
                                      value("b", "type=\"byte\" array=\"array\"", "00F") +
                                      value("c", "type=\"byte\" array=\"vector\"", "0G") +
                                      value("d", "type=\"short\" array=\"vector\"", "1;40000") +
                                      value("e", longs, "3, 10, -1", limits) +
                                      value("f", "type=\"char\"", "ab") + value("g", "type=\"char\"", "256") +
                                      value("h", "type=\"bool\" array=\"array\"", "1 0 2") +
                                      // these suit
                                      value("i", "type=\"byte\" array=\"array\"", "00fF") +
                                      value("j", "type=\"double\" array=\"vector\"", "-0.5 1e3 7") +
                                      value("k", longs, "0 9", limits) + value("l", "type=\"char\"", "ä") +
                                      value("m", "type=\"char\"", "-128") + value("n", "type=\"char\"", "7") +
                                      value("o", "type=\"string\" array=\"array\"", "a;b") + "</Table>\n")));
    const std::string note =
        "a.xml:15:34: note: non-ASCII text (1 unit in the whole file): a narrow file cannot store it\n";
    EXPECT_EQ(Succeeds({"check", "a.xml"}), note);
    EXPECT_EQ(
        Succeeds({"check", "a.xml", "--values"}),
        "a.xml:4:2: warning: item 2 of the value of entry a, \"x\", is not a value of its type long\n"
        "a.xml:5:2: warning: the value of entry b, \"00F\", is not pairs of hexadecimal digits, as which "
        "hosts "
        "read the bytes\n"
        "a.xml:6:2: warning: the value of entry c, \"0G\", is not pairs of hexadecimal digits, as which "
        "hosts "
        "read the bytes\n"
        "a.xml:7:2: warning: item 2 of the value of entry d, \"40000\", is out of the range of its type "
        "short\n"
        "a.xml:8:2: warning: item 2 of the value of entry e, 10, is above its maximum 9\n"
        "a.xml:9:2: warning: the value of entry f, \"ab\", is not a value of its type char\n"
        "a.xml:10:2: warning: the value of entry g, \"256\", is out of the range of its type char\n"
        "a.xml:11:2: warning: item 3 of the value of entry h, \"2\", is not a value of its type bool\n" +
            note);
}

// ---- when values are written

TEST_F(CheckValues, WritersWarnAndRefuseOnlyIfStrict) {
    const std::string bytes =
        Narrow(Settings("<Table name=\"S\">\n<Var name=\"k\" type=\"long\"><Value>1</Value>"
                        "<UI control=\"num\" maxVal=\"5\"/></Var></Table>\n"));
    const struct {
        std::vector<std::string> call;
        std::string message;
    } cases[] = {
        {{"set", "a.xml", "S", "k", "x"}, "the value of entry k, \"x\", is not a value of its type long"},
        {{"set", "a.xml", "S", "k", "6"}, "the value of entry k, 6, is above its maximum 5"},
        {{"set", "a.xml", "S", "l", "x", "--type", "double"},
         "the value of entry l, \"x\", is not a value of its type double"},
        {{"entry", "set", "a.xml", "k", "7", "--section", "S"},
         "the value of entry k, 7, is above its maximum 5"},
        {{"entry", "set", "a.xml", "k", "--type", "bool", "--control", "switch", "--section", "S", "2"},
         "the value of entry k, \"2\", is not a value of its type bool"},
        {{"entry", "add", "a.xml", "m", "300", "--type", "byte", "--section", "S"},
         "the value of entry m, \"300\", is out of the range of its type byte"},
    };
    for (const auto& test : cases) {
        WriteBytes("a.xml", bytes);
        auto strict = test.call;
        strict.emplace_back("--strict");
        Fails(4, strict, "mox-xml: a.xml: " + test.message + "; nothing was changed\n");
        EXPECT_EQ(ReadBytes("a.xml"), bytes);
        const Result result = RunTool(test.call);
        EXPECT_EQ(result.code, 0) << result;
        EXPECT_EQ(result.err, "mox-xml: a.xml: warning: " + test.message + "\n");
    }
    WriteBytes("a.xml", bytes);
    EXPECT_EQ(Succeeds({"set", "a.xml", "S", "k", "5", "--strict"}), "");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k"}), "5\n");
}

TEST_F(CheckValues, TheLargestAndSmallestNumbersOfATypeSuitIt) {
    const auto check = [&](const std::string& type, const std::string& value) {
        WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\"><Var name=\"a\" type=\"" + type +
                                            "\"><Value>" + value + "</Value></Var></Table>\n")));
        return Succeeds({"check", "a.xml", "--values"});
    };
    const std::pair<const char*, std::vector<const char*>> kTypes[] = {
        {"short", {"-32768", "32767"}}, {"ushort", {"0", "65535"}}, {"long", {"-2147483648", "2147483647"}},
        {"ulong", {"0", "4294967295"}}, {"byte", {"0", "255"}},     {"char", {"-128", "255"}}};
    for (const auto& [type, values] : kTypes) {
        for (const char* const value : values)
            EXPECT_EQ(check(type, value), "") << type;
    }
    EXPECT_NE(check("short", "32768"), "");
    EXPECT_NE(check("char", "256"), "");
    EXPECT_NE(check("char", "-129"), "");
}

TEST_F(CheckValues, AProviderThatHasMoreThan32Bits) {
    WriteBytes("t.xml", Wide(TableDocument(
                            "<Var name=\"a\" type=\"long\"><UI control=\"num\" prov_index=\"1\"/></Var>\n"
                            "<Var name=\"b\" type=\"long\">\n"
                            "<UI control=\"num\" prov_index=\"4294967296\"/></Var>\n")));
    EXPECT_EQ(Succeeds({"check", "t.xml"}),
              "t.xml:5:2: warning: prov_index=\"4294967296\" has more than 32 bits: hosts read 4294967295\n");
}

}  // namespace
}  // namespace tool
