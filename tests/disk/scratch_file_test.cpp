// Private files by which bytes go to functions that know files by name only.
#include "mox_xmlApi/disk/scratch_file.hpp"

#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>

#include "tests/disk/disk_support.h"

namespace {

namespace fs = std::filesystem;
using mox::ScratchFile;

fs::path PathOf(const ScratchFile& file) {
    const std::basic_string<wchar16> units(file.path());
    return {std::u16string(units.begin(), units.end())};
}

TEST(ScratchFiles, AreEmptyAtFirstAndGoneInTheEnd) {
    fs::path path;
    {
        const auto file = ScratchFile::create();
        ASSERT_TRUE(file.has_value());
        path = PathOf(*file);
        EXPECT_EQ(file->read(), "");
        EXPECT_TRUE(fs::exists(path));
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(ScratchFiles, GiveBackWhatWasWritten) {
    auto file = ScratchFile::create();
    ASSERT_TRUE(file.has_value());
    const std::string bytes("a\0b\r\n\xFF", 6);
    EXPECT_TRUE(file->write(bytes + std::string(100000, 'x')));
    EXPECT_EQ(file->read(), bytes + std::string(100000, 'x'));
    EXPECT_TRUE(file->write(bytes));
    EXPECT_EQ(file->read(), bytes);
}

TEST(ScratchFiles, CanBeLoadedAndSavedByTheExports) {
    auto file = ScratchFile::create();
    ASSERT_TRUE(file.has_value());
    mox::Profile written;
    ASSERT_TRUE(written.setString("S", "K", "value"));
    ASSERT_EQ(xmlProfileSave(written.handle(), file->path(), 0, 0, 1), 1U);
    const std::optional<std::string> bytes = file->read();
    EXPECT_EQ(bytes, front_tests::SavedBytes(written));
    auto other = ScratchFile::create();
    ASSERT_TRUE(other.has_value() && other->write(*bytes));
    const host::Profile read(xmlProfileNew(other->path(), nullptr, 0, 1));
    EXPECT_EQ(xmlGetProfileString(read, host::WidePath("S").c_str(), host::WidePath("K").c_str(), nullptr, 0,
                                  nullptr),
              5U);
}

TEST(ScratchFiles, CanBeMoved) {
    auto first = ScratchFile::create();
    auto second = ScratchFile::create();
    ASSERT_TRUE(first.has_value() && second.has_value() && first->write("1") && second->write("2"));
    EXPECT_NE(PathOf(*first), PathOf(*second));
    ScratchFile moved(std::move(*first));
    EXPECT_EQ(moved.read(), "1");
    *second = std::move(moved);
    EXPECT_EQ(second->read(), "1");
    first.reset();
    EXPECT_EQ(second->read(), "1");
}

}  // namespace
