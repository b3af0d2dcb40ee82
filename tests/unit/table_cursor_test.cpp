// What opening a table does to the cursor and to the caller's header. How tables are read and made is in tests/host/:
// table_handle_test.cpp and table_header_test.cpp.
#include "mox_xmlApi/entries/table_cursor.h"

#include <gtest/gtest.h>

#include "tests/unit/entry_support.h"

namespace mox::test {
namespace {

std::string Show(const TableHeader& header) {
    std::string shown = Quoted(header.name) + " first " + std::to_string(header.first_id) + " type " +
                        std::to_string(header.type);
    return header.editable ? shown + " editable" : shown;
}

// A cursor that looks for the first "Table" child.
TableCursor Finding(XmlDocument& document) {
    return {true, true, &document, nullptr, true};
}

// The header that opening finds in the document's first table; "refused" and the header as it was otherwise.
std::string Opened(std::string_view text, TableHeader header = {}) {
    TextDocument document(text);
    TableCursor cursor = Finding(document.Document());
    const bool opened = OpenTable(cursor, header, true);
    EXPECT_EQ(opened, cursor.table != nullptr);
    return (opened ? "" : "refused ") + Show(header);
}

TEST(OpenTable, WithoutDocumentIsRefused) {
    TableCursor cursor;
    TableHeader header;
    EXPECT_FALSE(OpenTable(cursor, header, true));
    EXPECT_EQ(cursor.table, nullptr);
}

TEST(OpenTable, AdoptsTheHeaderOfTheFirstTable) {
    EXPECT_EQ(Opened("<Table name=\"A\" first_id=\"7\" type=\"00ff\" editable=\"true\"/>"),
              "'A' first 7 type 255 editable");
}

TEST(OpenTable, MissingAttributesReplaceTheCallersValues) {
    EXPECT_EQ(Opened("<Table name=\"A\"/>", {"A"_w, 9, 9, true}), "'A' first 0 type 0");
    EXPECT_EQ(Opened("<Table/>", {WideView(), 9, 9, true}), "'' first 0 type 0");
}

TEST(OpenTable, OtherNameIsRefusedAndChangesNothing) {
    EXPECT_EQ(Opened("<Table name=\"A\" first_id=\"7\"/>", {"B"_w, 1, 2, true}),
              "refused 'B' first 1 type 2 editable");
    EXPECT_EQ(Opened("<Table name=\"A\"/>", {"a"_w}), "refused 'a' first 0 type 0");
    EXPECT_EQ(Opened("<Table/>", {"A"_w}), "refused 'A' first 0 type 0");
}

TEST(OpenTable, RefusedOneKeepsTheTableThatTheCursorHad) {
    TextDocument document("<Table name=\"A\"/>");
    TableCursor cursor = Finding(document.Document());
    cursor.table = document.Root();
    TableHeader header{"B"_w};
    EXPECT_FALSE(OpenTable(cursor, header, true));
    EXPECT_EQ(cursor.table, document.Root());
    EXPECT_EQ(document.Text(), "<Table name=\"A\"/>\\n");
}

TEST(OpenTable, NewTableLeavesTheHeaderAsItWas) {
    XmlDocument document;
    TableCursor cursor = Finding(document);
    TableHeader header{"N"_w, 0xFFFFFFFF, 2, true};
    ASSERT_TRUE(OpenTable(cursor, header, true));
    EXPECT_EQ(Show(header), "'N' first 4294967295 type 2 editable");
}

TEST(OpenTable, AttachedElementIsTheTableItself) {
    TextDocument document(
        "<Group name=\"A\" first_id=\"7\" type=\"A\" editable=\"true\"><Table name=\"B\"/></Group>");
    XmlDocument attached(document.Document().Pool(), document.First());
    TableCursor cursor{true, true, &attached, nullptr, false};
    TableHeader header;
    ASSERT_TRUE(OpenTable(cursor, header, true));
    EXPECT_EQ(cursor.table, document.First());
    EXPECT_EQ(Show(header), "'A' first 7 type 10 editable");
}

TEST(OpenTable, AttachedElementGetsNoTable) {
    TextDocument document("<Table/>");
    XmlDocument attached(document.Document().Pool(), document.First());
    TableCursor cursor{true, true, &attached, nullptr, false};
    TableHeader header;
    ASSERT_TRUE(OpenTable(cursor, header, true));
    EXPECT_EQ(document.Text(), "<Table/>\\n");
}

TEST(OpenTable, AttachedElementOfAnotherNameIsRefused) {
    TextDocument document("<Table name=\"A\"/>");
    XmlDocument attached(document.Document().Pool(), document.First());
    TableCursor cursor{true, true, &attached, nullptr, false};
    TableHeader header{"B"_w};
    EXPECT_FALSE(OpenTable(cursor, header, true));
    EXPECT_EQ(cursor.table, nullptr);
}

TEST(OpenTable, DoesNotLookAtTheReadinessFlags) {
    TextDocument document("<Table name=\"A\"/>");
    TableCursor cursor{false, false, &document.Document(), nullptr, true};
    TableHeader header;
    EXPECT_TRUE(OpenTable(cursor, header, true));
    EXPECT_FALSE(cursor.IsReady());
}

TEST(TableCursor, IsReadyWhenBothFlagsAreSet) {
    EXPECT_FALSE(TableCursor{}.IsReady());
    EXPECT_FALSE((TableCursor{true, false}.IsReady()));
    EXPECT_FALSE((TableCursor{false, true}.IsReady()));
    EXPECT_TRUE((TableCursor{true, true}.IsReady()));
}

}  // namespace
}  // namespace mox::test
