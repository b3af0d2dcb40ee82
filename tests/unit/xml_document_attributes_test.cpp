// The attributes and the text of a node.
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
using test::Element;
using test::Shown;
using test::Wide;

class XmlAttributes : public testing::Test {
  protected:
    XmlNode* Add(const model::NodePtr& plain) { return Build(document_, document_.root, plain); }
    // The value, or "none" when there is no such attribute.
    static std::string Get(const XmlNode* item, WideView name) {
        WideView value = "untouched"_w;
        if (XmlDocument::GetAttribute(item, name, value)) return Shown(value);
        EXPECT_EQ(Shown(value), "untouched");
        return "none";
    }

    XmlDocument document_;
};

TEST_F(XmlAttributes, GetFindsTheFirstOfTheName) {
    const XmlNode* e = Add(Element("e", {{"a", "1"}, {"k", "first"}, {"k", "second"}, {"empty", ""}}));
    EXPECT_EQ(Get(e, "k"_w), "first");
    EXPECT_EQ(Get(e, "a"_w), "1");
    EXPECT_EQ(Get(e, "empty"_w), "");
}

TEST_F(XmlAttributes, GetLeavesTheResultAloneWhenThereIsNone) {
    const XmlNode* e = Add(Element("e", {{"key", "v"}}));
    EXPECT_EQ(Get(e, "ke"_w), "none");
    EXPECT_EQ(Get(e, "keys"_w), "none");
    EXPECT_EQ(Get(e, "KEY"_w), "none");
    EXPECT_EQ(Get(e, WideView()), "none");
    EXPECT_EQ(Get(Add(Element("f")), "key"_w), "none");
    EXPECT_EQ(Get(nullptr, "key"_w), "none");
}

TEST_F(XmlAttributes, GetKnowsNoAttributesOfOtherKinds) {
    EXPECT_EQ(Get(Add(Declaration()), "version"_w), "none");
    XmlNode* comment = Add(Comment("note"));
    document_.SetAttribute(*comment, "k"_w, "v"_w);
    EXPECT_EQ(Get(comment, "k"_w), "none");
    document_.SetAttribute(*document_.root, "k"_w, "v"_w);
    EXPECT_EQ(Get(document_.root, "k"_w), "none");
}

TEST_F(XmlAttributes, FindGivesTheFirstAttributeOfAnElementAlone) {
    const XmlNode* e = Add(Element("e", {{"k", "first"}, {"k", "second"}}));
    EXPECT_EQ(XmlDocument::FindAttribute(e, "k"_w), &e->attributes.At(0));
    EXPECT_EQ(XmlDocument::FindAttribute(e, "l"_w), nullptr);
    EXPECT_EQ(XmlDocument::FindAttribute(nullptr, "k"_w), nullptr);
    EXPECT_EQ(XmlDocument::FindAttribute(Add(Declaration()), "version"_w), nullptr);
}

TEST_F(XmlAttributes, SetAppendsANewOne) {
    XmlNode* e = Add(Element("e"));
    document_.SetAttribute(*e, "a"_w, "1"_w);
    document_.SetAttribute(*e, "b"_w, "2"_w);
    EXPECT_EQ(Dump(e), "e{a='1' b='2'}");
}

TEST_F(XmlAttributes, SetReplacesTheFirstOfTheNameInItsPlace) {
    XmlNode* e = Add(Element("e", {{"a", "1"}, {"k", "first"}, {"k", "second"}}));
    document_.SetAttribute(*e, "k"_w, "a much longer text than before"_w);
    EXPECT_EQ(Dump(e), "e{a='1' k='a much longer text than before' k='second'}");
    document_.SetAttribute(*e, "k"_w, "x"_w);
    EXPECT_EQ(Dump(e), "e{a='1' k='x' k='second'}");
}

TEST_F(XmlAttributes, SetIsCaseSensitive) {
    XmlNode* e = Add(Element("e", {{"k", "v"}}));
    document_.SetAttribute(*e, "K"_w, "w"_w);
    EXPECT_EQ(Dump(e), "e{k='v' K='w'}");
}

TEST_F(XmlAttributes, SetWorksOnTheDeclarationAndEveryOtherKind) {
    XmlNode* declaration = document_.InsertChild(document_.root, "xml"_w, std::nullopt, nullptr,
                                                 XmlNodeKind::ProcessingInstruction);
    document_.SetAttribute(*declaration, "version"_w, "1.0"_w);
    document_.SetAttribute(*declaration, "encoding"_w, "UTF-8"_w);
    document_.SetAttribute(*declaration, "version"_w, "1.1"_w);
    EXPECT_EQ(Dump(declaration), "?xml{version='1.1' encoding='UTF-8'}");
    document_.SetAttribute(*document_.root, "k"_w, "v"_w);
}

TEST_F(XmlAttributes, SetTakesATextOfTheTreeItself) {
    XmlNode* e = Add(Element("e", {{"k", "0123456789"}}));
    document_.SetAttribute(*e, "k"_w, e->attributes.At(0).value.View().substr(3));
    document_.SetAttribute(*e, "copy"_w, e->attributes.At(0).value.View());
    EXPECT_EQ(Dump(e), "e{k='3456789' copy='3456789'}");
}

TEST_F(XmlAttributes, SetOfALoadedTextLeavesItsNeighboursAlone) {
    ASSERT_TRUE(document_.Parse(Wide("<e a=\"1\" b=\"2\" c=\"3\">text<f/></e>"), document_.root));
    XmlNode* e = document_.root->children.At(0);
    document_.SetAttribute(*e, "b"_w, "a text that is longer than the document had room for"_w);
    document_.SetAttribute(*e, "a"_w, "x"_w);
    EXPECT_EQ(Dump(e), "e{a='x' b='a text that is longer than the document had room for' c='3'}'text'(f)");
}

TEST_F(XmlAttributes, SetAgainAndAgainDoesNotGrowThePool) {
    XmlNode* e = Add(Element("e"));
    for (std::size_t i = 0; i < 20000; ++i) {
        document_.SetAttribute(*e, "k"_w, Wide(std::string(i % 300, 'v')));
        document_.SetText(*e, Wide(std::string(i * 31 % 300, 't')));
    }
    EXPECT_LT(document_.Pool().BytesHeld(), 100000U);
}

TEST_F(XmlAttributes, TextOfAnElementIsReplacedWhole) {
    XmlNode* e = Add(Element("e", {}, "old text", {Element("c")}));
    document_.SetText(*e, "new"_w);
    EXPECT_EQ(Dump(e), "e'new'(c)");
    document_.SetText(*e, WideView());
    EXPECT_EQ(Dump(e), "e(c)");
}

TEST_F(XmlAttributes, TextTakesAPartOfItself) {
    XmlNode* e = Add(Element("e", {}, "0123456789"));
    document_.SetText(*e, e->value.View().substr(4, 3));
    EXPECT_EQ(Dump(e), "e'456'");
}

TEST_F(XmlAttributes, TextsKeepZerosAndLoneSurrogates) {
    XmlNode* e = Add(Element("e"));
    const WideString text = Wide(std::u16string_view(u"a\0\xDC00z", 4));
    document_.SetText(*e, text);
    document_.SetAttribute(*e, "k"_w, text);
    EXPECT_EQ(Dump(e), "e{k='a\\u0000\\uDC00z'}'a\\u0000\\uDC00z'");
}

}  // namespace
}  // namespace mox
