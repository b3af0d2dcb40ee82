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

#endif
