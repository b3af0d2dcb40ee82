// A file that is open, and what all that works with one needs of the system.
#ifndef MOX_XMLAPI_DISK_OPEN_FILE_H
#define MOX_XMLAPI_DISK_OPEN_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/disk/system_problem.h"

namespace mox::disk {

// A descriptor, or a HANDLE on Windows; both have -1 for none.
#if defined(_WIN32)
using Handle = void*;
#else
using Handle = int;
#endif

// Owns a handle of the system and closes it.
class OpenFile {
  public:
    OpenFile() noexcept = default;
    explicit OpenFile(Handle handle) noexcept : handle_(handle) {}
    OpenFile(OpenFile&& other) noexcept : handle_(std::exchange(other.handle_, None())) {}
    OpenFile& operator=(OpenFile&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() { Close(); }

    bool IsOpen() const noexcept { return handle_ != None(); }
    Handle Get() const noexcept { return handle_; }

    void Close() noexcept;

  private:
#if defined(_WIN32)
    static Handle None() noexcept {
        return reinterpret_cast<Handle>(std::intptr_t{-1});
    }
#else
    static Handle None() noexcept {
        return -1;
    }
#endif

    Handle handle_ = None();
};

enum class ReadResult { Done, TooLarge, Failed };

// Appends what the file has from its present position to its end, at most `most` bytes, to `bytes`. `expected` is how
// many bytes it probably has. If it failed, LastSystemError() says why.
ReadResult ReadToEnd(const OpenFile& file, std::uint64_t expected, std::uint64_t most, std::string& bytes);

// Writes the bytes at the present position. Returns false on failure; LastSystemError() says why.
bool WriteAll(const OpenFile& file, std::string_view bytes) noexcept;

// Flushes the file to the disk. Returns false on failure; LastSystemError() says why.
bool FlushFile(const OpenFile& file) noexcept;

}  // namespace mox::disk

#endif
