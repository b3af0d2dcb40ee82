// Holders of trees, and how nodes come and go outside a tree.
#include "mox_xmlApi/xml/xml_document.h"

#include <gtest/gtest.h>
#include <optional>

#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Build;
using test::Comment;
using test::Dump;
using test::DumpChildren;
using test::Element;
using test::Wide;

constexpr auto kElement = XmlNodeKind::Element;
constexpr auto kDeclaration = XmlNodeKind::ProcessingInstruction;
constexpr auto kComment = XmlNodeKind::Comment;
constexpr auto kDocument = XmlNodeKind::Document;

XmlNode* Insert(XmlDocument& document, XmlNode* parent, WideView name, const XmlNode* before = nullptr) {
    return document.InsertChild(parent, name, std::nullopt, before);
}

// ---- Holders

TEST(XmlNodeKinds, HaveTheNumbersOfTheW3C) {
    EXPECT_EQ(static_cast<int>(kElement), 1);
    EXPECT_EQ(static_cast<int>(kDeclaration), 7);
    EXPECT_EQ(static_cast<int>(kComment), 8);
    EXPECT_EQ(static_cast<int>(kDocument), 9);
    EXPECT_EQ(sizeof(XmlNodeKind), 4U);
}

TEST(XmlNodeFields, NewNodeHasNoneOfThem) {
    const XmlNode node{kElement};
    EXPECT_EQ(node.kind, kElement);
    EXPECT_EQ(node.parent, nullptr);
    EXPECT_EQ(node.next, nullptr);
    EXPECT_TRUE(node.children.IsEmpty());
    EXPECT_TRUE(node.attributes.IsEmpty());
}

TEST(XmlDocumentHolder, NewDocumentIsAnEmptyDocumentNodeOfItsOwn) {
    const XmlDocument document;
    EXPECT_TRUE(document.ownsRoot);
    EXPECT_TRUE(document.writable);
    EXPECT_FALSE(document.loaded);
    ASSERT_NE(document.root, nullptr);
    EXPECT_EQ(document.root->kind, kDocument);
    EXPECT_EQ(PositionOf(*document.root), -1);
    EXPECT_TRUE(document.root->name.IsEmpty());
    EXPECT_TRUE(document.root->value.IsEmpty());
    EXPECT_TRUE(document.root->attributes.IsEmpty());
    EXPECT_TRUE(document.root->children.IsEmpty());
}

TEST(XmlDocumentHolder, AttachedDocumentBorrowsTheNodeAndCountsAsLoaded) {
    XmlDocument owner;
    XmlNode* element = Insert(owner, owner.root, "e"_w);
    XmlDocument borrower(owner.Pool(), element);
    EXPECT_EQ(borrower.root, element);
    EXPECT_FALSE(borrower.ownsRoot);
    EXPECT_TRUE(borrower.writable);
    EXPECT_TRUE(borrower.loaded);
    EXPECT_FALSE(borrower.LoadBuffer("<a/>", 4));
    EXPECT_EQ(Dump(element), "e");
}

TEST(XmlDocumentHolder, AttachReplacesTheRootWithoutReleasingIt) {
    XmlDocument document;
    XmlNode* first = document.root;
    XmlNode* element = document.CreateNode("e"_w, std::nullopt, kElement);
    document.Attach(element);
    EXPECT_EQ(document.root, element);
    EXPECT_FALSE(document.ownsRoot);
    EXPECT_TRUE(document.writable);
    EXPECT_TRUE(document.loaded);
    EXPECT_EQ(Dump(first), "#");
    document.DestroyNode(first);
}

TEST(XmlDocumentHolder, AttachToNothingMakesAFreshDocument) {
    XmlDocument document;
    document.loaded = true;
    document.writable = false;
    XmlNode* first = document.root;
    document.Attach(nullptr);
    EXPECT_NE(document.root, first);
    EXPECT_EQ(document.root->kind, kDocument);
    EXPECT_EQ(PositionOf(*document.root), -1);
    EXPECT_TRUE(document.ownsRoot);
    EXPECT_TRUE(document.writable);
    EXPECT_FALSE(document.loaded);
}

TEST(XmlDocumentHolder, EndOfABorrowerLeavesTheTreeAsItIs) {
    XmlDocument owner;
    XmlNode* element = Build(owner, owner.root, Element("e", {{"k", "v"}}, "text", {Element("c")}));
    {
        XmlDocument borrower(owner.Pool(), element);
        borrower.SetAttribute(*element, "k"_w, "changed through the borrower"_w);
        Insert(borrower, element, "added"_w);
    }
    EXPECT_EQ(Dump(element), "e{k='changed through the borrower'}'text'(c added)");
}

TEST(XmlDocumentHolder, EndOfAScratchDocumentGivesItsNodesBackToTheSharedPool) {
    XmlDocument owner;
    for (int round = 0; round < 200; ++round) {
        XmlDocument scratch(owner.Pool());
        EXPECT_TRUE(scratch.ownsRoot);
        EXPECT_FALSE(scratch.loaded);
        Build(scratch, scratch.root, Element("e", {{"k", "value"}}, "text", {Element("c"), Comment("note")}));
    }
    EXPECT_EQ(owner.Pool().BytesHeld(), XmlPool::kFirstSlab);
}

TEST(XmlDocumentHolder, NodeMadeInAScratchDocumentMovesIntoTheTreeOfItsPool) {
    XmlDocument owner;
    {
        XmlDocument scratch(owner.Pool());
        Build(scratch, scratch.root, Element("Table", {{"name", "S"}}, "", {Element("Var")}));
        XmlNode* moved = scratch.DetachLastChild(scratch.root);
        ASSERT_NE(moved, nullptr);
        EXPECT_TRUE(owner.AppendNode(owner.root, moved));
    }
    EXPECT_EQ(DumpChildren(owner.root), "Table{name='S'}(Var)");
}

// ---- Creating and destroying

TEST(XmlDocumentCreate, ElementAndCommentTakeAValue) {
    XmlDocument document;
    XmlNode* element = document.CreateNode("e"_w, "text"_w, kElement);
    EXPECT_EQ(Dump(element), "e'text'");
    EXPECT_EQ(PositionOf(*element), -1);
    XmlNode* comment = document.CreateNode(WideView(), "note"_w, kComment);
    EXPECT_EQ(Dump(comment), "!'note'");
    EXPECT_EQ(PositionOf(*comment), -1);
}

TEST(XmlDocumentCreate, OtherKindsIgnoreTheValue) {
    XmlDocument document;
    EXPECT_EQ(Dump(document.CreateNode("xml"_w, "ignored"_w, kDeclaration)), "?xml");
    EXPECT_EQ(Dump(document.CreateNode("d"_w, "ignored"_w, kDocument)), "#d");
}

TEST(XmlDocumentCreate, NodeWithoutAValueHasAnEmptyOne) {
    XmlDocument document;
    EXPECT_EQ(Dump(document.CreateNode("e"_w, std::nullopt, kElement)), "e");
    EXPECT_EQ(Dump(document.CreateNode("e"_w, WideView(), kElement)), "e");
}

TEST(XmlDocumentCreate, NodeKeepsCopiesOfItsTexts) {
    XmlDocument document;
    WideString name = Wide("name");
    WideString value = Wide("value");
    const XmlNode* node = document.CreateNode(name, value, kElement);
    name[0] = value[0] = wchar16{'#'};
    EXPECT_EQ(Dump(node), "name'value'");
}

TEST(XmlDocumentDestroy, ClearsTheCallersPointerAndAcceptsNull) {
    XmlDocument document;
    XmlNode* node = document.CreateNode("e"_w, std::nullopt, kElement);
    document.DestroyNode(node);
    EXPECT_EQ(node, nullptr);
    document.DestroyNode(node);
    EXPECT_EQ(node, nullptr);
}

TEST(XmlDocumentDestroy, GivesTheWholeSubtreeBack) {
    XmlDocument document;
    const model::NodePtr tree = Element(
        "e", {{"k", "a value that is long enough for storage"}}, "text",
        {Element("c", {{"x", "1"}, {"y", "2"}}, "more", {Element("d"), Comment("note")}), Element("f")});
    std::size_t held = 0;
    for (int round = 0; round < 500; ++round) {
        Build(document, document.root, tree);
        XmlNode* node = document.DetachLastChild(document.root);
        document.DestroyNode(node);
        if (round == 0) held = document.Pool().BytesHeld();
    }
    EXPECT_EQ(document.Pool().BytesHeld(), held);
}

}  // namespace
}  // namespace mox
