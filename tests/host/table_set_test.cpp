// Overwriting entries, by name and by position, the same over both kinds of table handles.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>

#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableSet : public testing::Test {};
TYPED_TEST_SUITE(TableSet, TableKinds, TableKindNames);

TYPED_TEST(TableSet, WritesEveryFieldOfTheValueRecord) {
    const TypeParam table(kOwnValue);
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 0x2008, "x<y", 9)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"9\" type=\"string\" array=\"array\" loc=\"\">",
                                       "\t\t<Value loc=\"\">x&lt;y</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSet, WritesZeroAndEmptyToo) {
    const TypeParam table(kOwnValue);
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 0, "", 0)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"0\" type=\"\" array=\"\" loc=\"\">",
                                       "\t\t<Value loc=\"\"/>", "\t</Var>"}));
}

TYPED_TEST(TableSet, ValueThatWasNeverSetIsEmpty) {
    for (const std::uint16_t type : {std::uint16_t{3}, std::uint16_t{31}}) {
        const TypeParam table(kOwnValue);
        EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, type, nullptr, 0, 2)));
        EXPECT_EQ(GetValue(table, "a"_w), "a #1 0003 ''");
    }
}

TYPED_TEST(TableSet, TwiceGivesTheSameTree) {
    const TypeParam table(kOwnValue);
    ASSERT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 9)));
    const std::string once = table.Text();
    ASSERT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 9)));
    EXPECT_EQ(table.Text(), once);
}

TYPED_TEST(TableSet, MaskOfValueChangesTheValueAlone) {
    const TypeParam table(
        "<Var name=\"a\" id=\"1\" type=\"long\" loc=\"true\"><Value loc=\"true\">1</Value></Var>");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 8, "2", 9, 0x0002)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"1\" type=\"long\" loc=\"true\">",
                                       "\t\t<Value loc=\"\">2</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSet, MaskOfTypeChangesTypeAndQualifierAlone) {
    const TypeParam table(kOwnValue);
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 0x1005, "2", 9, 0x0004)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"1\" type=\"double\" array=\"vector\">",
                                       "\t\t<Value>1</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSet, MaskOfIdChangesTheIdAlone) {
    const TypeParam table(kOwnValue);
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 8, "2", 0, 0x0008)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"0\" type=\"long\" array=\"\">",
                                       "\t\t<Value>1</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSet, MaskOfNameWritesTheName) {
    const TypeParam table(kOwnValue);
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value = ValueRecord("new"_w, 8, "2", 9, 0x0001);
    EXPECT_TRUE(xmlTableEntrySet(table, &position, &value, nullptr, 0, 0));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"new\" id=\"1\" type=\"long\" array=\"\">",
                                       "\t\t<Value>1</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSet, MaskBitsBeyondTheFourAreDropped) {
    const TypeParam one(kOwnValue);
    EXPECT_TRUE(SetByName(one, ValueRecord("a"_w, 3, "2", 9, 0xFFF2)));
    EXPECT_EQ(one.Text(), TableText({"\t<Var name=\"a\" id=\"1\" type=\"long\" array=\"\">",
                                     "\t\t<Value loc=\"\">2</Value>", "\t</Var>"}));
    const TypeParam all(kOwnValue);
    EXPECT_TRUE(SetByName(all, ValueRecord("a"_w, 3, "2", 9, 0x0010)));
    EXPECT_EQ(all.Text(), TableText({"\t<Var name=\"a\" id=\"9\" type=\"long\" array=\"\" loc=\"\">",
                                     "\t\t<Value loc=\"\">2</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSet, UnknownNameIsFalseAndAddsNothing) {
    const TypeParam table(kOwnValue);
    const std::string before = table.Text();
    EXPECT_FALSE(SetByName(table, ValueRecord("b"_w, 3, "2"), 1, 1));
    EXPECT_FALSE(SetByName(table, ValueRecord("A"_w, 3, "2"), 1, 1));
    TableEntryUInfoStruct ui = UiRecord("b"_w, 1);
    EXPECT_FALSE(xmlTableEntrySet(table, nullptr, nullptr, &ui, 1, 1));
    EXPECT_EQ(table.Text(), before);
}

TYPED_TEST(TableSet, IdAndTypeOfTheRecordPlayNoPartInFindingTheEntry) {
    const TypeParam table(
        "<Var name=\"b\" id=\"9\" type=\"string\"><Value>0</Value></Var>"
        "<Var name=\"a\" id=\"1\" type=\"long\"><Value>1</Value></Var>");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 8, "2", 9, 2)));
    EXPECT_EQ(Enumerated(table), (std::vector<std::string>{"b #9 0008 '0'", "a #1 0003 '2'"}));
}

TYPED_TEST(TableSet, EmptyNameWritesTheFirstEntryThatHasAName) {
    const TypeParam table("<Var type=\"long\"><Value>0</Value></Var>" + std::string(kOwnValue));
    EXPECT_TRUE(SetByName(table, ValueRecord(""_w, 3, "2", 0, 2)));
    EXPECT_EQ(Enumerated(table), (std::vector<std::string>{" #0 0003 '0'", "a #1 0003 '2'"}));
}

TYPED_TEST(TableSet, FirstOfSeveralEntriesOfANameIsWritten) {
    const TypeParam table(std::string(kOwnValue) + std::string(kOwnValue));
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 0, 2)));
    EXPECT_EQ(Enumerated(table), (std::vector<std::string>{"a #1 0003 '2'", "a #1 0003 '1'"}));
}

TYPED_TEST(TableSet, WideTextIsTakenAsItIs) {
    const TypeParam table(kOwnValue);
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 31);
    ASSERT_TRUE(value.SetVal_w(u"\u20ac\U0001F600"_w));
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, &value, nullptr, 0, 0));
    EXPECT_EQ(GetValue(table, "a"_w), "a #0 001F '\\u20AC\\uD83D\\uDE00'");
}

TYPED_TEST(TableSet, NarrowTextIsConverted) {
    const TypeParam table(kOwnValue);
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 8, "\xE2\x82\xAC")));
    EXPECT_EQ(GetValue(table, "a"_w), "a #0 0008 '\\u20AC'");
}

// Blocks of just the size of the text: the sanitizer sees a read before or after it.
TYPED_TEST(TableSet, NarrowTextOfEachLengthIsKept) {
    const TypeParam table(kOwnValue);
    for (std::size_t length = 0; length < 20; ++length) {
        const auto text = std::make_unique<char[]>(length + 1);
        std::fill_n(text.get(), length, 'x');
        EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 8, text.get())));
        EXPECT_EQ(GetValue(table, "a"_w), "a #0 0008 '" + std::string(length, 'x') + "'");
    }
}

TYPED_TEST(TableSet, IdBeyondTheSignedRangeIsWrittenNegativeAndReadBack) {
    const TypeParam table(kOwnValue);
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "1", 0x80000000, 8)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"-2147483648\" type=\"long\" array=\"\">",
                                       "\t\t<Value>1</Value>", "\t</Var>"}));
    EXPECT_EQ(GetValue(table, "a"_w), "a #2147483648 0003 '1'");
}

TYPED_TEST(TableSet, LaterScalarTypeEmptiesTheQualifier) {
    const TypeParam table(kOwnValue);
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 0x2003, "1", 0, 4)));
    EXPECT_EQ(GetValue(table, "a"_w), "a #1 2003 '1'");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "1", 0, 4)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"1\" type=\"long\" array=\"\">",
                                       "\t\t<Value>1</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSet, ByPositionWritesTheEntryAfterItAndMovesOntoIt) {
    const TypeParam table(
        "<Var name=\"a\" type=\"long\"><Value>1</Value></Var><!-- c -->"
        "<Var name=\"b\" type=\"long\"><Value>2</Value></Var>");
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value = ValueRecord("z"_w, 3, "8", 0, 2);
    EXPECT_TRUE(xmlTableEntrySet(table, &position, &value, nullptr, 0, 0));
    EXPECT_EQ(position, PositionOn(table, 0));
    value = ValueRecord("z"_w, 3, "9", 0, 2);
    EXPECT_TRUE(xmlTableEntrySet(table, &position, &value, nullptr, 0, 0));
    EXPECT_EQ(position, PositionOn(table, 1));
    EXPECT_EQ(Enumerated(table), (std::vector<std::string>{"a #0 0003 '8'", "b #0 0003 '9'"}));
    EXPECT_FALSE(xmlTableEntrySet(table, &position, &value, nullptr, 0, 0));
    EXPECT_EQ(position, PositionOn(table, 1));
}

TYPED_TEST(TableSet, ByPositionWritesEntriesWithoutName) {
    const TypeParam table("<Item type=\"long\"><Value>1</Value></Item>");
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value = ValueRecord("n"_w, 3, "2");
    EXPECT_TRUE(xmlTableEntrySet(table, &position, &value, nullptr, 0, 0));
    EXPECT_EQ(table.Text(), TableText({"\t<Item type=\"long\" name=\"n\" id=\"0\" array=\"\" loc=\"\">",
                                       "\t\t<Value loc=\"\">2</Value>", "\t</Item>"}));
}

TYPED_TEST(TableSet, PositionThatIsNoneIsRefused) {
    const TypeParam table(kOwnValue);
    const std::string before = table.Text();
    std::uint64_t position = ~std::uint64_t{0};
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "2", 9);
    EXPECT_FALSE(xmlTableEntrySet(table, &position, &value, nullptr, 1, 1));
    EXPECT_EQ(position, ~std::uint64_t{0});
    EXPECT_EQ(table.Text(), before);
}

TYPED_TEST(TableSet, ByPositionInAnEmptyTableIsFalse) {
    const TypeParam table("");
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "2");
    EXPECT_FALSE(xmlTableEntrySet(table, &position, &value, nullptr, 1, 1));
    EXPECT_EQ(position, 0U);
    EXPECT_EQ(table.Text(), "<Table name=\"T\"/>\n");
}

}  // namespace
}  // namespace host
