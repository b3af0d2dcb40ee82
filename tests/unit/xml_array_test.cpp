#include "mox_xmlApi/xml/xml_array.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "tests/unit/xml_support.h"

namespace mox {
namespace {

class XmlArrayTest : public testing::Test {
  protected:
    void Append(std::int64_t number) {
        array_.Reserve(pool_, 1);
        array_.Append(number);
    }
    void Fill(std::int64_t count) {
        for (std::int64_t i = 0; i < count; ++i)
            Append(i);
    }
    std::string Numbers() const {
        std::string numbers;
        for (const std::int64_t number : array_)
            numbers.append(numbers.empty() ? "" : " ").append(std::to_string(number));
        return numbers;
    }

    test::OwnPool owner_;
    XmlPool& pool_ = *owner_;
    XmlArray<std::int64_t> array_;
};

TEST_F(XmlArrayTest, NewOneIsEmptyAndAPlainValueOf16Bytes) {
    EXPECT_TRUE(array_.IsEmpty());
    EXPECT_EQ(array_.Size(), 0U);
    EXPECT_EQ(array_.begin(), array_.end());
    EXPECT_EQ(sizeof(array_), 16U);
    EXPECT_TRUE(std::is_trivially_copyable_v<XmlArray<std::int64_t>>);
}

TEST_F(XmlArrayTest, AtBeyondTheEndSaysInvalidSubscript) {
    EXPECT_THROW(array_.At(0), std::out_of_range);
    Fill(3);
    EXPECT_EQ(array_.At(2), 2);
    for (const std::size_t position : {std::size_t{3}, ~std::size_t{0}}) {
        try {
            array_.At(position);
            ADD_FAILURE() << "nothing thrown at " << position;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
        }
    }
}

TEST_F(XmlArrayTest, ItemsOfAtCanBeChanged) {
    Fill(2);
    array_.At(1) = 7;
    EXPECT_EQ(Numbers(), "0 7");
}

TEST_F(XmlArrayTest, RemovingKeepsTheOrder) {
    Fill(6);
    array_.RemoveAt(5);
    array_.RemoveAt(0);
    array_.RemoveAt(1);
    EXPECT_EQ(Numbers(), "1 3 4");
}

TEST_F(XmlArrayTest, AdoptedBlockIsTheStorageAndGoesBackToThePool) {
    auto* block = static_cast<std::int64_t*>(pool_.Allocate(3 * sizeof(std::int64_t)));
    block[0] = 7;
    block[1] = 8;
    block[2] = 9;
    array_.Adopt(block, 3);
    EXPECT_EQ(array_.begin(), block);
    EXPECT_EQ(Numbers(), "7 8 9");
    Append(10);
    EXPECT_EQ(Numbers(), "7 8 9 10");
    EXPECT_EQ(pool_.Allocate(3 * sizeof(std::int64_t)), block);
}

TEST_F(XmlArrayTest, ItemsOfAnySizeShareABlockWithoutOverrunningIt) {
    struct Triple {
        std::int64_t a, b, c;
    };
    XmlArray<Triple> triples;
    for (std::int64_t i = 0; i < 3000; ++i) {
        triples.Reserve(pool_, 1);
        triples.Append({i, -i, 2 * i});
    }
    for (std::int64_t i = 0; i < 3000; ++i) {
        const Triple& triple = triples.At(static_cast<std::size_t>(i));
        ASSERT_TRUE(triple.a == i && triple.b == -i && triple.c == 2 * i) << i;
    }
}

TEST_F(XmlArrayTest, GrowingAndReleasingAgainAndAgainDoesNotGrowThePool) {
    std::size_t held = 0;
    for (int round = 0; round < 100; ++round) {
        Fill(1000);
        array_.Release(pool_);
        EXPECT_TRUE(array_.IsEmpty());
        if (round == 0) held = pool_.BytesHeld();
    }
    EXPECT_EQ(pool_.BytesHeld(), held);
}

TEST_F(XmlArrayTest, MoreItemsThanItCanHoldAreRefused) {
    Fill(2);
    for (const std::size_t more : {std::size_t{1} << 31, ~std::size_t{0}}) {
        try {
            array_.Reserve(pool_, more);
            ADD_FAILURE() << "nothing thrown for " << more;
        } catch (const std::length_error& error) {
            EXPECT_STREQ(error.what(), "vector<T> too long");
        }
    }
    EXPECT_EQ(Numbers(), "0 1");
}

}  // namespace
}  // namespace mox
