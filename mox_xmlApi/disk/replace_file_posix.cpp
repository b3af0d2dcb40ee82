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
#include "mox_xmlApi/disk/posix_access.h"
#include "mox_xmlApi/disk/posix_place.h"
#include "mox_xmlApi/disk/posix_temporary.h"
#include "mox_xmlApi/disk/stamp_file.h"
#include "mox_xmlApi/disk/system_problem.h"
#include "mox_xmlApi/platform/open_file.h"

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
        if (faccessat(target_.Folder().Get(), target_.Name().c_str(), W_OK, AT_EACCESS) != 0) {
            if (errno == ENOENT) return Outcome::Again;
            return Failed(FailBySystemError(Reason::WriteFailed, "cannot write to the file"));
        }
        bool isReadable = true;
        OpenFile opened = OpenToLock(target_, target_.Name().c_str(), deadline_, isReadable);
        if (!opened.IsOpen()) {
            if (errno == EWOULDBLOCK)
                return Failed(
                    Fail(Reason::Busy, "another process has a lease on the file and does not give it up"));
            if (errno == ENOENT || errno == ELOOP) return Outcome::Again;
            return Failed(FailBySystemError(Reason::ReadFailed, "cannot open the file"));
        }
        if (!IsLocked(opened.Get()) && !LockFile(opened, deadline_))
            return Failed(Fail(Reason::Busy, "another process is replacing the file and does not finish"));
        const FileType type = old_.Open(std::move(opened), isReadable);
        if (type != FileType::Regular && type != FileType::Unknown) return Outcome::Again;
        Same same = Same::Unknown;
        if (type == FileType::Regular && fstat(old_.File().Get(), &oldStatus_) == 0)
            same = target_.Compare(oldStatus_);
        if (same == Same::No) return Outcome::Again;
        if (same == Same::Unknown)
            return Failed(FailBySystemError(Reason::ReadFailed, "cannot examine the file"));
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
        const auto failBySystem = [&](std::string_view what) {
            return FailBySystem(problem_, path, Reason::WriteFailed, what, LastSystemError());
        };
        Place place;
        if (!place.Locate(path, Links::Keep, problem_)) return false;
        struct stat found;
        if (!place.Examine(found)) {
            if (errno != ENOENT) return failBySystem("cannot examine the backup");
        } else {
            if (!S_ISREG(found.st_mode) && !S_ISLNK(found.st_mode))
                return fail(Reason::NotRegularFile, "the backup would replace what is not a regular file");
            struct stat folder;
            struct stat ownFolder;
            if (fstat(place.Folder().Get(), &folder) != 0 || fstat(target_.Folder().Get(), &ownFolder) != 0)
                return failBySystem("cannot examine the folder");
            // A link of another name to the file may become the backup.
            const bool isSameName = place.Name() == target_.Name() && IsSameFile(folder, ownFolder);
            if (IsSameFile(found, oldStatus_) && (isSameName || found.st_nlink == 1))
                return fail(Reason::InvalidText, "the backup would be the file itself");
        }
        FileStamp ignored;
        return old_.Read(path_, problem_) &&
               PutInPlace(What::Backup, place, path, old_.Bytes(), ignored) == Outcome::Done;
    }

    // The system has refused to write the file at the path, which is the backup or the file itself.
    Outcome FailToWrite(const Text& path, std::string_view tried) const {
        return Failed(FailBySystem(problem_, path, Reason::WriteFailed, tried, LastSystemError()));
    }

    // Writes a file and gives it the name. `path` is for the problem.
    Outcome PutInPlace(What what, const Place& place, const Text& path, std::string_view bytes,
                       FileStamp& stamp) const {
        TemporaryFile temporary(place);
        if (!temporary.Create(what == What::NewFile ? kDefaultMode : kOwnerOnly))
            return FailToWrite(path, "cannot create a file in the folder");
        const OpenFile& file = temporary.File();
        if (!WriteAll(file, bytes.data(), bytes.size())) return FailToWrite(path, "cannot write the file");
        if (what != What::NewFile) {
            CopyUserAttributes(old_.File(), file);
            if (!access_.GiveTo(file)) return FailToWrite(path, "cannot set the access rights of the file");
        }
        if (!FlushFile(file)) return FailToWrite(path, "cannot flush the file");
        if (StampFile(file, stamp) != FileType::Regular) return FailToWrite(path, "cannot examine the file");
        DescribeContent(bytes, stamp);

        const Same inPlace = temporary.IsInPlace();
        if (inPlace == Same::Unknown) return FailToWrite(path, "cannot examine the temporary file");
        if (inPlace == Same::No) {
            return Failed(FailFor(problem_, path, Reason::WriteFailed,
                                  "another process has exchanged or removed the temporary file"));
        }
        if (what == What::Replacement) {
            const Same old = place.Compare(oldStatus_);
            if (old == Same::Unknown) return FailToWrite(path, "cannot examine the file");
            if (old == Same::No) return ChangedMeanwhile();
        }
        // Others that replace the file wait until it has been examined.
        static_cast<void>(flock(file.Get(), LOCK_EX | LOCK_NB));
        if (what == What::NewFile) {
            if (!temporary.RenameToNew())
                return errno == EEXIST ? ChangedMeanwhile()
                                       : FailToWrite(path, "cannot rename the temporary file");
        } else if (!temporary.RenameOver()) {
            return FailToWrite(path, "cannot rename the temporary file");
        }
        return Confirm(what == What::Backup, place, path, temporary);
    }

    // Finds out whether the renamed file is in place, and flushes its folder.
    Outcome Confirm(bool isBackup, const Place& place, const Text& path,
                    const TemporaryFile& temporary) const {
        const Same target = temporary.IsTarget();
        if (target == Same::Unknown) {
            if (isBackup) return FailToWrite(path, "cannot examine the backup");
            FailFor(
                problem_, path, Reason::Unconfirmed,
                "the file was replaced, but the new one cannot be examined: " + TextOf(LastSystemError()));
            return Outcome::Unconfirmed;
        }
        if (target == Same::No) {
            return Failed(FailFor(problem_, path, isBackup ? Reason::WriteFailed : Reason::Changed,
                                  "another process has put its own file in the place of the new one"));
        }
        const bool isFlushed = place.Flush(temporary.File());
        if (isBackup && !isFlushed) return FailToWrite(path, "cannot flush the folder of the backup");
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
