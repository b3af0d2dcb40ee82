// What a terminal shows: texts from files and arguments cannot control it. Pipes and files get the exact bytes.
#include <algorithm>

#include "tests/tool/terminal_support.h"
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using TerminalOutput = ToolTest;

// Texts that change how a terminal shows what is around them, or that it does not show, and what is shown instead.
struct HostileText {
    std::string text;
    std::string shown;
};

// Without the characters that a file cannot contain.
std::vector<HostileText> HostileTexts() {
    return {
        {"\x1B[2J", "\\u001B[2J"},
        {"\x01\x08\x7F", "\\u0001\\u0008\\u007F"},
        {"a\tb", "a\\tb"},
        {"\u0080\u009B\u009F", "\\u0080\\u009B\\u009F"},
        {"\u061C\u200E\u200F", "\\u061C\\u200E\\u200F"},
        {"\u202A\u202B\u202C\u202D\u202E", "\\u202A\\u202B\\u202C\\u202D\\u202E"},
        {"\u2066\u2067\u2068\u2069", "\\u2066\\u2067\\u2068\\u2069"},
        {"\u2028\u2029", "\\u2028\\u2029"},
        {"\u00AD\u180E\u200B\u2060\u206F\uFEFF\uFFF9", "\\u00AD\\u180E\\u200B\\u2060\\u206F\\uFEFF\\uFFF9"},
        {"\U000E0001\U000E007F", "\\uDB40\\uDC01\\uDB40\\uDC7F"},
        {"\xED\xA0\x80", "\\uD800"},
        {"\xED\xBF\xBF", "\\uDFFF"}};
}

// All of them in one.
HostileText AllHostile() {
    HostileText all{};
    for (const HostileText& hostile : HostileTexts()) {
        all.text += hostile.text + ".";
        all.shown += hostile.shown + ".";
    }
    return all;
}

// Texts of several scripts, with joiners and variation selectors.
const std::string kHarmless =
    "Größe ~ Ω Привет 寸法 \u0645\u06CC\u200C\u062E ❤\uFE0F 👩\u200D🔧 C:\\new \u00A0\uFFFD";

TEST_F(TerminalOutput, MessagesNeverContainControlCharacters) {
    WriteBytes("a.xml", Wide(Settings("")));
    const Result result = RunTool({"keys", "a.xml", AllHostile().text});
    EXPECT_EQ(result.code, 1);
    // A name with C0 is quoted, too.
    EXPECT_EQ(result.err, "mox-xml: a.xml: no section \"" + AllHostile().shown + "\"\n");
    Fails(1, {"keys", "a.xml", kHarmless}, "no section \"" + std::string("Größe ~ Ω"));
    Fails(4, {"sections", "none\nmox-xml: forged\r.xml"}, "mox-xml: none\\nmox-xml: forged\\r.xml: ");
    Fails(4, {"sections", "no\u202Ene.xml"}, "mox-xml: no\\u202Ene.xml: ");
    EXPECT_EQ(RunTool({"get", "a.xml", "S", "k", "\x1B]0;x\x07"}).err.find('\x1B'), std::string::npos);
    EXPECT_EQ(RunTool({"get", "a.xml", "S", "k", "--x\n\x1B"}).err.find('\x1B'), std::string::npos);
}

TEST_F(TerminalOutput, MessageIsOneLine) {
    const std::string err = RunTool({"check", "none\n\n.xml"}).err;
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
    EXPECT_EQ(err.back(), '\n');
}

TEST_F(TerminalOutput, PipesGetTheExactBytes) {
    const std::string name = AllHostile().text;
    WriteBytes("a.xml", Wide(Settings("<Table name=\"" + name + "\">" + Var(name, "v" + name) + "</Table>")));
    EXPECT_EQ(Succeeds({"sections", "a.xml"}), name + "\n");
    EXPECT_EQ(Succeeds({"keys", "a.xml", name}), name + "\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", name, name}), "v" + name + "\n");
    EXPECT_EQ(Succeeds({"entries", "a.xml", "--section", name}), name + "\tstring\tv" + name + "\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", name, name, "--json"}).find("\\u202E"), std::string::npos);
}

#if !defined(_WIN32)

TEST_F(TerminalOutput, TerminalGetsEscapedTexts) {
    for (const HostileText& hostile : HostileTexts()) {
        const std::string name = "n" + hostile.text + "n";
        const std::string shown = "n" + hostile.shown + "n";
        WriteBytes("a.xml", Wide(Settings("<Table name=\"" + name + "\">" + Var(name, "v" + hostile.text) +
                                          "</Table>")));
        EXPECT_EQ(OnTerminal({"sections", "a.xml"}), shown + "\n");
        EXPECT_EQ(OnTerminal({"keys", "a.xml", name}), shown + "\n");
        EXPECT_EQ(OnTerminal({"get", "a.xml", name, name}), "v" + hostile.shown + "\n");
        EXPECT_EQ(OnTerminal({"get", "a.xml", "S", "k", "--default", hostile.text}), hostile.shown + "\n");
        EXPECT_EQ(OnTerminal({"entries", "a.xml", "--section", name}),
                  shown + "\tstring\tv" + hostile.shown + "\n");
        EXPECT_EQ(OnTerminal({"entry", "get", "a.xml", name, "--section", name}), "v" + hostile.shown + "\n");
    }
}

TEST_F(TerminalOutput, LineFeedsOfATextForgeNoLineOnATerminal) {
    WriteBytes("a.xml", Wide(Settings("<Table name=\"S\nT\">" + Var("k\nl", "1\r\n2") + "</Table>")));
    EXPECT_EQ(OnTerminal({"sections", "a.xml"}), "S\\nT\n");
    EXPECT_EQ(OnTerminal({"keys", "a.xml", "S\nT"}), "k\\nl\n");
    EXPECT_EQ(OnTerminal({"get", "a.xml", "S\nT", "k\nl"}), "1\\r\\n2\n");
    EXPECT_EQ(OnTerminal({"entries", "a.xml", "--section", "S\nT"}), "k\\nl\tstring\t1\\r\\n2\n");
}

TEST_F(TerminalOutput, TerminalGetsOtherTextUnchanged) {
    WriteBytes("a.xml", Wide(Settings("<Table name=\"S\">" + Var("k", kHarmless) + "</Table>")));
    EXPECT_EQ(OnTerminal({"get", "a.xml", "S", "k"}), kHarmless + "\n");
    EXPECT_EQ(OnTerminal({"--help"}), Succeeds({"--help"}));
    EXPECT_EQ(OnTerminal({"set", "--help"}), Succeeds({"set", "--help"}));
}

TEST_F(TerminalOutput, TreesDifferencesAndDiagnosticsAreEscapedOnATerminal) {
    const std::string hostile = "\u009B2J\u202E";
    const std::string shown = "\\u009B2J\\u202E";
    const auto write = [&hostile](const std::string& name, const std::string& value) {
        WriteBytes(name, Wide(Settings("<Table name=\"S" + hostile + "\"><!--" + hostile + "-->" +
                                       Var("k" + hostile, value) + "<Var name=\"u" + hostile + "\" type=\"" +
                                       hostile + "\"/></Table><X a=\"" + hostile + "\"/>")));
    };
    write("a\x1B.xml", hostile);
    write("b.xml", "");
    for (const auto& call : std::vector<std::vector<std::string>>{
             {"show", "a\x1B.xml"}, {"diff", "a\x1B.xml", "b.xml"}, {"check", "a\x1B.xml"}}) {
        const std::string output = OnTerminal(call);
        EXPECT_NE(output.find(shown), std::string::npos) << call[0];
        for (const std::string control : {"\u009B", "\u202E", "\x1B"})
            EXPECT_EQ(output.find(control), std::string::npos) << call[0];
    }
    EXPECT_EQ(OnTerminal({"check", "a\x1B.xml"}).rfind("a\\u001B.xml:", 0), 0U);
    EXPECT_EQ(OnTerminal({"diff", "a\x1B.xml", "b.xml"}),
              "~ S" + shown + "/k" + shown + " value: \"" + shown + "\" -> \"\"\n");
}

// JSON has an escape of its own for any character: what a terminal shows is the same document.
TEST_F(TerminalOutput, JsonIsEscapedAsJsonOnATerminal) {
    WriteBytes("a.xml", Wide(Settings("<Table name=\"S\">" + Var("k", "\u202Ea\x7F\U000E0001\u009B\nb") +
                                      "</Table>")));
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k", "--json"}), "\"\u202Ea\x7F\U000E0001\u009B\\nb\"\n");
    EXPECT_EQ(OnTerminal({"get", "a.xml", "S", "k", "--json"}),
              "\"\\u202Ea\\u007F\\uDB40\\uDC01\\u009B\\nb\"\n");
    EXPECT_EQ(OnTerminal({"sections", "a.xml", "--json"}), "[\n  \"S\"\n]\n");
}

TEST_F(TerminalOutput, ZeroTerminatedItemsAreExactOnATerminalToo) {
    WriteBytes("a.xml", Wide(Settings("<Table name=\"S\x1B\n\"/>")));
    EXPECT_EQ(OnTerminal({"sections", "a.xml", "-z"}), std::string("S\x1B\n\0", 4));
}

TEST_F(TerminalOutput, MessagesAreEscapedOnATerminal) {
    EXPECT_EQ(OnTerminal({"keys", "\x1B[2J\n.xml", "S"}).rfind("mox-xml: \\u001B[2J\\n.xml: cannot ", 0), 0U);
}

#else

TEST_F(TerminalOutput, ConsoleGetsEscapedTexts) {
    WriteBytes("a.xml",
               Wide(Settings("<Table name=\"S\">" + Var("k", "1\x1B[2J\u202E\u009B\n2 \\") + "</Table>")));
    EXPECT_EQ(OnTerminal({"get", "a.xml", "S", "k"}), "1\\u001B[2J\\u202E\\u009B\\n2 \\\r\n");
    EXPECT_EQ(OnTerminal({"get", "a.xml", "S", "k", "--json"}), "\"1\\u001b[2J\\u202E\\u009B\\n2 \\\\\"\r\n");
}

TEST_F(TerminalOutput, ConsoleGetsCharactersBeyondItsCodePage) {
    WriteBytes("a.xml", Wide(Settings("<Table name=\"S\">" + Var("k", "Größe Ω Ж") + "</Table>")));
    EXPECT_EQ(OnTerminal({"get", "a.xml", "S", "k"}), "Größe Ω Ж\r\n");
    EXPECT_EQ(OnTerminal({"keys", "a.xml", "Ω"}), "mox-xml: a.xml: no section Ω\r\n");
}

#endif

TEST_F(TerminalOutput, NeighboursOfEscapedCharactersAreShown) {
    WriteBytes("a.xml", Wide(Settings("")));
    for (const std::string text : {" ~", "\u00A0", "\u00AC\u00AE", "\u061B\u061D", "\u180D\u180F",
                                   "\u200A\u200C", "\u200D\u2010", "\u2027\u202F", "\u205F\u2070",
                                   "\uD7FF\uE000", "\uFEFE\uFF00", "\uFFF8\uFFFC", "\U000DFFFF\U000E0080"})
        Fails(1, {"get", "a.xml", "S", "x" + text + "x"}, "x" + text + "x");
}

}  // namespace
}  // namespace tool
