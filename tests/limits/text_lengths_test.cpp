// Buffers that are just long enough for a text, and those that are one unit too short.
#include <vector>

#include "tests/host/table_support.h"

namespace limits {
namespace {

using host::operator""_w;

constexpr wchar16 kUntouched = 0x2A2A;

// A name whose units all differ from their neighbours.
host::WideText NameOf(std::size_t length) {
    host::WideText name;
    for (std::size_t i = 0; i < length; ++i)
        name += static_cast<wchar16>('a' + i % 26);
    return name;
}

// What a buffer of `length` units holds of the text: its beginning, then zeros.
host::WideText CutAndFilled(host::WideText text, std::size_t length) {
    text.resize(std::min(text.size(), length - 1));
    text.resize(length);
    return text;
}

// The units that the first step of an enumeration leaves in a buffer, whose length is given as `length`.
host::WideText EnumeratedName(const host::WideText& section, std::uint32_t length) {
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    host::Section(xmlWriteProfileSection(profile, section.c_str(), 0, 0, 0, nullptr));
    host::WideText buffer(length + 2, kUntouched);
    std::uintptr_t position = 0;
    EXPECT_TRUE(host::Section(xmlEnumProfileSections(profile, &position, buffer.data(), length, nullptr)));
    EXPECT_FALSE(host::Section(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr)));
    EXPECT_EQ(buffer.substr(length), host::WideText(2, kUntouched)) << "written past the end of the buffer";
    buffer.resize(length);
    return buffer;
}

TEST(SectionNameBuffer, OfNothingIsNotTouched) {
    EXPECT_EQ(EnumeratedName(NameOf(5), 0), ""_w);
}

TEST(SectionNameBuffer, OfOneTakesTheZeroAlone) {
    EXPECT_EQ(EnumeratedName(NameOf(5), 1), host::WideText(1, 0));
}

TEST(SectionNameBuffer, TakesANameThatLeavesRoomForTheZero) {
    for (const std::uint32_t length : {2U, 259U, 260U, 261U}) {
        const host::WideText name = NameOf(length - 1);
        EXPECT_EQ(EnumeratedName(name, length), CutAndFilled(name, length)) << length;
        EXPECT_EQ(EnumeratedName(name, length).find(wchar16{0}), length - 1) << length;
    }
}

TEST(SectionNameBuffer, CutsANameThatIsOneUnitTooLong) {
    for (const std::uint32_t length : {2U, 259U, 260U, 261U}) {
        const host::WideText name = NameOf(length);
        EXPECT_EQ(EnumeratedName(name, length), CutAndFilled(name, length)) << length;
        EXPECT_EQ(EnumeratedName(name, length).find(wchar16{0}), length - 1) << length;
    }
}

TEST(SectionNameBuffer, IsFilledAfterANameThatIsOneUnitShorter) {
    for (const std::uint32_t length : {3U, 259U, 260U, 261U}) {
        const host::WideText name = NameOf(length - 2);
        EXPECT_EQ(EnumeratedName(name, length), name + host::WideText(2, 0)) << length;
    }
}

// The name in a record that was filled with the one entry of a table, which has this name.
host::WideText RecordName(const host::WideText& name) {
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, name.c_str(), 1), 1U);
    const host::Table section(xmlGetProfileSection(profile, "S"_w, nullptr));
    TableEntryValueInfoStruct record;
    std::uint64_t position = 0;
    EXPECT_TRUE(xmlTableEntryGet(section, &position, &record, nullptr));
    EXPECT_EQ(record.name[259], 0);
    return record.name;
}

TEST(RecordName, Takes259Units) {
    EXPECT_EQ(RecordName(NameOf(258)), NameOf(258));
    EXPECT_EQ(RecordName(NameOf(259)), NameOf(259));
}

TEST(RecordName, IsCutFrom260UnitsOn) {
    for (const std::size_t length : {260U, 261U, 5000U})
        EXPECT_EQ(RecordName(NameOf(length)), NameOf(259)) << length;
}

TEST(RecordName, Of259UnitsIsAddedFoundAndRemoved) {
    const host::Table table(xmlTableNew(nullptr, nullptr, 0, nullptr, 0, 0, 0, 0));
    const host::WideText name = NameOf(259);
    TableEntryValueInfoStruct record = host::ValueRecord(name.c_str(), 3, "7");
    ASSERT_TRUE(xmlTableEntryAdd(table, nullptr, &record, nullptr, 0, 0));
    EXPECT_EQ(host::GetValue(table, name.c_str()), std::string(name.begin(), name.end()) + " #0 0003 '7'");
    TableEntryBaseInfoStruct shorter = host::NameRecord(NameOf(258).c_str());
    EXPECT_FALSE(xmlTableEntryIsExist(table, &shorter));
    EXPECT_TRUE(xmlTableRemoveEntry(table, &record, 0, 0));
}

// What a read of the key "k" with a text of `size` units into a destination of `length` leaves and returns.
struct Reading {
    host::WideText buffer;
    std::uint32_t result = 0;
};

Reading ReadInto(const host::WideText& text, std::uint32_t length, const wchar16* defaultText) {
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, text.c_str()), 1U);
    Reading reading{host::WideText(length + 2, kUntouched)};
    reading.result = xmlGetProfileString(profile, "S"_w, "k"_w, reading.buffer.data(), length, defaultText);
    EXPECT_EQ(reading.buffer.substr(length), host::WideText(2, kUntouched))
        << "written past the end of the buffer";
    reading.buffer.resize(length);
    return reading;
}

TEST(Destination, OfOneTakesTheZeroAlone) {
    for (const std::size_t size : {1U, 2U, 260U}) {
        const Reading reading = ReadInto(NameOf(size), 1, "default"_w);
        EXPECT_EQ(reading.buffer, host::WideText(1, 0)) << size;
        EXPECT_EQ(reading.result, 0U) << size;
    }
}

TEST(Destination, OfTheTextsLengthLosesItsLastUnit) {
    for (const std::uint32_t size : {1U, 2U, 259U, 260U, 261U, 100000U}) {
        const host::WideText text = NameOf(size);
        const Reading reading = ReadInto(text, size, "default"_w);
        EXPECT_TRUE(reading.buffer == CutAndFilled(text, size)) << size;
        EXPECT_EQ(reading.result, size - 1) << size;
    }
}

TEST(Destination, OfOneMoreTakesTheWholeText) {
    for (const std::uint32_t size : {1U, 2U, 259U, 260U, 261U, 100000U}) {
        const host::WideText text = NameOf(size);
        const Reading reading = ReadInto(text, size + 1, "default"_w);
        EXPECT_TRUE(reading.buffer == text + host::WideText(1, 0)) << size;
        EXPECT_EQ(reading.result, size) << size;
    }
}

TEST(Destination, IsFilledAfterAShorterText) {
    const Reading reading = ReadInto("abc"_w, 6, "a longer default"_w);
    EXPECT_EQ(reading.buffer, (host::WideText{'a', 'b', 'c', 0, 0, 0}));
    EXPECT_EQ(reading.result, 3U);
}

// A default goes through the same lengths.
Reading ReadDefault(const host::WideText& text, std::uint32_t length) {
    Reading reading{host::WideText(length + 2, kUntouched)};
    reading.result = xmlGetProfileString(nullptr, "S"_w, "k"_w, reading.buffer.data(), length, text.c_str());
    EXPECT_EQ(reading.buffer.substr(length), host::WideText(2, kUntouched))
        << "written past the end of the buffer";
    reading.buffer.resize(length);
    return reading;
}

TEST(Default, IsCutToTheLengthAndFilled) {
    for (const std::uint32_t size : {1U, 2U, 259U, 260U, 261U}) {
        for (const std::uint32_t length : {1U, size, size + 1, size + 5}) {
            const Reading reading = ReadDefault(NameOf(size), length);
            EXPECT_EQ(reading.buffer, CutAndFilled(NameOf(size), length)) << size << " into " << length;
            EXPECT_EQ(reading.result, std::min(size, length - 1)) << size << " into " << length;
        }
    }
}

TEST(DataDestination, TakesAsManyBytesAsItHasRoomFor) {
    std::vector<unsigned char> data;
    for (int i = 0; i < 300; ++i)
        data.push_back(static_cast<unsigned char>(i * 7));
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileData(profile, "S"_w, "k"_w, data.data(), 300), 1U);
    for (const std::uint32_t size : {0U, 1U, 299U, 300U, 301U}) {
        std::vector<unsigned char> buffer(302, 0xEE);
        const std::uint32_t stored = std::min(size, 300U);
        EXPECT_EQ(xmlGetProfileData(profile, "S"_w, "k"_w, buffer.data(), size), stored) << size;
        std::vector<unsigned char> expected(data.begin(), data.begin() + stored);
        expected.resize(302, 0xEE);
        EXPECT_EQ(buffer, expected) << size;
    }
}

}  // namespace
}  // namespace limits
