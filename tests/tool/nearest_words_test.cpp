// Verbs that are equally near to an unknown one.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using NearestWords = ToolTest;

TEST_F(NearestWords, AreAllNamed) {
    Fails(2, {"wet"}, "mox-xml: unknown verb wet; the nearest are get and set (see \"mox-xml --help\")\n");
}

}  // namespace
}  // namespace tool
