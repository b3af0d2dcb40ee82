#include "mox_xmlApi/platform/mox_dbtInfo.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mox_xmlApi/platform/wide_text.h"

namespace mox {
namespace {

using Value = TableEntryValueInfoStruct;
using Ui = TableEntryUInfoStruct;

constexpr WideView kAbc = "abc"_w;
constexpr WideView kOther = "other"_w;

static_assert(std::is_base_of_v<TableEntryBaseInfoStruct, Value> && std::is_base_of_v<Value, Ui>);
static_assert(std::is_nothrow_move_constructible_v<Value> && std::is_nothrow_move_assignable_v<Value>);
static_assert(std::is_nothrow_move_constructible_v<Ui> && std::is_nothrow_move_assignable_v<Ui>);

// How far the byte at `field` lies behind the start of the record.
std::ptrdiff_t Offset(const Ui& record, const void* field) {
    return static_cast<const char*>(field) - reinterpret_cast<const char*>(&record);
}

void FillBase(TableEntryBaseInfoStruct& record) {
    record.type = 8;
    record.writeMask = 3;
    for (wchar16& unit : record.name)
        unit = wchar16{'n'};
    record.id = 77;
}

void ExpectBaseFilled(const TableEntryBaseInfoStruct& record) {
    EXPECT_EQ(record.type, 8);
    EXPECT_EQ(record.writeMask, 3);
    EXPECT_EQ(WideView(record.name, 260), WideString(260, wchar16{'n'}));
    EXPECT_EQ(record.id, 77U);
}

void ExpectBaseZero(const TableEntryBaseInfoStruct& record) {
    EXPECT_EQ(record.type, 0);
    EXPECT_EQ(record.writeMask, 0);
    EXPECT_EQ(WideView(record.name, 260), WideString(260, wchar16{0}));
    EXPECT_EQ(record.id, 0U);
}

void FillUi(Ui& record) {
    FillBase(record);
    record.control = 12;
    record.prov_index = 0x12345678;
    record.prov_owner = 4;
    ASSERT_TRUE(record.SetVal("value"));
    ASSERT_TRUE(record.SetComment_w("comment"_w.data()));
    ASSERT_TRUE(record.SetUserName_w("user"_w.data()));
}

void ExpectUiFilled(const Ui& record) {
    ExpectBaseFilled(record);
    EXPECT_EQ(std::uint16_t{record.control}, 12);
    EXPECT_EQ(std::uint32_t{record.prov_index}, 0x12345678U);
    EXPECT_EQ(record.prov_owner, 4);
    EXPECT_STREQ(record.GetVal(), "value");
    ASSERT_NE(record.GetVal_w(), nullptr);
    EXPECT_EQ(WideView(record.GetVal_w()), "value"_w);
    ASSERT_NE(record.GetComment_w(), nullptr);
    EXPECT_EQ(WideView(record.GetComment_w()), "comment"_w);
    ASSERT_NE(record.GetUserName_w(), nullptr);
    EXPECT_EQ(WideView(record.GetUserName_w()), "user"_w);
}

void ExpectNoTexts(const Ui& record) {
    EXPECT_EQ(record.GetVal(), nullptr);
    EXPECT_EQ(record.GetVal_w(), nullptr);
    EXPECT_EQ(record.GetComment_w(), nullptr);
    EXPECT_EQ(record.GetUserName_w(), nullptr);
}

void ExpectUiZero(const Ui& record) {
    ExpectBaseZero(record);
    EXPECT_EQ(std::uint16_t{record.control}, 0);
    EXPECT_EQ(std::uint32_t{record.prov_index}, 0U);
    EXPECT_EQ(record.prov_owner, 0);
    ExpectNoTexts(record);
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

TEST(EntryValue, EitherSetterGivesBothForms) {
    Value record;
    EXPECT_TRUE(record.SetVal("\xC3\xA9\xF0\x9F\x98\x80"));
    EXPECT_STREQ(record.GetVal(), "\xC3\xA9\xF0\x9F\x98\x80");
    const wchar16 units[] = {0xE9, 0xD83D, 0xDE00, 0};
    EXPECT_EQ(WideView(record.GetVal_w()), WideView(units));

    const wchar16 euro[] = {0x20AC, '5', 0};
    EXPECT_TRUE(record.SetVal_w(euro));
    EXPECT_STREQ(record.GetVal(),
                 "\xE2\x82\xAC"
                 "5");
    EXPECT_EQ(WideView(record.GetVal_w()), WideView(euro));
}

TEST(EntryValue, EmptyIsNotTheSameAsNeverSet) {
    Value record;
    EXPECT_TRUE(record.SetVal(""));
    EXPECT_STREQ(record.GetVal(), "");
    ASSERT_NE(record.GetVal_w(), nullptr);
    EXPECT_EQ(WideView(record.GetVal_w()), WideView());
}

TEST(EntryValue, NullMakesItNeverSet) {
    Value record;
    ASSERT_TRUE(record.SetVal("x"));
    EXPECT_TRUE(record.SetVal(nullptr));
    EXPECT_EQ(record.GetVal(), nullptr);
    EXPECT_EQ(record.GetVal_w(), nullptr);
    ASSERT_TRUE(record.SetVal("x"));
    EXPECT_TRUE(record.SetVal_w(nullptr));
    EXPECT_EQ(record.GetVal(), nullptr);
    EXPECT_EQ(record.GetVal_w(), nullptr);
}

TEST(EntryValue, NarrowTextThatIsNotWellFormedIsRefusedAndTheOldValueStays) {
    Value record;
    EXPECT_FALSE(record.SetVal("\xC3("));
    EXPECT_EQ(record.GetVal(), nullptr);
    EXPECT_EQ(record.GetVal_w(), nullptr);

    ASSERT_TRUE(record.SetVal("old"));
    EXPECT_FALSE(record.SetVal("\xC3("));
    EXPECT_STREQ(record.GetVal(), "old");
    EXPECT_EQ(WideView(record.GetVal_w()), "old"_w);
}

TEST(EntryValue, WideTextIsHeldWhateverItsUnits) {
    const wchar16 unpaired[] = {'a', 0xD83D, 0};
    Value record;
    ASSERT_TRUE(record.SetVal("old"));
    EXPECT_TRUE(record.SetVal_w(unpaired));
    EXPECT_EQ(WideView(record.GetVal_w()), WideView(unpaired));
    EXPECT_EQ(record.GetVal(), nullptr);
    EXPECT_EQ(WideView(Value(record).GetVal_w()), WideView(unpaired));

    EXPECT_TRUE(record.SetVal_w("new"_w.data()));
    EXPECT_STREQ(record.GetVal(), "new");
}

TEST(EntryValue, ClearedRecordTakesTextsLikeANewOne) {
    Ui record;
    FillUi(record);
    record.Clear();
    EXPECT_EQ(Ui(record).GetVal(), nullptr);
    EXPECT_EQ(Ui(record).GetComment_w(), nullptr);
    FillUi(record);
    ExpectUiFilled(record);
    ExpectUiFilled(Ui(record));
}

TEST(EntryValue, OwnTextsMayBeStoredAgain) {
    Ui record;
    FillUi(record);
    EXPECT_TRUE(record.SetVal(record.GetVal() + 2));
    EXPECT_STREQ(record.GetVal(), "lue");
    EXPECT_TRUE(record.SetVal_w(record.GetVal_w() + 1));
    EXPECT_STREQ(record.GetVal(), "ue");
    EXPECT_TRUE(record.SetComment_w(record.GetComment_w() + 3));
    EXPECT_EQ(WideView(record.GetComment_w()), "ment"_w);
    EXPECT_TRUE(record.SetUserName_w(record.GetUserName_w()));
    EXPECT_EQ(WideView(record.GetUserName_w()), "user"_w);
}

TEST(EntryTexts, CommentAndUserNameAreApart) {
    Ui record;
    EXPECT_TRUE(record.SetComment_w(kAbc.data()));
    EXPECT_EQ(record.GetUserName_w(), nullptr);
    EXPECT_TRUE(record.SetUserName_w(kOther.data()));
    EXPECT_EQ(WideView(record.GetComment_w()), kAbc);
    EXPECT_EQ(WideView(record.GetUserName_w()), kOther);
    EXPECT_TRUE(record.SetComment_w(nullptr));
    EXPECT_EQ(record.GetComment_w(), nullptr);
    EXPECT_TRUE(record.SetUserName_w(nullptr));
    EXPECT_EQ(record.GetUserName_w(), nullptr);
}

TEST(EntryTexts, AnyUnitsAreCarriedAndEmptyIsNotNull) {
    Ui record;
    const wchar16 unpaired[] = {0xDC00, 0xFFFF, 0};
    EXPECT_TRUE(record.SetComment_w(unpaired));
    EXPECT_EQ(WideView(record.GetComment_w()), WideView(unpaired));
    EXPECT_TRUE(record.SetUserName_w(""_w.data()));
    ASSERT_NE(record.GetUserName_w(), nullptr);
    EXPECT_EQ(WideView(record.GetUserName_w()), WideView());
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

// DataToHex of the bytes into a buffer that is exactly large enough.
std::string ToHex(const std::vector<unsigned char>& bytes) {
    std::vector<char> hex(2 * bytes.size() + 1, '#');
    Value::DataToHex(bytes.data(), hex.data(), bytes.size());
    EXPECT_EQ(hex.back(), '\0');
    return {hex.data(), hex.size() - 1};
}

// HexToData into `size` bytes: the bytes that were stored. The byte behind them must stay.
std::vector<unsigned char> FromHex(const char* hex, std::size_t size) {
    std::vector<unsigned char> bytes(size + 1, 0xEE);
    const std::size_t stored = Value::HexToData(hex, bytes.data(), size);
    EXPECT_LE(stored, size);
    for (std::size_t i = stored; i < bytes.size(); ++i)
        EXPECT_EQ(bytes[i], 0xEE);
    bytes.resize(stored);
    return bytes;
}

using Bytes = std::vector<unsigned char>;

TEST(EntryHex, BytesBecomeTwoUpperCaseDigitsEach) {
    EXPECT_EQ(ToHex({0x01, 0xAB}), "01AB");
    EXPECT_EQ(ToHex({0x00, 0xFF, 0x9A, 0x7f}), "00FF9A7F");
    EXPECT_EQ(ToHex({}), "");
}

TEST(EntryHex, NullIsNoBytes) {
    char hex[3] = {'#', '#', '#'};
    Value::DataToHex(nullptr, hex, 1);
    EXPECT_STREQ(hex, "");
    EXPECT_EQ(hex[1], '#');
    Value::DataToHex("ab", nullptr, 2);

    EXPECT_EQ(FromHex(nullptr, 4), Bytes());
    EXPECT_EQ(Value::HexToData("0102", nullptr, 2), 0U);
}

TEST(EntryHex, DigitsOfEitherCaseAreRead) {
    EXPECT_EQ(FromHex("01abCDeF", 8), (Bytes{0x01, 0xAB, 0xCD, 0xEF}));
    EXPECT_EQ(FromHex("", 8), Bytes());
}

TEST(EntryHex, ReadingStopsAtTheFirstPairThatIsNotTwoDigits) {
    EXPECT_EQ(FromHex("01G2", 8), Bytes{0x01});
    EXPECT_EQ(FromHex("012G03", 8), Bytes{0x01});
    EXPECT_EQ(FromHex("01 02", 8), Bytes{0x01});
    EXPECT_EQ(FromHex("0x01", 8), Bytes());
    EXPECT_EQ(FromHex("@0", 8), Bytes());
    EXPECT_EQ(FromHex("`0", 8), Bytes());
    EXPECT_EQ(FromHex("/0:0", 8), Bytes());
    EXPECT_EQ(FromHex("\xC3\xA9", 8), Bytes());
}

TEST(EntryHex, OddLastDigitIsIgnored) {
    EXPECT_EQ(FromHex("01A", 8), Bytes{0x01});
    EXPECT_EQ(FromHex("1", 8), Bytes());
}

TEST(EntryHex, NoMoreThanTheSizeIsStored) {
    EXPECT_EQ(FromHex("010203", 2), (Bytes{0x01, 0x02}));
    EXPECT_EQ(FromHex("010203", 0), Bytes());
}

TEST(EntryHex, EveryByteReturnsUnchanged) {
    Bytes bytes;
    for (int i = 0; i <= 0xFF; ++i)
        bytes.push_back(static_cast<unsigned char>(i));
    EXPECT_EQ(FromHex(ToHex(bytes).c_str(), 256), bytes);
}

}  // namespace
}  // namespace mox
