// Files that are not UTF-8 where JSON is expected.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using InvalidJson = ToolTest;

TEST_F(InvalidJson, IsQuotedWithItsBytesEscaped) {
    WriteBytes("a.xml", Narrow(Settings("")));
    WriteBytes("changes.json", "[{\"\xFF\": 1}]");
    Fails(3, {"apply", "a.xml", "changes.json"}, "last read: '\"\\xFF'");
    WriteBytes("changes.json", "[{\"a\xC3(b\": 1}]");
    Fails(3, {"apply", "a.xml", "changes.json"}, "last read: '\"a\\xC3('");
}

}  // namespace
}  // namespace tool
