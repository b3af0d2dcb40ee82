// Runs a program with its stdout in a pipe, as other programs do.
#ifndef MOX_XMLAPI_TESTS_TOOL_RUN_PROGRAM_SUPPORT_H
#define MOX_XMLAPI_TESTS_TOOL_RUN_PROGRAM_SUPPORT_H

#include <string>
#include <vector>

namespace tool {

// Runs the program with the arguments (UTF-8) and waits until it exits. Its stdout is appended to `out`, its stderr is
// written to the file `messages`. Returns the exit code, or -1 if the program could not be started or was killed.
int RunProgram(const std::string& program, const std::vector<std::string>& arguments,
               const std::string& messages, std::string& out);

}  // namespace tool

#endif
