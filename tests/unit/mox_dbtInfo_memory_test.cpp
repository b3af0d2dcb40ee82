// What a record keeps of a very long text once it holds a short one. Nothing of it: the short one lies elsewhere.
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox {
namespace {

constexpr WideView kShort = "a short text"_w;
const WideString kLong(100000, wchar16{'l'});
const std::string kLongNarrow(100000, 'l');

template <class Unit>
std::uintptr_t Place(const Unit* text) {
    return reinterpret_cast<std::uintptr_t>(text);
}

TEST(EntryMemory, ShortNarrowTextGivesTheLongOneBack) {
    TableEntryValueInfoStruct value;
    ASSERT_TRUE(value.SetVal(kLongNarrow.c_str()));
    const std::uintptr_t narrow = Place(value.GetVal());
    const std::uintptr_t wide = Place(value.GetVal_w());
    ASSERT_TRUE(value.SetVal("a short text"));
    EXPECT_NE(Place(value.GetVal()), narrow);
    EXPECT_NE(Place(value.GetVal_w()), wide);
    EXPECT_STREQ(value.GetVal(), "a short text");
    EXPECT_EQ(WideView(value.GetVal_w()), kShort);
}

TEST(EntryMemory, ShortWideTextGivesTheLongOneBack) {
    TableEntryValueInfoStruct value;
    ASSERT_TRUE(value.SetVal_w(kLong.c_str()));
    const std::uintptr_t narrow = Place(value.GetVal());
    const std::uintptr_t wide = Place(value.GetVal_w());
    ASSERT_TRUE(value.SetVal_w(kShort.data()));
    EXPECT_NE(Place(value.GetVal()), narrow);
    EXPECT_NE(Place(value.GetVal_w()), wide);
    EXPECT_STREQ(value.GetVal(), "a short text");
    EXPECT_EQ(WideView(value.GetVal_w()), kShort);
}

TEST(EntryMemory, WideTextWithoutNarrowFormGivesTheOldNarrowOneBack) {
    const WideString lone = {wchar16{0xD800}};
    TableEntryValueInfoStruct value;
    ASSERT_TRUE(value.SetVal_w(kLong.c_str()));
    const std::uintptr_t narrow = Place(value.GetVal());
    ASSERT_TRUE(value.SetVal_w(lone.c_str()));
    ASSERT_EQ(value.GetVal(), nullptr);
    ASSERT_TRUE(value.SetVal_w(kShort.data()));
    EXPECT_NE(Place(value.GetVal()), narrow);
}

TEST(EntryMemory, ShortCommentAndUserNameGiveTheLongOnesBack) {
    TableEntryUInfoStruct entry;
    ASSERT_TRUE(entry.SetComment_w(kLong.c_str()));
    ASSERT_TRUE(entry.SetUserName_w(kLong.c_str()));
    const std::uintptr_t comment = Place(entry.GetComment_w());
    const std::uintptr_t userName = Place(entry.GetUserName_w());
    ASSERT_TRUE(entry.SetComment_w(kShort.data()));
    ASSERT_TRUE(entry.SetUserName_w(kShort.data()));
    EXPECT_NE(Place(entry.GetComment_w()), comment);
    EXPECT_NE(Place(entry.GetUserName_w()), userName);
    EXPECT_EQ(WideView(entry.GetComment_w()), kShort);
    EXPECT_EQ(WideView(entry.GetUserName_w()), kShort);
}

// The usual texts of an enumeration: each takes the place of the one before.
TEST(EntryMemory, TextsOfUsualLengthKeepTheirPlace) {
    const WideString usual(2000, wchar16{'u'});
    TableEntryUInfoStruct entry;
    ASSERT_TRUE(entry.SetComment_w(usual.c_str()));
    const std::uintptr_t comment = Place(entry.GetComment_w());
    ASSERT_TRUE(entry.SetComment_w(kShort.data()));
    EXPECT_EQ(Place(entry.GetComment_w()), comment);
}

}  // namespace
}  // namespace mox
