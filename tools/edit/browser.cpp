#include "tools/edit/browser.h"

#if defined(_WIN32)
#include <windows.h>
// After windows.h:
#include <cstdint>
#include <shellapi.h>
#else
#include <fcntl.h>
#include <spawn.h>
#include <sys/types.h>
#include <unistd.h>
#endif

namespace mox::tool {

#if defined(_WIN32)

bool OpenBrowser(const std::string& address) {
    const std::wstring wide(address.begin(), address.end());
    const HINSTANCE result = ShellExecuteW(nullptr, L"open", wide.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<std::intptr_t>(result) > 32;  // as documented
}

#else

bool OpenBrowser(const std::string& address) {
    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0) return false;
    // What a browser prints is not for the user of this tool.
    bool isReady = true;
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        isReady = posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0) == 0 && isReady;
    std::string program = "xdg-open";
    std::string argument = address;
    char* const arguments[] = {program.data(), argument.data(), nullptr};
    pid_t process = 0;
    const bool isStarted =
        isReady && posix_spawnp(&process, program.c_str(), &actions, nullptr, arguments, environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    return isStarted;
}

#endif

}  // namespace mox::tool
