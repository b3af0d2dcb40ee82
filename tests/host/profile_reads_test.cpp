// Reading keys as numbers, as text and as bytes.
#include <array>
#include <climits>

#include "tests/host/host_support.h"

namespace host {
namespace {

using Units = std::array<wchar16, 7>;

// One buffer of seven 'x', and what a read said about it.
struct StringRead {
    Units buffer{'x', 'x', 'x', 'x', 'x', 'x', 'x'};
    std::uint32_t result = 0;
};

StringRead ReadString(moxSettings* profile, const wchar16* key, std::uint32_t length,
                      const wchar16* defaultText) {
    StringRead read;
    read.result = xmlGetProfileString(profile, "S"_w, key, read.buffer.data(), length, defaultText);
    return read;
}

// A profile whose keys are written, and so hold exactly these texts.
class Written : public testing::Test {
  protected:
    Written() : profile_(xmlProfileNew(nullptr, nullptr, 0, 0)) {}
    void Put(const wchar16* key, const wchar16* text) {
        ASSERT_EQ(xmlWriteProfileString(profile_, "S"_w, key, text), 1U);
    }
    std::int32_t IntOf(const wchar16* text) {
        Put("k"_w, text);
        return xmlGetProfileInt(profile_, "S"_w, "k"_w, 1234);
    }

    const Profile profile_;
};

using ProfileInts = Written;
using ProfileStrings = Written;

TEST_F(ProfileInts, LeadingDigitsCount) {
    EXPECT_EQ(IntOf("42abc"_w), 42);
    EXPECT_EQ(IntOf("42"_w), 42);
    EXPECT_EQ(IntOf("0042"_w), 42);
    EXPECT_EQ(IntOf("1.9"_w), 1);
    EXPECT_EQ(IntOf("3 4"_w), 3);
}

TEST_F(ProfileInts, LeadingBlanksAndOneSignAreAccepted) {
    EXPECT_EQ(IntOf(" -7"_w), -7);
    EXPECT_EQ(IntOf(" \t\n\v\f\r+7"_w), 7);
    EXPECT_EQ(IntOf("- 7"_w), 0);
    EXPECT_EQ(IntOf("--7"_w), 0);
    EXPECT_EQ(IntOf("+-7"_w), 0);
}

TEST_F(ProfileInts, HexadecimalIsNotRead) {
    EXPECT_EQ(IntOf("0x10"_w), 0);
}

TEST_F(ProfileInts, TextWithoutDigitsIsZeroAndNotTheDefault) {
    EXPECT_EQ(IntOf("abc"_w), 0);
    EXPECT_EQ(IntOf(" "_w), 0);
    EXPECT_EQ(IntOf("-"_w), 0);
}

TEST_F(ProfileInts, NumbersBeyondThirtyTwoBitsSaturate) {
    EXPECT_EQ(IntOf("2147483647"_w), INT_MAX);
    EXPECT_EQ(IntOf("2147483648"_w), INT_MAX);
    EXPECT_EQ(IntOf("4294967295"_w), INT_MAX);
    EXPECT_EQ(IntOf("18446744073709551617"_w), INT_MAX);
    EXPECT_EQ(IntOf("-2147483648"_w), INT_MIN);
    EXPECT_EQ(IntOf("-2147483649"_w), INT_MIN);
    EXPECT_EQ(IntOf("-99999999999999999999999"_w), INT_MIN);
}

TEST_F(ProfileInts, EmptyTextGivesTheDefault) {
    EXPECT_EQ(IntOf(""_w), 1234);
}

TEST_F(ProfileInts, UnknownKeyOrSectionGivesTheDefault) {
    Put("k"_w, "1"_w);
    EXPECT_EQ(xmlGetProfileInt(profile_, "S"_w, "K"_w, -5), -5);
    EXPECT_EQ(xmlGetProfileInt(profile_, "s"_w, "k"_w, INT_MIN), INT_MIN);
}

TEST_F(ProfileStrings, ShortBufferTakesFourCharactersAndNul) {
    Put("k"_w, "ninechars"_w);
    const StringRead read = ReadString(profile_, "k"_w, 5, nullptr);
    EXPECT_EQ(read.result, 4U);
    EXPECT_EQ(read.buffer, (Units{'n', 'i', 'n', 'e', 0, 'x', 'x'}));
}

TEST_F(ProfileStrings, WithoutBufferTheFullLengthIsGiven) {
    Put("k"_w, "ninechars"_w);
    EXPECT_EQ(xmlGetProfileString(profile_, "S"_w, "k"_w, nullptr, 0, nullptr), 9U);
    EXPECT_EQ(xmlGetProfileString(profile_, "S"_w, "k"_w, nullptr, 3, "default"_w), 9U);
}

TEST_F(ProfileStrings, TextIsPaddedWithZeroUpToTheLength) {
    Put("k"_w, "abc"_w);
    const StringRead read = ReadString(profile_, "k"_w, 6, "default"_w);
    EXPECT_EQ(read.result, 3U);
    EXPECT_EQ(read.buffer, (Units{'a', 'b', 'c', 0, 0, 0, 'x'}));
}

TEST_F(ProfileStrings, TextThatJustFitsKeepsItsLastCharacter) {
    Put("k"_w, "abc"_w);
    EXPECT_EQ(ReadString(profile_, "k"_w, 4, nullptr).buffer, (Units{'a', 'b', 'c', 0, 'x', 'x', 'x'}));
    const StringRead cut = ReadString(profile_, "k"_w, 3, nullptr);
    EXPECT_EQ(cut.result, 2U);
    EXPECT_EQ(cut.buffer, (Units{'a', 'b', 0, 'x', 'x', 'x', 'x'}));
}

TEST_F(ProfileStrings, BufferOfOneTakesOnlyTheZero) {
    Put("k"_w, "abc"_w);
    const StringRead read = ReadString(profile_, "k"_w, 1, "default"_w);
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.buffer, (Units{0, 'x', 'x', 'x', 'x', 'x', 'x'}));
}

TEST_F(ProfileStrings, BufferOfNothingIsNotTouched) {
    Put("k"_w, "abc"_w);
    Put("empty"_w, ""_w);
    for (const wchar16* key : {"k"_w, "empty"_w, "unknown"_w}) {
        for (const wchar16* defaultText : {"default"_w, ""_w, static_cast<const wchar16*>(nullptr)}) {
            const StringRead read = ReadString(profile_, key, 0, defaultText);
            EXPECT_EQ(read.result, 0U);
            EXPECT_EQ(read.buffer, (StringRead{}.buffer));
        }
    }
}

TEST_F(ProfileStrings, UnknownKeyGivesTheDefault) {
    Put("k"_w, "abc"_w);
    const StringRead read = ReadString(profile_, "unknown"_w, 6, "def"_w);
    EXPECT_EQ(read.result, 3U);
    EXPECT_EQ(read.buffer, (Units{'d', 'e', 'f', 0, 0, 0, 'x'}));
}

TEST_F(ProfileStrings, UnknownSectionGivesTheDefaultCutToTheLength) {
    const StringRead read = ReadString(profile_, "k"_w, 4, "default"_w);
    EXPECT_EQ(read.result, 3U);
    EXPECT_EQ(read.buffer, (Units{'d', 'e', 'f', 0, 'x', 'x', 'x'}));
}

TEST_F(ProfileStrings, UnknownKeyWithoutDefaultLeavesTheBuffer) {
    const StringRead read = ReadString(profile_, "unknown"_w, 6, nullptr);
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.buffer, (StringRead{}.buffer));
}

TEST_F(ProfileStrings, UnknownKeyWithoutBufferHasNoLength) {
    EXPECT_EQ(xmlGetProfileString(profile_, "S"_w, "unknown"_w, nullptr, 6, "default"_w), 0U);
}

TEST_F(ProfileStrings, EmptyTextLeavesTheDefaultAndGivesZero) {
    Put("k"_w, ""_w);
    const StringRead read = ReadString(profile_, "k"_w, 6, "def"_w);
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.buffer, (Units{'d', 'e', 'f', 0, 0, 0, 'x'}));
}

TEST_F(ProfileStrings, EmptyTextWithoutDefaultLeavesTheBuffer) {
    Put("k"_w, ""_w);
    const StringRead read = ReadString(profile_, "k"_w, 6, nullptr);
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.buffer, (StringRead{}.buffer));
}

TEST_F(ProfileStrings, NamesAreMatchedExactly) {
    Put("Key"_w, "abc"_w);
    for (const wchar16* key : {"key"_w, "KEY"_w, "Ke"_w, "Keys"_w, " Key"_w}) {
        EXPECT_EQ(xmlGetProfileString(profile_, "S"_w, key, nullptr, 0, nullptr), 0U) << Shown(key);
    }
    EXPECT_EQ(ReadText(profile_, "S"_w, "Key"_w), "abc"_w);
}

TEST(ProfileReads, FirstOfTwoEntriesOfOneNameIsRead) {
    const Profile profile = LoadEntries(
        "<Var name=\"k\" type=\"long\"><Value>1</Value></Var>"
        "<Var name=\"k\" type=\"long\"><Value>2</Value></Var>");
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 1);
}

TEST(ProfileReads, FirstOfTwoSectionsOfOneNameIsRead) {
    const Profile profile = LoadSections(
        "<Table name=\"S\"/><Table name=\"S\"><Var name=\"k\" type=\"long\"><Value>2</Value></Var></Table>");
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), -1);
}

TEST(ProfileReads, EmptyKeyReadsTheFirstNamedEntry) {
    const Profile profile = LoadEntries(
        "<Var type=\"long\"><Value>1</Value></Var><!--c-->"
        "<Var name=\"any\" type=\"long\"><Value>2</Value></Var>"
        "<Var name=\"\" type=\"long\"><Value>3</Value></Var>");
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, ""_w, -1), 2);
    EXPECT_EQ(ReadText(profile, "S"_w, ""_w), "2"_w);
}

TEST(ProfileReads, EntriesMayHaveAnyElementName) {
    const Profile profile = LoadEntries("<Other name=\"k\" type=\"long\"><Value>5</Value></Other>");
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 5);
}

TEST(ProfileReads, NestedEntriesAreNotFound) {
    const Profile profile =
        LoadEntries("<Group><Var name=\"k\" type=\"long\"><Value>5</Value></Var></Group>");
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), -1);
}

TEST(ProfileReads, UiValueStandsInForAnEmptyValue) {
    const Profile profile = LoadEntries(
        "<Var name=\"none\" type=\"long\"><UI><Value>42</Value></UI></Var>"
        "<Var name=\"empty\" type=\"long\"><Value/><UI><Value>42</Value></UI></Var>"
        "<Var name=\"own\" type=\"long\"><UI><Value>42</Value></UI><Value>7</Value></Var>");
    for (const wchar16* key : {"none"_w, "empty"_w}) {
        EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, key, -1), 42);
        EXPECT_EQ(ReadText(profile, "S"_w, key), "42"_w);
        unsigned char byte = 0;
        EXPECT_EQ(xmlGetProfileData(profile, "S"_w, key, &byte, 1), 1U);
        EXPECT_EQ(byte, 0x42);
    }
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "own"_w, -1), 7);
}

TEST(ProfileReads, EmptyValueAndEmptyUiValueGiveTheDefaults) {
    const Profile profile =
        LoadEntries("<Var name=\"k\" type=\"long\"><Value/><UI control=\"num\"><Value/></UI></Var>");
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, 9), 9);
    const StringRead read = ReadString(profile, "k"_w, 6, "def"_w);
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.buffer, (Units{'d', 'e', 'f', 0, 0, 0, 'x'}));
    unsigned char byte = 0x55;
    EXPECT_EQ(xmlGetProfileData(profile, "S"_w, "k"_w, &byte, 1), 0U);
    EXPECT_EQ(byte, 0x55);
}

TEST(ProfileReads, EntryWithoutKnownTypeCountsAsMissing) {
    const Profile profile = LoadEntries(
        "<Var name=\"none\"><Value>1</Value></Var>"
        "<Var name=\"float\" type=\"float\"><Value>1</Value></Var>"
        "<Var name=\"float\" type=\"long\"><Value>2</Value></Var>");
    for (const wchar16* key : {"none"_w, "float"_w}) {
        EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, key, 9), 9);
        const StringRead read = ReadString(profile, key, 6, "def"_w);
        EXPECT_EQ(read.result, 3U);
        EXPECT_EQ(read.buffer, (Units{'d', 'e', 'f', 0, 0, 0, 'x'}));
        unsigned char byte = 0x55;
        EXPECT_EQ(xmlGetProfileData(profile, "S"_w, key, &byte, 1), 0U);
        EXPECT_EQ(byte, 0x55);
    }
}

}  // namespace
}  // namespace host
