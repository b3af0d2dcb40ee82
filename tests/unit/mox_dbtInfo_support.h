// Entry records with everything set, and with nothing.
#ifndef MOX_XMLAPI_TESTS_UNIT_MOX_DBTINFO_SUPPORT_H
#define MOX_XMLAPI_TESTS_UNIT_MOX_DBTINFO_SUPPORT_H

#include <gtest/gtest.h>

#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox::test {

using Value = TableEntryValueInfoStruct;
using Ui = TableEntryUInfoStruct;

inline constexpr WideView kAbc = "abc"_w;

inline void FillBase(TableEntryBaseInfoStruct& record) {
    record.type = 8;
    record.writeMask = 3;
    for (wchar16& unit : record.name)
        unit = wchar16{'n'};
    record.id = 77;
}

inline void ExpectBaseFilled(const TableEntryBaseInfoStruct& record) {
    EXPECT_EQ(record.type, 8);
    EXPECT_EQ(record.writeMask, 3);
    EXPECT_EQ(WideView(record.name, 260), WideString(260, wchar16{'n'}));
    EXPECT_EQ(record.id, 77U);
}

inline void ExpectBaseZero(const TableEntryBaseInfoStruct& record) {
    EXPECT_EQ(record.type, 0);
    EXPECT_EQ(record.writeMask, 0);
    EXPECT_EQ(WideView(record.name, 260), WideString(260, wchar16{0}));
    EXPECT_EQ(record.id, 0U);
}

inline void FillUi(Ui& record) {
    FillBase(record);
    record.control = 12;
    record.prov_index = 0x12345678;
    record.prov_owner = 4;
    ASSERT_TRUE(record.SetVal("value"));
    ASSERT_TRUE(record.SetComment_w("comment"_w.data()));
    ASSERT_TRUE(record.SetUserName_w("user"_w.data()));
}

inline void ExpectUiFilled(const Ui& record) {
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

inline void ExpectNoTexts(const Ui& record) {
    EXPECT_EQ(record.GetVal(), nullptr);
    EXPECT_EQ(record.GetVal_w(), nullptr);
    EXPECT_EQ(record.GetComment_w(), nullptr);
    EXPECT_EQ(record.GetUserName_w(), nullptr);
}

inline void ExpectUiZero(const Ui& record) {
    ExpectBaseZero(record);
    EXPECT_EQ(std::uint16_t{record.control}, 0);
    EXPECT_EQ(std::uint32_t{record.prov_index}, 0U);
    EXPECT_EQ(record.prov_owner, 0);
    ExpectNoTexts(record);
}

}  // namespace mox::test

#endif
