#include "tests/tool/run_program_support.h"

#include <array>

#if defined(_WIN32)
#include <windows.h>

#include "mox_xmlApi/front/text.hpp"
#else
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;
#endif

namespace tool {

#if defined(_WIN32)

namespace {

// Quotes one argument so that the runtime of the other program splits the command line as intended: a backslash is an
// escape only before a quote.
std::wstring QuotedArgument(const std::string& argument) {
    std::wstring quoted(L"\"");
    std::size_t backslashes = 0;
    const std::wstring wide = mox::front::UnitsOf<wchar_t>(argument).value();
    for (const wchar_t unit : wide) {
        if (unit == L'"') quoted.append(backslashes + 1, L'\\');
        backslashes = unit == L'\\' ? backslashes + 1 : 0;
        quoted += unit;
    }
    return quoted.append(backslashes, L'\\') + L"\"";
}

}  // namespace

int RunProgram(const std::string& program, const std::vector<std::string>& arguments,
               const std::string& messages, std::string& out) {
    std::wstring line = QuotedArgument(program);
    for (const std::string& argument : arguments)
        line += L" " + QuotedArgument(argument);

    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    if (CreatePipe(&readEnd, &writeEnd, &inherited, 0) == 0) return -1;
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    const HANDLE file = CreateFileA(messages.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = writeEnd;
    start.hStdError = file;
    PROCESS_INFORMATION process{};
    const BOOL isStarted =
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process);
    CloseHandle(writeEnd);
    CloseHandle(file);
    DWORD code = static_cast<DWORD>(-1);
    if (isStarted != 0) {
        std::array<char, 4096> buffer;
        DWORD count = 0;
        while (ReadFile(readEnd, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) != 0 &&
               count > 0)
            out.append(buffer.data(), count);
        WaitForSingleObject(process.hProcess, INFINITE);
        GetExitCodeProcess(process.hProcess, &code);
        CloseHandle(process.hProcess);
        CloseHandle(process.hThread);
    }
    CloseHandle(readEnd);
    return static_cast<int>(code);
}

#else

int RunProgram(const std::string& program, const std::vector<std::string>& arguments,
               const std::string& messages, std::string& out) {
    std::vector<std::string> copies{program};
    copies.insert(copies.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& copy : copies)
        pointers.push_back(copy.data());
    pointers.push_back(nullptr);

    std::array<int, 2> ends{-1, -1};
    if (pipe(ends.data()) != 0) return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    posix_spawn_file_actions_addclose(&actions, ends[1]);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, messages.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    pid_t process = -1;
    const int error = posix_spawn(&process, program.c_str(), &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (error == 0) {
        std::array<char, 4096> buffer;
        for (ssize_t count = 0; (count = read(ends[0], buffer.data(), buffer.size())) > 0;)
            out.append(buffer.data(), static_cast<std::size_t>(count));
    }
    close(ends[0]);
    int status = 0;
    if (error != 0 || waitpid(process, &status, 0) != process || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

#endif

}  // namespace tool
