#include "mox_xmlApi/platform/files.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

#include "mox_xmlApi/platform/wide_text.h"

#if !defined(_WIN32)
#include <chrono>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#endif

namespace mox {
namespace {

namespace fs = std::filesystem;

// A folder of its own for each test, removed afterwards.
class Files : public testing::Test {
  protected:
    Files() {
        const char* const given = std::getenv("MOX_TEST_TMP");
        const fs::path parent = given != nullptr ? fs::path(given) : fs::temp_directory_path();
        const char* const name = testing::UnitTest::GetInstance()->current_test_info()->name();
        folder_ = parent / (std::string("files_test_") + name);
        fs::remove_all(folder_);
        fs::create_directories(folder_);
    }
    ~Files() override {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    fs::path At(WideView name) const { return folder_ / fs::path(WideString(name)); }

    static WideString Wide(const fs::path& path) { return path.string<wchar16>(); }

    // The bytes of a file, read by the standard library.
    static std::string BytesOf(const fs::path& path) {
        std::ifstream stream(path, std::ios::binary);
        EXPECT_TRUE(stream.is_open()) << path;
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    static void Make(const fs::path& path, const std::string& bytes) {
        std::ofstream stream(path, std::ios::binary);
        stream << bytes;
        ASSERT_TRUE(stream.good());
    }

    // Everything an InputFile gives, taken in pieces.
    static std::string ReadAll(InputFile& file, std::size_t piece) {
        std::string bytes;
        std::string buffer(piece, '#');
        for (;;) {
            const std::size_t count = file.Read(buffer.data(), piece);
            bytes.append(buffer, 0, count);
            if (count < piece) return bytes;
        }
    }

    // Writes a whole file; whether that was reported as done.
    static bool Write(const wchar16* path, const std::string& bytes) {
        OutputFile file(path);
        const bool written = file.Write(bytes.data(), bytes.size());
        const bool closed = file.Close();
        EXPECT_EQ(written, closed);
        return closed;
    }

    static bool Write(const fs::path& path, const std::string& bytes) {
        return Write(Wide(path).c_str(), bytes);
    }

    fs::path folder_;
};

// Bytes of every value, more than any block.
std::string ManyBytes(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

TEST_F(Files, BytesArriveUnchanged) {
    const std::string bytes("a\r\nb\n\x1A\0\xFF\x80z", 10);
    ASSERT_TRUE(Write(At("f"_w), bytes));
    EXPECT_EQ(BytesOf(At("f"_w)), bytes);

    InputFile file(Wide(At("f"_w)).c_str());
    ASSERT_TRUE(file.IsOpen());
    EXPECT_EQ(file.SizeHint(), 10U);
    EXPECT_EQ(ReadAll(file, 4), bytes);
    EXPECT_FALSE(file.Failed());
}

TEST_F(Files, ManyBytesArriveInPiecesOfAnySize) {
    const std::string bytes = ManyBytes(300001);
    ASSERT_TRUE(Write(At("f"_w), bytes));
    EXPECT_EQ(BytesOf(At("f"_w)), bytes);
    for (const std::size_t piece : {1U << 20, 4096U, 333U}) {
        InputFile file(Wide(At("f"_w)).c_str());
        EXPECT_EQ(file.SizeHint(), 300001U);
        EXPECT_EQ(ReadAll(file, piece), bytes) << piece;
        EXPECT_FALSE(file.Failed());
        char more = '#';
        EXPECT_EQ(file.Read(&more, 1), 0U);
        EXPECT_EQ(more, '#');
    }
}

TEST_F(Files, EmptyFile) {
    OutputFile empty(Wide(At("f"_w)).c_str());
    EXPECT_TRUE(empty.Write(nullptr, 0));
    ASSERT_TRUE(empty.Close());
    EXPECT_EQ(BytesOf(At("f"_w)), "");
    InputFile file(Wide(At("f"_w)).c_str());
    ASSERT_TRUE(file.IsOpen());
    EXPECT_EQ(file.SizeHint(), 0U);
    EXPECT_EQ(ReadAll(file, 16), "");
    EXPECT_FALSE(file.Failed());
}

TEST_F(Files, WritingReplacesWhatTheFileHeld) {
    Make(At("f"_w), "something longer");
    ASSERT_TRUE(Write(At("f"_w), "short"));
    EXPECT_EQ(BytesOf(At("f"_w)), "short");
    ASSERT_TRUE(Write(At("f"_w), ""));
    EXPECT_EQ(BytesOf(At("f"_w)), "");
}

TEST_F(Files, WritesFollowOneAnother) {
    OutputFile file(Wide(At("f"_w)).c_str());
    EXPECT_TRUE(file.Write("one ", 4));
    EXPECT_TRUE(file.Write("", 0));
    EXPECT_TRUE(file.Write("two", 3));
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(BytesOf(At("f"_w)), "one two");
}

// Nor does a closed file touch one that was opened since, in its place.
TEST_F(Files, AfterClosingNothingIsWritten) {
    OutputFile file(Wide(At("f"_w)).c_str());
    EXPECT_TRUE(file.Write("kept", 4));
    EXPECT_TRUE(file.Close());
    OutputFile other(Wide(At("g"_w)).c_str());
    EXPECT_FALSE(file.Write("lost", 4));
    EXPECT_FALSE(file.Close());
    EXPECT_TRUE(other.Write("other", 5));
    EXPECT_TRUE(other.Close());
    EXPECT_EQ(BytesOf(At("f"_w)), "kept");
    EXPECT_EQ(BytesOf(At("g"_w)), "other");
}

TEST_F(Files, FileThatWasNotClosedStillHoldsWhatWasWritten) {
    { EXPECT_TRUE(OutputFile(Wide(At("f"_w)).c_str()).Write("bytes", 5)); }
    EXPECT_EQ(BytesOf(At("f"_w)), "bytes");
    EXPECT_TRUE(fs::remove(At("f"_w)));
}

TEST_F(Files, NamesBeyondAscii) {
    const wchar16 name[] = {0xE9, 0x4E2D, 0xD83D, 0xDE00, '.', 'x', 0};
    ASSERT_TRUE(Write(At(name), "bytes"));
    EXPECT_TRUE(fs::is_regular_file(At(name)));
    InputFile file(Wide(At(name)).c_str());
    EXPECT_EQ(ReadAll(file, 16), "bytes");
}

TEST_F(Files, FileThatIsNotThere) {
    InputFile file(Wide(At("none"_w)).c_str());
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.Failed());
    EXPECT_EQ(file.SizeHint(), 0U);
    char buffer = '#';
    EXPECT_EQ(file.Read(&buffer, 1), 0U);
    EXPECT_EQ(buffer, '#');
    EXPECT_FALSE(fs::exists(At("none"_w)));
}

TEST_F(Files, FolderThatIsNotThere) {
    EXPECT_FALSE(Write(At("none"_w) / "f", "bytes"));
    EXPECT_FALSE(fs::exists(At("none"_w)));
    EXPECT_FALSE(InputFile(Wide(At("none"_w) / "f").c_str()).IsOpen());
}

TEST_F(Files, NullAndEmptyPathsCannotBeOpened) {
    EXPECT_FALSE(InputFile(nullptr).IsOpen());
    EXPECT_FALSE(Write(nullptr, "x"));
    EXPECT_FALSE(Write(nullptr, ""));
    const wchar16 empty[] = {0};
    EXPECT_FALSE(InputFile(empty).IsOpen());
    EXPECT_FALSE(Write(empty, "x"));
}

TEST_F(Files, FolderIsNeitherReadNorWritten) {
    InputFile file(Wide(folder_).c_str());
    char buffer[16];
    EXPECT_EQ(file.Read(buffer, sizeof(buffer)), 0U);
    EXPECT_TRUE(!file.IsOpen() || file.Failed());
    EXPECT_EQ(file.SizeHint(), 0U);
    EXPECT_FALSE(Write(folder_, "bytes"));
    EXPECT_TRUE(fs::is_directory(folder_));
}

TEST_F(Files, FileOpenForReadingMayBeWrittenAndRemoved) {
    Make(At("f"_w), "before");
    InputFile file(Wide(At("f"_w)).c_str());
    ASSERT_TRUE(file.IsOpen());
    EXPECT_TRUE(Write(At("f"_w), "after!"));
    EXPECT_EQ(ReadAll(file, 16), "after!");
    std::error_code error;
    EXPECT_TRUE(fs::remove(At("f"_w), error)) << error.message();
}

// On Windows a name lives on as long as anybody has its file open.
TEST_F(Files, NothingStaysOpen) {
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(Write(At("f"_w), "bytes"));
        { InputFile file(Wide(At("f"_w)).c_str()); }
        ASSERT_TRUE(fs::remove(At("f"_w)));
    }
}

#if !defined(_WIN32)

TEST_F(Files, DescriptorsAreGivenBack) {
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

TEST_F(Files, PathThatTheSystemCannotExpressCannotBeOpened) {
    const wchar16 unpaired[] = {'a', 0xD83D, 0};
    const WideString path = Wide(folder_) + WideString("/"_w) + unpaired;
    EXPECT_FALSE(InputFile(path.c_str()).IsOpen());
    EXPECT_FALSE(Write(path.c_str(), "x"));
    EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(Files, FullDiskIsAFailure) {
    EXPECT_FALSE(Write("/dev/full", "x"));
    EXPECT_FALSE(Write("/dev/full", std::string(1 << 20, 'x')));
}

TEST_F(Files, FailedWriteIsNotForgottenByTheNext) {
    OutputFile file(Wide("/dev/full").c_str());
    EXPECT_FALSE(file.Write("x", 1));
    EXPECT_FALSE(file.Write("", 0));
    EXPECT_FALSE(file.Close());
}

TEST_F(Files, FolderOpensAndFailsOnReading) {
    InputFile file(Wide(folder_).c_str());
    EXPECT_TRUE(file.IsOpen());
    EXPECT_FALSE(file.Failed());
    char buffer[16];
    EXPECT_EQ(file.Read(buffer, sizeof(buffer)), 0U);
    EXPECT_TRUE(file.Failed());
}

TEST_F(Files, DeviceHasNoSize) {
    InputFile file(Wide("/dev/zero").c_str());
    ASSERT_TRUE(file.IsOpen());
    EXPECT_EQ(file.SizeHint(), 0U);
    std::string buffer(100000, '#');
    EXPECT_EQ(file.Read(buffer.data(), buffer.size()), 100000U);
    EXPECT_EQ(buffer, std::string(100000, '\0'));
}

TEST_F(Files, NewFileHasTheModeThatTheProcessAllows) {
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

#endif

}  // namespace
}  // namespace mox
