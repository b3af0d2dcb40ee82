// Holders, and how trees grow: creating, inserting, appending, detaching. Removal and look-ups have files of
// their own.
#include "mox_xmlApi/xml/xml_document.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>

#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Build;
using test::Comment;
using test::Declaration;
using test::Dump;
using test::DumpChildren;
using test::Element;
using test::Shown;
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

TEST(XmlNodeFields, LieInTheirOrder) {
    const auto place = [](const auto& field) { return reinterpret_cast<std::uintptr_t>(&field); };
    const XmlNode node{kElement};
    EXPECT_LT(place(node.kind), place(node.index));
    EXPECT_LT(place(node.index), place(node.name));
    EXPECT_LT(place(node.name), place(node.value));
    EXPECT_LT(place(node.value), place(node.attributes));
    EXPECT_LT(place(node.attributes), place(node.children));
}

TEST(XmlDocumentHolder, NewDocumentIsAnEmptyDocumentNodeOfItsOwn) {
    const XmlDocument document;
    EXPECT_TRUE(document.ownsRoot);
    EXPECT_TRUE(document.writable);
    EXPECT_FALSE(document.loaded);
    ASSERT_NE(document.root, nullptr);
    EXPECT_EQ(document.root->kind, kDocument);
    EXPECT_EQ(document.root->index, -1);
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
    EXPECT_EQ(document.root->index, -1);
    EXPECT_TRUE(document.ownsRoot);
    EXPECT_TRUE(document.writable);
    EXPECT_FALSE(document.loaded);
}

TEST(XmlDocumentHolder, EndOfABorrowerLeavesTheTreeAsItIs) {
    XmlDocument owner;
    XmlNode* element = Build(owner, owner.root, Element("e", {{"k", "v"}}, "text", {Element("c")}));
    {
        XmlDocument borrower(owner.Pool(), element);
        borrower.SetAttribute(element, "k"_w, "changed through the borrower"_w);
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
    EXPECT_EQ(element->index, -1);
    XmlNode* comment = document.CreateNode(WideView(), "note"_w, kComment);
    EXPECT_EQ(Dump(comment), "!'note'");
    EXPECT_EQ(comment->index, -1);
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
    const test::PlainNode tree = Element(
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

// ---- InsertChild

TEST(XmlDocumentInsert, WithoutBeforeAppends) {
    XmlDocument document;
    const XmlNode* a = Insert(document, document.root, "a"_w);
    const XmlNode* b = document.InsertChild(document.root, "b"_w, "text"_w, nullptr);
    EXPECT_EQ(a->index, 0);
    EXPECT_EQ(b->index, 1);
    EXPECT_EQ(b->kind, kElement);
    EXPECT_EQ(DumpChildren(document.root), "a b'text'");
}

TEST(XmlDocumentInsert, BeforeTheFirstRenumbersEveryOther) {
    XmlDocument document;
    XmlNode* a = Insert(document, document.root, "a"_w);
    XmlNode* b = Insert(document, document.root, "b"_w);
    const XmlNode* first = Insert(document, document.root, "first"_w, a);
    EXPECT_EQ(first->index, 0);
    EXPECT_EQ(a->index, 1);
    EXPECT_EQ(b->index, 2);
    EXPECT_EQ(DumpChildren(document.root), "first a b");
}

TEST(XmlDocumentInsert, BeforeTheLastAndInTheMiddle) {
    XmlDocument document;
    XmlNode* e = Insert(document, document.root, "e"_w);
    Insert(document, e, "a"_w);
    XmlNode* b = Insert(document, e, "b"_w);
    XmlNode* middle = Insert(document, e, "m"_w, b);
    Insert(document, e, "n"_w, middle);
    EXPECT_EQ(Dump(e), "e(a n m b)");
}

TEST(XmlDocumentInsert, BeforeACommentIsFine) {
    XmlDocument document;
    XmlNode* comment = Build(document, document.root, Comment("note"));
    EXPECT_NE(Insert(document, document.root, "e"_w, comment), nullptr);
    EXPECT_EQ(DumpChildren(document.root), "e !'note'");
}

TEST(XmlDocumentInsert, BeforeAChildOfAnotherParentIsRefused) {
    XmlDocument document;
    XmlNode* e = Build(document, document.root, Element("e", {}, "", {Element("a")}));
    XmlNode* f = Build(document, document.root, Element("f", {}, "", {Element("b"), Element("c")}));
    EXPECT_EQ(Insert(document, e, "new"_w, f->children.At(0)), nullptr);
    EXPECT_EQ(Insert(document, e, "new"_w, f->children.At(1)), nullptr);
    EXPECT_EQ(Insert(document, e, "new"_w, e), nullptr);
    EXPECT_EQ(DumpChildren(document.root), "e(a) f(b c)");
}

TEST(XmlDocumentInsert, BeforeANodeInNoListIsRefused) {
    XmlDocument document;
    Insert(document, document.root, "a"_w);
    XmlNode* loose = document.CreateNode("loose"_w, std::nullopt, kElement);
    EXPECT_EQ(Insert(document, document.root, "new"_w, loose), nullptr);
    EXPECT_EQ(DumpChildren(document.root), "a");
}

TEST(XmlDocumentInsert, RefusedInsertionTakesNoMemory) {
    XmlDocument document;
    XmlNode* e = Insert(document, document.root, "e"_w);
    Insert(document, e, "c"_w);
    XmlNode* stranger = Insert(document, document.root, "stranger"_w);
    for (int i = 0; i < 2000; ++i)
        Insert(document, e, "a name that needs storage"_w, stranger);
    EXPECT_EQ(document.Pool().BytesHeld(), XmlPool::kFirstSlab);
}

TEST(XmlDocumentInsert, OnlyElementsAndDocumentsTakeChildren) {
    XmlDocument document;
    XmlNode* declaration = Build(document, document.root, Declaration());
    XmlNode* comment = Build(document, document.root, Comment("note"));
    EXPECT_EQ(Insert(document, nullptr, "e"_w), nullptr);
    EXPECT_EQ(Insert(document, declaration, "e"_w), nullptr);
    EXPECT_EQ(Insert(document, comment, "e"_w), nullptr);
    EXPECT_EQ(DumpChildren(document.root), "?xml{version='1.0'} !'note'");
}

TEST(XmlDocumentInsert, DeclarationGoesIntoAnEmptyDocument) {
    XmlDocument document;
    const XmlNode* declaration =
        document.InsertChild(document.root, "xml"_w, std::nullopt, nullptr, kDeclaration);
    ASSERT_NE(declaration, nullptr);
    EXPECT_EQ(declaration->kind, kDeclaration);
    EXPECT_EQ(declaration->index, 0);
    EXPECT_EQ(DumpChildren(document.root), "?xml");
}

TEST(XmlDocumentInsert, DeclarationWithAnEmptyValueIsFine) {
    XmlDocument document;
    EXPECT_NE(document.InsertChild(document.root, "xml"_w, WideView(), nullptr, kDeclaration), nullptr);
}

TEST(XmlDocumentInsert, DeclarationDoesNotLookAtBefore) {
    XmlDocument document;
    XmlNode* loose = document.CreateNode("loose"_w, std::nullopt, kElement);
    EXPECT_NE(document.InsertChild(document.root, "xml"_w, std::nullopt, loose, kDeclaration), nullptr);
}

TEST(XmlDocumentInsert, DeclarationIsRefusedAfterAnyOtherNode) {
    XmlDocument document;
    Build(document, document.root, Comment("note"));
    EXPECT_EQ(document.InsertChild(document.root, "xml"_w, std::nullopt, nullptr, kDeclaration), nullptr);
    EXPECT_EQ(DumpChildren(document.root), "!'note'");
}

TEST(XmlDocumentInsert, DeclarationIsRefusedInAnElement) {
    XmlDocument document;
    XmlNode* element = Insert(document, document.root, "e"_w);
    EXPECT_EQ(document.InsertChild(element, "xml"_w, std::nullopt, nullptr, kDeclaration), nullptr);
    EXPECT_EQ(Dump(element), "e");
}

TEST(XmlDocumentInsert, DeclarationWithAValueIsRefused) {
    XmlDocument document;
    EXPECT_EQ(document.InsertChild(document.root, "xml"_w, "1"_w, nullptr, kDeclaration), nullptr);
    EXPECT_EQ(DumpChildren(document.root), "");
}

TEST(XmlDocumentInsert, OtherKindsAreRefused) {
    XmlDocument document;
    for (const XmlNodeKind kind : {XmlNodeKind{2}, kComment, kDocument, XmlNodeKind{0}, XmlNodeKind{3}})
        EXPECT_EQ(document.InsertChild(document.root, "x"_w, std::nullopt, nullptr, kind), nullptr);
    EXPECT_EQ(DumpChildren(document.root), "");
}

// ---- AddDeclaration, AppendNode and DetachLastChild

TEST(XmlDocumentAddDeclaration, GivesAnEmptyDocumentTheUsualOne) {
    XmlDocument document;
    EXPECT_TRUE(document.AddDeclaration());
    EXPECT_EQ(DumpChildren(document.root), "?xml{version='1.0' encoding='UTF-8'}");
}

TEST(XmlDocumentAddDeclaration, IsRefusedInAnyOther) {
    XmlDocument document;
    Build(document, document.root, Element("e"));
    EXPECT_FALSE(document.AddDeclaration());
    EXPECT_EQ(DumpChildren(document.root), "e");
    XmlDocument attached(document.Pool(), document.root->children.At(0));
    EXPECT_FALSE(attached.AddDeclaration());
    EXPECT_EQ(DumpChildren(document.root), "e");
}

TEST(XmlDocumentAppend, ElementsCommentsAndDeclarationsBecomeTheLastChild) {
    XmlDocument document;
    XmlNode* e = Insert(document, document.root, "e"_w);
    XmlNode* c = document.CreateNode("c"_w, std::nullopt, kElement);
    EXPECT_TRUE(document.AppendNode(e, c));
    EXPECT_EQ(c->index, 0);
    XmlNode* comment = document.CreateNode(WideView(), "note"_w, kComment);
    EXPECT_TRUE(document.AppendNode(e, comment));
    EXPECT_EQ(comment->index, 1);
    EXPECT_TRUE(document.AppendNode(e, document.CreateNode("xml"_w, std::nullopt, kDeclaration)));
    EXPECT_EQ(Dump(e), "e(c !'note' ?xml)");
}

TEST(XmlDocumentAppend, DoesNotCheckTheKindOfTheParent) {
    XmlDocument document;
    XmlNode* comment = Build(document, document.root, Comment("note"));
    EXPECT_TRUE(document.AppendNode(comment, document.CreateNode("c"_w, std::nullopt, kElement)));
    EXPECT_TRUE(document.AppendNode(document.root, document.CreateNode("xml"_w, std::nullopt, kDeclaration)));
    EXPECT_EQ(DumpChildren(document.root), "!'note'(c) ?xml");
}

TEST(XmlDocumentAppend, NeedsBothArguments) {
    XmlDocument document;
    XmlNode* loose = document.CreateNode("e"_w, std::nullopt, kElement);
    EXPECT_FALSE(document.AppendNode(nullptr, loose));
    EXPECT_FALSE(document.AppendNode(document.root, nullptr));
    EXPECT_FALSE(document.AppendNode(nullptr, nullptr));
    EXPECT_EQ(loose->index, -1);
    EXPECT_EQ(DumpChildren(document.root), "");
}

TEST(XmlDocumentAppend, RefusesADocumentNodeAndLeavesItToTheCaller) {
    XmlDocument document;
    XmlNode* other = document.CreateNode(WideView(), std::nullopt, kDocument);
    EXPECT_FALSE(document.AppendNode(document.root, other));
    EXPECT_EQ(other->index, -1);
    EXPECT_EQ(DumpChildren(document.root), "");
    document.DestroyNode(other);
}

TEST(XmlDocumentDetach, TakesTheLastChildOutWhole) {
    XmlDocument document;
    Build(document, document.root, Element("a"));
    Build(document, document.root, Element("b", {{"k", "v"}}, "", {Element("c")}));
    XmlNode* detached = document.DetachLastChild(document.root);
    EXPECT_EQ(detached->index, -1);
    EXPECT_EQ(Dump(detached), "b{k='v'}(c)");
    EXPECT_EQ(DumpChildren(document.root), "a");
    document.DestroyNode(detached);
}

TEST(XmlDocumentDetach, OfAChildlessNodeGivesNull) {
    XmlDocument document;
    EXPECT_EQ(document.DetachLastChild(document.root), nullptr);
}

}  // namespace
}  // namespace mox
