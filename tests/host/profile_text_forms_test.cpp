// Narrow and wide text: how units become bytes and bytes units.
#include "tests/host/host_support.h"

namespace host {
namespace {

// A document without a declaration whose key k in section S holds this text, in 8-bit form.
std::string DocumentWith(std::string_view value) {
    std::string text(kRootStart);
    text.append("<Table name=\"S\"><Var name=\"k\" type=\"string\"><Value>").append(value);
    return text.append("</Value></Var></Table></Settings>");
}

// The same with wide text, as a file without its closing zero unit.
std::string WideDocumentWith(const WideText& value) {
    const std::string around = DocumentWith("|");
    std::string bytes;
    for (const char unit : around) {
        if (unit != '|') {
            bytes.append(1, unit).append(1, '\0');
            continue;
        }
        for (const wchar16 inner : value) {
            bytes.append(1, static_cast<char>(inner & 0xFF)).append(1, static_cast<char>(inner >> 8));
        }
    }
    return bytes;
}

WideText ValueOf(moxSettings* profile) {
    return ReadText(profile, "S"_w, "k"_w);
}

TEST(NarrowText, BytesBeyondAsciiAreWidenedWithTheirSign) {
    EXPECT_EQ(ValueOf(LoadText(DocumentWith("a\x7F\x80\xE9\xFFz"))), u"a\x007F\xFF80\xFFE9\xFFFFz"_w);
    EXPECT_EQ(ValueOf(LoadBytes(DocumentWith("a\x7F\x80\xE9\xFFz"), 0)), u"a\x007F\xFF80\xFFE9\xFFFFz"_w);
}

TEST(NarrowText, ControlBytesAreKept) {
    EXPECT_EQ(ValueOf(LoadText(DocumentWith("\x01\x08\x1F\x7F"))), u"\x0001\x0008\x001F\x007F"_w);
}

TEST(NarrowText, UnitsAreCutToTheirLowByte) {
    const Profile profile = LoadText(DocumentWith("x"));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "new"_w, u"\u0101\u20ac\u00e9\uff21"_w), 1U);
    EXPECT_NE(SaveBytes(profile).find(std::string("<Value>\x01\xAC\xE9\x21</Value>")), std::string::npos);
}

TEST(NarrowText, UnitWithoutLowByteEndsTheFileForTheReader) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, u"a\u0100b"_w), 1U);
    const std::string bytes = SaveBytes(profile);
    EXPECT_EQ(bytes, SectionFile({
                         "\t\t<Var name=\"k\" type=\"string\" array=\"\">",
                         std::string_view("\t\t\t<Value>a\0b</Value>", 21),
                         "\t\t</Var>",
                     }));
    EXPECT_EQ(LoadBytes(bytes, 0), nullptr);
    EXPECT_EQ(ValueOf(LoadBytes(SaveBytes(profile, 0, 1), 1)), u"a\u0100b"_w);
}

TEST(NarrowText, LowByteOfAUnitIsNotEscaped) {
    // U+013C ends in the byte of "<": the file is not well-formed any more.
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, u"\u013C"_w), 1U);
    const std::string bytes = SaveBytes(profile);
    EXPECT_NE(bytes.find("<Value><</Value>"), std::string::npos);
    EXPECT_EQ(LoadBytes(bytes, 0), nullptr);
}

TEST(NarrowText, FileOfManyBlocksIsReadWhole) {
    for (const std::size_t size : {3900U, 4096U, 8192U, 100000U}) {
        std::string value(size, 'v');
        value.front() = 'a';
        value.back() = '\xE9';
        WideText expected(size, 'v');
        expected.front() = 'a';
        expected.back() = 0xFFE9;
        EXPECT_EQ(ValueOf(LoadBytes(DocumentWith(value), 0)), expected);
    }
}

TEST(WideText, UnitsComeBackAsTheyAre) {
    const WideText value(u"\u00e4\u0101\u4e2d\U0001F600\xDC00\xD800\xFFFF\xFFFE\x0001"_w);
    const Profile profile = LoadBytes(WideDocumentWith(value), 1);
    EXPECT_EQ(ValueOf(profile), value);
    const std::string bytes = SaveBytes(profile, 0, 1);
    EXPECT_EQ(ValueOf(LoadBytes(bytes, 1)), value);
    EXPECT_EQ(SaveBytes(LoadBytes(bytes, 1), 0, 1), bytes);
}

TEST(WideText, ByteOrderMarkFails) {
    EXPECT_EQ(ValueOf(LoadBytes(WideDocumentWith("v"_w), 1)), "v"_w);
    EXPECT_EQ(LoadBytes("\xFF\xFE" + WideDocumentWith("v"_w), 1), nullptr);
}

TEST(WideText, OtherByteOrderFails) {
    std::string bytes = WideDocumentWith("v"_w);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    EXPECT_EQ(LoadBytes(bytes, 1), nullptr);
}

TEST(WideText, OddLastByteIsDropped) {
    EXPECT_EQ(ValueOf(LoadBytes(WideDocumentWith("v"_w) + "<", 1)), "v"_w);
    EXPECT_EQ(LoadBytes(std::string("<\0a\0>\0<\0/\0a\0>", 13), 1), nullptr);
    const Profile profile = LoadBytes("<", 1);
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(SaveBytes(profile), NarrowFile(Lines({kEmptyRoot})));
}

TEST(WideText, FileOfManyBlocksIsReadWhole) {
    for (const std::size_t size : {1900U, 2048U, 4096U, 100000U}) {
        WideText value(size, 0x4E2D);
        value.front() = 'a';
        value.back() = 0xE9;
        EXPECT_EQ(ValueOf(LoadBytes(WideDocumentWith(value), 1)), value);
    }
}

TEST(WideText, NamesMayHoldLettersOfAnyScript) {
    const std::string text = WideDocumentWith("v"_w);
    std::string bytes("<\0\xB1\x03/\0>\0\n\0", 10);
    const Profile profile = LoadBytes(bytes + text, 1);
    EXPECT_EQ(ValueOf(profile), "v"_w);
    EXPECT_EQ(SaveBytes(profile, 0, 1).substr(0, 10), bytes);
}

TEST(WideText, NamesMayNotHoldSignsOfAnyScript) {
    for (const std::string_view unit : {std::string_view("\xD7\x00", 2), std::string_view("\x00\x22", 2),
                                        std::string_view("\x3D\xD8", 2), std::string_view("\x00\x30", 2)}) {
        EXPECT_EQ(LoadBytes(std::string("<\0", 2).append(unit).append("/\0>\0", 4), 1), nullptr);
    }
}

TEST(WideText, NamesOfSectionsAndKeysAreComparedUnitByUnit) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileInt(profile, u"\u00e4"_w, u"\xD800"_w, 1), 1U);
    ASSERT_EQ(xmlWriteProfileInt(profile, u"a\u0308"_w, u"\xD801"_w, 2), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, u"\u00e4"_w, u"\xD800"_w, -1), 1);
    EXPECT_EQ(xmlGetProfileInt(profile, u"a\u0308"_w, u"\xD801"_w, -1), 2);
    EXPECT_EQ(xmlGetProfileInt(profile, u"\u00c4"_w, u"\xD800"_w, -1), -1);
    EXPECT_EQ(xmlGetProfileInt(profile, u"\u00e4"_w, u"\xD801"_w, -1), -1);
}

}  // namespace
}  // namespace host
