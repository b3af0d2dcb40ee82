#include "mox_xmlApi/front/text.hpp"

#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "tests/host/host_support.h"

namespace {

using mox::Text;

// The first and last character of each length.
TEST(FrontTexts, CharactersHaveTheirUtf8Form) {
    EXPECT_EQ(mox::toUtf8(u"\x01\x7F"), "\x01\x7F");
    EXPECT_EQ(mox::toUtf8(u"\u0080\u07FF"), "\xC2\x80\xDF\xBF");
    EXPECT_EQ(mox::toUtf8(u"\u0800\uFFFF"), "\xE0\xA0\x80\xEF\xBF\xBF");
    EXPECT_EQ(mox::toUtf8(u"\U00010000\U0010FFFF"), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
    EXPECT_EQ(mox::toUtf8(u""), "");
}

TEST(FrontTexts, Utf8FormsGiveTheirCharacters) {
    EXPECT_EQ(mox::toUtf16("\x01\x7F"), u"\x01\x7F");
    EXPECT_EQ(mox::toUtf16("\xC2\x80\xDF\xBF"), u"\u0080\u07FF");
    EXPECT_EQ(mox::toUtf16("\xE0\xA0\x80\xEF\xBF\xBF"), u"\u0800\uFFFF");
    EXPECT_EQ(mox::toUtf16("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"), u"\U00010000\U0010FFFF");
    EXPECT_EQ(mox::toUtf16(""), u"");
}

TEST(FrontTexts, UnpairedSurrogatesHaveAThreeByteForm) {
    EXPECT_EQ(mox::toUtf8(std::u16string{0xD800}), "\xED\xA0\x80");
    EXPECT_EQ(mox::toUtf8(std::u16string{0xDFFF, 0xD800}), "\xED\xBF\xBF\xED\xA0\x80");
    EXPECT_EQ(mox::toUtf8(std::u16string{0xDBFF, 'x', 0xDC00}), "\xED\xAF\xBFx\xED\xB0\x80");
    EXPECT_EQ(mox::toUtf8(std::u16string{0xD800, 0xE000}), "\xED\xA0\x80\xEE\x80\x80");
    EXPECT_EQ(mox::toUtf16("\xED\xA0\x80x"), (std::u16string{0xD800, 'x'}));
}

TEST(FrontTexts, TwoThreeByteFormsThatMakeAPairAreThePair) {
    EXPECT_EQ(mox::toUtf16("\xED\xA0\x80\xED\xB0\x80"), u"\U00010000");
}

TEST(FrontTexts, EveryUnitIsTheSameAfterConversionToUtf8AndBack) {
    for (unsigned first = 1; first <= 0xFFFF; ++first) {
        for (const char16_t second : {u'x', char16_t{0xD800}, char16_t{0xDC00}}) {
            const std::u16string text{static_cast<char16_t>(first), second};
            ASSERT_EQ(mox::toUtf16(mox::toUtf8(text)), text) << first;
        }
    }
}

TEST(FrontTexts, OtherBytesHaveNo16BitForm) {
    for (const char* bytes : {"\x80", "\xBF", "a\xFFz", "\xFE", "\xF8\x88\x80\x80\x80",  // not a first byte
                              "\xC3", "\xE2\x82", "\xF0\x9F\x98",                        // cut off
                              "\xC3(", "\xE2\x82(", "\xE2(\xAC", "\xF0\x9F(\x80",  // no continuation byte
                              "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF",  // overlong
                              "\xF4\x90\x80\x80", "\xF7\xBF\xBF\xBF"}) {                   // too large
        EXPECT_FALSE(mox::toUtf16(bytes).has_value()) << testing::PrintToString(bytes);
        EXPECT_FALSE(Text(bytes).isValid()) << testing::PrintToString(bytes);
        EXPECT_EQ(*Text(bytes).c_str(), wchar16{0});
    }
}

TEST(FrontTexts, ArgumentsConvertFromAnyKindOfString) {
    const host::WideText expected{'J', 0xFC, 'n', 'g'};
    EXPECT_EQ(Text("J\xC3\xBCng").units(), expected);
    EXPECT_EQ(Text(std::string("J\xC3\xBCng")).units(), expected);
    EXPECT_EQ(Text(std::string_view("J\xC3\xBCng...").substr(0, 5)).units(), expected);
    EXPECT_EQ(Text(u"J\u00FCng").units(), expected);
    EXPECT_EQ(Text(std::u16string(u"J\u00FCng")).units(), expected);
    EXPECT_EQ(Text(std::u16string_view(u"J\u00FCng...").substr(0, 4)).units(), expected);
    EXPECT_EQ(Text(u8"J\u00FCng").units(), expected);
    EXPECT_EQ(Text(std::u8string(u8"J\u00FCng")).units(), expected);
    EXPECT_EQ(Text(std::u8string_view(u8"J\u00FCng")).units(), expected);
#if defined(_WIN32)
    EXPECT_EQ(Text(L"J\u00FCng").units(), expected);
    EXPECT_EQ(Text(std::wstring(L"J\u00FCng")).units(), expected);
    EXPECT_EQ(Text(std::wstring_view(L"J\u00FCng")).units(), expected);
#endif
    EXPECT_EQ(Text(u"J\u00FCng").c_str(), expected);
    EXPECT_TRUE(Text("").isValid());
}

TEST(FrontTexts, ZeroUnitsAndNullPointersAreInvalid) {
    EXPECT_FALSE(Text(std::string("a\0b", 3)).isValid());
    EXPECT_FALSE(Text(std::u16string(u"a\0b", 3)).isValid());
    EXPECT_FALSE(Text(std::string(1, '\0')).isValid());
    EXPECT_TRUE(Text(std::string("a\0b", 3)).units().empty());
    EXPECT_FALSE(Text(static_cast<const char*>(nullptr)).isValid());
    EXPECT_FALSE(Text(static_cast<const char16_t*>(nullptr)).isValid());
}

TEST(FrontTexts, ACopyOutlivesItsSource) {
    std::string source = "gone";
    const Text text(source);
    source.assign(100, 'x');
    EXPECT_EQ(mox::toUtf8(std::u16string(text.units().begin(), text.units().end())), "gone");
}

// A short text is stored in the object itself, a longer one in allocated memory.
TEST(FrontTexts, ArgumentsOfEveryLengthAreCopiedMovedAndAssigned) {
    for (const std::size_t length : {0U, 1U, 62U, 63U, 64U, 65U, 1000U}) {
        std::u16string expected(length, u'\u00FC');
        if (length != 0) expected.back() = u'z';
        const auto isExpected = [&expected](const Text& text) {
            return text.isValid() && std::u16string(text.units().begin(), text.units().end()) == expected &&
                   text.c_str() == text.units().data() && text.c_str()[expected.size()] == 0;
        };
        Text text(expected);
        EXPECT_TRUE(isExpected(text)) << length;
        EXPECT_TRUE(isExpected(Text(mox::toUtf8(expected)))) << length;
        const Text copy = text;
        EXPECT_TRUE(isExpected(copy)) << length;
        Text other("other");
        Text longer(std::string(200, 'o'));
        other = copy;
        longer = copy;
        EXPECT_TRUE(isExpected(other)) << length;
        EXPECT_TRUE(isExpected(longer)) << length;
        const Text moved = std::move(text);
        EXPECT_TRUE(isExpected(moved)) << length;
        EXPECT_TRUE(isExpected(copy)) << length;
    }
}

// Here 120 bytes are 40 units.
TEST(FrontTexts, AnArgumentMayHaveFewerUnitsThanBytes) {
    std::string utf8;
    for (int i = 0; i < 40; ++i)
        utf8 += "\xE4\xB8\xAD";
    EXPECT_EQ(Text(utf8).units(), host::WideText(40, wchar16{0x4E2D}));
    EXPECT_EQ(Text(utf8).c_str()[40], wchar16{0});
}

TEST(FrontTexts, LongArgumentsThatAreInvalidAreEmpty) {
    for (const std::string& bytes : {std::string(63, 'x') + '\xFF', std::string(100, 'x') + '\xFF',
                                     std::string(63, 'x') + '\0', std::string(100, 'x') + '\0'}) {
        EXPECT_FALSE(Text(bytes).isValid());
        EXPECT_TRUE(Text(bytes).units().empty());
        EXPECT_EQ(*Text(bytes).c_str(), wchar16{0});
    }
}

}  // namespace
