// show --json: how deep the elements that the format does not know are nested.
#include <nlohmann/json.hpp>

#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using JsonDepth = ToolTest;
using Json = nlohmann::json;

TEST_F(JsonDepth, FollowsTheNestingDownAndUpAgain) {
    WriteBytes("a.xml", Narrow(Settings("<Other><a><b><c/></b><d/></a><e/></Other>\n<!--last-->\n")));
    const Json json = Json::parse(Succeeds({"show", "a.xml", "--json"}));
    EXPECT_EQ(json["other"], Json::parse(R"([{"index": 0, "depth": 0, "element": "Other"},
                                             {"index": 0, "depth": 1, "element": "a"},
                                             {"index": 0, "depth": 2, "element": "b"},
                                             {"index": 0, "depth": 3, "element": "c"},
                                             {"index": 0, "depth": 2, "element": "d"},
                                             {"index": 0, "depth": 1, "element": "e"},
                                             {"index": 0, "depth": 0, "comment": "last"}])"));
}

}  // namespace
}  // namespace tool
