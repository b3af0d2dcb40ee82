#include "mox_xmlApi/xml/xml_name_characters.h"

#include <clocale>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <cwctype>
#endif

namespace mox {
namespace {

// All ASCII units for which the function is true.
std::string AsciiUnits(bool (*accepts)(wchar16) noexcept) {
    std::string units;
    for (wchar16 unit = 0; unit < 0x80; ++unit) {
        if (accepts(unit)) units += static_cast<char>(unit);
    }
    return units;
}

TEST(Letters, NamesStartWithALetterUnderscoreOrColon) {
    EXPECT_EQ(AsciiUnits(IsNameStart), ":ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz");
}

TEST(Letters, NamesGoOnWithDigitsToo) {
    EXPECT_EQ(AsciiUnits(IsNameCharacter),
              "0123456789:ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz");
}

TEST(Letters, SurrogatesAreNeverPartOfAName) {
    for (std::uint32_t unit = 0xD800; unit <= 0xDFFF; ++unit) {
        EXPECT_FALSE(IsNameStart(static_cast<wchar16>(unit))) << unit;
        EXPECT_FALSE(IsNameCharacter(static_cast<wchar16>(unit))) << unit;
    }
}

TEST(Letters, LettersOfManyScriptsAreLetters) {
    for (const int unit : {0x00C4, 0x00E9, 0x00FF, 0x0153, 0x03A9, 0x0416, 0x05D0, 0x0627, 0x0905, 0x0E01,
                           0x10D0, 0x1E9E, 0x3042, 0x30AB, 0x4E2D, 0x9FA5, 0xAC00, 0xFF21}) {
        EXPECT_TRUE(IsNameStart(static_cast<wchar16>(unit))) << std::hex << unit;
        EXPECT_TRUE(IsNameCharacter(static_cast<wchar16>(unit))) << std::hex << unit;
    }
}

TEST(Letters, DigitsOfManyScriptsMayGoOn) {
    for (const int unit : {0x0660, 0x06F5, 0x0966, 0x0E59, 0x0F20, 0xFF10, 0xFF19}) {
        EXPECT_TRUE(IsNameCharacter(static_cast<wchar16>(unit))) << std::hex << unit;
    }
}

TEST(Letters, MarksSpacesAndNoncharactersAreNot) {
    for (const int unit : {0x0080, 0x0085, 0x00A0, 0x00A7, 0x00B7, 0x00D7, 0x00F7, 0x2010, 0x2014, 0x2028,
                           0x20AC, 0x3000, 0xE000, 0xFEFF, 0xFFFD, 0xFFFE, 0xFFFF}) {
        EXPECT_FALSE(IsNameStart(static_cast<wchar16>(unit))) << std::hex << unit;
        EXPECT_FALSE(IsNameCharacter(static_cast<wchar16>(unit))) << std::hex << unit;
    }
}

TEST(Letters, WhatMayStartANameMayAlsoGoOn) {
    for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
        if (IsNameStart(static_cast<wchar16>(unit))) {
            EXPECT_TRUE(IsNameCharacter(static_cast<wchar16>(unit))) << unit;
        }
    }
}

#if defined(_WIN32)

TEST(Letters, BeyondAsciiTheRuntimeDecides) {
    for (std::uint32_t unit = 0x80; unit <= 0xFFFF; ++unit) {
        if (unit >= 0xD800 && unit <= 0xDFFF) continue;
        const auto character = static_cast<wchar16>(unit);
        ASSERT_EQ(IsNameStart(character), std::iswalpha(character) != 0) << unit;
        ASSERT_EQ(IsNameCharacter(character), std::iswalnum(character) != 0) << unit;
    }
}

#else

// What the two functions say about every unit.
std::vector<int> AllAnswers() {
    std::vector<int> answers;
    for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
        const auto character = static_cast<wchar16>(unit);
        answers.push_back(2 * IsNameStart(character) + IsNameCharacter(character));
    }
    return answers;
}

TEST(Letters, TheProcessLocaleDoesNotMatter) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const std::vector<int> answers = AllAnswers();
    for (const char* name : {"C", "C.UTF-8"}) {
        ASSERT_NE(std::setlocale(LC_ALL, name), nullptr) << name;
        EXPECT_EQ(AllAnswers(), answers) << name;
    }
    std::setlocale(LC_ALL, before.c_str());
}

#endif

}  // namespace
}  // namespace mox
