// The entry records: their layout, what clears them, copies and moves.
#include "mox_xmlApi/platform/mox_dbtInfo.h"

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/unit/mox_dbtInfo_support.h"

namespace mox::test {
namespace {

static_assert(std::is_base_of_v<TableEntryBaseInfoStruct, Value> && std::is_base_of_v<Value, Ui>);
static_assert(std::is_nothrow_move_constructible_v<Value> && std::is_nothrow_move_assignable_v<Value>);
static_assert(std::is_nothrow_move_constructible_v<Ui> && std::is_nothrow_move_assignable_v<Ui>);

// How far the byte at `field` lies after the start of the record.
std::ptrdiff_t Offset(const Ui& record, const void* field) {
    return static_cast<const char*>(field) - reinterpret_cast<const char*>(&record);
}

TEST(EntryRecordLayout, PresentationFieldsFollowTheValueRecordWithoutGaps) {
    const Ui record;
    const auto base = static_cast<std::ptrdiff_t>(sizeof(Value));
    EXPECT_EQ(Offset(record, &record.type), 0);
    EXPECT_EQ(Offset(record, &record.id), 524);
    EXPECT_EQ(Offset(record, &record.control), base);
    EXPECT_EQ(Offset(record, static_cast<const void*>(&record.prov_index)), base + 2);
    EXPECT_EQ(Offset(record, &record.prov_owner), base + 6);
    EXPECT_EQ(sizeof(TableEntryBaseInfoStruct), 528U);
    EXPECT_EQ(sizeof(Value), 536U);
    EXPECT_EQ(sizeof(Ui), 552U);
    EXPECT_EQ(alignof(Ui), 8U);
}

TEST(EntryRecordLayout, RecordsOfAnArrayWorkIndependently) {
    std::vector<Ui> records(3);
    for (Ui& record : records)
        FillUi(record);
    records[1].Clear();
    ExpectUiFilled(records[0]);
    ExpectUiZero(records[1]);
    ExpectUiFilled(records[2]);
}

TEST(EntryRecords, NewRecordIsZeroAndItsTextsWereNeverSet) {
    ExpectBaseZero(TableEntryBaseInfoStruct());
    ExpectBaseZero(Value());
    EXPECT_EQ(Value().GetVal(), nullptr);
    EXPECT_EQ(Value().GetVal_w(), nullptr);
    ExpectUiZero(Ui());
}

TEST(EntryRecords, BaseClearZeroesTheWholeNameAndKeepsTheValue) {
    Value record;
    FillBase(record);
    ASSERT_TRUE(record.SetVal("kept"));
    record.Clear();
    ExpectBaseZero(record);
    EXPECT_STREQ(record.GetVal(), "kept");
}

TEST(EntryRecords, PresentationClearResetsEverything) {
    Ui record;
    FillUi(record);
    ExpectUiFilled(record);
    record.Clear();
    ExpectUiZero(record);
}

TEST(EntryRecords, BaseClearOfAPresentationRecordKeepsWhatTheBaseDoesNotHave) {
    Ui record;
    FillUi(record);
    record.TableEntryBaseInfoStruct::Clear();
    ExpectBaseZero(record);
    EXPECT_EQ(std::uint32_t{record.prov_index}, 0x12345678U);
    EXPECT_STREQ(record.GetVal(), "value");
    EXPECT_EQ(WideView(record.GetComment_w()), "comment"_w);
}

TEST(EntryRecordCopies, CopiesAreDeep) {
    auto original = std::make_unique<Ui>();
    FillUi(*original);
    const Ui copy(*original);
    Ui assigned;
    ASSERT_TRUE(assigned.SetVal("before"));
    ASSERT_TRUE(assigned.SetComment_w(kAbc.data()));
    assigned = *original;
    EXPECT_NE(copy.GetVal(), original->GetVal());
    EXPECT_NE(copy.GetVal_w(), original->GetVal_w());
    EXPECT_NE(copy.GetComment_w(), original->GetComment_w());
    EXPECT_NE(assigned.GetUserName_w(), original->GetUserName_w());
    original.reset();
    ExpectUiFilled(copy);
    ExpectUiFilled(assigned);
}

TEST(EntryRecordCopies, ValueRecordsCopyAndMoveToo) {
    auto original = std::make_unique<Value>();
    FillBase(*original);
    ASSERT_TRUE(original->SetVal("value"));
    Value copy(*original);
    Value assigned;
    assigned = *original;
    Value moved(std::move(*original));
    EXPECT_EQ(original->GetVal(), nullptr);
    original.reset();
    for (const Value* record : {&copy, &assigned, &moved}) {
        ExpectBaseFilled(*record);
        EXPECT_STREQ(record->GetVal(), "value");
        EXPECT_EQ(WideView(record->GetVal_w()), "value"_w);
    }
    assigned = Value();
    ExpectBaseZero(assigned);
    EXPECT_EQ(assigned.GetVal(), nullptr);
}

TEST(EntryRecordCopies, MoveTakesTheTextsAlong) {
    Ui original;
    FillUi(original);
    const char* const value = original.GetVal();
    const wchar16* const comment = original.GetComment_w();
    Ui moved(std::move(original));
    ExpectUiFilled(moved);
    EXPECT_EQ(moved.GetVal(), value);
    EXPECT_EQ(moved.GetComment_w(), comment);
    ExpectNoTexts(original);

    Ui assigned;
    FillUi(assigned);
    assigned = std::move(moved);
    ExpectUiFilled(assigned);
    EXPECT_EQ(assigned.GetComment_w(), comment);
    ExpectNoTexts(moved);
}

TEST(EntryRecordCopies, AssignmentToItselfChangesNothing) {
    Ui record;
    FillUi(record);
    Ui& same = record;
    record = same;
    ExpectUiFilled(record);
    record = std::move(same);
    ExpectUiFilled(record);
    Value value;
    FillBase(value);
    ASSERT_TRUE(value.SetVal("v"));
    Value& sameValue = value;
    value = std::move(sameValue);
    ExpectBaseFilled(value);
    EXPECT_STREQ(value.GetVal(), "v");
}

}  // namespace
}  // namespace mox::test
