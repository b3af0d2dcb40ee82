// The pool of a document when the system gives it no more memory.
#include <cstring>
#include <gtest/gtest.h>
#include <new>
#include <utility>
#include <vector>

#include "mox_xmlApi/xml/xml_pool.h"
#include "tests/faults/failing_memory_support.h"

namespace faults {
namespace {

class FailingMemoryInPool : public testing::Test {
  protected:
    ~FailingMemoryInPool() override { mox::XmlPool::Destroy(&pool_); }

    struct Block {
        unsigned char* memory;
        std::size_t bytes;
        unsigned char mark;
    };

    void Take(std::size_t bytes) {
        const auto mark = static_cast<unsigned char>(blocks_.size());
        blocks_.push_back({static_cast<unsigned char*>(pool_.Allocate(bytes)), bytes, mark});
        std::memset(blocks_.back().memory, mark, bytes);
    }

    // Frees all blocks but every n-th.
    void FreeAllButOneIn(std::size_t n) {
        std::vector<Block> kept;
        kept.reserve(blocks_.capacity());  // the vector asks for no memory when there is none
        for (std::size_t i = 0; i < blocks_.size(); ++i) {
            if (i % n == 0) {
                kept.push_back(blocks_[i]);
            } else {
                pool_.Free(blocks_[i].memory, blocks_[i].bytes);
            }
        }
        blocks_ = std::move(kept);
    }

    void ExpectBlocksAreWhole() const {
        for (const Block& block : blocks_) {
            for (std::size_t i = 0; i < block.bytes; ++i)
                ASSERT_EQ(block.memory[i], block.mark);
        }
    }

    mox::XmlPool& pool_ = *mox::XmlPool::Create();
    std::vector<Block> blocks_;
};

TEST_F(FailingMemoryInPool, FreedNeighboursServeOtherSizesWithoutTheSystem) {
    while (pool_.BytesHeld() < 1000000)
        Take(64);
    FreeAllButOneIn(256);
    const std::size_t held = pool_.BytesHeld();
    std::size_t served = 0;
    FailingMemory memory(1, Failing::FromThenOn);
    try {
        for (;; served += 1024)
            Take(1024);
    } catch (const std::bad_alloc&) {
        memory.Stop();
    }
    EXPECT_LE(pool_.BytesHeld(), held);
    EXPECT_GT(served, held * 9 / 10);
    ExpectBlocksAreWhole();
}

TEST_F(FailingMemoryInPool, RefusalAfterFreeNeighboursWereMergedLeavesAllBlocksAsTheyWere) {
    while (pool_.BytesHeld() < 1000000)
        Take(600);
    FreeAllButOneIn(2);
    const std::size_t held = pool_.BytesHeld();
    for (const std::size_t bytes : {1000U, 4096U, 5000U, 100000U}) {
        FailingMemory memory(1, Failing::FromThenOn);
        bool isRefused = false;
        // What is left of the last slab may serve the first ones.
        for (int i = 0; i < 1000 && !isRefused; ++i) {
            try {
                Take(bytes);
            } catch (const std::bad_alloc&) {
                isRefused = true;
            }
        }
        memory.Stop();
        EXPECT_TRUE(isRefused) << bytes;
        EXPECT_EQ(pool_.BytesHeld(), held);
    }
    ExpectBlocksAreWhole();
    for (const std::size_t bytes : {600U, 1000U, 4096U, 5000U, 100000U})
        Take(bytes);
    ExpectBlocksAreWhole();
}

TEST_F(FailingMemoryInPool, WhatCanBeDoneWithoutIsNullAndNoException) {
    FailingMemory memory(1, Failing::FromThenOn);
    EXPECT_EQ(pool_.TryAllocate(100000), nullptr);
    EXPECT_NE(pool_.TryAllocate(1000), nullptr);
    memory.Stop();
}

}  // namespace
}  // namespace faults
