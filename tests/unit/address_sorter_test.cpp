#include "mox_xmlApi/xml/address_sorter.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

#include "tests/unit/xml_support.h"

namespace mox {
namespace {

struct Block {
    Block* next;
};

// The positions in `blocks` of what the sorter gives for blocks that are added in this order.
std::vector<std::size_t> Sorted(std::vector<Block>& blocks, const std::vector<std::size_t>& order) {
    AddressSorter<Block> sorter;
    for (const std::size_t i : order)
        sorter.Add(&blocks[i]);
    std::vector<std::size_t> sorted;
    for (const Block* block = sorter.Finish(); block != nullptr; block = block->next)
        sorted.push_back(static_cast<std::size_t>(block - blocks.data()));
    return sorted;
}

std::vector<std::size_t> Ascending(std::size_t count) {
    std::vector<std::size_t> order(count);
    for (std::size_t i = 0; i < count; ++i)
        order[i] = i;
    return order;
}

std::vector<std::size_t> Descending(std::size_t count) {
    std::vector<std::size_t> order = Ascending(count);
    std::reverse(order.begin(), order.end());
    return order;
}

void Shuffle(std::vector<std::size_t>& order, test::Random& random) {
    for (std::size_t i = order.size(); i > 1; --i)
        std::swap(order[i - 1], order[random.Below(i)]);
}

TEST(AddressSorter, NothingGivesNoList) {
    AddressSorter<Block> sorter;
    EXPECT_EQ(sorter.Finish(), nullptr);
}

TEST(AddressSorter, EveryOrderOfUpToSevenBlocksIsSorted) {
    for (std::size_t count = 1; count <= 7; ++count) {
        std::vector<Block> blocks(count);
        std::vector<std::size_t> order = Ascending(count);
        do {
            ASSERT_EQ(Sorted(blocks, order), Descending(count)) << testing::PrintToString(order);
        } while (std::next_permutation(order.begin(), order.end()));
    }
}

TEST(AddressSorter, RandomOrdersOfManyBlocksAreSorted) {
    test::Random random(1);
    for (std::size_t count = 8; count < 20000; count = count * 3 / 2) {
        std::vector<Block> blocks(count);
        std::vector<std::size_t> order = Ascending(count);
        Shuffle(order, random);
        ASSERT_EQ(Sorted(blocks, order), Descending(count)) << count;
    }
}

TEST(AddressSorter, SequencesOfAllLengthsAndDirectionsAreSorted) {
    test::Random random(2);
    for (int round = 0; round < 100; ++round) {
        std::vector<Block> blocks(1 + random.Below(3000));
        std::vector<std::size_t> order;
        // Each sequence takes every n-th of the blocks that are left, forwards or backwards.
        std::vector<std::size_t> left = Ascending(blocks.size());
        while (!left.empty()) {
            const std::size_t step = 1 + random.Below(5);
            std::vector<std::size_t> sequence;
            std::vector<std::size_t> others;
            for (std::size_t i = 0; i < left.size(); ++i)
                (i % step == 0 ? sequence : others).push_back(left[i]);
            if (random.OneIn(2)) std::reverse(sequence.begin(), sequence.end());
            order.insert(order.end(), sequence.begin(), sequence.end());
            left = others;
        }
        ASSERT_EQ(Sorted(blocks, order), Descending(blocks.size())) << round;
    }
}

TEST(AddressSorter, IsEmptyAfterItWasFinished) {
    std::vector<Block> blocks(3);
    AddressSorter<Block> sorter;
    sorter.Add(&blocks[1]);
    sorter.Add(&blocks[2]);
    EXPECT_EQ(sorter.Finish(), &blocks[2]);
    EXPECT_EQ(sorter.Finish(), nullptr);
    sorter.Add(&blocks[0]);
    EXPECT_EQ(sorter.Finish(), &blocks[0]);
    EXPECT_EQ(blocks[0].next, nullptr);
}

}  // namespace
}  // namespace mox
