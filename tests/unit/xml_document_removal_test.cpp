// How trees shrink: by node, by content, by attribute name.
#include <gtest/gtest.h>
#include <optional>
#include <vector>

#include "mox_xmlApi/xml/xml_document.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Build;
using test::Comment;
using test::Declaration;
using test::Dump;
using test::Element;

constexpr std::uint64_t kFirstMatch = XmlDocument::kFirstMatch;

class XmlRemoval : public testing::Test {
  protected:
    // A new element "e" with these children.
    XmlNode* Parent(std::vector<model::NodePtr> children) {
        return Build(document_, document_.root, Element("e", {}, "", std::move(children)));
    }
    bool ByAttribute(XmlNode* parent, WideView attribute, WideView value, std::uint64_t occurrence) {
        return document_.RemoveChildWhere(parent, attribute, value, occurrence, false);
    }
    bool ByName(XmlNode* parent, WideView name, std::uint64_t occurrence) {
        return document_.RemoveChildWhere(parent, WideView(), name, occurrence, true);
    }
    bool ByEither(XmlNode* parent, WideView attribute, WideView value, std::uint64_t occurrence) {
        return document_.RemoveChildWhere(parent, attribute, value, occurrence, true);
    }

    XmlDocument document_;
};

// ---- RemoveNode

TEST_F(XmlRemoval, NodeIsRemovedWithItsSubtreeAndTheRestCloses) {
    XmlNode* e =
        Parent({Element("a"), Element("b", {{"k", "v"}}, "t", {Element("x")}), Element("c"), Element("d")});
    EXPECT_EQ(document_.RemoveNode(e, e->children.At(1)), 1);
    EXPECT_EQ(Dump(e), "e(a c d)");
    EXPECT_EQ(document_.RemoveNode(e, e->children.At(0)), 1);
    EXPECT_EQ(document_.RemoveNode(e, e->children.At(1)), 1);
    EXPECT_EQ(Dump(e), "e(c)");
}

TEST_F(XmlRemoval, CommentsAndTheDeclarationStay) {
    XmlNode* declaration = Build(document_, document_.root, Declaration());
    XmlNode* comment = Build(document_, document_.root, Comment("note"));
    EXPECT_EQ(document_.RemoveNode(document_.root, comment), 0);
    EXPECT_EQ(document_.RemoveNode(document_.root, declaration), 0);
    EXPECT_EQ(document_.RemoveNode(document_.root, document_.root), 0);
    EXPECT_EQ(test::DumpChildren(document_.root), "?xml{version='1.0'} !'note'");
}

TEST_F(XmlRemoval, NodeOfAnotherParentIsNotFound) {
    XmlNode* e = Parent({Element("a", {}, "", {Element("deep", {{"k", "v"}})}), Element("b", {{"l", "w"}})});
    XmlNode* deep = e->children.At(0)->children.At(0);
    EXPECT_EQ(document_.RemoveNode(e, deep), 0);
    EXPECT_EQ(document_.RemoveNode(e->children.At(1), deep), 0);
    XmlNode* loose = document_.CreateNode("loose"_w, std::nullopt, XmlNodeKind::Element);
    EXPECT_EQ(document_.RemoveNode(e, loose), 0);
    document_.DestroyNode(loose);
    EXPECT_EQ(Dump(e), "e(a(deep{k='v'}) b{l='w'})");
}

TEST_F(XmlRemoval, NodeOrParentMayBeNull) {
    XmlNode* e = Parent({Element("a")});
    EXPECT_EQ(document_.RemoveNode(nullptr, e), 0);
    EXPECT_EQ(document_.RemoveNode(e, nullptr), 0);
    EXPECT_EQ(document_.RemoveNode(nullptr, nullptr), 0);
    EXPECT_EQ(Dump(e), "e(a)");
}

// ---- RemoveChildWhere

TEST_F(XmlRemoval, OccurrenceCountsTheMatches) {
    XmlNode* e = Parent({Element("a", {{"k", "v"}}), Element("x"), Element("b", {{"k", "v"}}), Element("y"),
                         Element("c", {{"k", "v"}})});
    EXPECT_TRUE(ByAttribute(e, "k"_w, "v"_w, 1));
    EXPECT_EQ(Dump(e), "e(a{k='v'} x y c{k='v'})");
    EXPECT_TRUE(ByAttribute(e, "k"_w, "v"_w, 0));
    EXPECT_EQ(Dump(e), "e(x y c{k='v'})");
}

TEST_F(XmlRemoval, OccurrenceBeyondTheMatchesRemovesNothing) {
    XmlNode* e = Parent({Element("a", {{"k", "v"}}), Element("b", {{"k", "w"}})});
    EXPECT_FALSE(ByAttribute(e, "k"_w, "v"_w, 1));
    EXPECT_FALSE(ByAttribute(e, "k"_w, "v"_w, kFirstMatch - 1));
    EXPECT_EQ(Dump(e), "e(a{k='v'} b{k='w'})");
}

TEST_F(XmlRemoval, AllBitsSetMeansTheFirstMatch) {
    XmlNode* e = Parent({Element("x"), Element("a", {{"k", "v"}}), Element("b", {{"k", "v"}})});
    EXPECT_TRUE(ByAttribute(e, "k"_w, "v"_w, ~std::uint64_t{0}));
    EXPECT_EQ(Dump(e), "e(x b{k='v'})");
}

TEST_F(XmlRemoval, WithoutAttributeNameAndNameTestIsRefused) {
    XmlNode* e = Parent({Element("a"), Element("")});
    EXPECT_FALSE(ByAttribute(e, WideView(), "a"_w, kFirstMatch));
    EXPECT_FALSE(ByAttribute(e, WideView(), WideView(), kFirstMatch));
    EXPECT_EQ(e->children.Size(), 2U);
}

TEST_F(XmlRemoval, FromNoParentOrOneWithoutChildrenIsFalse) {
    EXPECT_FALSE(ByName(nullptr, "a"_w, kFirstMatch));
    EXPECT_FALSE(ByName(Parent({}), "a"_w, kFirstMatch));
}

TEST_F(XmlRemoval, ByNameWhenThereIsNoAttributeName) {
    XmlNode* e =
        Parent({Element("b"), Element("a", {{"name", "b"}}), Element("b", {{"k", "v"}}), Element("a")});
    EXPECT_TRUE(ByName(e, "a"_w, 1));
    EXPECT_EQ(Dump(e), "e(b a{name='b'} b{k='v'})");
    EXPECT_TRUE(ByName(e, "b"_w, kFirstMatch));
    EXPECT_EQ(Dump(e), "e(a{name='b'} b{k='v'})");
    EXPECT_FALSE(ByName(e, "k"_w, kFirstMatch));
}

TEST_F(XmlRemoval, NamesAndValuesAreComparedWholeAndCaseSensitively) {
    XmlNode* e = Parent({Element("ab", {{"key", "val"}})});
    EXPECT_FALSE(ByName(e, "a"_w, kFirstMatch));
    EXPECT_FALSE(ByName(e, "abc"_w, kFirstMatch));
    EXPECT_FALSE(ByName(e, "AB"_w, kFirstMatch));
    EXPECT_FALSE(ByAttribute(e, "Key"_w, "val"_w, kFirstMatch));
    EXPECT_FALSE(ByAttribute(e, "key"_w, "va"_w, kFirstMatch));
    EXPECT_FALSE(ByAttribute(e, "key"_w, "value"_w, kFirstMatch));
    EXPECT_FALSE(ByAttribute(e, "key"_w, "VAL"_w, kFirstMatch));
    EXPECT_TRUE(ByAttribute(e, "key"_w, "val"_w, kFirstMatch));
}

TEST_F(XmlRemoval, ChildWithAnotherAttributeValueIsNotTestedByName) {
    XmlNode* e = Parent({Element("v", {{"k", "other"}}), Element("v")});
    EXPECT_TRUE(ByEither(e, "k"_w, "v"_w, kFirstMatch));
    EXPECT_EQ(Dump(e), "e(v{k='other'})");
    EXPECT_FALSE(ByEither(e, "k"_w, "v"_w, kFirstMatch));
}

TEST_F(XmlRemoval, ChildWithoutTheAttributeIsSkippedWithoutTheNameTest) {
    XmlNode* e = Parent({Element("v"), Element("v", {{"other", "v"}})});
    EXPECT_FALSE(ByAttribute(e, "k"_w, "v"_w, kFirstMatch));
    EXPECT_EQ(Dump(e), "e(v v{other='v'})");
}

TEST_F(XmlRemoval, MatchesByAttributeAndByNameAreCountedTogether) {
    XmlNode* e = Parent(
        {Element("v"), Element("a", {{"k", "v"}}), Element("v", {{"k", "no"}}), Element("v", {{"l", "v"}})});
    EXPECT_TRUE(ByEither(e, "k"_w, "v"_w, 2));
    EXPECT_EQ(Dump(e), "e(v a{k='v'} v{k='no'})");
    EXPECT_TRUE(ByEither(e, "k"_w, "v"_w, 1));
    EXPECT_EQ(Dump(e), "e(v v{k='no'})");
}

TEST_F(XmlRemoval, EmptyWantedTextMatchesAnEmptyAttributeOnly) {
    XmlNode* e = Parent({Element("a"), Element("b", {{"k", "v"}}), Element("c", {{"k", ""}})});
    EXPECT_TRUE(ByAttribute(e, "k"_w, WideView(), kFirstMatch));
    EXPECT_EQ(Dump(e), "e(a b{k='v'})");
    EXPECT_FALSE(ByAttribute(e, "k"_w, WideView(), kFirstMatch));
}

TEST_F(XmlRemoval, OfTwoAttributesWithTheNameTheFirstDecides) {
    XmlNode* e = Parent({Element("a", {{"k", "1"}, {"k", "2"}})});
    EXPECT_FALSE(ByAttribute(e, "k"_w, "2"_w, kFirstMatch));
    EXPECT_TRUE(ByAttribute(e, "k"_w, "1"_w, kFirstMatch));
    EXPECT_EQ(Dump(e), "e");
}

TEST_F(XmlRemoval, ByNameReachesCommentsAndTheDeclaration) {
    Build(document_, document_.root, Declaration());
    Build(document_, document_.root, Element("e"));
    Build(document_, document_.root, Comment("note"));
    EXPECT_TRUE(ByName(document_.root, WideView(), kFirstMatch));
    EXPECT_EQ(test::DumpChildren(document_.root), "?xml{version='1.0'} e");
    EXPECT_TRUE(ByName(document_.root, "xml"_w, kFirstMatch));
    EXPECT_EQ(test::DumpChildren(document_.root), "e");
}

TEST_F(XmlRemoval, AttributesOfTheDeclarationAreNotLookedAt) {
    Build(document_, document_.root, Declaration());
    EXPECT_FALSE(ByAttribute(document_.root, "version"_w, "1.0"_w, kFirstMatch));
    EXPECT_TRUE(ByEither(document_.root, "version"_w, "xml"_w, kFirstMatch));
    EXPECT_EQ(test::DumpChildren(document_.root), "");
}

TEST_F(XmlRemoval, ByContentFreesTheSubtreeAndClosesTheRest) {
    XmlNode* e = Parent({});
    std::size_t held = 0;
    for (int round = 0; round < 300; ++round) {
        Build(document_, e, Element("a", {{"name", "some name that needs storage"}}, "text", {Element("b")}));
        Build(document_, e, Element("z"));
        EXPECT_TRUE(ByName(e, "a"_w, 0));
        EXPECT_EQ(e->children.At(0), e->children.Last());
        EXPECT_TRUE(ByName(e, "z"_w, kFirstMatch));
        if (round == 0) held = document_.Pool().BytesHeld();
    }
    EXPECT_EQ(document_.Pool().BytesHeld(), held);
}

// ---- RemoveChildrenWhere

TEST_F(XmlRemoval, AllMatchesGoInOnePass) {
    XmlNode* e = Parent({Element("a", {{"k", "v"}}), Element("x"), Element("b", {{"k", "v"}}), Comment("c"),
                         Element("y", {{"k", "w"}}), Element("c", {{"k", "v"}}, "", {Element("d")})});
    EXPECT_EQ(document_.RemoveChildrenWhere(e, "k"_w, "v"_w, kFirstMatch, false), 3U);
    EXPECT_EQ(Dump(e), "e(x !'c' y{k='w'})");
    EXPECT_EQ(document_.RemoveChildrenWhere(e, "k"_w, "v"_w, kFirstMatch, false), 0U);
}

TEST_F(XmlRemoval, AllMatchesFromANumberOnGo) {
    XmlNode* e = Parent({Element("a"), Element("b"), Element("a"), Element("a"), Element("b"), Element("a")});
    EXPECT_EQ(document_.RemoveChildrenWhere(e, WideView(), "a"_w, 4, true), 0U);
    EXPECT_EQ(document_.RemoveChildrenWhere(e, WideView(), "a"_w, 2, true), 2U);
    EXPECT_EQ(Dump(e), "e(a b a b)");
    EXPECT_EQ(document_.RemoveChildrenWhere(e, WideView(), "a"_w, 0, true), 2U);
    EXPECT_EQ(Dump(e), "e(b b)");
}

TEST_F(XmlRemoval, AllMatchesAreChosenByAttributeFirstAndNameSecond) {
    XmlNode* e =
        Parent({Element("v"), Element("a", {{"k", "v"}}), Element("v", {{"k", "no"}}), Element("b")});
    EXPECT_EQ(document_.RemoveChildrenWhere(e, "k"_w, "v"_w, kFirstMatch, true), 2U);
    EXPECT_EQ(Dump(e), "e(v{k='no'} b)");
}

TEST_F(XmlRemoval, AllMatchesOfNothingIsRefused) {
    XmlNode* e = Parent({Element("a"), Comment("note")});
    EXPECT_EQ(document_.RemoveChildrenWhere(e, WideView(), "a"_w, kFirstMatch, false), 0U);
    EXPECT_EQ(document_.RemoveChildrenWhere(nullptr, WideView(), "a"_w, kFirstMatch, true), 0U);
    EXPECT_EQ(document_.RemoveChildrenWhere(Parent({}), WideView(), "a"_w, kFirstMatch, true), 0U);
    EXPECT_EQ(Dump(e), "e(a !'note')");
}

// ---- RemoveAttribute

TEST_F(XmlRemoval, AttributeGoesByNameAndTheRestIsRenumbered) {
    XmlNode* e = Build(document_, document_.root, Element("e", {{"a", "1"}, {"b", "2"}, {"c", "3"}}));
    EXPECT_TRUE(document_.RemoveAttribute(e, "b"_w));
    EXPECT_EQ(Dump(e), "e{a='1' c='3'}");
    EXPECT_FALSE(document_.RemoveAttribute(e, "b"_w));
    EXPECT_FALSE(document_.RemoveAttribute(e, "A"_w));
}

TEST_F(XmlRemoval, OfTwoAttributesWithTheNameTheFirstGoes) {
    XmlNode* e = Build(document_, document_.root, Element("e", {{"k", "1"}, {"l", "x"}, {"k", "2"}}));
    EXPECT_TRUE(document_.RemoveAttribute(e, "k"_w));
    EXPECT_EQ(Dump(e), "e{l='x' k='2'}");
}

TEST_F(XmlRemoval, AttributeOfNothingIsFalse) {
    EXPECT_FALSE(document_.RemoveAttribute(nullptr, "k"_w));
    EXPECT_FALSE(document_.RemoveAttribute(Parent({}), "k"_w));
}

TEST_F(XmlRemoval, AttributeOfTheDeclarationCanGoToo) {
    XmlNode* declaration =
        Build(document_, document_.root, Declaration({{"version", "1.0"}, {"encoding", "UTF-8"}}));
    EXPECT_TRUE(document_.RemoveAttribute(declaration, "version"_w));
    EXPECT_EQ(Dump(declaration), "?xml{encoding='UTF-8'}");
}

}  // namespace
}  // namespace mox
