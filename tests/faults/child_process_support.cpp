#include "tests/faults/child_process_support.h"

#if !defined(_WIN32)

#include <cstdio>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults {
namespace {

// Writes the text for the parent and ends the child immediately: cleaning up after the tests is up to the parent.
[[noreturn]] void Report(int file, const std::string& text) {
    const bool isWritten = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    _exit(isWritten ? 0 : 1);
}

std::string ReadAll(int file) {
    std::string text;
    char piece[256];
    for (ssize_t count = 0; (count = read(file, piece, sizeof piece)) > 0;)
        text.append(piece, static_cast<std::size_t>(count));
    return text;
}

}  // namespace

std::string InChild(const std::function<std::string()>& work) {
    int ends[2] = {-1, -1};
    if (pipe(ends) != 0) return "no pipe";
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) return "no child";
    if (child == 0) {
        close(ends[0]);
        const std::string text = work();
        // The parent sees no other trace of an expectation that was not met.
        const bool isSilent = text.empty() && testing::Test::HasFailure();
        Report(ends[1], isSilent ? "an expectation failed in the child" : text);
    }
    close(ends[1]);
    const std::string text = ReadAll(ends[0]);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    const bool isGood = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return isGood ? text : "the child died: " + text;
}

bool GiveUpPrivileges() {
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0))
        return false;
    return geteuid() != 0;
}

}  // namespace faults

#endif
