// How Windows locks a file.
#include "mox_xmlApi/disk/held_lock.h"

#if defined(_WIN32)

#include <string>

#include "mox_xmlApi/disk/windows_paths.h"
#include "mox_xmlApi/platform/windows_api.h"

namespace mox::disk {
namespace {

// The path that all who replace the file lock; of a missing file its full path.
std::wstring LockedPath(const std::wstring& path) {
    const OpenFile file = OpenExisting(path, 0, FILE_FLAG_BACKUP_SEMANTICS);
    const std::wstring final = file.IsOpen() ? FinalPath(file) : std::wstring();
    return final.empty() ? FullPath(path) : final;
}

}  // namespace

Outcome HeldLock::TryToLock(const Text& path, const Deadline& deadline, Problem* problem) {
    const std::wstring name(path.units().begin(), path.units().end());
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES && GetLastError() != ERROR_FILE_NOT_FOUND) {
        FailBySystem(problem, path, Reason::ReadFailed, "cannot examine the file", LastSystemError());
        return Outcome::Failed;
    }
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        FailFor(problem, path, Reason::NotRegularFile, "it is a folder, not a file");
        return Outcome::Failed;
    }
    const std::wstring locked = LockedPath(name);
    mutex_ = std::make_unique<PathMutex>();
    if (!mutex_->Lock(locked, deadline)) {
        FailFor(problem, path, Reason::Busy, "another process has locked the file and does not release it");
        return Outcome::Failed;
    }
    // It may have been created while this process waited, and has another path then.
    return LockedPath(name) == locked ? Outcome::Done : Outcome::Again;
}

}  // namespace mox::disk

#endif
