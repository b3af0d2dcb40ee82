// Who may do what with a file, on Windows, as the system describes it.
#ifndef MOX_XMLAPI_DISK_WINDOWS_ACCESS_H
#define MOX_XMLAPI_DISK_WINDOWS_ACCESS_H

#if defined(_WIN32)

#include <cstdint>
#include <string>

#include "mox_xmlApi/platform/open_file.h"

namespace mox::disk {

// The access of a file.
class Access {
  public:
    // Reads it from a file that was opened for that. Returns false on failure; LastSystemError() says why.
    bool Read(const OpenFile& file);

    // For the creation of a file, so that it never has more than these rights: a security descriptor.
    void* ForNewFile() noexcept { return rights_.data(); }

    // Gives exactly these rights to the file, which at its creation may have got some of its folder, too, and the owner
    // and the group if that is permitted. Returns false on failure; LastSystemError() says why.
    bool GiveTo(const OpenFile& file);

  private:
    static bool Get(const OpenFile& file, std::uint32_t what, std::string& description);

    std::string owner_;  // and group; empty if not known
    std::string rights_;
};

}  // namespace mox::disk

#endif

#endif
