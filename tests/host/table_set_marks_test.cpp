// Marks that protect entries from being overwritten, and the owner that a Set corrects.
#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableSetMarks : public testing::Test {};
TYPED_TEST_SUITE(TableSetMarks, TableKinds, TableKindNames);

TYPED_TEST(TableSetMarks, ByPositionProtectedEntryMovesThePositionAndStays) {
    const TypeParam table("<Var name=\"a\" type=\"long\" eud=\"true\"><Value>1</Value></Var>");
    const std::string before = table.Text();
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "2");
    EXPECT_TRUE(xmlTableEntrySet(table, &position, &value, nullptr, 0, 1));
    EXPECT_EQ(position, PositionOn(table, 0));
    EXPECT_EQ(table.Text(), before);
}

TYPED_TEST(TableSetMarks, ByNameProtectedEntryIsTrueAndStays) {
    const TypeParam table("<Var name=\"a\" type=\"long\" eud=\"true\"><Value>1</Value></Var>");
    const std::string before = table.Text();
    for (const std::int32_t force : {0, 2, -1, 256}) {
        EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2"), force, 1));
        EXPECT_EQ(table.Text(), before) << force;
    }
}

TYPED_TEST(TableSetMarks, OnlyAMarkOfTrueProtects) {
    for (const std::string_view mark : {"false", "True", "", "1"}) {
        const TypeParam table(std::string("<Var name=\"a\" type=\"long\" eud=\"").append(mark) +
                              "\"><Value>1</Value></Var>");
        EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 0, 2)));
        EXPECT_EQ(GetValue(table, "a"_w), "a #0 0003 '2'") << mark;
    }
}

TYPED_TEST(TableSetMarks, MarkOfTheTableDoesNotProtectItsEntries) {
    const TypeParam table("<Var name=\"a\" type=\"long\"><Value>1</Value></Var>", "eud=\"true\"");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 0, 2)));
    EXPECT_EQ(GetValue(table, "a"_w), "a #0 0003 '2'");
}

TYPED_TEST(TableSetMarks, ForcedByNameWithoutMarkRemovesTheMark) {
    const TypeParam table("<Var name=\"a\" type=\"long\" eud=\"true\"><Value>1</Value></Var>",
                          "eud=\"true\"");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 0, 2), 1, 0));
    EXPECT_EQ(table.Text(), TableText("eud=\"true\"", {"\t<Var name=\"a\" type=\"long\">",
                                                       "\t\t<Value loc=\"\">2</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSetMarks, ForcedByPositionWithoutMarkKeepsTheMark) {
    const TypeParam table("<Var name=\"a\" type=\"long\" eud=\"true\"><Value>1</Value></Var>",
                          "eud=\"true\"");
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "2", 0, 2);
    EXPECT_TRUE(xmlTableEntrySet(table, &position, &value, nullptr, 1, 0));
    EXPECT_EQ(table.Text(), TableText("eud=\"true\"", {"\t<Var name=\"a\" type=\"long\" eud=\"true\">",
                                                       "\t\t<Value loc=\"\">2</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSetMarks, RemovesTheFirstOfTwoMarks) {
    const TypeParam table("<Var name=\"a\" eud=\"no\" type=\"long\" eud=\"true\"><Value>1</Value></Var>");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 0, 2)));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\" eud=\"true\">",
                                       "\t\t<Value loc=\"\">2</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSetMarks, MarkGoesToTheEntryAndToTheTable) {
    const TypeParam byName("<Var name=\"a\" type=\"long\"><Value>1</Value></Var>");
    EXPECT_TRUE(SetByName(byName, ValueRecord("a"_w, 3, "2", 0, 2), 0, 1));
    const TypeParam byPosition("<Var name=\"a\" type=\"long\"><Value>1</Value></Var>");
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "2", 0, 2);
    EXPECT_TRUE(xmlTableEntrySet(byPosition, &position, &value, nullptr, 0, 1));
    const std::string marked = TableText("eud=\"true\"", {"\t<Var name=\"a\" type=\"long\" eud=\"true\">",
                                                          "\t\t<Value loc=\"\">2</Value>", "\t</Var>"});
    EXPECT_EQ(byName.Text(), marked);
    EXPECT_EQ(byPosition.Text(), marked);
}

TYPED_TEST(TableSetMarks, TableKeepsTheMarkItHas) {
    const TypeParam table("<Var name=\"a\" type=\"long\" eud=\"no\"><Value>1</Value></Var>", "eud=\"false\"");
    EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 0, 2), 0, 1));
    EXPECT_EQ(table.Text(), TableText("eud=\"false\"", {"\t<Var name=\"a\" type=\"long\" eud=\"true\">",
                                                        "\t\t<Value loc=\"\">2</Value>", "\t</Var>"}));
}

TYPED_TEST(TableSetMarks, MarkIsSetByOneAlone) {
    for (const std::int32_t mark : {0, 2, -1, 256}) {
        const TypeParam table("<Var name=\"a\" type=\"long\"><Value>1</Value></Var>");
        EXPECT_TRUE(SetByName(table, ValueRecord("a"_w, 3, "2", 0, 2), 0, mark));
        EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\">",
                                           "\t\t<Value loc=\"\">2</Value>", "\t</Var>"}))
            << mark;
    }
}

TYPED_TEST(TableSetMarks, EntryThatNothingIsWrittenToIsMarkedAllTheSame) {
    const TypeParam table("<Var name=\"a\" type=\"long\"><Value>1</Value></Var>");
    TableEntryUInfoStruct ui = UiRecord("a"_w, 19);
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, nullptr, &ui, 0, 1));
    EXPECT_EQ(table.Text(), TableText("eud=\"true\"", {"\t<Var name=\"a\" type=\"long\" eud=\"true\">",
                                                       "\t\t<Value>1</Value>", "\t</Var>"}));
}

// What the owner in the caller's record is after a Set of this kind.
int OwnerAfterSet(void* handle, const wchar16* name, int owner, std::uint64_t* position, std::int32_t force) {
    TableEntryUInfoStruct ui = UiRecord(name, 1);
    ui.prov_owner = static_cast<std::uint8_t>(owner);
    xmlTableEntrySet(handle, position, nullptr, &ui, force, 0);
    return ui.prov_owner;
}

TYPED_TEST(TableSetMarks, UnknownOwnerIsWrittenAsNoneAndCorrectedInTheCallersRecord) {
    const TypeParam table(kUiValue);
    EXPECT_EQ(OwnerAfterSet(table, "a"_w, 3, nullptr, 0), 0);
    EXPECT_EQ(GetUi(table, "a"_w), "a #0 0003 '' control 1 comment 'c'");
    for (const int owner : {5, 6, 7, 8, 255})
        EXPECT_EQ(OwnerAfterSet(table, "a"_w, owner, nullptr, 0), 0) << owner;
}

TYPED_TEST(TableSetMarks, KnownOwnersStayInTheCallersRecord) {
    for (const int owner : {0, 1, 2, 4})
        EXPECT_EQ(OwnerAfterSet(TypeParam(kUiValue), "a"_w, owner, nullptr, 0), owner);
}

TYPED_TEST(TableSetMarks, UnknownOwnerIsCorrectedAlsoWhenNothingIsWritten) {
    const TypeParam table(
        "<Var name=\"a\" type=\"long\" eud=\"true\"><UI><Value>1</Value></UI></Var>"
        "<Var name=\"b\" type=\"long\"><Value>1</Value></Var>");
    const std::string before = table.Text();
    EXPECT_EQ(OwnerAfterSet(table, "none"_w, 3, nullptr, 0), 0);
    EXPECT_EQ(OwnerAfterSet(table, "a"_w, 3, nullptr, 0), 0);
    EXPECT_EQ(OwnerAfterSet(table, "b"_w, 3, nullptr, 0), 0);
    std::uint64_t position = PositionOn(table, 1);
    EXPECT_EQ(OwnerAfterSet(table, "a"_w, 3, &position, 1), 0);
    EXPECT_EQ(table.Text(), before);
}

}  // namespace
}  // namespace host
