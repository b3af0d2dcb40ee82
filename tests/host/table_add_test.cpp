// Adding entries and updating them, the same over both kinds of table handles.
#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableAdd : public testing::Test {};
TYPED_TEST_SUITE(TableAdd, TableKinds, TableKindNames);

bool Add(void* handle, TableEntryValueInfoStruct value, std::int32_t mark = 0, std::int32_t update = 0) {
    return xmlTableEntryAdd(handle, nullptr, &value, nullptr, mark, update);
}

bool AddBoth(void* handle, TableEntryValueInfoStruct value, TableEntryUInfoStruct ui,
             std::int32_t update = 0) {
    return xmlTableEntryAdd(handle, nullptr, &value, &ui, 0, update);
}

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

TYPED_TEST(TableAdd, PositionOnAnEntryOfAnotherTableIsFalseAndAddsNothing) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/>");
    const TypeParam other("<Var name=\"a\" type=\"long\"/>");
    const std::string before = table.Text();
    std::uint64_t position = PositionOn(other, 0);
    TableEntryValueInfoStruct value = ValueRecord("x"_w, 3, "1");
    EXPECT_FALSE(xmlTableEntryAdd(table, &position, &value, nullptr, 1, 0));
    EXPECT_EQ(table.Text(), before);
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

TYPED_TEST(TableAdd, PresentationRecordTakesThePlaceOfTheValue) {
    const TypeParam table("");
    TableEntryUInfoStruct ui = UiRecord("z"_w, 19, 31, "3");
    ui.prov_index = 7;
    ui.prov_owner = 2;
    ui.SetComment_w("c"_w);
    ui.SetUserName_w("n"_w);
    EXPECT_TRUE(AddBoth(table, ValueRecord("a"_w, 3, "1", 9), ui));
    EXPECT_EQ(table.Text(),
              TableText({"\t<Var name=\"a\" id=\"9\" type=\"long\" array=\"\">",
                         "\t\t<UI control=\"radio\" prov_index=\"7\" prov_owner=\"dwg\" name=\"n\">",
                         "\t\t\t<Comment>c</Comment>", "\t\t</UI>", "\t</Var>"}));
}

TYPED_TEST(TableAdd, PresentationRecordAloneGivesAnEntryWithoutName) {
    const TypeParam table("");
    TableEntryUInfoStruct ui = UiRecord("a"_w, 1, 31);
    EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, nullptr, &ui, 0, 0));
    EXPECT_EQ(table.Text(), TableText({"\t<Var>", "\t\t<UI control=\"num\"/>", "\t</Var>"}));
}

TYPED_TEST(TableAdd, UpdateByThePresentationRecordsNameWhenThereIsNoOther) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/><Var name=\"b\" type=\"long\"/>");
    TableEntryUInfoStruct ui = UiRecord("b"_w, 1, 31);
    EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, nullptr, &ui, 0, 1));
    EXPECT_EQ(table.Text(),
              TableText({"\t<Var name=\"a\" type=\"long\"/>", "\t<Var name=\"b\" type=\"long\">",
                         "\t\t<UI control=\"num\"/>", "\t</Var>"}));
}

TYPED_TEST(TableAdd, PresentationRecordWithControl65535IsIgnored) {
    const TypeParam table("");
    TableEntryUInfoStruct ui = UiRecord("z"_w, 0xFFFF, 3, "9");
    ui.SetComment_w("c"_w);
    EXPECT_TRUE(AddBoth(table, ValueRecord("a"_w, 3, "1"), ui));
    EXPECT_EQ(table.Text(),
              TableText({"\t<Var name=\"a\" type=\"long\" array=\"\">", "\t\t<Value>1</Value>", "\t</Var>"}));
}

TYPED_TEST(TableAdd, PresentationRecordWithControl65534IsWritten) {
    const TypeParam table("");
    EXPECT_TRUE(AddBoth(table, ValueRecord("a"_w, 3, "1", 0, 1), UiRecord("z"_w, 0xFFFE, 31)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\">", "\t\t<UI control=\"text\"/>", "\t</Var>"}));
}

// The value that an update with both records puts into the presentation data of an entry with a comment.
template <class Kind>
std::string UiValueFrom(const TableEntryValueInfoStruct& value, const TableEntryUInfoStruct& ui) {
    const Kind table("<Var name=\"a\" type=\"long\"><UI><Comment>c</Comment></UI></Var>");
    EXPECT_TRUE(AddBoth(table, value, ui, 1));
    return GetUi(table, "a"_w);
}

TYPED_TEST(TableAdd, UiValueComesFromTheValueRecordUnlessThePresentationRecordIsWideText) {
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 3, "of value"), UiRecord("a"_w, 1, 3, "of ui")),
              "a #0 0003 'of value' control 1 comment 'c'");
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 3, "of value"), UiRecord("a"_w, 1, 0x201F, "of ui")),
              "a #0 0003 'of value' control 1 comment 'c'");
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 3, "of value"), UiRecord("a"_w, 1, 31, "of ui")),
              "a #0 0003 'of ui' control 1 comment 'c'");
}

TYPED_TEST(TableAdd, TypeOfTheValueRecordPlaysNoPartInWhereTheUiValueComesFrom) {
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 31, "of value"), UiRecord("a"_w, 1, 3, "of ui")),
              "a #0 001F 'of value' control 1 comment 'c'");
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 31, "of value"), UiRecord("a"_w, 1, 31, "of ui")),
              "a #0 001F 'of ui' control 1 comment 'c'");
}

TYPED_TEST(TableAdd, UiValueThatWasNeverSetIsEmpty) {
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 3), UiRecord("a"_w, 1, 3, "of ui")),
              "a #0 0003 '' control 1 comment 'c'");
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 3, "of value"), UiRecord("a"_w, 1, 31)),
              "a #0 0003 '' control 1 comment 'c'");
}

// Tables whose first entry keeps its value in the presentation data take new values there, too.
constexpr std::string_view kUiConvention = "<Var name=\"a\" type=\"long\"><UI><Value>1</Value></UI></Var>";
const std::string kUiConventionText = Lines(
    {"\t<Var name=\"a\" type=\"long\">", "\t\t<UI>", "\t\t\t<Value>1</Value>", "\t\t</UI>", "\t</Var>"});

TYPED_TEST(TableAdd, FollowsTheFirstEntryIntoThePresentationData) {
    // The new block has no comment, so that its value is not stored.
    const TypeParam table(kUiConvention);
    EXPECT_TRUE(Add(table, ValueRecord("b"_w, 3, "2")));
    EXPECT_EQ(table.Text(), Lines({"<Table name=\"T\">"}) + kUiConventionText +
                                Lines({"\t<Var name=\"b\" type=\"long\" array=\"\">",
                                       "\t\t<UI control=\"text\"/>", "\t</Var>", "</Table>"}));
}

TYPED_TEST(TableAdd, UpdateFollowsTheFirstEntryIntoABlockWithComment) {
    const TypeParam table(
        std::string(kUiConvention) +
        "<Var name=\"b\" type=\"long\"><Value>1</Value><UI control=\"num\" prov_index=\"7\">"
        "<Comment>c</Comment></UI></Var>");
    EXPECT_TRUE(Add(table, ValueRecord("b"_w, 3, "2"), 0, 1));
    EXPECT_EQ(table.Text(),
              Lines({"<Table name=\"T\">"}) + kUiConventionText +
                  Lines({"\t<Var name=\"b\" type=\"long\" array=\"\">", "\t\t<Value>1</Value>",
                         "\t\t<UI control=\"text\" prov_index=\"7\">", "\t\t\t<Comment>c</Comment>",
                         "\t\t\t<Value>2</Value>", "\t\t</UI>", "\t</Var>", "</Table>"}));
}

TYPED_TEST(TableAdd, IgnoredPresentationRecordCountsAsNone) {
    const TypeParam table(kUiConvention);
    EXPECT_TRUE(AddBoth(table, ValueRecord("b"_w, 3, "2"), UiRecord("b"_w, 0xFFFF)));
    EXPECT_EQ(table.Text(), Lines({"<Table name=\"T\">"}) + kUiConventionText +
                                Lines({"\t<Var name=\"b\" type=\"long\" array=\"\">",
                                       "\t\t<UI control=\"text\"/>", "\t</Var>", "</Table>"}));
}

TYPED_TEST(TableAdd, FirstEntryWithBothValuesOrNoneIsNotFollowed) {
    for (const std::string_view first : {"<Var type=\"long\"><Value>1</Value><UI><Value>1</Value></UI></Var>",
                                         "<Var type=\"long\"/>", "<Var><UI><Value>1</Value></UI></Var>",
                                         "<Var type=\"long\"/><Var type=\"long\"><UI Value=\"1\"/></Var>"}) {
        const TypeParam table(first);
        EXPECT_TRUE(Add(table, ValueRecord("b"_w, 3, "2")));
        EXPECT_EQ(GetValue(table, "b"_w), "b #0 0003 '2'") << first;
        EXPECT_EQ(GetUi(table, "b"_w), "b #0 0003 '' control 65535") << first;
    }
}

TYPED_TEST(TableAdd, FirstElementDecidesAlsoWhenItIsNoVar) {
    const TypeParam table("<!-- c --><Item type=\"long\"><UI Value=\"1\"/></Item>");
    EXPECT_TRUE(Add(table, ValueRecord("b"_w, 3, "2")));
    EXPECT_EQ(GetUi(table, "b"_w), "b #0 0003 '' control 2");
}

}  // namespace
}  // namespace host
