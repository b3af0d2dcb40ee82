// Whether entries are there, the same over both kinds of table handles.
#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableExist : public testing::Test {};
TYPED_TEST_SUITE(TableExist, TableKinds, TableKindNames);

bool Exists(void* handle, const wchar16* name) {
    const TableEntryBaseInfoStruct record = NameRecord(name);
    return xmlTableEntryIsExist(handle, &record);
}

TYPED_TEST(TableExist, ComparesNamesExactly) {
    const TypeParam table("<Var name=\"Speed\" type=\"long\"/>");
    EXPECT_TRUE(Exists(table, "Speed"_w));
    EXPECT_FALSE(Exists(table, "speed"_w));
    EXPECT_FALSE(Exists(table, "Spee"_w));
    EXPECT_FALSE(Exists(table, "Speed2"_w));
}

TYPED_TEST(TableExist, TakesEntriesThatCannotBeReadAndElementsOfAnyName) {
    const TypeParam table("<Var name=\"a\"/><Item name=\"b\"/><!-- c -->");
    EXPECT_TRUE(Exists(table, "a"_w));
    EXPECT_TRUE(Exists(table, "b"_w));
    EXPECT_FALSE(Exists(table, "c"_w));
}

TYPED_TEST(TableExist, EmptyNameIsThereAsSoonAsAnyEntryHasAName) {
    EXPECT_TRUE(Exists(TypeParam("<Var/><Var name=\"a\"/>"), ""_w));
    EXPECT_TRUE(Exists(TypeParam("<Var name=\"\"/>"), ""_w));
    EXPECT_FALSE(Exists(TypeParam("<Var/><!-- name -->"), ""_w));
    EXPECT_FALSE(Exists(TypeParam(""), ""_w));
}

TYPED_TEST(TableExist, OnlyDirectChildrenCount) {
    EXPECT_FALSE(Exists(TypeParam("<Group><Var name=\"a\"/></Group>"), "a"_w));
}

TYPED_TEST(TableExist, OnlyReadsTheNameOfTheRecord) {
    const TypeParam table("<Var name=\"a\" id=\"1\" type=\"long\"/>");
    TableEntryUInfoStruct ui = UiRecord("a"_w, 7, 8, "x");
    ui.id = 9;
    EXPECT_TRUE(xmlTableEntryIsExist(table, &ui));
    EXPECT_EQ(Show(ui), "a #9 0008 'x' control 7");
}

}  // namespace
}  // namespace host
