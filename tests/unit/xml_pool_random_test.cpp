// Random use of a pool beside a plain model of it: the intervals of memory that are in use.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <vector>

#include "mox_xmlApi/xml/xml_pool.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

class PoolModel {
  public:
    explicit PoolModel(std::uint64_t seed) : random_(seed) {}

    std::size_t Count() const { return blocks_.size(); }
    std::size_t BytesUsed() const { return used_; }
    std::size_t BytesHeld() const { return pool_->BytesHeld(); }
    test::Random& Numbers() { return random_; }

    void Allocate(std::size_t bytes) { Take(pool_->Allocate(bytes), bytes); }

    void AllocateWithRoom(std::size_t bytes, std::size_t room) {
        Take(pool_->AllocateWithRoom(bytes, room), bytes);
    }

    void AllocateScratch(std::size_t bytes) {
        std::memset(pool_->ReserveScratch(), kScratchMark, XmlPool::kScratchSize);
        const auto* block = static_cast<unsigned char*>(pool_->CommitScratch(bytes));
        ASSERT_TRUE(HasOnly(block, bytes, kScratchMark));
        Take(const_cast<unsigned char*>(block), bytes);
    }

    void FreeAny() {
        const auto found = blocks_.lower_bound(order_[random_.Below(order_.size())]);
        if (found != blocks_.end()) Free(found);
    }

    // Frees about one in `share` blocks, in the order of their addresses or the other way round.
    void FreeMany(std::size_t share) {
        const bool ascending = random_.OneIn(2);
        std::vector<unsigned char*> chosen;
        for (const auto& [block, content] : blocks_) {
            if (random_.OneIn(share)) chosen.push_back(block);
        }
        for (std::size_t i = 0; i < chosen.size(); ++i)
            Free(blocks_.find(chosen[ascending ? i : chosen.size() - 1 - i]));
    }

    void Merge() { pool_->MergeIfMostlyFree(); }

    void CheckAll() const {
        for (const auto& [block, content] : blocks_)
            Check(block, content);
    }

  private:
    struct Content {
        std::size_t bytes;
        unsigned char mark;
    };
    static constexpr unsigned char kScratchMark = 0xA5;

    void Take(void* memory, std::size_t bytes) {
        auto* block = static_cast<unsigned char*>(memory);
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block) % XmlPool::kAlignment, 0U);
        const std::size_t whole = std::max<std::size_t>(XmlPool::BlockSize(bytes), 1);
        const auto above = blocks_.lower_bound(block);
        ASSERT_TRUE(above == blocks_.end() || block + whole <= above->first) << "overlaps the next block";
        if (above != blocks_.begin()) {
            const auto below = std::prev(above);
            ASSERT_GE(block, below->first + below->second.bytes) << "overlaps the block before";
        }
        const auto mark = static_cast<unsigned char>(random_.Below(256));
        std::memset(block, mark, whole);
        blocks_.emplace(block, Content{whole, mark});
        order_.push_back(block);
        used_ += whole;
    }

    static void Check(const unsigned char* block, const Content& content) {
        ASSERT_TRUE(HasOnly(block, content.bytes, content.mark)) << content.bytes;
    }

    // Each byte but the first is compared with the one before it.
    static bool HasOnly(const unsigned char* block, std::size_t bytes, unsigned char mark) {
        return bytes == 0 || (block[0] == mark && std::memcmp(block, block + 1, bytes - 1) == 0);
    }

    void Free(std::map<unsigned char*, Content>::iterator found) {
        Check(found->first, found->second);
        used_ -= found->second.bytes;
        pool_->Free(found->first, found->second.bytes);
        blocks_.erase(found);
        if (order_.size() > 2 * blocks_.size() + 100) {
            order_.clear();
            for (const auto& [block, content] : blocks_)
                order_.push_back(block);
        }
    }

    test::Random random_;
    test::OwnPool pool_;
    std::map<unsigned char*, Content> blocks_;
    std::vector<unsigned char*> order_;  // some may have been freed meanwhile
    std::size_t used_ = 0;
};

std::size_t AnySize(test::Random& random) {
    switch (random.Below(8)) {
        case 0:
            return random.Below(17);
        case 1:
            return 250 + random.Below(12);
        case 2:
            return 4090 + random.Below(12);
        case 3:
            return random.Below(5000);
        case 4:
            return random.OneIn(10) ? random.Below(200000) : 4097 + random.Below(12000);
        default:
            return random.Below(300);
    }
}

TEST(XmlPoolRandomUse, BlocksKeepTheirBytesAndNeverOverlap) {
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        PoolModel model(seed);
        test::Random& random = model.Numbers();
        for (int phase = 0; phase < 30; ++phase) {
            const std::size_t growth = 1 + random.Below(4);  // takes so many for each that goes
            for (int step = 0; step < 400 && !testing::Test::HasFatalFailure(); ++step) {
                if (model.Count() == 0 || !random.OneIn(growth + 1)) {
                    if (random.OneIn(10)) {
                        model.AllocateScratch(1 + random.Below(XmlPool::kScratchSize));
                    } else {
                        model.Allocate(AnySize(random));
                    }
                } else {
                    model.FreeAny();
                }
            }
            if (random.OneIn(3)) model.FreeMany(1 + random.Below(4));
            if (random.OneIn(3)) model.Merge();
            if (random.OneIn(10)) model.AllocateWithRoom(random.Below(300), random.Below(100000));
            if (random.OneIn(10)) model.AllocateWithRoom(AnySize(random), random.Below(20000));
            ASSERT_GE(model.BytesHeld(), model.BytesUsed());
        }
        model.CheckAll();
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << seed;
    }
}

TEST(XmlPoolRandomUse, AllThatWasTakenGoesBack) {
    PoolModel model(99);
    for (int i = 0; i < 5000; ++i)
        model.Allocate(model.Numbers().Below(4097));
    model.FreeMany(1);
    EXPECT_EQ(model.BytesUsed(), 0U);
    model.Merge();
    EXPECT_EQ(model.BytesHeld(), XmlPool::kFirstSlab);
}

}  // namespace
}  // namespace mox
