// Bytes as hexadecimal digits, and back.
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "mox_xmlApi/platform/mox_dbtInfo.h"

namespace mox::test {
namespace {

using Record = TableEntryValueInfoStruct;

// DataToHex of the bytes into a buffer that is exactly large enough.
std::string ToHex(const std::vector<unsigned char>& bytes) {
    std::vector<char> hex(2 * bytes.size() + 1, '#');
    Record::DataToHex(bytes.data(), hex.data(), bytes.size());
    EXPECT_EQ(hex.back(), '\0');
    return {hex.data(), hex.size() - 1};
}

// HexToData into `size` bytes: the bytes that were stored. The byte after them must stay.
std::vector<unsigned char> FromHex(const char* hex, std::size_t size) {
    std::vector<unsigned char> bytes(size + 1, 0xEE);
    const std::size_t stored = Record::HexToData(hex, bytes.data(), size);
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
    Record::DataToHex(nullptr, hex, 1);
    EXPECT_STREQ(hex, "");
    EXPECT_EQ(hex[1], '#');
    Record::DataToHex("ab", nullptr, 2);

    EXPECT_EQ(FromHex(nullptr, 4), Bytes());
    EXPECT_EQ(Record::HexToData("0102", nullptr, 2), 0U);
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
}  // namespace mox::test
