// What kind of file an open file is, and which one.
#ifndef MOX_XMLAPI_DISK_STAMP_FILE_H
#define MOX_XMLAPI_DISK_STAMP_FILE_H

#include <cstdint>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/platform/open_file.h"

namespace mox::disk {

enum class FileType : std::uint8_t {
    Regular,
    Folder,
    Disk,     // a block device
    Stream,   // a pipe, a terminal or another character device, a socket
    Unknown,  // the system does not tell; LastSystemError() says why
};

// Examines the file. Of a regular one, sets what identifies it, its size and its time in `stamp`, which is otherwise
// left as it is.
FileType StampFile(const OpenFile& file, FileStamp& stamp) noexcept;

}  // namespace mox::disk

#endif
