// The calls of the system that the library makes for its files, answered as a disk in trouble would.
//
// On Linux this program has its own open, openat, fstat, read, write, fsync, renameat, renameat2, memfd_create and close,
// through which those of the library's objects go. On Windows the imports of this program are exchanged.
#ifndef MOX_XMLAPI_TESTS_FAULTS_FAILING_DISK_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_FAILING_DISK_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>

namespace faults {

enum class FileCall { Open, Size, Read, Write, Flush, Rename, Close, MakeInMemory };

enum class Answer {
    Plain,        // what the system says
    Fails,        // an error of the device; a file is closed all the same
    Interrupted,  // a signal came first; Linux only
    Unsupported,  // the file system cannot do that; Linux only
};

// While one lives, the rule is asked before each call how it is to be answered. One at a time.
class WatchedFiles {
  public:
    using Rule = std::function<Answer(FileCall call)>;

    // Each read and write moves at most `most` bytes.
    explicit WatchedFiles(Rule rule, std::size_t most = std::numeric_limits<std::size_t>::max());
    ~WatchedFiles();
    WatchedFiles(const WatchedFiles&) = delete;
    WatchedFiles& operator=(const WatchedFiles&) = delete;
};

// How many files and other things of the system this process has open.
std::uint64_t OpenHandles();

}  // namespace faults

#endif
