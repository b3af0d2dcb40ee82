// How Windows replaces a file.
#include "mox_xmlApi/disk/replace_on_system.h"

#if defined(_WIN32)

#include <algorithm>
#include <chrono>
#include <utility>

#include "mox_xmlApi/disk/content_hash.h"
#include "mox_xmlApi/disk/old_file.h"
#include "mox_xmlApi/disk/stamp_file.h"
#include "mox_xmlApi/disk/system_problem.h"
#include "mox_xmlApi/disk/windows_access.h"
#include "mox_xmlApi/disk/windows_mutex.h"
#include "mox_xmlApi/disk/windows_paths.h"
#include "mox_xmlApi/disk/windows_temporary.h"
#include "mox_xmlApi/platform/open_file.h"
#include "mox_xmlApi/platform/windows_api.h"

namespace mox::disk {
namespace {

constexpr DWORD kSettable = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                            FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

// One attempt to replace one file.
class Attempt {
  public:
    Attempt(const Text& path, const ReplaceOptions& options, const Deadline& deadline, Problem* problem)
        : path_(path), options_(options), deadline_(deadline), problem_(problem) {}

    Outcome Run(std::string_view bytes, FileStamp& stamp) {
        if (!SetTarget()) return Outcome::Failed;
        if (IsReplacing() && !OpenOld()) return Outcome::Failed;
        if (!old_.IsAsExpected(options_.onlyIf, path_, problem_) || !MakeBackup()) return Outcome::Failed;
        old_.Close();  // a file that is open cannot be replaced
        return PutInPlace(IsReplacing() ? What::Replacement : What::NewFile, target_, path_, bytes, stamp);
    }

  private:
    enum class What : std::uint8_t { NewFile, Replacement, Backup };

    bool IsReplacing() const noexcept { return attributes_ != INVALID_FILE_ATTRIBUTES; }

    bool Fail(Reason reason, std::string_view message) const {
        return FailFor(problem_, path_, reason, message);
    }
    bool FailBySystemError(Reason other, std::string_view what) const {
        return FailBySystem(problem_, path_, other, what, LastSystemError());
    }
    Outcome Failed(bool /*reported*/) const noexcept { return Outcome::Failed; }

    // Finds the file to replace, following links.
    bool SetTarget() {
        target_.assign(path_.units().begin(), path_.units().end());
        attributes_ = GetFileAttributesW(target_.c_str());
        if (!IsReplacing()) {
            return GetLastError() == ERROR_FILE_NOT_FOUND ||
                   FailBySystemError(Reason::WriteFailed, "cannot examine the file");
        }
        std::wstring final;
        {
            const OpenFile file = OpenExisting(target_, 0, FILE_FLAG_BACKUP_SEMANTICS);
            if (!file.IsOpen()) return FailBySystemError(Reason::WriteFailed, "cannot open the file");
            final = FinalPath(file);
        }
        if ((attributes_ & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
            if (final.empty()) return FailBySystemError(Reason::WriteFailed, "cannot follow the link");
            target_ = final;
        }
        if (!lock_.Lock(final.empty() ? FullPath(target_) : final, deadline_))
            return Fail(Reason::Busy, "another process is replacing the file and does not finish");
        attributes_ = GetFileAttributesW(target_.c_str());
        if (IsReplacing() || GetLastError() == ERROR_FILE_NOT_FOUND) return true;
        return FailBySystemError(Reason::WriteFailed, "cannot examine the file");
    }

    // Opens the file that is to be replaced and reads its access rights.
    bool OpenOld() {
        if ((attributes_ & FILE_ATTRIBUTE_DIRECTORY) != 0)
            return Fail(Reason::NotRegularFile, "it is a folder, not a file");
        if ((attributes_ & FILE_ATTRIBUTE_READONLY) != 0)
            return Fail(Reason::NoPermission, "the file is read-only");
        if (!OpenExisting(target_, FILE_WRITE_DATA).IsOpen() && GetLastError() == ERROR_ACCESS_DENIED)
            return FailBySystemError(Reason::NoPermission, "cannot write to the file");
        OpenFile file = OpenExisting(target_, GENERIC_READ | READ_CONTROL);
        const bool isReadable = file.IsOpen();
        const bool isRefused = !isReadable && (GetLastError() == ERROR_ACCESS_DENIED ||
                                               GetLastError() == ERROR_SHARING_VIOLATION);
        if (isRefused) file = OpenExisting(target_, READ_CONTROL);
        if (!file.IsOpen()) return FailBySystemError(Reason::ReadFailed, "cannot open the file");
        switch (old_.Open(std::move(file), isReadable)) {
            case FileType::Regular:
                break;
            case FileType::Unknown:
                return FailBySystemError(Reason::ReadFailed, "cannot examine the file");
            default:
                return Fail(Reason::NotRegularFile, "it is not a regular file");
        }
        return access_.Read(old_.File()) ||
               FailBySystemError(Reason::ReadFailed, "cannot read the access rights of the file");
    }

    // Copies the old file, if that is asked for.
    bool MakeBackup() {
        if (!options_.backup.has_value() || !IsReplacing()) return true;
        const Text& path = *options_.backup;
        const auto fail = [&](Reason reason, std::string_view message) {
            return FailFor(problem_, path, reason, message);
        };
        const auto failToExamine = [&] {
            return FailBySystem(problem_, path, Reason::WriteFailed, "cannot examine the backup",
                                LastSystemError());
        };
        const std::wstring name(path.units().begin(), path.units().end());
        const DWORD found = GetFileAttributesW(name.c_str());
        if (found == INVALID_FILE_ATTRIBUTES) {
            if (GetLastError() != ERROR_FILE_NOT_FOUND) return failToExamine();
        } else {
            if ((found & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) != 0)
                return fail(Reason::NotRegularFile, "the backup would replace what is not a regular file");
            FileStamp stamp;
            const OpenFile file = OpenExisting(name, 0);
            if (!file.IsOpen() || StampFile(file, stamp) != FileType::Regular) return failToExamine();
            if (stamp.file == old_.Stamp().file && stamp.device == old_.Stamp().device)
                return fail(Reason::InvalidText, "the backup would be the file itself");
        }
        FileStamp ignored;
        return old_.Read(path_, problem_) &&
               PutInPlace(What::Backup, name, path, old_.Bytes(), ignored) == Outcome::Done;
    }

    // Renames the file, as soon as nobody has the file open that it replaces: whoever reads that does so for a moment
    // only. Returns the error of the system.
    SystemError Rename(TemporaryFile& temporary, const std::wstring& name, bool replaces) const {
        constexpr std::chrono::milliseconds kLongest{1000};
        const Deadline enough(std::min(options_.patience, kLongest));
        for (;;) {
            if (temporary.Rename(name, replaces)) return ERROR_SUCCESS;
            const SystemError error = LastSystemError();
            const bool isInUse = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
            if (!isInUse || enough.IsOver() || deadline_.IsOver()) return error;
            Sleep(2);
        }
    }

    // Writes a file and gives it the name. `path` is for the problem.
    Outcome PutInPlace(What what, const std::wstring& name, const Text& path, std::string_view bytes,
                       FileStamp& stamp) {
        const auto failBySystem = [&](std::string_view tried) {
            return Failed(FailBySystem(problem_, path, Reason::WriteFailed, tried, LastSystemError()));
        };
        const bool isNew = what == What::NewFile;
        TemporaryFile temporary;
        if (!temporary.Create(name, isNew ? 0 : attributes_ & kSettable,
                              isNew ? nullptr : access_.ForNewFile()))
            return failBySystem("cannot create a file in the folder");
        const OpenFile& file = temporary.File();
        if (!WriteAll(file, bytes.data(), bytes.size())) return failBySystem("cannot write the file");
        if (!isNew && !access_.GiveTo(file)) return failBySystem("cannot set the access rights of the file");
        if (!FlushFile(file)) return failBySystem("cannot flush the file");
        if (StampFile(file, stamp) != FileType::Regular) return failBySystem("cannot examine the file");
        DescribeContent(bytes, stamp);
        const SystemError error = Rename(temporary, name, !isNew);
        if (error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION)
            return Failed(FailFor(problem_, path, Reason::Busy, "the file is in use: " + TextOf(error)));
        if (isNew && (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS)) {
            if (options_.onlyIf == nullptr) return Outcome::Again;
            return Failed(Fail(Reason::Changed, "the file exists by now"));
        }
        if (error != ERROR_SUCCESS) {
            SetLastError(error);
            return failBySystem("cannot rename the temporary file");
        }
        return Outcome::Done;
    }

    const Text& path_;
    const ReplaceOptions& options_;
    const Deadline& deadline_;
    Problem* problem_;
    PathMutex lock_;
    std::wstring target_;
    DWORD attributes_ = INVALID_FILE_ATTRIBUTES;
    OldFile old_;  // not open if there is none
    Access access_;
};

}  // namespace

Outcome TryToReplace(const Text& path, std::string_view bytes, const ReplaceOptions& options,
                     const Deadline& deadline, FileStamp& stamp, Problem* problem) {
    return Attempt(path, options, deadline, problem).Run(bytes, stamp);
}

}  // namespace mox::disk

#endif
