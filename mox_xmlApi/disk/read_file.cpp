#include "mox_xmlApi/disk/read_file.hpp"

#include "mox_xmlApi/disk/content_hash.h"
#include "mox_xmlApi/disk/read_to_end.h"
#include "mox_xmlApi/disk/stamp_file.h"
#include "mox_xmlApi/disk/system_problem.h"
#include "mox_xmlApi/platform/open_file.h"
#include "mox_xmlApi/platform/windows_api.h"

#if !defined(_WIN32)
#include <cerrno>
#include <fcntl.h>
#endif

namespace mox {
namespace {

#if defined(_WIN32)

OpenFile OpenToRead(const Text& path) {
    return OpenFile(CreateFileW(path.c_str(), GENERIC_READ,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

// Folders cannot be opened in this way; the system says that access is denied.
bool IsFolder(const Text& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

#else

OpenFile OpenToRead(const Text& path) {
    const std::string name = front::Utf8Of(path.units());
    int file = -1;
    do {
        file = open(name.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC);
    } while (file < 0 && errno == EINTR);
    return OpenFile(file);
}

bool IsFolder(const Text& /*path*/) {
    return false;  // it can be opened
}

#endif

}  // namespace

std::optional<std::string> readFile(const Text& path, FileStamp* stamp, Problem* problem) {
    const auto fail = [&](Reason reason, std::string_view message) {
        disk::FailFor(problem, path, reason, message);
        return std::nullopt;
    };
    const auto failBySystem = [&](std::string_view what, disk::SystemError error) {
        disk::FailBySystem(problem, path, Reason::ReadFailed, what, error);
        if (stamp != nullptr && disk::ReasonOf(error, Reason::ReadFailed) == Reason::NotFound)
            *stamp = FileStamp();
        return std::nullopt;
    };
    if (!path.isValid() || path.units().empty())
        return fail(Reason::InvalidText, "the path is empty or not valid");

    const OpenFile file = OpenToRead(path);
    if (!file.IsOpen()) {
        const disk::SystemError error = disk::LastSystemError();
        if (IsFolder(path)) return fail(Reason::NotRegularFile, "it is a folder, not a file");
        return failBySystem("cannot open the file", error);
    }
    FileStamp found;
    const disk::FileType type = disk::StampFile(file, found);
    if (type == disk::FileType::Unknown)
        return failBySystem("cannot examine the file", disk::LastSystemError());
    if (type == disk::FileType::Folder) return fail(Reason::NotRegularFile, "it is a folder, not a file");
    if (type == disk::FileType::Disk) return fail(Reason::NotRegularFile, "it is a disk, not a file");

    const std::uint64_t most = type == disk::FileType::Regular ? kLargestFile : kLargestStream;
    std::string bytes;
    switch (disk::ReadToEnd(file, found.size, most, bytes)) {
        case disk::ReadResult::Done:
            break;
        case disk::ReadResult::TooLarge:
            return fail(Reason::TooLarge, "it has more than " + std::to_string(most) + " bytes");
        case disk::ReadResult::Failed:
            return failBySystem("cannot read the file", disk::LastSystemError());
    }
    if (stamp != nullptr) {
        disk::DescribeContent(bytes, found);
        *stamp = found;
    }
    front::Succeed(problem);
    return bytes;
}

}  // namespace mox
