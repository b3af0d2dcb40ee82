#include "mox_xmlApi/entries/entry_writer.h"

#include <gtest/gtest.h>

#include "mox_xmlApi/entries/entry_reader.h"
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

// The entry after the record was written into it, twice, which must be the same as once.
std::string Written(std::string_view entry, const EntryValueRecord* value, const EntryUiRecord* ui,
                    bool onlySet) {
    OneEntry one(entry);
    EXPECT_TRUE(WriteEntry(one.Cursor(), one.Entry(), value, ui, onlySet));
    return one.EntryText();
}
std::string Value(std::string_view entry, const EntryValueRecord& value, bool onlySet) {
    const std::string once = Written(entry, &value, nullptr, onlySet);
    OneEntry twice(entry);
    EXPECT_TRUE(WriteEntry(twice.Cursor(), twice.Entry(), &value, nullptr, onlySet));
    EXPECT_TRUE(WriteEntry(twice.Cursor(), twice.Entry(), &value, nullptr, onlySet));
    EXPECT_EQ(twice.EntryText(), once);
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

TEST(WriteEntry, MaskOfZeroWritesEverything) {
    EXPECT_EQ(Value("<Var/>", Record(0, 0x2003, 7), false),
              "Var{name='n' id='7' type='long' array='array' loc=''}(Value{loc=''}'v')");
    EXPECT_EQ(Value("<Var/>", Record(0, 3, 0), false),
              "Var{name='n' id='0' type='long' array='' loc=''}(Value{loc=''}'v')");
}

TEST(WriteEntry, OnlySetSkipsZeroAndFalse) {
    EXPECT_EQ(Value("<Var/>", Record(0, 3, 0), true), "Var{name='n' type='long' array=''}(Value'v')");
    EXPECT_EQ(Value("<Var/>", EntryValueRecord(), true), "Var{name='' type='' array=''}(Value)");
}

TEST(WriteEntry, OnlySetLeavesWhatIsThere) {
    EXPECT_EQ(Value("<Var id=\"5\" loc=\"true\"><Value loc=\"true\">1</Value></Var>", Record(0, 3, 0), true),
              "Var{id='5' loc='true' name='n' type='long' array=''}(Value{loc='true'}'v')");
}

TEST(WriteEntry, OnlySetWritesWhatIsSet) {
    EntryValueRecord record = Record(0, 3, 7);
    record.loc = true;
    record.locval = true;
    EXPECT_EQ(Value("<Var/>", record, true),
              "Var{name='n' id='7' type='long' array='' loc='true'}(Value{loc='true'}'v')");
    EXPECT_EQ(Value("<Var/>", record, false),
              "Var{name='n' id='7' type='long' array='' loc='true'}(Value{loc='true'}'v')");
}

TEST(WriteEntry, EachMaskBitWritesItsFieldAlone) {
    constexpr std::string_view entry = "<Var x=\"1\"><Value>1</Value></Var>";
    EXPECT_EQ(Value(entry, Record(kWriteName, 3, 7), false), "Var{x='1' name='n'}(Value'1')");
    EXPECT_EQ(Value(entry, Record(kWriteValue, 3, 7), false), "Var{x='1'}(Value{loc=''}'v')");
    EXPECT_EQ(Value(entry, Record(kWriteType, 3, 7), false), "Var{x='1' type='long' array=''}(Value'1')");
    EXPECT_EQ(Value(entry, Record(kWriteId, 3, 7), false), "Var{x='1' id='7'}(Value'1')");
    EXPECT_EQ(Value(entry, Record(kWriteLoc, 3, 7), false), "Var{x='1' loc=''}(Value'1')");
    EXPECT_EQ(Value(entry, Record(0x20, 3, 7), false), "Var{x='1'}(Value'1')");
}

TEST(WriteEntry, ValueMaskWithOnlySetLeavesTheLocOfTheValue) {
    EXPECT_EQ(Value("<Var><Value loc=\"true\">1</Value></Var>", Record(kWriteValue, 3), true),
              "Var(Value{loc='true'}'v')");
    EXPECT_EQ(Value("<Var><Value loc=\"true\">1</Value></Var>", Record(kWriteValue, 3), false),
              "Var(Value{loc=''}'v')");
}

TEST(WriteEntry, LaterScalarTypeEmptiesTheQualifier) {
    EXPECT_EQ(Value("<Var type=\"long\" array=\"array\"/>", Record(kWriteType, 3), true),
              "Var{type='long' array=''}");
    EXPECT_EQ(Value("<Var/>", Record(kWriteType, 0x1003), true), "Var{type='long' array='vector'}");
}

TEST(WriteEntry, UnknownTypeIsEmptyAndKeepsItsQualifier) {
    EXPECT_EQ(Value("<Var type=\"long\"/>", Record(kWriteType, 4), true), "Var{type='' array=''}");
    EXPECT_EQ(Value("<Var type=\"long\"/>", Record(kWriteType, 0x2004), true), "Var{type='' array='array'}");
}

TEST(WriteEntry, IdBeyondTheSignedRangeIsNegativeAndReadsBack) {
    OneEntry one("<Var/>");
    const EntryValueRecord record = Record(0, 3, 0x80000000);
    ASSERT_TRUE(WriteEntry(one.Cursor(), one.Entry(), &record, nullptr, true));
    EXPECT_EQ(one.EntryText(), "Var{name='n' id='-2147483648' type='long' array=''}(Value'v')");
    EntryValueRecord read;
    ASSERT_TRUE(ReadEntry(one.Cursor(), *one.Entry(), &read, nullptr));
    EXPECT_EQ(read.id, 0x80000000);
}

TEST(WriteEntry, FirstValueChildIsReplacedAndANewOneAppended) {
    EXPECT_EQ(Value("<Var><UI/><Value>1</Value><Value>2</Value></Var>", Record(kWriteValue, 3), true),
              "Var(UI Value'v' Value'2')");
    EXPECT_EQ(Value("<Var><UI/><!-- c --></Var>", Record(kWriteValue, 3), true), "Var(UI !' c ' Value'v')");
}

TEST(WriteEntry, ValueChildKeepsItsOwnChildren) {
    EXPECT_EQ(Value("<Var><Value>1<x/></Value></Var>", Record(kWriteValue, 3), true), "Var(Value'v'(x))");
}

TEST(WriteEntry, WithUiRecordTheValueIsNotWritten) {
    const EntryValueRecord value = Record(0, 3);
    const EntryUiRecord ui = UiRecord(WideView(), "u"_w);
    EXPECT_EQ(Written("<Var><Value>1</Value></Var>", &value, &ui, true),
              "Var{name='n' type='long' array=''}(Value'1' UI{control='num'})");
    const EntryValueRecord masked = Record(kWriteValue, 3);
    EXPECT_EQ(Written("<Var><Value>1</Value></Var>", &masked, &ui, false), "Var(Value'1' UI{control='num'})");
    EXPECT_EQ(Written("<Var/>", &masked, &ui, false), "Var(UI{control='num'})");
}

TEST(WriteEntry, WithoutValueRecordOnlyTheUiIsWritten) {
    const EntryUiRecord ui = UiRecord("c"_w, "u"_w);
    EXPECT_EQ(Written("<Var/>", nullptr, &ui, true), "Var(UI{control='num'}(Comment'c'))");
}

TEST(WriteEntry, WithoutRecordsChangesNothing) {
    EXPECT_EQ(Written("<Var a=\"1\"><Value>1</Value></Var>", nullptr, nullptr, false),
              "Var{a='1'}(Value'1')");
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

TEST(WriteEntryUi, ClearedRecordWritesControlText) {
    EXPECT_EQ(Ui("<UI/>", EntryUiRecord(), false), "UI{control='text'}");
    EXPECT_EQ(Ui("<UI control=\"num\"/>", EntryUiRecord(), true), "UI{control='text'}");
}

TEST(WriteEntryUi, OptionalAttributesAreWrittenInOrder) {
    EntryUiRecord ui = UiRecord(WideView(), WideView());
    ui.prov_index = 0xFFFFFFFF;
    ui.prov_owner = 2;
    ui.name = "m"_w;
    EXPECT_EQ(Ui("<UI/>", ui, true), "UI{control='num' prov_index='4294967295' prov_owner='dwg' name='m'}");
    EXPECT_EQ(Ui("<UI name=\"old\" x=\"1\"/>", ui, false),
              "UI{name='m' x='1' control='num' prov_index='4294967295' prov_owner='dwg'}");
}

TEST(WriteEntryUi, OptionalAttributesThatAreNotSetGoUnlessOnlySet) {
    constexpr std::string_view block = "<UI prov_index=\"7\" prov_owner=\"app\" name=\"n\"/>";
    EXPECT_EQ(Ui(block, UiRecord(WideView(), WideView()), false), "UI{control='num'}");
    EXPECT_EQ(Ui(block, UiRecord(WideView(), WideView()), true),
              "UI{prov_index='7' prov_owner='app' name='n' control='num'}");
}

TEST(WriteEntryUi, UnknownOwnerIsWrittenEmpty) {
    EntryUiRecord ui = UiRecord(WideView(), WideView());
    ui.prov_owner = 3;
    EXPECT_EQ(Ui("<UI/>", ui, true), "UI{control='num' prov_owner=''}");
}

TEST(WriteEntryUi, OtherFieldsAreNeverWritten) {
    EntryUiRecord ui = FullUiRecord();
    ui.Comment = WideView();
    EXPECT_EQ(Ui("<UI/>", ui, false), "UI{control='num' prov_index='4' prov_owner='app' name='n'}");
}

TEST(WriteEntryUi, WithoutAnyCommentEndsBeforeTheValue) {
    EXPECT_EQ(Ui("<UI><Value>1</Value></UI>", UiRecord(WideView(), "u"_w), false),
              "UI{control='num'}(Value'1')");
    EXPECT_EQ(Ui("<UI/>", UiRecord(WideView(), "u"_w), false), "UI{control='num'}");
}

TEST(WriteEntryUi, FirstCommentGoesBeforeTheValueAndEndsThere) {
    EXPECT_EQ(Ui("<UI><x/><Value>1</Value></UI>", UiRecord("note"_w, "u"_w), false),
              "UI{control='num'}(x Comment'note' Value'1')");
    EXPECT_EQ(Ui("<UI><x/></UI>", UiRecord("note"_w, "u"_w), false), "UI{control='num'}(x Comment'note')");
}

TEST(WriteEntryUi, ExistingCommentStaysWithoutANewOneAndTheValueIsWritten) {
    EXPECT_EQ(
        Ui("<UI><Comment>c</Comment><Value loc=\"true\">1</Value></UI>", UiRecord(WideView(), "u"_w), false),
        "UI{control='num'}(Comment'c' Value{loc=''}'u')");
    EXPECT_EQ(
        Ui("<UI><Comment>c</Comment><Value loc=\"true\">1</Value></UI>", UiRecord(WideView(), "u"_w), true),
        "UI{control='num'}(Comment'c' Value{loc='true'}'u')");
    EXPECT_EQ(Ui("<UI><Comment/></UI>", UiRecord(WideView(), "u"_w), true),
              "UI{control='num'}(Comment Value'u')");
}

TEST(WriteEntryUi, LocOfTheValueIsWrittenWhenSet) {
    EntryUiRecord ui = UiRecord(WideView(), "u"_w);
    ui.loc = true;
    EXPECT_EQ(Ui("<UI><Comment/></UI>", ui, true), "UI{control='num'}(Comment Value{loc='true'}'u')");
}

TEST(WriteEntryUi, NewCommentReplacesTheOldOneAndIsRefusedThere) {
    EXPECT_EQ(Ui("<UI><Comment>c</Comment><Value>1</Value></UI>", UiRecord("new"_w, "u"_w), false),
              "refused UI{control='num'}(Comment'new' Value'1')");
}

TEST(WriteEntryUi, NewCommentLeavesXmlCommentsAndEndsThere) {
    EXPECT_EQ(Ui("<UI><Comment>c</Comment><!-- x --><!-- y --></UI>", UiRecord("new"_w, "u"_w), true),
              "refused UI{control='num'}(Comment'new' !' x ' !' y ')");
    EXPECT_EQ(Ui("<UI><!-- x --><Comment>c</Comment><!-- y --></UI>", UiRecord("new"_w, "u"_w), true),
              "refused UI{control='num'}(!' x ' Comment'new' !' y ')");
    EXPECT_EQ(Ui("<UI><!-- x --><Comment>c</Comment></UI>", UiRecord("new"_w, "u"_w), true),
              "refused UI{control='num'}(!' x ' Comment'new')");
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
