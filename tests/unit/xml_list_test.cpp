#include "mox_xmlApi/xml/xml_list.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "mox_xmlApi/xml/xml_pool.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

struct Item {
    std::int64_t index = -1;
    int number = 0;
};

class XmlListTest : public testing::Test {
  protected:
    // `count` items with the numbers 0, 1, 2, ... in the list.
    void Fill(int count) {
        for (int i = 0; i < count; ++i)
            Append(i);
    }
    Item* Append(int number) {
        list_.Reserve(pool_, 1);
        list_.Append(NewItem(number));
        return items_.back().get();
    }
    Item* NewItem(int number) {
        items_.push_back(std::make_unique<Item>(Item{-1, number}));
        return items_.back().get();
    }
    // The numbers in order; "!" after one whose index is not its position.
    std::string Numbers() const {
        std::string numbers;
        std::int64_t position = 0;
        for (const Item* item : list_) {
            numbers.append(numbers.empty() ? "" : " ").append(std::to_string(item->number));
            if (item->index != position++) numbers += "!";
        }
        return numbers;
    }

    test::OwnPool owner_;
    XmlPool& pool_ = *owner_;
    std::vector<std::unique_ptr<Item>> items_;
    XmlList<Item> list_;
};

TEST_F(XmlListTest, NewListIsEmpty) {
    EXPECT_EQ(list_.Size(), 0U);
    EXPECT_TRUE(list_.IsEmpty());
    EXPECT_EQ(list_.begin(), list_.end());
    EXPECT_EQ(sizeof(list_), 16U);
}

TEST_F(XmlListTest, AppendedItemsStandInOrder) {
    Fill(5);
    EXPECT_EQ(Numbers(), "0 1 2 3 4");
    EXPECT_EQ(list_.Size(), 5U);
    EXPECT_FALSE(list_.IsEmpty());
}

TEST_F(XmlListTest, AtGivesTheItemOfThePosition) {
    Fill(3);
    EXPECT_EQ(list_.At(0)->number, 0);
    EXPECT_EQ(list_.At(2)->number, 2);
}

TEST_F(XmlListTest, AtBeyondTheEndSaysInvalidSubscript) {
    Fill(3);
    for (const std::size_t position : {std::size_t{3}, std::size_t{4}, ~std::size_t{0}}) {
        try {
            list_.At(position);
            ADD_FAILURE() << "nothing thrown at " << position;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
        }
    }
}

TEST_F(XmlListTest, AtOfAnEmptyListSaysInvalidSubscript) {
    EXPECT_THROW(list_.At(0), std::out_of_range);
}

TEST_F(XmlListTest, InsertedItemsRenumberAllThatFollow) {
    Fill(3);
    const std::array<std::pair<std::size_t, int>, 3> insertions = {{{0, 10}, {2, 11}, {5, 12}}};
    for (const auto& [position, number] : insertions) {
        list_.Reserve(pool_, 1);
        list_.Insert(position, NewItem(number));
    }
    EXPECT_EQ(Numbers(), "10 0 11 1 2 12");
}

TEST_F(XmlListTest, RemovedItemIsInNoListAndRenumbersAllThatFollow) {
    Fill(5);
    Item* second = list_.At(1);
    list_.RemoveAt(1);
    EXPECT_EQ(second->index, -1);
    EXPECT_EQ(Numbers(), "0 2 3 4");
    list_.RemoveAt(3);
    list_.RemoveAt(0);
    EXPECT_EQ(Numbers(), "2 3");
}

TEST_F(XmlListTest, RemoveLastTakesTheItemsFromTheEnd) {
    Fill(2);
    EXPECT_EQ(list_.RemoveLast()->number, 1);
    EXPECT_EQ(list_.RemoveLast()->number, 0);
    EXPECT_EQ(list_.RemoveLast(), nullptr);
    EXPECT_TRUE(list_.IsEmpty());
}

TEST_F(XmlListTest, ContainsGoesByIdentityNotByIndex) {
    Fill(2);
    Item stranger{1, 1};
    EXPECT_TRUE(list_.Contains(list_.At(1)));
    EXPECT_FALSE(list_.Contains(&stranger));
    stranger.index = -1;
    EXPECT_FALSE(list_.Contains(&stranger));
    stranger.index = 2;
    EXPECT_FALSE(list_.Contains(&stranger));
    stranger.index = std::int64_t{1} << 62;
    EXPECT_FALSE(list_.Contains(&stranger));
}

TEST_F(XmlListTest, KeepIfKeepsInOrderAndHandsOverTheOthers) {
    Fill(7);
    std::vector<int> dropped;
    const std::size_t removed = list_.KeepIf([&](const Item* item) {
        const bool keep = item->number % 3 == 1;
        if (!keep) dropped.push_back(item->number);
        return keep;
    });
    EXPECT_EQ(removed, 5U);
    EXPECT_EQ(Numbers(), "1 4");
    EXPECT_EQ(dropped, (std::vector<int>{0, 2, 3, 5, 6}));
}

TEST_F(XmlListTest, KeepIfMayKeepAllOrNone) {
    Fill(3);
    EXPECT_EQ(list_.KeepIf([](const Item*) { return true; }), 0U);
    EXPECT_EQ(Numbers(), "0 1 2");
    EXPECT_EQ(list_.KeepIf([](const Item*) { return false; }), 3U);
    EXPECT_EQ(Numbers(), "");
}

TEST_F(XmlListTest, ReservedRoomTakesItemsWithoutMoving) {
    list_.Reserve(pool_, 100);
    Item* const* storage = list_.begin();
    for (int i = 0; i < 100; ++i)
        list_.Append(NewItem(i));
    EXPECT_EQ(list_.begin(), storage);
    list_.Reserve(pool_, 0);
    EXPECT_EQ(list_.begin(), storage);
}

TEST_F(XmlListTest, GrowingListKeepsItsItemsAndMovesSeldom) {
    int moves = 0;
    Item* const* storage = nullptr;
    for (int i = 0; i < 20000; ++i) {
        Append(i);
        if (list_.begin() != storage) ++moves;
        storage = list_.begin();
    }
    for (int i = 0; i < 20000; ++i)
        ASSERT_EQ(list_.At(static_cast<std::size_t>(i))->number, i);
    EXPECT_LT(moves, 40);
}

TEST_F(XmlListTest, OneItemLiesInTheListItself) {
    const void* next = pool_.Allocate(8);
    pool_.Free(const_cast<void*>(next), 8);
    Append(7);
    EXPECT_EQ(static_cast<const void*>(list_.begin()), static_cast<const void*>(&list_));
    EXPECT_EQ(pool_.Allocate(8), next);
    EXPECT_EQ(Numbers(), "7");
    const XmlList<Item> copy = list_;
    EXPECT_EQ(copy.At(0)->number, 7);
    list_.RemoveAt(0);
    EXPECT_TRUE(list_.IsEmpty());
    EXPECT_EQ(copy.At(0)->number, 7);
}

TEST_F(XmlListTest, OutgrownStorageIsGivenBack) {
    Fill(2);
    const void* storage = list_.begin() - 1;  // the attachment lies in front of the items
    const std::size_t bytes = XmlPool::BlockSize(3 * sizeof(Item*));
    Append(2);
    ASSERT_NE(static_cast<const void*>(list_.begin() - 1), storage);
    EXPECT_EQ(pool_.Allocate(bytes), storage);
}

TEST(XmlListAttachment, GoesAlongWhenTheListGrows) {
    const test::OwnPool owner;
    XmlList<Item, int> list;
    std::array<Item, 100> items;
    int attachment = 5;
    EXPECT_EQ(list.Attached(), nullptr);
    for (Item& item : items) {
        list.Reserve(*owner, 1);
        list.Append(&item);
        if (list.Size() == 1) {
            EXPECT_EQ(list.Attached(), nullptr);
        } else if (list.Size() == 2) {
            EXPECT_EQ(list.Attached(), nullptr);
            list.Attach(&attachment);
        } else {
            ASSERT_EQ(list.Attached(), &attachment);
        }
    }
    while (!list.IsEmpty())
        list.RemoveLast();
    EXPECT_EQ(list.Attached(), &attachment);
    list.Attach(nullptr);
    EXPECT_EQ(list.Attached(), nullptr);
    list.Release(*owner);
}

TEST_F(XmlListTest, LastPlaceCanHoldAnotherPointerUntilItIsGivenUp) {
    Fill(2);
    Item other{40, 9};
    EXPECT_EQ(list_.ReplaceLast(&other)->number, 1);
    EXPECT_EQ(list_.Size(), 2U);
    EXPECT_EQ(list_.PopLast(), &other);
    EXPECT_EQ(other.index, 40);
    EXPECT_EQ(Numbers(), "0");
    EXPECT_EQ(list_.ReplaceLast(nullptr)->number, 0);
    EXPECT_EQ(list_.PopLast(), nullptr);
    EXPECT_TRUE(list_.IsEmpty());
}

TEST_F(XmlListTest, TakeMakesTheItemsTheWholeList) {
    const std::array<Item*, 3> items = {NewItem(7), NewItem(8), NewItem(9)};
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i]->index = static_cast<std::int64_t>(i);
    list_.Take(pool_, items.data(), items.size());
    EXPECT_EQ(Numbers(), "7 8 9");
    Append(10);
    EXPECT_EQ(Numbers(), "7 8 9 10");
}

TEST_F(XmlListTest, TakeOfNothingLeavesTheListEmptyAndWithoutStorage) {
    const void* next = pool_.Allocate(8);
    pool_.Free(const_cast<void*>(next), 8);
    list_.Take(pool_, nullptr, 0);
    EXPECT_TRUE(list_.IsEmpty());
    EXPECT_EQ(list_.begin(), list_.end());
    EXPECT_EQ(pool_.Allocate(8), next);
}

TEST_F(XmlListTest, TakeOfOneItemNeedsNoStorage) {
    Item* item = NewItem(3);
    item->index = 0;
    list_.Take(pool_, &item, 1);
    EXPECT_EQ(Numbers(), "3");
    EXPECT_EQ(static_cast<const void*>(list_.begin()), static_cast<const void*>(&list_));
}

TEST_F(XmlListTest, MoreItemsThanAListCanHoldAreRefused) {
    Fill(2);
    try {
        list_.Reserve(pool_, std::size_t{1} << 32);
        ADD_FAILURE() << "nothing thrown";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "vector<T> too long");
    }
    EXPECT_THROW(list_.Reserve(pool_, ~std::size_t{0}), std::length_error);
    EXPECT_EQ(Numbers(), "0 1");
    XmlList<Item> empty;
    EXPECT_THROW(empty.Take(pool_, list_.begin(), std::size_t{1} << 32), std::length_error);
    EXPECT_TRUE(empty.IsEmpty());
}

TEST_F(XmlListTest, ReleaseGivesTheStorageBackAndLeavesTheItemsAlone) {
    Fill(8);
    const void* storage = list_.begin() - 1;
    list_.Release(pool_);
    EXPECT_TRUE(list_.IsEmpty());
    EXPECT_EQ(items_[3]->number, 3);
    // The list had grown to at most 11 places and an attachment by then.
    bool found = false;
    for (std::size_t bytes = 64; bytes <= 96; bytes += 8)
        found = found || pool_.Allocate(bytes) == storage;
    EXPECT_TRUE(found);
}

TEST_F(XmlListTest, AnyChangesAgreeWithAPlainVector) {
    test::Random random(2);
    std::vector<int> model;
    for (int step = 0; step < 5000; ++step) {
        const std::size_t position = random.Below(model.size() + 1);
        switch (random.Below(model.size() < 40 ? 4 : 6)) {
            case 0:
            case 1:
                list_.Reserve(pool_, 1);
                list_.Insert(position, NewItem(step));
                model.insert(model.begin() + static_cast<std::ptrdiff_t>(position), step);
                break;
            case 2:
                Append(step);
                model.push_back(step);
                break;
            case 3:
                if (position == model.size()) break;
                list_.RemoveAt(position);
                model.erase(model.begin() + static_cast<std::ptrdiff_t>(position));
                break;
            case 4: {
                const int divisor = 2 + static_cast<int>(random.Below(3));
                list_.KeepIf([&](const Item* item) { return item->number % divisor != 0; });
                std::erase_if(model, [&](int number) { return number % divisor == 0; });
                break;
            }
            default:
                ASSERT_EQ(list_.RemoveLast()->number, model.back());
                model.pop_back();
        }
        std::string expected;
        for (const int number : model)
            expected.append(expected.empty() ? "" : " ").append(std::to_string(number));
        ASSERT_EQ(Numbers(), expected) << "step " << step;
    }
}

}  // namespace
}  // namespace mox
