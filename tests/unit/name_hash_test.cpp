#include "mox_xmlApi/xml/name_hash.h"

#include <gtest/gtest.h>
#include <set>

#include "tests/unit/xml_support.h"

namespace mox {
namespace {

constexpr HashKey kKey{0x0123456789ABCDEF, 0xFEDCBA9876543211};

TEST(NameHash, EveryUnitOfANameCounts) {
    std::set<std::uint64_t> hashes;
    std::size_t names = 0;
    for (std::size_t length = 0; length <= 21; ++length) {
        WideString name(length, wchar16{'a'});
        hashes.insert(HashName(kKey, name));
        ++names;
        for (std::size_t i = 0; i < length; ++i) {
            for (const unsigned unit : {0U, 'b' + 0U, 0xFFFFU}) {
                WideString other = name;
                other[i] = static_cast<wchar16>(unit);
                hashes.insert(HashName(kKey, other));
                ++names;
            }
        }
    }
    EXPECT_EQ(hashes.size(), names);
}

TEST(NameHash, OrderOfTheUnitsCounts) {
    std::set<std::uint64_t> hashes;
    for (const char* name : {"ab", "ba", "abc", "acb", "bac", "abcd", "abdc", "abcdefgh", "efghabcd"})
        hashes.insert(HashName(kKey, test::Wide(name)));
    EXPECT_EQ(hashes.size(), 9U);
}

TEST(NameHash, EqualNamesHaveOneHashWhereverTheyLie) {
    const WideString text = test::Wide("xname and more");
    EXPECT_EQ(HashName(kKey, WideView(text).substr(1, 4)), HashName(kKey, "name"_w));
    EXPECT_EQ(HashName(kKey, WideView()), HashName(kKey, WideView(text).substr(3, 0)));
}

// Under another key other names share the lower bits of their hashes, which choose the place in a table.
TEST(NameHash, KeyDecidesWhichNamesShareAPlace) {
    constexpr std::uint64_t kMask = 0xFF;
    constexpr HashKey kOther{0x0123456789ABCDEF, 0xFEDCBA9876543213};
    const std::uint64_t place = HashName(kKey, test::Wide("key0")) & kMask;
    int together = 0;
    int stillTogether = 0;
    for (int i = 1; i < 20000; ++i) {
        const WideString name = test::Wide("key" + std::to_string(i));
        if ((HashName(kKey, name) & kMask) != place) continue;
        ++together;
        if ((HashName(kOther, name) & kMask) == (HashName(kOther, test::Wide("key0")) & kMask))
            ++stillTogether;
    }
    EXPECT_GT(together, 30);
    EXPECT_LT(stillTogether, together / 4);
}

TEST(RandomKey, IsTheSameInTheWholeProcessAndOdd) {
    const HashKey key = ProcessHashKey();
    EXPECT_EQ(ProcessHashKey().start, key.start);
    EXPECT_EQ(ProcessHashKey().multiplier, key.multiplier);
    EXPECT_EQ(key.multiplier & 1, 1U);
}

}  // namespace
}  // namespace mox
