// Files on which somebody has a lease: the system tells its holder when others open the file.
#if defined(__linux__)
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>

#include "tests/disk/disk_support.h"

namespace disk_tests {
namespace {

namespace fs = std::filesystem;
using mox::Reason;
using std::chrono::milliseconds;

class LeasedFiles : public testing::Test {
  protected:
    void SetUp() override {
        host::WriteBytes(path, "old");
        // What tells the holder of a lease would end the process.
        handler_ = std::signal(SIGIO, SIG_IGN);
    }
    void TearDown() override {
        Close();
        std::signal(SIGIO, handler_);
    }

    // Takes a lease, F_RDLCK or F_WRLCK. Returns false if the file system has none.
    bool Lease(int kind) {
        file_ = open(path.c_str(), (kind == F_RDLCK ? O_RDONLY : O_RDWR) | O_CLOEXEC);
        return file_ >= 0 && fcntl(file_, F_SETLEASE, kind) == 0;
    }

    // Waits until the system tells that somebody else opens the file, and lets it.
    void GiveUpWhenAsked() const {
        while (fcntl(file_, F_GETLEASE) == F_WRLCK)
            std::this_thread::sleep_for(milliseconds(1));
        EXPECT_EQ(fcntl(file_, F_SETLEASE, F_UNLCK), 0);
    }

    void Close() {
        if (file_ >= 0) close(file_);
        file_ = -1;
    }

    const ScratchFolder folder;
    const fs::path path = folder.Of("f.xml");

  private:
    int file_ = -1;
    void (*handler_)(int) = SIG_DFL;
};

TEST_F(LeasedFiles, AReaderWithALeaseDoesNotKeepAFileFromBeingReplaced) {
    if (!Lease(F_RDLCK)) GTEST_SKIP() << "no leases here";
    EXPECT_EQ(ReasonFor(path, "new"), Reason::None);
    EXPECT_EQ(host::ReadBytes(path), "new");
}

TEST_F(LeasedFiles, AReaderWithALeaseDoesNotKeepAFileFromBeingLocked) {
    if (!Lease(F_RDLCK)) GTEST_SKIP() << "no leases here";
    mox::Problem problem;
    EXPECT_TRUE(mox::FileLock::acquire(path.u16string(), milliseconds(50), &problem).has_value())
        << problem.toString();
}

TEST_F(LeasedFiles, AWriterWithALeaseMakesTheFileBusy) {
    if (!Lease(F_WRLCK)) GTEST_SKIP() << "no leases here";
    constexpr const char* kMessage = "another process has a lease on the file and does not give it up";
    mox::ReplaceOptions options;
    options.patience = milliseconds(50);
    mox::Problem problem;
    EXPECT_FALSE(mox::FileLock::acquire(path.u16string(), milliseconds(50), &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::Busy);
    EXPECT_EQ(problem.message, kMessage);
    EXPECT_FALSE(mox::replaceFile(path.u16string(), "new", options, nullptr, &problem));
    EXPECT_EQ(problem.reason, Reason::Busy);
    EXPECT_EQ(problem.message, kMessage);
}

TEST_F(LeasedFiles, AWriterThatGivesItsLeaseUpIsWaitedFor) {
    const auto replace = [&] { return ReasonFor(path, "new") == Reason::None; };
    const auto lock = [&] {
        return mox::FileLock::acquire(path.u16string(), milliseconds(10000)).has_value();
    };
    for (const std::function<bool()>& open : {std::function<bool()>(replace), std::function<bool()>(lock)}) {
        if (!Lease(F_WRLCK)) GTEST_SKIP() << "no leases here";
        std::thread holder([&] { GiveUpWhenAsked(); });
        EXPECT_TRUE(open());
        holder.join();
        Close();
    }
    EXPECT_EQ(host::ReadBytes(path), "new");
}

}  // namespace
}  // namespace disk_tests
#endif
