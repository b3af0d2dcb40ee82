// A process is killed many times while it saves: the file must be complete each time.
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <thread>

#include "tests/front/child_program_support.h"
#include "tests/front/front_support.h"
#include "tests/front/saver/documents.h"

namespace {

namespace fs = std::filesystem;
using front_tests::ChildProgram;
using front_tests::SavedBytes;

#if defined(_WIN32)
constexpr int kKills = 80;  // starting a program takes longer there
#else
constexpr int kKills = 200;
#endif

bool WaitFor(const fs::path& file) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!fs::exists(file)) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

// How long one save takes here.
std::chrono::microseconds SaveTime(const mox::Profile& document, const fs::path& file) {
    constexpr int kSaves = 20;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kSaves; ++i)
        EXPECT_TRUE(document.saveReplacing(file.u16string(), front_tests::Overwriting()));
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start) /
           kSaves;
}

TEST(FrontKilledSaves, AKilledProcessLeavesTheOldOrTheNewFileWhole) {
    const front_tests::ScratchFolder folder;
    const fs::path file = folder.Of("settings.xml");
    const fs::path ready = folder.Of("ready");
    const std::string first = SavedBytes(saver::Document('a'));
    const std::string second = SavedBytes(saver::Document('b'));
    const mox::Profile initial = saver::Document('c');
    const std::string third = SavedBytes(initial);
    ASSERT_NE(first.size(), second.size());

    std::mt19937 random(20240229);
    std::uniform_int_distribution<int> delay(0, static_cast<int>(3 * SaveTime(initial, file).count()));
    int interrupted = 0;
    int found[3] = {};
    for (int round = 0; round < kKills; ++round) {
        ASSERT_TRUE(initial.saveReplacing(file.u16string(), front_tests::Overwriting()));
        ChildProgram child("front_saver", {file, ready});
        ASSERT_TRUE(child.IsStarted() && WaitFor(ready));
        std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
        ASSERT_TRUE(child.Kill()) << "round " << round;

        const std::string bytes = host::ReadBytes(file);
        const int which = bytes == first ? 0 : bytes == second ? 1 : bytes == third ? 2 : -1;
        ASSERT_NE(which, -1) << "round " << round << ": " << bytes.size()
                             << " bytes that are none of the documents";
        ++found[which];
        fs::remove(ready);
        // A killed process leaves at most its temporary file, which shows that it was killed in the middle of a save.
        std::size_t left = 0;
        for (const std::string& name : folder.Names()) {
            if (name == "settings.xml") continue;
            EXPECT_EQ(name.substr(0, 5), ".mox-");
            fs::remove(folder.Of(name.c_str()));
            ++left;
        }
        ASSERT_LE(left, 1U);
        if (left != 0) ++interrupted;
    }
    // Kills before the first save, or between two, would prove nothing.
    EXPECT_GT(interrupted, kKills / 40);
    EXPECT_GT(found[0] + found[1], 0);
    RecordProperty("interrupted", interrupted);
}

}  // namespace
