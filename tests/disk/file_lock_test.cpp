// Locks that programs hold from reading a file to replacing it.
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "tests/disk/disk_support.h"

namespace {

namespace fs = std::filesystem;
using disk_tests::ReasonFor;
using disk_tests::ScratchFolder;
using mox::FileLock;
using mox::Reason;
using std::chrono::milliseconds;

constexpr milliseconds kShort{50};
constexpr milliseconds kLong{20000};

class FileLocks : public testing::Test {
  protected:
    // Calls `run` in another thread, which does not own the locks of this one.
    template <class Run>
    static auto Elsewhere(Run run) {
        decltype(run()) result{};
        std::thread([&] { result = run(); }).join();
        return result;
    }

    // The reason why another thread does not get the lock; None if it does.
    static Reason ReasonElsewhere(const fs::path& path, milliseconds patience = kShort) {
        return Elsewhere([&] {
            mox::Problem problem;
            const bool isLocked = FileLock::acquire(path.u16string(), patience, &problem).has_value();
            EXPECT_EQ(isLocked, !problem) << problem.toString();
            return problem.reason;
        });
    }

    static Reason ReplaceElsewhere(const fs::path& path) {
        mox::ReplaceOptions options;
        options.patience = kShort;
        return Elsewhere([&] { return ReasonFor(path, "other", options); });
    }

    const ScratchFolder folder;
    const fs::path file = folder.Of("f.xml");
};

TEST_F(FileLocks, OnlyOneHasTheLock) {
    host::WriteBytes(file, "old");
    {
        const std::optional<FileLock> lock = FileLock::acquire(file.u16string(), kShort);
        ASSERT_TRUE(lock.has_value());
        EXPECT_EQ(ReasonElsewhere(file), Reason::Busy);
        EXPECT_EQ(ReplaceElsewhere(file), Reason::Busy);
    }
    EXPECT_EQ(ReasonElsewhere(file), Reason::None);
    EXPECT_EQ(ReplaceElsewhere(file), Reason::None);
    EXPECT_EQ(host::ReadBytes(file), "other");
}

TEST_F(FileLocks, WhoHasTheLockReplacesTheFile) {
    host::WriteBytes(file, "old");
    const std::optional<FileLock> lock = FileLock::acquire(file.u16string(), kShort);
    ASSERT_TRUE(lock.has_value());
    mox::ReplaceOptions options;
    options.patience = kShort;
    options.lock = &*lock;
    EXPECT_EQ(ReasonFor(file, "new", options), Reason::None);
    EXPECT_EQ(host::ReadBytes(file), "new");
}

TEST_F(FileLocks, TheNextOneGetsTheLockOfTheNewFile) {
    host::WriteBytes(file, "old");
    std::optional<FileLock> lock = FileLock::acquire(file.u16string(), kShort);
    ASSERT_TRUE(lock.has_value());
    std::string seen;
    std::thread next([&] {
        const std::optional<FileLock> own = FileLock::acquire(file.u16string(), kLong);
        if (own.has_value()) seen = host::ReadBytes(file);
        mox::ReplaceOptions options;
        options.lock = own.has_value() ? &*own : nullptr;
        EXPECT_EQ(ReasonFor(file, seen + " and newer", options), Reason::None);
    });
    std::this_thread::sleep_for(kShort);  // most likely it waits by now
    mox::ReplaceOptions options;
    options.lock = &*lock;
    EXPECT_EQ(ReasonFor(file, "new", options), Reason::None);
    lock.reset();
    next.join();
    EXPECT_EQ(seen, "new");
    EXPECT_EQ(host::ReadBytes(file), "new and newer");
}

TEST_F(FileLocks, AMissingFileCanBeLockedAndCreated) {
    std::optional<FileLock> lock = FileLock::acquire(file.u16string(), kShort);
    ASSERT_TRUE(lock.has_value());
    EXPECT_EQ(ReasonElsewhere(file), Reason::Busy);
    std::string seen;
    std::thread next([&] {
        const std::optional<FileLock> own = FileLock::acquire(file.u16string(), kLong);
        if (own.has_value()) seen = host::ReadBytes(file);
    });
    std::this_thread::sleep_for(kShort);
    mox::ReplaceOptions options;
    options.lock = &*lock;
    EXPECT_EQ(ReasonFor(file, "new", options), Reason::None);
    lock.reset();
    next.join();
    EXPECT_EQ(seen, "new");
}

TEST_F(FileLocks, AMissingFileThatIsLockedIsCreatedNevertheless) {
    const std::optional<FileLock> lock = FileLock::acquire(file.u16string(), kShort);
    ASSERT_TRUE(lock.has_value());
    mox::FileStamp missing;
    EXPECT_FALSE(mox::readFile(file.u16string(), &missing).has_value());
    EXPECT_EQ(ReplaceElsewhere(file), Reason::None);
    EXPECT_EQ(host::ReadBytes(file), "other");
    // Whoever found no file loses nothing of the new one.
    mox::ReplaceOptions options = disk_tests::OnlyIf(missing);
    options.lock = &*lock;
    EXPECT_EQ(ReasonFor(file, "new", options), Reason::Changed);
    EXPECT_EQ(host::ReadBytes(file), "other");
}

TEST_F(FileLocks, WhoCreatesAFileLocksNothingAfterwards) {
    EXPECT_EQ(ReplaceElsewhere(file), Reason::None);
    EXPECT_EQ(ReasonElsewhere(file), Reason::None);
    EXPECT_EQ(ReasonElsewhere(folder.Of("second.xml")), Reason::None);
}

TEST_F(FileLocks, WithoutPatienceOneTryIsMade) {
    host::WriteBytes(file, "old");
    for (const milliseconds patience : {milliseconds(0), milliseconds(-1), milliseconds::min()}) {
        const std::optional<FileLock> lock = FileLock::acquire(file.u16string(), patience);
        ASSERT_TRUE(lock.has_value());
        EXPECT_EQ(ReasonElsewhere(file, patience), Reason::Busy);
    }
}

TEST_F(FileLocks, LeaveNothingInTheFolder) {
    { const auto lock = FileLock::acquire(file.u16string(), kShort); }
    EXPECT_TRUE(fs::is_empty(file.parent_path()));
}

TEST_F(FileLocks, MovesWithTheObject) {
    host::WriteBytes(file, "old");
    std::optional<FileLock> first = FileLock::acquire(file.u16string(), kShort);
    ASSERT_TRUE(first.has_value());
    std::optional<FileLock> second(std::move(*first));
    first.reset();
    EXPECT_EQ(ReasonElsewhere(file), Reason::Busy);
    second.reset();
    EXPECT_EQ(ReasonElsewhere(file), Reason::None);
}

TEST_F(FileLocks, SayWhyThereIsNone) {
    mox::Problem problem;
    EXPECT_FALSE(FileLock::acquire("", kShort, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::InvalidText);
    EXPECT_FALSE(FileLock::acquire((file / "no folder" / "f").u16string(), kShort, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::NotFound);
    EXPECT_FALSE(FileLock::acquire(file.parent_path().u16string(), kShort, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::NotRegularFile);
}

#if !defined(_WIN32)
TEST_F(FileLocks, ALinkLocksTheFile) {
    host::WriteBytes(file, "old");
    const fs::path link = folder.Of("link.xml");
    fs::create_symlink(file, link);
    const std::optional<FileLock> lock = FileLock::acquire(link.u16string(), kShort);
    ASSERT_TRUE(lock.has_value());
    EXPECT_EQ(ReasonElsewhere(file), Reason::Busy);
}

TEST_F(FileLocks, MissingFilesOfOneFolderHaveOneLock) {
    const std::optional<FileLock> lock = FileLock::acquire(file.u16string(), kShort);
    ASSERT_TRUE(lock.has_value());
    mox::Problem problem;
    EXPECT_FALSE(FileLock::acquire(folder.Of("second.xml").u16string(), kShort, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::Busy);
}
#else
TEST_F(FileLocks, AThreadCanAcquireItsLockAgain) {
    host::WriteBytes(file, "old");
    const std::optional<FileLock> lock = FileLock::acquire(file.u16string(), kShort);
    EXPECT_TRUE(FileLock::acquire(file.u16string(), kShort).has_value());
}
#endif

}  // namespace
