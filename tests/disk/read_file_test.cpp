// Files that are read as a whole, once, and the stamps by which they are recognised.
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "tests/disk/disk_support.h"
#if !defined(_WIN32)
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/faults/child_process_support.h"
#endif

namespace {

namespace fs = std::filesystem;
using disk_tests::ScratchFolder;
using disk_tests::StampOf;
using mox::FileStamp;
using mox::Problem;
using mox::Reason;

class FileReading : public testing::Test {
  protected:
    Problem ProblemOf(const mox::Text& path) const {
        Problem problem;
        EXPECT_FALSE(mox::readFile(path, nullptr, &problem).has_value());
        return problem;
    }

    const ScratchFolder folder;
    const fs::path file = folder.Of("f.xml");
};

TEST_F(FileReading, GivesEveryByte) {
    std::string bytes("a\0b\r\n\x1A\xFF", 7);
    host::WriteBytes(file, bytes);
    EXPECT_EQ(mox::readFile(file.u16string()), bytes);
    host::WriteBytes(file, "");
    EXPECT_EQ(mox::readFile(file.u16string()), "");
    for (const std::size_t size : {65535U, 65536U, 65537U, 1000000U}) {
        bytes.assign(size, 'x');
        bytes.back() = 'y';
        host::WriteBytes(file, bytes);
        EXPECT_EQ(mox::readFile(file.u16string()), bytes) << size;
    }
}

TEST_F(FileReading, ASuccessResetsTheProblem) {
    host::WriteBytes(file, "x");
    Problem problem;
    problem.reason = Reason::Syntax;
    EXPECT_TRUE(mox::readFile(file.u16string(), nullptr, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::None);
}

TEST_F(FileReading, AMissingFileIsNotFoundAndHasTheStampOfNone) {
    FileStamp stamp;
    stamp.exists = true;
    stamp.size = 5;
    Problem problem;
    EXPECT_FALSE(mox::readFile(file.u16string(), &stamp, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::NotFound);
    EXPECT_EQ(problem.file, mox::toUtf8(file.u16string()));
    EXPECT_TRUE(stamp == FileStamp());
    EXPECT_EQ(ProblemOf(folder.Of("none/f.xml").u16string()).reason, Reason::NotFound);
}

TEST_F(FileReading, AFolderIsNoFile) {
    FileStamp stamp;
    stamp.size = 5;
    Problem problem;
    EXPECT_FALSE(mox::readFile(folder.Of("").u16string(), &stamp, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::NotRegularFile);
    EXPECT_EQ(problem.message, "it is a folder, not a file");
    EXPECT_EQ(stamp.size, 5U);
}

TEST_F(FileReading, AnInvalidPathIsRefused) {
    EXPECT_EQ(ProblemOf("").reason, Reason::InvalidText);
    EXPECT_EQ(ProblemOf("a\xFF").reason, Reason::InvalidText);
    EXPECT_EQ(ProblemOf(std::string_view("a\0b", 3)).reason, Reason::InvalidText);
}

TEST_F(FileReading, TheStampShowsEachChangeOfTheContent) {
    host::WriteBytes(file, "0123456789abcdef!");
    const FileStamp first = StampOf(file);
    EXPECT_TRUE(first.exists);
    EXPECT_EQ(first.size, 17U);
    EXPECT_TRUE(first == StampOf(file));
    const auto time = fs::last_write_time(file);
    // The same size and the same time.
    for (const char* const other : {"1123456789abcdef!", "0123456789abcdee!", "0123456789abcdef?"}) {
        host::WriteBytes(file, other);
        fs::last_write_time(file, time);
        EXPECT_FALSE(first.hasContentOf(StampOf(file))) << other;
        EXPECT_TRUE(first != StampOf(file)) << other;
    }
    host::WriteBytes(file, "0123456789abcdef!");
    EXPECT_TRUE(first.hasContentOf(StampOf(file)));
}

TEST_F(FileReading, StampsOfAllShortTextsDiffer) {
    std::vector<FileStamp> stamps;
    for (int length = 0; length < 40; ++length) {
        for (const char unit : {'\0', 'a'}) {
            host::WriteBytes(file, std::string(static_cast<std::size_t>(length), unit));
            const FileStamp stamp = StampOf(file);
            for (const FileStamp& other : stamps)
                EXPECT_TRUE(length == 0 || !stamp.hasContentOf(other)) << length;
            stamps.push_back(stamp);
        }
    }
}

#if defined(_WIN32)

TEST_F(FileReading, GivesTheTextOfTheSystem) {
    const Problem problem = ProblemOf(file.u16string());
    EXPECT_EQ(problem.message.rfind("cannot open the file: ", 0), 0U) << problem.message;
    EXPECT_GT(problem.message.size(), 30U) << problem.message;
}

#else

TEST_F(FileReading, GivesTheTextOfTheSystem) {
    EXPECT_EQ(ProblemOf(file.u16string()).message, "cannot open the file: No such file or directory");
    fs::create_symlink("f.xml", file);
    const Problem problem = ProblemOf(file.u16string());
    EXPECT_EQ(problem.reason, Reason::ReadFailed);
    EXPECT_EQ(problem.message, std::string("cannot open the file: ") + std::strerror(ELOOP));
}

TEST_F(FileReading, AFileThatMayNotBeReadIsRefused) {
    host::WriteBytes(file, "x");
    fs::permissions(file, fs::perms::none);
    EXPECT_EQ(faults::InChild([&]() -> std::string {
                  fs::current_path(folder.Of(""));  // others may have no way to it from the root
                  if (!faults::GiveUpPrivileges()) return "privileges cannot be given up";
                  if (access(".", X_OK) != 0) return "the folder cannot be searched";
                  const Problem problem = ProblemOf(file.filename().u16string());
                  return problem.reason == Reason::NoPermission ? "" : problem.toString();
              }),
              "");
}

TEST_F(FileReading, APipeIsReadToItsEnd) {
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    const std::string bytes(300000, 'x');
    std::thread writer([&] {
        // In two parts, with time between them.
        const int end = open(file.c_str(), O_WRONLY);
        EXPECT_EQ(write(end, bytes.data(), 3), 3);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        for (std::size_t at = 3; at < bytes.size();) {
            const ssize_t count = write(end, bytes.data() + at, bytes.size() - at);
            if (count <= 0) break;
            at += static_cast<std::size_t>(count);
        }
        close(end);
    });
    FileStamp stamp;
    EXPECT_EQ(mox::readFile(file.u16string(), &stamp), bytes);
    writer.join();
    EXPECT_TRUE(stamp.exists);
    EXPECT_EQ(stamp.size, bytes.size());
}

TEST_F(FileReading, ADescriptorIsReadByItsName) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], "text", 4), 4);
    close(ends[1]);
    EXPECT_EQ(mox::readFile("/dev/fd/" + std::to_string(ends[0])), "text");
    close(ends[0]);
}

TEST_F(FileReading, AFileOfTheSystemWithoutASizeIsRead) {
    const auto status = mox::readFile("/proc/self/status");
    ASSERT_TRUE(status.has_value());
    EXPECT_EQ(status->rfind("Name:", 0), 0U);
    EXPECT_EQ(mox::readFile("/dev/null"), "");
}

TEST_F(FileReading, WhatHasNoEndIsTooLarge) {
    const Problem problem = ProblemOf("/dev/zero");
    EXPECT_EQ(problem.reason, Reason::TooLarge);
    EXPECT_EQ(problem.message, "it has more than 268435456 bytes");
}

TEST_F(FileReading, AFileThatIsTooLargeIsNotRead) {
    host::WriteBytes(file, "x");
    fs::resize_file(file, (std::uintmax_t{1} << 32) + 1);  // without blocks on the disk
    const Problem problem = ProblemOf(file.u16string());
    EXPECT_EQ(problem.reason, Reason::TooLarge);
    EXPECT_EQ(problem.message, "it has more than 4294967296 bytes");
}

TEST_F(FileReading, AFileOfAnyTimeCanBeRead) {
    host::WriteBytes(file, "x");
    for (const std::time_t seconds :
         {std::time_t{0}, std::time_t{-1}, std::time_t{1} << 33, -(std::time_t{1} << 31)}) {
        const timespec times[2] = {{seconds, 0}, {seconds, 999999999}};
        ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
        EXPECT_EQ(StampOf(file).size, 1U);
    }
}

TEST_F(FileReading, LeavesNothingOpen) {
    host::WriteBytes(file, "x");
    const auto before = disk_tests::CountOpen();
    EXPECT_EQ(mox::readFile(file.u16string()), "x");
    EXPECT_FALSE(mox::readFile(folder.Of("").u16string()).has_value());
    EXPECT_EQ(disk_tests::CountOpen(), before);
}

#endif

}  // namespace
