// set --type, where the section cannot be added.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using TypedKeys = ToolTest;

TEST_F(TypedKeys, SayWhyTheirSectionCannotBeAdded) {
    const std::string bytes = Narrow(Settings("<Table name=\"S\"/>\n"));
    WriteBytes("a.xml", bytes);
    Fails(4, {"set", "a.xml", "Größe", "n", "5", "--type", "long"},
          "the section contains U+00F6, and a narrow file keeps 7-bit text only");
    EXPECT_EQ(ReadBytes("a.xml"), bytes);
}

}  // namespace
}  // namespace tool
