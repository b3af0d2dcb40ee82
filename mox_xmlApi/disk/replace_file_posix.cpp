// How POSIX systems replace a file.
#include "mox_xmlApi/disk/replace_on_system.h"

#if !defined(_WIN32)

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "mox_xmlApi/disk/content_hash.h"
#include "mox_xmlApi/disk/file_lock.hpp"
#include "mox_xmlApi/disk/held_lock.h"
#include "mox_xmlApi/disk/old_file.h"
#include "mox_xmlApi/disk/open_file.h"
#include "mox_xmlApi/disk/posix_access.h"
#include "mox_xmlApi/disk/posix_place.h"
#include "mox_xmlApi/disk/posix_temporary.h"
#include "mox_xmlApi/disk/stamp_file.h"
#include "mox_xmlApi/disk/system_problem.h"

namespace mox::disk {
namespace {

constexpr mode_t kOwnerOnly = 0600;
constexpr mode_t kDefaultMode = 0666;  // less the umask of the process

// One attempt to replace one file.
class Attempt {
  public:
    Attempt(const Text& path, const ReplaceOptions& options, const Deadline& deadline, Problem* problem)
        : path_(path), options_(options), deadline_(deadline), problem_(problem) {}

    Outcome Run(std::string_view bytes, FileStamp& stamp) {
        if (!target_.Locate(path_, Links::Follow, problem_)) return Outcome::Failed;
        if (const Outcome opened = OpenOld(); opened != Outcome::Done) return opened;
        if (!old_.IsAsExpected(options_.onlyIf, path_, problem_) || !MakeBackup()) return Outcome::Failed;
        return PutInPlace(IsReplacing() ? What::Replacement : What::NewFile, target_, path_, bytes, stamp);
    }

  private:
    enum class What : std::uint8_t { NewFile, Replacement, Backup };

    bool IsReplacing() const noexcept { return old_.IsOpen(); }

    bool Fail(Reason reason, std::string_view message) const {
        return FailFor(problem_, path_, reason, message);
    }
    bool FailBySystemError(Reason other, std::string_view what) const {
        return FailBySystem(problem_, path_, other, what, LastSystemError());
    }
    Outcome Failed(bool /*reported*/) const noexcept { return Outcome::Failed; }

    // Whether the caller has locked the file.
    bool IsLocked(int file) const noexcept {
        struct stat status;
        return options_.lock != nullptr && options_.lock->held() != nullptr && fstat(file, &status) == 0 &&
               options_.lock->held()->IsOn(status);
    }

    // Opens and locks the file that is to be replaced, if there is one, and reads its access.
    Outcome OpenOld() {
        struct stat found;
        if (!target_.Examine(found)) {
            if (errno == ENOENT) return Outcome::Done;
            return Failed(FailBySystemError(Reason::ReadFailed, "cannot examine the file"));
        }
        if (!S_ISREG(found.st_mode)) return Failed(Fail(Reason::NotRegularFile, "it is not a regular file"));
        const int folder = target_.Folder().Get();
        const char* const name = target_.Name().c_str();
        if (faccessat(folder, name, W_OK, AT_EACCESS) != 0) {
            if (errno == ENOENT) return Outcome::Again;
            return Failed(FailBySystemError(Reason::WriteFailed, "cannot write to the file"));
        }
        // Without waiting, should it be a pipe by now.
        constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
        const auto openFor = [&](int access) {
            int opened = -1;
            do {
                opened = openat(folder, name, access | kFlags);
            } while (opened < 0 && errno == EINTR);
            return opened;
        };
        int file = openFor(O_RDONLY);
        const bool isReadable = file >= 0;
        if (file < 0 && errno == EACCES) file = openFor(O_WRONLY);
        if (file < 0) {
            if (errno == EWOULDBLOCK)
                return Failed(Fail(Reason::Busy, "another process has a lease on the file"));
            if (errno == ENOENT || errno == ELOOP) return Outcome::Again;
            return Failed(FailBySystemError(Reason::ReadFailed, "cannot open the file"));
        }
        OpenFile opened(file);
        if (!IsLocked(file) && !LockFile(opened, deadline_))
            return Failed(Fail(Reason::Busy, "another process is replacing the file and does not finish"));
        if (old_.Open(std::move(opened), isReadable) != FileType::Regular || fstat(file, &oldStatus_) != 0 ||
            !target_.IsOf(oldStatus_))
            return Outcome::Again;
        if (access_.Read(old_.File())) return Outcome::Done;
        return Failed(FailBySystemError(Reason::ReadFailed, "cannot read the access rights of the file"));
    }

    // Copies the old file, if that is asked for.
    bool MakeBackup() {
        if (!options_.backup.has_value() || !IsReplacing()) return true;
        const Text& path = *options_.backup;
        const auto fail = [&](Reason reason, std::string_view message) {
            return FailFor(problem_, path, reason, message);
        };
        Place place;
        if (!place.Locate(path, Links::Keep, problem_)) return false;
        struct stat found;
        if (place.Examine(found)) {
            if (!S_ISREG(found.st_mode) && !S_ISLNK(found.st_mode))
                return fail(Reason::NotRegularFile, "the backup would replace what is not a regular file");
            // A link of another name to the file may become the backup.
            struct stat folder;
            struct stat ownFolder;
            const bool isSameName =
                place.Name() == target_.Name() && fstat(place.Folder().Get(), &folder) == 0 &&
                fstat(target_.Folder().Get(), &ownFolder) == 0 && IsSameFile(folder, ownFolder);
            if (IsSameFile(found, oldStatus_) && (isSameName || found.st_nlink == 1))
                return fail(Reason::InvalidText, "the backup would be the file itself");
        }
        FileStamp ignored;
        if (!old_.Read(path_, problem_) ||
            PutInPlace(What::Backup, place, path, old_.Bytes(), ignored) != Outcome::Done)
            return false;
        return place.Flush() || FailBySystem(problem_, path, Reason::WriteFailed,
                                             "cannot flush the folder of the backup", LastSystemError());
    }

    // Writes a file and gives it the name. `path` is for the problem.
    Outcome PutInPlace(What what, const Place& place, const Text& path, std::string_view bytes,
                       FileStamp& stamp) const {
        const auto failBySystem = [&](std::string_view tried) {
            return Failed(FailBySystem(problem_, path, Reason::WriteFailed, tried, LastSystemError()));
        };
        TemporaryFile temporary(place);
        if (!temporary.Create(what == What::NewFile ? kDefaultMode : kOwnerOnly))
            return failBySystem("cannot create a file in the folder");
        const OpenFile& file = temporary.File();
        if (!WriteAll(file, bytes)) return failBySystem("cannot write the file");
        if (what != What::NewFile) {
            CopyUserAttributes(old_.File(), file);
            if (!access_.GiveTo(file)) return failBySystem("cannot set the access rights of the file");
        }
        if (!FlushFile(file)) return failBySystem("cannot flush the file");
        if (StampFile(file, stamp) != FileType::Regular) return failBySystem("cannot examine the file");
        DescribeContent(bytes, stamp);

        if (!temporary.IsInPlace()) {
            return Failed(FailFor(problem_, path, Reason::WriteFailed,
                                  "another process has exchanged or removed the temporary file"));
        }
        if (what == What::Replacement && !place.IsOf(oldStatus_)) return ChangedMeanwhile();
        // Others that replace the file wait until it has been examined.
        static_cast<void>(flock(file.Get(), LOCK_EX | LOCK_NB));
        if (what == What::NewFile) {
            if (!temporary.RenameToNew())
                return errno == EEXIST ? ChangedMeanwhile()
                                       : failBySystem("cannot rename the temporary file");
        } else if (!temporary.RenameOver()) {
            return failBySystem("cannot rename the temporary file");
        }
        if (!temporary.IsTarget()) {
            return Failed(FailFor(problem_, path, Reason::Changed,
                                  "another process has put its own file in the place of the new one"));
        }
        if (what != What::Backup) static_cast<void>(place.Flush());
        return Outcome::Done;
    }

    // A process that does not lock the file was faster.
    Outcome ChangedMeanwhile() const {
        if (options_.onlyIf == nullptr) return Outcome::Again;
        return Failed(Fail(Reason::Changed, "the file has changed since it was read"));
    }

    const Text& path_;
    const ReplaceOptions& options_;
    const Deadline& deadline_;
    Problem* problem_;
    Place target_;
    OldFile old_;  // not open if there is none
    struct stat oldStatus_ {};
    Access access_;
};

}  // namespace

Outcome TryToReplace(const Text& path, std::string_view bytes, const ReplaceOptions& options,
                     const Deadline& deadline, FileStamp& stamp, Problem* problem) {
    return Attempt(path, options, deadline, problem).Run(bytes, stamp);
}

}  // namespace mox::disk

#endif
