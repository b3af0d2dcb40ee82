// What --json prints: typed values, comments, other elements, files that cannot be read.
#include <nlohmann/json.hpp>

#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using JsonOutput = ToolTest;
using Json = nlohmann::json;

std::string Value(const std::string& name, const std::string& type, const std::string& value) {
    return "<Var name=\"" + name + "\" " + type + "><Value>" + value + "</Value></Var>\n";
}

TEST_F(JsonOutput, ValuesHaveTheTypeOfTheEntry) {
    WriteBytes("a.xml",
               Narrow(Settings(
                   "<Table name=\"S\">" + Value("int", "type=\"long\"", "-12") +
                   Value("real", "type=\"double\"", "1.25") + Value("padded", "type=\"double\"", "1.50") +
                   Value("zeros", "type=\"long\"", "007") + Value("flag", "type=\"bool\"", "1") +
                   Value("word", "type=\"bool\"", "true") + Value("text", "type=\"string\"", "12") +
                   Value("none", "type=\"long\"", "twelve") + Value("empty", "type=\"long\"", "") +
                   Value("bytes", "type=\"byte\" array=\"array\"", "00FF") +
                   Value("lower", "type=\"byte\" array=\"vector\"", "0aff") +
                   Value("longs", "type=\"long\" array=\"array\"", "1 2") +
                   Value("big", "type=\"long\"", "9007199254740993") + "</Table>\n")));
    const struct {
        const char* name;
        Json value;
        Json text;  // null: none
    } cases[] = {{"int", -12, nullptr},
                 {"real", 1.25, nullptr},
                 {"padded", 1.5, "1.50"},
                 {"zeros", 7, "007"},
                 {"flag", true, nullptr},
                 {"word", true, "true"},
                 {"text", "12", nullptr},
                 {"none", "twelve", nullptr},
                 {"empty", "", nullptr},
                 {"bytes", Json::array({0, 255}), nullptr},
                 {"lower", Json::array({10, 255}), "0aff"},
                 {"longs", "1 2", nullptr},
                 {"big", 9007199254740993, "9007199254740993"}};
    for (const auto& test : cases) {
        const Json entry =
            Json::parse(Succeeds({"entry", "get", "a.xml", test.name, "--section", "S", "--json"}));
        EXPECT_EQ(entry["value"], test.value) << test.name;
        EXPECT_EQ(entry.value("text", Json()), test.text) << test.name;
    }
}

TEST_F(JsonOutput, ShowHasCommentsAndOtherElements) {
    WriteBytes(
        "a.xml",
        Narrow("<!-- top -->\n" +
               Settings("<!-- one -->\n<Table name=\"S\"><!-- two -->\n" +
                        std::string("<Var name=\"k\" type=\"long\"><!-- three --><Note by=\"x\"/></Var>"
                                    "<!-- four --><Lease hours=\"12\"><Day>1</Day></Lease></Table>\n"
                                    "<History a=\"1\" a=\"2\">since</History>\n"))
                   .substr(39) +
               "<Extra/>\n"));
    const Json json = Json::parse(Succeeds({"show", "a.xml", "--json"}));
    EXPECT_EQ(json["outside"], Json::parse(R"([{"index": 0, "depth": 0, "comment": " top "},
                                               {"index": 1, "depth": 0, "element": "Extra"}])"));
    EXPECT_EQ(json["other"], Json::parse(R"([{"index": 0, "depth": 0, "comment": " one "},
                              {"index": 1, "depth": 0, "element": "History", "text": "since",
                               "attributes": [{"name": "a", "value": "1"}, {"name": "a", "value": "2"}]}])"));
    const Json& section = json["sections"][0];
    EXPECT_EQ(section["other"], Json::parse(R"([{"index": 0, "depth": 0, "comment": " two "},
                                                {"index": 1, "depth": 0, "comment": " four "}])"));
    EXPECT_EQ(section["entries"][0]["other"], Json::parse(R"([{"index": 0, "depth": 0, "comment": " three "},
                              {"index": 0, "depth": 0, "element": "Note",
                               "attributes": [{"name": "by", "value": "x"}]}])"));
    EXPECT_EQ(section["entries"][1]["other"], Json::parse(R"([{"index": 0, "depth": 0, "element": "Lease",
                               "attributes": [{"name": "hours", "value": "12"}]},
                              {"index": 0, "depth": 1, "element": "Day", "text": "1"}])"));
}

TEST_F(JsonOutput, ShowsElementsOfAnyDepth) {
    constexpr int kDepth = 100000;
    std::string deep;
    for (int i = 0; i < kDepth; ++i)
        deep += "<a>";
    for (int i = 0; i < kDepth; ++i)
        deep += "</a>";
    WriteBytes("a.xml", Narrow(Settings(deep)));
    const Json json = Json::parse(Succeeds({"show", "a.xml", "--json"}));
    EXPECT_EQ(json["other"].size(), std::size_t{kDepth});
    EXPECT_EQ(json["other"].back()["depth"], kDepth - 1);
}

TEST_F(JsonOutput, CheckNamesAFileThatCannotBeRead) {
    const Result result = RunTool({"check", "none.xml", "--json"});
    EXPECT_EQ(result.code, 4);
    const Json json = Json::parse(result.out);
    ASSERT_EQ(json.size(), 1U);
    EXPECT_EQ(json[0]["file"], "none.xml");
    EXPECT_EQ(json[0]["severity"], "error");
    EXPECT_EQ(json[0]["message"].get<std::string>().rfind("none.xml: cannot open the file: ", 0), 0U);
    EXPECT_FALSE(json[0].contains("line"));
}

}  // namespace
}  // namespace tool
