// The temporary file that becomes the new file. Windows.
#ifndef MOX_XMLAPI_DISK_WINDOWS_TEMPORARY_H
#define MOX_XMLAPI_DISK_WINDOWS_TEMPORARY_H

#if defined(_WIN32)

#include <cstdint>
#include <string>

#include "mox_xmlApi/platform/open_file.h"

namespace mox::disk {

// A new file beside the one that it is to replace. As long as it is open nobody else can write to it, rename or remove
// it: so its name always is its own. Its destructor removes it unless it has been renamed.
class TemporaryFile {
  public:
    TemporaryFile() = default;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    // Creates it in the folder of the target, with these attributes (0 for none) and access rights (a security
    // descriptor; null for the folder's defaults). What is done by its handle, the renaming too, is written to the disk
    // at once. Returns false on failure; LastSystemError() says why.
    bool Create(const std::wstring& target, std::uint32_t attributes, void* security);

    const OpenFile& File() const noexcept { return file_; }

    // Renames it to the target, in one step. ReplaceFileW would move the old file away first: a process that ends in
    // between would leave no file of that name. Returns false on failure; LastSystemError() says why.
    bool Rename(const std::wstring& target, bool replaces);

  private:
    OpenFile file_;
    bool isRenamed_ = false;
};

}  // namespace mox::disk

#endif

#endif
