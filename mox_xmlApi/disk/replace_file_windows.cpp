// How Windows replaces a file.
#include "mox_xmlApi/disk/replace_on_system.h"

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <windows.h>
// Needs the types of the header above.
#include <sddl.h>

#include "mox_xmlApi/disk/content_hash.h"
#include "mox_xmlApi/disk/open_file.h"
#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/disk/stamp_file.h"
#include "mox_xmlApi/disk/system_problem.h"

namespace mox::disk {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kSettable = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                            FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

OpenFile Open(const std::wstring& path, DWORD access, DWORD flags = FILE_ATTRIBUTE_NORMAL) {
    return OpenFile(CreateFileW(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING, flags, nullptr));
}

// The path of an open file, in which all links have been followed; empty on failure.
std::wstring FinalPath(const OpenFile& file) {
    std::wstring path(std::size_t{1} << 15, L'\0');
    const DWORD length =
        GetFinalPathNameByHandleW(file.Get(), path.data(), static_cast<DWORD>(path.size()), 0);
    path.resize(length < path.size() ? length : 0);
    return path;
}

std::wstring FullPath(const std::wstring& path) {
    std::wstring full(std::size_t{1} << 15, L'\0');
    const DWORD length =
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0 || length >= full.size()) return path;
    full.resize(length);
    return full;
}

// ---- the access rights of a file, as the system describes them

class Access {
  public:
    // Returns false on failure; LastSystemError() says why.
    bool Read(const OpenFile& file) {
        // Not everybody may see the owner, and it is not needed.
        if (!Get(file, OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION, owner_)) owner_.clear();
        return Get(file, DACL_SECURITY_INFORMATION, rights_);
    }

    // For the creation of a file, so that it never has more than these.
    void* ForNewFile() noexcept { return rights_.data(); }

    // Gives exactly these to the file; at its creation it may have got the folder's, too. Returns false on failure;
    // LastSystemError() says why.
    bool GiveTo(const OpenFile& file) {
        if (!owner_.empty()) {
            static_cast<void>(SetKernelObjectSecurity(
                file.Get(), OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION, owner_.data()));
        }
        return SetKernelObjectSecurity(file.Get(), DACL_SECURITY_INFORMATION, rights_.data()) != 0;
    }

  private:
    static bool Get(const OpenFile& file, SECURITY_INFORMATION what, std::string& description) {
        DWORD size = 0;
        GetKernelObjectSecurity(file.Get(), what, nullptr, 0, &size);
        if (size == 0) return false;
        description.resize(size);
        return GetKernelObjectSecurity(file.Get(), what, description.data(), size, &size) != 0;
    }

    std::string owner_;
    std::string rights_;
};

// ---- the lock

// A mutex that all who replace the file have in common. It ends with the process that owns it.
class PathMutex {
  public:
    PathMutex() = default;
    PathMutex(const PathMutex&) = delete;
    PathMutex& operator=(const PathMutex&) = delete;
    ~PathMutex() {
        if (isOwned_) ReleaseMutex(mutex_.Get());
    }

    // Returns false if another one has it until the deadline. If the system has no such mutex, that counts as locked.
    bool Lock(const std::wstring& finalPath, const Deadline& deadline) {
        mutex_ = Make(NameFor(finalPath));
        if (!mutex_.IsOpen()) return true;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline.End() - std::chrono::steady_clock::now());
        const auto wait = std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, INFINITE - 1);
        const DWORD result = WaitForSingleObject(mutex_.Get(), static_cast<DWORD>(wait));
        // An abandoned one is that of a process that ended in the middle; its file is the old or the new one.
        isOwned_ = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
        return result != WAIT_TIMEOUT;
    }

  private:
    // Every user may lock it, in all sessions, and nobody may do more.
    static OpenFile Make(const std::wstring& name) {
        SECURITY_ATTRIBUTES security{sizeof security, nullptr, FALSE};
        if (ConvertStringSecurityDescriptorToSecurityDescriptorW(
                L"D:(A;;0x00100001;;;WD)", SDDL_REVISION_1, &security.lpSecurityDescriptor, nullptr) == 0)
            security.lpSecurityDescriptor = nullptr;
        const HANDLE mutex = CreateMutexExW(&security, name.c_str(), 0, SYNCHRONIZE | MUTEX_MODIFY_STATE);
        LocalFree(security.lpSecurityDescriptor);
        return mutex == nullptr ? OpenFile() : OpenFile(mutex);
    }

    // The system compares paths without regard to case.
    static std::wstring NameFor(const std::wstring& finalPath) {
        std::wstring folded(finalPath.size(), L'\0');
        const int length = static_cast<int>(finalPath.size());
        if (LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, finalPath.data(), length, folded.data(),
                          length, nullptr, nullptr, 0) == 0)
            folded = finalPath;
        FileStamp stamp;
        DescribeContent({reinterpret_cast<const char*>(folded.data()), folded.size() * sizeof(wchar_t)},
                        stamp);
        return L"Global\\mox_xmlApi-" + std::to_wstring(stamp.hash[0]) + L"-" +
               std::to_wstring(stamp.hash[1]);
    }

    OpenFile mutex_;
    bool isOwned_ = false;
};

// ---- the temporary file

// A new file beside the one that it is to replace. As long as it is open nobody else can open, rename or remove it: so
// its name always is its own. Its destructor removes it unless it has been renamed.
class TemporaryFile {
  public:
    TemporaryFile() = default;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!file_.IsOpen() || isRenamed_) return;
        FILE_DISPOSITION_INFO remove{TRUE};
        SetFileInformationByHandle(file_.Get(), FileDispositionInfo, &remove, sizeof remove);
    }

    // Creates it in the folder of the target. `security` is null for the folder's defaults. Returns false on failure;
    // LastSystemError() says why.
    bool Create(const std::wstring& target, DWORD attributes, void* security) {
        SECURITY_ATTRIBUTES rights{sizeof rights, security, FALSE};
        const std::wstring folder = target.substr(0, target.find_last_of(L"/\\:") + 1);
        constexpr DWORD kAccess = GENERIC_READ | GENERIC_WRITE | DELETE | READ_CONTROL | WRITE_DAC;
        for (int tries = 0; tries < kMostNames; ++tries) {
            const std::string name = TemporaryName(GetCurrentProcessId());
            const std::wstring path = folder + std::wstring(name.begin(), name.end());
            // The owner can be set only by a file that was opened for it, which not every system permits.
            for (const DWORD access : {kAccess | WRITE_OWNER, kAccess}) {
                file_ = OpenFile(CreateFileW(path.c_str(), access, 0, &rights, CREATE_NEW,
                                             attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes, nullptr));
                if (file_.IsOpen()) return true;
                if (GetLastError() != ERROR_ACCESS_DENIED && GetLastError() != ERROR_PRIVILEGE_NOT_HELD)
                    break;
            }
            if (GetLastError() != ERROR_FILE_EXISTS && GetLastError() != ERROR_ALREADY_EXISTS) break;
        }
        return false;
    }

    const OpenFile& File() const noexcept { return file_; }

    // Renames it to the target, in one step. ReplaceFileW would move the old file away first: a process that ends in
    // between would leave no file of that name. Returns false on failure; LastSystemError() says why.
    bool Rename(const std::wstring& target, bool replaces) {
        const std::wstring full = FullPath(target);
        const std::size_t bytes = full.size() * sizeof(wchar_t);
        const std::size_t size = offsetof(FILE_RENAME_INFO, FileName) + bytes + sizeof(wchar_t);
        std::string buffer(std::max(size, sizeof(FILE_RENAME_INFO)), '\0');
        auto* const rename = reinterpret_cast<FILE_RENAME_INFO*>(buffer.data());
        rename->ReplaceIfExists = replaces ? TRUE : FALSE;
        rename->FileNameLength = static_cast<DWORD>(bytes);
        std::memcpy(rename->FileName, full.data(), bytes);
        isRenamed_ = SetFileInformationByHandle(file_.Get(), FileRenameInfo, rename,
                                                static_cast<DWORD>(buffer.size())) != 0;
        return isRenamed_;
    }

  private:
    OpenFile file_;
    bool isRenamed_ = false;
};

// One attempt to replace one file.
class Attempt {
  public:
    Attempt(const Text& path, const ReplaceOptions& options, const Deadline& deadline, Problem* problem)
        : path_(path), options_(options), deadline_(deadline), problem_(problem) {}

    Outcome Run(std::string_view bytes, FileStamp& stamp) {
        if (!SetTarget()) return Outcome::Failed;
        if (IsReplacing() && !OpenOld()) return Outcome::Failed;
        if (!IsAsExpected() || !MakeBackup()) return Outcome::Failed;
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
            const OpenFile file = Open(target_, 0, FILE_FLAG_BACKUP_SEMANTICS);
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
        if (!Open(target_, FILE_WRITE_DATA).IsOpen() && GetLastError() == ERROR_ACCESS_DENIED)
            return FailBySystemError(Reason::NoPermission, "cannot write to the file");
        old_ = Open(target_, GENERIC_READ | READ_CONTROL);
        isReadable_ = old_.IsOpen();
        if (!isReadable_) old_ = Open(target_, READ_CONTROL);
        if (!old_.IsOpen()) return FailBySystemError(Reason::NoPermission, "cannot open the file");
        switch (StampFile(old_, oldStamp_)) {
            case FileType::Regular:
                break;
            case FileType::Unknown:
                return FailBySystemError(Reason::ReadFailed, "cannot examine the file");
            default:
                return Fail(Reason::NotRegularFile, "it is not a regular file");
        }
        return access_.Read(old_) ||
               FailBySystemError(Reason::NoPermission, "cannot read the access rights of the file");
    }

    // Reads the old file, unless that is done.
    bool ReadOld() {
        if (isRead_) return true;
        if (!isReadable_) return Fail(Reason::NoPermission, "cannot read the file to compare or copy it");
        oldBytes_.clear();
        switch (ReadToEnd(old_, oldStamp_.size, kLargestFile, oldBytes_)) {
            case ReadResult::Done:
                break;
            case ReadResult::TooLarge:
                return Fail(Reason::TooLarge, "it is too large to compare or copy it");
            case ReadResult::Failed:
                return FailBySystemError(Reason::ReadFailed, "cannot read the file");
        }
        DescribeContent(oldBytes_, oldStamp_);
        isRead_ = true;
        return true;
    }

    // Whether the old file is the one that may be replaced.
    bool IsAsExpected() {
        if (options_.onlyIf == nullptr) return true;
        const FileStamp& expected = *options_.onlyIf;
        if (!IsReplacing()) return !expected.exists || Fail(Reason::Changed, "the file no longer exists");
        if (!expected.exists) return Fail(Reason::Changed, "the file exists by now");
        constexpr std::string_view kChanged = "the file has changed since it was read";
        if (expected.size != oldStamp_.size) return Fail(Reason::Changed, kChanged);
        return ReadOld() && (oldStamp_.hasContentOf(expected) || Fail(Reason::Changed, kChanged));
    }

    // Copies the old file, if that is asked for.
    bool MakeBackup() {
        if (!options_.backup.has_value() || !IsReplacing()) return true;
        const Text& path = *options_.backup;
        const auto fail = [&](Reason reason, std::string_view message) {
            return FailFor(problem_, path, reason, message);
        };
        const std::wstring name(path.units().begin(), path.units().end());
        const DWORD found = GetFileAttributesW(name.c_str());
        if (found != INVALID_FILE_ATTRIBUTES) {
            if ((found & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) != 0)
                return fail(Reason::NotRegularFile, "the backup would replace what is not a regular file");
            FileStamp stamp;
            const OpenFile file = Open(name, 0);
            if (file.IsOpen() && StampFile(file, stamp) == FileType::Regular &&
                stamp.file == oldStamp_.file && stamp.device == oldStamp_.device)
                return fail(Reason::InvalidText, "the backup would be the file itself");
        }
        FileStamp ignored;
        return ReadOld() && PutInPlace(What::Backup, name, path, oldBytes_, ignored) == Outcome::Done;
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
        if (!WriteAll(file, bytes)) return failBySystem("cannot write the file");
        if (!isNew && !access_.GiveTo(file)) return failBySystem("cannot set the access rights of the file");
        if (FlushFileBuffers(file.Get()) == 0) return failBySystem("cannot flush the file");
        if (!temporary.Rename(name, !isNew)) {
            const SystemError error = LastSystemError();
            if (!isNew || (error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS))
                return failBySystem("cannot rename the temporary file");
            if (options_.onlyIf == nullptr) return Outcome::Again;
            return Failed(Fail(Reason::Changed, "the file exists by now"));
        }
        // The new file is in place; an error would only say that its name is not on the disk yet.
        static_cast<void>(FlushFileBuffers(file.Get()));
        if (StampFile(file, stamp) != FileType::Regular) stamp = FileStamp();
        DescribeContent(bytes, stamp);
        return Outcome::Done;
    }

    const Text& path_;
    const ReplaceOptions& options_;
    const Deadline& deadline_;
    Problem* problem_;
    PathMutex lock_;
    std::wstring target_;
    DWORD attributes_ = INVALID_FILE_ATTRIBUTES;
    OpenFile old_;  // not open if there is none
    FileStamp oldStamp_;
    Access access_;
    std::string oldBytes_;
    bool isReadable_ = false;
    bool isRead_ = false;
};

}  // namespace

Outcome TryToReplace(const Text& path, std::string_view bytes, const ReplaceOptions& options,
                     const Deadline& deadline, FileStamp& stamp, Problem* problem) {
    return Attempt(path, options, deadline, problem).Run(bytes, stamp);
}

}  // namespace mox::disk

#endif
