// Reading on from a position in another table: as many entries are skipped as there were before it and at it.
#include "tests/host/table_support.h"

namespace host {
namespace {

std::string Var(const std::string& name) {
    return "<Var name=\"" + name + "\" type=\"long\"><Value>1</Value></Var>";
}

// The entry that follows in the second table.
std::string EntryAfter(int number) {
    const Table first = LoadTable(TableElement(Var("a") + Var("b") + Var("c") + Var("d")));
    const Table second = LoadTable(TableElement(Var("A") + Var("B") + Var("C")));
    std::uint64_t position = PositionOn(first, number);
    TableEntryValueInfoStruct value;
    return xmlTableEntryGet(second, &position, &value, nullptr) ? Show(value) : "none";
}

TEST(TableForeignPosition, SkipsAsManyEntriesAsInTheOtherTable) {
    EXPECT_EQ(EntryAfter(0), "B #0 0003 '1'");
    EXPECT_EQ(EntryAfter(1), "C #0 0003 '1'");
    EXPECT_EQ(EntryAfter(2), "none");
    EXPECT_EQ(EntryAfter(3), "none");
}

}  // namespace
}  // namespace host
