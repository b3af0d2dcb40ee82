#include "tools/edit/dropped_file.h"

#if defined(_WIN32)
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <windows.h>
#endif

namespace mox::tool {

#if defined(_WIN32)

std::vector<std::string> WithDroppedFile(std::vector<std::string> arguments) {
    // Names of verbs have only letters.
    if (arguments.size() != 1 || arguments[0].find_first_of(".:/\\") == std::string::npos) return arguments;
    std::error_code error;
    const std::filesystem::path path(std::u8string(arguments[0].begin(), arguments[0].end()));
    if (!std::filesystem::is_regular_file(path, error)) return arguments;
    return {"edit", "--", arguments[0]};
}

void KeepConsoleOpen() {
    DWORD process = 0;
    if (GetConsoleProcessList(&process, 1) != 1) return;
    std::fputs("Press Enter to close this window.\n", stderr);
    static_cast<void>(std::getchar());
}

#else

std::vector<std::string> WithDroppedFile(std::vector<std::string> arguments) {
    return arguments;
}

void KeepConsoleOpen() {}

#endif

}  // namespace mox::tool
