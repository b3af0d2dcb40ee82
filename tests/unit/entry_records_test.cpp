// Each field of the records from and to its text, also those that no export gives or takes.
#include "mox_xmlApi/entries/entry_records.h"

#include <gtest/gtest.h>

#include "tests/unit/entry_support.h"

namespace mox::test {
namespace {

// The record after one field was set on a cleared one; "refused" in front when the result was false.
std::string SetValue(WideView field, WideView text) {
    EntryValueRecord record;
    const bool accepted = SetValueField(record, field, text);
    return (accepted ? "" : "refused ") + Show(record);
}
std::string SetUi(WideView field, WideView text) {
    EntryUiRecord record;
    const bool accepted = SetUiField(record, field, text);
    return (accepted ? "" : "refused ") + Show(record);
}

// The text of one field and, after a slash, the qualifier; "refused" in front when the result was false.
std::string GetValue(const EntryValueRecord& record, WideView field) {
    FieldText text;
    text.SetView("old"_w);
    WideView qualifier = "old"_w;
    const bool accepted = GetValueField(record, field, text, qualifier);
    return (accepted ? "" : "refused ") + Shown(text.View()) + "/" + Shown(qualifier);
}
std::string GetUi(const EntryUiRecord& record, WideView field) {
    FieldText text;
    text.SetView("old"_w);
    const bool accepted = GetUiField(record, field, text);
    return (accepted ? "" : "refused ") + Shown(text.View());
}

TEST(ValueRecord, ClearedHasNothingSet) {
    EntryValueRecord record = FullValueRecord();
    EXPECT_EQ(Show(record), "'n' mask 1 type 3 id 7 loc = 'v' locval");
    ClearValueRecord(record);
    EXPECT_EQ(Show(record), "''");
}

TEST(ValueRecord, EveryFieldIsSetFromItsText) {
    EXPECT_EQ(SetValue("name"_w, " Speed "_w), "' Speed '");
    EXPECT_EQ(SetValue("Value"_w, "1 <2>"_w), "'' = '1 <2>'");
    EXPECT_EQ(SetValue("id"_w, "12abc"_w), "'' id 12");
    EXPECT_EQ(SetValue("loc"_w, "true"_w), "'' loc");
    EXPECT_EQ(SetValue("locval"_w, "true"_w), "'' locval");
}

TEST(ValueRecord, LocIsClearedByAnythingButTrue) {
    for (const WideView text : {""_w, "True"_w, "true "_w, "1"_w}) {
        EntryValueRecord record = FullValueRecord();
        EXPECT_TRUE(SetValueField(record, "loc"_w, text));
        EXPECT_TRUE(SetValueField(record, "locval"_w, text));
        EXPECT_FALSE(record.loc || record.locval);
    }
}

TEST(ValueRecord, FieldsAsTexts) {
    const EntryValueRecord record = FullValueRecord();
    EXPECT_EQ(GetValue(record, "name"_w), "n/old");
    EXPECT_EQ(GetValue(record, "Value"_w), "v/old");
    EXPECT_EQ(GetValue(record, "id"_w), "7/old");
    EXPECT_EQ(GetValue(record, "type"_w), "long/");
    EXPECT_EQ(GetValue(record, "loc"_w), "true/old");
    EXPECT_EQ(GetValue(record, "locval"_w), "true/old");
    EXPECT_EQ(GetValue(EntryValueRecord(), "id"_w), "0/old");
    EXPECT_EQ(GetValue(EntryValueRecord(), "type"_w), "refused old/");
    EXPECT_EQ(GetValue(EntryValueRecord(), "loc"_w), "/old");
    EXPECT_EQ(GetValue(EntryValueRecord(), "locval"_w), "/old");
}

TEST(ValueRecord, OtherNamesAreRefused) {
    for (const WideView field : {""_w, "Name"_w, "value"_w, "eud"_w, "writeMask"_w, "ids"_w}) {
        EXPECT_EQ(SetValue(field, "1"_w), "refused ''");
        EXPECT_EQ(GetValue(FullValueRecord(), field), "refused old/old");
    }
    EXPECT_EQ(GetValue(FullValueRecord(), "array"_w), "refused old/old");
    EXPECT_EQ(SetValue("type"_w, "long"_w), "refused ''");
    EXPECT_EQ(SetValue("array"_w, "vector"_w), "refused ''");
}

TEST(UiRecord, ClearedHasControl65535AndNothingElse) {
    EntryUiRecord record = FullUiRecord();
    EXPECT_EQ(Show(record),
              "control 1 access 2 flags 3 index 4 owner 1 regen 'r' comment 'c' name 'n' min '0' max '9'"
              " = 'v' loc");
    ClearUiRecord(record);
    EXPECT_EQ(Show(record), "control 65535");
}

TEST(UiRecord, EveryFieldIsSetFromItsText) {
    EXPECT_EQ(SetUi("Comment"_w, " c "_w), "control 65535 comment ' c '");
    EXPECT_EQ(SetUi("Value"_w, "v"_w), "control 65535 = 'v'");
    EXPECT_EQ(SetUi("minVal"_w, "abc"_w), "control 65535 min 'abc'");
    EXPECT_EQ(SetUi("maxVal"_w, "1.5"_w), "control 65535 max '1.5'");
    EXPECT_EQ(SetUi("name"_w, "n"_w), "control 65535 name 'n'");
    EXPECT_EQ(SetUi("regen"_w, "r"_w), "control 65535 regen 'r'");
    EXPECT_EQ(SetUi("control"_w, "radio"_w), "control 19");
    EXPECT_EQ(SetUi("prov_owner"_w, "erg"_w), "control 65535 owner 4");
    EXPECT_EQ(SetUi("prov_index"_w, "12abc"_w), "control 65535 index 12");
    EXPECT_EQ(SetUi("access"_w, "hidden"_w), "control 65535 access 2");
    EXPECT_EQ(SetUi("loc"_w, "true"_w), "control 65535 loc");
    EntryUiRecord record = FullUiRecord();
    EXPECT_TRUE(SetUiField(record, "loc"_w, "yes"_w));
    EXPECT_FALSE(record.loc);
}

TEST(UiRecord, FlagsAreTheLow16BitsOfAHexadecimalNumber) {
    EXPECT_EQ(SetUi("flags"_w, "ff"_w), "control 65535 flags 255");
    EXPECT_EQ(SetUi("flags"_w, "0x1F"_w), "control 65535 flags 31");
    EXPECT_EQ(SetUi("flags"_w, "xyz"_w), "control 65535");
    EXPECT_EQ(SetUi("flags"_w, "1FFFF"_w), "control 65535 flags 65535");
    EXPECT_EQ(SetUi("flags"_w, "10000"_w), "control 65535");
}

TEST(UiRecord, FieldsAsTexts) {
    const EntryUiRecord record = FullUiRecord();
    EXPECT_EQ(GetUi(record, "control"_w), "num");
    EXPECT_EQ(GetUi(record, "access"_w), "hidden");
    EXPECT_EQ(GetUi(record, "flags"_w), "0003");
    EXPECT_EQ(GetUi(record, "prov_index"_w), "4");
    EXPECT_EQ(GetUi(record, "prov_owner"_w), "app");
    EXPECT_EQ(GetUi(record, "regen"_w), "r");
    EXPECT_EQ(GetUi(record, "Comment"_w), "c");
    EXPECT_EQ(GetUi(record, "name"_w), "n");
    EXPECT_EQ(GetUi(record, "minVal"_w), "0");
    EXPECT_EQ(GetUi(record, "maxVal"_w), "9");
    EXPECT_EQ(GetUi(record, "Value"_w), "v");
    EXPECT_EQ(GetUi(record, "loc"_w), "true");
}

TEST(UiRecord, ClearedFieldsAsTexts) {
    const EntryUiRecord record;
    EXPECT_EQ(GetUi(record, "control"_w), "text");
    EXPECT_EQ(GetUi(record, "access"_w), "editable");
    EXPECT_EQ(GetUi(record, "flags"_w), "0000");
    EXPECT_EQ(GetUi(record, "prov_index"_w), "0");
    EXPECT_EQ(GetUi(record, "prov_owner"_w), "");
    EXPECT_EQ(GetUi(record, "loc"_w), "");
}

TEST(UiRecord, FlagsAreFourUpperCaseDigits) {
    EntryUiRecord record;
    record.flags = 0xABCD;
    EXPECT_EQ(GetUi(record, "flags"_w), "ABCD");
}

TEST(UiRecord, OtherNamesAreRefused) {
    for (const WideView field : {""_w, "comment"_w, "value"_w, "id"_w, "type"_w, "locval"_w}) {
        EXPECT_EQ(SetUi(field, "1"_w), "refused control 65535");
        EXPECT_EQ(GetUi(FullUiRecord(), field), "refused old");
    }
}

}  // namespace
}  // namespace mox::test
