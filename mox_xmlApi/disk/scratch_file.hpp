// ScratchFile, a private file through which bytes go to functions that read and write files by their names.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_DISK_SCRATCH_FILE_HPP
#define MOX_XMLAPI_DISK_SCRATCH_FILE_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox {

// An empty file that no other user can read or write, and that is gone when this object is destroyed. On Linux it is in
// memory alone. Elsewhere, and where that is not possible, it is in a folder of its own in the folder for temporary
// files; on Windows that folder is the user's, and the file is in it. It is left behind only if the process ends midway
// or the system cannot remove it: "mox-<...>" in the folder for temporary files.
class ScratchFile {
  public:
    // nullopt on failure; the reason is NotFound (of the folder for temporary files), InvalidText (of its name),
    // NoPermission or WriteFailed. Throws std::bad_alloc.
    static std::optional<ScratchFile> create(Problem* problem = nullptr);

    ScratchFile(ScratchFile&& other) noexcept;
    ScratchFile& operator=(ScratchFile&& other) noexcept;
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile();

    // The name by which this process can open the file, for reading and for writing. Valid as long as this object
    // exists and is neither moved from nor assigned to.
    const wchar16* path() const noexcept { return path_.c_str(); }

    // Replaces what the file contains. Returns false on failure (WriteFailed); the content is then unspecified.
    bool write(std::string_view bytes, Problem* problem = nullptr);

    // What the file contains; nullopt on failure (ReadFailed, TooLarge).
    std::optional<std::string> read(Problem* problem = nullptr) const;

  private:
    ScratchFile() = default;

    bool CreateInMemory();
    bool CreateInFolder(Problem* problem);
    void Remove() noexcept;

    front::Units path_;
    std::string folder_;  // of its own; empty if it has none
    int memory_ = -1;     // the descriptor of a file in memory
};

}  // namespace mox

#endif
