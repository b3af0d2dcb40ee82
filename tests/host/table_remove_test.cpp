// Removing entries, the same over both kinds of table handles.
#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableRemove : public testing::Test {};
TYPED_TEST_SUITE(TableRemove, TableKinds, TableKindNames);

bool Remove(void* handle, const wchar16* name, std::int32_t occurrence, std::int32_t removeAll) {
    const TableEntryBaseInfoStruct record = NameRecord(name);
    return xmlTableRemoveEntry(handle, &record, occurrence, removeAll);
}

// One entry for each character, with that name and its number as value.
std::string EntriesNamed(std::string_view names) {
    std::string text;
    int number = 0;
    for (const char name : names) {
        text.append("<Var name=\"").append(1, name).append("\" type=\"long\"><Value>");
        text.append(std::to_string(number++)).append("</Value></Var>");
    }
    return text;
}

// The values of all entries in a row.
std::string Left(void* handle) {
    std::string values;
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    while (xmlTableEntryGet(handle, &position, &value, nullptr))
        values += value.GetVal();
    return values;
}

// What is left of A, B, A, A.
template <class Kind>
std::string LeftAfter(const wchar16* name, std::int32_t occurrence, std::int32_t removeAll, bool expected) {
    const Kind table(EntriesNamed("ABAA"));
    EXPECT_EQ(Remove(table, name, occurrence, removeAll), expected);
    return Left(table);
}

TYPED_TEST(TableRemove, OneByItsOccurrence) {
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, 0, 0, true), "123");
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, 1, 0, true), "013");
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, 2, 0, true), "012");
    EXPECT_EQ(LeftAfter<TypeParam>("B"_w, 0, 0, true), "023");
}

TYPED_TEST(TableRemove, AllFromAnOccurrenceOn) {
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, 0, 1, true), "1");
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, 1, 1, true), "01");
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, 2, 1, true), "012");
}

TYPED_TEST(TableRemove, OccurrenceOfMinusOneMeansAny) {
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, -1, 0, true), "123");
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, -1, 1, true), "1");
}

TYPED_TEST(TableRemove, OccurrenceThatIsNotThereIsFalse) {
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, 3, 0, false), "0123");
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, 5, 1, false), "0123");
    EXPECT_EQ(LeftAfter<TypeParam>("B"_w, 1, 1, false), "0123");
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, 2147483647, 1, false), "0123");
}

TYPED_TEST(TableRemove, OtherNegativeOccurrencesAreNeverReached) {
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, -2, 0, false), "0123");
    EXPECT_EQ(LeftAfter<TypeParam>("A"_w, INT32_MIN, 1, false), "0123");
}

TYPED_TEST(TableRemove, RemoveAllIsAnyValueButZero) {
    for (const std::int32_t removeAll : {1, 2, -1, 256})
        EXPECT_EQ(LeftAfter<TypeParam>("A"_w, -1, removeAll, true), "1") << removeAll;
}

TYPED_TEST(TableRemove, UnknownNameIsFalse) {
    EXPECT_EQ(LeftAfter<TypeParam>("C"_w, -1, 1, false), "0123");
    EXPECT_EQ(LeftAfter<TypeParam>("a"_w, -1, 1, false), "0123");
    EXPECT_EQ(LeftAfter<TypeParam>("AA"_w, -1, 1, false), "0123");
    EXPECT_FALSE(Remove(TypeParam(""), "A"_w, -1, 1));
}

TYPED_TEST(TableRemove, EmptyNameMatchesAnEmptyNameAlone) {
    const TypeParam table(
        "<Var type=\"long\"><Value>0</Value></Var><Var name=\"a\" type=\"long\"><Value>1</Value>"
        "</Var><Var name=\"\" type=\"long\"><Value>2</Value></Var>");
    EXPECT_TRUE(Remove(table, ""_w, -1, 1));
    EXPECT_EQ(Left(table), "01");
    EXPECT_FALSE(Remove(table, ""_w, -1, 1));
}

TYPED_TEST(TableRemove, EntriesWithoutNameAndCommentsAreNotCounted) {
    const TypeParam table("<Var type=\"long\"><Value>x</Value></Var><!-- A -->" + EntriesNamed("AA"));
    EXPECT_TRUE(Remove(table, "A"_w, 1, 0));
    EXPECT_EQ(Left(table), "x0");
}

TYPED_TEST(TableRemove, ElementsOfAnyNameAreRemovedByTheirName) {
    const TypeParam table("<Item name=\"a\"/><Var name=\"b\"/>");
    EXPECT_TRUE(Remove(table, "a"_w, 0, 0));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"b\"/>"}));
}

TYPED_TEST(TableRemove, FirstOfTwoNamesCounts) {
    const TypeParam table("<Var name=\"a\" name=\"b\"/>");
    EXPECT_FALSE(Remove(table, "b"_w, -1, 1));
    EXPECT_TRUE(Remove(table, "a"_w, -1, 1));
    EXPECT_EQ(table.Text(), "<Table name=\"T\"/>\n");
}

TYPED_TEST(TableRemove, IdAndTypeOfTheRecordPlayNoPart) {
    const TypeParam table("<Var name=\"a\" id=\"1\" type=\"long\"/><Var name=\"a\" id=\"2\" type=\"bool\"/>");
    TableEntryValueInfoStruct record = ValueRecord("a"_w, 11, "x", 2, 8);
    EXPECT_TRUE(xmlTableRemoveEntry(table, &record, 0, 0));
    EXPECT_EQ(Enumerated(table), (std::vector<std::string>{"a #2 000B ''"}));
    EXPECT_EQ(Show(record), "a #2 000B 'x' mask 0008");
}

TYPED_TEST(TableRemove, ProtectedEntriesAreRemoved) {
    const TypeParam table("<Var name=\"a\" eud=\"true\"/>", "eud=\"true\"");
    EXPECT_TRUE(Remove(table, "a"_w, 0, 0));
    EXPECT_EQ(table.Text(), "<Table name=\"T\" eud=\"true\"/>\n");
}

TYPED_TEST(TableRemove, WholeSubtreeGoes) {
    const TypeParam table(
        "<Var name=\"a\"><UI><Value>1</Value></UI><Var name=\"b\"/></Var><Var name=\"b\"/>");
    EXPECT_TRUE(Remove(table, "a"_w, 0, 0));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"b\"/>"}));
}

TYPED_TEST(TableRemove, EnumerationGoesOnAfterEntriesBeforeItWereRemoved) {
    const TypeParam table(EntriesNamed("ABCD"));
    std::uint64_t position = PositionOn(table, 2);
    EXPECT_TRUE(Remove(table, "A"_w, 0, 0));
    EXPECT_TRUE(Remove(table, "B"_w, 0, 0));
    TableEntryValueInfoStruct value;
    EXPECT_TRUE(xmlTableEntryGet(table, &position, &value, nullptr));
    EXPECT_EQ(Show(value), "D #0 0003 '3'");
}

TYPED_TEST(TableRemove, EverythingOfManyEntries) {
    const TypeParam table(EntriesNamed(std::string(3000, 'A') + "B" + std::string(3000, 'A')));
    EXPECT_TRUE(Remove(table, "A"_w, 2, 1));
    EXPECT_EQ(Left(table), "013000");
    EXPECT_TRUE(Remove(table, "A"_w, 0, 1));
    EXPECT_EQ(Left(table), "3000");
}

TYPED_TEST(TableRemove, AllEntriesLeavesCommentsAndOtherElements) {
    const TypeParam table("<Var name=\"a\"/><!-- c --><Item name=\"Var\"/><Var/><var/><Var name=\"\"/>",
                          "eud=\"true\"");
    EXPECT_TRUE(xmlTableRemoveEntries(table));
    EXPECT_EQ(table.Text(),
              TableText("eud=\"true\"", {"\t<!-- c -->", "\t<Item name=\"Var\"/>", "\t<var/>"}));
    EXPECT_TRUE(xmlTableRemoveEntries(table));
}

TYPED_TEST(TableRemove, AllEntriesOfAnEmptyTableIsTrue) {
    const TypeParam table("");
    EXPECT_TRUE(xmlTableRemoveEntries(table));
    EXPECT_EQ(table.Text(), "<Table name=\"T\"/>\n");
}

TYPED_TEST(TableRemove, EntryWithoutNameGoesOnlyWithAllEntries) {
    const TypeParam table("<Var type=\"long\"><Value>0</Value></Var>");
    EXPECT_FALSE(Remove(table, ""_w, -1, 1));
    EXPECT_EQ(Left(table), "0");
    EXPECT_TRUE(xmlTableRemoveEntries(table));
    EXPECT_EQ(Left(table), "");
}

TYPED_TEST(TableRemove, EmptiedTableTakesNewEntries) {
    const TypeParam table(EntriesNamed("AB"));
    EXPECT_TRUE(xmlTableRemoveEntries(table));
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "1");
    EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, &value, nullptr, 0, 0));
    EXPECT_EQ(Left(table), "1");
}

TYPED_TEST(TableRemove, NestedEntriesStayWhereTheyAre) {
    const TypeParam table("<Group><Var name=\"a\"/></Group>");
    EXPECT_FALSE(Remove(table, "a"_w, -1, 1));
    EXPECT_TRUE(xmlTableRemoveEntries(table));
    EXPECT_EQ(table.Text(), TableText({"\t<Group>", "\t\t<Var name=\"a\"/>", "\t</Group>"}));
}

}  // namespace
}  // namespace host
