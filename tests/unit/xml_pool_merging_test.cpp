// What becomes of free blocks that nothing asks for in their own size.
#include <algorithm>
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <vector>

#include "mox_xmlApi/xml/xml_pool.h"
#include "mox_xmlApi/xml/xml_text.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

class XmlPoolMerging : public testing::Test {
  protected:
    // Takes blocks of the size until the pool has taken so much from the system.
    std::vector<void*> TakeUntilHeld(std::size_t held, std::size_t bytes) {
        std::vector<void*> blocks;
        while (pool_.BytesHeld() < held)
            blocks.push_back(pool_.Allocate(bytes));
        return blocks;
    }

    void FreeAll(const std::vector<void*>& blocks, std::size_t bytes) {
        for (void* block : blocks)
            pool_.Free(block, bytes);
    }

    // How many blocks of the size the pool has without another slab.
    std::size_t CountBlocks(std::size_t bytes) {
        const std::size_t held = pool_.BytesHeld();
        for (std::size_t count = 0;; ++count) {
            pool_.Allocate(bytes);
            if (pool_.BytesHeld() > held) return count;
        }
    }

    test::OwnPool owner_;
    XmlPool& pool_ = *owner_;
};

TEST_F(XmlPoolMerging, LargerFreeBlockIsDividedBeforeAnotherSlabIsTaken) {
    auto* block = static_cast<unsigned char*>(pool_.Allocate(1024));
    while (pool_.BytesHeld() == XmlPool::kFirstSlab)
        pool_.Allocate(64);
    CountBlocks(64);  // the first of the next slab is taken
    const std::size_t held = pool_.BytesHeld();
    pool_.Free(block, 1024);
    std::set<void*> pieces;
    while (pool_.BytesHeld() == held)
        pieces.insert(pool_.Allocate(64));
    for (std::size_t offset = 0; offset < 1024; offset += 64)
        EXPECT_EQ(pieces.count(block + offset), 1U) << offset;
}

TEST_F(XmlPoolMerging, SmallestFreeBlockThatIsLargeEnoughIsDivided) {
    auto* large = static_cast<unsigned char*>(pool_.Allocate(2048));
    auto* small = static_cast<unsigned char*>(pool_.Allocate(512));
    CountBlocks(64);
    CountBlocks(64);
    while (pool_.BytesHeld() < 100000)
        pool_.Allocate(64);
    // Nothing is left but the rest of the last slab.
    pool_.Free(large, 2048);
    pool_.Free(small, 512);
    std::vector<void*> pieces;
    while (pieces.empty() || pieces.back() < small || pieces.back() >= small + 512) {
        pieces.push_back(pool_.Allocate(64));
        ASSERT_FALSE(pieces.back() >= large && pieces.back() < large + 2048);
        ASSERT_LT(pieces.size(), 2000U);
    }
}

TEST_F(XmlPoolMerging, NeighboursBecomeLargerBlocksInWhateverOrderTheyAreFreed) {
    enum class Order { Ascending, Descending, Random };
    for (const Order order : {Order::Ascending, Order::Descending, Order::Random}) {
        for (const std::size_t bytes : {8U, 16U, 40U, 256U, 320U, 1024U}) {
            const test::OwnPool pool;
            std::vector<void*> blocks;
            while (pool->BytesHeld() < 500000)
                blocks.push_back(pool->Allocate(bytes));
            const std::size_t held = pool->BytesHeld();
            if (order == Order::Descending) std::reverse(blocks.begin(), blocks.end());
            test::Random random(7);
            for (std::size_t i = blocks.size(); order == Order::Random && i > 1; --i)
                std::swap(blocks[i - 1], blocks[random.Below(i)]);
            for (void* block : blocks)
                pool->Free(block, bytes);
            // Most of the 500,000 bytes lie in seven slabs that have room for 16 of these blocks each. The last slab is
            // in use again before anything is merged, and its rest has room for 15.
            for (int i = 0; i < 6 * 16 + 15; ++i)
                pool->Allocate(4096);
            EXPECT_LE(pool->BytesHeld(), held) << bytes;
        }
    }
}

TEST_F(XmlPoolMerging, BlocksThatUsedOnesKeepApartAreNotMerged) {
    const std::vector<void*> blocks = TakeUntilHeld(500000, 64);
    for (std::size_t i = 0; i < blocks.size(); i += 2)
        pool_.Free(blocks[i], 64);
    const std::size_t held = pool_.BytesHeld();
    std::size_t taken = 0;
    while (pool_.BytesHeld() == held) {
        pool_.Allocate(128);
        ++taken;
    }
    // The rest of the last slab is all there is for them.
    EXPECT_LT(taken, 600U);
    for (std::size_t i = 1; i < blocks.size(); i += 2)
        pool_.Free(blocks[i], 64);
    const std::size_t now = pool_.BytesHeld();
    for (int i = 0; i < 3000; ++i)
        pool_.Allocate(128);
    EXPECT_LE(pool_.BytesHeld(), now);
}

TEST_F(XmlPoolMerging, SlabsThatAreFreeAsAWholeGoBackToTheSystem) {
    const std::vector<void*> blocks = TakeUntilHeld(2000000, 200);
    FreeAll(blocks, 200);
    EXPECT_GE(pool_.BytesHeld(), 2000000U);
    pool_.MergeIfMostlyFree();
    EXPECT_EQ(pool_.BytesHeld(), XmlPool::kFirstSlab);
    EXPECT_EQ(pool_.Allocate(200), blocks.front());
}

TEST_F(XmlPoolMerging, SlabsWithAUsedBlockStay) {
    const std::vector<void*> blocks = TakeUntilHeld(2000000, 200);
    // The smallest slab has 20 of them.
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (i % 10 == 0 || i + 1 == blocks.size()) {
            std::memset(blocks[i], static_cast<int>(i % 251), 200);
        } else {
            pool_.Free(blocks[i], 200);
        }
    }
    const std::size_t held = pool_.BytesHeld();
    pool_.MergeIfMostlyFree();
    EXPECT_EQ(pool_.BytesHeld(), held);
    for (std::size_t i = 0; i < blocks.size(); i += 10) {
        std::array<unsigned char, 200> expected;
        expected.fill(static_cast<unsigned char>(i % 251));
        ASSERT_EQ(std::memcmp(blocks[i], expected.data(), expected.size()), 0) << i;
    }
}

TEST_F(XmlPoolMerging, NothingIsMergedUnlessMoreThanHalfOfThePoolIsFree) {
    const std::vector<void*> blocks = TakeUntilHeld(1000000, 200);
    const std::size_t held = pool_.BytesHeld();
    for (std::size_t i = 0; i < blocks.size() * 2 / 5; ++i)
        pool_.Free(blocks[i], 200);
    pool_.MergeIfMostlyFree();
    EXPECT_EQ(pool_.BytesHeld(), held);
    for (std::size_t i = blocks.size() * 2 / 5; i < blocks.size() * 3 / 5; ++i)
        pool_.Free(blocks[i], 200);
    pool_.MergeIfMostlyFree();
    EXPECT_LT(pool_.BytesHeld(), held / 2);
}

TEST_F(XmlPoolMerging, SlabOfAnotherSizeThatIsFreeGoesBack) {
    std::vector<void*> blocks = {pool_.AllocateWithRoom(200, 300000)};
    const std::size_t held = pool_.BytesHeld();
    EXPECT_GE(held, 300000U);
    for (int i = 0; i < 1500; ++i)
        blocks.push_back(pool_.Allocate(200));
    EXPECT_EQ(pool_.BytesHeld(), held);
    FreeAll(blocks, 200);
    pool_.MergeIfMostlyFree();
    EXPECT_EQ(pool_.BytesHeld(), XmlPool::kFirstSlab);
}

TEST_F(XmlPoolMerging, LargeBlocksLieInTheRunsThatSmallOnesLeft) {
    const std::vector<void*> blocks = TakeUntilHeld(1000000, 1024);
    std::size_t runs = 0;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (i % 21 != 0) pool_.Free(blocks[i], 1024);
        if (i % 21 == 20) ++runs;
    }
    pool_.Allocate(5000);  // merges, and gives the smallest slabs back
    // Each run has 20,480 bytes, unless the end of a slab divides it.
    const std::size_t count = 1 + CountBlocks(5000);
    EXPECT_GT(count, 3 * runs);
    EXPECT_LE(count, 4 * runs + 4);
}

TEST_F(XmlPoolMerging, SlabGoesBackWithTheLargeBlockInIt) {
    void* large = pool_.AllocateWithRoom(200000, 100000);
    const std::size_t held = pool_.BytesHeld();
    void* small = pool_.Allocate(100);
    pool_.Free(large, 200000);
    pool_.MergeIfMostlyFree();
    EXPECT_EQ(pool_.BytesHeld(), held);
    // Merged, it has room for another large block.
    void* another = pool_.Allocate(199000);
    EXPECT_EQ(pool_.BytesHeld(), held);
    pool_.Free(another, 199000);
    pool_.Free(small, 100);
    pool_.MergeIfMostlyFree();
    EXPECT_EQ(pool_.BytesHeld(), XmlPool::kFirstSlab);
}

TEST_F(XmlPoolMerging, LargeBlocksGiveSmallSlabsBackThatNothingElseNeeds) {
    const std::vector<void*> blocks = TakeUntilHeld(2000000, 4096);
    FreeAll(blocks, 4096);
    pool_.Allocate(1000000);
    EXPECT_LT(pool_.BytesHeld(), 1000000U + 2 * XmlPool::kFirstSlab);
}

// The memory that values leave behind when they outgrow their blocks serves the larger blocks.
TEST_F(XmlPoolMerging, GrowingTextsTakeLittleMoreThanTheirSize) {
    constexpr std::size_t kTexts = 1000;
    constexpr std::size_t kLength = 2000;
    for (const std::size_t step : {10U, 100U}) {
        const test::OwnPool pool;
        std::vector<XmlText> texts(kTexts);
        const WideString units(kLength, wchar16{'x'});
        for (std::size_t length = step; length <= kLength; length += step) {
            for (XmlText& text : texts)
                text.Assign(*pool, WideView(units).substr(0, length));
        }
        EXPECT_LE(pool->BytesHeld(), kTexts * kLength * sizeof(wchar16) * 5 / 4) << step;
    }
}

TEST_F(XmlPoolMerging, GrowingTextsInRandomOrderTakeAtMostOneAndAHalfTimesTheirSize) {
    constexpr std::size_t kTexts = 1000;
    constexpr std::size_t kLength = 2000;
    for (const std::size_t step : {10U, 100U}) {
        const test::OwnPool pool;
        test::Random random(step);
        std::vector<XmlText> texts(kTexts);
        std::vector<XmlText*> growing;
        for (XmlText& text : texts)
            growing.push_back(&text);
        const WideString units(kLength, wchar16{'x'});
        while (!growing.empty()) {
            XmlText*& text = growing[random.Below(growing.size())];
            text->Assign(*pool, WideView(units).substr(0, text->View().size() + step));
            if (text->View().size() < kLength) continue;
            text = growing.back();
            growing.pop_back();
        }
        EXPECT_LE(pool->BytesHeld(), kTexts * kLength * sizeof(wchar16) * 3 / 2) << step;
    }
}

TEST_F(XmlPoolMerging, TheSameBlocksOverAndOverTakeAtMostASlabMoreThanTheFirstTime) {
    std::size_t first = 0;
    for (int round = 0; round < 40; ++round) {
        std::vector<std::pair<void*, std::size_t>> blocks;
        pool_.MergeIfMostlyFree();
        for (std::size_t i = 0; i < 5000; ++i) {
            const std::size_t bytes = 1 + i * 7919 % 3000;
            blocks.emplace_back(pool_.Allocate(bytes), bytes);
        }
        if (round == 0) first = pool_.BytesHeld();
        EXPECT_LE(pool_.BytesHeld(), first + XmlPool::kLargestSlab) << round;
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            const auto& [block, bytes] = blocks[(i * 7 + static_cast<std::size_t>(round)) % blocks.size()];
            pool_.Free(block, bytes);
        }
    }
}

#if defined(MOX_ADDRESS_SANITIZER)
bool IsForbidden(const unsigned char* memory, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
        if (!__asan_address_is_poisoned(memory + i)) return false;
    }
    return true;
}

TEST_F(XmlPoolMerging, MergedMemoryIsForbiddenUntilItIsTaken) {
    const std::vector<void*> blocks = TakeUntilHeld(300000, 64);
    void* kept = blocks.back();
    for (void* block : blocks) {
        if (block != kept) pool_.Free(block, 64);
    }
    pool_.MergeIfMostlyFree();
    // The first slab stays, and with it the first blocks: the head of the run may be read.
    const auto* first = static_cast<unsigned char*>(blocks.front());
    EXPECT_TRUE(IsForbidden(first + 16, 8000));
    auto* taken = static_cast<unsigned char*>(pool_.Allocate(4096));
    EXPECT_EQ(__asan_region_is_poisoned(taken, 4096), nullptr);
    EXPECT_FALSE(__asan_address_is_poisoned(kept));
}
#endif

}  // namespace
}  // namespace mox
