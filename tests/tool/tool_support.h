// Runs the tool in an empty folder, and writes and reads the files there.
#ifndef MOX_XMLAPI_TESTS_TOOL_TOOL_SUPPORT_H
#define MOX_XMLAPI_TESTS_TOOL_TOOL_SUPPORT_H

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

namespace tool {

struct Result {
    int code = -1;
    std::string out{};
    std::string err{};

    friend bool operator==(const Result& a, const Result& b) {
        return a.code == b.code && a.out == b.out && a.err == b.err;
    }
    friend std::ostream& operator<<(std::ostream& stream, const Result& result) {
        return stream << "exit code " << result.code << "\nstdout: " << result.out
                      << "\nstderr: " << result.err;
    }
};

// Runs the tool with the arguments (UTF-8), as a process; if MOX_TOOL_IN_PROCESS is set, which saves time where
// processes start slowly, within this one. Runs with a name are processes always; runs at the same time need different
// ones.
Result RunTool(const std::vector<std::string>& arguments, const std::string& run = "");

// ---- files in the current folder; names are UTF-8

void WriteBytes(const std::string& name, const std::string& bytes);
std::string ReadBytes(const std::string& name);
bool Exists(const std::string& name);

// The bytes of a file with this text and the zero that ends it. For a narrow file the bytes are taken as they are; for a
// wide one the text is UTF-8.
std::string Narrow(const std::string& text);
std::string Wide(const std::string& utf8);

// A settings document with these lines in its root element.
std::string Settings(const std::string& inner);
// A table document named "Tools" with these lines in it.
std::string TableDocument(const std::string& inner);

// An entry of the type "string".
std::string Var(const std::string& name, const std::string& value);

// The folder tests/ of the source tree, in which the test program was started.
std::string SourceFolder();

// Each test begins in an empty folder.
class ToolTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Runs the tool; expects success and no messages. Returns its stdout.
    static std::string Succeeds(const std::vector<std::string>& arguments);
    // Runs the tool; expects this exit code, an empty stdout, and a message that contains the text.
    static void Fails(int code, const std::vector<std::string>& arguments, const std::string& message);
};

// Each run of the tool is a process: for tests of what a process gets and leaves.
class ToolProcessTest : public ToolTest {
  protected:
    void SetUp() override;
    void TearDown() override;
};

}  // namespace tool

#endif
