// A file that is open, and what all that works with one needs of the system.
#ifndef MOX_XMLAPI_PLATFORM_OPEN_FILE_H
#define MOX_XMLAPI_PLATFORM_OPEN_FILE_H

#include <cstddef>
#include <cstdint>
#include <utility>

namespace mox {

// A descriptor, or a HANDLE on Windows; both have -1 for none.
#if defined(_WIN32)
using FileHandle = void*;
#else
using FileHandle = int;
#endif

// Owns a handle of the system and closes it.
class OpenFile {
  public:
    OpenFile() noexcept = default;
    explicit OpenFile(FileHandle handle) noexcept : handle_(handle) {}
    OpenFile(OpenFile&& other) noexcept : handle_(std::exchange(other.handle_, None())) {}
    OpenFile& operator=(OpenFile&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() { Close(); }

    bool IsOpen() const noexcept { return handle_ != None(); }
    FileHandle Get() const noexcept { return handle_; }

    // Closes the file, unless it is not open. Returns false if the system reports an error; it is closed all the same.
    bool Close() noexcept;

  private:
#if defined(_WIN32)
    static FileHandle None() noexcept {
        return reinterpret_cast<FileHandle>(std::intptr_t{-1});
    }
#else
    static FileHandle None() noexcept {
        return -1;
    }
#endif

    FileHandle handle_ = None();
};

// The functions below return false on failure; errno, or GetLastError() on Windows, says why. A signal is no failure.

// Reads at most `size` bytes from the present position into `bytes`, and sets `count` to their number, which is 0 at
// the end of the file.
bool ReadSome(const OpenFile& file, void* bytes, std::size_t size, std::size_t& count) noexcept;

// Writes all the bytes at the present position. On failure a part of them may have been written.
bool WriteAll(const OpenFile& file, const void* bytes, std::size_t size) noexcept;

// Flushes the file to the disk.
bool FlushFile(const OpenFile& file) noexcept;

}  // namespace mox

#endif
