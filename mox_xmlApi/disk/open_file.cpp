#include "mox_xmlApi/disk/open_file.h"

#include <algorithm>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <cerrno>
#include <unistd.h>
#endif

namespace mox::disk {
namespace {

// The largest count passed to one system call; some systems refuse counts above 31 bits.
constexpr std::size_t kLargestPiece = std::size_t{1} << 30;
constexpr std::size_t kSmallestPiece = std::size_t{1} << 16;

#if defined(_WIN32)

bool ReadSome(Handle file, char* bytes, std::size_t size, std::size_t& count) noexcept {
    DWORD read = 0;
    const bool isRead = ReadFile(file, bytes, static_cast<DWORD>(size), &read, nullptr) != 0;
    count = read;
    // The writer of a pipe has closed it: that is its end.
    return isRead || GetLastError() == ERROR_BROKEN_PIPE;
}

bool WriteSome(Handle file, const char* bytes, std::size_t size, std::size_t& count) noexcept {
    DWORD written = 0;
    const bool isWritten = WriteFile(file, bytes, static_cast<DWORD>(size), &written, nullptr) != 0;
    count = written;
    if (isWritten && written == 0) SetLastError(ERROR_DISK_FULL);
    return isWritten && written != 0;
}

#else

bool ReadSome(Handle file, char* bytes, std::size_t size, std::size_t& count) noexcept {
    ssize_t result = 0;
    do {
        result = read(file, bytes, size);
    } while (result < 0 && errno == EINTR);
    count = result < 0 ? 0 : static_cast<std::size_t>(result);
    return result >= 0;
}

bool WriteSome(Handle file, const char* bytes, std::size_t size, std::size_t& count) noexcept {
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

void OpenFile::Close() noexcept {
    if (!IsOpen()) return;
#if defined(_WIN32)
    CloseHandle(handle_);
#else
    close(handle_);
#endif
    handle_ = None();
}

ReadResult ReadToEnd(const OpenFile& file, std::uint64_t expected, std::uint64_t most, std::string& bytes) {
    if (expected > most) return ReadResult::TooLarge;
    const std::size_t start = bytes.size();
    // One byte more than expected, so that the end is found without another piece.
    std::size_t room = static_cast<std::size_t>(expected) + 1;
    for (std::size_t done = 0;;) {
        if (done == room) room += std::max(kSmallestPiece, room / 2);
        room = static_cast<std::size_t>(std::min<std::uint64_t>(room, most + 1));
        bytes.resize(start + room);
        std::size_t count = 0;
        const bool isRead =
            ReadSome(file.Get(), bytes.data() + start + done, std::min(room - done, kLargestPiece), count);
        done += count;
        if (!isRead || count == 0) {
            bytes.resize(start + done);
            return isRead ? ReadResult::Done : ReadResult::Failed;
        }
        if (done > most) return ReadResult::TooLarge;
    }
}

bool WriteAll(const OpenFile& file, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        std::size_t count = 0;
        if (!WriteSome(file.Get(), bytes.data(), std::min(bytes.size(), kLargestPiece), count)) return false;
        bytes.remove_prefix(count);
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

}  // namespace mox::disk
