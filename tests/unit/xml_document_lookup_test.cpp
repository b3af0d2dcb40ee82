// Finding children.
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
using test::Element;
using test::Shown;
using test::Wide;

class XmlLookups : public testing::Test {
  protected:
    XmlNode* Parent(std::vector<model::NodePtr> children) {
        return Build(document_, document_.root, Element("e", {}, "", std::move(children)));
    }
    // The names of all children that `next` gives, in its order.
    template <class Next>
    static std::string Walk(const XmlNode* parent, Next next) {
        std::string names;
        XmlNode* cursor = nullptr;
        while (XmlNode* child = next(parent, cursor)) {
            EXPECT_EQ(child, cursor);
            names += Shown(child->name.View()) + ";";
        }
        return names;
    }

    XmlDocument document_;
};

TEST_F(XmlLookups, NextChildElementWalksTheElementsInOrder) {
    XmlNode* e = Parent(
        {Comment("x"), Element("a"), Comment("y"), Comment("z"), Element("b"), Element("c"), Comment("w")});
    EXPECT_EQ(Walk(e, XmlDocument::NextChildElement), "a;b;c;");
}

TEST_F(XmlLookups, NextChildElementOfCommentsAloneIsNull) {
    XmlNode* cursor = nullptr;
    EXPECT_EQ(XmlDocument::NextChildElement(Parent({Comment("x"), Comment("y")}), cursor), nullptr);
    EXPECT_EQ(cursor, nullptr);
    EXPECT_EQ(XmlDocument::NextChildElement(Parent({}), cursor), nullptr);
    EXPECT_EQ(XmlDocument::NextChildElement(nullptr, cursor), nullptr);
}

TEST_F(XmlLookups, NextChildElementAfterTheLastLeavesTheCursorAlone) {
    XmlNode* e = Parent({Element("a"), Element("b"), Comment("c")});
    XmlNode* last = e->children.At(1);
    XmlNode* cursor = last;
    EXPECT_EQ(XmlDocument::NextChildElement(e, cursor), nullptr);
    EXPECT_EQ(cursor, last);
}

TEST_F(XmlLookups, NextChildElementGoesOnFromACursorOfAnyKind) {
    XmlNode* e = Parent({Element("a"), Comment("x"), Element("b")});
    XmlNode* cursor = e->children.At(1);
    EXPECT_EQ(XmlDocument::NextChildElement(e, cursor), e->children.At(2));
}

TEST_F(XmlLookups, NextChildElementSkipsTheDeclaration) {
    Build(document_, document_.root, Declaration());
    Build(document_, document_.root, Element("Settings"));
    EXPECT_EQ(Walk(document_.root, XmlDocument::NextChildElement), "Settings;");
}

TEST_F(XmlLookups, NextSettingsElementTakesThatNameAlone) {
    XmlNode* e = Parent({Element("settings"), Element("Settings"), Element("Table"), Comment("Settings"),
                         Element("Settings"), Element("Settings2")});
    EXPECT_EQ(Walk(e, XmlDocument::NextSettingsElement), "Settings;Settings;");
    XmlNode* cursor = e->children.At(4);
    EXPECT_EQ(XmlDocument::NextSettingsElement(e, cursor), nullptr);
    EXPECT_EQ(cursor, e->children.At(4));
}

TEST_F(XmlLookups, FindChildElementGivesSuccessiveMatches) {
    XmlNode* e =
        Parent({Element("b"), Element("a"), Comment("a"), Element("a"), Element("A"), Element("ab")});
    std::uint64_t position = 0;
    EXPECT_EQ(XmlDocument::FindChildElement(e, "a"_w, position), e->children.At(1));
    EXPECT_EQ(position, 2U);
    EXPECT_EQ(XmlDocument::FindChildElement(e, "a"_w, position), e->children.At(3));
    EXPECT_EQ(position, 4U);
    EXPECT_EQ(XmlDocument::FindChildElement(e, "a"_w, position), nullptr);
    EXPECT_EQ(position, 4U);
}

TEST_F(XmlLookups, FindChildElementAtOrPastTheEndLeavesThePositionAlone) {
    XmlNode* e = Parent({Element("a"), Element("a")});
    for (const std::uint64_t start : {std::uint64_t{2}, std::uint64_t{3}, ~std::uint64_t{0}}) {
        std::uint64_t position = start;
        EXPECT_EQ(XmlDocument::FindChildElement(e, "a"_w, position), nullptr);
        EXPECT_EQ(position, start);
    }
}

TEST_F(XmlLookups, FindChildElementWithoutAPositionGivesTheFirst) {
    XmlNode* e = Parent({Comment("a"), Element("a", {{"k", "1"}}), Element("a")});
    EXPECT_EQ(XmlDocument::FindChildElement(e, "a"_w), e->children.At(1));
    EXPECT_EQ(XmlDocument::FindChildElement(e, "b"_w), nullptr);
    EXPECT_EQ(XmlDocument::FindChildElement(nullptr, "a"_w), nullptr);
}

TEST_F(XmlLookups, FindChildElementDoesNotTakeCommentsForAnEmptyName) {
    EXPECT_EQ(XmlDocument::FindChildElement(Parent({Comment("x")}), WideView()), nullptr);
}

TEST_F(XmlLookups, FindTableElementGoesByItsName) {
    XmlNode* e = Parent({Element("Table"), Element("Var", {{"name", "S"}}), Element("Table", {{"name", "T"}}),
                         Element("Table", {{"id", "1"}, {"name", "S"}}), Element("Table", {{"name", "S"}})});
    EXPECT_EQ(document_.FindTableElement(e, "S"_w), e->children.At(3));
    EXPECT_EQ(document_.FindTableElement(e, "T"_w), e->children.At(2));
    EXPECT_EQ(document_.FindTableElement(e, "s"_w), nullptr);
    EXPECT_EQ(document_.FindTableElement(nullptr, "S"_w), nullptr);
}

TEST_F(XmlLookups, FindTableElementOfAnEmptyNameNeedsAnEmptyAttribute) {
    XmlNode* e =
        Parent({Element("Table"), Element("Table", {{"name", "S"}}), Element("Table", {{"name", ""}})});
    EXPECT_EQ(document_.FindTableElement(e, WideView()), e->children.At(2));
}

TEST_F(XmlLookups, FindTableElementLooksAtTheFirstOfTwoNames) {
    XmlNode* e =
        Parent({Element("Table", {{"name", "S"}, {"name", "T"}}), Element("Table", {{"name", "T"}})});
    EXPECT_EQ(document_.FindTableElement(e, "T"_w), e->children.At(1));
}

TEST_F(XmlLookups, FindTableElementDoesNotDescend) {
    XmlNode* e = Parent({Element("Group", {}, "", {Element("Table", {{"name", "S"}})})});
    EXPECT_EQ(document_.FindTableElement(e, "S"_w), nullptr);
}

TEST_F(XmlLookups, FindChildByNameAttributeTakesAnyElement) {
    XmlNode* e = Parent({Element("a"), Element("b", {{"name", "x"}}), Comment("c"),
                         Element("c", {{"name", "y"}}), Element("d", {{"name", "y"}})});
    XmlNode* found = nullptr;
    EXPECT_TRUE(document_.FindChildByNameAttribute(e, "y"_w, found));
    EXPECT_EQ(found, e->children.At(3));
}

TEST_F(XmlLookups, FindChildByNameAttributeWithoutATextTakesTheFirstThatHasAName) {
    XmlNode* e = Parent({Element("a", {{"id", "1"}}), Comment("c"), Element("b", {{"name", "whatever"}}),
                         Element("c", {{"name", ""}})});
    XmlNode* found = nullptr;
    EXPECT_TRUE(document_.FindChildByNameAttribute(e, WideView(), found));
    EXPECT_EQ(found, e->children.At(2));
}

TEST_F(XmlLookups, FindChildByNameAttributeTakesAnEmptyNameForAnyName) {
    XmlNode* e = Parent({Element("a", {{"name", ""}})});
    XmlNode* found = nullptr;
    EXPECT_TRUE(document_.FindChildByNameAttribute(e, WideView(), found));
    EXPECT_EQ(found, e->children.At(0));
}

TEST_F(XmlLookups, FindChildByNameAttributeLooksAtTheFirstOfTwoNames) {
    XmlNode* e = Parent({Element("a", {{"name", "x"}, {"name", "y"}}), Element("b", {{"name", "y"}})});
    XmlNode* found = nullptr;
    EXPECT_TRUE(document_.FindChildByNameAttribute(e, "y"_w, found));
    EXPECT_EQ(found, e->children.At(1));
}

TEST_F(XmlLookups, FindChildByNameAttributeLeavesTheResultAloneWhenThereIsNone) {
    XmlNode* e = Parent({Element("a"), Element("b", {{"name", "x"}})});
    XmlNode* found = document_.root;
    EXPECT_FALSE(document_.FindChildByNameAttribute(e, "X"_w, found));
    EXPECT_FALSE(document_.FindChildByNameAttribute(e, "xx"_w, found));
    EXPECT_FALSE(document_.FindChildByNameAttribute(Parent({}), WideView(), found));
    EXPECT_FALSE(document_.FindChildByNameAttribute(Parent({Element("a")}), WideView(), found));
    EXPECT_FALSE(document_.FindChildByNameAttribute(nullptr, WideView(), found));
    EXPECT_EQ(found, document_.root);
}

TEST_F(XmlLookups, FindChildByNameAttributeFindsAChildThatWasRenamedOrAddedSince) {
    XmlNode* e = Parent({});
    for (int i = 0; i < 100; ++i)
        document_.SetAttribute(*document_.InsertChild(e, "Var"_w, std::nullopt, nullptr), "name"_w,
                               Wide(test::Join({"key", std::to_string(i)})));
    XmlNode* found = nullptr;
    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(document_.FindChildByNameAttribute(e, "key70"_w, found));
    document_.SetAttribute(*e->children.At(70), "name"_w, "renamed"_w);
    EXPECT_FALSE(document_.FindChildByNameAttribute(e, "key70"_w, found));
    EXPECT_TRUE(document_.FindChildByNameAttribute(e, "renamed"_w, found));
    EXPECT_EQ(found, e->children.At(70));
    document_.SetAttribute(*e->children.At(3), "name"_w, "renamed"_w);
    EXPECT_TRUE(document_.FindChildByNameAttribute(e, "renamed"_w, found));
    EXPECT_EQ(found, e->children.At(3));
    XmlNode* first = document_.InsertChild(e, "Var"_w, std::nullopt, e->children.At(0));
    EXPECT_TRUE(document_.FindChildByNameAttribute(e, "renamed"_w, found));
    document_.SetAttribute(*first, "name"_w, "renamed"_w);
    EXPECT_TRUE(document_.FindChildByNameAttribute(e, "renamed"_w, found));
    EXPECT_EQ(found, first);
    document_.RemoveAttribute(first, "name"_w);
    EXPECT_TRUE(document_.FindChildByNameAttribute(e, "renamed"_w, found));
    EXPECT_EQ(found, e->children.At(4));
}

}  // namespace
}  // namespace mox
