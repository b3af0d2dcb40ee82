// What a process does to files, in the order in which it does it. Linux only.
#ifndef MOX_XMLAPI_TESTS_FAULTS_RECORDED_DISK_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_RECORDED_DISK_SUPPORT_H

#if !defined(_WIN32)

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace faults {

// Device and number. A number is given again to another file when its file is gone.
using FileNumber = std::pair<std::uint64_t, std::uint64_t>;

FileNumber NumberOf(int file);

// One successful call of the system, or the return of a call of the library.
struct Operation {
    enum class Kind { Create, Write, SetMode, Flush, FlushAll, Rename, Link, Remove, Return };

    Kind kind = Kind::Return;
    FileNumber file{};    // Create, Write, SetMode, Flush: which file; Flush of a folder: which folder
    FileNumber folder{};  // Create, Rename, Link, Remove: where the names are
    std::string name{};   // the name in it
    std::string to{};     // Rename, Link: the new name in it
    std::size_t offset = 0;
    std::string bytes{};  // Write: what is written at the offset
    mode_t mode = 0;      // Create, SetMode
};

std::string Describe(const Operation& operation);

// While one lives, what this process does to files is recorded. One at a time.
class RecordedFiles {
  public:
    RecordedFiles();
    ~RecordedFiles();
    RecordedFiles(const RecordedFiles&) = delete;
    RecordedFiles& operator=(const RecordedFiles&) = delete;

    const std::vector<Operation>& Operations() const;
};

bool IsRecording();
// Adds to the record, if there is one. Operations take memory, which other tests let fail: so where it matters, ask first.
void Record(Operation operation);

}  // namespace faults

#endif

#endif
