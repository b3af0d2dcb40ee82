// The library in a host that loads it while it runs, and that may use it until the very end of its process.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#endif

#include "tests/host/host_support.h"
#include "tests/tool/run_program_support.h"

namespace host {
namespace {

std::filesystem::path OwnProgram() {
#if defined(_WIN32)
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
#else
    return std::filesystem::read_symlink("/proc/self/exe");
#endif
}

// Runs the other host; its exit code and what it printed, in one text.
std::string RunExitHost(const std::string& argument) {
    std::filesystem::path program = OwnProgram().replace_filename("exit_host");
    program.replace_extension(OwnProgram().extension());
    const std::string messages = (ScratchFolder() / "exit_host_messages.txt").string();
    std::string out;
    const int code = tool::RunProgram(program.string(), {argument}, messages, out);
    std::erase(out, '\r');
    return std::to_string(code) + "\n" + out + ReadBytes(messages);
}

TEST(LoadedAtRunTime, ReadsADocumentInADestructorThatRunsAtExit) {
    EXPECT_EQ(RunExitHost("at-exit"), "0\n7\n");
}

// The sanitizers' build reports what an unloaded library leaves behind.
TEST(LoadedAtRunTime, CanBeUnloadedAndLoadedAgain) {
    EXPECT_EQ(RunExitHost("unload"), "0\n7\n7\n7\n");
}

}  // namespace
}  // namespace host
