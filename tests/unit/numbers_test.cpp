#include "mox_xmlApi/platform/numbers.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "mox_xmlApi/platform/wide_text.h"

#if defined(_WIN32)
#include <cwchar>
#include <random>
#endif

namespace mox {
namespace {

// The text as "\uXXXX" where it is not plain ASCII, for messages.
std::string Shown(WideView text) {
    std::string shown;
    for (const wchar16 unit : text) {
        constexpr const char* kDigits = "0123456789ABCDEF";
        if (unit >= 0x20 && unit < 0x7F) {
            shown += static_cast<char>(unit);
        } else {
            shown += "\\u";
            for (int shift = 12; shift >= 0; shift -= 4)
                shown += kDigits[(unit >> shift) & 0xF];
        }
    }
    return shown;
}

struct NumberCase {
    WideView text;
    std::int32_t decimal;
    std::uint32_t unsignedDecimal;
    std::uint32_t hex;
};

// One table for all systems.
const NumberCase kCases[] = {
    // plain numbers, and what ends them
    {""_w, 0, 0, 0},
    {"0"_w, 0, 0, 0},
    {"7"_w, 7, 7, 7},
    {"42abc"_w, 42, 42, 0x42ABC},
    {"12abc"_w, 12, 12, 0x12ABC},
    {"12g"_w, 12, 12, 0x12},
    {"12 34"_w, 12, 12, 0x12},
    {"12.5"_w, 12, 12, 0x12},
    {"1-2"_w, 1, 1, 1},
    {"abc"_w, 0, 0, 0xABC},
    {"fFeE"_w, 0, 0, 0xFFEE},
    {"AaFf"_w, 0, 0, 0xAAFF},
    {"xyz"_w, 0, 0, 0},
    {"1FFFF"_w, 1, 1, 0x1FFFF},
    {"100C"_w, 100, 100, 0x100C},
    {"00000000000000000000000000000000012"_w, 12, 12, 0x12},
    {"1\0"
     "2"_w,
     1, 1, 1},
    {"\0"
     "7"_w,
     0, 0, 0},
    // signs
    {"-7"_w, -7, 4294967289, 0xFFFFFFF9},
    {"+7"_w, 7, 7, 7},
    {"-0"_w, 0, 0, 0},
    {"-"_w, 0, 0, 0},
    {"+"_w, 0, 0, 0},
    {"+-1"_w, 0, 0, 0},
    {"-+1"_w, 0, 0, 0},
    {"--1"_w, 0, 0, 0},
    {"++1"_w, 0, 0, 0},
    {"- 1"_w, 0, 0, 0},
    {"+ 1"_w, 0, 0, 0},
    {" - 1"_w, 0, 0, 0},
    {"-abc"_w, 0, 0, 0xFFFFF544},
    // white space
    {" -7"_w, -7, 4294967289, 0xFFFFFFF9},
    {" \t\n\v\f\r7"_w, 7, 7, 7},
    {"   "_w, 0, 0, 0},
    {"\x08"
     "7"_w,
     0, 0, 0},
    {"\x0E"
     "7"_w,
     0, 0, 0},
    {"\x1F"
     "7"_w,
     0, 0, 0},
    // bounds of 32 bits
    {"2147483646"_w, 2147483646, 2147483646, 0xFFFFFFFF},
    {"2147483647"_w, 2147483647, 2147483647, 0xFFFFFFFF},
    {"2147483648"_w, 2147483647, 2147483648, 0xFFFFFFFF},
    {"-2147483647"_w, -2147483647, 2147483649, 1},
    {"-2147483648"_w, -2147483647 - 1, 2147483648, 1},
    {"-2147483649"_w, -2147483647 - 1, 2147483647, 1},
    {"4294967294"_w, 2147483647, 4294967294, 0xFFFFFFFF},
    {"4294967295"_w, 2147483647, 4294967295, 0xFFFFFFFF},
    {"4294967296"_w, 2147483647, 4294967295, 0xFFFFFFFF},
    {"4294967297"_w, 2147483647, 4294967295, 0xFFFFFFFF},
    {"-4294967294"_w, -2147483647 - 1, 2, 1},
    {"-4294967295"_w, -2147483647 - 1, 1, 1},
    {"-4294967296"_w, -2147483647 - 1, 1, 1},
    {"-4294967297"_w, -2147483647 - 1, 1, 1},
    {"7FFFFFFF"_w, 7, 7, 0x7FFFFFFF},
    {"FFFFFFFE"_w, 0, 0, 0xFFFFFFFE},
    {"FFFFFFFF"_w, 0, 0, 0xFFFFFFFF},
    {"100000000"_w, 100000000, 100000000, 0xFFFFFFFF},
    {"-FFFFFFFE"_w, 0, 0, 2},
    {"-FFFFFFFF"_w, 0, 0, 1},
    {"-100000000"_w, -100000000, 4194967296, 1},
    // bounds of 64 bits and beyond, where a wider sum would wrap
    {"9223372036854775808"_w, 2147483647, 4294967295, 0xFFFFFFFF},
    {"18446744073709551615"_w, 2147483647, 4294967295, 0xFFFFFFFF},
    {"18446744073709551617"_w, 2147483647, 4294967295, 0xFFFFFFFF},
    {"-18446744073709551617"_w, -2147483647 - 1, 1, 1},
    {"340282366920938463463374607431768211461"_w, 2147483647, 4294967295, 0xFFFFFFFF},
    {"10000000000000005"_w, 2147483647, 4294967295, 0xFFFFFFFF},
    {"-99999999999999999999999999999999"_w, -2147483647 - 1, 1, 1},
    // "0x"
    {"0x10"_w, 0, 0, 0x10},
    {"0X1f"_w, 0, 0, 0x1F},
    {"-0x1"_w, 0, 0, 0xFFFFFFFF},
    {" +0x2"_w, 0, 0, 2},
    {"0x"_w, 0, 0, 0},
    {"0X"_w, 0, 0, 0},
    {"-0x"_w, 0, 0, 0},
    {"0xg"_w, 0, 0, 0},
    {"0x 5"_w, 0, 0, 0},
    {"0x-5"_w, 0, 0, 0},
    {"0x+5"_w, 0, 0, 0},
    {"0x0x5"_w, 0, 0, 0},
    {"00x5"_w, 0, 0, 0},
    {"0 x5"_w, 0, 0, 0},
    {"x5"_w, 0, 0, 0},
    {"1x5"_w, 1, 1, 1},
    {"0xfffffffff"_w, 0, 0, 0xFFFFFFFF},
    {"-0xfffffffff"_w, 0, 0, 1},
};

TEST(Numbers, EveryCaseReadsTheSameOnAllSystems) {
    for (const NumberCase& entry : kCases) {
        EXPECT_EQ(ReadDecimal(entry.text), entry.decimal) << Shown(entry.text);
        EXPECT_EQ(ReadUnsignedDecimal(entry.text), entry.unsignedDecimal) << Shown(entry.text);
        EXPECT_EQ(ReadUnsignedHex(entry.text), entry.hex) << Shown(entry.text);
    }
}

TEST(Numbers, TextNeedNotBeTerminated) {
    const WideView digits = "1234"_w;
    EXPECT_EQ(ReadDecimal(digits.substr(0, 2)), 12);
    EXPECT_EQ(ReadUnsignedDecimal(digits.substr(0, 3)), 123U);
    EXPECT_EQ(ReadUnsignedHex(digits.substr(1, 2)), 0x23U);
    // Nothing after the end is read: each text fills its own block of memory.
    for (const WideView text : {" "_w, "-"_w, "0"_w, "0x"_w, "-0x"_w}) {
        const std::vector<wchar16> exact(text.begin(), text.end());
        EXPECT_EQ(ReadUnsignedHex(WideView(exact.data(), exact.size())), 0U);
    }
    EXPECT_EQ(ReadDecimal(WideView()), 0);
}

TEST(Numbers, LongTextsOfDigitsSaturate) {
    EXPECT_EQ(ReadDecimal(WideString(1000000, wchar16{'9'})), 2147483647);
    EXPECT_EQ(ReadUnsignedHex(WideString(1000000, wchar16{'0'})), 0U);
}

// Which units `accepts` is true for, as "first-last" ranges of four hexadecimal digits.
template <class Accepts>
std::string Ranges(Accepts accepts) {
    std::string ranges;
    for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
        if (!accepts(static_cast<wchar16>(unit))) continue;
        std::uint32_t last = unit;
        while (last < 0xFFFF && accepts(static_cast<wchar16>(last + 1)))
            ++last;
        std::array<char, 16> text{};
        std::snprintf(text.data(), text.size(), unit == last ? " %04X" : " %04X-%04X", unit, last);
        ranges += text.data();
        unit = last;
    }
    return ranges;
}

TEST(Numbers, WhiteSpaceIsThatOfTheWindowsRuntime) {
    const auto isSkipped = [](wchar16 unit) {
        const std::array<wchar16, 3> text = {unit, '-', '7'};
        return ReadDecimal(WideView(text.data(), text.size())) == -7;
    };
    EXPECT_EQ(Ranges(isSkipped), " 0009-000D 0020 00A0 1680 2000-200A 2028-2029 202F 205F 3000");
}

TEST(Numbers, DigitsOfSeventeenScriptsCount) {
    const auto isDigit = [](wchar16 unit) {
        const std::array<wchar16, 3> text = {'1', unit, '3'};
        return ReadDecimal(WideView(text.data(), text.size())) >= 103;
    };
    const auto isHexDigit = [](wchar16 unit) {
        const std::array<wchar16, 3> text = {'1', unit, '3'};
        return ReadUnsignedHex(WideView(text.data(), text.size())) >= 0x103;
    };
    const std::string beyondAscii =
        " 0660-0669 06F0-06F9 0966-096F 09E6-09EF 0A66-0A6F 0AE6-0AEF 0B66-0B6F 0C66-0C6F 0CE6-0CEF 0D66-0D6F"
        " 0E50-0E59 0ED0-0ED9 0F20-0F29 1040-1049 17E0-17E9 1810-1819 FF10-FF19";
    EXPECT_EQ(Ranges(isDigit), " 0030-0039" + beyondAscii);
    EXPECT_EQ(Ranges(isHexDigit), " 0030-0039 0041-0046 0061-0066" + beyondAscii);
}

TEST(Numbers, DigitsOfOtherScriptsHaveTheirValues) {
    for (const int zero : {0x0660, 0x06F0, 0x0966, 0x09E6, 0x0A66, 0x0AE6, 0x0B66, 0x0C66, 0x0CE6, 0x0D66,
                           0x0E50, 0x0ED0, 0x0F20, 0x1040, 0x17E0, 0x1810, 0xFF10}) {
        WideString text;
        for (int digit = 1; digit <= 9; ++digit)
            text += static_cast<wchar16>(zero + digit);
        text += static_cast<wchar16>(zero);
        EXPECT_EQ(ReadDecimal(text), 1234567890) << zero;
        EXPECT_EQ(ReadUnsignedHex(text.substr(0, 8)), 0x12345678U) << zero;

        const std::array<wchar16, 3> prefixed = {static_cast<wchar16>(zero), 'x', '5'};
        EXPECT_EQ(ReadUnsignedHex(WideView(prefixed.data(), prefixed.size())), 5U) << zero;
    }
}

#if defined(_WIN32)

// The runtime's results against ours; `text` is zero-terminated.
void ExpectAsRuntime(const WideString& text) {
#if defined(_UCRT)
    // White space for the newer of the two runtimes only.
    if (text.find(wchar16{0x85}) != WideString::npos) return;
#endif
    ASSERT_EQ(ReadDecimal(text), std::wcstol(text.c_str(), nullptr, 10)) << Shown(text);
    ASSERT_EQ(ReadUnsignedDecimal(text), std::wcstoul(text.c_str(), nullptr, 10)) << Shown(text);
    ASSERT_EQ(ReadUnsignedHex(text), std::wcstoul(text.c_str(), nullptr, 16)) << Shown(text);
}

TEST(NumbersAgainstTheRuntime, Cases) {
    for (const NumberCase& entry : kCases)
        ExpectAsRuntime(WideString(entry.text));
}

TEST(NumbersAgainstTheRuntime, EveryUnitInEveryPlace) {
    for (std::uint32_t value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<wchar16>(value);
        ExpectAsRuntime({unit, '7'});
        ExpectAsRuntime({unit, '-', '7'});
        ExpectAsRuntime({'1', unit, '3'});
        ExpectAsRuntime({'-', unit, '3'});
        ExpectAsRuntime({'0', unit, '5'});
        ExpectAsRuntime({unit, 'x', '5'});
        ExpectAsRuntime({'0', 'x', unit});
        if (HasFatalFailure()) return;
    }
}

// Seeded texts that look like numbers, near numbers and nothing of the kind.
class RandomTexts {
  public:
    WideString Next() {
        WideString text;
        Append(text, kSpaces, Below(3));
        if (Below(2) == 0) Append(text, "+-"_w, Below(5) == 0 ? 2 : 1);
        if (Below(3) == 0) text += Below(2) == 0 ? "0x"_w : "0X"_w;
        Append(text, Below(3) == 0 ? kNasty : DigitsOfSomeKind(), Below(4) == 0 ? Below(40) : Below(12));
        Append(text, kNasty, Below(3));
        return text;
    }

  private:
    std::size_t Below(std::size_t bound) { return random_() % bound; }

    WideView DigitsOfSomeKind() {
        constexpr std::array<WideView, 4> kKinds = {"0123456789"_w, "0123456789abcdefABCDEF"_w, "01"_w,
                                                    "89fF"_w};
        return kKinds[Below(kKinds.size())];
    }

    void Append(WideString& text, WideView alphabet, std::size_t count) {
        for (; count > 0; --count)
            text += alphabet[Below(alphabet.size())];
    }

    static constexpr WideView kSpaces = L" \t\n\v\f\r\u00A0\u1680\u2000\u200A\u2028\u2029\u202F\u205F\u3000";
    static constexpr WideView kNasty =
        L"0123456789abcdefghABCDEFGHxXxX+-.,'_ \t\n\x1F\x7F\u00A0\u00B2\u00B9\u2007\u200B\u3000\uFEFF\u180E"
        L"\u0660\u0665\u0669\u066A\u065F\u06F9\u096F\u0970\u0BE6\u0BEF\u0DE6\u0E50\u1049\u17E9\u1819\u181A"
        L"\u19D0\uA620\uFF0B\uFF0D\uFF10\uFF19\uFF1A\uFF21\uFF58\xD835\xDFCE\xFFFF";

    std::mt19937 random_{20240611};
};

TEST(NumbersAgainstTheRuntime, RandomTexts) {
    RandomTexts texts;
    for (int i = 0; i < 200000; ++i) {
        ExpectAsRuntime(texts.Next());
        if (HasFatalFailure()) return;
    }
}

#endif

}  // namespace
}  // namespace mox
