// How trees grow: inserting, appending, detaching.
#include <gtest/gtest.h>
#include <optional>

#include "mox_xmlApi/xml/xml_document.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Build;
using test::Comment;
using test::Declaration;
using test::Dump;
using test::DumpChildren;
using test::Element;

constexpr auto kElement = XmlNodeKind::Element;
constexpr auto kDeclaration = XmlNodeKind::ProcessingInstruction;
constexpr auto kComment = XmlNodeKind::Comment;
constexpr auto kDocument = XmlNodeKind::Document;

XmlNode* Insert(XmlDocument& document, XmlNode* parent, WideView name, const XmlNode* before = nullptr) {
    return document.InsertChild(parent, name, std::nullopt, before);
}

// ---- InsertChild

TEST(XmlDocumentInsert, WithoutBeforeAppends) {
    XmlDocument document;
    const XmlNode* a = Insert(document, document.root, "a"_w);
    const XmlNode* b = document.InsertChild(document.root, "b"_w, "text"_w, nullptr);
    EXPECT_EQ(PositionOf(*a), 0);
    EXPECT_EQ(PositionOf(*b), 1);
    EXPECT_EQ(b->kind, kElement);
    EXPECT_EQ(DumpChildren(document.root), "a b'text'");
}

TEST(XmlDocumentInsert, BeforeTheFirstMovesEveryOther) {
    XmlDocument document;
    XmlNode* a = Insert(document, document.root, "a"_w);
    XmlNode* b = Insert(document, document.root, "b"_w);
    const XmlNode* first = Insert(document, document.root, "first"_w, a);
    EXPECT_EQ(PositionOf(*first), 0);
    EXPECT_EQ(PositionOf(*a), 1);
    EXPECT_EQ(PositionOf(*b), 2);
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
    EXPECT_EQ(PositionOf(*declaration), 0);
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
    EXPECT_EQ(PositionOf(*c), 0);
    XmlNode* comment = document.CreateNode(WideView(), "note"_w, kComment);
    EXPECT_TRUE(document.AppendNode(e, comment));
    EXPECT_EQ(PositionOf(*comment), 1);
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
    EXPECT_EQ(PositionOf(*loose), -1);
    EXPECT_EQ(DumpChildren(document.root), "");
}

TEST(XmlDocumentAppend, RefusesADocumentNodeAndLeavesItToTheCaller) {
    XmlDocument document;
    XmlNode* other = document.CreateNode(WideView(), std::nullopt, kDocument);
    EXPECT_FALSE(document.AppendNode(document.root, other));
    EXPECT_EQ(PositionOf(*other), -1);
    EXPECT_EQ(DumpChildren(document.root), "");
    document.DestroyNode(other);
}

TEST(XmlDocumentDetach, TakesTheLastChildOutWhole) {
    XmlDocument document;
    Build(document, document.root, Element("a"));
    Build(document, document.root, Element("b", {{"k", "v"}}, "", {Element("c")}));
    XmlNode* detached = document.DetachLastChild(document.root);
    EXPECT_EQ(PositionOf(*detached), -1);
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
