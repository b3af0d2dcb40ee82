// Blocks for large pages: where they begin, and that all of them can be used.
#include "mox_xmlApi/platform/large_pages.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <new>

namespace {

using mox::AllocatePaged;
using mox::PagedBlock;

constexpr std::size_t kPage = std::size_t{2} << 20;

// Allocates, fills and frees the block. Returns how many bytes it has.
std::size_t SizeFor(std::size_t bytes) {
    const PagedBlock block = AllocatePaged(bytes);
    const auto size = static_cast<std::size_t>(block.end - block.begin);
    std::memset(block.begin, 1, size);
    ::operator delete(block.allocation);
    return size;
}

TEST(LargePages, SmallAndVeryLargeBlocksHaveTheSizeThatWasAskedFor) {
    for (const std::size_t bytes :
         {std::size_t{1}, std::size_t{4096}, kPage / 2 - 1, 2 * kPage + 1, 5 * kPage})
        EXPECT_EQ(SizeFor(bytes), bytes);
}

#if defined(__linux__)
TEST(LargePages, ABlockThatFillsMostOfAPageHasAllOfIt) {
    EXPECT_EQ(SizeFor(kPage / 2), kPage);
    EXPECT_EQ(SizeFor(kPage - 1), kPage);
    EXPECT_EQ(SizeFor(kPage), kPage);
    EXPECT_EQ(SizeFor(kPage + 1), kPage + 1);
    EXPECT_EQ(SizeFor(kPage + kPage / 2), 2 * kPage);
    EXPECT_EQ(SizeFor(2 * kPage), 2 * kPage);
}

TEST(LargePages, ABlockOfOneOrTwoPagesBeginsWithOne) {
    for (const std::size_t bytes : {kPage / 2, kPage, kPage + 4096, 2 * kPage}) {
        const PagedBlock block = AllocatePaged(bytes);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.begin) % kPage, 0U) << bytes;
        ::operator delete(block.allocation);
    }
}
#else
TEST(LargePages, ElsewhereEveryBlockHasTheSizeThatWasAskedFor) {
    for (const std::size_t bytes : {kPage / 2, kPage, 2 * kPage})
        EXPECT_EQ(SizeFor(bytes), bytes);
}
#endif

}  // namespace
