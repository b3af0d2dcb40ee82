// Files that are replaced only if they are still the ones that were read.
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/disk/disk_support.h"
#include "tests/tool/run_program_support.h"
#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

#include "mox_xmlApi/disk/windows_mutex.h"
#include "mox_xmlApi/disk/windows_paths.h"
#else
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/faults/child_process_support.h"
#endif

namespace {

namespace fs = std::filesystem;
using disk_tests::OnlyIf;
using disk_tests::ReasonFor;
using disk_tests::ScratchFolder;
using disk_tests::StampOf;
using mox::FileStamp;
using mox::Reason;

class OnlyIfUnchanged : public testing::Test {
  protected:
    OnlyIfUnchanged() { host::WriteBytes(file, "old"); }

    const ScratchFolder folder;
    const fs::path file = folder.Of("f.xml");
};

TEST_F(OnlyIfUnchanged, AFileThatIsAsItWasReadIsReplaced) {
    const FileStamp stamp = StampOf(file);
    EXPECT_EQ(ReasonFor(file, "new", OnlyIf(stamp)), Reason::None);
    EXPECT_EQ(host::ReadBytes(file), "new");
}

TEST_F(OnlyIfUnchanged, AFileWithOtherContentIsNot) {
    const FileStamp stamp = StampOf(file);
    for (const char* const other : {"older", "ol", "", "odl"}) {
        host::WriteBytes(file, other);
        EXPECT_EQ(ReasonFor(file, "new", OnlyIf(stamp)), Reason::Changed) << other;
        EXPECT_EQ(host::ReadBytes(file), other);
    }
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"f.xml"});
}

TEST_F(OnlyIfUnchanged, AChangeWithinOneTickOfTheClockIsSeen) {
    const FileStamp stamp = StampOf(file);
    const auto time = fs::last_write_time(file);
    host::WriteBytes(file, "OLD");
    fs::last_write_time(file, time);
    EXPECT_EQ(ReasonFor(file, "new", OnlyIf(stamp)), Reason::Changed);
    EXPECT_EQ(host::ReadBytes(file), "OLD");
}

TEST_F(OnlyIfUnchanged, TheSameContentIsNoChange) {
    const FileStamp stamp = StampOf(file);
    fs::last_write_time(file, fs::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(ReasonFor(file, "old", OnlyIf(stamp)), Reason::None);
    // That was another file already.
    EXPECT_EQ(ReasonFor(file, "new", OnlyIf(stamp)), Reason::None);
    EXPECT_EQ(host::ReadBytes(file), "new");
}

TEST_F(OnlyIfUnchanged, AFileThatIsGoneIsNotCreated) {
    const FileStamp stamp = StampOf(file);
    fs::remove(file);
    EXPECT_EQ(ReasonFor(file, "new", OnlyIf(stamp)), Reason::Changed);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{});
}

TEST_F(OnlyIfUnchanged, AFileThatWasMissingIsCreatedOnlyIfItStillIs) {
    const FileStamp missing;
    EXPECT_EQ(ReasonFor(file, "new", OnlyIf(missing)), Reason::Changed);
    EXPECT_EQ(host::ReadBytes(file), "old");
    fs::remove(file);
    EXPECT_EQ(ReasonFor(file, "new", OnlyIf(missing)), Reason::None);
    EXPECT_EQ(host::ReadBytes(file), "new");
}

TEST_F(OnlyIfUnchanged, ThePassedStampServesForTheNextReplacement) {
    FileStamp stamp = StampOf(file);
    for (const char* const text : {"1", "22", "333"})
        ASSERT_TRUE(mox::replaceFile(file.u16string(), text, OnlyIf(stamp), &stamp));
    EXPECT_EQ(host::ReadBytes(file), "333");
    const FileStamp before = stamp;
    host::WriteBytes(file, "other");
    EXPECT_FALSE(mox::replaceFile(file.u16string(), "4", OnlyIf(stamp), &stamp));
    EXPECT_TRUE(stamp == before);
}

TEST_F(OnlyIfUnchanged, AnyPatienceIsAccepted) {
    mox::ReplaceOptions options;
    for (const auto patience : {(std::chrono::milliseconds::max)(), (std::chrono::milliseconds::min)()}) {
        options.patience = patience;
        EXPECT_EQ(ReasonFor(file, "new", options), Reason::None);
    }
}

// ---- several processes

fs::path Appender() {
#if defined(_WIN32)
    std::wstring own(32768, L'\0');
    own.resize(GetModuleFileNameW(nullptr, own.data(), static_cast<DWORD>(own.size())));
    return fs::path(own).replace_filename("disk_appender.exe");
#else
    return fs::read_symlink("/proc/self/exe").replace_filename("disk_appender");
#endif
}

// Runs that many processes at a time, each of which appends so many lines. Returns how many lines of each are in the
// file, counting only those that come in order.
std::map<char, int> LinesAfter(const fs::path& file, int processes, int lines) {
    std::vector<std::thread> threads;
    for (int i = 0; i < processes; ++i) {
        threads.emplace_back([&, i] {
            std::string out;
            const std::vector<std::string> arguments{
                file.string(), std::string(1, static_cast<char>('a' + i)), std::to_string(lines)};
            const std::string messages = file.string() + ".messages" + std::to_string(i);
            EXPECT_EQ(tool::RunProgram(Appender().string(), arguments, messages, out), 0)
                << host::ReadBytes(messages);
            fs::remove(messages);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    std::map<char, int> counts;
    std::istringstream stream(host::ReadBytes(file));
    for (std::string line; std::getline(stream, line);) {
        if (line.substr(1) == std::to_string(counts[line[0]])) ++counts[line[0]];
    }
    return counts;
}

TEST_F(OnlyIfUnchanged, TwoProcessesLoseNoChangeOfEachOther) {
    host::WriteBytes(file, "");
    EXPECT_EQ(LinesAfter(file, 2, 100), (std::map<char, int>{{'a', 100}, {'b', 100}}));
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"f.xml"});
}

TEST_F(OnlyIfUnchanged, ProcessesThatCreateTheFileAtTheSameTimeLoseNothingEither) {
    for (int round = 0; round < 5; ++round) {
        fs::remove(file);
        EXPECT_EQ(LinesAfter(file, 3, 5), (std::map<char, int>{{'a', 5}, {'b', 5}, {'c', 5}}));
    }
}

#if defined(_WIN32)

TEST_F(OnlyIfUnchanged, AProcessThatDoesNotFinishMakesTheFileBusy) {
    const std::wstring path = mox::disk::FinalPath(mox::disk::OpenExisting(file.wstring(), 0));
    mox::ReplaceOptions options;
    options.patience = std::chrono::milliseconds(50);
    mox::disk::PathMutex mutex;
    ASSERT_TRUE(mutex.Lock(path, mox::disk::Deadline(options.patience)));
    // The same thread would be let in.
    std::thread([&] { EXPECT_EQ(ReasonFor(file, "new", options), Reason::Busy); }).join();
    EXPECT_EQ(host::ReadBytes(file), "old");
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"f.xml"});
}

TEST_F(OnlyIfUnchanged, TheLockOfAThreadThatEndedInTheMiddleIsGone) {
    const std::wstring path = mox::disk::FinalPath(mox::disk::OpenExisting(file.wstring(), 0));
    const mox::disk::Deadline deadline(std::chrono::milliseconds(50));
    mox::disk::PathMutex mutex;
    std::thread([&] { EXPECT_TRUE(mutex.Lock(path, deadline)); }).join();
    EXPECT_EQ(ReasonFor(file, "new", OnlyIf(StampOf(file))), Reason::None);
}

TEST_F(OnlyIfUnchanged, AFileThatIsInUseForAMomentIsReplacedThen) {
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        CloseHandle(handle);
    });
    EXPECT_EQ(ReasonFor(file, "new"), Reason::None);
    other.join();
}

#else

// A lock on the file that the test itself has.
class HeldLock {
  public:
    explicit HeldLock(const fs::path& path) : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        EXPECT_EQ(flock(file_, LOCK_EX | LOCK_NB), 0);
    }
    ~HeldLock() { close(file_); }
    HeldLock(const HeldLock&) = delete;
    HeldLock& operator=(const HeldLock&) = delete;

  private:
    int file_;
};

TEST_F(OnlyIfUnchanged, AProcessThatDoesNotFinishMakesTheFileBusy) {
    const HeldLock lock(file);
    mox::ReplaceOptions options;
    options.patience = std::chrono::milliseconds(50);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ReasonFor(file, "new", options), Reason::Busy);
    EXPECT_GE(std::chrono::steady_clock::now() - start, options.patience);
    EXPECT_EQ(host::ReadBytes(file), "old");
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"f.xml"});
}

TEST_F(OnlyIfUnchanged, TheFileIsReplacedAsSoonAsTheOtherProcessHasFinished) {
    const FileStamp stamp = StampOf(file);
    auto lock = std::make_unique<HeldLock>(file);
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        lock.reset();
    });
    EXPECT_EQ(ReasonFor(file, "new", OnlyIf(stamp)), Reason::None);
    other.join();
}

TEST_F(OnlyIfUnchanged, WhatTheOtherProcessHasPutThereMeanwhileIsSeen) {
    const FileStamp stamp = StampOf(file);
    auto lock = std::make_unique<HeldLock>(file);
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        host::WriteBytes(folder.Of("other"), "odd");
        fs::rename(folder.Of("other"), file);
        lock.reset();
    });
    EXPECT_EQ(ReasonFor(file, "new", OnlyIf(stamp)), Reason::Changed);
    other.join();
    EXPECT_EQ(host::ReadBytes(file), "odd");
}

TEST_F(OnlyIfUnchanged, TheLockOfAKilledProcessIsGone) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const int own = open(file.c_str(), O_RDONLY);
        const bool isLocked = flock(own, LOCK_EX) == 0 && write(ends[1], "x", 1) == 1;
        pause();
        _exit(isLocked ? 0 : 1);
    }
    char byte = 0;
    ASSERT_EQ(read(ends[0], &byte, 1), 1);
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    close(ends[0]);
    close(ends[1]);
    EXPECT_EQ(ReasonFor(file, "new", OnlyIf(StampOf(file))), Reason::None);
}

TEST_F(OnlyIfUnchanged, AFileThatMayNotBeReadCannotBeCompared) {
    const FileStamp stamp = StampOf(file);
    fs::permissions(file, static_cast<fs::perms>(0222));
    fs::permissions(folder.Of(""), static_cast<fs::perms>(0777));
    EXPECT_EQ(faults::InChild([&]() -> std::string {
                  fs::current_path(folder.Of(""));  // others may have no way to it from the root
                  if (!faults::GiveUpPrivileges()) return "privileges cannot be given up";
                  if (ReasonFor("f.xml", "new", OnlyIf(stamp)) != Reason::NoPermission)
                      return "it is compared";
                  return ReasonFor("f.xml", "new") == Reason::None ? "" : "it is not replaced";
              }),
              "");
    EXPECT_EQ(host::ReadBytes(file), "new");
}

#endif

}  // namespace
