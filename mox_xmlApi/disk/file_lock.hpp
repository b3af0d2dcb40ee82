// FileLock, with which programs wait for each other from reading a file to replacing it.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
//     mox::Problem problem;
//     const auto lock = mox::FileLock::acquire("camera.xml", std::chrono::seconds(10), &problem);
//     if (!lock) return 1;  // problem says why
//     mox::FileStamp stamp;
//     const auto bytes = mox::readFile("camera.xml", &stamp);
//     ...
//     mox::ReplaceOptions options;
//     options.onlyIf = &stamp;
//     options.lock = &*lock;
//     mox::replaceFile("camera.xml", newBytes, options);
#ifndef MOX_XMLAPI_DISK_FILE_LOCK_HPP
#define MOX_XMLAPI_DISK_FILE_LOCK_HPP

#include <chrono>
#include <memory>
#include <optional>

#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox {

namespace disk {
class HeldLock;
}  // namespace disk

// The lock that replaceFile takes while it replaces a file, held for longer. As long as this object exists, no other
// process gets the lock of the file, and replaceFile replaces it only with ReplaceOptions::lock. Programs that use
// neither are not kept from anything.
//
// The lock of a missing file keeps out other FileLocks only: replaceFile does not take it, and creates the file
// nevertheless. So a program that has found no file passes the stamp of the missing file as ReplaceOptions::onlyIf.
//
// The lock ends with this object or with the process, and leaves nothing on the disk. After the file was replaced or
// created, another process may lock the new one, even before this object is destroyed. On a file system without locks,
// acquire succeeds, and nobody is locked out.
//
// On POSIX systems it is flock on the file or, if that is missing, on its folder: all missing files of a folder have one
// lock. A second acquire of the same lock in the same program fails with Busy, too. On Windows it is a named mutex,
// which belongs to the thread that has acquired it: the object must be destroyed by that thread, which can acquire the
// same lock again.
class FileLock {
  public:
    // Locks the file at `path`, which may be missing; links are followed. Waits up to `patience` for others; zero or
    // less tries once. `problem` may be null.
    //
    // Returns nullopt on failure; the reason is InvalidText, NotFound (of the folder), NoPermission, NotRegularFile,
    // ReadFailed, WriteFailed (of finding the folder or following a link), or Busy if another process did not release
    // the lock in time or has a lease on the file. Throws std::bad_alloc.
    static std::optional<FileLock> acquire(const Text& path, std::chrono::milliseconds patience,
                                           Problem* problem = nullptr);

    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&& other) noexcept;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();

    // For replaceFile. Null if the object was moved from.
    const disk::HeldLock* held() const noexcept { return held_.get(); }

  private:
    explicit FileLock(std::unique_ptr<disk::HeldLock> held) noexcept;

    std::unique_ptr<disk::HeldLock> held_;
};

}  // namespace mox

#endif
