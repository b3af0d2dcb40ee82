#include "mox_xmlApi/platform/wide_text.h"

#include <gtest/gtest.h>

namespace {

using mox::SameText;
using mox::WideString;
using mox::WideView;

TEST(SameText, HoldsForCopiesOfEveryLength) {
    for (std::size_t length = 0; length < 40; ++length) {
        const WideString one(length, wchar16{0x0141});
        const WideString other = one;
        EXPECT_TRUE(SameText(one, other)) << length;
        EXPECT_FALSE(SameText(one, other + wchar16{0x0141})) << length;
        EXPECT_FALSE(SameText(other + wchar16{0}, one)) << length;
    }
}

TEST(SameText, SeesADifferenceInEitherByteAtEveryPlace) {
    for (std::size_t length = 1; length < 40; ++length) {
        const WideString text(length, wchar16{0x0141});
        for (std::size_t place = 0; place < length; ++place) {
            for (const wchar16 unit : {wchar16{0x0140}, wchar16{0x8141}, wchar16{0}}) {
                WideString changed = text;
                changed[place] = unit;
                ASSERT_FALSE(SameText(text, changed)) << length << ' ' << place;
                ASSERT_FALSE(SameText(changed, text)) << length << ' ' << place;
            }
        }
    }
}

TEST(SameText, LooksAtTheTextsAlone) {
    const WideString text = {'a', 'b', 'c', 'd', 'e', 'f'};
    const WideString other = {'x', 'b', 'c', 'd', 'x', 'x'};
    for (std::size_t length = 0; length < 4; ++length)
        EXPECT_TRUE(SameText(WideView(text).substr(1, length), WideView(other).substr(1, length))) << length;
    EXPECT_TRUE(SameText(WideView(), WideView(text).substr(2, 0)));
}

}  // namespace
