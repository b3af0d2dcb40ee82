// The look-up by name against a scan of the list, over random changes of a parent with many children.
#include "mox_xmlApi/xml/child_index.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "mox_xmlApi/xml/xml_document.h"

namespace {

using mox::ChildIndex;
using mox::WideString;
using mox::WideView;
using mox::XmlDocument;
using mox::XmlNode;
using mox::operator""_w;

WideString Name(unsigned number) {
    const std::string text = "key" + std::to_string(number);
    return {text.begin(), text.end()};
}

const XmlNode* Scan(const XmlNode& parent, WideView name) {
    for (const XmlNode* child : parent.children) {
        for (const mox::XmlAttribute& attribute : child->attributes) {
            if (attribute.name.View() != "name"_w) continue;
            if (attribute.value.View() == name) return child;
            break;
        }
    }
    return nullptr;
}

class ChildIndexTest : public testing::Test {
  protected:
    XmlNode* Add(WideView name, const XmlNode* before = nullptr) {
        XmlNode* child = document_.InsertChild(parent_, "Var"_w, std::nullopt, before);
        document_.SetAttribute(child, "name"_w, name);
        return child;
    }

    void AddMany(unsigned count) {
        for (unsigned i = 0; i < count; ++i)
            Add(Name(i));
    }

    XmlNode* Find(WideView name) { return ChildIndex::Find(document_.Pool(), *parent_, name); }

    // Looks up until the index must have paid for itself.
    void Warm() {
        for (int i = 0; i < 20; ++i)
            Find("no such name"_w);
        ASSERT_NE(parent_->children.Attached(), nullptr);
    }

    XmlDocument document_;
    XmlNode* parent_ = document_.InsertChild(document_.root, "Table"_w, std::nullopt, nullptr);
};

TEST_F(ChildIndexTest, IsMadeOnlyAfterScansHavePaidForIt) {
    AddMany(100);
    Find("no such name"_w);
    EXPECT_EQ(parent_->children.Attached(), nullptr);
    Warm();
    EXPECT_EQ(Find(Name(99)), parent_->children.At(99));
}

TEST_F(ChildIndexTest, IsNotMadeForFewChildren) {
    AddMany(15);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(Find(Name(14)), parent_->children.At(14));
    EXPECT_EQ(parent_->children.Attached(), nullptr);
}

TEST_F(ChildIndexTest, FindsWhatWasAppendedSince) {
    AddMany(100);
    Warm();
    XmlNode* added = document_.InsertChild(parent_, "Var"_w, std::nullopt, nullptr);
    document_.SetAttribute(added, "name"_w, "new"_w);
    EXPECT_EQ(Find("new"_w), added);
    EXPECT_NE(parent_->children.Attached(), nullptr);
}

TEST_F(ChildIndexTest, GrowsWithTheList) {
    AddMany(100);
    Warm();
    for (unsigned i = 100; i < 5000; ++i) {
        XmlNode* added = Add(Name(i));
        ASSERT_EQ(Find(Name(i)), added);
    }
    EXPECT_NE(parent_->children.Attached(), nullptr);
    EXPECT_EQ(Find(Name(0)), parent_->children.At(0));
}

TEST_F(ChildIndexTest, FindsTheFirstOfOneNameAlsoAfterItsRemoval) {
    AddMany(100);
    XmlNode* second = Add(Name(7));
    Warm();
    EXPECT_EQ(Find(Name(7)), parent_->children.At(7));
    document_.RemoveNode(parent_, parent_->children.At(7));
    EXPECT_EQ(Find(Name(7)), second);
}

TEST_F(ChildIndexTest, FindsNothingUnderAnOldName) {
    AddMany(100);
    Warm();
    document_.SetAttribute(parent_->children.At(5), "name"_w, "renamed"_w);
    EXPECT_EQ(Find(Name(5)), nullptr);
    EXPECT_EQ(Find("renamed"_w), parent_->children.At(5));
    document_.RemoveAttribute(parent_->children.At(6), "name"_w);
    EXPECT_EQ(Find(Name(6)), nullptr);
}

TEST_F(ChildIndexTest, SettingAnEqualNameKeepsTheIndex) {
    AddMany(100);
    Warm();
    document_.SetAttribute(parent_->children.At(5), "name"_w, Name(5));
    EXPECT_EQ(Find(Name(5)), parent_->children.At(5));
    EXPECT_NE(parent_->children.Attached(), nullptr);
}

TEST_F(ChildIndexTest, RemovingNeverUsesTheIndexUp) {
    AddMany(2000);
    Warm();
    for (unsigned i = 0; i < 1900; ++i) {
        ASSERT_EQ(document_.RemoveNode(parent_, Find(Name(i))), 1);
        ASSERT_EQ(Find(Name(i)), nullptr);
    }
    EXPECT_NE(parent_->children.Attached(), nullptr);
    EXPECT_EQ(Find(Name(1950)), parent_->children.At(50));
}

TEST_F(ChildIndexTest, PlacesOfRemovedChildrenAreUsedAgain) {
    AddMany(100);
    Warm();
    constexpr std::uint32_t kUntouched = 12345;  // a new index would begin a new account
    parent_->scanned = kUntouched;
    const std::size_t held = document_.Pool().BytesHeld();
    for (int round = 0; round < 1000; ++round) {
        for (unsigned i = 100; i < 110; ++i) {
            Add(Name(i));
            ASSERT_EQ(Find(Name(i)), parent_->children.At(i));
        }
        for (unsigned i = 110; i-- > 100;)
            document_.RemoveNode(parent_, parent_->children.At(i));
        ASSERT_EQ(Find(Name(105)), nullptr);
    }
    EXPECT_EQ(parent_->scanned, kUntouched);
    EXPECT_EQ(document_.Pool().BytesHeld(), held);
}

TEST_F(ChildIndexTest, GivesItsMemoryBackWithTheParent) {
    AddMany(1000);
    Warm();
    document_.RemoveNode(document_.root, parent_);
    parent_ = document_.InsertChild(document_.root, "Table"_w, std::nullopt, nullptr);
    const std::size_t held = document_.Pool().BytesHeld();
    for (int round = 0; round < 20; ++round) {
        AddMany(1000);
        Warm();
        document_.RemoveNode(document_.root, parent_);
        parent_ = document_.InsertChild(document_.root, "Table"_w, std::nullopt, nullptr);
    }
    EXPECT_EQ(document_.Pool().BytesHeld(), held);
}

TEST_F(ChildIndexTest, SoleChildIsToldOnlyWhenItIs) {
    AddMany(100);
    Add(Name(3));
    Warm();
    XmlNode* child = nullptr;
    EXPECT_TRUE(ChildIndex::FindSole(document_.Pool(), *parent_, Name(4), child));
    EXPECT_EQ(child, parent_->children.At(4));
    EXPECT_TRUE(ChildIndex::FindSole(document_.Pool(), *parent_, "no such name"_w, child));
    EXPECT_EQ(child, nullptr);
    EXPECT_FALSE(ChildIndex::FindSole(document_.Pool(), *parent_, Name(3), child));
}

// One random change; names are few, so that many children share one.
void Change(std::mt19937& random, XmlDocument& document, XmlNode* parent) {
    const auto below = [&](std::size_t limit) { return static_cast<unsigned>(random() % limit); };
    const std::size_t count = parent->children.Size();
    XmlNode* any = count == 0 ? nullptr : parent->children.At(below(count));
    switch (below(12)) {
        case 0:
            if (any != nullptr) document.RemoveNode(parent, any);
            break;
        case 1:
            document.RemoveChildWhere(parent, "name"_w, Name(below(60)), below(3), false);
            break;
        case 2:
            if (below(20) == 0)
                document.RemoveChildrenWhere(parent, "name"_w, Name(below(60)), below(2), false);
            break;
        case 3:
            document.RemoveChildrenWhere(parent, "name"_w, Name(below(600)), XmlDocument::kFirstMatch, false);
            break;
        case 4:
            if (any != nullptr && below(30) == 0) document.SetAttribute(any, "name"_w, Name(below(60)));
            break;
        case 5:
            if (any != nullptr && below(30) == 0) document.RemoveAttribute(any, "name"_w);
            break;
        case 6:
            if (any != nullptr && below(10) == 0) {
                XmlNode* child = document.InsertChild(parent, "Var"_w, std::nullopt, any);
                document.SetAttribute(child, "name"_w, Name(below(60)));
            }
            break;
        default:
            XmlNode* child = document.InsertChild(parent, "Var"_w, std::nullopt, nullptr);
            if (below(8) != 0) document.SetAttribute(child, "name"_w, Name(below(below(2) == 0 ? 60 : 600)));
            break;
    }
}

TEST_F(ChildIndexTest, AnswersAsTheScanDoesOverRandomChanges) {
    std::mt19937 random(20240611);
    std::size_t answeredByIndex = 0;
    for (int step = 0; step < 6000; ++step) {
        Change(random, document_, parent_);
        for (int i = 0; i < 3; ++i) {
            const WideString name = Name(static_cast<unsigned>(random() % 620));
            ASSERT_EQ(Find(name), Scan(*parent_, name)) << "step " << step;
        }
        if (parent_->children.Attached() != nullptr) ++answeredByIndex;
        if (parent_->children.Size() > 1500) {
            document_.RemoveNode(document_.root, parent_);
            parent_ = document_.InsertChild(document_.root, "Table"_w, std::nullopt, nullptr);
        }
    }
    EXPECT_GT(answeredByIndex, 500U);
}

}  // namespace
