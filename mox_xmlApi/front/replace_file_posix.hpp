// The part of front/replace_file.hpp for POSIX systems. Valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_REPLACE_FILE_POSIX_HPP
#define MOX_XMLAPI_FRONT_REPLACE_FILE_POSIX_HPP

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "mox_xmlApi/front/text.hpp"

namespace mox::front {

inline std::uint64_t ProcessNumber() {
    return static_cast<std::uint64_t>(getpid());
}

// A new file in the folder of the file that it is to replace, the target.
class TemporaryFile {
  public:
    TemporaryFile() = default;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { CloseFile(); }

    // Sets the file to replace, following links. Returns false if it cannot be replaced.
    bool SetTarget(UnitsView path) {
        target_ = Utf8Of(path);
        if (!FollowLinks()) return false;
        isReplacing_ = stat(target_.c_str(), &old_) == 0;
        if (!isReplacing_) return errno == ENOENT;
        return S_ISREG(old_.st_mode) && faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) == 0;
    }

    // Creates the file. While it has to replace an existing one, whose mode may be stricter, only the owner can read
    // it. Returns false on failure; IsNameTaken tells whether the name exists already.
    bool Create(const std::string& name) {
        constexpr mode_t kOwnerOnly = 0600;
        constexpr mode_t kDefaultMode = 0666;  // less the umask of the process
        path_ = Folder().append(name);
        do {
            file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                         isReplacing_ ? kOwnerOnly : kDefaultMode);
        } while (file_ < 0 && errno == EINTR);
        if (file_ < 0) {
            isNameTaken_ = errno == EEXIST;
            path_.clear();
        }
        return file_ >= 0;
    }

    bool IsNameTaken() const noexcept { return isNameTaken_; }
    const std::string& Path() const noexcept { return path_; }

    // Flushes the file and renames it to the target. Returns false on failure; the target is then unchanged.
    bool ReplaceTarget() {
        if (isReplacing_ && !CopyOwnerAndMode()) return false;
        if (fsync(file_) != 0 || !CloseFile()) return false;
        if (std::rename(path_.c_str(), target_.c_str()) != 0) return false;
        path_.clear();
        FlushFolder();
        return true;
    }

    // Removes the file unless it has replaced the target.
    void Discard() noexcept {
        if (!path_.empty()) unlink(path_.c_str());
        path_.clear();
    }

  private:
    // The folder of the target, with a slash at its end; empty for the current one.
    std::string Folder() const { return target_.substr(0, target_.rfind('/') + 1); }

    // Follows links step by step, because one to a file that does not exist yet has to stay, too.
    bool FollowLinks() {
        constexpr int kMaxLinks = 40;
        for (int links = 0; links < kMaxLinks; ++links) {
            struct stat status;
            if (lstat(target_.c_str(), &status) != 0) return errno == ENOENT;
            if (!S_ISLNK(status.st_mode)) return true;
            std::string link(PATH_MAX, '\0');
            const ssize_t length = readlink(target_.c_str(), link.data(), link.size());
            if (length <= 0 || static_cast<std::size_t>(length) == link.size()) return false;
            link.resize(static_cast<std::size_t>(length));
            if (link[0] != '/') link.insert(0, Folder());
            target_ = link;
        }
        return false;
    }

    // The mode is set last, because changing the owner may clear mode bits. Only the superuser can change the owner; if
    // the group cannot be set either, it stays the group of the process.
    bool CopyOwnerAndMode() const {
        struct stat now;
        if (fstat(file_, &now) != 0) return false;
        if ((now.st_uid != old_.st_uid || now.st_gid != old_.st_gid) &&
            fchown(file_, old_.st_uid, old_.st_gid) != 0 &&
            fchown(file_, static_cast<uid_t>(-1), old_.st_gid) != 0) {
            errno = 0;
        }
        constexpr mode_t kAllBits = 07777;
        return fchmod(file_, old_.st_mode & kAllBits) == 0;
    }

    bool CloseFile() noexcept {
        const int file = file_;
        file_ = -1;
        return file < 0 || close(file) == 0;
    }

    void FlushFolder() const {
        const std::string folder = Folder();
        const int file = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0) return;
        static_cast<void>(fsync(file));
        close(file);
    }

    std::string target_;
    std::string path_;
    struct stat old_ {};
    int file_ = -1;
    bool isReplacing_ = false;
    bool isNameTaken_ = false;
};

}  // namespace mox::front

#endif
