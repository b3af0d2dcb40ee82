#include "mox_xmlApi/platform/open_file.h"

#include <algorithm>
#if !defined(_WIN32)
#include <cerrno>
#include <unistd.h>
#endif

#include "mox_xmlApi/platform/windows_api.h"

namespace mox {
namespace {

// The largest count passed to one system call; some systems refuse counts above 31 bits.
constexpr std::size_t kLargestPiece = std::size_t{1} << 30;

#if defined(_WIN32)

bool WriteSome(FileHandle file, const char* bytes, std::size_t size, std::size_t& count) noexcept {
    DWORD written = 0;
    const bool isWritten = WriteFile(file, bytes, static_cast<DWORD>(size), &written, nullptr) != 0;
    count = written;
    if (isWritten && written == 0) SetLastError(ERROR_DISK_FULL);
    return isWritten && written != 0;
}

#else

bool WriteSome(FileHandle file, const char* bytes, std::size_t size, std::size_t& count) noexcept {
    ssize_t result = 0;
    do {
        result = write(file, bytes, size);
    } while (result < 0 && errno == EINTR);
    count = result < 0 ? 0 : static_cast<std::size_t>(result);
    if (result == 0) errno = ENOSPC;
    return result > 0;
}

#endif

}  // namespace

bool OpenFile::Close() noexcept {
    if (!IsOpen()) return true;
    FileHandle handle = std::exchange(handle_, None());
#if defined(_WIN32)
    return CloseHandle(handle) != 0;
#else
    return close(handle) == 0;
#endif
}

bool ReadSome(const OpenFile& file, void* bytes, std::size_t size, std::size_t& count) noexcept {
    const std::size_t piece = std::min(size, kLargestPiece);
#if defined(_WIN32)
    DWORD read = 0;
    const bool isRead = ReadFile(file.Get(), bytes, static_cast<DWORD>(piece), &read, nullptr) != 0;
    count = read;
    // The writer of a pipe has closed it: that is its end.
    return isRead || GetLastError() == ERROR_BROKEN_PIPE;
#else
    ssize_t result = 0;
    do {
        result = read(file.Get(), bytes, piece);
    } while (result < 0 && errno == EINTR);
    count = result < 0 ? 0 : static_cast<std::size_t>(result);
    return result >= 0;
#endif
}

bool WriteAll(const OpenFile& file, const void* bytes, std::size_t size) noexcept {
    const char* rest = static_cast<const char*>(bytes);
    while (size > 0) {
        std::size_t count = 0;
        if (!WriteSome(file.Get(), rest, std::min(size, kLargestPiece), count)) return false;
        rest += count;
        size -= count;
    }
    return true;
}

bool FlushFile(const OpenFile& file) noexcept {
#if defined(_WIN32)
    return FlushFileBuffers(file.Get()) != 0;
#else
    int result = 0;
    do {
        result = fsync(file.Get());
    } while (result != 0 && errno == EINTR);
    return result == 0;
#endif
}

}  // namespace mox
