// What the tests of files as a whole share.
#ifndef MOX_XMLAPI_TESTS_DISK_DISK_SUPPORT_H
#define MOX_XMLAPI_TESTS_DISK_DISK_SUPPORT_H

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/front/front_support.h"

namespace disk_tests {

using front_tests::ScratchFolder;

// The reason why the file is not replaced; None if it is.
inline mox::Reason ReasonFor(const std::filesystem::path& file, std::string_view bytes,
                             const mox::ReplaceOptions& options = {}) {
    mox::Problem problem;
    const bool isReplaced = mox::replaceFile(file.u16string(), bytes, options, nullptr, &problem);
    EXPECT_EQ(isReplaced, !problem) << problem.toString();
    return problem.reason;
}

// Reads a file that can be read, and its stamp.
inline mox::FileStamp StampOf(const std::filesystem::path& file) {
    mox::FileStamp stamp;
    mox::Problem problem;
    EXPECT_TRUE(mox::readFile(file.u16string(), &stamp, &problem).has_value()) << problem.toString();
    return stamp;
}

// Replaces the file only if it is the one of the stamp, which must outlive the options.
inline mox::ReplaceOptions OnlyIf(const mox::FileStamp& stamp) {
    mox::ReplaceOptions options;
    options.onlyIf = &stamp;
    return options;
}

inline mox::ReplaceOptions WithBackup(const std::filesystem::path& backup) {
    mox::ReplaceOptions options;
    options.backup = mox::Text(backup.u16string());
    return options;
}

#if !defined(_WIN32)

inline mode_t ModeOf(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

// How many files this process has open.
inline std::ptrdiff_t CountOpen() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

#endif

}  // namespace disk_tests

#endif
