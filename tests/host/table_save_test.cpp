// Saving tables and sections through their handles.
#include "tests/host/table_support.h"

namespace host {
namespace {

TEST(TableSave, FileIsWideWithAZeroUnitAndNoMark) {
    const ScratchFile file;
    ASSERT_TRUE(xmlTableSave(LoadTable("<Table/>"), file.Name(), 0, 0));
    EXPECT_EQ(file.Bytes(), std::string("<\0T\0a\0b\0l\0e\0/\0>\0\n\0\0\0", 20));
}

TEST(TableSave, UnitsBeyondBytesAreKept) {
    const Table table(xmlTableNew(nullptr, nullptr, 0, u"\u0101\xD800"_w, 0, 0, 0, 0));
    const ScratchFile file;
    ASSERT_TRUE(xmlTableSave(table, file.Name(), 0, 0));
    EXPECT_EQ(file.Bytes(), WideFile("<Table name=\"").substr(0, 26) + std::string("\x01\x01\x00\xD8", 4) +
                                WideFile("\"/>\n"));
}

TEST(TableSave, OfASectionWritesItsElementAloneWithoutLineFeed) {
    const Profile profile = LoadEntries("<Var name=\"a\" type=\"long\"/>");
    const Table section(xmlGetProfileSection(profile, "S"_w, nullptr));
    EXPECT_EQ(SavedText(section), "<Table name=\"S\">\n\t<Var name=\"a\" type=\"long\"/>\n</Table>");
}

TEST(TableSave, ReservedOtherThanZeroOrRefuseOfOneKeepsTheFile) {
    const Table table = LoadTable(kTableA);
    const ScratchFile file;
    WriteBytes(file.Path(), "kept");
    EXPECT_FALSE(xmlTableSave(table, file.Name(), 1, 0));
    EXPECT_FALSE(xmlTableSave(table, file.Name(), -1, 0));
    EXPECT_FALSE(xmlTableSave(table, file.Name(), 0, 1));
    EXPECT_FALSE(xmlTableSave(table, file.Name(), 1, 1));
    EXPECT_EQ(file.Bytes(), "kept");
}

TEST(TableSave, RefusedSaveMakesNoFile) {
    const ScratchFile file;
    EXPECT_FALSE(xmlTableSave(LoadTable(kTableA), file.Name(), 0, 1));
    EXPECT_FALSE(xmlTableSave(LoadTable(kTableA), file.Name(), 2, 0));
    EXPECT_FALSE(file.Exists());
}

TEST(TableSave, AnyRefuseButOneSaves) {
    for (const std::int32_t refuse : {0, 2, -1, 256}) {
        const ScratchFile file;
        EXPECT_TRUE(xmlTableSave(LoadTable(kTableA), file.Name(), 0, refuse)) << refuse;
        EXPECT_EQ(WideFileText(file.Bytes()), "<Table name=\"A\"/>\n");
    }
}

TEST(TableSave, PathThatCannotBeOpenedFails) {
    const Table table = LoadTable(kTableA);
    const ScratchFile missing;
    EXPECT_FALSE(xmlTableSave(table, (WideText(missing.Name()) + "/x.xml"_w).c_str(), 0, 0));
    EXPECT_FALSE(xmlTableSave(table, WidePath(ScratchFolder()).c_str(), 0, 0));
    EXPECT_EQ(SavedText(table), "<Table name=\"A\"/>\n");
}

TEST(TableSave, MayBeRepeatedAndKeepsMarks) {
    const Table table = LoadTable("<Table eud=\"true\"><Var name=\"a\" type=\"long\" eud=\"true\"/></Table>");
    const std::string text =
        Lines({"<Table eud=\"true\">", "\t<Var name=\"a\" type=\"long\" eud=\"true\"/>", "</Table>"});
    EXPECT_EQ(SavedText(table), text);
    EXPECT_EQ(SavedText(table), text);
}

TEST(TableSave, SavedFileLoadsAndSavesTheSameBytes) {
    const Table table(xmlTableNew(nullptr, nullptr, 0, u"\u00fcbersicht"_w, 1, 3, 4, 1));
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 31);
    ASSERT_TRUE(value.SetVal_w(u"\u20ac <&> \U0001F600"_w));
    ASSERT_TRUE(xmlTableEntryAdd(table, nullptr, &value, nullptr, 1, 0));
    const ScratchFile first;
    ASSERT_TRUE(xmlTableSave(table, first.Name(), 0, 0));
    const Table again(xmlTableNew(first.Name(), nullptr, 0, u"\u00fcbersicht"_w, 0, 0, 0, 0));
    ASSERT_NE(again, nullptr);
    const ScratchFile second;
    ASSERT_TRUE(xmlTableSave(again, second.Name(), 0, 0));
    EXPECT_EQ(second.Bytes(), first.Bytes());
    EXPECT_EQ(GetValue(again, "a"_w), "a #0 001F '\\u20AC <&> \\uD83D\\uDE00'");
}

}  // namespace
}  // namespace host
