#include "mox_xmlApi/disk/posix_temporary.h"

#if !defined(_WIN32)

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include "mox_xmlApi/disk/replace_on_system.h"

namespace mox::disk {

bool TemporaryFile::Create(mode_t mode) {
    for (int tries = 0; tries < kMostNames; ++tries) {
        std::string name = TemporaryName(static_cast<std::uint64_t>(getpid()));
        int file = -1;
        do {
            file = openat(target_.Folder().Get(), name.c_str(),
                          O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        } while (file < 0 && errno == EINTR);
        if (file >= 0) {
            file_ = OpenFile(file);
            name_ = std::move(name);
            if (fstat(file, &own_) == 0) return true;
            const int error = errno;
            unlinkat(target_.Folder().Get(), name_.c_str(), 0);
            name_.clear();
            errno = error;
            return false;
        }
        if (errno != EEXIST) break;
    }
    return false;
}

bool TemporaryFile::RenameOver() noexcept {
    const int folder = target_.Folder().Get();
    if (renameat(folder, name_.c_str(), folder, target_.Name().c_str()) != 0) return false;
    name_.clear();
    return true;
}

bool TemporaryFile::RenameToNew() noexcept {
    const int folder = target_.Folder().Get();
    const char* const from = name_.c_str();
    const char* const to = target_.Name().c_str();
#if defined(RENAME_NOREPLACE)
    if (renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0) {
        name_.clear();
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) return false;
#endif
    // Not every file system can do that. A second name fails in the same case, but not every one can do that either.
    if (linkat(folder, from, folder, to, 0) == 0) {
        // Otherwise the destructor tries once more.
        if (unlinkat(folder, from, 0) == 0) name_.clear();
        return true;
    }
    if (errno == EEXIST) return false;
    if (faccessat(folder, to, F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return false;
    }
    return RenameOver();
}

Same TemporaryFile::Compare(const std::string& name, nlink_t links) const noexcept {
    struct stat found;
    if (fstatat(target_.Folder().Get(), name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0)
        return IsSameFile(own_, found) && found.st_nlink == links ? Same::Yes : Same::No;
    return errno == ENOENT ? Same::No : Same::Unknown;
}

void TemporaryFile::Remove() noexcept {
    if (name_.empty()) return;
    const int folder = target_.Folder().Get();
    struct stat found;
    const bool isFound = fstatat(folder, name_.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0;
    // If the name cannot be examined, it most probably is ours.
    if (!isFound || IsSameFile(own_, found)) unlinkat(folder, name_.c_str(), 0);
    name_.clear();
}

}  // namespace mox::disk

#endif
