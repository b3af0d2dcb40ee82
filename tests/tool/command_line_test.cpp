// How the tool reads its arguments, and what it says about those that it cannot use.
#include <algorithm>

#include "tests/tool/tool_support.h"

namespace tool {
namespace {

const std::string kOneKey = Settings("\t<Table name=\"S\">\n" + Var("k", "1") + "\t</Table>\n");

class CommandLine : public ToolProcessTest {
  protected:
    static std::string ValueOf(const std::string& key) { return Succeeds({"get", "a.xml", "S", "--", key}); }
};

TEST_F(CommandLine, NamesTheVerbsNearestToAnUnknownOne) {
    Fails(2, {"gte"}, "mox-xml: unknown verb gte; the nearest is get (see \"mox-xml --help\")\n");
    Fails(2, {"Get", "a.xml"}, "unknown verb Get; the nearest is get (see");
    Fails(2, {"entires"}, "unknown verb entires; the nearest is entries (see");
    Fails(2, {"entr"}, "unknown verb entr; the nearest are entries and entry (see");
    Fails(2, {"convret"}, "unknown verb convret; the nearest is convert (see");
    Fails(2, {"sec", "a.xml"}, "unknown verb sec; the nearest are sections and section (see");
    Fails(2, {"remove", "a.xml"},
          "unknown verb remove; the nearest are entry remove and section remove (see");
    Fails(2, {"entry", "sett"},
          "mox-xml: unknown verb sett; the nearest is entry set (see \"mox-xml entry --help\")\n");
    Fails(2, {"frobnicate"}, "mox-xml: unknown verb frobnicate (see \"mox-xml --help\")\n");
    Fails(2, {""}, "mox-xml: unknown verb \"\" (see \"mox-xml --help\")\n");
    Fails(2, {"x\n"}, "mox-xml: unknown verb \"x\\n\" (see \"mox-xml --help\")\n");
    Fails(2, {"entry"}, "mox-xml: a verb is required (see \"mox-xml entry --help\")\n");
    Fails(2, {"--", "get"}, "mox-xml: a verb is required (see \"mox-xml --help\")\n");
}

TEST_F(CommandLine, NamesTheOptionsNearestToAnUnknownOne) {
    WriteBytes("a.xml", Narrow(kOneKey));
    Fails(2, {"set", "a.xml", "S", "k", "2", "--bakcup"},
          "mox-xml: unknown option --bakcup; the nearest is --backup (see \"mox-xml set --help\")\n");
    Fails(2, {"get", "a.xml", "S", "k", "--jsno"}, "unknown option --jsno; the nearest is --json (see");
    Fails(2, {"get", "a.xml", "S", "k", "--def=1"}, "unknown option --def; the nearest is --default (see");
    Fails(2, {"entry", "set", "a.xml", "k", "2", "--provider-idx", "1"},
          "unknown option --provider-idx; the nearest is --provider-index (see \"mox-xml entry set "
          "--help\")\n");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kOneKey));
}

TEST_F(CommandLine, HintsAtTwoDashesForAValueThatLooksLikeAnOption) {
    WriteBytes("a.xml", Narrow(kOneKey));
    const std::string hint = "an argument that begins with \"-\" must follow \"--\"";
    Fails(2, {"set", "a.xml", "S", "k", "-auto"},
          "mox-xml: unknown option -auto; " + hint + " (see \"mox-xml set --help\")\n");
    Fails(2, {"set", "a.xml", "S", "k", "--auto"}, "unknown option --auto; " + hint);
    Fails(2, {"set", "a.xml", "S", "k", "--int"},
          "VALUE is required; " + hint + " (see \"mox-xml set --help\")");
    Fails(2, {"get", "a.xml", "S", "--jsonn"}, "unknown option --jsonn; the nearest is --json; " + hint);
    Fails(2, {"get", "a.xml", "S", "-zoom"}, "unknown option -zoom; " + hint);
    Fails(2, {"get", "a.xml", "S"}, "mox-xml: KEY is required (see \"mox-xml get --help\")\n");
    Succeeds({"set", "a.xml", "--", "S", "k", "-auto"});
    EXPECT_EQ(ValueOf("k"), "-auto\n");
    Succeeds({"set", "a.xml", "S", "--int", "--", "-k", "-5"});
    EXPECT_EQ(ValueOf("-k"), "-5\n");
    for (const std::string number : {"-5", "-1.25", "-.5", "-"}) {
        Succeeds({"set", "a.xml", "S", "k", number});
        EXPECT_EQ(ValueOf("k"), number + "\n");
    }
}

TEST_F(CommandLine, PointsToTheHelpOfTheVerb) {
    WriteBytes("a.xml", Narrow(kOneKey));
    Fails(2, {"get", "a.xml", "S", "k", "more"}, "unexpected argument more (see \"mox-xml get --help\")\n");
    Fails(2, {"set", "a.xml", "S", "k", "x", "--hex"}, " (see \"mox-xml set --help\")\n");
    Fails(2, {"set", "a.xml", "S", "k", "x", "--int"}, " (see \"mox-xml set --help\")\n");
    Fails(2, {"convert", "a.xml"}, " (see \"mox-xml convert --help\")\n");
    Fails(2, {"convert", "a.xml", "--wide", "--from", "x"}, " (see \"mox-xml convert --help\")\n");
    Fails(2, {"entry", "set", "a.xml", "k", "--id", "x"},
          "invalid value: --id = x (see \"mox-xml entry set --help\")\n");
    Fails(2, {"get", "a.xml", "S", "k", "--default"},
          "--default requires a value (see \"mox-xml get --help\")\n");
    Fails(2, {"get", "a.xml", "S", "k", "--json=7"}, "--json takes no value (see \"mox-xml get --help\")\n");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kOneKey));
}

// "++" once ended the arguments of a verb, so that this deleted the whole section.
TEST_F(CommandLine, TwoPlusSignsAreAnArgumentLikeAnyOther) {
    WriteBytes("a.xml", Narrow(kOneKey));
    Fails(1, {"delete", "a.xml", "S", "++"}, "a.xml: no key S/++\n");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kOneKey));
    Succeeds({"set", "a.xml", "S", "++", "++"});
    EXPECT_EQ(ValueOf("++"), "++\n");
}

TEST_F(CommandLine, EmptyValueAfterAnEqualsSignIsTheValue) {
    WriteBytes("a.xml", Narrow(kOneKey));
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "none", "--default="}), "\n");
    EXPECT_EQ(Succeeds({"get", "--default=", "a.xml", "S", "none"}), "\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "none", "--default=a=b"}), "a=b\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "none", "--default", "--json"}), "--json\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "none", "--default", "--"}), "--\n");
}

TEST_F(CommandLine, TakesOptionsBeforeAndAfterTheVerb) {
    WriteBytes("a.xml", Narrow(kOneKey));
    const std::string json = Succeeds({"get", "a.xml", "S", "k", "--json"});
    EXPECT_EQ(json, "\"1\"\n");
    EXPECT_EQ(Succeeds({"--json", "get", "a.xml", "S", "k"}), json);
    EXPECT_EQ(Succeeds({"--narrow", "--json", "get", "a.xml", "S", "k"}), json);
    EXPECT_EQ(Succeeds({"get", "--json", "a.xml", "--narrow", "S", "k"}), json);
    EXPECT_EQ(Succeeds({"--default=5", "get", "a.xml", "S", "none"}), "5\n");
    const std::string entry = Succeeds({"entry", "get", "a.xml", "k", "--section", "S", "--json"});
    EXPECT_EQ(Succeeds({"--json", "entry", "get", "a.xml", "k", "--section", "S"}), entry);
    EXPECT_EQ(Succeeds({"entry", "--json", "get", "a.xml", "k", "--section", "S"}), entry);
    Succeeds({"--backup", "set", "a.xml", "S", "k", "2"});
    EXPECT_EQ(ReadBytes("a.xml.bak"), Narrow(kOneKey));
    Fails(2, {"--json", "set", "a.xml", "S", "k", "2"}, "unknown option --json");
}

TEST_F(CommandLine, HelpAndVersionWorkBeforeAndAfterTheVerb) {
    const std::string version = Succeeds({"--version"});
    EXPECT_EQ(version.rfind("mox-xml ", 0), 0U);
    EXPECT_EQ(Succeeds({"get", "--version"}), version);
    EXPECT_EQ(Succeeds({"--version", "entry", "get"}), version);
    EXPECT_EQ(Succeeds({"entry", "--version"}), version);
    const std::string help = Succeeds({"get", "--help"});
    const std::string end = "\nSee \"mox-xml VERB --help\" and the manual page mox-xml(1) for more.\n";
    ASSERT_GT(help.size(), end.size());
    EXPECT_EQ(help.substr(help.size() - end.size()), end);
    EXPECT_EQ(help.rfind("Examples:\n  mox-xml get ", 0), 0U);
    EXPECT_EQ(Succeeds({"--help", "get"}), help);
    EXPECT_EQ(Succeeds({"-h", "get"}), help);
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "--help"}), help);
    EXPECT_EQ(Succeeds({"get", "a.xml", "--nope", "--help"}), help);
    EXPECT_EQ(Succeeds({"entry", "--help"}), Succeeds({"--help", "entry"}));
    EXPECT_EQ(Succeeds({"--help", "entry", "set"}), Succeeds({"entry", "set", "--help"}));
}

TEST_F(CommandLine, CheckTakesAnyNumberOfFilesWithAnyNames) {
    WriteBytes("a.xml", Narrow(kOneKey));
    WriteBytes("--odd.xml", "<a>");
    WriteBytes("--", "<a>");
    Fails(2, {"check", "a.xml", "--odd.xml"}, "unknown option --odd.xml; an argument that begins with");
    EXPECT_EQ(RunTool({"check", "a.xml", "--", "--odd.xml", "--"}).out,
              RunTool({"check", "--", "--odd.xml"}).out + RunTool({"check", "--", "--"}).out);
    EXPECT_EQ(RunTool({"check", "--", "a.xml", "--odd.xml"}).code, 3);
    EXPECT_EQ(RunTool({"check", "a.xml", "--", "--"}).out.rfind("--:1:", 0), 0U);
}

TEST_F(CommandLine, ZeroBytesEndItemsWithNull) {
    WriteBytes("a.xml", Wide(Settings("<Table name=\"A\nB\">" + Var("k\tl", "1\n2") + Var("m", "") +
                                      "</Table><Table name=\"C\"/>")));
    const auto zeros = [](std::string text) {
        std::replace(text.begin(), text.end(), '|', '\0');
        return text;
    };
    for (const std::string option : {"-z", "--null"}) {
        EXPECT_EQ(Succeeds({"sections", "a.xml", option}), zeros("A\nB|C|"));
        EXPECT_EQ(Succeeds({option, "keys", "a.xml", "A\nB"}), zeros("k\tl|m|"));
        EXPECT_EQ(Succeeds({"get", "a.xml", "A\nB", "k\tl", option}), zeros("1\n2|"));
        EXPECT_EQ(Succeeds({"get", "a.xml", "C", "none", option, "--default", "x"}), zeros("x|"));
        EXPECT_EQ(Succeeds({"entries", "a.xml", "--section", "A\nB", option}),
                  zeros("k\tl|string|1\n2|m|string||"));
        EXPECT_EQ(Succeeds({"entry", "get", "a.xml", "k\tl", option, "--section", "A\nB"}), zeros("1\n2|"));
    }
    Fails(2, {"sections", "a.xml", "-z", "--json"}, "excludes");
    Fails(2, {"set", "a.xml", "C", "k", "v", "-z"}, "unknown option -z");
}

TEST_F(CommandLine, AnOptionBeforeTheVerbDoesNotTakeAnArgumentAfterIt) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\">" + Var("k", "1") + "</Table>")));
    Fails(2, {"--section", "entries", "S", "a.xml"}, "mox-xml: --section requires a value after \"=\" (see");
    EXPECT_EQ(Succeeds({"--section=S", "entries", "a.xml"}), "k\tstring\t1\n");
}

TEST_F(CommandLine, ArgumentsMayHaveCharactersOfAnyScript) {
    WriteBytes("a.xml", Wide(Settings("")));
    Succeeds({"set", "a.xml", "Größe", "Ключ \"鍵\"", "\xF0\x9F\x98\x80\\"});
    EXPECT_EQ(Succeeds({"get", "a.xml", "Größe", "Ключ \"鍵\""}), "\xF0\x9F\x98\x80\\\n");
}

}  // namespace
}  // namespace tool
