// Loading what lies at the very end of a page: nothing past it is read.
#include "tests/unit/page_end.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "mox_xmlApi/platform/scan.h"
#include "mox_xmlApi/xml/xml_parser.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::DumpChildren;
using test::PageEnd;

// Every kind of text that a search of several units at a time may meet.
constexpr std::string_view kDocument =
    "<?xml version=\"1.0\"?>\n"
    "<Settings>\n"
    "\t<!-- a comment -->\n"
    "\t<Table name=\"Station\" editable=\"\">\n"
    "\t\t<Var name=\"axis &amp; gain &lt;more&gt;\" id=\"1\"><Value>12</Value></Var>\n"
    "\t</Table>text with &quot;quotes&quot; in it, long enough\n"
    "</Settings>";
constexpr std::string_view kTree =
    "?xml{version='1.0'} "
    "Settings'text with \"quotes\" in it, long enough\\n'("
    "!' a comment ' "
    "Table{name='Station' editable=''}("
    "Var{name='axis & gain <more>' id='1'}(Value'12')))";

TEST(PageEnds, AParseReadsNoFurtherThanItsContractSays) {
    const PageEnd<wchar16> page;
    WideString units(kDocument.begin(), kDocument.end());
    units.append(1 + kScanAhead, wchar16{0});
    XmlDocument document;
    ASSERT_TRUE(ParseInPlace(document, page.Holding(units), kDocument.size(), document.root));
    EXPECT_EQ(DumpChildren(document.root), kTree);
}

TEST(PageEnds, AParseOfEveryBeginningOfADocumentReadsNoFurther) {
    const PageEnd<wchar16> page;
    std::string parsed;
    for (std::size_t length = 0; length <= kDocument.size(); ++length) {
        WideString units(kDocument.begin(), kDocument.begin() + static_cast<std::ptrdiff_t>(length));
        units.append(1 + kScanAhead, wchar16{0});
        XmlDocument document;
        if (ParseInPlace(document, page.Holding(units), length, document.root))
            parsed += std::to_string(length) + ' ';
    }
    EXPECT_EQ(parsed, "0 21 22 " + std::to_string(kDocument.size()) + ' ');
}

TEST(PageEnds, AMemoryImageIsReadToItsEndAndNoFurther) {
    const PageEnd<char> page;
    XmlDocument document;
    ASSERT_TRUE(document.LoadBuffer(page.Holding(kDocument), kDocument.size()));
    EXPECT_EQ(DumpChildren(document.root), kTree);
    for (std::size_t length = 0; length <= 70; ++length) {
        XmlDocument spaces;
        ASSERT_TRUE(spaces.LoadBuffer(page.Holding(std::string(length, ' ')), length)) << length;
    }
}

TEST(PageEnds, AMemoryImageIsReadToItsFirstZeroAndNoFurther) {
    const PageEnd<char> page;
    const std::string_view image("<a/>\n\0", 6);
    XmlDocument document;
    ASSERT_TRUE(document.LoadBuffer(page.Holding(image), ~std::uint64_t{0}));
    EXPECT_EQ(DumpChildren(document.root), "a");
}

TEST(PageEnds, ATextOfTheHostIsReadToItsEndAndNoFurther) {
    const PageEnd<wchar16> page;
    const WideString units(kDocument.begin(), kDocument.end());
    XmlDocument document;
    ASSERT_TRUE(document.Parse(WideView(page.Holding(units), units.size()), document.root));
    EXPECT_EQ(DumpChildren(document.root), kTree);
}

}  // namespace
}  // namespace mox
