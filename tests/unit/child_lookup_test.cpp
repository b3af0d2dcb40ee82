// The look-up by name against a scan of the children, over random changes of a parent with many of them.
#include "mox_xmlApi/xml/child_lookup.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "mox_xmlApi/xml/xml_document.h"

namespace {

using mox::ChildLookup;
using mox::NamedChildren;
using mox::NameIndex;
using mox::WideString;
using mox::WideView;
using mox::XmlDocument;
using mox::XmlNode;
using mox::operator""_w;

WideString Name(unsigned number) {
    const std::string text = "key" + std::to_string(number);
    return {text.begin(), text.end()};
}

// All children of that name, found without help.
std::vector<const XmlNode*> Scan(const XmlNode& parent, NamedChildren which, WideView name) {
    std::vector<const XmlNode*> found;
    for (const XmlNode* child : parent.children) {
        const bool isTable = child->kind == mox::XmlNodeKind::Element && child->name.View() == "Table"_w;
        if (which == NamedChildren::Tables && !isTable) continue;
        for (const mox::XmlAttribute& attribute : child->attributes) {
            if (attribute.name.View() != "name"_w) continue;
            if (attribute.value.View() == name) found.push_back(child);
            break;
        }
    }
    return found;
}

class ChildLookupTest : public testing::Test {
  protected:
    XmlNode* Add(WideView name, const XmlNode* before = nullptr, WideView element = "Var"_w) {
        XmlNode* child = document_.InsertChild(parent_, element, std::nullopt, before);
        document_.SetAttribute(*child, "name"_w, name);
        return child;
    }

    void AddMany(unsigned count) {
        for (unsigned i = 0; i < count; ++i)
            Add(Name(i));
    }

    XmlNode* Find(WideView name, NamedChildren which = NamedChildren::All) {
        return ChildLookup::Find(document_.Pool(), *parent_, which, name);
    }
    std::size_t Remove(WideView name, std::uint64_t from = 0) {
        return document_.RemoveChildrenWhere(parent_, "name"_w, name, from, false);
    }

    const NameIndex* Index() const { return static_cast<const NameIndex*>(parent_->children.Attached()); }

    // Looks up until the index must have paid for itself.
    void Warm(NamedChildren which = NamedChildren::All) {
        for (int i = 0; i < 20; ++i)
            Find("no such name"_w, which);
        ASSERT_NE(Index(), nullptr);
    }

    // What the index gives one after the other for the name is what a scan gives.
    testing::AssertionResult LeadsToAll(WideView name) const {
        if (Index() == nullptr) return testing::AssertionFailure() << "no index";
        std::vector<const XmlNode*> found;
        for (const XmlNode* child = Index()->First(name); child != nullptr; child = Index()->After(*child))
            found.push_back(child);
        if (found == Scan(*parent_, Index()->Which(), name)) return testing::AssertionSuccess();
        return testing::AssertionFailure() << found.size() << " children in another order, or others";
    }

    XmlDocument document_;
    XmlNode* parent_ = document_.InsertChild(document_.root, "Table"_w, std::nullopt, nullptr);
};

// ---- When there is an index

TEST_F(ChildLookupTest, IndexIsMadeOnlyAfterScansHavePaidForIt) {
    AddMany(100);
    Find("no such name"_w);
    EXPECT_EQ(Index(), nullptr);
    Warm();
    EXPECT_EQ(Find(Name(99)), parent_->children.At(99));
}

TEST_F(ChildLookupTest, IndexIsNotMadeForFewChildren) {
    AddMany(15);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(Find(Name(14)), parent_->children.At(14));
    EXPECT_EQ(Index(), nullptr);
}

TEST_F(ChildLookupTest, ShortScansPayLittle) {
    AddMany(100);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(Find(Name(0)), parent_->children.First());
    EXPECT_EQ(Index(), nullptr);
}

TEST_F(ChildLookupTest, RemovalsByNamePayForTheIndexToo) {
    AddMany(100);
    for (unsigned i = 0; i < 20; ++i)
        EXPECT_EQ(Remove(Name(i)), 1U);
    EXPECT_NE(Index(), nullptr);
    EXPECT_EQ(Find(Name(99)), parent_->children.Last());
}

TEST_F(ChildLookupTest, IndexOfAllAndOfTablesTakeTurns) {
    AddMany(100);
    XmlNode* table = Add(Name(3), nullptr, "Table"_w);
    Warm(NamedChildren::All);
    EXPECT_EQ(Find(Name(3), NamedChildren::All), parent_->children.At(3));
    EXPECT_EQ(Find(Name(3), NamedChildren::Tables), table);
    Warm(NamedChildren::Tables);
    EXPECT_EQ(Index()->Which(), NamedChildren::Tables);
    EXPECT_EQ(Find(Name(3), NamedChildren::All), parent_->children.At(3));
    EXPECT_EQ(Find(Name(3), NamedChildren::Tables), table);
    EXPECT_EQ(Find(Name(4), NamedChildren::Tables), nullptr);
}

// ---- What it follows

TEST_F(ChildLookupTest, FindsWhatWasAppendedSince) {
    AddMany(100);
    Warm();
    XmlNode* added = document_.InsertChild(parent_, "Var"_w, std::nullopt, nullptr);
    EXPECT_EQ(Find("new"_w), nullptr);
    document_.SetAttribute(*added, "name"_w, "new"_w);
    EXPECT_EQ(Find("new"_w), added);
    EXPECT_NE(Index(), nullptr);
}

TEST_F(ChildLookupTest, FindsWhatWasInsertedSince) {
    AddMany(100);
    Warm();
    XmlNode* first = Add("first"_w, parent_->children.First());
    XmlNode* middle = Add("middle"_w, parent_->children.At(50));
    EXPECT_EQ(Find("first"_w), first);
    EXPECT_EQ(Find("middle"_w), middle);
    EXPECT_EQ(Find(Name(99)), parent_->children.Last());
    EXPECT_NE(Index(), nullptr);
}

TEST_F(ChildLookupTest, FindsWhatWasMovedInWithItsName) {
    AddMany(100);
    Warm();
    XmlDocument scratch(document_.Pool());
    XmlNode* made = scratch.InsertChild(scratch.root, "Var"_w, std::nullopt, nullptr);
    scratch.SetAttribute(*made, "name"_w, "moved"_w);
    EXPECT_TRUE(document_.AppendNode(parent_, scratch.DetachLastChild(scratch.root)));
    EXPECT_EQ(Find("moved"_w), made);
    EXPECT_EQ(document_.DetachLastChild(parent_), made);
    EXPECT_EQ(Find("moved"_w), nullptr);
    EXPECT_NE(Index(), nullptr);
    document_.DestroyNode(made);
}

TEST_F(ChildLookupTest, FindsWhatWasParsedIntoTheParent) {
    AddMany(100);
    Warm();
    ASSERT_TRUE(document_.Parse("<Var name=\"parsed\"/>\n<Var name=\"key5\"/>"_w, parent_));
    EXPECT_EQ(Find("parsed"_w), parent_->children.At(100));
    EXPECT_TRUE(LeadsToAll(Name(5)));
}

TEST_F(ChildLookupTest, IndexGrowsWithTheList) {
    AddMany(100);
    Warm();
    const NameIndex* index = Index();
    for (unsigned i = 100; i < 5000; ++i) {
        XmlNode* added = Add(Name(i));
        ASSERT_EQ(Find(Name(i)), added);
    }
    EXPECT_EQ(Index(), index);
    EXPECT_EQ(Find(Name(0)), parent_->children.First());
}

TEST_F(ChildLookupTest, FollowsARename) {
    AddMany(100);
    Warm();
    const NameIndex* index = Index();
    document_.SetAttribute(*parent_->children.At(5), "name"_w, "renamed"_w);
    EXPECT_EQ(Find(Name(5)), nullptr);
    EXPECT_EQ(Find("renamed"_w), parent_->children.At(5));
    document_.RemoveAttribute(parent_->children.At(6), "name"_w);
    EXPECT_EQ(Find(Name(6)), nullptr);
    document_.SetAttribute(*parent_->children.At(6), "name"_w, Name(6));
    EXPECT_EQ(Find(Name(6)), parent_->children.At(6));
    EXPECT_EQ(Index(), index);
}

TEST_F(ChildLookupTest, SecondNameAttributeTakesOverWhenTheFirstGoes) {
    AddMany(100);
    ASSERT_TRUE(document_.Parse("<Var name=\"a\" name=\"b\"/>"_w, parent_));
    XmlNode* child = parent_->children.Last();
    Warm();
    EXPECT_EQ(Find("b"_w), nullptr);
    document_.RemoveAttribute(child, "name"_w);
    EXPECT_EQ(Find("a"_w), nullptr);
    EXPECT_EQ(Find("b"_w), child);
    EXPECT_NE(Index(), nullptr);
}

TEST_F(ChildLookupTest, RenameLeavesTheIndexesOfOtherParentsAlone) {
    AddMany(100);
    Warm();
    const NameIndex* index = Index();
    XmlNode* const first = parent_;
    parent_ = document_.InsertChild(document_.root, "Table"_w, std::nullopt, nullptr);
    AddMany(100);
    Warm();
    document_.SetAttribute(*parent_->children.At(20), "name"_w, Name(21));
    EXPECT_EQ(first->children.Attached(), index);
    EXPECT_EQ(ChildLookup::Find(document_.Pool(), *first, NamedChildren::All, Name(20)),
              first->children.At(20));
}

TEST_F(ChildLookupTest, RemovingNeverUsesTheIndexUp) {
    AddMany(2000);
    Warm();
    const NameIndex* index = Index();
    for (unsigned i = 0; i < 1900; ++i) {
        ASSERT_EQ(document_.RemoveNode(parent_, Find(Name(i))), 1);
        ASSERT_EQ(Find(Name(i)), nullptr);
    }
    EXPECT_EQ(Index(), index);
    EXPECT_EQ(Find(Name(1950)), parent_->children.At(50));
}

TEST_F(ChildLookupTest, MemoryOfRemovedNamesIsUsedAgain) {
    AddMany(100);
    Warm();
    const NameIndex* index = Index();
    const std::size_t held = document_.Pool().BytesHeld();
    for (int round = 0; round < 1000; ++round) {
        for (unsigned i = 100; i < 110; ++i)
            Add(Name(i % 3 == 0 ? 7 : i));
        ASSERT_EQ(Find(Name(109)), parent_->children.Last());
        for (unsigned i = 100; i < 110; ++i)
            document_.RemoveNode(parent_, parent_->children.Last());
        ASSERT_EQ(Find(Name(105)), nullptr);
    }
    EXPECT_EQ(Index(), index);
    EXPECT_EQ(document_.Pool().BytesHeld(), held);
}

TEST_F(ChildLookupTest, IndexGoesWithTheParent) {
    AddMany(1000);
    AddMany(10);
    Warm();
    document_.RemoveNode(document_.root, parent_);
    parent_ = document_.InsertChild(document_.root, "Table"_w, std::nullopt, nullptr);
    const std::size_t held = document_.Pool().BytesHeld();
    for (int round = 0; round < 20; ++round) {
        AddMany(1000);
        AddMany(10);
        Warm();
        document_.RemoveNode(document_.root, parent_);
        parent_ = document_.InsertChild(document_.root, "Table"_w, std::nullopt, nullptr);
    }
    EXPECT_EQ(document_.Pool().BytesHeld(), held);
}

// ---- Names that occur more than once

TEST_F(ChildLookupTest, FindsTheFirstOfOneNameAlsoAfterItsRemoval) {
    AddMany(100);
    XmlNode* second = Add(Name(7));
    XmlNode* third = Add(Name(7));
    Warm();
    const NameIndex* index = Index();
    XmlNode* fourth = Add(Name(7));
    EXPECT_TRUE(LeadsToAll(Name(7)));
    document_.RemoveNode(parent_, parent_->children.At(7));
    EXPECT_EQ(Find(Name(7)), second);
    document_.RemoveNode(parent_, third);
    EXPECT_TRUE(LeadsToAll(Name(7)));
    document_.RemoveNode(parent_, fourth);
    EXPECT_TRUE(LeadsToAll(Name(7)));
    document_.RemoveNode(parent_, second);
    EXPECT_EQ(Find(Name(7)), nullptr);
    EXPECT_EQ(Index(), index);
}

TEST_F(ChildLookupTest, ChildBeforeAllOthersIsTheFirstOfItsName) {
    AddMany(100);
    Warm();
    XmlNode* first = Add(Name(50), parent_->children.First());
    EXPECT_EQ(Find(Name(50)), first);
    EXPECT_TRUE(LeadsToAll(Name(50)));
    EXPECT_NE(Index(), nullptr);
}

TEST_F(ChildLookupTest, ChildOfUnknownOrderMakesTheIndexInvalidAndIsFoundAsAScanFindsIt) {
    AddMany(100);
    Warm();
    XmlNode* middle = Add(Name(80), parent_->children.At(40));
    EXPECT_EQ(Index(), nullptr);
    EXPECT_EQ(Find(Name(80)), middle);
    Warm();
    EXPECT_TRUE(LeadsToAll(Name(80)));
    document_.SetAttribute(*parent_->children.At(5), "name"_w, Name(80));
    EXPECT_EQ(Find(Name(80)), parent_->children.At(5));
}

TEST_F(ChildLookupTest, EmptyNamesAreNamesLikeOthers) {
    AddMany(100);
    XmlNode* first = Add(WideView());
    XmlNode* second = Add(WideView());
    document_.InsertChild(parent_, "Var"_w, std::nullopt, nullptr);
    Warm();
    EXPECT_EQ(Find(WideView()), first);
    EXPECT_EQ(Remove(WideView(), 1), 1U);
    EXPECT_EQ(Find(WideView()), first);
    EXPECT_EQ(Remove(WideView()), 1U);
    EXPECT_EQ(Find(WideView()), nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_EQ(parent_->children.Size(), 101U);
}

TEST_F(ChildLookupTest, RemovalByNameGoesFromMatchToMatch) {
    AddMany(50);
    for (int i = 0; i < 20; ++i)
        Add("many"_w);
    Warm();
    const NameIndex* index = Index();
    parent_->scanCost = 0;
    EXPECT_FALSE(document_.RemoveChildWhere(parent_, "name"_w, "many"_w, 20, false));
    EXPECT_TRUE(document_.RemoveChildWhere(parent_, "name"_w, "many"_w, 19, false));
    EXPECT_TRUE(document_.RemoveChildWhere(parent_, "name"_w, "many"_w, 0, false));
    EXPECT_TRUE(LeadsToAll("many"_w));
    EXPECT_EQ(Remove("many"_w, 3), 15U);
    EXPECT_TRUE(LeadsToAll("many"_w));
    EXPECT_EQ(Remove("many"_w), 3U);
    EXPECT_EQ(Remove("many"_w), 0U);
    EXPECT_EQ(Remove(Name(3)), 1U);
    EXPECT_EQ(parent_->children.Size(), 49U);
    EXPECT_EQ(parent_->scanCost, 0U);
    EXPECT_EQ(Index(), index);
}

// ---- All of it together

// One random change; names are few, so that many children share one.
void Change(std::mt19937& random, XmlDocument& document, XmlNode* parent) {
    const auto below = [&](std::size_t limit) { return static_cast<unsigned>(random() % limit); };
    const auto element = [&] { return below(3) == 0 ? "Var"_w : "Table"_w; };
    const std::size_t count = parent->children.Size();
    XmlNode* any = count == 0 ? nullptr : parent->children.At(below(count));
    switch (below(14)) {
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
            if (any != nullptr)
                document.SetAttribute(*any, "name"_w, Name(below(below(20) == 0 ? 60 : 100000)));
            break;
        case 5:
            if (any != nullptr) document.RemoveAttribute(any, "name"_w);
            break;
        case 6:
            if (any != nullptr) {
                XmlNode* child = document.InsertChild(parent, element(), std::nullopt, any);
                document.SetAttribute(*child, "name"_w, Name(below(below(20) == 0 ? 60 : 100000)));
            }
            break;
        case 7: {
            XmlNode* child = document.InsertChild(parent, element(), std::nullopt, parent->children.First());
            document.SetAttribute(*child, "name"_w, Name(below(60)));
            break;
        }
        case 8:
            if (XmlNode* last = document.DetachLastChild(parent); last != nullptr)
                document.AppendNode(parent, last);
            break;
        default:
            XmlNode* child = document.InsertChild(parent, element(), std::nullopt, nullptr);
            if (below(8) != 0) document.SetAttribute(*child, "name"_w, Name(below(below(2) == 0 ? 60 : 600)));
            break;
    }
}

TEST_F(ChildLookupTest, AnswersAsTheScanDoesOverRandomChanges) {
    std::mt19937 random(20240611);
    std::size_t answeredByIndex = 0;
    for (int step = 0; step < 12000; ++step) {
        const auto which = step / 1000 % 2 == 0 ? NamedChildren::All : NamedChildren::Tables;
        Change(random, document_, parent_);
        for (int i = 0; i < 3; ++i) {
            const WideString name = Name(static_cast<unsigned>(random() % 620));
            const std::vector<const XmlNode*> found = Scan(*parent_, which, name);
            ASSERT_EQ(Find(name, which), found.empty() ? nullptr : found.front()) << "step " << step;
        }
        if (Index() != nullptr) {
            ++answeredByIndex;
            ASSERT_TRUE(LeadsToAll(Name(static_cast<unsigned>(random() % 60)))) << "step " << step;
        }
        if (parent_->children.Size() > 1500) {
            document_.RemoveNode(document_.root, parent_);
            parent_ = document_.InsertChild(document_.root, "Table"_w, std::nullopt, nullptr);
        }
    }
    EXPECT_GT(answeredByIndex, 3000U);
}

}  // namespace
