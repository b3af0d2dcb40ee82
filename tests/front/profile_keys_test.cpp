#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "tests/front/front_support.h"

namespace {

using front_tests::ProfileWith;
using front_tests::SavedBytes;
using mox::Profile;

constexpr const char* kBadUtf8 = "a\xFFz";
const std::string kZeroInside("a\0b", 3);

TEST(FrontKeys, TextsAreReadInBothEncodings) {
    Profile profile;
    EXPECT_TRUE(
        profile.setString("Gr\xC3\xB6\xC3\x9F"
                          "e",
                          u"\u03B1", "20\xC2\xB5m"));
    EXPECT_EQ(profile.getString(u"Gr\u00F6\u00DFe", "\xCE\xB1"), "20\xC2\xB5m");
    EXPECT_EQ(profile.getString16(u"Gr\u00F6\u00DFe", "\xCE\xB1"), u"20\u00B5m");
    EXPECT_TRUE(profile.setString("S", "K", u"\U0001F600"));
    EXPECT_EQ(profile.getString("S", "K"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(profile.getString16("S", "K"), u"\U0001F600");
}

TEST(FrontKeys, UnpairedSurrogatesAreReadBack) {
    Profile profile;
    profile.setLossy(true);
    const std::u16string text{'a', 0xDC00, 0xD800};
    ASSERT_TRUE(profile.setString("S", "K", text));
    EXPECT_EQ(profile.getString16("S", "K"), text);
    EXPECT_EQ(profile.getString("S", "K"), "a\xED\xB0\x80\xED\xA0\x80");
    ASSERT_TRUE(profile.setString("S", "L", *profile.getString("S", "K")));
    EXPECT_EQ(profile.getString16("S", "L"), text);
}

TEST(FrontKeys, LongTextsAreReadWhole) {
    Profile profile;
    for (const std::size_t length : {1U, 2U, 255U, 256U, 257U, 65536U, 1000003U}) {
        std::string text(length, 'x');
        text.back() = 'z';
        ASSERT_TRUE(profile.setString("S", "K", text));
        EXPECT_EQ(profile.getString("S", "K"), text) << length;
        EXPECT_EQ(profile.getString16("S", "K"), std::u16string(text.begin(), text.end())) << length;
    }
}

TEST(FrontKeys, AMissingKeyIsNotAnEmptyValue) {
    Profile profile;
    ASSERT_TRUE(profile.setString("S", "Empty", ""));
    EXPECT_TRUE(profile.contains("S", "Empty"));
    EXPECT_EQ(profile.getString("S", "Empty"), "");
    EXPECT_EQ(profile.getString16("S", "Empty"), u"");
    EXPECT_EQ(profile.getData("S", "Empty"), std::vector<std::uint8_t>());
    EXPECT_EQ(profile.getInt("S", "Empty"), std::nullopt);
    for (const auto& [section, key] : {std::pair("S", "None"), std::pair("T", "Empty"), std::pair("S", "")}) {
        EXPECT_FALSE(profile.contains(section, key)) << section << key;
        EXPECT_EQ(profile.getString(section, key), std::nullopt) << section << key;
        EXPECT_EQ(profile.getString16(section, key), std::nullopt) << section << key;
        EXPECT_EQ(profile.getData(section, key), std::nullopt) << section << key;
        EXPECT_EQ(profile.getInt(section, key), std::nullopt) << section << key;
    }
}

TEST(FrontKeys, EmptyValuesComeFromThePresentationData) {
    const Profile profile = ProfileWith(
        "<Var name=\"K\" type=\"string\"><Value/><UI control=\"text\"><Value>7</Value></UI></Var>"
        "<Var name=\"NoType\"><Value>1</Value></Var>");
    EXPECT_EQ(profile.getString("S", "K"), "7");
    EXPECT_EQ(profile.getInt("S", "K"), 7);
    EXPECT_EQ(profile.getString("S", "NoType"), std::nullopt);
}

TEST(FrontKeys, NumbersAreReadBack) {
    Profile profile;
    for (const std::int32_t number :
         {0, 1, -1, 42, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        ASSERT_TRUE(profile.setInt("S", "K", number));
        EXPECT_EQ(profile.getInt("S", "K"), number);
        EXPECT_EQ(profile.getString("S", "K"), std::to_string(number));
    }
    ASSERT_TRUE(profile.setString("S", "K", "many"));
    EXPECT_EQ(profile.getInt("S", "K"), 0);
}

TEST(FrontKeys, BytesAreReadBack) {
    Profile profile;
    const std::vector<std::uint8_t> bytes{0, 1, 0x7F, 0x80, 0xFF, 0xAB};
    ASSERT_TRUE(profile.setData("S", "K", bytes));
    EXPECT_EQ(profile.getData("S", "K"), bytes);
    EXPECT_EQ(profile.getString("S", "K"), "00017F80FFAB");
    ASSERT_TRUE(profile.setData("S", "K", "ab", 2));
    EXPECT_EQ(profile.getString("S", "K"), "6162");
    ASSERT_TRUE(profile.setString("S", "K", "01fG02"));
    EXPECT_EQ(profile.getData("S", "K"), std::vector<std::uint8_t>{1});
}

TEST(FrontKeys, NoBytesWriteAnEmptyValue) {
    Profile profile;
    ASSERT_TRUE(profile.setString("S", "K", "old"));
    EXPECT_TRUE(profile.setData("S", "K", std::vector<std::uint8_t>()));
    EXPECT_EQ(profile.getString("S", "K"), "");
    EXPECT_TRUE(profile.setData("S", "L", nullptr, 0));
    EXPECT_EQ(profile.getString("S", "L"), "");
}

TEST(FrontKeys, InvalidArgumentsAreRefusedAndChangeNothing) {
    Profile profile;
    ASSERT_TRUE(profile.setString("S", "K", "1"));
    const std::string before = SavedBytes(profile);
    const char* const null = nullptr;
    EXPECT_FALSE(profile.setString("S", "K", kBadUtf8));
    EXPECT_FALSE(profile.setString("S", "K", kZeroInside));
    EXPECT_FALSE(profile.setString("S", "K", null));
    EXPECT_FALSE(profile.setString("S", "", "x"));
    EXPECT_FALSE(profile.setString("S", kZeroInside, "x"));
    EXPECT_FALSE(profile.setString("S", null, "x"));
    EXPECT_FALSE(profile.setString(kBadUtf8, "K", "x"));
    EXPECT_FALSE(profile.setInt("S", "", 1));
    EXPECT_FALSE(profile.setInt("S", null, 1));
    EXPECT_FALSE(profile.setData("S", "", "x", 1));
    EXPECT_FALSE(profile.setData("S", "K", "x", std::size_t{1} << 32)) << "more than the export can take";
    EXPECT_FALSE(profile.remove(kBadUtf8, "K"));
    EXPECT_FALSE(profile.remove("S", null));
    EXPECT_FALSE(profile.remove("S", kBadUtf8));
    EXPECT_FALSE(profile.remove("S", ""));
    EXPECT_FALSE(profile.removeSection(null));
    EXPECT_FALSE(profile.removeSection(kBadUtf8));
    EXPECT_FALSE(profile.makeSection(kBadUtf8).has_value());
    EXPECT_FALSE(profile.findSection(kBadUtf8).has_value());
    EXPECT_EQ(profile.getString("S", null), std::nullopt);
    EXPECT_EQ(profile.getString("S", std::string("K\0", 2)), std::nullopt);
    EXPECT_EQ(SavedBytes(profile), before);
}

TEST(FrontKeys, RemovedKeysAndSectionsAreGone) {
    Profile profile;
    ASSERT_TRUE(profile.setInt("S", "K", 1));
    ASSERT_TRUE(profile.setInt("S", "L", 2));
    EXPECT_TRUE(profile.remove("S", "K"));
    EXPECT_FALSE(profile.remove("S", "K"));
    EXPECT_FALSE(profile.contains("S", "K"));
    EXPECT_TRUE(profile.contains("S", "L"));
    EXPECT_TRUE(profile.removeSection("S"));
    EXPECT_FALSE(profile.removeSection("S"));
    EXPECT_FALSE(profile.contains("S", "L"));
}

TEST(FrontKeys, AMovedProfileKeepsItsDocument) {
    Profile first;
    ASSERT_TRUE(first.setInt("S", "K", 1));
    moxSettings* const handle = first.handle();
    Profile second = std::move(first);
    EXPECT_EQ(second.handle(), handle);
    EXPECT_EQ(second.getInt("S", "K"), 1);
    Profile third;
    ASSERT_TRUE(third.setInt("S", "K", 3));
    third = std::move(second);
    EXPECT_TRUE(third);
    EXPECT_EQ(third.getInt("S", "K"), 1);
}

TEST(FrontKeys, AnEmptyProfileFindsAndWritesNothing) {
    Profile profile;
    const Profile other = std::move(profile);
    EXPECT_FALSE(profile);  // NOLINT(bugprone-use-after-move): its state after the move is tested
    EXPECT_EQ(profile.handle(), nullptr);
    EXPECT_FALSE(profile.contains("S", "K"));
    EXPECT_EQ(profile.getString("S", "K"), std::nullopt);
    EXPECT_EQ(profile.getInt("S", "K"), std::nullopt);
    EXPECT_EQ(profile.getData("S", "K"), std::nullopt);
    EXPECT_FALSE(profile.setString("S", "K", "x"));
    EXPECT_FALSE(profile.setInt("S", "K", 1));
    EXPECT_FALSE(profile.setData("S", "K", "x", 1));
    EXPECT_FALSE(profile.remove("S", "K"));
    EXPECT_FALSE(profile.removeSection("S"));
    EXPECT_FALSE(profile.findSection("S").has_value());
    EXPECT_FALSE(profile.makeSection("S").has_value());
    EXPECT_TRUE(profile.sections().empty());
    const front_tests::ScratchFolder folder;
    EXPECT_FALSE(profile.saveReplacing(folder.Of("x.xml").u16string()));
    EXPECT_FALSE(profile.saveReplacing(folder.Of("x.xml").u16string()));
    EXPECT_TRUE(folder.Names().empty());
}

// A missing key is recognised by a default text, which is a value like any other.
TEST(FrontKeys, NoTextStandsForAMissingKey) {
    Profile profile;
    profile.setLossy(true);
    for (const std::u16string& value :
         {std::u16string(u"?"), std::u16string(u"??"), std::u16string{0xFFFF}, std::u16string{0xFFFF, 0xFFFF},
          std::u16string{0xFFFF, 'x'}, std::u16string(255, 0xFFFF)}) {
        ASSERT_TRUE(profile.setString("S", "K", value));
        EXPECT_EQ(profile.getString16("S", "K"), value) << value.size();
        EXPECT_EQ(profile.getString("S", "K"), mox::toUtf8(value)) << value.size();
        EXPECT_EQ(profile.getInt("S", "K"), 0) << value.size();
        EXPECT_EQ(profile.getData("S", "K"), std::vector<std::uint8_t>()) << value.size();
        EXPECT_TRUE(profile.contains("S", "K")) << value.size();
    }
    EXPECT_FALSE(profile.contains("S", "L"));
}

TEST(FrontKeys, ValuesAroundTheSizeOfTheBufferAreReadWhole) {
    Profile profile;
    for (const std::size_t length : {1U, 2U, 253U, 254U, 255U, 256U, 257U, 512U}) {
        std::u16string text(length, u'\u4E2D');
        text.front() = u'a';
        text.back() = u'z';
        ASSERT_TRUE(profile.setString("S", "K", text));
        EXPECT_EQ(profile.getString16("S", "K"), text) << length;
        EXPECT_EQ(profile.getString("S", "K"), mox::toUtf8(text)) << length;
    }
}

TEST(FrontKeys, ASurrogatePairAtTheEndOfTheBufferIsReadBack) {
    Profile profile;
    for (std::size_t before = 252; before <= 256; ++before) {
        const std::u16string text = std::u16string(before, u'x') + u"\U0001F600";
        ASSERT_TRUE(profile.setString("S", "K", text));
        EXPECT_EQ(profile.getString16("S", "K"), text) << before;
        EXPECT_EQ(profile.getString("S", "K"), std::string(before, 'x') + "\xF0\x9F\x98\x80") << before;
    }
}

TEST(FrontKeys, BytesAroundTheSizeOfTheBufferAreReadWhole) {
    Profile profile;
    for (const std::size_t size : {1U, 127U, 128U, 254U, 255U, 256U, 257U, 100000U}) {
        std::vector<std::uint8_t> bytes(size, 0xA5);
        bytes.back() = 0x5A;
        ASSERT_TRUE(profile.setData("S", "K", bytes));
        EXPECT_EQ(profile.getData("S", "K"), bytes) << size;
        ASSERT_TRUE(profile.setString("S", "K", *profile.getString("S", "K") + "-00"));
        EXPECT_EQ(profile.getData("S", "K"), bytes) << size << " and digits that end before the value does";
    }
}

TEST(FrontKeys, AValueWithoutHexadecimalDigitsGivesNoBytes) {
    Profile profile;
    profile.setLossy(true);
    const std::vector<std::uint8_t> none;
    for (const std::u16string& value : {std::u16string(u"x"), std::u16string(u"1"), std::u16string(u"0G"),
                                        std::u16string{'0', '1', 0xD800}}) {
        ASSERT_TRUE(profile.setString("S", "K", value));
        EXPECT_EQ(profile.getData("S", "K"), none) << mox::toUtf8(value);
    }
}

// A missing key is recognised by a default number, which is a value like any other.
TEST(FrontKeys, NoNumberStandsForAMissingKey) {
    Profile profile;
    for (const std::int32_t number : {-2147480809, -2147480810, -2147480808}) {
        ASSERT_TRUE(profile.setInt("S", "K", number));
        EXPECT_EQ(profile.getInt("S", "K"), number);
    }
    ASSERT_TRUE(profile.setString("S", "K", ""));
    EXPECT_EQ(profile.getInt("S", "K"), std::nullopt);
}

}  // namespace
