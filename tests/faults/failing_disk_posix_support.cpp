#if !defined(_WIN32)

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "tests/faults/recorded_disk_support.h"
#include "tests/faults/watched_calls_support.h"

namespace faults {

unsigned ErrorOf(FileCall call) {
    switch (call) {
        case FileCall::Open:
            return EMFILE;
        case FileCall::Write:
            return ENOSPC;
        case FileCall::MakeInMemory:
            return ENOSYS;
        default:
            return EIO;
    }
}

std::uint64_t OpenHandles() {
    std::uint64_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

namespace {

using Kind = Operation::Kind;

// Whether the call is to go to the system; otherwise errno says why not.
bool GoesOn(FileCall call) {
    const Answer answer = Ask(call);
    if (answer == Answer::Plain) return true;
    errno = answer == Answer::Interrupted   ? EINTR
            : answer == Answer::Unsupported ? EINVAL
                                            : static_cast<int>(ErrorOf(call));
    return false;
}

// A call of the system that the watch may answer instead. -1 on failure.
template <class... Arguments>
long Call(FileCall call, long number, Arguments... arguments) {
    return GoesOn(call) ? syscall(number, arguments...) : -1;
}

int Open(int folder, const char* path, int flags, mode_t mode) {
    const int file = static_cast<int>(Call(FileCall::Open, SYS_openat, folder, path, flags, mode));
    // Files that are replaced are created with a condition; no other creation is recorded.
    if (!IsRecording() || file < 0 || (flags & O_EXCL) == 0 || folder == AT_FDCWD) return file;
    struct stat status {};
    syscall(SYS_fstat, file, &status);
    Operation made{Kind::Create, NumberOf(file), NumberOf(folder), path};
    made.mode = status.st_mode & 07777;
    Record(made);
    return file;
}

// Says what the system would say about a flush, and saves the time for it: nobody cuts the power.
int Flush(int file, Kind kind) {
    if (!GoesOn(FileCall::Flush)) return -1;
    const int flags = fcntl(file, F_GETFL);
    if (flags < 0 || (flags & O_PATH) != 0) {
        errno = EBADF;
        return -1;
    }
    if (IsRecording()) Record({kind, NumberOf(file)});
    return 0;
}

int Rename(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    const auto result =
        static_cast<int>(Call(FileCall::Rename, SYS_renameat2, fromFolder, from, toFolder, to, flags));
    if (result == 0 && IsRecording()) Record({Kind::Rename, {}, NumberOf(toFolder), from, to});
    return result;
}

}  // namespace
}  // namespace faults

using faults::Call;
using faults::FileCall;
using faults::Operation;
using Kind = faults::Operation::Kind;

extern "C" {

int open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return faults::Open(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return faults::Open(folder, path, flags, mode);
}

int fstat(int file, struct stat* status) noexcept {
    return static_cast<int>(Call(FileCall::Size, SYS_fstat, file, status));
}

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    return static_cast<int>(Call(FileCall::Examine, SYS_newfstatat, folder, path, status, flags));
}

int stat(const char* path, struct stat* status) noexcept {
    return static_cast<int>(Call(FileCall::Examine, SYS_newfstatat, AT_FDCWD, path, status, 0));
}

int faccessat(int folder, const char* path, int mode, int flags) noexcept {
    return static_cast<int>(Call(FileCall::Access, SYS_faccessat2, folder, path, mode, flags));
}

int access(const char* path, int mode) noexcept {
    return static_cast<int>(Call(FileCall::Access, SYS_faccessat, AT_FDCWD, path, mode));
}

ssize_t readlinkat(int folder, const char* path, char* target, size_t size) noexcept {
    return Call(FileCall::FollowLink, SYS_readlinkat, folder, path, target, size);
}

int flock(int file, int operation) noexcept {
    return static_cast<int>(Call(FileCall::Lock, SYS_flock, file, operation));
}

ssize_t read(int file, void* bytes, size_t size) {
    return Call(FileCall::Read, SYS_read, file, bytes, faults::Cut(size));
}

ssize_t write(int file, const void* bytes, size_t size) {
    const off_t offset = lseek(file, 0, SEEK_CUR);
    const ssize_t count = Call(FileCall::Write, SYS_write, file, bytes, faults::Cut(size));
    if (count > 0 && offset >= 0 && faults::IsRecording()) {
        Operation made{Kind::Write, faults::NumberOf(file)};
        made.offset = static_cast<std::size_t>(offset);
        made.bytes.assign(static_cast<const char*>(bytes), static_cast<std::size_t>(count));
        faults::Record(made);
    }
    return count;
}

int fsync(int file) {
    return faults::Flush(file, Kind::Flush);
}

int syncfs(int file) noexcept {
    return faults::Flush(file, Kind::FlushAll);
}

int fchmod(int file, mode_t mode) noexcept {
    const int result = static_cast<int>(Call(FileCall::SetMode, SYS_fchmod, file, mode));
    if (result == 0 && faults::IsRecording()) {
        Operation made{Kind::SetMode, faults::NumberOf(file)};
        made.mode = mode;
        faults::Record(made);
    }
    return result;
}

int fchown(int file, uid_t owner, gid_t group) noexcept {
    return static_cast<int>(Call(FileCall::SetOwner, SYS_fchown, file, owner, group));
}

ssize_t fgetxattr(int file, const char* name, void* value, size_t size) noexcept {
    return Call(FileCall::ReadRights, SYS_fgetxattr, file, name, value, size);
}

int fsetxattr(int file, const char* name, const void* value, size_t size, int flags) noexcept {
    return static_cast<int>(Call(FileCall::SetRights, SYS_fsetxattr, file, name, value, size, flags));
}

int fremovexattr(int file, const char* name) noexcept {
    return static_cast<int>(Call(FileCall::SetRights, SYS_fremovexattr, file, name));
}

ssize_t flistxattr(int file, char* names, size_t size) noexcept {
    return Call(FileCall::ListAttributes, SYS_flistxattr, file, names, size);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    return faults::Rename(fromFolder, from, toFolder, to, 0);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    return faults::Rename(fromFolder, from, toFolder, to, flags);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    const int result =
        static_cast<int>(Call(FileCall::Link, SYS_linkat, fromFolder, from, toFolder, to, flags));
    if (result == 0 && faults::IsRecording())
        faults::Record({Kind::Link, {}, faults::NumberOf(toFolder), from, to});
    return result;
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    const int result = static_cast<int>(Call(FileCall::Remove, SYS_unlinkat, folder, path, flags));
    if (result == 0 && faults::IsRecording())
        faults::Record({Kind::Remove, {}, faults::NumberOf(folder), path});
    return result;
}

int unlink(const char* path) noexcept {
    return static_cast<int>(Call(FileCall::Remove, SYS_unlinkat, AT_FDCWD, path, 0));
}

int rmdir(const char* path) noexcept {
    return static_cast<int>(Call(FileCall::Remove, SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR));
}

int memfd_create(const char* name, unsigned flags) noexcept {
    return static_cast<int>(Call(FileCall::MakeInMemory, SYS_memfd_create, name, flags));
}

// Names are not random here: the tests have folders of their own.
char* mkdtemp(char* path) noexcept {
    static unsigned number = 0;
    unsigned rest = ++number;
    for (char* digit = path + std::strlen(path); *--digit == 'X'; rest /= 10)
        *digit = static_cast<char>('0' + rest % 10);
    return Call(FileCall::MakeFolder, SYS_mkdirat, AT_FDCWD, path, mode_t{0700}) == 0 ? path : nullptr;
}

int close(int file) {
    const bool goesOn = faults::Ask(FileCall::Close) == faults::Answer::Plain;
    const int closed = static_cast<int>(syscall(SYS_close, file));
    if (goesOn) return closed;
    errno = EIO;
    return -1;
}
}

#endif
