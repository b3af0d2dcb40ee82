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

TEST(ReadEntry, IgnoresOtherAttributes) {
    EXPECT_EQ(Value("<Var eud=\"true\" type=\"long\" x=\"1\" Name=\"n\"/>"), "'' type 3");
}

TEST(ReadEntry, LastOfTwoAttributesOverwrites) {
    EXPECT_EQ(Value("<Var name=\"a\" type=\"long\" name=\"b\" type=\"bool\"/>"), "'b' type 11");
}

TEST(ReadEntry, FirstOfTwoQualifiersCounts) {
    EXPECT_EQ(Value("<Var array=\"vector\" type=\"long\" array=\"array\"/>"), "'' type 4099");
}

TEST(ReadEntry, WithoutKnownTypeIsRefusedWithTheAttributesStored) {
    EXPECT_EQ(Value("<Var name=\"n\" id=\"7\" loc=\"true\"><Value>1</Value></Var>"), "refused 'n' id 7 loc");
    EXPECT_EQ(Value("<Var type=\"float\" name=\"n\"><Value>1</Value></Var>"), "refused 'n'");
}

TEST(ReadEntry, UnknownTypeAfterAKnownOneChangesNothing) {
    EXPECT_EQ(Value("<Var type=\"long\" type=\"float\"/>"), "'' type 3");
}

TEST(ReadEntry, UnknownQualifierIsReadable) {
    EXPECT_EQ(Value("<Var type=\"long\" array=\"list\"/>"), "'' type 3");
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

TEST(ReadEntry, WithoutKnownTypeDoesNotReadTheUi) {
    OneEntry one("<Var><UI control=\"num\"/></Var>");
    EntryUiRecord ui;
    EXPECT_FALSE(ReadEntry(one.Cursor(), *one.Entry(), nullptr, &ui));
    EXPECT_EQ(Show(ui), "control 65535");
}

TEST(ReadEntry, NameOfTheElementPlaysNoPart) {
    EXPECT_EQ(Value("<Other name=\"n\" type=\"long\"/>"), "'n' type 3");
}

TEST(ReadEntry, LastValueChildWins) {
    EXPECT_EQ(Value("<Var type=\"long\" Value=\"a\"><Value>1</Value><Value>2</Value></Var>"),
              "'' type 3 = '2'");
    EXPECT_EQ(Value("<Var type=\"long\" Value=\"a\"><Value/></Var>"), "'' type 3");
}

TEST(ReadEntry, OtherChildrenAndCommentsAreSkipped) {
    EXPECT_EQ(
        Value(
            "<Var type=\"long\"><!-- Value --><value>1</value><X><Value>2</Value></X><Value>3</Value></Var>"),
        "'' type 3 = '3'");
}

TEST(ReadEntry, LocOfTheValueChild) {
    EXPECT_EQ(Value("<Var type=\"long\"><Value loc=\"true\">1</Value></Var>"), "'' type 3 = '1' locval");
    EXPECT_EQ(Value("<Var type=\"long\"><Value loc=\"false\">1</Value></Var>"), "'' type 3 = '1'");
}

TEST(ReadEntry, ValueChildWithoutLocTakesTheTextOfTheLastAttribute) {
    EXPECT_EQ(Value("<Var type=\"long\" loc=\"true\"><Value>1</Value></Var>"), "'' type 3 loc = '1' locval");
    EXPECT_EQ(Value("<Var type=\"long\" x=\"true\"><Value>1</Value></Var>"), "'' type 3 = '1' locval");
    EXPECT_EQ(Value("<Var loc=\"true\" type=\"long\"><Value>1</Value></Var>"), "'' type 3 loc = '1'");
}

TEST(ReadEntry, ValueChildWithoutLocTakesThatOfThePreviousValueChild) {
    EXPECT_EQ(Value("<Var type=\"long\"><Value loc=\"true\">1</Value><Value>2</Value></Var>"),
              "'' type 3 = '2' locval");
    EXPECT_EQ(Value("<Var type=\"long\" loc=\"true\"><Value loc=\"no\">1</Value><Value>2</Value></Var>"),
              "'' type 3 loc = '2'");
}

TEST(ReadEntry, EmptyTextLeavesTheLocvalThatWas) {
    EXPECT_EQ(Value("<Var locval=\"true\" type=\"long\" array=\"\"><Value>1</Value></Var>"),
              "'' type 3 = '1' locval");
    EXPECT_EQ(Value("<Var type=\"long\" loc=\"true\"><Value loc=\"\">1</Value></Var>"),
              "'' type 3 loc = '1'");
}

TEST(ReadEntry, UiDoesNotDisturbTheCarriedText) {
    EXPECT_EQ(
        Value(
            "<Var type=\"long\" loc=\"true\"><UI loc=\"no\"><Value loc=\"no\"/></UI><Value>1</Value></Var>"),
        "'' type 3 loc = '1' locval");
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

TEST(ReadEntryUi, IgnoresOtherAttributes) {
    EXPECT_EQ(Ui("<UI id=\"7\" type=\"long\" Control=\"num\"/>"), "control 65535");
}

TEST(ReadEntryUi, UnknownControlIsText) {
    EXPECT_EQ(Ui("<UI control=\"knob\"/>"), "control 2");
}

TEST(ReadEntryUi, LastOfEachChildWins) {
    EXPECT_EQ(Ui("<UI><Comment>a</Comment><Value>1</Value><Comment>b</Comment><Value>2</Value></UI>"),
              "control 65535 comment 'b' = '2'");
    EXPECT_EQ(Ui("<UI Comment=\"a\" Value=\"1\"><Comment/><Value/></UI>"), "control 65535");
}

TEST(ReadEntryUi, OtherChildrenAndCommentsAreSkipped) {
    EXPECT_EQ(Ui("<UI><!-- Comment --><UI><Value>1</Value></UI><value>2</value></UI>"), "control 65535");
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

TEST(ReadEntryUi, EveryUiOfAnEntryIsReadIntoTheSameRecord) {
    OneEntry one("<Var type=\"long\"><UI control=\"num\" name=\"a\"/><UI name=\"b\"/></Var>");
    EntryUiRecord ui;
    EXPECT_TRUE(ReadEntry(one.Cursor(), *one.Entry(), nullptr, &ui));
    EXPECT_EQ(Show(ui), "control 1 name 'b'");
}

}  // namespace
}  // namespace mox::test
