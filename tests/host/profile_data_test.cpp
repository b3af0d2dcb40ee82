// Bytes in keys: read from hexadecimal text and written as such.
#include <array>
#include <vector>

#include "tests/host/host_support.h"

namespace host {
namespace {

using Bytes = std::array<unsigned char, 6>;

// Six bytes of 0x55, and how many of them a read said to have stored.
struct DataRead {
    Bytes bytes{0x55, 0x55, 0x55, 0x55, 0x55, 0x55};
    std::uint32_t result = 0;
};

class ProfileData : public testing::Test {
  protected:
    ProfileData() : profile_(xmlProfileNew(nullptr, nullptr, 0, 0)) {}
    DataRead Read(std::uint32_t size) {
        DataRead read;
        read.result = xmlGetProfileData(profile_, "S"_w, "k"_w, read.bytes.data(), size);
        return read;
    }
    DataRead ReadOf(const wchar16* text, std::uint32_t size) {
        EXPECT_EQ(xmlWriteProfileString(profile_, "S"_w, "k"_w, text), 1U);
        return Read(size);
    }

    const Profile profile_;
};

TEST_F(ProfileData, TwoDigitsMakeAByteInEitherCase) {
    const DataRead read = ReadOf("01abCDEf"_w, 6);
    EXPECT_EQ(read.result, 4U);
    EXPECT_EQ(read.bytes, (Bytes{0x01, 0xAB, 0xCD, 0xEF, 0x55, 0x55}));
}

TEST_F(ProfileData, NeverMoreThanTheSizeIsStored) {
    const DataRead read = ReadOf("0102030405"_w, 3);
    EXPECT_EQ(read.result, 3U);
    EXPECT_EQ(read.bytes, (Bytes{1, 2, 3, 0x55, 0x55, 0x55}));
}

TEST_F(ProfileData, SizeZeroStoresNothing) {
    const DataRead read = ReadOf("0102"_w, 0);
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.bytes, DataRead{}.bytes);
}

TEST_F(ProfileData, OddLastDigitIsIgnored) {
    const DataRead read = ReadOf("01020"_w, 6);
    EXPECT_EQ(read.result, 2U);
    EXPECT_EQ(read.bytes, (Bytes{1, 2, 0x55, 0x55, 0x55, 0x55}));
    EXPECT_EQ(ReadOf("7"_w, 6).result, 0U);
}

TEST_F(ProfileData, FirstPairThatIsNoNumberEndsTheBytes) {
    for (const wchar16* text : {"01 0203"_w, "01g203"_w, "010x03"_w, "01-103"_w, "01+103"_w, "01:;03"_w,
                                "01@A03"_w, "01`a03"_w, "01/003"_w, "010G03"_w}) {
        const DataRead read = ReadOf(text, 6);
        EXPECT_EQ(read.result, 1U) << Shown(text);
        EXPECT_EQ(read.bytes, (Bytes{1, 0x55, 0x55, 0x55, 0x55, 0x55})) << Shown(text);
    }
}

TEST_F(ProfileData, CharactersBeyondAsciiAreNoDigits) {
    EXPECT_EQ(ReadOf(u"01\uFF11\uFF12"_w, 6).result, 1U);
    EXPECT_EQ(ReadOf(u"01\u0132\u0133"_w, 6).result, 1U);
    EXPECT_EQ(ReadOf(u"01\U0001F60003"_w, 6).result, 1U);
}

TEST_F(ProfileData, TextWithoutAnEightBitFormHasNoBytes) {
    const DataRead read = ReadOf(u"0102\xD800"_w, 6);
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.bytes, DataRead{}.bytes);
}

TEST_F(ProfileData, LoneSurrogateAnywhereInTheValueLeavesNoBytes) {
    for (const wchar16* text : {u"\xD800"
                                "0102"_w,
                                u"01\xDC00"
                                "02"_w,
                                u"0102 no digits \xD800"_w, u"01020304050607080910\xDC00"_w,
                                u"01\xDC00\xD800"
                                "02"_w}) {
        const DataRead read = ReadOf(text, 1);
        EXPECT_EQ(read.result, 0U) << Shown(text);
        EXPECT_EQ(read.bytes, DataRead{}.bytes) << Shown(text);
    }
    EXPECT_EQ(ReadOf(u"0102 no digits \U0001F600"_w, 1).result, 1U);
}

TEST_F(ProfileData, UnknownKeyHasNoBytes) {
    const DataRead read = Read(6);
    EXPECT_EQ(read.result, 0U);
    EXPECT_EQ(read.bytes, DataRead{}.bytes);
}

TEST_F(ProfileData, BytesAreWrittenAsUpperCaseDigits) {
    const unsigned char bytes[] = {0x01, 0xAB};
    EXPECT_EQ(xmlWriteProfileData(profile_, "S"_w, "k"_w, bytes, 2), 1U);
    EXPECT_EQ(ReadText(profile_, "S"_w, "k"_w), "01AB"_w);
    EXPECT_EQ(SaveBytes(profile_), SectionFile({
                                       "\t\t<Var name=\"k\" type=\"string\" array=\"\">",
                                       "\t\t\t<Value>01AB</Value>",
                                       "\t\t</Var>",
                                   }));
}

TEST_F(ProfileData, SizeZeroWritesAnEmptyValue) {
    EXPECT_EQ(xmlWriteProfileData(profile_, "S"_w, "k"_w, "not read", 0), 1U);
    EXPECT_EQ(Read(6).result, 0U);
    EXPECT_EQ(xmlGetProfileInt(profile_, "S"_w, "k"_w, 9), 9);
    EXPECT_EQ(SaveBytes(profile_), SectionFile({
                                       "\t\t<Var name=\"k\" type=\"string\" array=\"\">",
                                       "\t\t\t<Value/>",
                                       "\t\t</Var>",
                                   }));
}

TEST_F(ProfileData, EveryByteComesBack) {
    std::vector<unsigned char> bytes(256);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(255 - i);
    ASSERT_EQ(xmlWriteProfileData(profile_, "S"_w, "k"_w, bytes.data(), 256), 1U);
    const WideText text = ReadText(profile_, "S"_w, "k"_w);
    ASSERT_EQ(text.size(), 512U);
    EXPECT_EQ(text.substr(0, 8), "FFFEFDFC"_w);
    EXPECT_EQ(text.substr(504), "03020100"_w);
    std::vector<unsigned char> back(256, 0x55);
    EXPECT_EQ(xmlGetProfileData(profile_, "S"_w, "k"_w, back.data(), 256), 256U);
    EXPECT_EQ(back, bytes);
}

TEST_F(ProfileData, BytesReplaceAnExistingValue) {
    ASSERT_EQ(xmlWriteProfileString(profile_, "S"_w, "k"_w, "text"_w), 1U);
    const unsigned char bytes[] = {0xFF};
    EXPECT_EQ(xmlWriteProfileData(profile_, "S"_w, "k"_w, bytes, 1), 1U);
    EXPECT_EQ(ReadText(profile_, "S"_w, "k"_w), "FF"_w);
}

TEST_F(ProfileData, NullBytesRemoveTheKeyWhateverTheSize) {
    for (const std::uint32_t size : {0U, 8U}) {
        ASSERT_EQ(xmlWriteProfileString(profile_, "S"_w, "k"_w, "text"_w), 1U);
        EXPECT_EQ(xmlWriteProfileData(profile_, "S"_w, "k"_w, nullptr, size), 1U);
        EXPECT_EQ(xmlWriteProfileData(profile_, "S"_w, "k"_w, nullptr, size), 0U);
        EXPECT_EQ(ReadText(profile_, "S"_w, "k"_w), ""_w);
    }
}

}  // namespace
}  // namespace host
