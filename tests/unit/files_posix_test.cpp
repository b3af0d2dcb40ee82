// Files as only POSIX systems have them: descriptors, devices, modes, pipes, interrupted calls.
#if !defined(_WIN32)

#include <chrono>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "tests/unit/files_support.h"

namespace mox::test {
namespace {

using PosixFiles = Files;

TEST_F(PosixFiles, DescriptorsAreGivenBack) {
    const auto lowestFree = [] {
        const int file = open("/dev/null", O_RDONLY);
        close(file);
        return file;
    };
    const int before = lowestFree();
    ASSERT_TRUE(Write(At("f"_w), "bytes"));
    EXPECT_FALSE(Write("/dev/full", "bytes"));
    { OutputFile file(Wide(At("f"_w)).c_str()); }
    { InputFile file(Wide(At("f"_w)).c_str()); }
    EXPECT_EQ(lowestFree(), before);
}

TEST_F(PosixFiles, PathThatTheSystemCannotExpressCannotBeOpened) {
    const wchar16 unpaired[] = {'a', 0xD83D, 0};
    const WideString path = Wide(folder_) + WideString("/"_w) + unpaired;
    EXPECT_FALSE(InputFile(path.c_str()).IsOpen());
    EXPECT_FALSE(Write(path.c_str(), "x"));
    EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(PosixFiles, FullDiskIsAFailure) {
    EXPECT_FALSE(Write("/dev/full", "x"));
    EXPECT_FALSE(Write("/dev/full", std::string(1 << 20, 'x')));
}

TEST_F(PosixFiles, FailedWriteIsNotForgottenByTheNext) {
    OutputFile file(Wide("/dev/full").c_str());
    EXPECT_FALSE(file.Write("x", 1));
    EXPECT_FALSE(file.Write("", 0));
    EXPECT_FALSE(file.Close());
}

TEST_F(PosixFiles, FolderOpensAndFailsOnReading) {
    InputFile file(Wide(folder_).c_str());
    EXPECT_TRUE(file.IsOpen());
    EXPECT_FALSE(file.Failed());
    char buffer[16];
    EXPECT_EQ(file.Read(buffer, sizeof(buffer)), 0U);
    EXPECT_TRUE(file.Failed());
}

TEST_F(PosixFiles, DeviceHasNoSize) {
    InputFile file(Wide("/dev/zero").c_str());
    ASSERT_TRUE(file.IsOpen());
    EXPECT_EQ(file.SizeHint(), 0U);
    std::string buffer(100000, '#');
    EXPECT_EQ(file.Read(buffer.data(), buffer.size()), 100000U);
    EXPECT_EQ(buffer, std::string(100000, '\0'));
}

TEST_F(PosixFiles, NewFileHasTheModeThatTheProcessAllows) {
    const mode_t before = umask(027);
    const bool written = Write(At("f"_w), "x");
    umask(before);
    ASSERT_TRUE(written);
    EXPECT_EQ(fs::status(At("f"_w)).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

void DoNothing(int) {}

// A pipe by name, and signals that interrupt whoever waits at it: calls that the system breaks off are taken
// up again, and what it moved in part is completed.
class FilesAtAPipe : public Files {
  protected:
    FilesAtAPipe() {
        EXPECT_EQ(mkfifo(At("pipe"_w).c_str(), 0600), 0);
        struct sigaction action = {};
        action.sa_handler = DoNothing;  // without SA_RESTART
        sigaction(SIGUSR1, &action, &before_);
    }
    ~FilesAtAPipe() override { sigaction(SIGUSR1, &before_, nullptr); }

    static void Interrupt(std::thread& thread) {
        for (int i = 0; i < 5; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(4));
            pthread_kill(thread.native_handle(), SIGUSR1);
        }
    }

  private:
    struct sigaction before_ = {};
};

TEST_F(FilesAtAPipe, ReadingGoesOnUntilTheWriterCloses) {
    std::string bytes;
    bool failed = true;
    std::uint64_t hint = 1;
    std::thread reader([&] {
        InputFile file(Wide(At("pipe"_w)).c_str());
        hint = file.SizeHint();
        bytes = ReadAll(file, 100);
        failed = file.Failed();
    });
    Interrupt(reader);
    const int pipe = open(At("pipe"_w).c_str(), O_WRONLY);
    EXPECT_EQ(write(pipe, "one ", 4), 4);
    Interrupt(reader);
    EXPECT_EQ(write(pipe, "two", 3), 3);
    Interrupt(reader);
    close(pipe);
    reader.join();
    EXPECT_EQ(bytes, "one two");
    EXPECT_FALSE(failed);
    EXPECT_EQ(hint, 0U);
}

TEST_F(FilesAtAPipe, WritingGoesOnUntilAllIsTaken) {
    const std::string sent = ManyBytes(400000);
    bool written = false;
    std::thread writer([&] { written = Write(At("pipe"_w), sent); });
    Interrupt(writer);
    const int pipe = open(At("pipe"_w).c_str(), O_RDONLY);
    std::string received;
    std::string buffer(30000, '#');
    for (ssize_t count = 1; count > 0;) {
        if (received.size() < 200000) Interrupt(writer);
        count = read(pipe, buffer.data(), buffer.size());
        if (count > 0) received.append(buffer, 0, static_cast<std::size_t>(count));
    }
    close(pipe);
    writer.join();
    EXPECT_TRUE(written);
    EXPECT_EQ(received, sent);
}

}  // namespace
}  // namespace mox::test

#endif
