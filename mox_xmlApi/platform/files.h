// Whole files, addressed by 16-bit paths, byte for byte.
//
// A path is zero-terminated. A null path cannot be opened, nor can one that the system cannot express: where paths are
// 8-bit, one with an unpaired surrogate.
#ifndef MOX_XMLAPI_PLATFORM_FILES_H
#define MOX_XMLAPI_PLATFORM_FILES_H

#include <cstddef>
#include <cstdint>

#include "mox_xmlApi/platform/open_file.h"
#include "mox_xmlApi/platform/wchar16.h"

namespace mox {

// A file open for reading, closed by its destructor. Other processes may read, write and delete it meanwhile.
class InputFile {
  public:
    // Opens the file; IsOpen says whether that succeeded. Throws std::bad_alloc while converting the path.
    explicit InputFile(const wchar16* path);

    bool IsOpen() const noexcept { return file_.IsOpen(); }

    // The present size of a regular file in bytes, as a hint for the size of a buffer. 0 for pipes, devices, folders
    // and a file that is not open.
    std::uint64_t SizeHint() const noexcept;

    // Reads until `size` bytes are in the buffer or the file ends. Returns the number of bytes read: fewer than
    // `size` only at the end of the file, after an error (see Failed) or when the file is not open.
    std::size_t Read(void* buffer, std::size_t size) noexcept;

    // Whether a read failed. On some systems a folder can be opened, and the first read of it fails.
    bool Failed() const noexcept { return failed_; }

  private:
    OpenFile file_;
    bool failed_ = false;
};

// A file open for writing, created or truncated; closed by its destructor at the latest.
class OutputFile {
  public:
    // Opens the file. On failure the file is unchanged, and every write fails. Throws std::bad_alloc while converting
    // the path; the file is then unchanged.
    explicit OutputFile(const wchar16* path);

    // Appends `size` bytes. Returns false when not all of them could be written; the file then holds a prefix of what
    // it should hold.
    bool Write(const void* bytes, std::size_t size) noexcept;

    // Closes the file. Returns true only when opening, every write and closing succeeded.
    bool Close() noexcept;

  private:
    OpenFile file_;
    bool failed_ = false;
};

}  // namespace mox

#endif
