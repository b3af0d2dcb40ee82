// The fast copy compared with the one that copies single units.
#include "mox_xmlApi/platform/copy_units.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

#include "mox_xmlApi/xml/xml_entities.h"
#include "tests/unit/page_end.h"

namespace {

using mox::CopyUntil;
using mox::CopyUntilScalar;
using mox::kMarkup;
using mox::WideView;

template <class Unit>
class CopyUnitsTest : public testing::Test {};
using OutputUnits = testing::Types<wchar16, char>;
TYPED_TEST_SUITE(CopyUnitsTest, OutputUnits);

// The copied units and, after them, the units that must not change.
template <class Unit, class Copy>
std::vector<Unit> Copied(Copy copy, WideView text, std::size_t& count) {
    std::vector<Unit> to(text.size() + 1, Unit{'#'});
    count = static_cast<std::size_t>(copy(to.data(), text));
    EXPECT_EQ(to.back(), Unit{'#'});
    to.resize(count);
    return to;
}

TYPED_TEST(CopyUnitsTest, CopiesAllUnitsAtEveryLengthAndAlignment) {
    const auto copy = [](TypeParam* to, WideView text) { return mox::CopyUnits(to, text) - to; };
    for (std::size_t alignment = 0; alignment < 9; ++alignment) {
        for (std::size_t length = 0; length < 36; ++length) {
            std::vector<wchar16> units(alignment + length);
            for (std::size_t i = 0; i < units.size(); ++i)
                units[i] = static_cast<wchar16>(0xFE21 + 259 * i);
            const WideView text(units.data() + alignment, length);
            std::size_t count = 0;
            const std::vector<TypeParam> copied = Copied<TypeParam>(copy, text, count);
            ASSERT_EQ(count, length);
            for (std::size_t i = 0; i < length; ++i)
                ASSERT_EQ(copied[i], static_cast<TypeParam>(text[i])) << i;
        }
    }
}

TYPED_TEST(CopyUnitsTest, StopsAtTheSameUnitAsThePlainCopyAtEveryLengthPositionAndAlignment) {
    constexpr std::size_t kMost = 36;
    const auto fast = [](TypeParam* to, WideView text) { return CopyUntil<kMarkup>(to, text); };
    const auto plain = [](TypeParam* to, WideView text) { return CopyUntilScalar<kMarkup>(to, text); };
    for (std::size_t alignment = 0; alignment < 9; ++alignment) {
        for (std::size_t length = 0; length < kMost; ++length) {
            for (std::size_t place = 0; place <= length; ++place) {
                std::vector<wchar16> units(alignment + length);
                for (std::size_t i = 0; i < length; ++i)
                    units[alignment + i] = static_cast<wchar16>('a' + i % 26);
                if (place < length) units[alignment + place] = '<';
                const WideView text(units.data() + alignment, length);
                std::size_t count = 0;
                std::size_t plainCount = 0;
                ASSERT_EQ(Copied<TypeParam>(fast, text, count), Copied<TypeParam>(plain, text, plainCount));
                ASSERT_EQ(count, place);
                ASSERT_EQ(plainCount, place);
            }
        }
    }
}

TYPED_TEST(CopyUnitsTest, StopsAtTheFiveCharactersWithAnEntityAndAtNoOther) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        bool hasEntity = false;
        for (const mox::XmlEntity& entity : mox::kXmlEntities)
            hasEntity = hasEntity || entity.character == unit;
        const std::vector<wchar16> units(8, static_cast<wchar16>(unit));
        TypeParam to[8] = {};
        const std::size_t copied = CopyUntil<kMarkup>(to, WideView(units.data(), units.size()));
        ASSERT_EQ(copied, hasEntity ? 0U : 8U) << unit;
        const std::size_t half = CopyUntil<kMarkup>(to, WideView(units.data(), 4));
        ASSERT_EQ(half, hasEntity ? 0U : 4U) << unit;
        ASSERT_EQ(to[7], hasEntity ? TypeParam{} : static_cast<TypeParam>(unit)) << unit;
    }
}

TYPED_TEST(CopyUnitsTest, ReadsAndWritesNothingPastTheEndOfAPage) {
    const mox::test::PageEnd<wchar16> from;
    const mox::test::PageEnd<TypeParam> to;
    for (std::size_t length = 0; length < 36; ++length) {
        std::fill_n(from.Last(length), length, wchar16{'x'});
        const WideView text(from.Last(length), length);
        ASSERT_EQ(mox::CopyUnits(to.Last(length), text), to.Last(0));
        ASSERT_EQ(CopyUntil<kMarkup>(to.Last(length), text), length);
    }
}

}  // namespace
