// Siblings and their links.
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "mox_xmlApi/xml/xml_document.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Wide;

// A parent and nodes with the names "0", "1", "2", ...
class ChildListTest : public testing::Test {
  protected:
    XmlNode* NewNode() {
        const std::string name = std::to_string(made_++);
        return document_.CreateNode(Wide(name), std::nullopt, XmlNodeKind::Element);
    }
    XmlNode* Append() {
        XmlNode* node = NewNode();
        AppendChild(parent_, *node);
        return node;
    }
    XmlNode* InsertBefore(XmlNode* next) {
        XmlNode* node = NewNode();
        InsertChildBefore(*node, *next);
        return node;
    }
    void Fill(int count) {
        for (int i = 0; i < count; ++i)
            Append();
    }
    // The names in order, forward; "!" where a link leads elsewhere than it must.
    std::string Names() const {
        std::string names;
        const XmlNode* previous = parent_.children.Last();
        std::size_t count = 0;
        for (const XmlNode* child : parent_.children) {
            names.append(names.empty() ? "" : " ").append(test::Shown(child->name.View()));
            if (child->parent != &parent_ || child->previous != previous) names += "!";
            previous = child;
            ++count;
        }
        return count == parent_.children.Size() ? names : names + " and another number";
    }

    XmlDocument document_;
    XmlNode& parent_ = *document_.root;
    int made_ = 0;
};

TEST_F(ChildListTest, NewListIsEmpty) {
    EXPECT_EQ(parent_.children.Size(), 0U);
    EXPECT_TRUE(parent_.children.IsEmpty());
    EXPECT_EQ(parent_.children.begin(), parent_.children.end());
    EXPECT_EQ(parent_.children.First(), nullptr);
    EXPECT_EQ(parent_.children.Last(), nullptr);
}

TEST_F(ChildListTest, AppendedChildrenStandInOrder) {
    Fill(4);
    EXPECT_EQ(Names(), "0 1 2 3");
    EXPECT_EQ(parent_.children.Size(), 4U);
    EXPECT_FALSE(parent_.children.IsEmpty());
}

TEST_F(ChildListTest, PreviousOfTheFirstIsTheLast) {
    XmlNode* only = Append();
    EXPECT_EQ(only->previous, only);
    XmlNode* last = Append();
    EXPECT_EQ(only->previous, last);
    EXPECT_EQ(last->previous, only);
    EXPECT_EQ(last->next, nullptr);
    EXPECT_EQ(parent_.children.Last(), last);
}

TEST_F(ChildListTest, InsertedChildrenStandBeforeTheGivenOne) {
    XmlNode* zero = Append();
    XmlNode* one = Append();
    InsertBefore(zero);
    InsertBefore(one);
    InsertBefore(zero);
    EXPECT_EQ(Names(), "2 4 0 3 1");
}

TEST_F(ChildListTest, FirstMiddleLastAndOnlyChildCanBeTakenOut) {
    Fill(4);
    for (const auto& [position, left] : {std::pair{1U, "0 2 3"}, {2U, "0 2"}, {0U, "2"}, {0U, ""}}) {
        XmlNode* child = parent_.children.At(position);
        UnlinkChild(*child);
        EXPECT_EQ(Names(), left);
        EXPECT_EQ(child->parent, nullptr);
        EXPECT_EQ(child->next, nullptr);
        EXPECT_EQ(PositionOf(*child), -1);
    }
    Append();
    EXPECT_EQ(Names(), "4");
}

TEST_F(ChildListTest, PositionsAreCounted) {
    Fill(3);
    std::int64_t position = 0;
    for (const XmlNode* child : parent_.children)
        EXPECT_EQ(PositionOf(*child), position++);
    EXPECT_EQ(PositionOf(parent_), -1);
}

TEST_F(ChildListTest, AtGivesTheChildOfThePosition) {
    Fill(3);
    EXPECT_EQ(parent_.children.At(0), parent_.children.First());
    EXPECT_EQ(parent_.children.At(1), parent_.children.First()->next);
    EXPECT_EQ(parent_.children.At(2), parent_.children.Last());
}

TEST_F(ChildListTest, AtBeyondTheEndSaysInvalidSubscript) {
    Fill(3);
    for (const std::size_t position : {std::size_t{3}, std::size_t{4}, ~std::size_t{0}}) {
        try {
            parent_.children.At(position);
            ADD_FAILURE() << "nothing thrown at " << position;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
        }
    }
    const XmlNode childless{XmlNodeKind::Element};
    EXPECT_THROW(childless.children.At(0), std::out_of_range);
}

TEST_F(ChildListTest, IteratorsGoBothWaysAndOutliveChangesOfOtherChildren) {
    Fill(3);
    auto iterator = parent_.children.end();
    EXPECT_EQ(*--iterator, parent_.children.Last());
    EXPECT_EQ(*iterator--, parent_.children.Last());
    UnlinkChild(*parent_.children.Last());
    EXPECT_EQ(++iterator, parent_.children.end());
    iterator = parent_.children.begin();
    EXPECT_EQ(*iterator++, parent_.children.First());
    EXPECT_EQ(*iterator, parent_.children.Last());
    XmlNode* before = InsertBefore(*iterator);
    EXPECT_EQ(*--iterator, before);
}

// More children than there is memory for: the number is set instead.
TEST_F(ChildListTest, MoreThanTheMostChildrenAreRefused) {
    XmlNode& element = *document_.InsertChild(&parent_, "e"_w, std::nullopt, nullptr);
    XmlNode* before = document_.InsertChild(&element, "b"_w, std::nullopt, nullptr);
    XmlNode* loose = document_.CreateNode("c"_w, std::nullopt, XmlNodeKind::Element);
    const ChildList children = element.children;
    constexpr std::uint32_t kMost = 0x7FFFFFFF;
    std::memcpy(static_cast<void*>(&element.children), &kMost, sizeof kMost);
    ASSERT_EQ(element.children.Size(), std::size_t{kMost});
    EXPECT_THROW(document_.InsertChild(&element, "x"_w, std::nullopt, nullptr), std::length_error);
    EXPECT_THROW(document_.InsertChild(&element, "x"_w, std::nullopt, before), std::length_error);
    EXPECT_THROW(document_.AppendElement(element, "x"_w), std::length_error);
    EXPECT_THROW(document_.Parse("<x/>"_w, &element), std::length_error);
    try {
        document_.AppendNode(&element, loose);
        ADD_FAILURE() << "nothing thrown";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "vector<T> too long");
    }
    EXPECT_EQ(element.children.Last(), before);
    element.children = children;
    EXPECT_TRUE(document_.AppendNode(&element, loose));
    EXPECT_EQ(test::Dump(&element), "e(b c)");
}

TEST_F(ChildListTest, AttachmentKeepsTheFirstChild) {
    ChildListAttachment attachment;
    EXPECT_EQ(parent_.children.Attached(), nullptr);
    Fill(2);
    XmlNode* first = parent_.children.First();
    parent_.children.Attach(&attachment);
    EXPECT_EQ(parent_.children.Attached(), &attachment);
    EXPECT_EQ(attachment.first, first);
    Append();
    XmlNode* inserted = InsertBefore(first);
    EXPECT_EQ(attachment.first, inserted);
    EXPECT_EQ(Names(), "3 0 1 2");
    UnlinkChild(*inserted);
    EXPECT_EQ(Names(), "0 1 2");
    parent_.children.Attach(nullptr);
    EXPECT_EQ(parent_.children.Attached(), nullptr);
    EXPECT_EQ(Names(), "0 1 2");
}

TEST_F(ChildListTest, AnyChangesAgreeWithAPlainVector) {
    test::Random random(2);
    std::vector<XmlNode*> model;
    ChildListAttachment attachment;
    for (int step = 0; step < 5000; ++step) {
        const auto place = model.begin() + static_cast<std::ptrdiff_t>(random.Below(model.size() + 1));
        switch (random.Below(model.size() < 40 ? 4 : 6)) {
            case 0:
                parent_.children.Attach(random.OneIn(2) ? &attachment : nullptr);
                break;
            case 1:
                if (place != model.end()) model.insert(place, InsertBefore(*place));
                break;
            case 2:
                model.push_back(Append());
                break;
            default:
                if (place == model.end()) break;
                UnlinkChild(**place);
                document_.DestroyNode(*place);
                model.erase(place);
        }
        std::string expected;
        for (const XmlNode* node : model)
            expected.append(expected.empty() ? "" : " ").append(test::Shown(node->name.View()));
        ASSERT_EQ(Names(), expected) << "step " << step;
    }
    parent_.children.Attach(nullptr);
}

}  // namespace
}  // namespace mox
