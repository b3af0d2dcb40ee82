// A name in a folder that is open, so that nobody can exchange the folders above it any more. POSIX systems.
#ifndef MOX_XMLAPI_DISK_POSIX_PLACE_H
#define MOX_XMLAPI_DISK_POSIX_PLACE_H

#if !defined(_WIN32)

#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <utility>

#include "mox_xmlApi/disk/system_problem.h"
#include "mox_xmlApi/platform/open_file.h"

namespace mox::disk {

// Whether both are of the same file.
inline bool IsSameFile(const struct stat& left, const struct stat& right) noexcept {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

enum class Links { Follow, Keep };

// Whether a name is that of a file.
enum class Same : std::uint8_t {
    Yes,
    No,       // another file has it, or none
    Unknown,  // the system does not tell
};

class Place {
  public:
    // Opens the folder of the path. With Links::Follow, a symbolic link there is followed, unless it belongs to somebody
    // who may not decide which file is meant; the file that it refers to need not exist. Returns false on failure, and
    // fills in the problem for `path`.
    bool Locate(const Text& path, Links links, Problem* problem);

    const OpenFile& Folder() const noexcept { return folder_; }
    const std::string& Name() const noexcept { return name_; }

    // What has that name now, a link as itself. Returns false on failure; errno says why.
    bool Examine(struct stat& status) const noexcept;

    // Whether the name is that of the file. If it is unknown, errno says why.
    Same Compare(const struct stat& file) const noexcept;

    // Flushes the folder. `inFolder` is a file in it: where the process may not read the folder, all of the file system
    // is flushed by means of that. Returns false if that failed (errno says why); not all file systems can flush a
    // folder, which is no failure.
    bool Flush(const OpenFile& inFolder) const noexcept;

  private:
    bool Enter(const OpenFile* from, std::string_view path);
    bool ReadLink(std::string& target) const;

    OpenFile folder_;
    std::string name_;
};

}  // namespace mox::disk

#endif

#endif
