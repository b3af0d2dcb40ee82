// What a FileLock holds.
#ifndef MOX_XMLAPI_DISK_HELD_LOCK_H
#define MOX_XMLAPI_DISK_HELD_LOCK_H

#include "mox_xmlApi/disk/replace_on_system.h"
#include "mox_xmlApi/disk/system_problem.h"
#include "mox_xmlApi/platform/open_file.h"
#if defined(_WIN32)
#include <memory>

#include "mox_xmlApi/disk/windows_mutex.h"
#else
#include <sys/stat.h>

#include "mox_xmlApi/disk/posix_place.h"
#endif

namespace mox::disk {

class HeldLock {
  public:
    // Makes one attempt to lock the file at the path, which is valid and not empty; on an object that holds nothing yet.
    Outcome TryToLock(const Text& path, const Deadline& deadline, Problem* problem);

#if !defined(_WIN32)
    // Whether this is the lock on that file.
    bool IsOn(const struct stat& file) const noexcept;
#endif

  private:
#if defined(_WIN32)
    std::unique_ptr<PathMutex> mutex_;
#else
    OpenFile file_;  // or the folder
#endif
};

#if !defined(_WIN32)
// Opens the file of that name in the folder of the place: for writing if possible, because network file systems grant an
// exclusive lock only then. `isReadable` is set to whether it can be read. If another process has a lease on the file,
// the first attempt asks it to give that up, and others follow until the deadline. Not open on failure; errno says why.
OpenFile OpenToLock(const Place& place, const char* name, const Deadline& deadline, bool& isReadable);

// Locks the file against all others that lock it in this way, as long as it is open. Returns false if another one has
// it until the deadline. A file system without such locks counts as locked.
bool LockFile(const OpenFile& file, const Deadline& deadline);
#endif

}  // namespace mox::disk

#endif
