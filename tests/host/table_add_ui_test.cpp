// Adding and updating entries with presentation data, the same over both kinds of table handles.
#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableAddUi : public testing::Test {};
TYPED_TEST_SUITE(TableAddUi, TableKinds, TableKindNames);

bool AddBoth(void* handle, TableEntryValueInfoStruct value, TableEntryUInfoStruct ui,
             std::int32_t update = 0) {
    return xmlTableEntryAdd(handle, nullptr, &value, &ui, 0, update);
}

TYPED_TEST(TableAddUi, PresentationRecordTakesThePlaceOfTheValue) {
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

TYPED_TEST(TableAddUi, PresentationRecordAloneGivesAnEntryWithoutName) {
    const TypeParam table("");
    TableEntryUInfoStruct ui = UiRecord("a"_w, 1, 31);
    EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, nullptr, &ui, 0, 0));
    EXPECT_EQ(table.Text(), TableText({"\t<Var>", "\t\t<UI control=\"num\"/>", "\t</Var>"}));
}

TYPED_TEST(TableAddUi, UpdateByThePresentationRecordsNameWhenThereIsNoOther) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/><Var name=\"b\" type=\"long\"/>");
    TableEntryUInfoStruct ui = UiRecord("b"_w, 1, 31);
    EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, nullptr, &ui, 0, 1));
    EXPECT_EQ(table.Text(),
              TableText({"\t<Var name=\"a\" type=\"long\"/>", "\t<Var name=\"b\" type=\"long\">",
                         "\t\t<UI control=\"num\"/>", "\t</Var>"}));
}

TYPED_TEST(TableAddUi, PresentationRecordWithControl65535IsIgnored) {
    const TypeParam table("");
    TableEntryUInfoStruct ui = UiRecord("z"_w, 0xFFFF, 3, "9");
    ui.SetComment_w("c"_w);
    EXPECT_TRUE(AddBoth(table, ValueRecord("a"_w, 3, "1"), ui));
    EXPECT_EQ(table.Text(),
              TableText({"\t<Var name=\"a\" type=\"long\" array=\"\">", "\t\t<Value>1</Value>", "\t</Var>"}));
}

TYPED_TEST(TableAddUi, PresentationRecordWithControl65534IsWritten) {
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

TYPED_TEST(TableAddUi, UiValueComesFromTheValueRecordUnlessThePresentationRecordIsWideText) {
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 3, "of value"), UiRecord("a"_w, 1, 3, "of ui")),
              "a #0 0003 'of value' control 1 comment 'c'");
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 3, "of value"), UiRecord("a"_w, 1, 0x201F, "of ui")),
              "a #0 0003 'of value' control 1 comment 'c'");
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 3, "of value"), UiRecord("a"_w, 1, 31, "of ui")),
              "a #0 0003 'of ui' control 1 comment 'c'");
}

TYPED_TEST(TableAddUi, TypeOfTheValueRecordPlaysNoPartInWhereTheUiValueComesFrom) {
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 31, "of value"), UiRecord("a"_w, 1, 3, "of ui")),
              "a #0 001F 'of value' control 1 comment 'c'");
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 31, "of value"), UiRecord("a"_w, 1, 31, "of ui")),
              "a #0 001F 'of ui' control 1 comment 'c'");
}

TYPED_TEST(TableAddUi, UiValueThatWasNeverSetIsEmpty) {
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 3), UiRecord("a"_w, 1, 3, "of ui")),
              "a #0 0003 '' control 1 comment 'c'");
    EXPECT_EQ(UiValueFrom<TypeParam>(ValueRecord("a"_w, 3, "of value"), UiRecord("a"_w, 1, 31)),
              "a #0 0003 '' control 1 comment 'c'");
}

// Tables whose first entry keeps its value in the presentation data take new values there, too.
constexpr std::string_view kUiConvention = "<Var name=\"a\" type=\"long\"><UI><Value>1</Value></UI></Var>";
const std::string kUiConventionText = Lines(
    {"\t<Var name=\"a\" type=\"long\">", "\t\t<UI>", "\t\t\t<Value>1</Value>", "\t\t</UI>", "\t</Var>"});

TYPED_TEST(TableAddUi, FollowsTheFirstEntryIntoThePresentationData) {
    const TypeParam table(kUiConvention);
    EXPECT_TRUE(Add(table, ValueRecord("b"_w, 3, "2")));
    EXPECT_EQ(table.Text(),
              Lines({"<Table name=\"T\">"}) + kUiConventionText +
                  Lines({"\t<Var name=\"b\" type=\"long\" array=\"\">", "\t\t<UI control=\"text\">",
                         "\t\t\t<Value>2</Value>", "\t\t</UI>", "\t</Var>", "</Table>"}));
}

TYPED_TEST(TableAddUi, UpdateFollowsTheFirstEntryIntoABlockWithComment) {
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

TYPED_TEST(TableAddUi, IgnoredPresentationRecordCountsAsNone) {
    const TypeParam table(kUiConvention);
    EXPECT_TRUE(AddBoth(table, ValueRecord("b"_w, 3, "2"), UiRecord("b"_w, 0xFFFF)));
    EXPECT_EQ(table.Text(),
              Lines({"<Table name=\"T\">"}) + kUiConventionText +
                  Lines({"\t<Var name=\"b\" type=\"long\" array=\"\">", "\t\t<UI control=\"text\">",
                         "\t\t\t<Value>2</Value>", "\t\t</UI>", "\t</Var>", "</Table>"}));
}

TYPED_TEST(TableAddUi, FirstEntryWithBothValuesOrNoneIsNotFollowed) {
    for (const std::string_view first : {"<Var type=\"long\"><Value>1</Value><UI><Value>1</Value></UI></Var>",
                                         "<Var type=\"long\"/>", "<Var><UI><Value>1</Value></UI></Var>",
                                         "<Var type=\"long\"/><Var type=\"long\"><UI Value=\"1\"/></Var>"}) {
        const TypeParam table(first);
        EXPECT_TRUE(Add(table, ValueRecord("b"_w, 3, "2")));
        EXPECT_EQ(GetValue(table, "b"_w), "b #0 0003 '2'") << first;
        EXPECT_EQ(GetUi(table, "b"_w), "b #0 0003 '' control 65535") << first;
    }
}

TYPED_TEST(TableAddUi, FirstElementDecidesAlsoWhenItIsNoVar) {
    const TypeParam table("<!-- c --><Item type=\"long\"><UI Value=\"1\"/></Item>");
    EXPECT_TRUE(Add(table, ValueRecord("b"_w, 3, "2")));
    EXPECT_EQ(GetUi(table, "b"_w), "b #0 0003 '2' control 2");
}

}  // namespace
}  // namespace host
