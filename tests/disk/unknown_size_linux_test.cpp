// Files that are longer than the system says beforehand.
#if defined(__linux__)
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/resource.h>

#include "mox_xmlApi/disk/read_file.hpp"

namespace disk_tests {
namespace {

// The most memory that the process has had, in KiB.
long MostMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(ReadFileOfUnknownSize, TakesNoMoreMemoryThanItNeeds) {
    const long before = MostMemory();
    mox::Problem problem;
    const std::optional<std::string> bytes = mox::readFile("/proc/self/smaps", nullptr, &problem);
    ASSERT_TRUE(bytes.has_value()) << problem.toString();
    EXPECT_GT(bytes->size(), 1000U);
    EXPECT_EQ(bytes->back(), '\n');
    EXPECT_LT(MostMemory() - before, 64 * 1024);
}

}  // namespace
}  // namespace disk_tests
#endif
