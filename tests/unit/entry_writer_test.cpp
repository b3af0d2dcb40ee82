// What writing an entry does with records that no host can bring about. What hosts bring about is in tests/host/:
// table_set_test.cpp, table_add_test.cpp, table_ui_test.cpp and profile_writes_test.cpp.
#include "mox_xmlApi/entries/entry_writer.h"

#include <gtest/gtest.h>

#include "tests/unit/entry_support.h"

namespace mox::test {
namespace {

EntryValueRecord Record(std::uint16_t mask, std::uint16_t type, std::uint32_t id = 0) {
    EntryValueRecord record;
    record.writeMask = mask;
    record.name = "n"_w;
    record.Value = "v"_w;
    record.type = type;
    record.id = id;
    return record;
}

EntryUiRecord UiRecord(WideView comment, WideView value) {
    EntryUiRecord record;
    record.control = 1;
    record.Comment = comment;
    record.Value = value;
    return record;
}

// The entry after the record was written into it, and once more, which must change nothing.
std::string Value(std::string_view entry, const EntryValueRecord& value, bool onlySet) {
    OneEntry one(entry);
    EXPECT_TRUE(WriteEntry(one.Cursor(), one.Entry(), &value, nullptr, onlySet));
    const std::string once = one.EntryText();
    EXPECT_TRUE(WriteEntry(one.Cursor(), one.Entry(), &value, nullptr, onlySet));
    EXPECT_EQ(one.EntryText(), once);
    return once;
}

// The "UI" after the record was written into it; "refused" in front when the result was false.
std::string Ui(std::string_view block, const EntryUiRecord& ui, bool onlySet) {
    OneEntry one("<Var>" + std::string(block) + "</Var>");
    const bool written = WriteEntryUi(one.Cursor(), one.Ui(), ui, onlySet);
    const std::string shown = Dump(one.Ui());
    // Through the entry nobody sees the refusal.
    OneEntry whole("<Var>" + std::string(block) + "</Var>");
    EXPECT_TRUE(WriteEntry(whole.Cursor(), whole.Entry(), nullptr, &ui, onlySet));
    EXPECT_EQ(Dump(whole.Ui()), shown);
    return (written ? "" : "refused ") + shown;
}

TEST(WriteEntry, LocAndLocvalAreWrittenWhenSet) {
    EntryValueRecord record = Record(0, 3, 7);
    record.loc = true;
    record.locval = true;
    for (const bool onlySet : {true, false}) {
        EXPECT_EQ(Value("<Var/>", record, onlySet),
                  "Var{name='n' id='7' type='long' array='' loc='true'}(Value{loc='true'}'v')");
    }
}

TEST(WriteEntry, LocHasAMaskBitOfItsOwnAndBitsBeyondItHaveNoMeaning) {
    constexpr std::string_view entry = "<Var x=\"1\"><Value>1</Value></Var>";
    EXPECT_EQ(Value(entry, Record(kWriteLoc, 3, 7), false), "Var{x='1' loc=''}(Value'1')");
    EXPECT_EQ(Value(entry, Record(0x20, 3, 7), false), "Var{x='1'}(Value'1')");
}

TEST(WriteEntry, UnreadyCursorIsRefusedAndWritesNothing) {
    OneEntry one("<Var><UI/></Var>");
    const EntryValueRecord value = Record(0, 3);
    const EntryUiRecord ui = UiRecord("c"_w, "u"_w);
    for (const auto& [document, table] : {std::pair{false, false}, {true, false}, {false, true}}) {
        one.SetReady(document, table);
        EXPECT_FALSE(WriteEntry(one.Cursor(), one.Entry(), &value, nullptr, false));
        EXPECT_FALSE(WriteEntry(one.Cursor(), one.Entry(), &value, &ui, false));
        EXPECT_FALSE(WriteEntry(one.Cursor(), one.Entry(), nullptr, nullptr, false));
        EXPECT_FALSE(WriteEntryUi(one.Cursor(), one.Ui(), ui, false));
    }
    EXPECT_EQ(one.EntryText(), "Var(UI)");
}

TEST(WriteEntryUi, FieldsThatFilesKeepAreNotWritten) {
    EntryUiRecord ui = FullUiRecord();
    ui.Comment = WideView();
    EXPECT_EQ(Ui("<UI/>", ui, false), "UI{control='num' prov_index='4' prov_owner='app' name='n'}");
}

TEST(WriteEntryUi, LocOfTheValueIsWrittenWhenSet) {
    EntryUiRecord ui = UiRecord(WideView(), "u"_w);
    ui.loc = true;
    EXPECT_EQ(Ui("<UI><Comment/></UI>", ui, true), "UI{control='num'}(Comment Value{loc='true'}'u')");
}

TEST(WriteEntryUi, NewCommentInPlaceOfAnotherIsRefusedBeforeTheValue) {
    EXPECT_EQ(Ui("<UI><Comment>c</Comment><Value>1</Value></UI>", UiRecord("new"_w, "u"_w), false),
              "refused UI{control='num'}(Comment'new' Value'1')");
    EXPECT_EQ(Ui("<UI><!-- x --><Comment>c</Comment><!-- y --></UI>", UiRecord("new"_w, "u"_w), true),
              "refused UI{control='num'}(!' x ' Comment'new' !' y ')");
}

// The entry after the value was put into its "UI".
std::string WithUiValue(std::string_view entry, WideView text, bool onlySet, bool loc = false) {
    OneEntry one(entry);
    EntryUiRecord ui = UiRecord("a comment that plays no part"_w, text);
    ui.loc = loc;
    WriteUiValue(one.Cursor(), one.Entry(), ui, onlySet);
    return one.EntryText();
}

TEST(WriteUiValue, ExistingValueGetsTheText) {
    EXPECT_EQ(WithUiValue("<Var><UI x=\"1\"><Value>1</Value></UI></Var>", "u"_w, false),
              "Var(UI{x='1'}(Value{loc=''}'u'))");
    EXPECT_EQ(WithUiValue("<Var><UI><Value>1</Value><Comment>c</Comment></UI></Var>", WideView(), false),
              "Var(UI(Value{loc=''} Comment'c'))");
}

TEST(WriteUiValue, MissingValueIsAppendedUnlessItWouldBeEmpty) {
    EXPECT_EQ(WithUiValue("<Var><UI><Comment>c</Comment><!-- x --></UI></Var>", "u"_w, false),
              "Var(UI(Comment'c' !' x ' Value{loc=''}'u'))");
    EXPECT_EQ(WithUiValue("<Var><UI><x/></UI></Var>", WideView(), false), "Var(UI(x))");
}

TEST(WriteUiValue, OnlySetLeavesALocThatIsNotSet) {
    EXPECT_EQ(WithUiValue("<Var><UI/></Var>", "u"_w, true), "Var(UI(Value'u'))");
    EXPECT_EQ(WithUiValue("<Var><UI><Value loc=\"x\">1</Value></UI></Var>", "u"_w, true),
              "Var(UI(Value{loc='x'}'u'))");
    EXPECT_EQ(WithUiValue("<Var><UI><Value loc=\"x\">1</Value></UI></Var>", "u"_w, true, true),
              "Var(UI(Value{loc='true'}'u'))");
}

TEST(WriteUiValue, FirstOfSeveralIsWritten) {
    EXPECT_EQ(
        WithUiValue("<Var><Value>0</Value><UI><Value>1</Value><Value>2</Value></UI><UI/></Var>", "u"_w, true),
        "Var(Value'0' UI(Value'u' Value'2') UI)");
}

TEST(WriteUiValue, EntryWithoutAUiIsLeftAlone) {
    EXPECT_EQ(WithUiValue("<Var><Value>1</Value></Var>", "u"_w, false), "Var(Value'1')");
}

}  // namespace
}  // namespace mox::test
