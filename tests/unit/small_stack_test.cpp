#include "mox_xmlApi/xml/small_stack.h"

#include <gtest/gtest.h>

namespace mox {
namespace {

TEST(SmallStack, LastInIsFirstOut) {
    SmallStack<int, 4> stack;
    EXPECT_TRUE(stack.IsEmpty());
    stack.Push(1);
    stack.Push(2);
    EXPECT_EQ(stack.Size(), 2U);
    EXPECT_EQ(stack.Top(), 2);
    stack.Pop();
    EXPECT_EQ(stack.Top(), 1);
    stack.Pop();
    EXPECT_TRUE(stack.IsEmpty());
}

TEST(SmallStack, GrowsBeyondWhatItHoldsInline) {
    SmallStack<int, 4> stack;
    for (int i = 0; i < 1000; ++i)
        stack.Push(i);
    EXPECT_EQ(stack.Size(), 1000U);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(stack.From(0)[i], i);
    for (int i = 999; i >= 0; --i) {
        ASSERT_EQ(stack.Top(), i);
        stack.Pop();
    }
    EXPECT_TRUE(stack.IsEmpty());
}

TEST(SmallStack, PopToDropsAllAbove) {
    SmallStack<int, 2> stack;
    for (int i = 0; i < 5; ++i)
        stack.Push(i);
    EXPECT_EQ(*stack.From(3), 3);
    stack.PopTo(3);
    EXPECT_EQ(stack.Size(), 3U);
    EXPECT_EQ(stack.Top(), 2);
    stack.PopTo(0);
    EXPECT_TRUE(stack.IsEmpty());
}

}  // namespace
}  // namespace mox
