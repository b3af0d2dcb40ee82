// Replaces a file so that at any time it is the old one or the new one, whole: a crash, a full disk or a process that
// is killed leaves no half of a file.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
// The new file is written under a name of its own in the same folder, flushed to the disk, and renamed over the old
// one. So the folder must be writable, and there must be room for both. In detail:
//
// - Links: the file that a symbolic link leads to is replaced, and the link stays. Other hard links to the old file
//   keep the old content.
// - Rights: an existing file keeps its mode bits and, as far as the process may say so, its owner and group; on Windows
//   its attributes, while access rights are those that the folder gives to a new file. A new file gets what every new
//   file gets.
// - A file that the process may not write, or that is no regular file, is not replaced.
// - After a failure the old file is as it was, and the temporary file is gone. Only a process that dies leaves it
//   behind: ".mox-<number>-<number>.tmp" in the folder of the file.
// - After the renaming the folder is flushed, too, where the system can do that. A failure of that is no failure: the
//   new file is in place.
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

// A file name that no other thread of this process, and most likely no other process, uses. Who makes the file must
// still see that it is new.
inline std::string TemporaryName() {
    static std::atomic<std::uint32_t> number{0};
    std::string name(".mox-");
    name.append(std::to_string(ProcessNumber())).append("-").append(std::to_string(++number)).append(".tmp");
    return name;
}

// Gives a temporary file up again unless it took its place.
class TemporaryFileGuard {
  public:
    explicit TemporaryFileGuard(TemporaryFile& file) noexcept : file_(file) {}
    ~TemporaryFileGuard() { file_.Discard(); }
    TemporaryFileGuard(const TemporaryFileGuard&) = delete;
    TemporaryFileGuard& operator=(const TemporaryFileGuard&) = delete;

  private:
    TemporaryFile& file_;
};

// Replaces the file at `path`, or makes it. `write(temporary)` has to write the new content to the file of that name,
// which exists and is empty, and to return whether it could. Returns whether the new file is in place. What `write`
// throws passes through, and is a failure.
template <class Write>
bool ReplaceWholeFile(const Text& path, Write write) {
    if (!path.isValid() || path.units().empty()) return false;
    constexpr int kMostTries = 1000;  // each name that is taken already costs one
    TemporaryFile file;
    const TemporaryFileGuard guard(file);
    if (!file.Find(path.units())) return false;
    int tries = 0;
    while (!file.Create(TemporaryName())) {
        if (!file.IsNameTaken() || ++tries == kMostTries) return false;
    }
    const Text temporary(file.Path());
    return temporary.isValid() && write(temporary.c_str()) && file.TakePlace();
}

}  // namespace mox::front

#endif
