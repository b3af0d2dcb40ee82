// How POSIX systems lock a file.
#include "mox_xmlApi/disk/held_lock.h"

#if !defined(_WIN32)

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>

namespace mox::disk {
namespace {

// Waits for others, a little longer each time.
class Pauses {
  public:
    void Wait() {
        std::this_thread::sleep_for(next_);
        next_ = std::min(next_ * 2, kLongest);
    }

  private:
    static constexpr std::chrono::microseconds kLongest{20000};
    std::chrono::microseconds next_{100};
};

// Makes one attempt of OpenToLock.
OpenFile TryToOpen(const Place& place, const char* name, bool& isReadable) noexcept {
    const auto openFor = [&](int access) {
        // Without waiting, should it be a pipe by now.
        constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
        int opened = -1;
        do {
            opened = openat(place.Folder().Get(), name, access | kFlags);
        } while (opened < 0 && errno == EINTR);
        return opened;
    };
    int file = openFor(O_RDWR);
    // EISDIR: a folder can only be opened for reading. EWOULDBLOCK: so can a file on which somebody has a read lease.
    const bool isRefused = file < 0 && (errno == EACCES || errno == EPERM || errno == EROFS ||
                                        errno == ETXTBSY || errno == EISDIR || errno == EWOULDBLOCK);
    if (isRefused) file = openFor(O_RDONLY);
    isReadable = file >= 0;
    if (isRefused && file < 0 && errno == EACCES) file = openFor(O_WRONLY);
    return OpenFile(file);
}

}  // namespace

OpenFile OpenToLock(const Place& place, const char* name, const Deadline& deadline, bool& isReadable) {
    Pauses pauses;
    for (;;) {
        OpenFile file = TryToOpen(place, name, isReadable);
        const int error = errno;
        const bool isLeased = !file.IsOpen() && error == EWOULDBLOCK;
        if (!isLeased || deadline.IsOver()) {
            errno = error;
            return file;
        }
        pauses.Wait();
    }
}

bool LockFile(const OpenFile& file, const Deadline& deadline) {
    Pauses pauses;
    while (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) return true;
        if (deadline.IsOver()) return false;
        pauses.Wait();
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
    bool isReadable = false;
    file_ = OpenToLock(place, isThere ? place.Name().c_str() : ".", deadline, isReadable);
    if (!file_.IsOpen()) {
        if (errno == EWOULDBLOCK) {
            FailFor(problem, path, Reason::Busy,
                    "another process has a lease on the file and does not give it up");
            return Outcome::Failed;
        }
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
    switch (place.Compare(locked)) {
        case Same::Yes:
            return Outcome::Done;
        case Same::No:
            return Outcome::Again;
        case Same::Unknown:
            break;
    }
    return failBySystem("cannot examine the file");
}

bool HeldLock::IsOn(const struct stat& file) const noexcept {
    struct stat locked;
    return file_.IsOpen() && fstat(file_.Get(), &locked) == 0 && IsSameFile(locked, file);
}

}  // namespace mox::disk

#endif
