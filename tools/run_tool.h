// Runs the tool, apart from the streams of the process.
#ifndef MOX_XMLAPI_TOOLS_RUN_TOOL_H
#define MOX_XMLAPI_TOOLS_RUN_TOOL_H

#include <string>
#include <vector>

#include "tools/input.h"
#include "tools/output.h"

namespace mox::tool {

// Runs the tool with these arguments (UTF-8, without the program's name) and prints to `output`, whose exit code it sets.
// `readInput` returns what stdin contains; it is called once at most. Failures become a message and an exit code; only
// exceptions that nothing here knows pass through. A process can make several runs, one after the other.
void RunTool(const std::vector<std::string>& arguments, const InputReader& readInput, Output& output);

}  // namespace mox::tool

#endif
