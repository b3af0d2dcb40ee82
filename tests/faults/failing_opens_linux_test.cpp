// Replacements in which nothing can be opened any more from some call on.
#if !defined(_WIN32)
#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "mox_xmlApi/disk/replace_file.hpp"
#include "tests/faults/failing_disk_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

TEST(FailingOpens, SayWhatCouldNotBeOpenedAndWhy) {
    const std::filesystem::path file = host::ScratchFolder() / "failing_opens.xml";
    std::vector<std::string> messages;
    bool isReplaced = false;
    for (std::uint64_t first = 1; !isReplaced && first <= 10; ++first) {
        host::WriteBytes(file, "old");
        mox::Problem problem;
        std::uint64_t opens = 0;
        {
            const WatchedFiles files([&](FileCall call) {
                return call == FileCall::Open && ++opens >= first ? Answer::Fails : Answer::Plain;
            });
            isReplaced = mox::replaceFile(file.u16string(), "new", {}, nullptr, &problem);
        }
        messages.push_back(problem.message);
        EXPECT_EQ(host::ReadBytes(file), isReplaced ? "new" : "old") << first;
    }
    // The fourth is the folder once more, to flush it. By then the file is in place.
    EXPECT_THAT(messages,
                testing::ElementsAre("cannot open the folder: Too many open files",
                                     "cannot open the file: Too many open files",
                                     "cannot create a file in the folder: Too many open files", ""));
}

}  // namespace
}  // namespace faults
#endif
