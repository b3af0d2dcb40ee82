#include "mox_xmlApi/disk/system_problem.h"

#if !defined(_WIN32)
#include <cerrno>
#include <system_error>
#endif

#include "mox_xmlApi/platform/windows_api.h"

namespace mox::disk {

#if defined(_WIN32)

SystemError LastSystemError() noexcept {
    return GetLastError();
}

std::string TextOf(SystemError error) {
    wchar_t text[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                                  0, text, sizeof text / sizeof *text, nullptr);
    while (length > 0 && (text[length - 1] <= L' ' || text[length - 1] == L'.'))
        --length;
    if (length == 0) return "error " + std::to_string(error);
    return front::Utf8Of(std::wstring_view(text, length));
}

Reason ReasonOf(SystemError error, Reason other) noexcept {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_INVALID_DRIVE:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
            return Reason::NotFound;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
        case ERROR_PRIVILEGE_NOT_HELD:
            return Reason::NoPermission;
        default:
            return other;
    }
}

#else

SystemError LastSystemError() noexcept {
    return static_cast<SystemError>(errno);
}

std::string TextOf(SystemError error) {
    return std::generic_category().message(static_cast<int>(error));
}

Reason ReasonOf(SystemError error, Reason other) noexcept {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            return Reason::NotFound;
        case EACCES:
        case EPERM:
        case EROFS:
            return Reason::NoPermission;
        case EISDIR:
            return Reason::NotRegularFile;
        default:
            return other;
    }
}

#endif

bool FailFor(Problem* problem, const Text& path, Reason reason, std::string_view message) {
    front::Fail(problem, reason, message);
    if (problem != nullptr) problem->file = front::Utf8Of(path.units());
    return false;
}

bool FailBySystem(Problem* problem, const Text& path, Reason other, std::string_view what,
                  SystemError error) {
    if (problem == nullptr) return false;
    return FailFor(problem, path, ReasonOf(error, other),
                   std::string(what).append(": ").append(TextOf(error)));
}

}  // namespace mox::disk
