#include "mox_xmlApi/platform/files.h"

#include "tests/unit/files_support.h"

namespace mox::test {
namespace {

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

}  // namespace
}  // namespace mox::test
