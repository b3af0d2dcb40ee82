#include "tools/system.h"

#include <cstdio>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <filesystem>
#include <system_error>
#include <unistd.h>
#endif

#include "mox_xmlApi/front/text.hpp"

namespace mox::tool {

#if defined(_WIN32)

std::vector<std::string> CommandLineArguments(int /*argc*/, char** /*argv*/) {
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i)
        arguments.push_back(front::Utf8Of(std::wstring_view(wide[i])));
    LocalFree(wide);
    return arguments;
}

StandardStreams::StandardStreams() : codePage_(GetConsoleOutputCP()) {
    SetConsoleOutputCP(CP_UTF8);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

StandardStreams::~StandardStreams() {
    if (codePage_ != 0) SetConsoleOutputCP(codePage_);
}

bool StandardStreams::IsTerminal() const {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

bool Exists(const std::string& path) {
    const mox::Text name(path);
    if (GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES) return true;
    return GetLastError() != ERROR_FILE_NOT_FOUND;
}

#else

std::vector<std::string> CommandLineArguments(int argc, char** argv) {
    return argc < 1 ? std::vector<std::string>() : std::vector<std::string>(argv + 1, argv + argc);
}

StandardStreams::StandardStreams() = default;
StandardStreams::~StandardStreams() = default;

bool StandardStreams::IsTerminal() const {
    return isatty(STDOUT_FILENO) != 0;
}

bool Exists(const std::string& path) {
    std::error_code error;
    return std::filesystem::status(path, error).type() != std::filesystem::file_type::not_found;
}

#endif

bool StandardStreams::Write(const std::string& data, const std::string& messages) {
    const bool isWritten =
        std::fwrite(data.data(), 1, data.size(), stdout) == data.size() && std::fflush(stdout) == 0;
    // When messages cannot be written, there is nowhere left to report it.
    static_cast<void>(std::fwrite(messages.data(), 1, messages.size(), stderr));
    return isWritten;
}

}  // namespace mox::tool
