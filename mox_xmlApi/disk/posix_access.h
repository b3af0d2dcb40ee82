// Who may do what with a file, on POSIX systems, and how a new file gets no more than that.
#ifndef MOX_XMLAPI_DISK_POSIX_ACCESS_H
#define MOX_XMLAPI_DISK_POSIX_ACCESS_H

#if !defined(_WIN32)

#include <string>
#include <string_view>
#include <sys/stat.h>

#include "mox_xmlApi/platform/open_file.h"

namespace mox::disk {

// Whether a new file has the owner and the group of the old one.
struct Kept {
    bool owner = false;
    bool group = false;
};

// The mode bits for a new file without an access-control list, so that nobody may do more with it than with an old one
// that had these mode bits and this list (as the system stores it; empty for none).
mode_t NarrowedMode(mode_t mode, std::string_view list, Kept kept) noexcept;

// Whether the list can be given to a new file of which this was kept, so that nobody gains anything.
bool IsListSafe(mode_t mode, std::string_view list, Kept kept) noexcept;

// The access of a file.
class Access {
  public:
    // Reads it from an open file. Returns false on failure; LastSystemError() says why.
    bool Read(const OpenFile& file);

    // Gives it to a new file that nobody but its owner may read or write, as far as the process is permitted and
    // nobody gains anything. Returns false on failure; LastSystemError() says why.
    bool GiveTo(const OpenFile& file) const;

  private:
    struct stat status_ {};
    std::string list_;  // as the system stores it; empty if there is none
};

// Copies the extended attributes that users have set, as far as the system permits.
void CopyUserAttributes(const OpenFile& from, const OpenFile& to);

}  // namespace mox::disk

#endif

#endif
