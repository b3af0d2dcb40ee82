// apply: sections that are removed together with their entries, as "diff --json" lists them.
#include <string>

#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using ApplyRemovals = ToolTest;

std::string Removed(const std::string& entry) {
    return R"({"change": "removed", "section": "Old")" + entry + "}";
}

TEST_F(ApplyRemovals, EachEntryOfTheSectionIsComparedWithItsOwnValue) {
    const std::string bytes =
        Narrow(Settings("<Table name=\"Old\">" + Var("a", "1") + Var("b", "2") + "<Var/>" + Var("b", "3") +
                        "</Table>\n<Table name=\"Kept\"/>\n"));
    const std::string a = Removed(R"(, "entry": "a", "before": "1")");
    const std::string b = Removed(R"(, "entry": "b", "before": "2")");
    const std::string secondB = Removed(R"(, "entry": "b", "occurrence": 2, "before": "3")");
    const std::string section = "[" + Removed("") + ", ";
    WriteBytes("a.xml", bytes);

    const struct {
        std::string changes;
        std::string message;
    } refused[] = {
        {Removed(R"(, "entry": "b", "before": "1")"), "change 2: Old/b: found \"2\", expected \"1\""},
        {Removed(R"(, "entry": "b", "occurrence": 2, "before": "2")"),
         "change 2: Old/b#2: found \"3\", expected \"2\""},
        {Removed(R"(, "entry": "b", "occurrence": 3)"), "change 2: Old/b#3: there is no such entry"},
        {Removed(R"(, "entry": "c")"), "change 2: Old/c: there is no such entry"},
        {a + ", " + b, "section Old has the entry b, which the changes do not remove"},
    };
    for (const auto& test : refused) {
        WriteBytes("changes.json", section + test.changes + "]");
        Fails(1, {"apply", "a.xml", "changes.json"}, test.message);
        EXPECT_EQ(ReadBytes("a.xml"), bytes) << test.changes;
    }

    WriteBytes("changes.json", section + a + ", " + b + ", " + secondB + "]");
    EXPECT_EQ(Succeeds({"apply", "a.xml", "changes.json"}), "");
    EXPECT_EQ(Succeeds({"sections", "a.xml"}), "Kept\n");
}

}  // namespace
}  // namespace tool
