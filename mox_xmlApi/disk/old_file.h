// The file that is to be replaced.
#ifndef MOX_XMLAPI_DISK_OLD_FILE_H
#define MOX_XMLAPI_DISK_OLD_FILE_H

#include <string>
#include <string_view>

#include "mox_xmlApi/disk/stamp_file.h"
#include "mox_xmlApi/disk/system_problem.h"
#include "mox_xmlApi/platform/open_file.h"

namespace mox::disk {

class OldFile {
  public:
    // Takes the file over, and examines it. Without permission to read, it can only be replaced. Returns what it is.
    FileType Open(OpenFile file, bool isReadable) noexcept;

    // False if there is no file to replace.
    bool IsOpen() const noexcept { return file_.IsOpen(); }
    const OpenFile& File() const noexcept { return file_; }
    const FileStamp& Stamp() const noexcept { return stamp_; }

    void Close() noexcept { file_.Close(); }

    // Reads the file, unless that is done. Returns false on failure, and fills in the problem for `path`.
    bool Read(const Text& path, Problem* problem);
    std::string_view Bytes() const noexcept { return bytes_; }

    // Whether it has the content of the stamp, or is missing as the file of the stamp was. Null asks for nothing.
    // Otherwise fills in the problem for `path`.
    bool IsAsExpected(const FileStamp* expected, const Text& path, Problem* problem);

  private:
    OpenFile file_;
    FileStamp stamp_;
    std::string bytes_;
    bool isReadable_ = false;
    bool isRead_ = false;
};

}  // namespace mox::disk

#endif
