// Starts a program as another program would, with its output in a pipe.
#ifndef MOX_XMLAPI_TESTS_TOOL_START_SUPPORT_H
#define MOX_XMLAPI_TESTS_TOOL_START_SUPPORT_H

#include <string>
#include <vector>

namespace tool {

// Runs the program with the arguments (UTF-8), reads its stdout to the end and writes its stderr to a file. Returns its
// exit code, or -1 when it could not be started or did not end by itself.
int Start(const std::string& program, const std::vector<std::string>& arguments, const std::string& messages,
          std::string& out);

}  // namespace tool

#endif
