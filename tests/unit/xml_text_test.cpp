#include "mox_xmlApi/xml/xml_text.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Shown;
using test::Wide;

class XmlTextTest : public testing::Test {
  protected:
    // The block of the pool that a text has: four bytes of it lie in front of the units.
    static const void* BlockOf(const XmlText& text) { return text.View().data() - 2; }

    test::OwnPool owner_;
    XmlPool& pool_ = *owner_;
};

TEST_F(XmlTextTest, IsAPlainValueOf12Bytes) {
    EXPECT_EQ(sizeof(XmlText), 12U);
    EXPECT_EQ(alignof(XmlText), 4U);
    EXPECT_TRUE(std::is_trivially_destructible_v<XmlText>);
    EXPECT_TRUE(std::is_trivially_copyable_v<XmlText>);
}

TEST_F(XmlTextTest, NewTextIsEmpty) {
    const XmlText text;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.View().size(), 0U);
}

TEST_F(XmlTextTest, CopyLivesApartFromItsSource) {
    WideString source = Wide("Speed");
    const XmlText text = XmlText::Copy(pool_, source);
    source[0] = wchar16{'X'};
    EXPECT_EQ(Shown(text.View()), "Speed");
    EXPECT_FALSE(text.IsEmpty());
}

TEST_F(XmlTextTest, CopyKeepsZerosAndLoneSurrogates) {
    const XmlText text = XmlText::Copy(pool_, Wide(std::u16string_view(u"a\0\xD800\xFFFF", 4)));
    EXPECT_EQ(Shown(text.View()), "a\\u0000\\uD800\\uFFFF");
}

TEST_F(XmlTextTest, CopyOfNothingTakesNoStorage) {
    void* before = pool_.Allocate(8);
    pool_.Free(before, 8);
    const XmlText text = XmlText::Copy(pool_, WideView());
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(pool_.Allocate(8), before);
}

TEST_F(XmlTextTest, SliceRefersToItsSource) {
    const WideString source = Wide("<Var/>");
    const XmlText text = XmlText::Slice(WideView(source).substr(1, 3));
    EXPECT_EQ(Shown(text.View()), "Var");
    EXPECT_EQ(text.View().data(), source.data() + 1);
}

TEST_F(XmlTextTest, AssignToASliceLeavesItsSourceAlone) {
    const WideString source = Wide("abcdef");
    XmlText text = XmlText::Slice(WideView(source).substr(0, 3));
    text.Assign(pool_, "xy"_w);
    EXPECT_EQ(Shown(text.View()), "xy");
    EXPECT_EQ(Shown(source), "abcdef");
}

TEST_F(XmlTextTest, AppendToASliceLeavesItsSourceAlone) {
    const WideString source = Wide("abcdef");
    XmlText text = XmlText::Slice(WideView(source).substr(0, 3));
    text.Append(pool_, "XY"_w);
    EXPECT_EQ(Shown(text.View()), "abcXY");
    EXPECT_EQ(Shown(source), "abcdef");
}

TEST_F(XmlTextTest, EmptyingASliceLeavesItsSourceAlone) {
    const WideString source = Wide("abc");
    XmlText text = XmlText::Slice(source);
    text.Assign(pool_, WideView());
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(Shown(source), "abc");
}

TEST_F(XmlTextTest, AssignedTextThatFitsIsOverwrittenInPlace) {
    XmlText text = XmlText::Copy(pool_, "fourteen14 are"_w);
    const wchar16* storage = text.View().data();
    text.Assign(pool_, "six"_w);
    EXPECT_EQ(text.View().data(), storage);
    EXPECT_EQ(Shown(text.View()), "six");
    text.Assign(pool_, "eight888"_w);
    EXPECT_EQ(text.View().data(), storage);
    EXPECT_EQ(Shown(text.View()), "eight888");
}

TEST_F(XmlTextTest, AssignedTextThatDoesNotFitGivesItsOldStorageBack) {
    XmlText text = XmlText::Copy(pool_, "abcd"_w);
    const void* storage = BlockOf(text);
    text.Assign(pool_, "a text that needs more units"_w);
    EXPECT_EQ(Shown(text.View()), "a text that needs more units");
    EXPECT_EQ(pool_.Allocate(12), storage);
}

TEST_F(XmlTextTest, AssignTakesAPartOfTheTextItself) {
    XmlText text = XmlText::Copy(pool_, "0123456789"_w);
    text.Assign(pool_, text.View().substr(2, 6));
    EXPECT_EQ(Shown(text.View()), "234567");
    text.Assign(pool_, text.View());
    EXPECT_EQ(Shown(text.View()), "234567");
    text.Assign(pool_, text.View().substr(1));
    EXPECT_EQ(Shown(text.View()), "34567");
}

TEST_F(XmlTextTest, AssignTakesAPartOfALongTextThatIsGivenBackMeanwhile) {
    const WideString source = Wide(std::string(20000, 'a') + "tail");
    XmlText text = XmlText::Copy(pool_, source);
    text.Assign(pool_, text.View().substr(19998));
    EXPECT_EQ(Shown(text.View()), "aatail");
}

TEST_F(XmlTextTest, ShortTextDoesNotHoldOnToTheMemoryOfALongOne) {
    XmlText text = XmlText::Copy(pool_, Wide(std::string(1000000, 'x')));
    EXPECT_GE(pool_.BytesHeld(), 2000000U);
    text.Assign(pool_, "short"_w);
    EXPECT_EQ(Shown(text.View()), "short");
    EXPECT_LT(pool_.BytesHeld(), 100000U);
}

TEST_F(XmlTextTest, TextThatGrowsByUnitsMovesSeldom) {
    const WideString units = Wide(std::string(100000, 'x'));
    XmlText text;
    int moves = 0;
    const wchar16* storage = nullptr;
    for (std::size_t length = 1; length <= units.size(); ++length) {
        text.Assign(pool_, WideView(units).substr(0, length));
        if (text.View().data() != storage) ++moves;
        storage = text.View().data();
    }
    EXPECT_TRUE(text.View() == units);
    EXPECT_LT(moves, 100);
    EXPECT_LE(pool_.BytesHeld(), 2 * 100000U * 9 / 8 + XmlPool::kFirstSlab + XmlPool::kLargestSlab);
}

TEST_F(XmlTextTest, TextThatNeverGrewTakesWhatItNeeds) {
    const std::size_t before = pool_.BytesHeld();
    [[maybe_unused]] const XmlText text = XmlText::Copy(pool_, Wide(std::string(100000, 'x')));
    EXPECT_LE(pool_.BytesHeld() - before, 200100U);
    const WideString loaded = Wide(std::string(50000, 'y'));
    XmlText slice = XmlText::Slice(loaded);
    slice.Assign(pool_, Wide(std::string(60000, 'z')));
    EXPECT_LE(pool_.BytesHeld() - before, 200100U + 120100U);
}

TEST_F(XmlTextTest, AppendJoinsPieces) {
    XmlText text;
    text.Append(pool_, "one"_w);
    text.Append(pool_, WideView());
    text.Append(pool_, "\n"_w);
    text.Append(pool_, "two"_w);
    EXPECT_EQ(Shown(text.View()), "one\\ntwo");
}

TEST_F(XmlTextTest, AppendOfNothingToNothingStaysEmpty) {
    XmlText text;
    text.Append(pool_, WideView());
    EXPECT_TRUE(text.IsEmpty());
}

TEST_F(XmlTextTest, ManyAppendedPiecesMoveTheTextSeldom) {
    XmlText text;
    WideString expected;
    int moves = 0;
    const wchar16* storage = nullptr;
    for (int i = 0; i < 100000; ++i) {
        text.Append(pool_, "ab"_w);
        expected += "ab"_w;
        if (text.View().data() != storage) ++moves;
        storage = text.View().data();
    }
    EXPECT_TRUE(text.View() == expected);
    EXPECT_LT(moves, 60);
}

TEST_F(XmlTextTest, ReleaseGivesTheStorageBack) {
    XmlText text = XmlText::Copy(pool_, "storage"_w);
    const void* storage = BlockOf(text);
    text.Release(pool_);
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(pool_.Allocate(18), storage);
}

TEST_F(XmlTextTest, ReleaseOfASliceGivesNothingBack) {
    const WideString source = Wide("slice of a loaded text");
    XmlText text = XmlText::Slice(source);
    text.Release(pool_);
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(Shown(source), "slice of a loaded text");
    EXPECT_EQ(pool_.BytesHeld(), XmlPool::kFirstSlab);
}

TEST_F(XmlTextTest, ReassigningForeverDoesNotGrowThePool) {
    XmlText text;
    for (std::size_t i = 0; i < 20000; ++i)
        text.Assign(pool_, Wide(std::string(i * 7919 % 1500, 'v')));
    EXPECT_LT(pool_.BytesHeld(), 200000U);
}

// No unit of these texts is ever read: they are too long for any document.
TEST_F(XmlTextTest, TextLongerThan31BitsCanSayIsTooLong) {
    const wchar16 unit{'x'};
    const WideView tooLong(&unit, std::size_t{1} << 31);
    const auto expectTooLong = [](const auto& action) {
        try {
            action();
            ADD_FAILURE() << "nothing thrown";
        } catch (const std::length_error& error) {
            EXPECT_STREQ(error.what(), "string too long");
        }
    };
    expectTooLong([&] { (void)XmlText::Slice(tooLong); });
    expectTooLong([&] { (void)XmlText::Copy(pool_, tooLong); });
    XmlText text = XmlText::Copy(pool_, "old"_w);
    expectTooLong([&] { text.Assign(pool_, tooLong); });
    expectTooLong([&] { text.Append(pool_, tooLong); });
    EXPECT_EQ(Shown(text.View()), "old");
    EXPECT_EQ(pool_.BytesHeld(), XmlPool::kFirstSlab);
}

TEST_F(XmlTextTest, SliceMayHaveAsManyUnitsAs31BitsCanSay) {
    const wchar16 unit{'x'};
    const XmlText text = XmlText::Slice(WideView(&unit, 0x7FFFFFFFU));
    EXPECT_EQ(text.View().size(), 0x7FFFFFFFU);
}

}  // namespace
}  // namespace mox
