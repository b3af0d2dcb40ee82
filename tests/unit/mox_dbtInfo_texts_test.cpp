// The texts of the entry records, in both forms.
#include "tests/unit/mox_dbtInfo_support.h"

namespace mox::test {
namespace {

constexpr WideView kOther = "other"_w;

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

TEST(EntryValue, CharactersBeyondAsciiAreFoundAtEveryPlace) {
    for (std::size_t length = 2; length <= 40; ++length) {
        for (std::size_t at = 0; at + 2 <= length; ++at) {
            std::string text(length, 'a');
            text.replace(at, 2, "\xC3\xA9");
            WideString expected(length - 1, wchar16{'a'});
            expected[at] = 0xE9;
            Value record;
            ASSERT_TRUE(record.SetVal(text.c_str()));
            ASSERT_EQ(record.GetVal(), text);
            ASSERT_EQ(WideView(record.GetVal_w()), expected) << at << " of " << length;

            text[at + 1] = 'a';
            ASSERT_FALSE(record.SetVal(text.c_str())) << at << " of " << length;
        }
    }
}

}  // namespace
}  // namespace mox::test
