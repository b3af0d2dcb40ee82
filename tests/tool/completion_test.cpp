// The completion for bash, as people see it: an interactive bash on a terminal, with keys typed.
#if !defined(_WIN32)

#include <algorithm>
#include <sstream>

#include "tests/tool/help_support.h"
#include "tests/tool/terminal_support.h"
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

// A bash that has the completion of mox-xml.
class Bash {
  public:
    Bash() : program_(Call()) { program_.ReadUntil("READY> "); }

    // The command line after somebody has typed it as far as `typed` and then pressed the tab key.
    std::string AfterTab(const std::string& typed) { return After(typed + "\t"); }

    // The same with all completions inserted, as the keys Alt and * do.
    std::string AllAfter(const std::string& typed) { return After(typed + "\x1B*"); }

  private:
    static std::vector<std::string> Call() {
        WriteBytes("rc",
                   "PS1='READY> '\n"
                   "unset HISTFILE\n"
                   "mox-xml() { \"$MOX_TOOL\" \"$@\"; }\n"
                   "bind 'set enable-bracketed-paste off' 'set bell-style none'\n"
                   "bind -x '\"\\C-t\": printf \"<%s>\" \"$READLINE_LINE\"'\n"
                   "source '" +
                       SourceFolder() + "/../tools/completion/mox-xml'\n");
        return {"/usr/bin/env", "TERM=dumb", "INPUTRC=/dev/null", "LC_ALL=C.UTF-8",
                "HOME=.",       "bash",      "--noprofile",       "--rcfile",
                "rc",           "-i"};
    }

    std::string After(const std::string& keys) {
        program_.Type("\x01\x0B" + keys + "\x14");  // clear the line, and print it in the end
        program_.ReadUntil("<");
        return program_.ReadUntil(">");
    }

    TerminalProgram program_;
};

class Completion : public ToolTest {
  protected:
    void SetUp() override {
        ToolTest::SetUp();
        WriteBytes("a.xml",
                   Wide(Settings("<Table name=\"Camera\">" + Var("Exposure", "1") + Var("Gain", "2") +
                                 Var("Gain two", "3") + "</Table><Table name=\"Front lens\">" +
                                 Var("f:number=x", "4") + Var("it's $5 &quot;or&quot; `so`", "5") +
                                 Var("-auto", "6") + Var("b\\ack\\slash", "8") + Var("off", "\n7\n") +
                                 "</Table><Table name=\"-odd\"/>")));
        WriteBytes("tools.xml", Wide(TableDocument(Var("Drill 3", "1\t2\n3") + Var("Saw", "4"))));
    }
};

TEST_F(Completion, OffersVerbs) {
    Bash bash;
    EXPECT_EQ(bash.AfterTab("mox-xml sections"), "mox-xml sections ");
    EXPECT_EQ(bash.AfterTab("mox-xml --json exp"), "mox-xml --json export ");
    EXPECT_EQ(bash.AfterTab("mox-xml entry rem"), "mox-xml entry remove ");
    EXPECT_EQ(bash.AllAfter("mox-xml entry "), "mox-xml entry add get remove rename set ");
    EXPECT_EQ(bash.AllAfter("mox-xml section "), "mox-xml section add copy remove rename set ");
}

TEST_F(Completion, OffersFiles) {
    WriteBytes("with space.xml", "");
    Bash bash;
    EXPECT_EQ(bash.AfterTab("mox-xml get a"), "mox-xml get a.xml ");
    EXPECT_EQ(bash.AfterTab("mox-xml get wi"), "mox-xml get with\\ space.xml ");
    EXPECT_EQ(bash.AfterTab("mox-xml get \"wi"), "mox-xml get \"with space.xml\" ");
    EXPECT_EQ(bash.AfterTab("mox-xml diff a.xml to"), "mox-xml diff a.xml tools.xml ");
    EXPECT_EQ(bash.AfterTab("mox-xml check --quiet a.xml a.xml -- to"),
              "mox-xml check --quiet a.xml a.xml -- tools.xml ");
}

TEST_F(Completion, OffersSectionsAndKeys) {
    Bash bash;
    EXPECT_EQ(bash.AfterTab("mox-xml keys a.xml C"), "mox-xml keys a.xml Camera ");
    EXPECT_EQ(bash.AllAfter("mox-xml keys a.xml "), "mox-xml keys a.xml Camera Front\\ lens ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Camera E"), "mox-xml get a.xml Camera Exposure ");
    EXPECT_EQ(bash.AfterTab("mox-xml set a.xml Camera Gain\\ "), "mox-xml set a.xml Camera Gain\\ two ");
    EXPECT_EQ(bash.AfterTab("mox-xml set a.xml Camera Exposure E"), "mox-xml set a.xml Camera Exposure E");
    EXPECT_EQ(bash.AfterTab("mox-xml get none.xml C"), "mox-xml get none.xml C");
    EXPECT_EQ(bash.AfterTab("mox-xml keys ~/a.xml C"), "mox-xml keys ~/a.xml Camera ");
}

TEST_F(Completion, OffersEntries) {
    Bash bash;
    EXPECT_EQ(bash.AllAfter("mox-xml entry get tools.xml "), "mox-xml entry get tools.xml Drill\\ 3 Saw ");
    EXPECT_EQ(bash.AfterTab("mox-xml entry set tools.xml S"), "mox-xml entry set tools.xml Saw ");
    EXPECT_EQ(bash.AfterTab("mox-xml entry remove tools.xml 'D"),
              "mox-xml entry remove tools.xml 'Drill 3' ");
    EXPECT_EQ(bash.AfterTab("mox-xml entry add tools.xml S"), "mox-xml entry add tools.xml S");
    EXPECT_EQ(bash.AfterTab("mox-xml entry add tools.xml new 1 --before S"),
              "mox-xml entry add tools.xml new 1 --before Saw ");
    EXPECT_EQ(bash.AfterTab("mox-xml entry get --section Camera a.xml E"),
              "mox-xml entry get --section Camera a.xml Exposure ");
    EXPECT_EQ(bash.AfterTab("mox-xml entry get a.xml --section=Camera E"),
              "mox-xml entry get a.xml --section=Camera Exposure ");
    EXPECT_EQ(bash.AfterTab("mox-xml entries a.xml --section Fr"),
              "mox-xml entries a.xml --section Front\\ lens ");
    EXPECT_EQ(bash.AfterTab("mox-xml entries a.xml --section=C"), "mox-xml entries a.xml --section=Camera ");
}

TEST_F(Completion, WorksAfterOptionsWithValues) {
    Bash bash;
    EXPECT_EQ(bash.AfterTab("mox-xml get --default 5 --json a.xml Camera E"),
              "mox-xml get --default 5 --json a.xml Camera Exposure ");
    EXPECT_EQ(bash.AfterTab("mox-xml get --default=5 a.xml C"), "mox-xml get --default=5 a.xml Camera ");
    EXPECT_EQ(bash.AfterTab("mox-xml entry add --type long --before S"),
              "mox-xml entry add --type long --before S");
    EXPECT_EQ(bash.AfterTab("mox-xml entry set tools.xml Saw --type do"),
              "mox-xml entry set tools.xml Saw --type double ");
    EXPECT_EQ(bash.AfterTab("mox-xml entry set tools.xml Saw --type=do"),
              "mox-xml entry set tools.xml Saw --type=double ");
    EXPECT_EQ(bash.AllAfter("mox-xml convert a.xml --from="),
              "mox-xml convert a.xml --from=latin1 narrow utf-16 utf-8 wide ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Camera Gain --default G"),
              "mox-xml get a.xml Camera Gain --default G");
}

TEST_F(Completion, WorksWithQuotedWords) {
    Bash bash;
    EXPECT_EQ(bash.AfterTab("mox-xml keys a.xml \"Fr"), "mox-xml keys a.xml \"Front lens\" ");
    EXPECT_EQ(bash.AfterTab("mox-xml keys a.xml \"Front le"), "mox-xml keys a.xml \"Front lens\" ");
    EXPECT_EQ(bash.AfterTab("mox-xml keys a.xml 'Front le"), "mox-xml keys a.xml 'Front lens' ");
    EXPECT_EQ(bash.AfterTab("mox-xml keys a.xml Front\\ le"), "mox-xml keys a.xml Front\\ lens ");
    EXPECT_EQ(bash.AfterTab("mox-xml keys a.xml Fr\"on"), "mox-xml keys a.xml Fr\"ont lens\" ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml \"Front lens\" o"), "mox-xml get a.xml \"Front lens\" off ");
    EXPECT_EQ(bash.AfterTab("mox-xml get \"a.xml\" Front' 'lens o"),
              "mox-xml get \"a.xml\" Front' 'lens off ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Front\\ lens i"),
              "mox-xml get a.xml Front\\ lens it\\'s\\ \\$5\\ \\\"or\\\"\\ \\`so\\` ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Front\\ lens \"i"),
              "mox-xml get a.xml Front\\ lens \"it's \\$5 \\\"or\\\" \\`so\\`\" ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Front\\ lens 'i"),
              "mox-xml get a.xml Front\\ lens 'it'\\''s $5 \"or\" `so`' ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Front\\ lens b\\\\a"),
              "mox-xml get a.xml Front\\ lens b\\\\ack\\\\slash ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Front\\ lens \"b\\\\a"),
              "mox-xml get a.xml Front\\ lens \"b\\\\ack\\\\slash\" ");
}

TEST_F(Completion, WorksWhereBashSplitsWords) {
    Bash bash;
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Front\\ lens f"),
              "mox-xml get a.xml Front\\ lens f:number=x ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Front\\ lens f:"),
              "mox-xml get a.xml Front\\ lens f:number=x ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Front\\ lens f:nu"),
              "mox-xml get a.xml Front\\ lens f:number=x ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Front\\ lens f:number="),
              "mox-xml get a.xml Front\\ lens f:number=x ");
    EXPECT_EQ(bash.AfterTab("true | mox-xml get a.xml Camera E"),
              "true | mox-xml get a.xml Camera Exposure ");
}

TEST_F(Completion, OffersNamesWithADashOnlyAfterTwoDashes) {
    Bash bash;
    EXPECT_EQ(bash.AfterTab("mox-xml keys a.xml -- -"), "mox-xml keys a.xml -- -odd ");
    EXPECT_EQ(bash.AfterTab("mox-xml get -- a.xml Front\\ lens -"),
              "mox-xml get -- a.xml Front\\ lens -auto ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml -- C"), "mox-xml get a.xml -- Camera ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml Camera --js"), "mox-xml get a.xml Camera --json ");
    EXPECT_EQ(bash.AfterTab("mox-xml get a.xml -- Camera --js"), "mox-xml get a.xml -- Camera --js");
    EXPECT_EQ(bash.AfterTab("mox-xml set a.xml Camera -5 --b"), "mox-xml set a.xml Camera -5 --backup ");
}

// A name could control the terminal when its completions are listed.
TEST_F(Completion, ShowsNoControlCharacters) {
    WriteBytes("b.xml",
               Wide(Settings("<Table name=\"e\x1B[2J\"/><Table name=\"e\u202E\"/>"
                             "<Table name=\"e\u009B\"/><Table name=\"e\u2066\"/><Table name=\"eü\"/>")));
    Bash bash;
    EXPECT_EQ(bash.AllAfter("mox-xml keys b.xml "), "mox-xml keys b.xml eü ");
    EXPECT_EQ(bash.AfterTab("mox-xml keys b.xml \"e"), "mox-xml keys b.xml \"eü\" ");
}

TEST_F(Completion, OffersTheOptionsOfTheHelp) {
    Bash bash;
    const std::string script = ReadBytes(SourceFolder() + "/../tools/completion/mox-xml");
    const std::size_t list = script.find("local valued=");
    const std::string valued = script.substr(list, script.find("\n    local", list) - list);
    for (const std::string& verb : Verbs()) {
        const std::string help = HelpOf(verb);
        const std::string line = bash.AllAfter("mox-xml " + verb + " a.xml --");
        std::istringstream words(line.substr(line.find(" --")));
        std::vector<std::string> offered;
        for (std::string word; words >> word;)
            offered.push_back(word);
        EXPECT_THAT(offered, testing::UnorderedElementsAreArray(OptionsIn(help))) << verb;
        for (const std::string& option : OptionsWithValueIn(help))
            EXPECT_NE(valued.find(option + " "), std::string::npos) << option;
    }
}

}  // namespace
}  // namespace tool

#endif
