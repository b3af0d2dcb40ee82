// Every system and every build gives the same answers and writes the same bytes. The list below was made on Linux. It
// changes only when the sequences change, because calls or arguments are added to them. The test prints the new one.
#include <array>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/host/random_calls/run_support.h"

namespace host {
namespace {

constexpr std::uint64_t kSequencesPerDigest = 25;

// The digest of the sequences 1 to 25, that of 26 to 50, and so on.
constexpr std::array<std::uint64_t, 10> kDigests = {
    0x6E09F0DE7EB0DE6E, 0xC1E80ABB9BE6B610, 0xEF41684C93B52A2A, 0xEFBE9065BEFDD067, 0xFFBA8AAE8D0A0FEF,
    0xF363C23D9DFBC2C2, 0xAE23570AB53092F7, 0x7469D27D6B5DA047, 0xFF2DF6D047F38A53, 0xBE9CDCCD6B56634C};

TEST(RandomCalls, AnswersAndFilesAreTheSameOnAllSystems) {
    std::string list;
    std::vector<std::uint64_t> digests;
    for (std::uint64_t i = 0; i < kDigests.size(); ++i) {
        std::uint64_t digest = 0;
        for (std::uint64_t k = 1; k <= kSequencesPerDigest; ++k)
            digest = digest * 31 +
                     random_calls::Run(random_calls::RandomSequence(i * kSequencesPerDigest + k)).digest;
        digests.push_back(digest);
        char text[32];
        std::snprintf(text, sizeof text, "0x%016llX,\n", static_cast<unsigned long long>(digest));
        list += text;
    }
    EXPECT_EQ(digests, std::vector<std::uint64_t>(kDigests.begin(), kDigests.end())) << list;
}

}  // namespace
}  // namespace host
