#include "mox_xmlApi/platform/mox_porting.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

#include "mox_xmlApi/platform/wide_text.h"

namespace mox {
namespace {

using Units = std::basic_string<wchar16>;

// Text from code units.
template <class... Unit>
Units Wide(Unit... units) {
    return Units{static_cast<wchar16>(units)...};
}

// The UTF-8 form, or "refused".
std::string ToNarrow(const Units& wide) {
    std::string narrow = "before";
    if (pdConvertString(wide, narrow)) return narrow;
    EXPECT_EQ(narrow, "before");
    return "refused";
}

// The UTF-16 form, or the units of "refused".
Units ToWide(const std::string& narrow) {
    Units wide(3, wchar16{'b'});
    if (pdConvertString(narrow, wide)) return wide;
    EXPECT_EQ(wide, Wide('b', 'b', 'b'));
    return Units("refused"_w);
}

bool IsRefused(const std::string& narrow) {
    return ToWide(narrow) == "refused"_w;
}

struct Pair {
    std::string narrow;
    Units wide;
};

TEST(ConvertString, BothFormsOfATextCorrespond) {
    const Pair pairs[] = {
        {"", Wide()},
        {"01AB", Wide('0', '1', 'A', 'B')},
        {"\x7F", Wide(0x7F)},
        {"\xC2\x80", Wide(0x80)},
        {"\xC3\xA9t\xC3\xA9", Wide(0xE9, 't', 0xE9)},
        {"\xDF\xBF", Wide(0x7FF)},
        {"\xE0\xA0\x80", Wide(0x800)},
        {"\xE2\x82\xAC", Wide(0x20AC)},
        {"\xED\x9F\xBF", Wide(0xD7FF)},
        {"\xEE\x80\x80", Wide(0xE000)},
        {"\xEF\xBB\xBF", Wide(0xFEFF)},
        {"\xEF\xBF\xBF", Wide(0xFFFF)},
        {"\xF0\x90\x80\x80", Wide(0xD800, 0xDC00)},
        {"\xF0\x9F\x98\x80!", Wide(0xD83D, 0xDE00, '!')},
        {"\xF4\x8F\xBF\xBF", Wide(0xDBFF, 0xDFFF)},
    };
    for (const Pair& pair : pairs) {
        EXPECT_EQ(ToNarrow(pair.wide), pair.narrow);
        EXPECT_EQ(ToWide(pair.narrow), pair.wide) << pair.narrow;
    }
}

TEST(ConvertString, ZeroInsideTheTextIsCarried) {
    const std::string narrow("a\0b\0", 4);
    EXPECT_EQ(ToNarrow(Wide('a', 0, 'b', 0)), narrow);
    EXPECT_EQ(ToWide(narrow), Wide('a', 0, 'b', 0));
}

TEST(ConvertString, EmptyTextEmptiesTheTarget) {
    std::string narrow = "before";
    EXPECT_TRUE(pdConvertString(Units(), narrow));
    EXPECT_EQ(narrow, "");
    Units wide = Wide('b');
    EXPECT_TRUE(pdConvertString(std::string(), wide));
    EXPECT_EQ(wide, Units());
}

TEST(ConvertString, SurrogateWithoutPartnerIsRefused) {
    EXPECT_EQ(ToNarrow(Wide(0xD800)), "refused");
    EXPECT_EQ(ToNarrow(Wide(0xDBFF)), "refused");
    EXPECT_EQ(ToNarrow(Wide(0xDC00)), "refused");
    EXPECT_EQ(ToNarrow(Wide(0xDFFF)), "refused");
    EXPECT_EQ(ToNarrow(Wide('a', 0xD83D, 'b')), "refused");
    EXPECT_EQ(ToNarrow(Wide(0xD83D, 0xD83D, 0xDE00)), "refused");
    EXPECT_EQ(ToNarrow(Wide(0xDE00, 0xD83D)), "refused");
    EXPECT_EQ(ToNarrow(Wide(0xD83D, 0xDE00, 0xDE00)), "refused");
    EXPECT_EQ(ToNarrow(Wide(0xD83D, 0xDBFF)), "refused");
    EXPECT_EQ(ToNarrow(Wide(0xD83D, 0xE000)), "refused");
}

TEST(ConvertString, IllFormedSequencesAreRefused) {
    const std::string texts[] = {
        // a byte out of place
        "\x80", "\xBF", "a\x80z", "\xC3\xA9\xA9", "\xFE", "\xFF", "\xF8\x88\x80\x80\x80",
        "\xFC\x84\x80\x80\x80\x80",
        // cut short by the end of the text
        "\xC3", "\xE2", "\xE2\x82", "\xF0", "\xF0\x9F", "\xF0\x9F\x98", "a\xC3",
        // cut short by another character
        "\xC3z", "\xE2\x82z", "\xE2z\xAC", "\xF0\x9F\x98z", "\xF0\x9F\xC3\xA9", "\xC3\xC3\xA9",
        // longer than the character needs
        "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF",
        // encoded surrogates
        "\xED\xA0\x80", "\xED\xBF\xBF", "\xED\xA0\xBD\xED\xB8\x80",
        // above U+10FFFF
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF7\xBF\xBF\xBF"};
    for (const std::string& text : texts) {
        EXPECT_TRUE(IsRefused(text)) << testing::PrintToString(text);
        EXPECT_TRUE(IsRefused("abc" + text)) << testing::PrintToString(text);
    }
    EXPECT_TRUE(IsRefused(std::string("\xC3\0", 2)));
}

TEST(ConvertString, EveryCharacterReturnsUnchanged) {
    std::uint32_t count = 0;
    for (std::uint32_t character = 0; character <= 0x10FFFF; ++character) {
        if (character >= 0xD800 && character <= 0xDFFF) continue;
        const Units wide = character < 0x10000
                               ? Wide(character)
                               : Wide(0xD800 + ((character - 0x10000) >> 10), 0xDC00 + (character & 0x3FF));
        std::string narrow;
        Units back;
        ASSERT_TRUE(pdConvertString(wide, narrow)) << character;
        ASSERT_TRUE(pdConvertString(narrow, back)) << character;
        ASSERT_EQ(back, wide) << character;
        ++count;
    }
    EXPECT_EQ(count, 1112064U);
}

// How many sequences of the given length are accepted as one character: any first two bytes, and after them
// the bytes at both sides of either bound of following bytes, of which two are valid.
std::uint32_t CountSingleCharacters(std::size_t length) {
    constexpr std::array<unsigned char, 4> kBounds = {0x7F, 0x80, 0xBF, 0xC0};
    const unsigned rests = length == 4 ? 16 : length == 3 ? 4 : 1;
    std::uint32_t count = 0;
    std::string text(length, '\0');
    Units wide;
    for (unsigned pair = 0x8000; pair <= 0xFFFF; ++pair) {
        text[0] = static_cast<char>(pair >> 8);
        text[1] = static_cast<char>(pair & 0xFF);
        for (unsigned rest = 0; rest < rests; ++rest) {
            if (length >= 3) text[2] = static_cast<char>(kBounds[rest & 3]);
            if (length == 4) text[3] = static_cast<char>(kBounds[rest >> 2]);
            if (!pdConvertString(text, wide)) continue;
            const bool isPair = wide.size() == 2 && wide[0] >= 0xD800 && wide[0] <= 0xDBFF;
            if (wide.size() == 1 || isPair) ++count;
        }
    }
    return count;
}

TEST(ConvertString, AcceptsAsManySequencesAsThereAreCharacters) {
    EXPECT_EQ(CountSingleCharacters(2), 1920U);  // U+0080 to U+07FF
    EXPECT_EQ(CountSingleCharacters(3),
              1920U);  // U+0800 to U+FFFF less the surrogates: 61440, two of 64 each
    EXPECT_EQ(CountSingleCharacters(4), 1024U);  // U+10000 to U+10FFFF: 1048576, four of 4096 each
}

// What pdSwprintf made of a buffer of 64 units filled with "#".
struct Printed {
    int result;
    std::string text;      // up to the first zero unit
    bool restIsUntouched;  // everything from `capacity` on
};

template <class... Arguments>
Printed Print(std::size_t capacity, WideView format, Arguments... arguments) {
    std::array<wchar16, 64> buffer;
    buffer.fill(wchar16{'#'});
    const Units terminated(format);
    Printed printed{pdSwprintf(buffer.data(), capacity, terminated.c_str(), arguments...), "", true};
    for (std::size_t i = 0; i < buffer.size() && buffer[i] != 0; ++i)
        printed.text += static_cast<char>(buffer[i]);
    for (std::size_t i = capacity; i < buffer.size(); ++i)
        printed.restIsUntouched &= buffer[i] == '#';
    EXPECT_TRUE(printed.restIsUntouched);
    return printed;
}

template <class... Arguments>
std::string PrintAll(WideView format, Arguments... arguments) {
    const Printed printed = Print(64, format, arguments...);
    EXPECT_EQ(printed.result, static_cast<int>(printed.text.size()));
    return printed.text;
}

TEST(Swprintf, SignedNumbers) {
    EXPECT_EQ(PrintAll("%d"_w, 0), "0");
    EXPECT_EQ(PrintAll("%d"_w, -5), "-5");
    EXPECT_EQ(PrintAll("%d"_w, 2147483647), "2147483647");
    EXPECT_EQ(PrintAll("%d"_w, -2147483647 - 1), "-2147483648");
}

TEST(Swprintf, UnsignedNumbers) {
    EXPECT_EQ(PrintAll("%u"_w, 0U), "0");
    EXPECT_EQ(PrintAll("%u"_w, 4294967295U), "4294967295");
    EXPECT_EQ(PrintAll("%x %X"_w, 0xBEEFU, 0xBEEFU), "beef BEEF");
    EXPECT_EQ(PrintAll("%X"_w, 0xFFFFFFFFU), "FFFFFFFF");
}

TEST(Swprintf, WidthAndZeros) {
    EXPECT_EQ(PrintAll("%04X"_w, 0U), "0000");
    EXPECT_EQ(PrintAll("%04X"_w, 0x1FU), "001F");
    EXPECT_EQ(PrintAll("%04X"_w, 0x12345U), "12345");
    EXPECT_EQ(PrintAll("%4X"_w, 0x1FU), "  1F");
    EXPECT_EQ(PrintAll("%05d"_w, -42), "-0042");
    EXPECT_EQ(PrintAll("%5d"_w, -42), "  -42");
    EXPECT_EQ(PrintAll("%03d"_w, -12345), "-12345");
    EXPECT_EQ(PrintAll("%00012u"_w, 7U), "000000000007");
}

TEST(Swprintf, PrecisionOfNumbersIsTheLeastNumberOfDigits) {
    EXPECT_EQ(PrintAll("%.3d"_w, -7), "-007");
    EXPECT_EQ(PrintAll("%6.3d"_w, -7), "  -007");
    EXPECT_EQ(PrintAll("%06.3d"_w, 7), "   007");
    EXPECT_EQ(PrintAll("%.0d|%.d"_w, 0, 0), "|");
    EXPECT_EQ(PrintAll("%.2X"_w, 0xABCU), "ABC");
}

TEST(Swprintf, Texts) {
    const wchar16 text[] = {'a', 'b', 'c', 0};
    EXPECT_EQ(PrintAll("<%s>"_w, text), "<abc>");
    EXPECT_EQ(PrintAll("<%5s>"_w, text), "<  abc>");
    EXPECT_EQ(PrintAll("<%2s>"_w, text), "<abc>");
    EXPECT_EQ(PrintAll("<%.2s>"_w, text), "<ab>");
    EXPECT_EQ(PrintAll("<%4.1s>"_w, text), "<   a>");
    EXPECT_EQ(PrintAll("%s"_w, static_cast<const wchar16*>(nullptr)), "(null)");
    const wchar16 unterminated[] = {'x', 'y'};
    EXPECT_EQ(PrintAll("%.2s|%3.2s"_w, unterminated, unterminated), "xy| xy");
}

TEST(Swprintf, PlainTextPercentAndSeveralConversions) {
    EXPECT_EQ(PrintAll(""_w), "");
    EXPECT_EQ(PrintAll("100%%"_w), "100%");
    const wchar16 text[] = {'k', 0};
    EXPECT_EQ(PrintAll("%s=%d (%u, %04X)"_w, text, -1, 2U, 0x100CU), "k=-1 (2, 100C)");
}

TEST(Swprintf, UnitsBeyondAsciiAreCopied) {
    const wchar16 format[] = {0x20AC, '%', 's', 0xD83D, 0};
    const wchar16 text[] = {0xFF41, 0};
    wchar16 buffer[8];
    EXPECT_EQ(pdSwprintf(buffer, 8, format, text), 3);
    EXPECT_EQ(Units(buffer), Wide(0x20AC, 0xFF41, 0xD83D));
}

TEST(Swprintf, TextThatDoesNotFitIsCutAndTerminated) {
    EXPECT_EQ(Print(5, "%d"_w, 1234).result, 4);
    EXPECT_EQ(Print(5, "%d"_w, 1234).text, "1234");
    EXPECT_EQ(Print(4, "%d"_w, 1234).result, -1);
    EXPECT_EQ(Print(4, "%d"_w, 1234).text, "123");
    EXPECT_EQ(Print(3, "abc"_w).result, -1);
    EXPECT_EQ(Print(3, "abc"_w).text, "ab");
    const wchar16 text[] = {'a', 'b', 'c', 0};
    EXPECT_EQ(Print(3, "%s"_w, text).result, -1);
    EXPECT_EQ(Print(3, "%s"_w, text).text, "ab");
    EXPECT_EQ(Print(1, "%d"_w, 0).result, -1);
    EXPECT_EQ(Print(1, "%d"_w, 0).text, "");
    EXPECT_EQ(Print(1, ""_w).result, 0);
}

TEST(Swprintf, NothingIsWrittenWithoutCapacity) {
    EXPECT_EQ(Print(0, "%d"_w, 1).result, -1);
    const wchar16 format[] = {'x', 0};
    EXPECT_EQ(pdSwprintf(nullptr, 0, format), -1);
}

TEST(Swprintf, HugeWidthEndsAtTheCapacity) {
    EXPECT_EQ(Print(8, "%99999999999999999999d"_w, 1).result, -1);
    EXPECT_EQ(Print(8, "%99999999999999999999d"_w, 1).text, "       ");
    EXPECT_EQ(Print(8, "%.4000000000u"_w, 1U).text, "0000000");
    EXPECT_EQ(Print(8, "%04294967295d"_w, -1).text, "-000000");
}

TEST(Swprintf, UnknownConversionEndsTheText) {
    EXPECT_EQ(Print(64, "ab%qcd"_w).result, -1);
    EXPECT_EQ(Print(64, "ab%qcd"_w).text, "ab");
    EXPECT_EQ(Print(64, "ab%"_w).result, -1);
    EXPECT_EQ(Print(64, "ab%"_w).text, "ab");
    EXPECT_EQ(Print(64, "%08"_w).result, -1);
}

}  // namespace
}  // namespace mox
