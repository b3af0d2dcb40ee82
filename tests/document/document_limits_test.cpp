// Documents of any depth and any number of parts, on a thread that has little stack.
#include "mox_xmlApi/document/diagnose.hpp"
#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/document/inspect.hpp"
#include "tests/document/document_support.h"
#include "tests/limits/small_stack_support.h"

namespace document_tests {
namespace {

constexpr std::size_t kDeep = 100000;

TEST(DocumentLimits, AHundredThousandLevelsAreReadAndReleased) {
    const std::string text = Section("<Var name=\"a\" type=\"bool\">" + Repeat("<a>", kDeep) + "<!--c-->" +
                                     Repeat("</a>", kDeep) + "</Var>");
    std::size_t deepest = 0;
    std::size_t up = 0;
    std::size_t column = 0;
    ASSERT_TRUE(limits::RunOnSmallStack([&] {
        const mox::Document document = Parsed(text);
        mox::DocumentNode node = document.tables()[0].entries[0].node;
        for (; node.firstChild(); node = node.firstChild())
            ++deepest;
        column = node.position().column;
        for (; node.parent(); node = node.parent())
            ++up;
    }));
    EXPECT_EQ(deepest, kDeep + 1);
    EXPECT_EQ(up, kDeep + 4 - 1);
    EXPECT_EQ(column, text.find("<!--") + 5);
}

TEST(DocumentLimits, AHundredThousandLevelsAreInspected) {
    const std::string text = Repeat("<a>", kDeep) + Repeat("</a>", kDeep);
    mox::front::DocumentFindings findings;
    std::size_t diagnostics = 0;
    mox::Problem problem;
    ASSERT_TRUE(limits::RunOnSmallStack([&] {
        mox::front::Inspect(text, std::nullopt, findings);
        diagnostics = mox::diagnose(text).size();
        mox::Document::parse(text + Repeat("<b>", kDeep), std::nullopt, &problem);
    }));
    EXPECT_EQ(findings.depth, kDeep);
    EXPECT_EQ(findings.indentationUnits, 9999800001U);
    EXPECT_EQ(diagnostics, 2U);
    EXPECT_EQ(problem.column, 7 * kDeep + 1);
}

TEST(DocumentLimits, ManyEntriesOfOneNameAreReadAndInspected) {
    constexpr std::size_t kMany = 50000;
    const std::string name(100, 'n');
    const std::string text =
        Section(Repeat("<Var name=\"" + name + "\"/>", kMany) +
                Repeat("<Var name=\"" + name + "\" type=\"long\" id=\"1\" id=\"2\"/>\n", kMany));
    const mox::Document document = Parsed(text);
    EXPECT_EQ(document.tables()[0].entries.size(), 2 * kMany);
    EXPECT_EQ(document.findTable("S")->findElement(name), &document.tables()[0].entries[0]);
    mox::front::DocumentFindings findings;
    EXPECT_TRUE(mox::front::Inspect(text, std::nullopt, findings));
    ASSERT_EQ(findings.tables.at(0).entries.size(), 2 * kMany);
    EXPECT_TRUE(findings.tables[0].entries[0].isFirst);
    EXPECT_FALSE(findings.tables[0].entries[1].isFirst);
}

TEST(DocumentLimits, ManySectionsWithALongNameAreReadAndInspected) {
    constexpr std::size_t kMany = 20000;
    const std::string text = Settings(Repeat("<Table name=\"S\"><Var name=\"a\"/></Table>\n", kMany));
    EXPECT_EQ(Parsed(text).tables().size(), kMany);
    mox::front::DocumentFindings findings;
    EXPECT_TRUE(mox::front::Inspect(text, std::nullopt, findings));
    ASSERT_EQ(findings.tables.size(), kMany);
    EXPECT_TRUE(findings.tables[0].isFound);
    EXPECT_FALSE(findings.tables[kMany - 1].isFound);
}

}  // namespace
}  // namespace document_tests
