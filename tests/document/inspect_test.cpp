// What the front learns about a file before it opens it.
#include "mox_xmlApi/document/inspect.hpp"

#include <algorithm>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/document/document_support.h"
#include "tests/host/host_support.h"

namespace document_tests {
namespace {

using mox::DocumentKind;
using mox::Form;
using mox::Reason;
using mox::front::DocumentFindings;
using mox::front::Inspect;

DocumentFindings Inspected(const std::string& bytes) {
    DocumentFindings findings;
    mox::Problem problem;
    EXPECT_TRUE(Inspect(bytes, std::nullopt, findings, &problem)) << problem.toString();
    EXPECT_TRUE(findings.isParsed);
    return findings;
}

// The problem with its reason as a number.
std::string Problem(const std::string& bytes) {
    DocumentFindings findings;
    mox::Problem problem;
    EXPECT_FALSE(Inspect(bytes, std::nullopt, findings, &problem));
    EXPECT_FALSE(Inspect(bytes, std::nullopt, findings, nullptr));
    const std::string reason = problem.reason == Reason::Encoding ? "encoding "
                               : problem.reason == Reason::Syntax ? "syntax "
                                                                  : "other ";
    return reason + (findings.isParsed ? "parsed " : "") + problem.toString();
}

TEST(Inspect, TellsKindFormAndEncoding) {
    EXPECT_EQ(Inspected(Settings("")).kind, DocumentKind::Settings);
    EXPECT_EQ(Inspected("<Table/>").kind, DocumentKind::Table);
    EXPECT_EQ(Inspected("<svg/>").kind, DocumentKind::Other);
    EXPECT_EQ(Inspected("").kind, DocumentKind::Other);
    EXPECT_EQ(Inspected(Utf16Le("<a/>")).encoding.form, Form::Wide);
    EXPECT_EQ(Inspected("<a/>").encoding.form, Form::Narrow);
    EXPECT_TRUE(Inspected("<a/>").isSevenBit);
    EXPECT_TRUE(Inspected(Utf16Le("<a/>")).isSevenBit);
    EXPECT_FALSE(Inspected(Utf16Le("<a>\xC3\xA4</a>")).isSevenBit);
}

TEST(Inspect, NarrowTextBeyondAsciiIsNoProblem) {
    EXPECT_EQ(Inspected("<a>\xC3\xA4</a>").encoding.encoding, mox::Encoding::Utf8);
    EXPECT_EQ(Inspected("<a>\xE4</a>").encoding.encoding, mox::Encoding::Latin1);
    EXPECT_FALSE(Inspected("<a>\xE4</a>").isSevenBit);
}

TEST(Inspect, RefusesWhatWouldNotBeReadOrNotWholly) {
    const std::string mark = "found a byte-order mark, expected \"<\" (byte-order marks are not supported); ";
    EXPECT_EQ(Problem("\xEF\xBB\xBF<a/>"),
              "encoding 1:1: " + mark + "the text is UTF-8 with a byte-order mark");
    EXPECT_EQ(Problem("\xFF\xFE" + Utf16Le("<a/>")),
              "encoding 1:1: " + mark + "the text is UTF-16 with the low byte first and a byte-order mark");
    EXPECT_EQ(Problem("\xFE\xFF" + Utf16Be("<a/>")).substr(0, 20), "encoding 1:1: found ");
    EXPECT_EQ(Problem(Utf16Be("<a/>")),
              "encoding parsed 1:1: the text is UTF-16 with the high byte first; documents are not");
    EXPECT_EQ(Problem(std::string(64, '\0')),
              "encoding parsed 1:1: the text is nothing but zeros; documents are not");
    EXPECT_EQ(
        Problem("<a>&lt;\n</a>\n\0<b/>"s),
        "encoding parsed 3:1: the text is 7-bit text that ends after 13 bytes, before 4 bytes other than "
        "zero; documents are not");
}

TEST(Inspect, SyntaxErrorsHavePositionFoundAndExpected) {
    EXPECT_EQ(Problem("<a>\n&amp;<b></a>"),
              "syntax 2:9: found \"</a\", expected \"</b>\" to close the element that begins on line 2");
    DocumentFindings findings;
    mox::Problem problem;
    EXPECT_FALSE(Inspect("<a", std::nullopt, findings, &problem));
    EXPECT_EQ(problem.found, "the end of the file");
    EXPECT_EQ(problem.expected, "an attribute, \">\" or \"/>\" in the tag of \"a\"");
    EXPECT_EQ(findings.encoding.encoding, mox::Encoding::Narrow);
    EXPECT_FALSE(findings.isParsed);
    // What was there before is gone.
    EXPECT_TRUE(Inspect("<Table><Var/></Table>", std::nullopt, findings, &problem));
    EXPECT_EQ(findings.tables.size(), 1U);
    EXPECT_EQ(problem.reason, Reason::None);
    EXPECT_FALSE(Inspect("<", std::nullopt, findings, &problem));
    EXPECT_TRUE(findings.tables.empty());
}

// ---- depth and indentation

// The tabs in what a save of the document writes; its texts have none.
std::uint64_t TabsSaved(const std::string& text) {
    const host::Profile profile = host::LoadText(text);
    const std::string bytes = host::SaveBytes(profile);
    return static_cast<std::uint64_t>(std::count(bytes.begin(), bytes.end(), '\t'));
}

TEST(Inspect, CountsTheIndentationThatASaveWrites) {
    struct Case {
        std::string text;
        std::size_t depth;
        std::uint64_t tabs;
    };
    const std::vector<Case> cases = {
        {Settings(""), 1, 0},
        {"<!--a-->\n" + Settings("<Table/>"), 2, 1},
        {Settings("<Table><Var/></Table>"), 3, 1 + 2 + 1},
        {Settings("<!--a--><Table>text</Table>"), 2, 2},
        {Settings("<Table>one\ntwo</Table>"), 2, 1 + 2 + 1},
        {Settings("<Table>text<a/></Table>"), 3, 1 + 2 + 2 + 1},
        {Settings("<a>x<b>y<c>z\nz</c></b></a>\n<d/>"), 4, 1 + 2 + (2 + 3 + (3 + 4 + 3) + 2) + 1 + 1},
        {"<Settings xmlns:noNamespaceSchemaLocation=\"\">text</Settings>\n<a><b/></a>", 2, 1},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.text);
        const DocumentFindings findings = Inspected(test.text);
        EXPECT_EQ(findings.depth, test.depth);
        EXPECT_EQ(findings.indentationUnits, test.tabs);
        EXPECT_EQ(findings.indentationUnits, TabsSaved(test.text));
    }
    EXPECT_EQ(Inspected("").depth, 0U);
    EXPECT_EQ(Inspected("").indentationUnits, 0U);
}

TEST(Inspect, CountsTheIndentationOfADeepDocument) {
    const DocumentFindings findings = Inspected(Settings(Repeat("<a>", 1000) + Repeat("</a>", 1000)));
    EXPECT_EQ(findings.depth, 1001U);
    EXPECT_EQ(findings.indentationUnits, 999000U + 1000U + 1000U - 1000U);
}

// ---- entries

std::string Shown(const DocumentFindings& findings) {
    std::string text;
    for (const mox::front::OddTable& table : findings.tables) {
        text += std::to_string(table.index) + (table.isFound ? " found " : " not found ") +
                mox::front::Utf8Of(mox::front::UnitsView(table.name)) + ":";
        for (const mox::front::OddEntry& entry : table.entries) {
            text += " " + std::to_string(entry.index) + "=" + std::to_string(entry.oddities);
            if (entry.hasName) text += "'" + mox::front::Utf8Of(mox::front::UnitsView(entry.name)) + "'";
            if (!entry.isFirst) text += " not first";
        }
        text += "\n";
    }
    return text;
}

TEST(Inspect, NamesUnreadableEntries) {
    const DocumentFindings findings =
        Inspected(Settings("<!--c--><Other name=\"O\"><Var name=\"x\"/></Other>"
                           "<Table name=\"S\"><!--c--><Var name=\"ok\" type=\"long\"/><Var name=\"a\"/><Var "
                           "name=\"ok\" type=\"\"/>"
                           "<Var type=\"complex\"/></Table>"
                           "<Table name=\"T\"><Var name=\"b\" type=\"long\"/></Table>"
                           "<Table name=\"S\"><Var/></Table><Table><Var name=\"\"/></Table>"));
    EXPECT_EQ(Shown(findings),
              "0 not found O: 0=1'x'\n"
              "1 found S: 1=1'a' 2=1'ok' not first 3=1 not first\n"
              "3 not found S: 0=1 not first\n"
              "4 not found : 0=1''\n");
    EXPECT_EQ(Shown(Inspected("<Table name=\"T\"><Var name=\"a\"/></Table>\n<Table><Var/></Table>")),
              "0 found T: 0=1'a'\n");
}

std::uint32_t Oddities(const std::string& entry) {
    const DocumentFindings findings = Inspected(Section(entry));
    return findings.tables.empty() ? 0 : findings.tables[0].entries.at(0).oddities;
}

// Each document has the key "k" in the section "S". A host writes the new value, then reads it.
bool IsReadBack(const std::string& entry) {
    const host::Profile profile = host::LoadEntries(entry);
    EXPECT_EQ(xmlWriteProfileString(profile, host::WideText{'S'}.c_str(), host::WideText{'k'}.c_str(),
                                    host::WideText{'n'}.c_str()),
              1U);
    return host::ReadText(profile, host::WideText{'S'}.c_str(), host::WideText{'k'}.c_str()) ==
           host::WideText{'n'};
}

TEST(Inspect, SeveralValuesAreOddBecauseTheFirstIsWrittenAndTheLastIsRead) {
    const std::string several = "<Var name=\"k\" type=\"long\"><Value>1</Value><a/><Value/></Var>";
    EXPECT_EQ(Oddities(several), mox::front::kTwoValues);
    EXPECT_FALSE(IsReadBack(several));
    for (const std::string entry : {
             "<Var name=\"k\" type=\"long\"><Value>1</Value></Var>",
             "<Var name=\"k\" type=\"long\" Value=\"2\"/>",
             "<Var name=\"k\" type=\"long\" Value=\"2\" Value=\"3\"><Value>1</Value></Var>",
             "<Var name=\"k\" type=\"long\"><UI><Value>1</Value></UI><Value>1</Value></Var>",
             "<Var name=\"k\" type=\"long\"><value/><Value/><VALUE/></Var>",
         }) {
        SCOPED_TRACE(entry);
        EXPECT_EQ(Oddities(entry), 0U);
        EXPECT_TRUE(IsReadBack(entry));
    }
}

// The entry "k" after all its fields have been written through a record.
mox::Entry Written(const std::string& text) {
    auto profile = mox::Profile::parse(text);
    if (profile.has_value()) profile->setLossy(true);  // what the exports do is compared
    auto section = profile->findSection("S");
    mox::Entry entry;
    entry.name = "k";
    entry.type = mox::ValueType::Double;
    entry.id = 99;
    entry.ui.emplace();
    entry.ui->control = mox::Control::Radio;
    entry.ui->providerIndex = 98;
    entry.ui->providerOwner = mox::Owner::Dwg;
    entry.ui->shownName = "new name";
    entry.ui->comment = "new comment";
    section->put(entry);
    const std::vector<mox::Entry> entries = section->list();
    return entries.empty() ? mox::Entry() : entries[0];
}

// The oddities that show when the entry has been written: fields that did not take the new value.
std::uint32_t WrittenElsewhere(const std::string& text) {
    using namespace mox::front;
    const mox::Entry entry = Written(text);
    const mox::Presentation ui = entry.ui.value_or(mox::Presentation());
    std::uint32_t oddities = 0;
    if (entry.name != "k") oddities |= kTwoNames;
    if (entry.type != mox::ValueType::Double) oddities |= kTwoTypes;
    if (entry.id != 99) oddities |= kTwoIds;
    if (ui.control != mox::Control::Radio) oddities |= kTwoControls;
    if (ui.providerIndex != 98) oddities |= kTwoProviderIndexes;
    if (ui.providerOwner != mox::Owner::Dwg) oddities |= kTwoProviderOwners;
    if (ui.shownName != "new name") oddities |= kTwoShownNames;
    if (ui.comment != "new comment") oddities |= kTwoComments;
    return oddities;
}

TEST(Inspect, EveryFieldThatIsThereTwiceIsNamed) {
    using namespace mox::front;
    struct Case {
        std::string attributes;
        std::string content;
        std::uint32_t oddities;
    };
    const std::vector<Case> cases = {
        {"type=\"long\" id=\"1\" id=\"2\"", "", kTwoIds},
        {"type=\"long\" name=\"l\"", "", kTwoNames},
        {"type=\"long\" type=\"bool\"", "", kTwoTypes},
        {"type=\"odd\" type=\"bool\"", "", kTwoTypes},
        {"type=\"long\" type=\"odd\"", "", 0},
        {"type=\"long\" array=\"array\" array=\"vector\"", "", 0},
        {"type=\"long\"", "<UI control=\"num\" control=\"rgb\"/>", kTwoControls},
        {"type=\"long\"", "<UI prov_index=\"1\" prov_index=\"2\"/>", kTwoProviderIndexes},
        {"type=\"long\"", "<UI prov_owner=\"app\" prov_owner=\"erg\"/>", kTwoProviderOwners},
        {"type=\"long\"", "<UI name=\"a\" name=\"b\"/>", kTwoShownNames},
        {"type=\"long\"", "<UI><Comment>a</Comment><Comment>b</Comment></UI>", kTwoComments},
        {"type=\"long\"", "<UI Comment=\"c\" Value=\"v\"/>", 0},
        {"type=\"long\"", "<UI Comment=\"c\" Comment=\"d\"><Comment>e</Comment></UI>", 0},
        {"type=\"long\"", "<UI/><UI/>", 0},
        {"type=\"long\"", "<UI/><UI access=\"hidden\" minVal=\"1\" maxVal=\"2\" flags=\"1\" regen=\"r\"/>",
         0},
        {"type=\"long\"", "<UI/><UI control=\"num\"/>", kTwoControls},
        {"type=\"long\"", "<UI/><UI prov_index=\"1\" prov_owner=\"app\"/>",
         kTwoProviderIndexes | kTwoProviderOwners},
        {"type=\"long\"", "<UI/><UI name=\"b\" Comment=\"c\"/>", kTwoShownNames | kTwoComments},
        {"type=\"long\"", "<UI/><Value/><UI><Comment/></UI>", kTwoComments},
        {"type=\"long\" minVal=\"1\" minVal=\"2\"", "<UI minVal=\"1\" minVal=\"2\"><a/><a/></UI>", 0},
    };
    for (const Case& test : cases) {
        const std::string entry = "<Var name=\"k\" " + test.attributes + ">" + test.content + "</Var>";
        SCOPED_TRACE(entry);
        EXPECT_EQ(Oddities(entry), test.oddities);
        EXPECT_EQ(WrittenElsewhere(Section(entry)), test.oddities);
    }
}

TEST(Inspect, TextsWithChildrenAreNamed) {
    using namespace mox::front;
    const std::string start = "<Var name=\"k\" type=\"long\">";
    EXPECT_EQ(Oddities(start + "<Value>1<!-- c --></Value></Var>"), kValueHasChildren);
    EXPECT_EQ(Oddities(start + "<Value>1<b/></Value><Value/></Var>"), kValueHasChildren | kTwoValues);
    EXPECT_EQ(Oddities(start + "<UI><Comment>1<b/></Comment></UI></Var>"), kCommentHasChildren);
    EXPECT_EQ(Oddities(start + "<UI><Value><!-- c --></Value></UI></Var>"), kUiValueHasChildren);
    EXPECT_EQ(Oddities(start + "<Other>1<b/></Other><UI><Other>1<b/></Other></UI></Var>"), 0U);
}

TEST(Inspect, ValuesOfPresentationDataThatAreThereTwiceAreNamed) {
    using mox::front::kTwoUiValues;
    const auto inUi = [](const std::string& content) {
        return Oddities("<Var name=\"k\" type=\"long\">" + content + "</Var>");
    };
    EXPECT_EQ(inUi("<UI><Value>1</Value><Value>2</Value></UI>"), kTwoUiValues);
    EXPECT_EQ(inUi("<UI><Value>1</Value></UI><UI><Value>2</Value></UI>"), kTwoUiValues);
    EXPECT_EQ(inUi("<UI/><UI Value=\"2\"/>"), kTwoUiValues);
    EXPECT_EQ(inUi("<UI Value=\"1\"><Value>2</Value></UI>"), 0U);
    EXPECT_EQ(inUi("<Value/><UI><Value/></UI>"), 0U);
}

TEST(Inspect, AnEudThatIsThereTwiceIsNamed) {
    EXPECT_EQ(Oddities("<Var name=\"k\" type=\"long\" eud=\"\" eud=\"true\"/>"), mox::front::kTwoEuds);
    EXPECT_EQ(Oddities("<Var name=\"k\" type=\"long\" eud=\"true\"/>"), 0U);
}

}  // namespace
}  // namespace document_tests
