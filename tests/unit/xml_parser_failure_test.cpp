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
    ParseWant wanted;
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
        EXPECT_EQ(failure.wanted, expected.wanted) << expected.text;
        EXPECT_EQ(failure.offset, expected.offset) << expected.text;
        EXPECT_EQ(failure.inside, expected.inside) << expected.text;
    }
}

TEST(ParseFailures, TopLevel) {
    ExpectFailures({{"abc", ParseWant::TopLevelNode, 0, kNowhere},
                    {" \n x", ParseWant::TopLevelNode, 3, kNowhere},
                    {"<a/><b/>", ParseWant::TopLevelNode, 5, kNowhere},
                    {"</a>", ParseWant::ElementName, 1, kNowhere},
                    {"<", ParseWant::ElementName, 1, kNowhere}});
}

TEST(ParseFailures, Declaration) {
    ExpectFailures({{"<a/>\n<?xml version=\"1.0\"?>", ParseWant::DeclarationFirst, 7, kNowhere},
                    {"<a><?pi?></a>", ParseWant::ElementName, 4, 1},
                    {"<?foo?>", ParseWant::DeclarationName, 2, kNowhere},
                    {"<?xml?>", ParseWant::DeclarationName, 2, kNowhere},
                    {"<?xml encoding=\"\"?>", ParseWant::DeclarationVersion, 17, 2},
                    {"<?xml version=\"\">", ParseWant::DeclarationEnd, 16, 2}});
}

TEST(ParseFailures, Comments) {
    ExpectFailures({{"<!DOCTYPE a>", ParseWant::CommentStart, 2, kNowhere},
                    {"<a><![CDATA[]]></a>", ParseWant::CommentStart, 5, 1},
                    {"<!-- > -->", ParseWant::CommentEnd, 5, 4},
                    {"<!-- -- -->", ParseWant::CommentEnd, 7, 4},
                    {"<!-- ", ParseWant::CommentEnd, 5, 4}});
}

TEST(ParseFailures, Tags) {
    ExpectFailures({{"<ab c-d=\"\"/>", ParseWant::AttributeEquals, 5, 4},
                    {"<ab c='x'/>", ParseWant::AttributeQuote, 6, 4},
                    {"<ab c=\"x<\"/>", ParseWant::AttributeEnd, 8, 7},
                    {"<ab c=\"&lt;&x;\"/>", ParseWant::AttributeEnd, 11, 7},
                    {"<ab c=\"", ParseWant::AttributeEnd, 7, 7},
                    {"<ab.c/>", ParseWant::TagEnd, 3, 1},
                    {"<ab/ >", ParseWant::EmptyTagEnd, 4, 1}});
}

TEST(ParseFailures, Content) {
    ExpectFailures({{"<a><b>x &y; z</b></a>", ParseWant::Content, 8, 4},
                    {"<a>\n<b></b>\n", ParseWant::Content, 12, 1},
                    {"<a>&lt;&gt;&#65;</a>", ParseWant::Content, 11, 1},
                    {"<a><b></a>", ParseWant::EndTag, 8, 4},
                    {"<a></ab>", ParseWant::EndTag, 6, 1},
                    {"<a></a >", ParseWant::EndTag, 6, 1},
                    {"<a>1 < 2</a>", ParseWant::ElementName, 6, 1}});
}

TEST(ParseFailures, NothingIsSaidOfATextThatParses) {
    WideString units("<a/>"_w);
    units.append(1 + kScanAhead, wchar16{0});
    XmlDocument document;
    ParseFailure failure;
    failure.offset = 12345;
    EXPECT_TRUE(ParseInPlace(document, units.data(), 4, document.root, &failure));
    EXPECT_EQ(failure.offset, 12345U);
}

}  // namespace
}  // namespace mox
