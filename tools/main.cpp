// mox-xml: displays, edits and checks the files of mox_xmlApi.
#include "tools/edit/dropped_file.h"
#include "tools/exit_error.h"
#include "tools/output.h"
#include "tools/run_tool.h"
#include "tools/system.h"

int main(int argc, char** argv) {
    namespace tool = mox::tool;
    tool::Output output(tool::IsStdoutTerminal());
    const std::vector<std::string> given = tool::CommandLineArguments(argc, argv);
    const std::vector<std::string> arguments = tool::WithDroppedFile(given);
    tool::RunTool(arguments, tool::ReadStdin, output);
    if (!tool::WriteStandardStreams(output.Data(), output.Messages()))
        return static_cast<int>(tool::ExitCode::kIoError);
    const bool isDropped = arguments != given;
    if (isDropped && output.code != tool::ExitCode::kSuccess) tool::KeepConsoleOpen();
    return static_cast<int>(output.code);
}
