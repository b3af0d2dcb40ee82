// Where a parse fails, and what the grammar expects there.
#include <gtest/gtest.h>
#include <string_view>

#include "mox_xmlApi/platform/scan.h"
#include "mox_xmlApi/xml/xml_parser.h"

namespace mox {
namespace {

constexpr std::size_t kNowhere = ParseFailure::kNowhere;

struct Case {
    std::string_view text;
    ParseExpectation expected;
    std::size_t offset;
    std::size_t inside;
};

ParseFailure FailureOf(std::string_view text) {
    WideString units(text.begin(), text.end());
    units.append(1 + kScanAhead, wchar16{0});
    XmlDocument document;
    ParseFailure failure;
    failure.offset = 12345;
    EXPECT_FALSE(ParseInPlace(document, units.data(), text.size(), document.root, &failure)) << text;
    return failure;
}

void ExpectFailures(std::initializer_list<Case> cases) {
    for (const Case& expected : cases) {
        const ParseFailure failure = FailureOf(expected.text);
        EXPECT_EQ(failure.expected, expected.expected) << expected.text;
        EXPECT_EQ(failure.offset, expected.offset) << expected.text;
        EXPECT_EQ(failure.inside, expected.inside) << expected.text;
    }
}

TEST(ParseFailures, TopLevel) {
    ExpectFailures({{"abc", ParseExpectation::TopLevelNode, 0, kNowhere},
                    {" \n x", ParseExpectation::TopLevelNode, 3, kNowhere},
                    {"<a/><b/>", ParseExpectation::TopLevelNode, 5, kNowhere},
                    {"</a>", ParseExpectation::ElementName, 1, kNowhere},
                    {"<", ParseExpectation::ElementName, 1, kNowhere}});
}

TEST(ParseFailures, Declaration) {
    ExpectFailures({{"<a/>\n<?xml version=\"1.0\"?>", ParseExpectation::DeclarationFirst, 7, kNowhere},
                    {"<a><?pi?></a>", ParseExpectation::ElementName, 4, 1},
                    {"<?foo?>", ParseExpectation::DeclarationName, 2, kNowhere},
                    {"<?xml?>", ParseExpectation::DeclarationName, 2, kNowhere},
                    {"<?xml encoding=\"\"?>", ParseExpectation::DeclarationVersion, 17, 2},
                    {"<?xml version=\"\">", ParseExpectation::DeclarationEnd, 16, 2}});
}

TEST(ParseFailures, Comments) {
    ExpectFailures({{"<!DOCTYPE a>", ParseExpectation::CommentStart, 2, kNowhere},
                    {"<a><![CDATA[]]></a>", ParseExpectation::CommentStart, 5, 1},
                    {"<!-- > -->", ParseExpectation::CommentEnd, 5, 4},
                    {"<!-- -- -->", ParseExpectation::CommentEnd, 7, 4},
                    {"<!-- ", ParseExpectation::CommentEnd, 5, 4}});
}

TEST(ParseFailures, Tags) {
    ExpectFailures({{"<ab c-d=\"\"/>", ParseExpectation::AttributeEquals, 5, 4},
                    {"<ab c='x'/>", ParseExpectation::AttributeQuote, 6, 4},
                    {"<ab c=\"x<\"/>", ParseExpectation::AttributeEnd, 8, 7},
                    {"<ab c=\"&lt;&x;\"/>", ParseExpectation::AttributeEnd, 11, 7},
                    {"<ab c=\"", ParseExpectation::AttributeEnd, 7, 7},
                    {"<ab.c/>", ParseExpectation::TagEnd, 3, 1},
                    {"<ab/ >", ParseExpectation::EmptyTagEnd, 4, 1}});
}

TEST(ParseFailures, Content) {
    ExpectFailures({{"<a><b>x &y; z</b></a>", ParseExpectation::Content, 8, 4},
                    {"<a>\n<b></b>\n", ParseExpectation::Content, 12, 1},
                    {"<a>&lt;&gt;&#65;</a>", ParseExpectation::Content, 11, 1},
                    {"<a><b></a>", ParseExpectation::EndTag, 8, 4},
                    {"<a></ab>", ParseExpectation::EndTag, 6, 1},
                    {"<a></a >", ParseExpectation::EndTag, 6, 1},
                    {"<a>1 < 2</a>", ParseExpectation::ElementName, 6, 1}});
}

TEST(ParseFailures, NothingIsSaidOfATextThatParses) {
    constexpr std::string_view text = "<a/>";
    WideString units(text.begin(), text.end());
    units.append(1 + kScanAhead, wchar16{0});
    XmlDocument document;
    ParseFailure failure;
    failure.offset = 12345;
    EXPECT_TRUE(ParseInPlace(document, units.data(), text.size(), document.root, &failure));
    EXPECT_EQ(failure.offset, 12345U);
}

}  // namespace
}  // namespace mox
