#include "tests/tool/terminal_support.h"

#if !defined(_WIN32)

#include <array>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace tool {

TerminalProgram::TerminalProgram(const std::vector<std::string>& call) {
    std::vector<std::string> copies = call;
    std::vector<char*> pointers;
    for (std::string& copy : copies)
        pointers.push_back(copy.data());
    pointers.push_back(nullptr);
    termios settings{};
    cfmakeraw(&settings);
    settings.c_cflag |= CREAD;
    process_ = forkpty(&terminal_, nullptr, &settings, nullptr);
    if (process_ == 0) {
        execv(pointers.front(), pointers.data());
        _exit(127);
    }
    if (process_ < 0) throw std::runtime_error("cannot start a program on a terminal");
}

TerminalProgram::~TerminalProgram() {
    if (terminal_ >= 0) close(terminal_);  // the program gets SIGHUP
    if (process_ > 0) waitpid(process_, nullptr, 0);
}

bool TerminalProgram::Read() {
    constexpr int kPatience = 20'000;  // milliseconds
    pollfd waiting{terminal_, POLLIN, 0};
    if (poll(&waiting, 1, kPatience) <= 0) return false;
    std::array<char, 4096> buffer;
    const ssize_t count = read(terminal_, buffer.data(), buffer.size());
    if (count <= 0) return false;  // EIO: the program has exited
    output_.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

std::string TerminalProgram::ReadUntil(const std::string& text) {
    std::size_t at = std::string::npos;
    while ((at = output_.find(text, found_)) == std::string::npos) {
        if (!Read()) throw std::runtime_error("the program did not write " + text + " but " + output_);
    }
    const std::string before = output_.substr(found_, at - found_);
    found_ = at + text.size();
    return before;
}

void TerminalProgram::Type(const std::string& keys) {
    if (write(terminal_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
        throw std::runtime_error("cannot type on the terminal");
}

int TerminalProgram::Finish() {
    while (Read()) {
    }
    int status = 0;
    const bool hasExited = waitpid(process_, &status, 0) == process_ && WIFEXITED(status);
    process_ = -1;
    return hasExited ? WEXITSTATUS(status) : -1;
}

std::string OnTerminal(const std::vector<std::string>& arguments) {
    std::vector<std::string> call{std::getenv("MOX_TOOL")};
    call.insert(call.end(), arguments.begin(), arguments.end());
    TerminalProgram program(call);
    program.Finish();
    return program.Output();
}

}  // namespace tool

#else

#include <array>
#include <cstdlib>
#include <regex>
#include <stdexcept>
#include <windows.h>

#include "mox_xmlApi/front/text.hpp"

namespace tool {
namespace {

// The functions of pseudo-consoles, which the headers declare for recent versions of Windows only.
struct PseudoConsoles {
    using Create = HRESULT(WINAPI*)(COORD size, HANDLE in, HANDLE out, DWORD flags, void** console);
    using Close = void(WINAPI*)(void* console);
    Create create;
    Close close;
};

template <class Function>
Function KernelFunction(const char* name) {
    const FARPROC function = GetProcAddress(GetModuleHandleA("kernel32.dll"), name);
    if (function == nullptr) throw std::runtime_error(std::string("there is no ") + name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(function));
}

// Runs a command line on the console and waits for it.
void RunOn(void* console, std::wstring line) {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    std::vector<char> list(size);
    STARTUPINFOEXW start{};
    start.StartupInfo.cb = sizeof start;
    start.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(list.data());
    constexpr DWORD_PTR kPseudoConsole = 0x20016;
    PROCESS_INFORMATION process{};
    if (InitializeProcThreadAttributeList(start.lpAttributeList, 1, 0, &size) == 0 ||
        UpdateProcThreadAttribute(start.lpAttributeList, 0, kPseudoConsole, console, sizeof console, nullptr,
                                  nullptr) == 0 ||
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, EXTENDED_STARTUPINFO_PRESENT, nullptr,
                       nullptr, &start.StartupInfo, &process) == 0)
        throw std::runtime_error("cannot start a program on a console");
    WaitForSingleObject(process.hProcess, INFINITE);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    DeleteProcThreadAttributeList(start.lpAttributeList);
}

}  // namespace

std::string OnTerminal(const std::vector<std::string>& arguments) {
    const PseudoConsoles consoles{KernelFunction<PseudoConsoles::Create>("CreatePseudoConsole"),
                                  KernelFunction<PseudoConsoles::Close>("ClosePseudoConsole")};
    HANDLE keys = nullptr;
    HANDLE typed = nullptr;
    HANDLE shown = nullptr;
    HANDLE screen = nullptr;
    if (CreatePipe(&keys, &typed, nullptr, 0) == 0 || CreatePipe(&shown, &screen, nullptr, 1 << 16) == 0)
        throw std::runtime_error("cannot create a pipe");
    void* console = nullptr;
    if (FAILED(consoles.create({200, 50}, keys, screen, 0, &console)))
        throw std::runtime_error("cannot create a console");
    CloseHandle(keys);
    CloseHandle(screen);
    std::string line = std::string("cmd.exe /c ") + std::getenv("MOX_TOOL");
    for (const std::string& argument : arguments)
        line.append(" ").append(argument);
    RunOn(console, mox::front::UnitsOf<wchar_t>(line + " >CONOUT$ 2>&1").value());
    consoles.close(console);
    CloseHandle(typed);

    std::string output;
    std::array<char, 4096> buffer;
    for (DWORD count = 0;
         ReadFile(shown, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) != 0 &&
         count > 0;)
        output.append(buffer.data(), count);
    CloseHandle(shown);
    return std::regex_replace(output, std::regex("\x1B\\[[0-9;?]*[A-Za-z]"), "");  // moves of the cursor
}

}  // namespace tool

#endif
