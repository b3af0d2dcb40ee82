// The fast searches compared with those that examine single units.
#include "mox_xmlApi/platform/scan.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <vector>

#include "tests/unit/page_end.h"

namespace {

using mox::FindAnyOf;
using mox::FindAnyOfScalar;
using mox::UnitPattern;

constexpr std::array<UnitPattern, 2> kMarkup = {{{0x04, wchar16{'&'}}, {0, wchar16{'<'}}}};

TEST(Scan, MatchesTheUnitsOfEachPatternAlone) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const bool isMarkup = unit == '"' || unit == '&' || unit == '<';
        ASSERT_EQ(mox::MatchesAny<kMarkup>(static_cast<wchar16>(unit)), isMarkup) << unit;
    }
}

TEST(Scan, FindsWhatTheScalarSearchFindsAtEveryPlaceAndAlignment) {
    constexpr std::size_t kMost = 40;
    for (const wchar16 stop : {wchar16{'<'}, wchar16{'&'}, wchar16{'"'}}) {
        for (std::size_t alignment = 0; alignment < 9; ++alignment) {
            for (std::size_t length = 0; length < kMost; ++length) {
                std::vector<wchar16> units(alignment + length + 1 + mox::kScanAhead, wchar16{'x'});
                units[alignment + length] = stop;
                wchar16* text = units.data() + alignment;
                ASSERT_EQ(FindAnyOf<kMarkup>(text), text + length);
                ASSERT_EQ(FindAnyOfScalar<kMarkup>(text), text + length);
            }
        }
    }
}

TEST(Scan, CountsUpToAUnitAsTheScalarCountDoesAtEveryPlaceAndAlignment) {
    constexpr std::size_t kMost = 40;
    for (const wchar16 searched : {wchar16{0}, wchar16{'\n'}}) {
        // Either byte of a unit may be that of the searched unit without the units being equal.
        const auto lowByte = static_cast<wchar16>(0x0100 | searched);
        const auto highByte = static_cast<wchar16>(searched << 8 | 0xFF);
        for (std::size_t alignment = 0; alignment < 9; ++alignment) {
            for (std::size_t count = 0; count < kMost; ++count) {
                for (std::size_t place = 0; place <= count; ++place) {
                    std::vector<wchar16> units(alignment + count, lowByte);
                    for (std::size_t i = alignment; i < units.size(); i += 2)
                        units[i] = highByte;
                    if (place < count) units[alignment + place] = searched;
                    ASSERT_EQ(mox::CountBefore(searched, units.data() + alignment, count), place);
                    ASSERT_EQ(mox::CountBeforeScalar(searched, units.data() + alignment, count), place);
                }
            }
        }
    }
}

TEST(Scan, TakesTheFirstOfSeveral) {
    std::vector<wchar16> units = {'a', '&', '<', '"', 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(FindAnyOf<kMarkup>(units.data()), units.data() + 1);
    EXPECT_EQ(FindAnyOf<kMarkup>(units.data() + 2), units.data() + 2);
}

TEST(Scan, PassesOverUnitsThatShareOneByteWithAStop) {
    std::vector<wchar16> units = {0x3C00, 0x263C, 0x0126, 0xFF22, 0xFFFF, 0x8000, 0x003D, 0,
                                  0x003C, 0,      0,      0,      0,      0,      0,      0};
    EXPECT_EQ(FindAnyOf<kMarkup>(units.data()), units.data() + 8);
}

TEST(Scan, ReadsNothingPastTheEndOfAPage) {
    const mox::test::PageEnd<wchar16> page;
    for (std::size_t length = 0; length < 40; ++length) {
        wchar16* text = page.Last(length + 1 + mox::kScanAhead);
        std::fill_n(text, length + 1 + mox::kScanAhead, wchar16{'x'});
        text[length] = '<';
        ASSERT_EQ(FindAnyOf<kMarkup>(text), text + length);
        ASSERT_EQ(mox::CountBefore('#', page.Last(length), length), length);
    }
}

}  // namespace
