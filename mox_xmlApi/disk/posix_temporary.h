// The temporary file that becomes the new file. POSIX systems.
#ifndef MOX_XMLAPI_DISK_POSIX_TEMPORARY_H
#define MOX_XMLAPI_DISK_POSIX_TEMPORARY_H

#if !defined(_WIN32)

#include <string>
#include <string_view>
#include <sys/stat.h>

#include "mox_xmlApi/disk/posix_place.h"
#include "mox_xmlApi/platform/open_file.h"

namespace mox::disk {

// A new file beside the one that it is to replace. It is written through the descriptor that created it. Its destructor
// removes it unless it has been renamed; it stays only if the system cannot remove it.
class TemporaryFile {
  public:
    // The place outlives this object.
    explicit TemporaryFile(const Place& target) noexcept : target_(target) {}
    ~TemporaryFile() { Remove(); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // Creates the file with these mode bits, less the umask. Returns false on failure; errno says why.
    bool Create(mode_t mode);

    const OpenFile& File() const noexcept { return file_; }

    // Whether its name in the folder still is that of the file that was created, and its only name. If it is unknown,
    // errno says why.
    Same IsInPlace() const noexcept { return Compare(name_, 1); }

    // Renames it to the target's name, which is replaced. Returns false on failure; errno says why.
    bool RenameOver() noexcept;
    // Renames it only if nothing has that name (otherwise errno is EEXIST).
    bool RenameToNew() noexcept;

    // After the renaming: the same for the target's name.
    Same IsTarget() const noexcept { return Compare(target_.Name(), name_.empty() ? 1 : 2); }

  private:
    // Whether the name is that of the file that was created, which has so many names.
    Same Compare(const std::string& name, nlink_t links) const noexcept;
    void Remove() noexcept;

    const Place& target_;
    OpenFile file_;
    struct stat own_ {};
    std::string name_;  // empty if nothing has the temporary name any more
};

}  // namespace mox::disk

#endif

#endif
