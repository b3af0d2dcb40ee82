#include "mox_xmlApi/xml/xml_pool.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "tests/unit/xml_support.h"

namespace mox {
namespace {

TEST(XmlPool, FreshPoolHoldsOneSlab) {
    const test::OwnPool pool;
    EXPECT_EQ(pool->BytesHeld(), XmlPool::kFirstSlab);
}

TEST(XmlPool, DestroyAcceptsNull) {
    XmlPool::Destroy(nullptr);
    SUCCEED();
}

TEST(XmlPool, FreeAcceptsNullOfAnySize) {
    const test::OwnPool pool;
    pool->Free(nullptr, 0);
    pool->Free(nullptr, 8);
    pool->Free(nullptr, 1 << 20);
    EXPECT_EQ(pool->BytesHeld(), XmlPool::kFirstSlab);
}

TEST(XmlPool, BlocksAreAlignedForPointers) {
    const test::OwnPool pool;
    for (std::size_t bytes = 0; bytes < 6000; ++bytes) {
        const auto address = reinterpret_cast<std::uintptr_t>(pool->Allocate(bytes));
        ASSERT_EQ(address % 8, 0U) << bytes;
    }
}

TEST(XmlPool, BlocksOfNoBytesAreDistinct) {
    const test::OwnPool pool;
    EXPECT_NE(pool->Allocate(0), pool->Allocate(0));
}

TEST(XmlPool, CommittedScratchTakesWhatWasUsedOfIt) {
    const test::OwnPool pool;
    void* scratch = pool->ReserveScratch();
    std::memset(scratch, 7, XmlPool::kScratchSize);
    void* committed = pool->CommitScratch(20);
    EXPECT_EQ(committed, scratch);
    auto* next = static_cast<unsigned char*>(pool->Allocate(8));
    EXPECT_EQ(next, static_cast<unsigned char*>(committed) + 24);
    std::memset(next, 9, 8);
    EXPECT_EQ(static_cast<unsigned char*>(committed)[19], 7);
}

TEST(XmlPool, ScratchThatIsNotCommittedStaysFree) {
    const test::OwnPool pool;
    void* scratch = pool->ReserveScratch();
    EXPECT_EQ(pool->ReserveScratch(), scratch);
    EXPECT_EQ(pool->Allocate(40), scratch);
}

TEST(XmlPool, CommittedScratchMovesToAFreeBlockOfItsClass) {
    const test::OwnPool pool;
    void* returned = pool->Allocate(24);
    pool->Free(returned, 24);
    void* scratch = pool->ReserveScratch();
    std::memset(scratch, 7, 24);
    EXPECT_EQ(pool->CommitScratch(24), returned);
    EXPECT_EQ(static_cast<unsigned char*>(returned)[0], 7);
    EXPECT_EQ(static_cast<unsigned char*>(returned)[23], 7);
    EXPECT_EQ(pool->Allocate(40), scratch);
}

TEST(XmlPool, WholeScratchCanBeCommittedAgainAndAgain) {
    const test::OwnPool pool;
    std::vector<unsigned char*> blocks;
    for (unsigned char mark = 0; mark < 250; ++mark) {
        blocks.push_back(static_cast<unsigned char*>(pool->ReserveScratch()));
        std::memset(blocks.back(), mark, XmlPool::kScratchSize);
        ASSERT_EQ(pool->CommitScratch(XmlPool::kScratchSize), blocks.back());
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        ASSERT_EQ(blocks[i][0], i);
        ASSERT_EQ(blocks[i][XmlPool::kScratchSize - 1], i);
    }
}

TEST(XmlPool, EveryByteOfABlockIsItsOwn) {
    const test::OwnPool pool;
    struct Block {
        unsigned char* memory;
        std::size_t bytes;
        unsigned char mark;
    };
    std::vector<Block> blocks;
    for (std::size_t i = 0; i < 400; ++i) {
        const std::size_t bytes = XmlPool::BlockSize(i * 13 % 5000);
        const auto mark = static_cast<unsigned char>(i * 7 + 1);
        blocks.push_back({static_cast<unsigned char*>(pool->Allocate(bytes)), bytes, mark});
        std::memset(blocks.back().memory, mark, bytes);
    }
    for (const Block& block : blocks) {
        for (std::size_t i = 0; i < block.bytes; ++i)
            ASSERT_EQ(block.memory[i], block.mark) << block.bytes << " at " << i;
    }
}

TEST(XmlPool, BlockSizeCoversWhatWasAskedForAndStaysInItsClass) {
    for (std::size_t bytes = 0; bytes <= 5000; ++bytes) {
        const std::size_t size = XmlPool::BlockSize(bytes);
        ASSERT_GE(size, bytes);
        ASSERT_EQ(XmlPool::BlockSize(size), size) << bytes;
        ASSERT_LE(size, bytes + 8 + bytes / 4) << bytes;
    }
}

TEST(XmlPool, BlockSizesAtTheEdgesOfTheClasses) {
    EXPECT_EQ(XmlPool::BlockSize(0), 8U);
    EXPECT_EQ(XmlPool::BlockSize(1), 8U);
    EXPECT_EQ(XmlPool::BlockSize(8), 8U);
    EXPECT_EQ(XmlPool::BlockSize(9), 16U);
    EXPECT_EQ(XmlPool::BlockSize(256), 256U);
    EXPECT_EQ(XmlPool::BlockSize(257), 320U);
    EXPECT_EQ(XmlPool::BlockSize(320), 320U);
    EXPECT_EQ(XmlPool::BlockSize(321), 384U);
    EXPECT_EQ(XmlPool::BlockSize(512), 512U);
    EXPECT_EQ(XmlPool::BlockSize(513), 640U);
    EXPECT_EQ(XmlPool::BlockSize(4095), 4096U);
    EXPECT_EQ(XmlPool::BlockSize(4096), 4096U);
    EXPECT_EQ(XmlPool::BlockSize(4097), 4097U);
}

TEST(XmlPool, ReturnedBlockIsTheNextOneOfItsClass) {
    const test::OwnPool pool;
    for (const std::size_t bytes : {std::size_t{1}, std::size_t{40}, std::size_t{256}, std::size_t{257}}) {
        void* block = pool->Allocate(bytes);
        pool->Allocate(bytes);
        pool->Free(block, bytes);
        EXPECT_EQ(pool->Allocate(bytes), block) << bytes;
    }
}

TEST(XmlPool, BlockReturnedByItsWholeSizeIsFoundByTheSizeAskedFor) {
    const test::OwnPool pool;
    void* block = pool->Allocate(1000);
    pool->Free(block, XmlPool::BlockSize(1000));
    EXPECT_EQ(pool->Allocate(1000), block);
}

TEST(XmlPool, ReturnedBlockServesNoOtherClassWhileThereIsUnusedMemory) {
    const test::OwnPool pool;
    void* block = pool->Allocate(64);
    pool->Free(block, 64);
    EXPECT_NE(pool->Allocate(56), block);
    EXPECT_NE(pool->Allocate(72), block);
    EXPECT_EQ(pool->Allocate(64), block);
}

TEST(XmlPool, SmallAndLargerBlocksComeFromDifferentEndsOfTheUnusedMemory) {
    const test::OwnPool pool;
    pool->AllocateWithRoom(8, 20000);
    auto* firstSmall = static_cast<unsigned char*>(pool->Allocate(256));
    auto* firstLarger = static_cast<unsigned char*>(pool->Allocate(257));
    EXPECT_EQ(pool->Allocate(8), firstSmall + 256);
    EXPECT_EQ(pool->Allocate(4096), firstLarger - 4096);
    EXPECT_GT(firstLarger, firstSmall + 10000);
}

TEST(XmlPool, TakingAndReturningDoesNotGrowThePool) {
    const test::OwnPool pool;
    std::vector<void*> blocks;
    std::size_t held = 0;
    for (int round = 0; round < 50; ++round) {
        for (std::size_t bytes = 1; bytes < 6000; bytes += 37)
            blocks.push_back(pool->Allocate(bytes));
        if (round == 0) held = pool->BytesHeld();
        EXPECT_EQ(pool->BytesHeld(), held);
        for (std::size_t bytes = 1, i = 0; bytes < 6000; bytes += 37, ++i)
            pool->Free(blocks[i], bytes);
        blocks.clear();
    }
}

TEST(XmlPool, SlabsGrowUntilTheyHave64KiBForBlocks) {
    constexpr std::size_t kHead = 24;
    const test::OwnPool pool;
    std::size_t before = pool->BytesHeld();
    std::vector<std::size_t> slabs;
    for (int i = 0; i < 20000; ++i) {
        pool->Allocate(48);
        if (pool->BytesHeld() != before) slabs.push_back(pool->BytesHeld() - before);
        before = pool->BytesHeld();
    }
    ASSERT_GE(slabs.size(), 6U);
    EXPECT_EQ(slabs[0], 4096 + kHead);
    EXPECT_EQ(slabs[1], 8192 + kHead);
    EXPECT_EQ(slabs[2], 16384 + kHead);
    EXPECT_EQ(slabs[3], 32768 + kHead);
    for (std::size_t i = 4; i < slabs.size(); ++i)
        EXPECT_EQ(slabs[i], 65536 + kHead) << i;
}

TEST(XmlPool, SlabHasRoomFor16BlocksOfTheLargestClass) {
    const test::OwnPool pool;
    for (std::size_t held = pool->BytesHeld(); pool->BytesHeld() < held + 65536;)
        pool->Allocate(4096);
    const std::size_t held = pool->BytesHeld();
    for (int i = 1; i < 16; ++i)
        pool->Allocate(4096);
    EXPECT_EQ(pool->BytesHeld(), held);
    pool->Allocate(4096);
    EXPECT_GT(pool->BytesHeld(), held);
}

TEST(XmlPool, RoomServesSmallBlocksWithoutGrowing) {
    const test::OwnPool pool;
    pool->AllocateWithRoom(8, 200000);
    const std::size_t held = pool->BytesHeld();
    EXPECT_GE(held, XmlPool::kFirstSlab + 200000);
    EXPECT_LE(held, XmlPool::kFirstSlab + 200100);
    auto* first = static_cast<unsigned char*>(pool->Allocate(200));
    for (std::size_t i = 1; i < 1000; ++i)
        EXPECT_EQ(pool->Allocate(200), first + 200 * i);
    EXPECT_EQ(pool->BytesHeld(), held);
}

TEST(XmlPool, RoomThatIsThereTakesNothing) {
    const test::OwnPool pool;
    pool->AllocateWithRoom(0, 0);
    pool->AllocateWithRoom(8, 1000);
    pool->AllocateWithRoom(300, 700);
    EXPECT_EQ(pool->BytesHeld(), XmlPool::kFirstSlab);
}

TEST(XmlPool, RoomOfAnOddSizeKeepsBlocksAligned) {
    const test::OwnPool pool;
    pool->AllocateWithRoom(5001, 100001);
    for (int i = 0; i < 3000; ++i)
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(pool->Allocate(40)) % 8, 0U);
}

TEST(XmlPool, RoomBeyondEveryAddressIsRefusedAndChangesNothing) {
    const test::OwnPool pool;
    void* block = pool->Allocate(16);
    for (const std::size_t below : {0U, 6U, 7U, 8U, 14U, 15U, 31U}) {
        const std::size_t tooMuch = std::numeric_limits<std::size_t>::max() - below;
        EXPECT_THROW(pool->AllocateWithRoom(16, tooMuch), std::bad_alloc) << below;
        EXPECT_THROW(pool->AllocateWithRoom(tooMuch, 16), std::bad_alloc) << below;
        EXPECT_THROW(pool->AllocateWithRoom(tooMuch / 2, tooMuch / 2), std::bad_alloc) << below;
    }
    EXPECT_EQ(pool->BytesHeld(), XmlPool::kFirstSlab);
    pool->Free(block, 16);
    EXPECT_EQ(pool->Allocate(16), block);
}

TEST(XmlPool, RestOfASlabServesBlocksOnceTheNextSlabIsFull) {
    const test::OwnPool pool;
    auto* first = static_cast<unsigned char*>(pool->Allocate(128));
    pool->AllocateWithRoom(8, XmlPool::kFirstSlab);  // makes a second slab
    const std::size_t held = pool->BytesHeld();
    EXPECT_GT(held, XmlPool::kFirstSlab);
    for (std::size_t bytes = 0; bytes < XmlPool::kFirstSlab; bytes += 128)
        pool->Allocate(128);
    // The rest of the first one was cut into a few blocks, so that not all of it can be used for these.
    const std::size_t rest = XmlPool::kFirstSlab - sizeof(XmlPool) - 128;
    for (std::size_t i = 0; i < rest / 128 - 1; ++i) {
        auto* block = static_cast<unsigned char*>(pool->Allocate(128));
        EXPECT_GE(block, first + 128);
        EXPECT_LE(block, first + rest);
    }
    EXPECT_EQ(pool->BytesHeld(), held);
}

TEST(XmlPool, LargeBlockAndItsRoomLieInOnePieceOfExactlyTheirSize) {
    constexpr std::size_t kHeads = 24 + 32;  // of the slab, and of the large block
    const test::OwnPool pool;
    auto* large = static_cast<unsigned char*>(pool->AllocateWithRoom(100000, 4096));
    const std::size_t held = pool->BytesHeld();
    EXPECT_EQ(held, XmlPool::kFirstSlab + kHeads + 100000 + 4096);
    std::memset(large, 1, 100000);
    auto* small = static_cast<unsigned char*>(pool->Allocate(4096));
    std::memset(small, 2, 4096);
    EXPECT_EQ(small, large + 100000);
    EXPECT_EQ(pool->BytesHeld(), held);
    EXPECT_EQ(large[99999], 1);
    // Given back, it serves smaller blocks.
    pool->Free(large, 100000);
    for (int i = 0; i < 20; ++i)
        std::memset(pool->Allocate(4096), 3, 4096);
    EXPECT_EQ(pool->BytesHeld(), held);
    EXPECT_EQ(small[4095], 2);
}

TEST(XmlPool, RoomOfLargePagesIsAllUsable) {
    for (const std::size_t bytes :
         {std::size_t{1} << 20, std::size_t{1500000}, std::size_t{2} << 20, std::size_t{2200000}}) {
        const test::OwnPool pool;
        pool->AllocateWithRoom(8, bytes);
        const std::size_t held = pool->BytesHeld();
        EXPECT_GE(held, XmlPool::kFirstSlab + bytes);
        for (std::size_t used = 0; used + 4096 <= bytes; used += 4096)
            std::memset(pool->Allocate(4096), 1, 4096);
        EXPECT_EQ(pool->BytesHeld(), held);
    }
}

TEST(XmlPool, LargeBlockGoesBackToTheSystemAlone) {
    const test::OwnPool pool;
    void* first = pool->Allocate(100000);
    void* second = pool->Allocate(200000);
    void* third = pool->Allocate(4097);
    std::memset(first, 1, 100000);
    std::memset(second, 2, 200000);
    std::memset(third, 3, 4097);
    const std::size_t held = pool->BytesHeld();
    pool->Free(second, 200000);
    EXPECT_LE(pool->BytesHeld(), held - 200000);
    pool->Free(third, 4097);
    pool->Free(first, 100000);
    EXPECT_EQ(pool->BytesHeld(), XmlPool::kFirstSlab);
}

TEST(XmlPool, LargeBlocksStillHeldGoWithThePool) {
    // The leak checker of a sanitizer build sees what stays behind.
    const test::OwnPool pool;
    void* first = pool->Allocate(50000);
    pool->Allocate(60000);
    pool->Allocate(70000);
    pool->Free(first, 50000);
    EXPECT_GE(pool->BytesHeld(), XmlPool::kFirstSlab + 60000U + 70000U);
}

TEST(XmlPool, BlockBeyondEveryAddressIsRefusedAndChangesNothing) {
    const test::OwnPool pool;
    void* block = pool->Allocate(16);
    EXPECT_THROW(pool->Allocate(std::numeric_limits<std::size_t>::max()), std::bad_alloc);
    EXPECT_THROW(pool->Allocate(std::numeric_limits<std::size_t>::max() - 31), std::bad_alloc);
    EXPECT_EQ(pool->BytesHeld(), XmlPool::kFirstSlab);
    pool->Free(block, 16);
    EXPECT_EQ(pool->Allocate(16), block);
}

TEST(XmlPool, NewMakesAnObjectAndDeleteGivesItBack) {
    struct Pair {
        std::int64_t first;
        std::int64_t second;
    };
    const test::OwnPool pool;
    Pair* pair = pool->New<Pair>(std::int64_t{3}, std::int64_t{4});
    EXPECT_EQ(pair->first, 3);
    EXPECT_EQ(pair->second, 4);
    pool->Delete(pair);
    EXPECT_EQ(pool->New<Pair>(), pair);
    EXPECT_EQ(pair->first, 0);
}

TEST(XmlPool, BlocksOfAllSizesInAnyOrderKeepTheirBytes) {
    test::Random random(1);
    const test::OwnPool pool;
    struct Block {
        unsigned char* memory;
        std::size_t bytes;
        unsigned char mark;
    };
    std::vector<Block> blocks;
    for (int step = 0; step < 20000; ++step) {
        if (blocks.size() < 200 && !random.OneIn(3)) {
            const std::size_t bytes = 1 + random.Below(random.OneIn(10) ? 9000 : 400);
            const auto mark = static_cast<unsigned char>(random.Below(256));
            auto* memory = static_cast<unsigned char*>(pool->Allocate(bytes));
            std::memset(memory, mark, bytes);
            blocks.push_back({memory, bytes, mark});
        } else if (!blocks.empty()) {
            const std::size_t i = random.Below(blocks.size());
            const Block block = blocks[i];
            for (std::size_t j = 0; j < block.bytes; ++j)
                ASSERT_EQ(block.memory[j], block.mark) << step;
            pool->Free(block.memory, block.bytes);
            blocks[i] = blocks.back();
            blocks.pop_back();
        }
    }
    EXPECT_LT(pool->BytesHeld(), 2U << 20);
}

#if defined(MOX_ADDRESS_SANITIZER)
TEST(XmlPool, ReturnedBlockIsForbiddenUntilItIsTakenAgain) {
    const test::OwnPool pool;
    void* block = pool->Allocate(40);
    EXPECT_FALSE(__asan_address_is_poisoned(block));
    pool->Free(block, 40);
    EXPECT_TRUE(__asan_address_is_poisoned(block));
    EXPECT_EQ(pool->Allocate(40), block);
    EXPECT_FALSE(__asan_address_is_poisoned(block));
}

TEST(XmlPool, RestOfASlabIsForbidden) {
    const test::OwnPool pool;
    auto* block = static_cast<unsigned char*>(pool->Allocate(40));
    EXPECT_TRUE(__asan_address_is_poisoned(block + 40));
}
#endif

}  // namespace
}  // namespace mox
