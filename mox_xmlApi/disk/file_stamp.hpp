// FileStamp, which tells whether a file is still the one that was read.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_DISK_FILE_STAMP_HPP
#define MOX_XMLAPI_DISK_FILE_STAMP_HPP

#include <cstdint>

namespace mox {

// The state of a file at one moment: which file it was, and what it contained. The default is that of a missing file.
//
// The hash makes changes visible that leave size and time as they were, as a change within one tick of the clock does.
// It finds changes that happen, not changes that somebody has constructed to have the same hash.
struct FileStamp {
    bool exists = false;
    std::uint64_t device = 0;  // the file system, or the serial number of the volume on Windows
    std::uint64_t file = 0;    // the number of the file in it; with `device` it identifies the file
    std::uint64_t size = 0;    // in bytes
    std::int64_t time =
        0;  // of the last change: nanoseconds since 1970, or 100 of them since 1601 on Windows
    std::uint64_t hash[2] = {};  // of the content

    // Whether both files were missing, or had the same content. They need not be the same file.
    bool hasContentOf(const FileStamp& other) const noexcept {
        return exists == other.exists && size == other.size && hash[0] == other.hash[0] &&
               hash[1] == other.hash[1];
    }

    // Whether both are of one file in one state.
    friend bool operator==(const FileStamp& left, const FileStamp& right) noexcept {
        return left.hasContentOf(right) && left.device == right.device && left.file == right.file &&
               left.time == right.time;
    }
    friend bool operator!=(const FileStamp& left, const FileStamp& right) noexcept {
        return !(left == right);
    }
};

}  // namespace mox

#endif
