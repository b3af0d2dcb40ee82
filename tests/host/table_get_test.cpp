// Finding and enumerating entries, the same over both kinds of table handles.
#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableGet : public testing::Test {};
TYPED_TEST_SUITE(TableGet, TableKinds, TableKindNames);

constexpr std::string_view kThree =
    "<Var name=\"a\" id=\"1\" type=\"long\"><Value>1</Value></Var><!-- note -->"
    "<Var name=\"b\" id=\"2\" type=\"string\"><Value>2</Value></Var>"
    "<Var name=\"c\" id=\"3\" type=\"ucstring\"><Value>3</Value></Var>";

using Entries = std::vector<std::string>;

TYPED_TEST(TableGet, EnumerationGivesEntriesInOrderThenFalse) {
    const TypeParam table(kThree);
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(Show(value), "a #1 0003 '1'");
    const std::uint64_t first = position;
    EXPECT_NE(first, 0U);
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(Show(value), "b #2 0008 '2'");
    EXPECT_NE(position, first);
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(Show(value), "c #3 001F '3'");
    const std::uint64_t last = position;
    EXPECT_FALSE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(position, last);
    EXPECT_FALSE(xmlTableEntryGet(table, &position, &value, nullptr));
}

TYPED_TEST(TableGet, EnumerationOfAnEmptyTableIsFalseAtOnce) {
    const TypeParam table("<!-- only -->");
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    EXPECT_FALSE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(position, 0U);
}

TYPED_TEST(TableGet, EnumerationTakesElementsOfAnyName) {
    const TypeParam table(
        "<Var name=\"a\" type=\"long\"/><Item name=\"i\" type=\"bool\"/><Table type=\"byte\"/>");
    EXPECT_EQ(Enumerated(table), (Entries{"a #0 0003 ''", "i #0 000B ''", " #0 0011 ''"}));
}

TYPED_TEST(TableGet, EnumerationPassesOverAnUnreadableEntryWithTheNextCall) {
    const TypeParam table(
        "<Var name=\"a\" type=\"long\"/><Var name=\"b\" type=\"float\"/><Var name=\"c\" type=\"bool\"/>");
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, nullptr));
    const std::uint64_t first = position;
    EXPECT_FALSE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_NE(position, first);
    EXPECT_EQ(Show(value), " #0 0000 ''");
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(Show(value), "c #0 000B ''");
}

TYPED_TEST(TableGet, EnumerationWithoutValueRecordGivesPresentationData) {
    const TypeParam table(kThree);
    std::uint64_t position = 0;
    TableEntryUInfoStruct ui;
    ASSERT_TRUE(xmlTableEntryGet(table, &position, nullptr, &ui));
    EXPECT_EQ(Show(ui), "a #1 0003 '' control 65535");
    ASSERT_TRUE(xmlTableEntryGet(table, &position, nullptr, &ui));
    EXPECT_EQ(Show(ui), "b #2 0008 '' control 65535");
    ASSERT_TRUE(xmlTableEntryGet(table, &position, nullptr, &ui));
    EXPECT_FALSE(xmlTableEntryGet(table, &position, nullptr, &ui));
    EXPECT_EQ(Show(ui), " #0 0000 none control 0");
}

TYPED_TEST(TableGet, EnumerationClearsTheRecordsBeforeEachStep) {
    const TypeParam table("<Var type=\"long\"/>");
    TableEntryValueInfoStruct value = ValueRecord("old"_w, 8, "old", 9, 3);
    TableEntryUInfoStruct ui = UiRecord("old"_w, 7, 8, "old");
    ui.prov_index = 5;
    ui.prov_owner = 4;
    ui.SetComment_w("old"_w);
    ui.SetUserName_w("old"_w);
    std::uint64_t position = 0;
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, &ui));
    EXPECT_EQ(Show(value), " #0 0003 ''");
    EXPECT_EQ(Show(ui), " #0 0003 '' control 65535");
}

TYPED_TEST(TableGet, EndOfAnEnumerationLeavesTheRecordsCleared) {
    const TypeParam table("");
    TableEntryValueInfoStruct value = ValueRecord("old"_w, 8, "old", 9, 3);
    TableEntryUInfoStruct ui = UiRecord("old"_w, 7, 8, "old");
    std::uint64_t position = 0;
    EXPECT_FALSE(xmlTableEntryGet(table, &position, &value, &ui));
    EXPECT_EQ(Show(value), " #0 0000 'old'");
    EXPECT_EQ(Show(ui), " #0 0000 none control 0");
}

TYPED_TEST(TableGet, PositionsAreIndependentAndMayBeCopied) {
    const TypeParam table(kThree);
    std::uint64_t one = PositionOn(table, 0);
    std::uint64_t two = one;
    TableEntryValueInfoStruct value;
    ASSERT_TRUE(xmlTableEntryGet(table, &one, &value, nullptr));
    ASSERT_TRUE(xmlTableEntryGet(table, &one, &value, nullptr));
    EXPECT_EQ(Show(value), "c #3 001F '3'");
    ASSERT_TRUE(xmlTableEntryGet(table, &two, &value, nullptr));
    EXPECT_EQ(Show(value), "b #2 0008 '2'");
}

TYPED_TEST(TableGet, PositionStaysGoodWhenOtherEntriesComeAndGo) {
    const TypeParam table(kThree);
    std::uint64_t position = PositionOn(table, 1);
    const TableEntryBaseInfoStruct first = NameRecord("a"_w);
    ASSERT_TRUE(xmlTableRemoveEntry(table, &first, 0, 0));
    TableEntryValueInfoStruct added = ValueRecord("x"_w, 3, "9");
    ASSERT_TRUE(xmlTableEntryAdd(table, &position, &added, nullptr, 0, 0));
    TableEntryValueInfoStruct value;
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(Show(value), "c #3 001F '3'");
    EXPECT_EQ(Enumerated(table), (Entries{"x #0 0003 '9'", "b #2 0008 '2'", "c #3 001F '3'"}));
}

TYPED_TEST(TableGet, AllBitsSetLooksUpByNameAndStays) {
    const TypeParam table(kThree);
    std::uint64_t position = kByName;
    TableEntryValueInfoStruct value = ValueRecord("b"_w);
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(Show(value), "b #2 0008 '2'");
    EXPECT_EQ(position, kByName);
    value = ValueRecord("z"_w, 3, "old", 4);
    EXPECT_FALSE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(Show(value), "z #4 0003 'old'");
    EXPECT_EQ(position, kByName);
}

TYPED_TEST(TableGet, NullPositionLooksUpByName) {
    const TypeParam table(kThree);
    EXPECT_EQ(GetValue(table, "c"_w), "c #3 001F '3'");
    EXPECT_EQ(GetValue(table, "C"_w), "none");
    EXPECT_EQ(GetValue(table, "c "_w), "none");
    EXPECT_EQ(GetValue(table, "cc"_w), "none");
}

TYPED_TEST(TableGet, FirstOfSeveralEntriesOfANameIsRead) {
    const TypeParam table(
        "<Var name=\"a\" type=\"long\"><Value>1</Value></Var><Var name=\"a\" "
        "type=\"long\"><Value>2</Value></Var>");
    EXPECT_EQ(GetValue(table, "a"_w), "a #0 0003 '1'");
}

TYPED_TEST(TableGet, UnreadableFirstEntryHidesTheSecondOfItsName) {
    const TypeParam table("<Var name=\"a\"/><Var name=\"a\" type=\"long\"/>");
    EXPECT_EQ(GetValue(table, "a"_w), "none");
}

TYPED_TEST(TableGet, IdAndTypeOfTheKeyPlayNoPart) {
    const TypeParam table(kThree);
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 8, "x", 77);
    ASSERT_TRUE(xmlTableEntryGet(table, nullptr, &value, nullptr));
    EXPECT_EQ(Show(value), "a #1 0003 '1'");
}

TYPED_TEST(TableGet, ByNameAnEntryWithoutIdLeavesTheCallersId) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/>");
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 0, nullptr, 77);
    TableEntryUInfoStruct ui;
    ASSERT_TRUE(xmlTableEntryGet(table, nullptr, &value, &ui));
    EXPECT_EQ(Show(value), "a #77 0003 ''");
    EXPECT_EQ(Show(ui), "a #77 0003 '' control 65535");
    std::uint64_t position = kByName;
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(Show(value), "a #77 0003 ''");
}

TYPED_TEST(TableGet, ByNameTheWriteMaskOfTheCallerStays) {
    const TypeParam table(kThree);
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 0, nullptr, 0, 6);
    ASSERT_TRUE(xmlTableEntryGet(table, nullptr, &value, nullptr));
    EXPECT_EQ(Show(value), "a #1 0003 '1' mask 0006");
}

TYPED_TEST(TableGet, FailedLookUpByNameLeavesTheValueRecordAndClearsTheOther) {
    const TypeParam table("<Var name=\"a\" id=\"5\"/>");
    for (const wchar16* name : {"a"_w, "b"_w}) {
        TableEntryValueInfoStruct value = ValueRecord(name, 8, "old", 9, 3);
        TableEntryUInfoStruct ui = UiRecord("old"_w, 7, 8, "old");
        EXPECT_FALSE(xmlTableEntryGet(table, nullptr, &value, &ui));
        EXPECT_EQ(Show(value), Printable(name) + " #9 0008 'old' mask 0003");
        EXPECT_EQ(Show(ui), " #0 0000 none control 0");
    }
}

TYPED_TEST(TableGet, EmptyNameFindsTheFirstEntryThatHasAName) {
    const TypeParam table(
        "<Var type=\"bool\"/><Var name=\"b\" type=\"long\"/><Var name=\"\" type=\"byte\"/>");
    EXPECT_EQ(GetValue(table, ""_w), "b #0 0003 ''");
}

TYPED_TEST(TableGet, ByNameWithPresentationRecordAloneReadsTheFirstNamedEntry) {
    const TypeParam table(
        "<Var type=\"bool\"/><Var name=\"b\" type=\"long\"/><Var name=\"c\" type=\"byte\"/>");
    TableEntryUInfoStruct ui = UiRecord("c"_w, 7);
    ASSERT_TRUE(xmlTableEntryGet(table, nullptr, nullptr, &ui));
    EXPECT_EQ(Show(ui), "b #0 0003 '' control 65535");
    std::uint64_t position = kByName;
    ui = UiRecord("c"_w, 7);
    ASSERT_TRUE(xmlTableEntryGet(table, &position, nullptr, &ui));
    EXPECT_EQ(Show(ui), "b #0 0003 '' control 65535");
}

TYPED_TEST(TableGet, LongNameIsCutTo259Units) {
    const std::string name(300, 'n');
    const TypeParam table("<Var name=\"" + name + "\" type=\"long\"/>");
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    value.name[259] = 'x';
    std::uint64_t position = 0;
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, &ui));
    EXPECT_EQ(WideText(value.name), WideText(259, 'n'));
    EXPECT_EQ(WideText(ui.name), WideText(259, 'n'));
    EXPECT_EQ(value.name[259], 0);
}

TYPED_TEST(TableGet, NothingOfAnOlderNameStaysAfterTheName) {
    const TypeParam table("<Var name=\"abc\" type=\"long\"/>");
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    const auto fillNames = [&] {
        std::fill(std::begin(value.name), std::end(value.name), wchar16{'x'});
        std::fill(std::begin(ui.name), std::end(ui.name), wchar16{'x'});
    };
    const auto onlyNameIn = [](const TableEntryBaseInfoStruct& record) {
        return std::all_of(record.name + 3, std::end(record.name), [](wchar16 unit) { return unit == 0; });
    };
    fillNames();
    std::uint64_t position = 0;
    ASSERT_TRUE(xmlTableEntryGet(table, &position, &value, &ui));
    EXPECT_EQ(WideText(value.name), "abc"_w);
    EXPECT_TRUE(onlyNameIn(value));
    EXPECT_TRUE(onlyNameIn(ui));
    fillNames();
    value.name[3] = 0;
    std::copy_n("abc", 3, value.name);
    ASSERT_TRUE(xmlTableEntryGet(table, nullptr, &value, &ui));
    EXPECT_EQ(WideText(ui.name), "abc"_w);
    EXPECT_TRUE(onlyNameIn(value));
    EXPECT_TRUE(onlyNameIn(ui));
}

TYPED_TEST(TableGet, NameOf259UnitsIsFoundAndOneOf260IsNot) {
    for (const std::size_t length : {259U, 260U}) {
        const TypeParam table("<Var name=\"" + std::string(length, 'n') + "\" type=\"long\"/>");
        TableEntryValueInfoStruct value = ValueRecord(WideText(length, 'n').c_str());
        EXPECT_EQ(xmlTableEntryGet(table, nullptr, &value, nullptr), length == 259);
        EXPECT_EQ(xmlTableEntryIsExist(table, &value), length == 259);
    }
}

TYPED_TEST(TableGet, EntryWithoutNameKeepsTheNameOfTheRecord) {
    const TypeParam table("<Var name=\"a\" name=\"\" type=\"long\"/>");
    EXPECT_EQ(GetValue(table, "a"_w), "a #0 0003 ''");
    EXPECT_EQ(Enumerated(table), (Entries{" #0 0003 ''"}));
}

TYPED_TEST(TableGet, EntryIsFoundByItsFirstNameAndGivesItsLast) {
    const TypeParam table("<Var name=\"a\" name=\"b\" type=\"long\"/>");
    EXPECT_EQ(GetValue(table, "a"_w), "b #0 0003 ''");
    EXPECT_EQ(GetValue(table, "b"_w), "none");
}

TYPED_TEST(TableGet, DoesNotChangeTheDocument) {
    const TypeParam table(kThree);
    const std::string before = table.Text();
    GetValue(table, "a"_w);
    GetUi(table, "z"_w);
    Enumerated(table);
    EXPECT_EQ(table.Text(), before);
}

}  // namespace
}  // namespace host
