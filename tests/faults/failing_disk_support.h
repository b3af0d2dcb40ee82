// The calls of the system that the library makes for its files, answered as a disk in trouble would.
//
// On Linux this program has its own functions of those names, through which those of the library's objects go. On
// Windows the imports of this program are exchanged.
#ifndef MOX_XMLAPI_TESTS_FAULTS_FAILING_DISK_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_FAILING_DISK_SUPPORT_H

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "tests/faults/failing_memory_support.h"

namespace faults {

enum class FileCall {
    Open,            // open, openat; CreateFileW
    Size,            // fstat; GetFileSizeEx, GetFileType, GetFileInformationByHandle
    Examine,         // fstatat, stat; GetFileAttributesW
    Access,          // faccessat, access
    FollowLink,      // readlinkat; GetFinalPathNameByHandleW
    Lock,            // flock; CreateMutexExW, WaitForSingleObject
    Read,            // read; ReadFile
    Write,           // write; WriteFile
    Flush,           // fsync, syncfs; FlushFileBuffers
    SetMode,         // fchmod
    SetOwner,        // fchown
    ReadRights,      // fgetxattr; GetKernelObjectSecurity
    SetRights,       // fsetxattr, fremovexattr; SetKernelObjectSecurity
    ListAttributes,  // flistxattr
    Rename,          // renameat, renameat2; SetFileInformationByHandle
    Link,            // linkat
    Remove,          // unlinkat, unlink, rmdir; SetFileInformationByHandle, DeleteFileW
    Close,           // close; CloseHandle
    MakeInMemory,    // memfd_create
    MakeFolder       // mkdtemp; GetTempPathW, which does not make the folder
};

std::string NameOf(FileCall call);

// What the system says about the error with which such a call fails.
std::string TextOfFailure(FileCall call);

enum class Answer {
    Plain,        // what the system says
    Fails,        // an error of the device; a file is closed all the same
    Interrupted,  // a signal came first; Linux only
    Unsupported,  // the file system cannot do that; Linux only
};

// While one lives, the rule is asked before each call how it is to be answered. One at a time.
class WatchedFiles {
  public:
    using Rule = std::function<Answer(FileCall call)>;

    // Each read and write moves at most `most` bytes.
    explicit WatchedFiles(Rule rule, std::size_t most = std::numeric_limits<std::size_t>::max());
    ~WatchedFiles();
    WatchedFiles(const WatchedFiles&) = delete;
    WatchedFiles& operator=(const WatchedFiles&) = delete;
};

// A rule that fails call number `first`, alone or with all that follow, and keeps what was called then.
class FailedCall {
  public:
    FailedCall(std::uint64_t first, Failing how) : first_(first), how_(how) {}

    Answer operator()(FileCall call) {
        ++calls_;
        const bool fails = how_ == Failing::Once ? calls_ == first_ : calls_ >= first_;
        if (!fails) return Answer::Plain;
        if (!failed_) failed_ = call;
        all_.set(static_cast<std::size_t>(call));
        return Answer::Fails;
    }

    // The first call that failed.
    std::optional<FileCall> Failed() const { return failed_; }
    // Whether such a call failed.
    bool HasFailed(FileCall call) const { return all_.test(static_cast<std::size_t>(call)); }

  private:
    std::uint64_t first_;
    Failing how_;
    std::uint64_t calls_ = 0;
    std::optional<FileCall> failed_;
    std::bitset<32> all_;
};

// How many files and other things of the system this process has open.
std::uint64_t OpenHandles();

// Of a file; nullopt if there is none.
using Content = std::optional<std::string>;
Content ContentOf(const std::filesystem::path& path);

// The bytes of a settings file whose section S has the key k, to which these values were written one after the other.
std::string FileWithValues(std::initializer_list<const char*> values);

#if !defined(_WIN32)
// The mode bits of a file without its kind. The running test fails if there is no such file.
mode_t ModeOf(const std::filesystem::path& path);
#endif

}  // namespace faults

#endif
