#include "tests/faults/failing_disk_support.h"

#include <algorithm>
#include <utility>

#if defined(_WIN32)
#include <windows.h>

#include "tests/faults/import_table_support.h"
#else
#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <filesystem>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace faults {
namespace {

WatchedFiles::Rule watch;
std::size_t mostBytes = std::numeric_limits<std::size_t>::max();

// What the rule itself does with files is not asked about.
Answer Ask(FileCall call) {
    if (!watch) return Answer::Plain;
    WatchedFiles::Rule rule = std::exchange(watch, nullptr);
    const Answer answer = rule(call);
    watch = std::move(rule);
    return answer;
}

#if defined(_WIN32)

decltype(&CreateFileW) realCreateFile = nullptr;
decltype(&GetFileSizeEx) realGetFileSize = nullptr;
decltype(&ReadFile) realReadFile = nullptr;
decltype(&WriteFile) realWriteFile = nullptr;
decltype(&FlushFileBuffers) realFlushFileBuffers = nullptr;
decltype(&SetFileInformationByHandle) realSetFileInformation = nullptr;
decltype(&CloseHandle) realCloseHandle = nullptr;

BOOL Refuse(DWORD error) {
    SetLastError(error);
    return FALSE;
}

DWORD Cut(DWORD size) {
    return static_cast<DWORD>(std::min<std::size_t>(size, mostBytes));
}

HANDLE WINAPI WatchedCreateFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                DWORD how, DWORD flags, HANDLE like) {
    if (Ask(FileCall::Open) == Answer::Plain)
        return realCreateFile(path, access, share, security, how, flags, like);
    SetLastError(ERROR_TOO_MANY_OPEN_FILES);
    return INVALID_HANDLE_VALUE;
}

BOOL WINAPI WatchedGetFileSize(HANDLE file, PLARGE_INTEGER size) {
    return Ask(FileCall::Size) == Answer::Plain ? realGetFileSize(file, size) : Refuse(ERROR_CRC);
}

BOOL WINAPI WatchedReadFile(HANDLE file, LPVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
    if (Ask(FileCall::Read) == Answer::Plain) return realReadFile(file, bytes, Cut(size), count, overlapped);
    return Refuse(ERROR_CRC);
}

BOOL WINAPI WatchedWriteFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
    if (Ask(FileCall::Write) == Answer::Plain)
        return realWriteFile(file, bytes, Cut(size), count, overlapped);
    return Refuse(ERROR_DISK_FULL);
}

BOOL WINAPI WatchedFlushFileBuffers(HANDLE file) {
    return Ask(FileCall::Flush) == Answer::Plain ? realFlushFileBuffers(file) : Refuse(ERROR_DISK_FULL);
}

BOOL WINAPI WatchedSetFileInformation(HANDLE file, FILE_INFO_BY_HANDLE_CLASS what, LPVOID information,
                                      DWORD size) {
    // The other use, which removes a file, is what is done after a failure.
    if (what != FileRenameInfo || Ask(FileCall::Rename) == Answer::Plain)
        return realSetFileInformation(file, what, information, size);
    return Refuse(ERROR_DISK_FULL);
}

BOOL WINAPI WatchedCloseHandle(HANDLE handle) {
    const Answer answer = Ask(FileCall::Close);
    const BOOL closed = realCloseHandle(handle);
    return answer == Answer::Plain ? closed : Refuse(ERROR_DISK_FULL);
}

template <class Function>
void Install(const char* name, Function* replacement, Function*& original) {
    ReplaceImports(Modules::Program, name, replacement, original);
}

[[maybe_unused]] const bool isInstalled = [] {
    Install("CreateFileW", &WatchedCreateFile, realCreateFile);
    Install("GetFileSizeEx", &WatchedGetFileSize, realGetFileSize);
    Install("ReadFile", &WatchedReadFile, realReadFile);
    Install("WriteFile", &WatchedWriteFile, realWriteFile);
    Install("FlushFileBuffers", &WatchedFlushFileBuffers, realFlushFileBuffers);
    Install("SetFileInformationByHandle", &WatchedSetFileInformation, realSetFileInformation);
    Install("CloseHandle", &WatchedCloseHandle, realCloseHandle);
    return true;
}();

#else

// Whether the call is to go to the system; otherwise errno says why not.
bool GoesOn(FileCall call, int error) {
    const Answer answer = Ask(call);
    if (answer == Answer::Plain) return true;
    errno = answer == Answer::Interrupted ? EINTR : answer == Answer::Unsupported ? EINVAL : error;
    return false;
}

#endif

}  // namespace

WatchedFiles::WatchedFiles(Rule rule, std::size_t most) {
    mostBytes = most;
    watch = std::move(rule);
}

WatchedFiles::~WatchedFiles() {
    watch = nullptr;
    mostBytes = std::numeric_limits<std::size_t>::max();
}

std::uint64_t OpenHandles() {
#if defined(_WIN32)
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
#else
    std::uint64_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
#endif
}

}  // namespace faults

#if !defined(_WIN32)

extern "C" {

int open(const char* path, int flags, ...) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        std::va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    if (!faults::GoesOn(faults::FileCall::Open, EMFILE)) return -1;
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

int openat(int folder, const char* path, int flags, ...) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        std::va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    if (!faults::GoesOn(faults::FileCall::Open, EMFILE)) return -1;
    return static_cast<int>(syscall(SYS_openat, folder, path, flags, mode));
}

int fsync(int file) {
    if (!faults::GoesOn(faults::FileCall::Flush, EIO)) return -1;
    return static_cast<int>(syscall(SYS_fsync, file));
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    if (!faults::GoesOn(faults::FileCall::Rename, EIO)) return -1;
    return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, 0));
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    if (!faults::GoesOn(faults::FileCall::Rename, EIO)) return -1;
    return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

int memfd_create(const char* name, unsigned flags) noexcept {
    if (!faults::GoesOn(faults::FileCall::MakeInMemory, ENOSYS)) return -1;
    return static_cast<int>(syscall(SYS_memfd_create, name, flags));
}

int fstat(int file, struct stat* status) noexcept {
    if (!faults::GoesOn(faults::FileCall::Size, EIO)) return -1;
    return static_cast<int>(syscall(SYS_fstat, file, status));
}

ssize_t read(int file, void* bytes, size_t size) {
    if (!faults::GoesOn(faults::FileCall::Read, EIO)) return -1;
    return syscall(SYS_read, file, bytes, std::min(size, faults::mostBytes));
}

ssize_t write(int file, const void* bytes, size_t size) {
    if (!faults::GoesOn(faults::FileCall::Write, ENOSPC)) return -1;
    return syscall(SYS_write, file, bytes, std::min(size, faults::mostBytes));
}

int close(int file) {
    const bool goesOn = faults::GoesOn(faults::FileCall::Close, EIO);
    const int error = errno;
    const int closed = static_cast<int>(syscall(SYS_close, file));
    if (goesOn) return closed;
    errno = error;
    return -1;
}
}

#endif
