// The command-line tool as a function of this program, so that its calls of the system can be watched. Linux only.
#ifndef MOX_XMLAPI_TESTS_FAULTS_TOOL_IN_PROCESS_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_TOOL_IN_PROCESS_SUPPORT_H

#if !defined(_WIN32)

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace faults {

// From now on what this process writes to stdout and stderr goes to the file. For a child process.
void SendOutputTo(const std::string& path);

// Runs the tool in this process, which should be a child made for it. Returns its exit code.
int RunTool(const std::vector<std::string>& arguments);

}  // namespace faults

// Skips the test in builds without the tool.
#if defined(MOX_TOOL_IN_TESTS)
#define MOX_REQUIRE_TOOL() static_cast<void>(0)
#else
#define MOX_REQUIRE_TOOL() GTEST_SKIP() << "built without the tool"
#endif

#endif

#endif
