// Where an overwritten entry gets its value: its own "Value", or the one of its presentation data.
#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableSetPlaces : public testing::Test {};
TYPED_TEST_SUITE(TableSetPlaces, TableKinds, TableKindNames);

bool SetBoth(void* handle, TableEntryValueInfoStruct value, TableEntryUInfoStruct ui) {
    return xmlTableEntrySet(handle, nullptr, &value, &ui, 0, 0);
}

TYPED_TEST(TableSetPlaces, TypeOfTheRecordDoesNotMakeAnUnreadableEntryReadable) {
    // Its value is not seen: it counts as an entry without one, and keeps it.
    const TypeParam table("<Var name=\"a\"><Value>1</Value></Var>");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2")));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"0\" type=\"long\" array=\"\" loc=\"\">",
                                       "\t\t<Value>1</Value>", "\t\t<UI control=\"text\">",
                                       "\t\t\t<Value loc=\"\">2</Value>", "\t\t</UI>", "\t</Var>"}));
}

TYPED_TEST(TableSetPlaces, RecordOfPresentationDataAloneWritesAnEntryThatHasAUiValue) {
    const TypeParam table(kUiValue);
    TableEntryUInfoStruct ui = UiRecord("a"_w, 19, 3, "2");
    ui.prov_index = 8;
    ui.prov_owner = 4;
    ui.SetUserName_w("m"_w);
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, nullptr, &ui, 0, 0));
    EXPECT_EQ(
        table.Text(),
        TableText(
            {"\t<Var name=\"a\" type=\"long\" array=\"\">",
             "\t\t<UI control=\"radio\" prov_index=\"8\" prov_owner=\"erg\" name=\"m\" access=\"hidden\""
             " flags=\"00FF\" regen=\"r\" minVal=\"0\" maxVal=\"9\">",
             "\t\t\t<Comment>c</Comment>", "\t\t\t<Value loc=\"\">2</Value>", "\t\t</UI>", "\t</Var>"}));
}

TYPED_TEST(TableSetPlaces, RecordOfPresentationDataAloneLeavesAnEntryWithoutUiValue) {
    const TypeParam table(kOwnValue);
    const std::string before = table.Text();
    TableEntryUInfoStruct ui = UiRecord("a"_w, 19, 3, "2");
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, nullptr, &ui, 0, 0));
    EXPECT_EQ(table.Text(), before);
}

TYPED_TEST(TableSetPlaces, PresentationRecordIsNotWrittenToAnEntryWithAnOwnValueAlone) {
    const TypeParam table(kOwnValue);
    EXPECT_TRUE(SetBoth(table, ValueRecord("a"_w, 3, "2", 1), UiRecord("a"_w, 19, 3, "3")));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"1\" type=\"long\" array=\"\" loc=\"\">",
                                       "\t\t<Value loc=\"\">2</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSetPlaces, ValueRecordIsNotWrittenToAnEntryWithAUiValueAlone) {
    const TypeParam table(
        "<Var name=\"a\" type=\"long\"><UI control=\"num\"><Comment>c</Comment>"
        "<Value>1</Value></UI></Var>");
    EXPECT_TRUE(SetBoth(table, ValueRecord("a"_w, 8, "2", 9), UiRecord("z"_w, 19, 3, "3")));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\">", "\t\t<UI control=\"radio\">",
                                       "\t\t\t<Comment>c</Comment>", "\t\t\t<Value loc=\"\">3</Value>",
                                       "\t\t</UI>", "\t</Var>"}));
}

TYPED_TEST(TableSetPlaces, OwnValueStaysWhenBothRecordsAreWritten) {
    const TypeParam table(
        "<Var name=\"a\" id=\"1\" type=\"long\"><Value>1</Value><UI><Value>2</Value></UI></Var>");
    EXPECT_TRUE(SetBoth(table, ValueRecord("a"_w, 8, "3", 9), UiRecord("a"_w, 19, 3, "4")));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"9\" type=\"string\" array=\"\" loc=\"\">",
                                       "\t\t<Value>1</Value>", "\t\t<UI control=\"radio\">",
                                       "\t\t\t<Value>2</Value>", "\t\t</UI>", "\t</Var>"}));
}

TYPED_TEST(TableSetPlaces, NameOfThePresentationRecordCountsWhenThereIsNoOther) {
    const TypeParam table("<Var name=\"b\" type=\"long\"><UI><Value>0</Value></UI></Var>" +
                          std::string(kUiValue));
    TableEntryUInfoStruct ui = UiRecord("a"_w, 1);
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, nullptr, &ui, 0, 0));
    EXPECT_EQ(GetUi(table, "a"_w), "a #0 0003 '' control 1 comment 'c'");
    EXPECT_EQ(GetUi(table, "b"_w), "b #0 0003 '0' control 65535");
}

TYPED_TEST(TableSetPlaces, ValueRecordAloneGoesToTheUiOfAnEntryThatHasOneThere) {
    const TypeParam table(kUiValue);
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 8, "2", 9)));
    EXPECT_EQ(table.Text(),
              TableText({"\t<Var name=\"a\" type=\"string\" array=\"\" id=\"9\" loc=\"\">",
                         "\t\t<UI control=\"text\" access=\"hidden\" flags=\"00FF\" regen=\"r\" minVal=\"0\""
                         " maxVal=\"9\">",
                         "\t\t\t<Comment>c</Comment>", "\t\t\t<Value loc=\"\">2</Value>", "\t\t</UI>",
                         "\t</Var>"}));
}

TYPED_TEST(TableSetPlaces, ValueForAUiWithoutCommentReplacesTheOneThere) {
    const TypeParam table("<Var name=\"a\" type=\"long\"><UI control=\"num\"><Value>1</Value></UI></Var>");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2")));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\" id=\"0\" array=\"\" loc=\"\">",
                                       "\t\t<UI control=\"text\">", "\t\t\t<Value loc=\"\">2</Value>",
                                       "\t\t</UI>", "\t</Var>"}));
}

TYPED_TEST(TableSetPlaces, ValueForAnEntryWithoutAnyIsStoredInANewUi) {
    const TypeParam table("<Var name=\"a\" type=\"long\"><Value/></Var>");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 5)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\" id=\"5\" array=\"\" loc=\"\">",
                                       "\t\t<Value/>", "\t\t<UI control=\"text\">",
                                       "\t\t\t<Value loc=\"\">2</Value>", "\t\t</UI>", "\t</Var>"}));
}

TYPED_TEST(TableSetPlaces, ValueForAnEntryWithoutAnyIsStoredInAUiWithComment) {
    const TypeParam table("<Var name=\"a\" type=\"long\"><UI><Comment>c</Comment></UI></Var>");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 5)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\" id=\"5\" array=\"\" loc=\"\">",
                                       "\t\t<UI control=\"text\">", "\t\t\t<Comment>c</Comment>",
                                       "\t\t\t<Value loc=\"\">2</Value>", "\t\t</UI>", "\t</Var>"}));
}

TYPED_TEST(TableSetPlaces, BothRecordsForAnEntryWithoutValuesWriteTheValueOfTheValueRecord) {
    const TypeParam table("<Var name=\"a\" type=\"long\"><UI><Comment>c</Comment></UI></Var>");
    TableEntryUInfoStruct ui = UiRecord("a"_w, 19, 3, "3");
    ui.prov_index = 8;
    EXPECT_TRUE(SetBoth(table, ValueRecord("a"_w, 3, "2"), ui));
    EXPECT_EQ(GetUi(table, "a"_w), "a #0 0003 '2' control 19 index 8 comment 'c'");
}

TYPED_TEST(TableSetPlaces, ValueThatWasNeverSetLeavesThatOfThePresentationRecord) {
    const TypeParam table("<Var name=\"a\" type=\"long\"><UI><Comment>c</Comment></UI></Var>");
    EXPECT_TRUE(SetBoth(table, ValueRecord("a"_w, 3), UiRecord("a"_w, 19, 3, "3")));
    EXPECT_EQ(GetUi(table, "a"_w), "a #0 0003 '3' control 19 comment 'c'");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3)));
    EXPECT_EQ(GetUi(table, "a"_w), "a #0 0003 '' control 2 comment 'c'");
}

TYPED_TEST(TableSetPlaces, PresentationValueOfWideTextIsTakenAsItIs) {
    const TypeParam table(kUiValue);
    TableEntryUInfoStruct ui = UiRecord("a"_w, 2, 31);
    ASSERT_TRUE(ui.SetVal_w(u"\u20ac"_w));
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, nullptr, &ui, 0, 0));
    EXPECT_EQ(GetUi(table, "a"_w), "a #0 0003 '\\u20AC' control 2 comment 'c'");
}

}  // namespace
}  // namespace host
