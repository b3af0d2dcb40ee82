// Runs the tool in an empty folder of its own and looks at what it leaves behind.
#ifndef MOX_XMLAPI_TESTS_TOOL_TOOL_SUPPORT_H
#define MOX_XMLAPI_TESTS_TOOL_TOOL_SUPPORT_H

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

namespace tool {

struct Result {
    int code = -1;
    std::string out{};  // read from a pipe
    std::string err{};

    friend bool operator==(const Result& a, const Result& b) {
        return a.code == b.code && a.out == b.out && a.err == b.err;
    }
    friend std::ostream& operator<<(std::ostream& stream, const Result& result) {
        return stream << "exit code " << result.code << "\nstdout: " << result.out
                      << "\nstderr: " << result.err;
    }
};

// Starts the tool with the arguments, which are UTF-8, and waits for its end.
Result RunTool(const std::vector<std::string>& arguments);

// ---- files in the current folder. Names are UTF-8.

void WriteBytes(const std::string& name, const std::string& bytes);
std::string ReadBytes(const std::string& name);
bool Exists(const std::string& name);

// What a file with this text holds: with its zero, narrow as it is, wide from UTF-8.
std::string Narrow(const std::string& text);
std::string Wide(const std::string& utf8);

// A settings document with these lines below the root.
std::string Settings(const std::string& inner);
// A table document called "Tools" with these lines in it.
std::string TableDocument(const std::string& inner);

// An entry of type "string".
std::string Var(const std::string& name, const std::string& value);

// The folder of the tests in the source tree, as it was when the program started.
std::string SourceFolder();

// Each test works in an empty folder.
class ToolTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Runs the tool and expects that it is done, without a message. Returns its data.
    static std::string Data(const std::vector<std::string>& arguments);
    // Runs the tool and expects that it fails with the code, writes no data and a message that holds the text.
    static void Fails(int code, const std::vector<std::string>& arguments, const std::string& message);
};

}  // namespace tool

#endif
