#include "tests/faults/tool_in_process_support.h"

#if !defined(_WIN32)

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#if defined(MOX_TOOL_IN_TESTS)
#include "tools/output.h"
#include "tools/run_tool.h"
#include "tools/system.h"
#endif

namespace faults {

void SendOutputTo(const std::string& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ASSERT_GE(file, 0);
    ASSERT_GE(dup2(file, STDOUT_FILENO), 0);
    ASSERT_GE(dup2(file, STDERR_FILENO), 0);
    close(file);
}

int RunTool(const std::vector<std::string>& arguments) {
#if defined(MOX_TOOL_IN_TESTS)
    namespace tool = mox::tool;
    tool::Output output(false);
    tool::RunTool(arguments, tool::ReadStdin, output);
    const bool isWritten = tool::WriteStandardStreams(output.Data(), output.Messages());
    std::fflush(nullptr);
    return static_cast<int>(isWritten ? output.code : tool::ExitCode::kIoError);
#else
    static_cast<void>(arguments);
    return -1;
#endif
}

}  // namespace faults

#endif
