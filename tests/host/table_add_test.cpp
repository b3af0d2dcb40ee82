// Adding entries and updating them, the same over both kinds of table handles.
#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableAdd : public testing::Test {};
TYPED_TEST_SUITE(TableAdd, TableKinds, TableKindNames);

TYPED_TEST(TableAdd, WritesWhatIsSet) {
    const TypeParam table("");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 0x2003, "1", 9)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"9\" type=\"long\" array=\"array\">",
                                       "\t\t<Value>1</Value>", "\t</Var>"}));
}

TYPED_TEST(TableAdd, LeavesOutAnIdOfZero) {
    const TypeParam table("");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 8, "x")));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"string\" array=\"\">",
                                       "\t\t<Value>x</Value>", "\t</Var>"}));
}

TYPED_TEST(TableAdd, NameAndTypeAreWrittenEvenWhenEmpty) {
    const TypeParam table("");
    EXPECT_TRUE(Add(table, ValueRecord(""_w)));
    EXPECT_EQ(table.Text(),
              TableText({"\t<Var name=\"\" type=\"\" array=\"\">", "\t\t<Value/>", "\t</Var>"}));
}

TYPED_TEST(TableAdd, EveryTypeCodeHasItsName) {
    for (const auto& [code, written] : {std::pair{2, "type=\"short\" array=\"\""},
                                        {3, "type=\"long\" array=\"\""},
                                        {5, "type=\"double\" array=\"\""},
                                        {8, "type=\"string\" array=\"\""},
                                        {11, "type=\"bool\" array=\"\""},
                                        {16, "type=\"char\" array=\"\""},
                                        {17, "type=\"byte\" array=\"\""},
                                        {18, "type=\"ushort\" array=\"\""},
                                        {19, "type=\"ulong\" array=\"\""},
                                        {31, "type=\"ucstring\" array=\"\""},
                                        {0x1003, "type=\"long\" array=\"vector\""},
                                        {0x2011, "type=\"byte\" array=\"array\""},
                                        {0x3005, "type=\"double\" array=\"vector\""},
                                        {0x1000, "type=\"\" array=\"vector\""},
                                        {0x2004, "type=\"\" array=\"array\""},
                                        {0x4003, "type=\"\" array=\"\""},
                                        {4, "type=\"\" array=\"\""}}) {
        const TypeParam table("");
        EXPECT_TRUE(Add(table, ValueRecord("a"_w, static_cast<std::uint16_t>(code), "")));
        EXPECT_EQ(table.Text(),
                  TableText({std::string("\t<Var name=\"a\" ") + written + ">", "\t\t<Value/>", "\t</Var>"}));
    }
}

TYPED_TEST(TableAdd, VectorComesBackAsItsCode) {
    const TypeParam table("");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 0x1003, "1")));
    EXPECT_EQ(GetValue(table, "a"_w), "a #0 1003 '1'");
}

TYPED_TEST(TableAdd, EntryOfUnknownTypeIsAddedAndCannotBeRead) {
    const TypeParam table("");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 4, "1")));
    EXPECT_EQ(GetValue(table, "a"_w), "none");
}

TYPED_TEST(TableAdd, MaskChoosesWhatIsWritten) {
    const TypeParam table("");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 3, "1", 9, 0x0001)));
    EXPECT_TRUE(Add(table, ValueRecord("b"_w, 3, "2", 9, 0x0006)));
    EXPECT_TRUE(Add(table, ValueRecord("c"_w, 3, "3", 9, 0x0008)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\"/>", "\t<Var type=\"long\" array=\"\">",
                                       "\t\t<Value>2</Value>", "\t</Var>", "\t<Var id=\"9\"/>"}));
}

TYPED_TEST(TableAdd, WithoutPositionOrWithZeroAppendsAfterTheLastChild) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/><!-- end -->");
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value = ValueRecord("b"_w, 3, "1", 0, 1);
    EXPECT_TRUE(xmlTableEntryAdd(table, &position, &value, nullptr, 0, 0));
    EXPECT_EQ(position, 0U);
    EXPECT_TRUE(Add(table, ValueRecord("c"_w, 3, "1", 0, 1)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\"/>", "\t<!-- end -->",
                                       "\t<Var name=\"b\"/>", "\t<Var name=\"c\"/>"}));
}

TYPED_TEST(TableAdd, PositionInsertsBeforeItsEntryAndStays) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/><Var name=\"b\" type=\"long\"/>");
    const std::uint64_t onSecond = PositionOn(table, 1);
    std::uint64_t position = onSecond;
    for (const wchar16* name : {"x"_w, "y"_w}) {
        TableEntryValueInfoStruct value = ValueRecord(name, 3, "1", 0, 1);
        EXPECT_TRUE(xmlTableEntryAdd(table, &position, &value, nullptr, 0, 0));
        EXPECT_EQ(position, onSecond);
    }
    position = PositionOn(table, 0);
    TableEntryValueInfoStruct value = ValueRecord("z"_w, 3, "1", 0, 1);
    EXPECT_TRUE(xmlTableEntryAdd(table, &position, &value, nullptr, 0, 0));
    EXPECT_EQ(table.Text(),
              TableText({"\t<Var name=\"z\"/>", "\t<Var name=\"a\" type=\"long\"/>", "\t<Var name=\"x\"/>",
                         "\t<Var name=\"y\"/>", "\t<Var name=\"b\" type=\"long\"/>"}));
}

TYPED_TEST(TableAdd, PositionWithAllBitsSetUpdatesTheEntryOfTheName) {
    const TypeParam table(
        "<Var name=\"b\" type=\"long\"><Value>0</Value></Var>"
        "<Var name=\"a\" type=\"long\"><Value>1</Value></Var><Var name=\"a\" type=\"long\"/>");
    std::uint64_t position = ~std::uint64_t{0};
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 8, "2", 7);
    EXPECT_TRUE(xmlTableEntryAdd(table, &position, &value, nullptr, 1, 1));
    EXPECT_EQ(position, ~std::uint64_t{0});
    EXPECT_EQ(
        table.Text(),
        TableText("eud=\"true\"", {"\t<Var name=\"b\" type=\"long\">", "\t\t<Value>0</Value>", "\t</Var>",
                                   "\t<Var name=\"a\" type=\"string\" id=\"7\" array=\"\" eud=\"true\">",
                                   "\t\t<Value>2</Value>", "\t</Var>", "\t<Var name=\"a\" type=\"long\"/>"}));
}

TYPED_TEST(TableAdd, PositionWithAllBitsSetTakesTheNameOfAPresentationRecordAlone) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/><Var name=\"b\" type=\"long\"/>");
    std::uint64_t position = ~std::uint64_t{0};
    TableEntryUInfoStruct ui = UiRecord("b"_w, 1, 31);
    EXPECT_TRUE(xmlTableEntryAdd(table, &position, nullptr, &ui, 0, 1));
    EXPECT_EQ(table.Text(),
              TableText({"\t<Var name=\"a\" type=\"long\"/>", "\t<Var name=\"b\" type=\"long\">",
                         "\t\t<UI control=\"num\"/>", "\t</Var>"}));
}

TYPED_TEST(TableAdd, PositionWithAllBitsSetNeverInserts) {
    const TypeParam table("<Var name=\"a\" type=\"long\"><Value>1</Value></Var>");
    const std::string before = table.Text();
    std::uint64_t position = ~std::uint64_t{0};
    TableEntryValueInfoStruct known = ValueRecord("a"_w, 3, "2");
    TableEntryValueInfoStruct unknown = ValueRecord("b"_w, 3, "2");
    EXPECT_FALSE(xmlTableEntryAdd(table, &position, &unknown, nullptr, 1, 1));
    for (const std::int32_t update : {0, 2, -1}) {
        EXPECT_FALSE(xmlTableEntryAdd(table, &position, &known, nullptr, 1, update));
        EXPECT_FALSE(xmlTableEntryAdd(table, &position, &unknown, nullptr, 1, update));
    }
    EXPECT_EQ(position, ~std::uint64_t{0});
    EXPECT_EQ(table.Text(), before);
}

TYPED_TEST(TableAdd, PositionOnAnEntryOfAnotherTableIsFalseAndAddsNothing) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/>");
    const TypeParam other("<Var name=\"a\" type=\"long\"/>");
    const std::string before = table.Text();
    std::uint64_t position = PositionOn(other, 0);
    TableEntryValueInfoStruct value = ValueRecord("x"_w, 3, "1");
    EXPECT_FALSE(xmlTableEntryAdd(table, &position, &value, nullptr, 1, 0));
    EXPECT_FALSE(xmlTableEntryAdd(table, &position, &value, nullptr, 1, 1));
    EXPECT_EQ(table.Text(), before);
}

TYPED_TEST(TableAdd, PositionOnAnEntryOfAnotherTableIsNotNeededForAnUpdate) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/>");
    const TypeParam other("<Var name=\"a\" type=\"long\"/>");
    const std::string otherBefore = other.Text();
    std::uint64_t position = PositionOn(other, 0);
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 8, "1", 0, 4);
    EXPECT_TRUE(xmlTableEntryAdd(table, &position, &value, nullptr, 0, 1));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"string\" array=\"\"/>"}));
    EXPECT_EQ(other.Text(), otherBefore);
}

TYPED_TEST(TableAdd, PositionPlaysNoPartInAnUpdate) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/><Var name=\"b\" type=\"long\"/>");
    std::uint64_t position = PositionOn(table, 0);
    TableEntryValueInfoStruct value = ValueRecord("b"_w, 8, "2", 0, 4);
    EXPECT_TRUE(xmlTableEntryAdd(table, &position, &value, nullptr, 0, 1));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\"/>",
                                       "\t<Var name=\"b\" type=\"string\" array=\"\"/>"}));
}

TYPED_TEST(TableAdd, SameNameTwiceGivesTwoEntries) {
    const TypeParam table("");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 3, "1")));
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 3, "2")));
    EXPECT_EQ(Enumerated(table), (std::vector<std::string>{"a #0 0003 '1'", "a #0 0003 '2'"}));
}

TYPED_TEST(TableAdd, UpdateRewritesTheFirstEntryOfTheName) {
    const TypeParam table(
        "<Var name=\"a\" id=\"5\" type=\"long\" loc=\"true\"><Value loc=\"true\">1</Value></Var>"
        "<Var name=\"a\" type=\"long\"/>");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 8, "2"), 0, 1));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" id=\"5\" type=\"string\" loc=\"true\" array=\"\">",
                                       "\t\t<Value loc=\"true\">2</Value>", "\t</Var>",
                                       "\t<Var name=\"a\" type=\"long\"/>"}));
}

TYPED_TEST(TableAdd, UpdateOfAnUnknownNameAdds) {
    const TypeParam table("<Var name=\"a\" type=\"long\"><Value>1</Value></Var>");
    EXPECT_TRUE(Add(table, ValueRecord("A"_w, 3, "2"), 0, 1));
    EXPECT_EQ(Enumerated(table), (std::vector<std::string>{"a #0 0003 '1'", "A #0 0003 '2'"}));
}

TYPED_TEST(TableAdd, UpdateIsSetByOneAlone) {
    for (const std::int32_t update : {0, 2, -1, 256}) {
        const TypeParam table("<Var name=\"a\" type=\"long\"><Value>1</Value></Var>");
        EXPECT_TRUE(Add(table, ValueRecord("a"_w, 3, "2"), 0, update));
        EXPECT_EQ(Enumerated(table), (std::vector<std::string>{"a #0 0003 '1'", "a #0 0003 '2'"}));
    }
}

TYPED_TEST(TableAdd, UpdateWithAnEmptyNameRewritesTheFirstEntryThatHasAName) {
    const TypeParam table("<Var type=\"long\"/><Var name=\"b\" type=\"long\"><Value>1</Value></Var>");
    EXPECT_TRUE(Add(table, ValueRecord(""_w, 3, "2", 0, 2), 0, 1));
    EXPECT_EQ(Enumerated(table), (std::vector<std::string>{" #0 0003 ''", "b #0 0003 '2'"}));
}

TYPED_TEST(TableAdd, UpdateTakesElementsOfAnyName) {
    const TypeParam table("<Item name=\"a\" type=\"long\"/>");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 3, "2"), 0, 1));
    EXPECT_EQ(table.Text(), TableText({"\t<Item name=\"a\" type=\"long\" array=\"\">", "\t\t<Value>2</Value>",
                                       "\t</Item>"}));
}

TYPED_TEST(TableAdd, UpdateWritesAProtectedEntryAndKeepsItsMark) {
    const TypeParam table("<Var name=\"a\" type=\"long\" eud=\"true\"><Value>1</Value></Var>");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 3, "2", 0, 2), 0, 1));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\" eud=\"true\">",
                                       "\t\t<Value>2</Value>", "\t</Var>"}));
}

TYPED_TEST(TableAdd, MarkGoesToTheEntryAndToTheTable) {
    const TypeParam table("");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 3, "1", 0, 1), 1));
    EXPECT_EQ(table.Text(), TableText("eud=\"true\"", {"\t<Var name=\"a\" eud=\"true\"/>"}));
}

TYPED_TEST(TableAdd, TableKeepsTheMarkItHas) {
    const TypeParam table("", "eud=\"\"");
    EXPECT_TRUE(Add(table, ValueRecord("a"_w, 3, "1", 0, 1), 1));
    EXPECT_EQ(table.Text(), TableText("eud=\"\"", {"\t<Var name=\"a\" eud=\"true\"/>"}));
}

TYPED_TEST(TableAdd, MarkIsSetByOneAlone) {
    for (const std::int32_t mark : {0, 2, -1, 256}) {
        const TypeParam table("");
        EXPECT_TRUE(Add(table, ValueRecord("a"_w, 3, "1", 0, 1), mark));
        EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\"/>"})) << mark;
    }
}

}  // namespace
}  // namespace host
