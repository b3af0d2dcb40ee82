// What reading an entry does to its records where no host sees it. What hosts see of it is in tests/host/:
// table_entry_forms_test.cpp, profile_entry_forms_test.cpp and value_loc_test.cpp.
#include "mox_xmlApi/entries/entry_reader.h"

#include <gtest/gtest.h>

#include "tests/unit/entry_support.h"

namespace mox::test {
namespace {

// The value record of this entry; "refused" in front when it cannot be read.
std::string Value(std::string_view entry) {
    OneEntry one(entry);
    EntryValueRecord value;
    EntryUiRecord ui;
    const bool read = ReadEntry(one.Cursor(), *one.Entry(), &value, &ui);
    return (read ? "" : "refused ") + Show(value);
}

// The presentation record of an entry with this "UI".
std::string Ui(std::string_view block) {
    OneEntry one("<Var type=\"long\">" + std::string(block) + "</Var>");
    EntryUiRecord ui;
    EXPECT_TRUE(ReadEntry(one.Cursor(), *one.Entry(), nullptr, &ui));
    EntryUiRecord alone;
    EXPECT_TRUE(ReadEntryUi(one.Cursor(), *one.Ui(), alone));
    EXPECT_EQ(Show(alone), Show(ui));
    return Show(ui);
}

TEST(ReadEntry, TakesEveryAttribute) {
    EXPECT_EQ(Value("<Var name=\"n\" id=\"7\" type=\"long\" array=\"array\" loc=\"true\" locval=\"true\" "
                    "Value=\"v\"/>"),
              "'n' type 8195 id 7 loc = 'v' locval");
}

TEST(ReadEntry, WithoutKnownTypeIsRefusedWithTheAttributesStored) {
    EXPECT_EQ(Value("<Var name=\"n\" id=\"7\" loc=\"true\"><Value>1</Value></Var>"), "refused 'n' id 7 loc");
    EXPECT_EQ(Value("<Var type=\"float\" name=\"n\"><Value>1</Value></Var>"), "refused 'n'");
}

TEST(ReadEntry, WithoutKnownTypeDoesNotReadTheUi) {
    OneEntry one("<Var><UI control=\"num\"/></Var>");
    EntryUiRecord ui;
    EXPECT_FALSE(ReadEntry(one.Cursor(), *one.Entry(), nullptr, &ui));
    EXPECT_EQ(Show(ui), "control 65535");
}

TEST(ReadEntry, DoesNotResetTheRecords) {
    OneEntry one("<Var id=\"9\"/>");
    EntryValueRecord value = FullValueRecord();
    EntryUiRecord ui = FullUiRecord();
    EXPECT_TRUE(ReadEntry(one.Cursor(), *one.Entry(), &value, &ui));
    EXPECT_EQ(Show(value), "'n' mask 1 type 3 id 9 loc = 'v' locval");
    EXPECT_EQ(Show(ui), Show(FullUiRecord()));
}

TEST(ReadEntry, WithoutRecordsStillValidates) {
    OneEntry good("<Var type=\"long\"><UI/></Var>");
    EXPECT_TRUE(ReadEntry(good.Cursor(), *good.Entry(), nullptr, nullptr));
    OneEntry bad("<Var><UI/></Var>");
    EXPECT_FALSE(ReadEntry(bad.Cursor(), *bad.Entry(), nullptr, nullptr));
}

TEST(ReadEntry, UnreadyCursorIsRefusedAndReadsNothing) {
    OneEntry one("<Var name=\"n\" type=\"long\"><UI control=\"num\"/></Var>");
    for (const auto& [document, table] : {std::pair{false, false}, {true, false}, {false, true}}) {
        one.SetReady(document, table);
        EntryValueRecord value;
        EntryUiRecord ui;
        EXPECT_FALSE(ReadEntry(one.Cursor(), *one.Entry(), &value, &ui));
        EXPECT_FALSE(ReadEntryUi(one.Cursor(), *one.Ui(), ui));
        EXPECT_EQ(Show(value), "''");
        EXPECT_EQ(Show(ui), "control 65535");
    }
}

TEST(ReadEntryUi, TakesEveryAttribute) {
    EXPECT_EQ(
        Ui("<UI control=\"radio\" access=\"visible\" flags=\"ff\" prov_index=\"12abc\" prov_owner=\"dwg\" "
           "regen=\"r\" name=\"n\" minVal=\"0\" maxVal=\"9\" Comment=\"c\" Value=\"v\" loc=\"true\"/>"),
        "control 19 access 1 flags 255 index 12 owner 2 regen 'r' comment 'c' name 'n' min '0' max '9' = 'v' "
        "loc");
}

TEST(ReadEntryUi, LocOfTheValueChild) {
    EXPECT_EQ(Ui("<UI><Value loc=\"true\"/></UI>"), "control 65535 loc");
    EXPECT_EQ(Ui("<UI loc=\"true\"><Value loc=\"no\"/></UI>"), "control 65535");
}

TEST(ReadEntryUi, ValueChildWithoutLocTakesTheTextOfTheLastAttribute) {
    EXPECT_EQ(Ui("<UI control=\"radio\" access=\"hidden\"><Value>1</Value></UI>"),
              "control 19 access 2 = '1'");
    EXPECT_EQ(Ui("<UI regen=\"true\"><Value>1</Value></UI>"), "control 65535 regen 'true' = '1' loc");
    EXPECT_EQ(Ui("<UI loc=\"true\" access=\"hidden\"><Value>1</Value></UI>"), "control 65535 access 2 = '1'");
    EXPECT_EQ(Ui("<UI loc=\"true\" regen=\"\"><Value>1</Value></UI>"), "control 65535 = '1' loc");
}

TEST(ReadEntryUi, ValueChildWithoutLocTakesThatOfThePreviousValueChild) {
    EXPECT_EQ(Ui("<UI><Value loc=\"true\">1</Value><Comment>c</Comment><Value>2</Value></UI>"),
              "control 65535 comment 'c' = '2' loc");
}

}  // namespace
}  // namespace mox::test
