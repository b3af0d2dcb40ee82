#include "tools/system.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <optional>
#include <windows.h>
#else
#include <unistd.h>
#endif

#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "tools/exit_error.h"

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

namespace {

bool IsCharacterDevice(HANDLE handle) noexcept {
    return GetFileType(handle) == FILE_TYPE_CHAR;
}

// Returns false if the text (UTF-8) has no 16-bit form, the handle is not that of a console, or writing fails.
bool WriteToConsole(HANDLE console, const std::string& text) {
    const std::optional<std::wstring> units = front::UnitsOf<wchar_t>(text);
    if (!units.has_value()) return false;
    constexpr std::size_t kMost = 8000;  // a console may refuse more at once
    for (std::size_t at = 0; at < units->size();) {
        std::size_t count = std::min(kMost, units->size() - at);
        if (count == kMost && front::IsLeadSurrogate((*units)[at + count - 1])) --count;
        DWORD written = 0;
        if (WriteConsoleW(console, units->data() + at, static_cast<DWORD>(count), &written, nullptr) == 0)
            return false;
        at += count;
    }
    return true;
}

bool WriteTo(std::FILE* stream, DWORD handleName, const std::string& text) {
    const HANDLE handle = GetStdHandle(handleName);
    if (IsCharacterDevice(handle) && WriteToConsole(handle, text)) return true;
    _setmode(_fileno(stream), _O_BINARY);
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0;
}

}  // namespace

bool IsStdoutTerminal() {
    return IsCharacterDevice(GetStdHandle(STD_OUTPUT_HANDLE));
}

bool WriteStandardStreams(const std::string& data, const std::string& messages) {
    const bool isWritten = WriteTo(stdout, STD_OUTPUT_HANDLE, data);
    // When messages cannot be written, there is nowhere left to report it.
    static_cast<void>(WriteTo(stderr, STD_ERROR_HANDLE, messages));
    return isWritten;
}

#else

std::vector<std::string> CommandLineArguments(int argc, char** argv) {
    return {argv + std::min(argc, 1), argv + argc};
}

bool IsStdoutTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

bool WriteStandardStreams(const std::string& data, const std::string& messages) {
    const bool isWritten =
        std::fwrite(data.data(), 1, data.size(), stdout) == data.size() && std::fflush(stdout) == 0;
    // When messages cannot be written, there is nowhere left to report it.
    static_cast<void>(std::fwrite(messages.data(), 1, messages.size(), stderr));
    return isWritten;
}

#endif

bool IsSameFile(const std::string& one, const std::string& other) {
#if defined(_WIN32)
    const std::filesystem::path onePath(front::UnitsOf<wchar_t>(one).value_or(L""));
    const std::filesystem::path otherPath(front::UnitsOf<wchar_t>(other).value_or(L""));
#else
    const std::filesystem::path onePath(one);
    const std::filesystem::path otherPath(other);
#endif
    std::error_code error;
    return std::filesystem::equivalent(onePath, otherPath, error) && !error;
}

std::string ReadStdin() {
#if defined(_WIN32)
    _setmode(_fileno(stdin), _O_BINARY);
#endif
    std::string bytes;
    std::array<char, 65536> buffer;
    for (std::size_t count = 0; (count = std::fread(buffer.data(), 1, buffer.size(), stdin)) > 0;) {
        if (bytes.size() + count > kLargestStream)
            throw ExitError(ExitCode::kIoError, "cannot read stdin: there are too many bytes");
        bytes.append(buffer.data(), count);
    }
    if (std::ferror(stdin) != 0)
        throw ExitError(ExitCode::kIoError, std::string("cannot read stdin: ") + std::strerror(errno));
    return bytes;
}

}  // namespace mox::tool
