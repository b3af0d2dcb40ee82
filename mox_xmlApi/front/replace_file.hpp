// Replaces a file atomically: after a crash, a full disk or the end of the process, it is the whole old file or the
// whole new one.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
// The new content is written to a temporary file in the same folder, which is flushed to the disk and renamed to the
// name of the old file. So the folder must be writable, and the disk must have room for both. In detail:
//
// - A symbolic link stays, and the file that it refers to is replaced. Other hard links to the old file keep the old
//   content.
// - An existing file keeps its mode bits and, as far as the process is permitted to set them, its owner and group. On
//   Windows it keeps its attributes, but gets the access rights that the folder gives to a new file. A new file gets
//   the defaults of the system.
// - A file that the process may not write, or that is not a regular file, is not replaced.
// - After a failure the old file is unchanged and the temporary file is removed. Only if the process ends in the middle
//   does it stay: ".mox-<number>-<number>.tmp" in the folder of the file.
// - On POSIX systems the folder is flushed after the renaming. An error of that is ignored, because the new file is in
//   place.
#ifndef MOX_XMLAPI_FRONT_REPLACE_FILE_HPP
#define MOX_XMLAPI_FRONT_REPLACE_FILE_HPP

#include <atomic>
#include <cstdint>
#include <string>

#include "mox_xmlApi/front/text.hpp"
#if defined(_WIN32)
#include "mox_xmlApi/front/replace_file_windows.hpp"
#else
#include "mox_xmlApi/front/replace_file_posix.hpp"
#endif

namespace mox::front {

// Returns a file name that no other thread of this process uses, and most likely no other process. The caller still has
// to check that the file is new.
inline std::string TemporaryName() {
    static std::atomic<std::uint32_t> number{0};
    std::string name(".mox-");
    name.append(std::to_string(ProcessNumber())).append("-").append(std::to_string(++number)).append(".tmp");
    return name;
}

// Removes a temporary file at the end of the scope, unless it has replaced its target.
class TemporaryFileGuard {
  public:
    explicit TemporaryFileGuard(TemporaryFile& file) noexcept : file_(file) {}
    ~TemporaryFileGuard() { file_.Discard(); }
    TemporaryFileGuard(const TemporaryFileGuard&) = delete;
    TemporaryFileGuard& operator=(const TemporaryFileGuard&) = delete;

  private:
    TemporaryFile& file_;
};

// Replaces the file at `path`, or creates it. `write(temporary)` has to write the new content to the file of that name,
// which exists and is empty, and to return whether that succeeded. Returns whether the new file is in place. What
// `write` throws passes through, and the old file is unchanged.
template <class Write>
bool ReplaceWholeFile(const Text& path, Write write) {
    if (!path.isValid() || path.units().empty()) return false;
    constexpr int kMaxTries = 1000;  // each name that exists already costs one
    TemporaryFile file;
    const TemporaryFileGuard guard(file);
    if (!file.SetTarget(path.units())) return false;
    int tries = 0;
    while (!file.Create(TemporaryName())) {
        if (!file.IsNameTaken() || ++tries == kMaxTries) return false;
    }
    const Text temporary(file.Path());
    return temporary.isValid() && write(temporary.c_str()) && file.ReplaceTarget();
}

}  // namespace mox::front

#endif
