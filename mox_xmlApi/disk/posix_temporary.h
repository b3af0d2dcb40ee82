// The temporary file that becomes the new file. POSIX systems.
#ifndef MOX_XMLAPI_DISK_POSIX_TEMPORARY_H
#define MOX_XMLAPI_DISK_POSIX_TEMPORARY_H

#if !defined(_WIN32)

#include <string>
#include <string_view>
#include <sys/stat.h>

#include "mox_xmlApi/platform/open_file.h"
#include "mox_xmlApi/disk/posix_place.h"

namespace mox::disk {

// A new file beside the one that it is to replace. It is written through the descriptor that created it. Its destructor
// removes it unless it has been renamed.
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

    // Whether its name in the folder still is that of the file that was created, and its only name.
    bool IsInPlace() noexcept { return fstat(file_.Get(), &own_) == 0 && IsAt(name_); }

    // Renames it to the target's name, which is replaced. Returns false on failure; errno says why.
    bool RenameOver() noexcept;
    // Renames it only if nothing has that name (otherwise errno is EEXIST).
    bool RenameToNew() noexcept;

    // After IsInPlace and the renaming: whether the target's name is that of the file that was created.
    bool IsTarget() const noexcept { return IsAt(target_.Name()); }

  private:
    bool IsAt(const std::string& name) const noexcept;
    void Remove() noexcept;

    const Place& target_;
    OpenFile file_;
    struct stat own_ {};
    std::string name_;  // empty if there is no temporary file any more
};

}  // namespace mox::disk

#endif

#endif
