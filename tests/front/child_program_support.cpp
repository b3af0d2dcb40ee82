#include "tests/front/child_program_support.h"

#include <utility>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace front_tests {

#if defined(_WIN32)

ChildProgram::ChildProgram(const std::string& name, const std::vector<std::filesystem::path>& arguments) {
    std::wstring own(32768, L'\0');
    own.resize(GetModuleFileNameW(nullptr, own.data(), static_cast<DWORD>(own.size())));
    const std::filesystem::path program = std::filesystem::path(own).replace_filename(name + ".exe");
    std::wstring line = L"\"" + program.wstring() + L"\"";
    for (const std::filesystem::path& argument : arguments)
        line += L" \"" + argument.wstring() + L"\"";
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &process))
        return;
    CloseHandle(process.hThread);
    process_ = reinterpret_cast<std::intptr_t>(process.hProcess);
}

bool ChildProgram::Kill() {
    constexpr UINT kKilled = 77;
    if (process_ == 0) return false;
    const HANDLE process = reinterpret_cast<HANDLE>(std::exchange(process_, 0));
    TerminateProcess(process, kKilled);
    WaitForSingleObject(process, INFINITE);
    DWORD code = 0;
    const bool isKilled = GetExitCodeProcess(process, &code) && code == kKilled;
    CloseHandle(process);
    return isKilled;
}

#else

ChildProgram::ChildProgram(const std::string& name, const std::vector<std::filesystem::path>& arguments) {
    std::vector<std::string> texts{
        std::filesystem::read_symlink("/proc/self/exe").replace_filename(name).string()};
    for (const std::filesystem::path& argument : arguments)
        texts.push_back(argument.string());
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    pid_t process = 0;
    if (posix_spawn(&process, pointers[0], nullptr, nullptr, pointers.data(), environ) == 0)
        process_ = process;
}

bool ChildProgram::Kill() {
    if (process_ == 0) return false;
    const auto process = static_cast<pid_t>(std::exchange(process_, 0));
    kill(process, SIGKILL);
    int status = 0;
    return waitpid(process, &status, 0) == process && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

#endif

}  // namespace front_tests
