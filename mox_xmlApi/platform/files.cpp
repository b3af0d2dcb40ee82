#include "mox_xmlApi/platform/files.h"

#include <algorithm>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "mox_xmlApi/platform/mox_porting.h"
#endif

namespace mox {
namespace {

// The largest count passed to one system call; some systems refuse counts above 31 bits.
constexpr std::size_t kLargestPiece = std::size_t{1} << 30;

}  // namespace

#if defined(_WIN32)

InputFile::InputFile(const wchar16* path) {
    if (path == nullptr) return;
    const HANDLE handle =
        CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (handle != INVALID_HANDLE_VALUE) handle_ = handle;
}

InputFile::~InputFile() {
    if (IsOpen()) CloseHandle(handle_);
}

std::uint64_t InputFile::SizeHint() const noexcept {
    LARGE_INTEGER size;
    if (!IsOpen() || GetFileType(handle_) != FILE_TYPE_DISK || !GetFileSizeEx(handle_, &size)) return 0;
    return static_cast<std::uint64_t>(size.QuadPart);
}

std::size_t InputFile::Read(void* buffer, std::size_t size) noexcept {
    if (!IsOpen()) return 0;
    std::size_t done = 0;
    while (done < size) {
        const auto piece = static_cast<DWORD>(std::min(size - done, kLargestPiece));
        DWORD count = 0;
        if (!ReadFile(handle_, static_cast<char*>(buffer) + done, piece, &count, nullptr)) {
            // The writer of a pipe has closed it: that is its end.
            if (GetLastError() != ERROR_BROKEN_PIPE) failed_ = true;
            break;
        }
        if (count == 0) break;
        done += count;
    }
    return done;
}

OutputFile::OutputFile(const wchar16* path) {
    if (path == nullptr) return;
    // The sharing mode of the runtime's own streams, so that a host that has the file open can still save it.
    const HANDLE handle = CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle != INVALID_HANDLE_VALUE) handle_ = handle;
}

bool OutputFile::Write(const void* bytes, std::size_t size) noexcept {
    std::size_t done = 0;
    while (handle_ != kNoFile && done < size) {
        const auto piece = static_cast<DWORD>(std::min(size - done, kLargestPiece));
        DWORD count = 0;
        if (!WriteFile(handle_, static_cast<const char*>(bytes) + done, piece, &count, nullptr)) break;
        if (count == 0) break;
        done += count;
    }
    if (handle_ == kNoFile || done != size) failed_ = true;
    return !failed_;
}

bool OutputFile::Close() noexcept {
    if (handle_ == kNoFile) return false;
    const bool closed = CloseHandle(handle_) != 0;
    handle_ = kNoFile;
    return closed && !failed_;
}

#else

namespace {

// Opens the file; -1 on failure.
int Open(const wchar16* path, int flags) {
    if (path == nullptr) return -1;
    std::string narrow;
    if (!pdConvertString(path, narrow)) return -1;
    constexpr mode_t kReadAndWriteForAll = 0666;  // before the process's umask
    int file = -1;
    do {
        file = open(narrow.c_str(), flags | O_CLOEXEC, kReadAndWriteForAll);
    } while (file < 0 && errno == EINTR);
    return file;
}

}  // namespace

InputFile::InputFile(const wchar16* path) : handle_(Open(path, O_RDONLY)) {}

InputFile::~InputFile() {
    if (IsOpen()) close(handle_);
}

std::uint64_t InputFile::SizeHint() const noexcept {
    struct stat status;
    if (!IsOpen() || fstat(handle_, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    return static_cast<std::uint64_t>(status.st_size);
}

std::size_t InputFile::Read(void* buffer, std::size_t size) noexcept {
    if (!IsOpen()) return 0;
    std::size_t done = 0;
    while (done < size) {
        const std::size_t piece = std::min(size - done, kLargestPiece);
        const ssize_t count = read(handle_, static_cast<char*>(buffer) + done, piece);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) failed_ = true;
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

OutputFile::OutputFile(const wchar16* path) : handle_(Open(path, O_WRONLY | O_CREAT | O_TRUNC)) {}

bool OutputFile::Write(const void* bytes, std::size_t size) noexcept {
    std::size_t done = 0;
    while (handle_ != kNoFile && done < size) {
        const std::size_t piece = std::min(size - done, kLargestPiece);
        const ssize_t count = write(handle_, static_cast<const char*>(bytes) + done, piece);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    if (handle_ == kNoFile || done != size) failed_ = true;
    return !failed_;
}

bool OutputFile::Close() noexcept {
    if (handle_ == kNoFile) return false;
    const bool closed = close(handle_) == 0;
    handle_ = kNoFile;
    return closed && !failed_;
}

#endif

OutputFile::~OutputFile() {
    Close();
}

}  // namespace mox
