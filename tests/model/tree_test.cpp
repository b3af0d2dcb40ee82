#include "tests/model/tree.h"

#include "tests/model/model_support.h"

namespace model {
namespace {

TEST(ModelTree, FirstOfTwoAttributesOfANameIsFoundSetAndRemoved) {
    const NodePtr node = First("<a k=\"1\" l=\"2\" k=\"3\"/>");
    EXPECT_EQ(AttributeOf(*node, "k"), Wide("1"));
    EXPECT_EQ(FindAttribute(*node, "K"), nullptr);
    SetAttribute(*node, "k", Wide("4"));
    SetAttribute(*node, "m", Wide("5"));
    EXPECT_EQ(Dump(*node), "a{k='4' l='2' k='3' m='5'}");
    EXPECT_TRUE(RemoveAttribute(*node, "k"));
    EXPECT_FALSE(RemoveAttribute(*node, "x"));
    EXPECT_EQ(Dump(*node), "a{l='2' k='3' m='5'}");
}

TEST(ModelTree, WalkOverElementsPassesCommentsOver) {
    const NodePtr parent = First("<p><!--x--><a/><!--y--><b/><!--z--></p>");
    const NodePtr a = NextElement(*parent, nullptr);
    const NodePtr b = NextElement(*parent, a.get());
    EXPECT_EQ(Dump(*a), "a");
    EXPECT_EQ(Dump(*b), "b");
    EXPECT_EQ(NextElement(*parent, b.get()), nullptr);
    EXPECT_EQ(IndexOf(*parent, b.get()), 3U);
    EXPECT_EQ(IndexOf(*a, b.get()), 0U);
    EXPECT_EQ(FindElement(*parent, "b"), b);
    EXPECT_EQ(FindElement(*parent, "c"), nullptr);
}

TEST(ModelTree, CopySharesNothingAndIsTheSame) {
    const NodePtr tree = First("<a k=\"1\"><b>t</b><!--c--></a>");
    const NodePtr copy = Copy(*tree);
    EXPECT_TRUE(IsSame(*copy, *tree));
    copy->children[0]->value = Wide("u");
    EXPECT_FALSE(IsSame(*copy, *tree));
    EXPECT_EQ(Dump(*tree), "a{k='1'}(b't' !'c')");
}

TEST(ModelTree, EveryPartCountsWhenTreesAreCompared) {
    const NodePtr tree = First("<a k=\"1\"><b>t</b></a>");
    for (const char* other : {"<x k=\"1\"><b>t</b></x>", "<a l=\"1\"><b>t</b></a>", "<a k=\"2\"><b>t</b></a>",
                              "<a k=\"1\"><b>u</b></a>", "<a k=\"1\"><b>t</b><c/></a>", "<a k=\"1\"/>",
                              "<a k=\"1\"><!--t--></a>", "<a><b>t</b></a>"}) {
        EXPECT_FALSE(IsSame(*tree, *First(other))) << other;
    }
}

// What is left of five children after one of them was removed; "none" in front when there was none to remove.
std::string After(std::string_view attribute, std::string_view value, std::uint64_t occurrence,
                  bool matchName) {
    const NodePtr parent = First("<p><a n=\"1\"/><b n=\"2\"/><a n=\"2\"/><b/><!--c--></p>");
    const bool removed = RemoveChildWhere(*parent, Wide(attribute), Wide(value), occurrence, matchName);
    return (removed ? "" : "none ") + DumpChildren(*parent);
}

TEST(ModelTree, ChildIsRemovedByAnAttribute) {
    EXPECT_EQ(After("n", "2", kFirstMatch, false), "a{n='1'} a{n='2'} b !'c'");
    EXPECT_EQ(After("n", "2", 0, false), "a{n='1'} a{n='2'} b !'c'");
    EXPECT_EQ(After("n", "2", 1, false), "a{n='1'} b{n='2'} b !'c'");
    EXPECT_EQ(After("n", "2", 2, false), "none a{n='1'} b{n='2'} a{n='2'} b !'c'");
    EXPECT_EQ(After("n", "b", kFirstMatch, false), "none a{n='1'} b{n='2'} a{n='2'} b !'c'");
}

TEST(ModelTree, ChildIsRemovedByItsNameWhenItLacksTheAttribute) {
    EXPECT_EQ(After("n", "b", kFirstMatch, true), "a{n='1'} b{n='2'} a{n='2'} !'c'");
    EXPECT_EQ(After("", "a", 1, true), "a{n='1'} b{n='2'} b !'c'");
    EXPECT_EQ(After("", "", 0, true), "a{n='1'} b{n='2'} a{n='2'} b");
    EXPECT_EQ(After("", "a", kFirstMatch, false), "none a{n='1'} b{n='2'} a{n='2'} b !'c'");
}

// Fuzz inputs of 8 KiB have at most 2730 levels.
TEST(ModelTree, ThreeThousandLevelsAreReadCopiedComparedAndWritten) {
    constexpr std::size_t kLevels = 3000;
    std::string start;
    std::string end;
    for (std::size_t i = 0; i < kLevels; ++i) {
        start += "<a>";
        end += "</a>";
    }
    EXPECT_EQ(Parse(Wide(start)), nullptr);
    const NodePtr document = Parse(Wide(start + "text" + end));
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(IsSame(*Copy(*document), *document));
    // 3000 pairs of tags and the text, 5999 line feeds, 2999 * 2999 tabs.
    EXPECT_EQ(Written(*document).size(), 9021004U);
}

}  // namespace
}  // namespace model
