// How POSIX systems lock a file.
#include "mox_xmlApi/disk/held_lock.h"

#if !defined(_WIN32)

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <utility>

#include "mox_xmlApi/disk/posix_place.h"

namespace mox::disk {
namespace {

// Opens what has the name in the folder, for whatever is permitted. Without waiting, should it be a pipe.
OpenFile OpenForLock(const OpenFile& folder, const char* name) noexcept {
    constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    int file = -1;
    for (const int access : {O_RDONLY, O_WRONLY}) {
        do {
            file = openat(folder.Get(), name, access | kFlags);
        } while (file < 0 && errno == EINTR);
        if (file >= 0 || errno != EACCES) break;
    }
    return file < 0 ? OpenFile() : OpenFile(file);
}

}  // namespace

bool LockFile(const OpenFile& file, const Deadline& deadline) {
    constexpr std::chrono::microseconds kLongestPause{20000};
    std::chrono::microseconds pause{100};
    while (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) return true;
        if (deadline.IsOver()) return false;
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, kLongestPause);
    }
    return true;
}

Outcome HeldLock::TryToLock(const Text& path, const Deadline& deadline, Problem* problem) {
    const auto failBySystem = [&](std::string_view what) {
        FailBySystem(problem, path, Reason::ReadFailed, what, LastSystemError());
        return Outcome::Failed;
    };
    Place place;
    if (!place.Locate(path, Links::Follow, problem)) return Outcome::Failed;
    struct stat found;
    const bool isThere = place.Examine(found);
    if (!isThere && errno != ENOENT) return failBySystem("cannot examine the file");
    if (isThere && !S_ISREG(found.st_mode)) {
        FailFor(problem, path, Reason::NotRegularFile, "it is not a regular file");
        return Outcome::Failed;
    }
    file_ = OpenForLock(place.Folder(), isThere ? place.Name().c_str() : ".");
    if (!file_.IsOpen()) {
        if (errno == ENOENT || errno == ELOOP) return Outcome::Again;
        return failBySystem(isThere ? "cannot open the file" : "cannot open the folder");
    }
    if (!LockFile(file_, deadline)) {
        FailFor(problem, path, Reason::Busy, "another process has locked the file and does not release it");
        return Outcome::Failed;
    }
    // It may have been replaced or created while this process waited.
    if (!isThere) return place.Examine(found) ? Outcome::Again : Outcome::Done;
    struct stat locked;
    if (fstat(file_.Get(), &locked) != 0) return failBySystem("cannot examine the file");
    return place.IsOf(locked) ? Outcome::Done : Outcome::Again;
}

bool HeldLock::IsOn(const struct stat& file) const noexcept {
    struct stat locked;
    return file_.IsOpen() && fstat(file_.Get(), &locked) == 0 && IsSameFile(locked, file);
}

}  // namespace mox::disk

#endif
