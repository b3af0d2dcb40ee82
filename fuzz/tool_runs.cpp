#include "fuzz/tool_runs.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string_view>
#include <system_error>

#include "fuzz/fuzz_input.h"
#include "mox_xmlApi/front/text.hpp"
#include "tools/output.h"
#include "tools/run_tool.h"

namespace fs = std::filesystem;

namespace mox::fuzz {
namespace {

using Files = std::map<std::string, std::string>;  // names and contents

fs::path Parent() {
    const char* const folder = std::getenv("MOX_TEST_TMP");
    if (folder != nullptr && *folder != '\0') return folder;
    std::error_code ignored;
    return fs::is_directory("/dev/shm", ignored) ? fs::path("/dev/shm") : fs::temp_directory_path();
}

std::string BytesOf(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

Files AllFiles() {
    Files files;
    for (const fs::directory_entry& entry : fs::directory_iterator("."))
        files[entry.path().filename().string()] = BytesOf(entry.path());
    return files;
}

// Prints the run, for people who look into a finding.
void Trace(const Run& run, const tool::Output& output) {
    if (std::getenv("MOX_FUZZ_TRACE") == nullptr) return;
    for (const std::string& argument : run.arguments)
        std::fprintf(stderr, "[%s] ", argument.c_str());
    std::fprintf(stderr, "= %d\n%s%s", static_cast<int>(output.code), output.Data().c_str(),
                 output.Messages().c_str());
}

// Whether a terminal would take the character for anything but a character of a text.
bool IsControl(char32_t character) noexcept {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F) || character == 0x61C ||
           (character >= 0x200E && character <= 0x200F) || (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069) || (character >= 0xD800 && character <= 0xDFFF);
}

bool IsHarmless(std::string_view text, bool mayHaveTabs) {
    while (!text.empty()) {
        char32_t character = 0;
        if (!front::DecodeUtf8(text, character)) return false;
        if (character == '\n' || (character == '\t' && mayHaveTabs)) continue;
        if (IsControl(character)) return false;
    }
    return true;
}

}  // namespace

ToolFolder::ToolFolder()
    : folder_(Parent() / ("mox_fuzz_tool_" + std::to_string(std::random_device()()))),
      before_(fs::current_path()) {
    fs::create_directory(folder_);
    fs::current_path(folder_);
}

ToolFolder::~ToolFolder() {
    std::error_code ignored;
    fs::current_path(before_, ignored);
    fs::remove_all(folder_, ignored);
}

std::optional<std::string> ToolFolder::Read(const std::string& name) {
    return fs::exists(name) ? std::optional(BytesOf(name)) : std::nullopt;
}

void ToolFolder::Write(const std::string& name, const std::string& bytes) {
    std::ofstream stream(name, std::ios::binary | std::ios::trunc);
    stream << bytes;
    stream.close();
    Check(stream.good(), "a file of the target can be written");
}

void ToolFolder::Clear() const {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_))
        fs::remove_all(entry.path());
}

RunResult ToolFolder::Execute(const Run& run) {
    const Files before = AllFiles();
    tool::Output output(run.isTerminal);
    tool::RunTool(
        run.arguments, [&run] { return run.input; }, output);

    Trace(run, output);
    const Files after = AllFiles();
    Files expected = before;
    const auto written = after.find(run.writes);
    if (output.code == tool::ExitCode::kSuccess && written != after.end()) {
        const auto old = before.find(run.writes);
        const bool isSame = old != before.end() && old->second == written->second;
        const std::string backup = run.writes + ".bak";
        // A run that changes nothing need not write the file.
        const auto newBackup = after.find(backup);
        const bool isBackedUp =
            newBackup != after.end() && old != before.end() && newBackup->second == old->second;
        if (run.withBackup && old != before.end() && (!isSame || isBackedUp)) expected[backup] = old->second;
        expected[run.writes] = written->second;
    }
    Check(after == expected, "only the file that the verb writes changes, and only if it succeeds");
    Check(IsHarmless(output.Messages(), false), "messages hold no control characters");
    if (run.isTerminal && !run.isExact)
        Check(IsHarmless(output.Data(), run.hasTabs), "what a terminal gets holds no control characters");
    Check(output.code == tool::ExitCode::kSuccess || !output.Messages().empty() || !output.Data().empty(),
          "a failure is explained");
    return {static_cast<int>(output.code), output.Data(), output.Messages()};
}

}  // namespace mox::fuzz
