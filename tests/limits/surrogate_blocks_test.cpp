// Surrogate pairs that the blocks in which files are read and written part.
#include "tests/host/host_support.h"

namespace limits {
namespace {

using host::operator""_w;

host::WideText Value(moxSettings* profile) {
    return host::ReadText(profile, "S"_w, "k"_w);
}

// A wide file of one key whose text is `value`, which begins at unit number `place`.
std::string FileWithValueAt(std::size_t place, const host::WideText& value) {
    const std::string before =
        std::string(host::kRootStart) + "<Table name=\"S\"><Var name=\"k\" type=\"string\"><Value>";
    host::WideText units(place - before.size(), ' ');
    units.append(before.begin(), before.end());
    units.append(value);
    for (const char unit : std::string_view("</Value></Var></Table></Settings>\n"))
        units.append(1, static_cast<wchar16>(unit));
    std::string bytes;
    for (const wchar16 unit : units)
        bytes.append(1, static_cast<char>(unit & 0xFF)).append(1, static_cast<char>(unit >> 8));
    return bytes;
}

const host::WideText kPairs(u"\U0001F600\U00010000\U0010FFFF"_w);

TEST(SurrogatePair, IsReadWholeAcrossTheBlocksOfAFile) {
    for (const std::size_t block : {2048U, 4096U, 8192U, 16384U, 32768U, 65536U}) {
        for (std::size_t place = block - 6; place <= block + 1; ++place) {
            const host::Profile profile = host::LoadBytes(FileWithValueAt(place, kPairs), 1);
            ASSERT_EQ(Value(profile), kPairs) << place;
        }
    }
}

TEST(SurrogatePair, CutByTheEndOfTheFileIsNoDocument) {
    const std::string bytes = FileWithValueAt(2047, kPairs);
    for (const std::size_t size : {4096U, 4095U, 4097U})
        EXPECT_EQ(host::LoadBytes(std::string_view(bytes).substr(0, size), 1), nullptr) << size;
}

TEST(SurrogatePair, IsWrittenWholeAcrossTheBlocksOfASave) {
    // Long enough for several blocks of any size; the second time each pair stands one unit later.
    for (const std::size_t shift : {0U, 1U}) {
        host::WideText text(shift + 1, 'x');
        for (int i = 0; i < 200000; ++i)
            text.append({0xD83D, static_cast<wchar16>(0xDC00 + i % 0x400)});
        const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
        ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, text.c_str()), 1U);
        const std::string bytes = host::SaveBytes(profile, 0, 1);
        EXPECT_TRUE(Value(host::LoadBytes(bytes, 1)) == text);
        EXPECT_TRUE(host::SaveBytes(host::LoadBytes(bytes, 1), 0, 1) == bytes);
    }
}

TEST(SurrogatePair, IsPartedByABufferThatEndsInIt) {
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, kPairs.c_str()), 1U);
    for (std::uint32_t length = 1; length <= 7; ++length) {
        host::WideText buffer(length, '?');
        EXPECT_EQ(xmlGetProfileString(profile, "S"_w, "k"_w, buffer.data(), length, nullptr), length - 1);
        EXPECT_EQ(buffer, kPairs.substr(0, length - 1) + host::WideText(1, 0)) << length;
    }
}

}  // namespace
}  // namespace limits
