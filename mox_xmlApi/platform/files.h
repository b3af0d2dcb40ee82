// Whole files, addressed by 16-bit paths, byte for byte.
//
// A path is zero-terminated. Null, and a path that the system cannot express (on systems with 8-bit paths one
// with a surrogate that has no partner), stands for a file that cannot be opened.
#ifndef MOX_XMLAPI_PLATFORM_FILES_H
#define MOX_XMLAPI_PLATFORM_FILES_H

#include <cstddef>
#include <cstdint>

#include "mox_xmlApi/platform/wchar16.h"

namespace mox {

#if defined(_WIN32)
using FileHandle = void*;
inline constexpr FileHandle kNoFile = nullptr;
#else
using FileHandle = int;
inline constexpr FileHandle kNoFile = -1;
#endif

// A file open for reading; closed by its destructor. Others may read, write and delete it meanwhile.
class InputFile {
  public:
    // Opens the file; IsOpen tells whether it could. Throws std::bad_alloc while converting the path.
    explicit InputFile(const wchar16* path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool IsOpen() const noexcept { return handle_ != kNoFile; }

    // How many bytes a regular file has at present, a hint for the size of a buffer. 0 for pipes, devices,
    // folders and a file that is not open.
    std::uint64_t SizeHint() const noexcept;

    // Reads on until `size` bytes are in the buffer or the file ends. Returns how many there are: fewer than
    // `size` only at the end, after an error (see Failed) or when the file is not open.
    std::size_t Read(void* buffer, std::size_t size) noexcept;

    // Whether a read was stopped by an error. On some systems a folder can be opened, and fails only here.
    bool Failed() const noexcept { return failed_; }

  private:
    FileHandle handle_ = kNoFile;
    bool failed_ = false;
};

// A file made for writing, or emptied if it existed; closed by its destructor at the latest.
class OutputFile {
  public:
    // Opens the file. When that is not possible, it is as it was, and every write fails.
    // Throws std::bad_alloc while converting the path; the file is as it was then.
    explicit OutputFile(const wchar16* path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Appends `size` bytes. Returns false when not all of them could be written; the file then holds some
    // first part of what was to be in it.
    bool Write(const void* bytes, std::size_t size) noexcept;

    // Closes the file. Returns true only when it was opened, and every write and the closing went without an
    // error.
    bool Close() noexcept;

  private:
    FileHandle handle_ = kNoFile;
    bool failed_ = false;
};

}  // namespace mox

#endif
