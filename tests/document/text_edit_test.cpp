// Changes to the text of a document: what is changed, byte for byte, and what is refused.
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>

#include "mox_xmlApi/mox_xmlApi.hpp"

namespace {

using mox::Form;
using mox::Problem;
using mox::Reason;

// A narrow settings document with this text in its root; a zero ends the file.
std::string Settings(const std::string& inner) {
    return "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">" + inner + "</Settings>\n" +
           std::string(1, '\0');
}

std::string TableDocument(const std::string& inner) {
    return "<Table name=\"T\">" + inner + "</Table>\n" + std::string(1, '\0');
}

std::string Wide(const std::string& narrow) {
    std::string wide;
    for (const char character : narrow)
        wide.append(1, character).append(1, '\0');
    return wide;
}

// What no export carries is in it, too.
const std::string kInner =
    "\n\t<!-- one -->\n\t<Table eud=\"true\"name = \"A&amp;B\" other=\"a>b\" first_id=\"7\">\r\n"
    "\t\t<Var name=\"k\" type=\"long\" eud=\"true\" last=\"x\"><Value>1</Value>\n"
    "\t\t\t<UI control=\"num\" minVal=\"0\" maxVal=\"9\" flags=\"0010\"><!-- < "
    "--><Comment>c</Comment></UI></Var>\n"
    "\t\t<Odd><Table name=\"inner\"/></Odd>text\n\t</Table>rest\n\t<Table name=\"C\"/>\n";

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return text.replace(at, what.size(), with);
}

TEST(TextEdits, RenameASectionAndNothingElse) {
    const std::string expected = Replaced(kInner, "A&amp;B", "x &lt;y&gt; &quot;&apos;");
    Problem problem;
    EXPECT_EQ(mox::renameSection(Settings(kInner), std::nullopt, "A&B", "x <y> \"'", &problem),
              Settings(expected));
    EXPECT_FALSE(problem) << problem.toString();
    EXPECT_EQ(mox::renameSection(Wide(Settings(kInner)), std::nullopt, "A&B", "x <y> \"'"),
              Wide(Settings(expected)));
    EXPECT_EQ(mox::renameSection(Settings(kInner), Form::Narrow, "A&B", "A&B"), Settings(kInner));
}

TEST(TextEdits, CopyASectionBehindItself) {
    const std::string before =
        "<Table name=\"A\"><Var name=\"k\" type=\"long\" eud=\"true\"><UI maxVal=\"2\"/></Var>";
    EXPECT_EQ(
        mox::copySection(Settings("\r\n  " + before + "</Table>\r\n<!-- end -->"), std::nullopt, "A", "B"),
        Settings("\r\n  " + before + "</Table>\r\n  " + Replaced(before, "\"A\"", "\"B\"") +
                 "</Table>\r\n<!-- end -->"));
    EXPECT_EQ(mox::copySection(Settings("<Table name=\"A\"/>"), std::nullopt, "A", "B"),
              Settings("<Table name=\"A\"/><Table name=\"B\"/>"));
}

TEST(TextEdits, TakeTheFirstOfSeveral) {
    const std::string text = Settings("<Var name=\"A\"/><Table name=\"A\" name=\"Z\"/><Table name=\"A\"/>");
    EXPECT_EQ(mox::renameSection(text, std::nullopt, "A", "B"),
              Settings("<Var name=\"A\"/><Table name=\"B\" name=\"Z\"/><Table name=\"A\"/>"));
}

TEST(TextEdits, RefuseNewNamesOfSections) {
    const std::string text = Settings("<Table name=\"A\"/><Table name=\"B\"/>");
    const auto reason = [&](const mox::Text& name, const mox::Text& newName, Form form = Form::Narrow) {
        Problem problem;
        const std::string bytes = form == Form::Narrow ? text : Wide(text);
        EXPECT_FALSE(mox::renameSection(bytes, form, name, newName, &problem).has_value());
        const Reason first = problem.reason;
        EXPECT_FALSE(mox::copySection(bytes, form, name, newName, &problem).has_value());
        EXPECT_EQ(problem.reason, first);
        EXPECT_FALSE(mox::copySection(bytes, form, name, newName).has_value());
        return first;
    };
    EXPECT_EQ(reason("A", "B"), Reason::NameTaken);
    EXPECT_EQ(reason("N", "M"), Reason::NoSuchSection);
    EXPECT_EQ(reason("A", ""), Reason::InvalidText);
    EXPECT_EQ(reason("A", "\xFF"), Reason::InvalidText);
    EXPECT_EQ(reason("\xFF", "C"), Reason::InvalidText);
    EXPECT_EQ(reason("A", "\xC3\xBC"), Reason::NotKept);
    EXPECT_EQ(reason("A", "\x01", Form::Wide), Reason::NotKept);
    Problem problem;
    EXPECT_FALSE(mox::copySection(text, std::nullopt, "A", "A", &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::NameTaken);
}

TEST(TextEdits, RefuseOtherDocuments) {
    const auto reason = [](const std::string& bytes) {
        Problem problem;
        EXPECT_FALSE(mox::renameSection(bytes, std::nullopt, "A", "B", &problem).has_value());
        return problem.reason;
    };
    EXPECT_EQ(reason(Settings("<Table name=\"A\">")), Reason::Syntax);
    EXPECT_EQ(reason(Settings("<Table name=\"A\"/>") + "more"), Reason::Encoding);
    EXPECT_EQ(reason("\xEF\xBB\xBF" + Settings("<Table name=\"A\"/>")), Reason::Encoding);
    EXPECT_EQ(reason(TableDocument("")), Reason::WrongKind);
    EXPECT_EQ(reason(""), Reason::WrongKind);
}

TEST(TextEdits, ChangeTheAttributesOfASection) {
    mox::HeaderChange change;
    change.editable = true;
    change.firstId = 4294967295U;
    EXPECT_EQ(mox::changeSection(Settings("<Table name=\"A\" type=\"0001\"/>"), std::nullopt, "A", change),
              Settings("<Table name=\"A\" type=\"0001\" first_id=\"4294967295\" editable=\"true\"/>"));
    change.editable = false;
    change.firstId.reset();
    change.type = std::uint16_t{31};
    EXPECT_EQ(mox::changeSection(Settings("<Table editable=\"true\" name=\"A\" type=\"\"></Table>"),
                                 std::nullopt, "A", change),
              Settings("<Table editable=\"false\" name=\"A\" type=\"001F\"></Table>"));
    Problem problem;
    EXPECT_FALSE(mox::changeSection(Settings(""), std::nullopt, "A", change, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::NoSuchSection);
}

TEST(TextEdits, ChangeTheAttributesOfSeveralSections) {
    const std::string text = Settings("<Table name=\"A\"/><Table name=\"B\" type=\"1\"/><Table name=\"C\"/>");
    mox::HeaderChange editable;
    editable.editable = true;
    mox::HeaderChange type;
    type.type = std::uint16_t{2};
    mox::HeaderChange others = type;
    others.editable = false;
    others.firstId = 7;
    EXPECT_EQ(mox::changeSections(text, std::nullopt, {{"C", others}, {"A", type}, {"C", editable}}),
              Settings("<Table name=\"A\" type=\"0002\"/><Table name=\"B\" type=\"1\"/>"
                       "<Table name=\"C\" first_id=\"7\" type=\"0002\" editable=\"true\"/>"));
    EXPECT_EQ(mox::changeSections(text, std::nullopt, {}), text);
    Problem problem;
    EXPECT_FALSE(mox::changeSections(text, std::nullopt, {{"A", type}, {"D", type}}, &problem).has_value());
    EXPECT_EQ(problem.toString(), "D: there is no such section");
}

TEST(TextEdits, RemovePresentationData) {
    const auto removed = [](const std::string& entry) {
        const std::optional<std::string> bytes =
            mox::removePresentation(TableDocument("\n\t" + entry + "\n"), std::nullopt, std::nullopt, "k");
        if (!bytes.has_value()) return std::string("refused");
        const std::string text = *bytes;
        const std::size_t begin = text.find("<Var");
        return text.substr(begin, text.rfind("</Table>") - 1 - begin);
    };
    const std::string begin = "<Var name=\"k\" type=\"long\">";
    EXPECT_EQ(removed(begin + "<Value>1</Value>\n\t\t<UI minVal=\"0\"><Value>2</Value></UI>\n\t</Var>"),
              begin + "<Value>1</Value>\n\t</Var>");
    EXPECT_EQ(removed(begin + "<UI/><Value>1</Value><UI/></Var>"), begin + "<Value>1</Value></Var>");
    EXPECT_EQ(removed(begin + "<Value/>\n<UI><Value>a&lt;b</Value></UI></Var>"),
              begin + "\n<Value loc=\"\">a&lt;b</Value></Var>");
    EXPECT_EQ(removed(begin + "<UI Value=\"2\" loc=\"true\"/></Var>"),
              begin + "<Value loc=\"true\">2</Value></Var>");
    EXPECT_EQ(removed(begin + "<UI Value=\" 2\"/></Var>"), "refused");
    EXPECT_EQ(removed(begin + "<Value><!-- c --></Value><UI Value=\"2\"/></Var>"), "refused");
    EXPECT_EQ(removed(begin + "<Value><!-- c --></Value><UI/></Var>"),
              begin + "<Value><!-- c --></Value></Var>");
    EXPECT_EQ(removed(begin + "<UI/></Var>"), begin + "</Var>");
    EXPECT_EQ(removed(begin + "<Value>1</Value></Var>"), begin + "<Value>1</Value></Var>");
}

TEST(TextEdits, RefuseToRemovePresentationDataThatAreNotThere) {
    const std::string text = Settings("<Table name=\"A\"><Var name=\"k\"/></Table>");
    const auto reason = [&](const std::optional<mox::Text>& section, const mox::Text& name) {
        Problem problem;
        EXPECT_FALSE(mox::removePresentation(text, std::nullopt, section, name, &problem).has_value());
        return problem.reason;
    };
    EXPECT_EQ(reason("A", "k"), Reason::Unreadable);
    EXPECT_EQ(reason("A", "l"), Reason::NoSuchKey);
    EXPECT_EQ(reason("A", ""), Reason::NoSuchKey);
    EXPECT_EQ(reason("B", "k"), Reason::NoSuchSection);
    EXPECT_EQ(reason(std::nullopt, "k"), Reason::WrongKind);
}

TEST(TextEdits, TakeLinearTimeInDeepDocuments) {
    constexpr int kLevels = 200'000;
    std::string deep;
    for (int i = 0; i < kLevels; ++i)
        deep += "<a>";
    for (int i = 0; i < kLevels; ++i)
        deep += "</a>";
    const std::string copied = "<Table name=\"A\">" + deep + "</Table>";
    EXPECT_EQ(mox::copySection(Settings(copied), std::nullopt, "A", "B"),
              Settings(copied + "<Table name=\"B\">" + deep + "</Table>"));
}

}  // namespace
