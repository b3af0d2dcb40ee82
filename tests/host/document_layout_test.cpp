// How documents are laid out in files.
#include "tests/host/host_support.h"

namespace host {
namespace {

// The saved form of a document without a settings root, the root that loading appends included.
std::string Saved(std::string_view text) {
    return SaveBytes(LoadText(text));
}

std::string WithRoot(std::initializer_list<std::string_view> lines) {
    return NarrowFile(Lines(lines) + Lines({kEmptyRoot}));
}

TEST(DocumentLayout, ElementWithoutContentIsOneTag) {
    EXPECT_EQ(Saved("<Name a=\"1\"></Name>"), WithRoot({"<Name a=\"1\"/>"}));
    EXPECT_EQ(Saved("<Name></Name>"), WithRoot({"<Name/>"}));
}

TEST(DocumentLayout, SpecialCharactersAreEscapedInTextAndAttributes) {
    EXPECT_EQ(Saved("<Name>a&lt;b</Name>"), WithRoot({"<Name>a&lt;b</Name>"}));
    EXPECT_EQ(Saved("<Name k=\"x&quot;y'z\">\"&amp;'></Name>"),
              WithRoot({"<Name k=\"x&quot;y&apos;z\">&quot;&amp;&apos;&gt;</Name>"}));
}

TEST(DocumentLayout, TextComesBeforeChildrenOnItsOwnLine) {
    EXPECT_EQ(Saved("<e><c/>v</e>"), WithRoot({"<e>", "\tv", "\t<c/>", "</e>"}));
}

TEST(DocumentLayout, ChildrenAreIndentedByTabs) {
    EXPECT_EQ(
        Saved("<a><b><c><d>x</d><e/></c></b></a>"),
        WithRoot({"<a>", "\t<b>", "\t\t<c>", "\t\t\t<d>x</d>", "\t\t\t<e/>", "\t\t</c>", "\t</b>", "</a>"}));
}

TEST(DocumentLayout, OnlyTheFirstLineOfTextIsIndented) {
    EXPECT_EQ(Saved("<a><e>one\ntwo</e></a>"),
              WithRoot({"<a>", "\t<e>", "\t\tone", "two", "\t</e>", "</a>"}));
}

TEST(DocumentLayout, TextWithLineFeedGrowsAtEachReload) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, "one\ntwo"_w), 1U);
    const std::string bytes = SaveBytes(profile);
    EXPECT_EQ(bytes, SectionFile({
                         "\t\t<Var name=\"k\" type=\"string\" array=\"\">",
                         "\t\t\t<Value>",
                         "\t\t\t\tone",
                         "two",
                         "\t\t\t</Value>",
                         "\t\t</Var>",
                     }));
    const Profile reloaded = LoadBytes(bytes, 0);
    EXPECT_EQ(ReadText(reloaded, "S"_w, "k"_w), "one\ntwo\n\t\t\t"_w);
}

TEST(DocumentLayout, CommentsAreIndentedAndNotEscaped) {
    EXPECT_EQ(Saved("<a><!-- note --><b><!-- R&D < \"x\" --></b></a>"),
              WithRoot({"<a>", "\t<!-- note -->", "\t<b>", "\t\t<!-- R&D < \"x\" -->", "\t</b>", "</a>"}));
    EXPECT_EQ(Saved("<a><!--two\nlines--></a>"), WithRoot({"<a>", "\t<!--two", "lines-->", "</a>"}));
}

TEST(DocumentLayout, TopLevelNodesEndWithALineFeed) {
    EXPECT_EQ(Saved("<!--a-->\n<b>c</b>\n<!--d-->"), WithRoot({"<!--a-->", "<b>c</b>", "<!--d-->"}));
}

TEST(DocumentLayout, CarriageReturnsOfTheSourceDoNotComeBackOutsideOfTexts) {
    EXPECT_EQ(Saved("<a>\r\n\t<b/>\r\n</a>\r\n<c/>\r\n"), WithRoot({"<a>", "\t<b/>", "</a>", "<c/>"}));
}

TEST(DocumentLayout, WideFileHoldsTheSameTextInSixteenBits) {
    const Profile profile = LoadText("<a x=\"1\">b</a>");
    const std::string text = Lines({"<a x=\"1\">b</a>", kEmptyRoot});
    EXPECT_EQ(SaveBytes(profile, 0, 0), NarrowFile(text));
    EXPECT_EQ(SaveBytes(profile, 0, 1), WideFile(text));
}

TEST(DocumentLayout, WideFileHasNoByteOrderMark) {
    const Profile profile = LoadText("<a/>");
    EXPECT_EQ(SaveBytes(profile, 0, 1).substr(0, 10), std::string("<\0a\0/\0>\0\n\0", 10));
}

TEST(DocumentLayout, SavedFilesReadBackUnchanged) {
    const Profile profile = LoadSections(
        "<!-- c --><Table name=\"S\" a=\"&lt;\"><Var name=\"k\" type=\"long\"><Value>&amp;1</Value>"
        "<UI><Comment>x y </Comment></UI></Var></Table><Other>text</Other>");
    for (const std::int32_t wide : {0, 1}) {
        const std::string bytes = SaveBytes(profile, 0, wide);
        EXPECT_EQ(SaveBytes(LoadBytes(bytes, wide), 0, wide), bytes);
    }
}

}  // namespace
}  // namespace host
