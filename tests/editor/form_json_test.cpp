// What the form says of documents of all kinds, and how much of it.
#include <filesystem>

#include "tests/editor/session_support.h"

namespace editor {
namespace {

using mox::tool::EditorSession;
using mox::tool::Json;

class FormJson : public SessionTest {
  protected:
    Json FormOf(const std::string& inner) {
        WriteBytes(path_, Narrow(inner));
        return EditorSession(Options()).Form();
    }

    // The problem of the only entry of the document.
    std::string ProblemOf(const std::string& entry) {
        return FormOf("<Table name=\"S\">" + entry + "</Table>")["sections"][0]["entries"][0].value("problem",
                                                                                                    "");
    }
};

TEST_F(FormJson, NamesTheFile) {
    const Json form = FormOf("");
    EXPECT_EQ(form["file"], "a.xml");
    const std::filesystem::path path(form["path"].get<std::string>());
    EXPECT_TRUE(path.is_absolute());
    EXPECT_EQ(path.filename(), "a.xml");
    EXPECT_TRUE(std::filesystem::equivalent(path, path_));
    EXPECT_FALSE(form.contains("choices"));
}

TEST_F(FormJson, TellsBothKindsAndForms) {
    const Json settings = FormOf("<Table name=\"S\"/>");
    EXPECT_EQ(settings["kind"], "settings");
    EXPECT_EQ(settings["form"], "narrow");
    EXPECT_EQ(settings["sections"].dump(), R"([{"name":"S","found":true,"entries":[]}])");
    WriteBytes(
        path_,
        Wide("<Table name=\"T\"><Var name=\"k\" type=\"long\"><Value>1</Value></Var><!--in--></Table>\n" +
             std::string(1, '\0')));
    const Json form = EditorSession(Options()).Form();
    EXPECT_EQ(form["kind"], "table");
    EXPECT_EQ(form["form"], "wide");
    EXPECT_EQ(form["sections"].dump(),
              R"([{"name":"T","found":true,"entries":[{"name":"k","type":"long","value":"1","own":true}],)"
              R"("others":[{"comment":"in"}]}])");
    EXPECT_FALSE(form.contains("others"));
    EXPECT_FALSE(form.contains("readOnly"));
}

TEST_F(FormJson, ListsWhatIsOutsideOfTheRoot) {
    std::string bytes = Narrow("");
    bytes.insert(bytes.find("<Settings"), "<!--before-->\n");
    bytes.insert(bytes.size() - 1, "<!--after-->\n");
    WriteBytes(path_, bytes);
    EXPECT_EQ(EditorSession(Options()).Form()["others"].dump(),
              R"([{"comment":"before"},{"comment":"after"}])");
}

TEST_F(FormJson, HalvesOfCharactersCannotBeChanged) {
    const auto formOf = [this](const std::string& tables) {
        WriteBytes(path_, Wide(Narrow(tables), 0xD800));
        return EditorSession(Options()).Form()["sections"];
    };
    const std::string half = "The entry contains half a character (a surrogate without its partner).";
    const Json entries = formOf(
        "<Table name=\"S\"><Var name=\"a\" type=\"string\"><Value>1~</Value></Var>"
        "<Var name=\"b~\" type=\"string\"/><Var name=\"c\" type=\"string\"/></Table>")[0]["entries"];
    EXPECT_EQ(entries[0].value("problem", ""), half);
    EXPECT_EQ(entries[1].value("problem", ""), half);
    EXPECT_FALSE(entries[2].contains("problem"));
    const Json sections = formOf("<Table name=\"S~\"/><Table name=\"S\"/><Table/>");
    EXPECT_FALSE(sections[0].contains("found"));
    EXPECT_TRUE(sections[1].contains("found"));
    EXPECT_FALSE(sections[2].contains("found"));
}

TEST_F(FormJson, SectionIsFrozenOnlyIfTheFileSaysSo) {
    const Json sections = FormOf(
        "<Table name=\"A\" editable=\"true\"/><Table name=\"B\" editable=\"false\"/><Table name=\"C\"/>"
        "<Table name=\"D\" editable=\"\"/>")["sections"];
    std::vector<bool> frozen;
    for (const Json& section : sections)
        frozen.push_back(section.value("frozen", false));
    EXPECT_EQ(frozen, (std::vector<bool>{false, true, false, false}));
}

TEST_F(FormJson, NamesUpTo258UnitsCanBeChanged) {
    const auto entry = [](std::size_t length) {
        return "<Var name=\"" + std::string(length, 'n') + "\" type=\"long\"/>";
    };
    EXPECT_EQ(ProblemOf(entry(258)), "");
    EXPECT_EQ(ProblemOf(entry(259)), "The name is too long for programs to change the entry.");
    EXPECT_EQ(ProblemOf("<Var name=\"\" type=\"long\"/>"), "The entry has no name, so it cannot be changed.");
}

TEST_F(FormJson, TellsWhatIsOddAboutAnEntry) {
    const Json entry =
        FormOf("<Table name=\"S\"><Var name=\"a\" type=\"long\" type=\"byte\"/></Table>")["sections"][0]
                                                                                         ["entries"][0];
    ASSERT_EQ(entry["notes"].size(), 1U);
    EXPECT_NE(entry["notes"][0].get<std::string>().find("type"), std::string::npos);
}

TEST_F(FormJson, ListsOtherNodesWithThoseInThem) {
    const Json form = FormOf(
        "<!--top--><Table name=\"S\"><!--in--><Var name=\"k\" type=\"long\"><Value>1</Value><UI "
        "control=\"num\"/><A x=\"1\"><B>b</B><C/></A><D/></Var></Table><Other><!--deep--></Other>");
    EXPECT_EQ(form["others"].dump(), R"([{"comment":"top"}])");
    const Json& section = form["sections"][0];
    EXPECT_EQ(section["others"].dump(), R"([{"comment":"in"}])");
    EXPECT_EQ(section["entries"][0]["others"].dump(),
              R"([{"element":"<A x=\"1\">"},{"element":"<B> b"},{"element":"<C>"},{"element":"<D>"}])");
    EXPECT_EQ(
        form["sections"][1].dump(),
        R"({"name":"","element":"Other","entries":[],"others":[{"element":"<Other>"},{"comment":"deep"},)"
        R"({"comment":"deep"}]})");
}

TEST_F(FormJson, ListsAtMostAThousandOtherNodes) {
    const auto othersOf = [this](std::size_t count) {
        std::string comments;
        for (std::size_t i = 0; i < count; ++i)
            comments += "<!--" + std::to_string(i) + "-->";
        return FormOf("<Table name=\"S\">" + comments + "</Table>")["sections"][0]["others"];
    };
    const Json all = othersOf(1000);
    EXPECT_EQ(all.size(), 1000U);
    EXPECT_EQ(all[999]["comment"], "999");
    const Json more = othersOf(1003);
    EXPECT_EQ(more.size(), 1001U);
    EXPECT_EQ(more[1000]["comment"], "and more");
}

TEST_F(FormJson, ShortensOtherTextsBetweenCharacters) {
    const auto commentOf = [this](const std::string& text) {
        return FormOf("<!--" + text + "-->")["others"][0]["comment"].get<std::string>();
    };
    EXPECT_EQ(commentOf(std::string(100000, 'x')), std::string(100000, 'x'));
    EXPECT_EQ(commentOf(std::string(100001, 'x')), std::string(100000, 'x') + "...");
}

TEST_F(FormJson, ShortensNoCharacterToAPartOfIt) {
    // The unit takes three bytes of UTF-8, of which the first is the last one that has room.
    WriteBytes(path_, Wide(Narrow("<!--" + std::string(99999, 'x') + "~-->"), 0x2045));
    const Json form = EditorSession(Options()).Form();
    EXPECT_EQ(form["others"][0]["comment"].get<std::string>(), std::string(99999, 'x') + "...");
}

}  // namespace
}  // namespace editor
