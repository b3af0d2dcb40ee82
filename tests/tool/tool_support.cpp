#include "tests/tool/tool_support.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "mox_xmlApi/front/text.hpp"
#include "tests/tool/run_program_support.h"
#include "tools/run_tool.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

const fs::path startFolder = fs::current_path();
bool isProcessWanted = false;

fs::path PathOf(const std::string& name) {
    return {mox::toUtf16(name).value_or(u"")};
}

Result RunInThisProcess(const std::vector<std::string>& arguments) {
    mox::tool::Output output(false);
    mox::tool::RunTool(
        arguments, [] { return std::string(); }, output);
    return {static_cast<int>(output.code), output.Data(), output.Messages()};
}

}  // namespace

Result RunTool(const std::vector<std::string>& arguments, const std::string& run) {
    const bool isHere = run.empty() && !isProcessWanted && std::getenv("MOX_TOOL_IN_PROCESS") != nullptr;
    if (isHere) return RunInThisProcess(arguments);
    const char* const program = std::getenv("MOX_TOOL");
    if (program == nullptr) throw std::runtime_error("MOX_TOOL is not set");
    const std::string messages =
        (fs::path(std::getenv("MOX_TEST_TMP")) / ("messages" + run + ".txt")).string();
    Result result;
    result.code = RunProgram(program, arguments, messages, result.out);
    result.err = ReadBytes(messages);
    return result;
}

void WriteBytes(const std::string& name, const std::string& bytes) {
    std::ofstream file(PathOf(name), std::ios::binary);
    file << bytes;
    ASSERT_TRUE(file.good()) << name;
}

std::string ReadBytes(const std::string& name) {
    std::ifstream file(PathOf(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool Exists(const std::string& name) {
    return fs::exists(PathOf(name));
}

std::string Narrow(const std::string& text) {
    return text + std::string(1, '\0');
}

std::string Wide(const std::string& utf8) {
    std::string bytes;
    for (const char16_t unit : mox::toUtf16(utf8).value() + std::u16string(1, u'\0')) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

std::string Settings(const std::string& inner) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">\n" +
           inner + "</Settings>\n";
}

std::string TableDocument(const std::string& inner) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<Table xmlns:noNamespaceSchemaLocation=\"MXTable.xsd\" name=\"Tools\">\n" +
           inner + "</Table>\n";
}

std::string Var(const std::string& name, const std::string& value) {
    return "\t\t<Var name=\"" + name + "\" type=\"string\" array=\"\">\n\t\t\t<Value>" + value +
           "</Value>\n\t\t</Var>\n";
}

std::string SourceFolder() {
    return startFolder.generic_string();
}

void ToolTest::SetUp() {
    const fs::path folder = fs::path(std::getenv("MOX_TEST_TMP")) / "files";
    fs::remove_all(folder);
    fs::create_directories(folder);
    fs::current_path(folder);
}

void ToolTest::TearDown() {
    fs::current_path(startFolder);
}

void ToolProcessTest::SetUp() {
    ToolTest::SetUp();
    isProcessWanted = true;
}

void ToolProcessTest::TearDown() {
    isProcessWanted = false;
    ToolTest::TearDown();
}

std::string ToolTest::Succeeds(const std::vector<std::string>& arguments) {
    const Result result = RunTool(arguments);
    EXPECT_EQ(result.code, 0) << result;
    EXPECT_EQ(result.err, "");
    return result.out;
}

void ToolTest::Fails(int code, const std::vector<std::string>& arguments, const std::string& message) {
    const Result result = RunTool(arguments);
    EXPECT_EQ(result.code, code) << result;
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(message), std::string::npos) << result;
}

}  // namespace tool
