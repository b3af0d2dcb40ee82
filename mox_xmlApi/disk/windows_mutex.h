// The lock that all who replace a file have in common. Windows.
#ifndef MOX_XMLAPI_DISK_WINDOWS_MUTEX_H
#define MOX_XMLAPI_DISK_WINDOWS_MUTEX_H

#if defined(_WIN32)

#include <string>

#include "mox_xmlApi/disk/replace_on_system.h"
#include "mox_xmlApi/platform/open_file.h"

namespace mox::disk {

// A named mutex. It belongs to the thread that has locked it, and is released when that ends.
class PathMutex {
  public:
    PathMutex() = default;
    PathMutex(const PathMutex&) = delete;
    PathMutex& operator=(const PathMutex&) = delete;
    ~PathMutex();

    // Called once. Returns false if another one has it until the deadline. If the system does not give us the mutex,
    // that counts as locked.
    bool Lock(const std::wstring& finalPath, const Deadline& deadline);

  private:
    OpenFile mutex_;
    bool isOwned_ = false;
};

}  // namespace mox::disk

#endif

#endif
