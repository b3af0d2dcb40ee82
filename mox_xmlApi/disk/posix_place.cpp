#include "mox_xmlApi/disk/posix_place.h"

#if !defined(_WIN32)

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace mox::disk {
namespace {

constexpr int kMostLinks = 40;

// -1 on failure.
int OpenFolder(int from, const char* path) noexcept {
    int file = -1;
    do {
        file = openat(from, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    } while (file < 0 && errno == EINTR);
#if defined(O_PATH)
    // A folder in which files can be made but not listed.
    if (file < 0 && errno == EACCES) file = openat(from, path, O_PATH | O_DIRECTORY | O_CLOEXEC);
#endif
    return file;
}

}  // namespace

// Opens the folder of a path that is relative to the folder `from`; null means that of the process.
bool Place::Enter(const OpenFile* from, std::string_view path) {
    const std::size_t slash = path.rfind('/');
    std::string folder(".");
    if (slash == 0) folder = "/";
    if (slash != std::string_view::npos && slash != 0) folder = path.substr(0, slash);
    name_ = slash == std::string_view::npos ? path : path.substr(slash + 1);
    folder_ = OpenFile(OpenFolder(from == nullptr ? AT_FDCWD : from->Get(), folder.c_str()));
    return folder_.IsOpen();
}

bool Place::ReadLink(std::string& target) const {
    target.assign(PATH_MAX, '\0');
    const ssize_t length = readlinkat(folder_.Get(), name_.c_str(), target.data(), target.size());
    if (length < 0) return false;
    target.resize(static_cast<std::size_t>(length));
    if (!target.empty() && target.size() < PATH_MAX) return true;
    errno = ENAMETOOLONG;
    return false;
}

bool Place::Locate(const Text& path, Links links, Problem* problem) {
    const auto failBySystem = [&](std::string_view what) {
        return FailBySystem(problem, path, Reason::WriteFailed, what, LastSystemError());
    };
    if (!Enter(nullptr, front::Utf8Of(path.units()))) return failBySystem("cannot open the folder");
    std::vector<uid_t> owners;  // of the links
    struct stat status;
    for (;;) {
        if (name_.empty())
            return FailFor(problem, path, Reason::NotRegularFile, "it is a folder, not a file");
        const bool exists = Examine(status);
        if (!exists && errno != ENOENT) return failBySystem("cannot examine the file");
        if (!exists && fstat(folder_.Get(), &status) != 0) return failBySystem("cannot examine the folder");
        if (!exists || links == Links::Keep || !S_ISLNK(status.st_mode)) break;
        owners.push_back(status.st_uid);
        std::string target;
        if (owners.size() > kMostLinks) errno = ELOOP;
        if (owners.size() > kMostLinks || !ReadLink(target)) return failBySystem("cannot follow the link");
        const OpenFile from(std::move(folder_));
        folder_ = OpenFile();
        if (!Enter(&from, target)) return failBySystem("cannot open the folder that the link refers to");
    }
    const uid_t user = geteuid();
    const auto isTrusted = [&](uid_t owner) { return owner == user || owner == 0 || owner == status.st_uid; };
    if (std::all_of(owners.begin(), owners.end(), isTrusted)) return true;
    return FailFor(problem, path, Reason::NoPermission,
                   "it is a symbolic link of another user, who does not own the file either");
}

bool Place::Examine(struct stat& status) const noexcept {
    return fstatat(folder_.Get(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

Same Place::Compare(const struct stat& file) const noexcept {
    struct stat status;
    if (Examine(status)) return IsSameFile(status, file) ? Same::Yes : Same::No;
    return errno == ENOENT ? Same::No : Same::Unknown;
}

bool Place::Flush([[maybe_unused]] const OpenFile& inFolder) const noexcept {
    if (FlushFile(folder_)) return true;
#if defined(__linux__)
    // A folder that is open only as a place for names cannot be flushed by itself.
    if (errno == EBADF) return syncfs(inFolder.Get()) == 0;
#endif
    return errno == EINVAL || errno == EBADF || errno == ENOTSUP || errno == EROFS;
}

}  // namespace mox::disk

#endif
