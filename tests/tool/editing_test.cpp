// How verbs change files: whole or not at all, what was asked and nothing else.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/tool/tool_support.h"
#include "tests/tool/writing_calls.h"
#if !defined(_WIN32)
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace tool {
namespace {

using Editing = ToolTest;

const std::string kOneKeyText = Settings("\t<Table name=\"S\">\n" + Var("k", "1") + "\t</Table>\n");

std::string HighByteFirst(const std::string& text) {
    std::string bytes = Wide(text);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

// Runs the tool in a shell with the file as stdin. The words must need no quotes.
Result RunWithStdin(const std::string& words, const std::string& input) {
    std::string command =
        "\"" + std::string(std::getenv("MOX_TOOL")) + "\" " + words + " <" + input + " >out.txt 2>err.txt";
    Result result;
#if defined(_WIN32)
    result.code = std::system(("\"" + command + "\"").c_str());
#else
    result.code = WEXITSTATUS(std::system(command.c_str()));
#endif
    result.out = ReadBytes("out.txt");
    result.err = ReadBytes("err.txt");
    return result;
}

// ---- files that a save would not keep

TEST_F(Editing, DoesNotChangeAFileOfWhichTheLibraryReadsOnlyTheBeginning) {
    const std::string bytes = Narrow(kOneKeyText) + "more text";
    WriteBytes("a.xml", bytes);
    for (const auto& call : WritingCalls("a.xml")) {
        Fails(4, call, "mox-xml: a.xml:");
        Fails(4, call, "; nothing was changed\n");
        EXPECT_EQ(ReadBytes("a.xml"), bytes) << call[0];
    }
}

TEST_F(Editing, DoesNotChangeAFileInAnotherEncoding) {
    const std::string highFirst = HighByteFirst(kOneKeyText);
    const std::string zeros(434, '\0');
    const std::string marked = "\xEF\xBB\xBF" + kOneKeyText;
    WriteBytes("be.xml", highFirst);
    WriteBytes("zeros.xml", zeros);
    WriteBytes("bom.xml", marked);
    for (const auto& call : WritingCalls("be.xml")) {
        const Result result = RunTool(call);
        EXPECT_GE(result.code, 2) << result;
        EXPECT_NE(result.err.find("UTF-16 with the high byte first"), std::string::npos) << result;
    }
    for (const auto& call : WritingCalls("zeros.xml")) {
        const Result result = RunTool(call);
        EXPECT_GE(result.code, 2) << result;
        EXPECT_NE(result.err.find("zero"), std::string::npos) << result;
    }
    for (const auto& call : WritingCalls("bom.xml"))
        Fails(3, call, "UTF-8 with a byte-order mark");
    EXPECT_EQ(ReadBytes("be.xml"), highFirst);
    EXPECT_EQ(ReadBytes("zeros.xml"), zeros);
    EXPECT_EQ(ReadBytes("bom.xml"), marked);
}

TEST_F(Editing, RefusesToSaveDeepDocumentsBeforeThatFillsTheMemory) {
    constexpr int kLevels = 100'000;
    std::string deep;
    for (int i = 0; i < kLevels; ++i)
        deep += "<a>";
    for (int i = 0; i < kLevels; ++i)
        deep += "</a>";
    const std::string bytes = Narrow(Settings("<Table name=\"S\">" + Var("k", "1") + "</Table>\n" + deep));
    WriteBytes("a.xml", bytes);
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k"}), "1\n");
    for (const auto& call : LibraryCalls("a.xml"))
        Fails(4, call, "the elements are nested so deeply");
    EXPECT_EQ(ReadBytes("a.xml"), bytes);
    // These write no indentation.
    for (const auto& call : TextCalls("a.xml")) {
        WriteBytes("a.xml", bytes);
        EXPECT_EQ(Succeeds(call), "");
        EXPECT_NE(ReadBytes("a.xml"), bytes);
    }
}

// ---- outputs and backups

TEST_F(Editing, ExportDoesNotReplaceItsInput) {
    WriteBytes("a.xml", Narrow(kOneKeyText));
    fs::create_directory("folder");
    for (const std::string output : {"a.xml", "./a.xml", "folder/../a.xml"}) {
        Fails(2, {"export", "a.xml", output, "--ui"}, output + ": the output would replace FILE itself");
        Fails(2, {"export", "a.xml", output, "--values"}, "the output would replace FILE itself");
    }
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kOneKeyText));
}

TEST_F(Editing, ExportKeepsAnOldOutputWithBackup) {
    WriteBytes("a.xml", Narrow(kOneKeyText));
    WriteBytes("out.xml", "old");
    Succeeds({"export", "a.xml", "out.xml", "--values", "--backup"});
    EXPECT_EQ(ReadBytes("out.xml.bak"), "old");
    EXPECT_NE(ReadBytes("out.xml"), "old");
    EXPECT_FALSE(Exists("a.xml.bak"));
}

TEST_F(Editing, AFailedWriteKeepsTheOldBackup) {
    WriteBytes("a.xml", Narrow(kOneKeyText));
    WriteBytes("a.xml.bak", "the good backup");
    Fails(4, {"set", "a.xml", "S", "k", " leading blank", "--backup"}, "begins with white space");
    Fails(1, {"delete", "a.xml", "S", "none", "--backup"}, "a.xml: no key S/none");
    EXPECT_EQ(ReadBytes("a.xml.bak"), "the good backup");
}

// ---- values

TEST_F(Editing, SetRefusesValuesThatAFileDoesNotKeep) {
    WriteBytes("a.xml", Wide(kOneKeyText));
    Fails(
        4, {"set", "a.xml", "S", "k", "  x"},
        "mox-xml: a.xml: S/k: the value begins with white space, which is dropped when the file is opened\n");
    Fails(4, {"set", "a.xml", "S", "k", "x\ny"}, "a.xml: S/k: the value contains a line feed");
    Fails(4, {"set", "a.xml", "S", "k", "x\x01y"},
          "a.xml: S/k: the value contains the control character U+0001");
    Fails(4, {"set", "a.xml", "S", "new", "\tx"}, "a.xml: S/new: the value begins with white space");
    Fails(4, {"set", "a.xml", "S", "\x02", "x"}, "the key contains the control character U+0002");
    Fails(4, {"entry", "set", "a.xml", "k", " x", "--section", "S"}, "begins with white space");
    Fails(4, {"entry", "add", "a.xml", "l", " x", "--section", "S"}, "begins with white space");
    Fails(4, {"entry", "set", "a.xml", "k", "--comment", "a\nb", "--section", "S"}, "contains a line feed");
    EXPECT_EQ(ReadBytes("a.xml"), Wide(kOneKeyText));
}

TEST_F(Editing, SetRefusesKeysThatNobodyCanRead) {
    const std::string text = Settings(
        "\t<Table name=\"S\">\n\t\t<Var name=\"k\" "
        "type=\"odd\">\n\t\t\t<Value>1</Value>\n\t\t</Var>\n\t</Table>\n");
    WriteBytes("a.xml", Narrow(text));
    Fails(4, {"set", "a.xml", "S", "k", "2"}, "a.xml: S/k: the key has no known type");
    Fails(4, {"entry", "set", "a.xml", "k", "2", "--section", "S"}, "a.xml: S/k: ");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(text));
    Succeeds({"entry", "set", "a.xml", "k", "2", "--type", "long", "--section", "S"});
    EXPECT_EQ(Succeeds({"entries", "a.xml", "--section", "S"}), "k\tlong\t2\n");
}

TEST_F(Editing, SetRefusesAnEmptyValueThatWouldBeReadAsAnotherOne) {
    const std::string text = Settings(
        "<Table name=\"S\"><Var name=\"k\" type=\"long\"><Value>1</Value><UI><Value>7</Value></UI>"
        "</Var></Table>");
    WriteBytes("a.xml", Narrow(text));
    Fails(4, {"set", "a.xml", "S", "k", ""}, "would be read as the value that the presentation data have");
    Fails(4, {"entry", "set", "a.xml", "k", "", "--section", "S"}, "nothing was changed");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(text));
}

TEST_F(Editing, EntrySetClearsPresentationData) {
    const std::string entry =
        "\t<Var name=\"a\" type=\"long\" array=\"\">\n\t\t<Value>1</Value>\n\t\t<UI control=\"num\" "
        "prov_index=\"7\" prov_owner=\"app\" name=\"A\">\n\t\t\t<Comment>c</Comment>\n\t\t</UI>\n\t</Var>\n";
    WriteBytes("t.xml", Wide(TableDocument(entry)));
    Succeeds({"entry", "set", "t.xml", "a", "--comment", ""});
    EXPECT_EQ(Succeeds({"show", "t.xml"}).find("comment"), std::string::npos);
    EXPECT_NE(Succeeds({"show", "t.xml"}).find("shown as num \"A\"  [provider app 7]"), std::string::npos);
    Succeeds(
        {"entry", "set", "t.xml", "a", "2", "--shown-name", "", "--provider-index", "0", "--provider", ""});
    EXPECT_EQ(Succeeds({"show", "t.xml"}),
              "table document, wide\ntable Tools\n  a = \"2\"  [long]\n    shown as num\n");
}

TEST_F(Editing, EntrySetRefusesToClearAnId) {
    const std::string table =
        Wide(TableDocument("\t<Var name=\"a\" id=\"3\" type=\"long\">\n\t\t<Value>1</Value>\n\t</Var>\n"));
    WriteBytes("t.xml", table);
    Fails(4, {"entry", "set", "t.xml", "a", "--id", "0"}, "; nothing was changed");
    EXPECT_EQ(ReadBytes("t.xml"), table);
}

TEST_F(Editing, SetGivesANewKeyAType) {
    WriteBytes("a.xml", Narrow(kOneKeyText));
    Succeeds({"set", "a.xml", "S", "n", "5", "--type", "long"});
    Succeeds({"set", "a.xml", "New", "n", "5", "--int", "--type", "short"});
    Succeeds({"set", "a.xml", "S", "n", "6", "--type", "long"});
    EXPECT_EQ(Succeeds({"entries", "a.xml", "--section", "S"}), "k\tstring\t1\nn\tlong\t6\n");
    EXPECT_EQ(Succeeds({"entries", "a.xml", "--section", "New"}), "n\tshort\t5\n");
    const std::string before = ReadBytes("a.xml");
    Fails(2, {"set", "a.xml", "S", "k", "5", "--type", "long"}, "a.xml: the key S/k has another type");
    Fails(2, {"set", "a.xml", "S", "m", "5", "--type", "float"}, "unknown type float");
    EXPECT_EQ(ReadBytes("a.xml"), before);
}

TEST_F(Editing, ValuesCanComeFromStdinOrAFile) {
    WriteBytes("a.xml", Wide(kOneKeyText));
    WriteBytes("value", "Länge\n");
    WriteBytes("value with a line break", "x\r\n");
    EXPECT_EQ(RunWithStdin("set a.xml S k --stdin", "value").code, 0);
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k"}), "Länge\n");
    Succeeds({"set", "a.xml", "S", "l", "--value-from", "value with a line break"});
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "l"}), "x\n");
    Succeeds({"entry", "set", "a.xml", "k", "--value-from", "value with a line break", "--section", "S"});
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k"}), "x\n");
    EXPECT_EQ(RunWithStdin("entry add a.xml m --section S --stdin", "value").code, 0);
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "m"}), "Länge\n");
    const std::string before = ReadBytes("a.xml");
    WriteBytes("latin1", "\xE4");
    Fails(4, {"set", "a.xml", "S", "k", "--value-from", "latin1"}, "S/k: the value is not UTF-8");
    Fails(4, {"set", "a.xml", "S", "k", "--value-from", "none"}, "none: cannot open the file");
    Fails(2, {"set", "a.xml", "S", "k", "1", "--stdin"},
          "VALUE, --stdin and --value-from exclude each other");
    Fails(2, {"set", "a.xml", "S", "k"}, "VALUE is required");
    EXPECT_EQ(ReadBytes("a.xml"), before);
}

// ---- what a save changes besides

TEST_F(Editing, ASaveThatRemovesEudSaysSoOnce) {
    WriteBytes("a.xml", Narrow(Settings("\t<Table name=\"S\" eud=\"true\">\n"
                                        "\t\t<Var name=\"k\" type=\"long\" eud=\"true\"/>\n\t</Table>\n")));
    const Result first = RunTool({"set", "a.xml", "S", "l", "2"});
    EXPECT_EQ(first.code, 0);
    EXPECT_EQ(first.out, "");
    EXPECT_EQ(first.err,
              "mox-xml: a.xml: note: saving removed the attribute \"eud\" from 2 sections and entries\n");
    EXPECT_EQ(Succeeds({"set", "a.xml", "S", "l", "3"}), "");
}

TEST_F(Editing, ASaveThatAddsWhiteSpaceToOtherValuesSaysSoOnce) {
    WriteBytes("a.xml",
               Narrow(Settings("<Table name=\"S\">" + Var("lines", "a\nb") + Var("k", "1") + "</Table>")));
    const Result first = RunTool({"set", "a.xml", "S", "k", "2"});
    EXPECT_EQ(first.code, 0);
    EXPECT_EQ(first.err,
              "mox-xml: a.xml: note: saving added white space to 1 value or comment with a line break\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k"}), "2\n");
}

// ---- whole documents

TEST_F(Editing, NewCreatesSettingsAndTableDocuments) {
    Succeeds({"new", "s.xml"});
    EXPECT_EQ(Succeeds({"show", "s.xml"}), "settings document, wide\n");
    Succeeds({"new", "n.xml", "--narrow"});
    EXPECT_EQ(Succeeds({"show", "n.xml"}), "settings document, narrow\n");
    Succeeds({"new", "t.xml", "--table", "Tööls", "--first-id", "100", "--type-code", "16", "--editable"});
    EXPECT_EQ(Succeeds({"show", "t.xml"}),
              "table document, wide\ntable Tööls  [first id 100, type 0010, editable]\n");
    Fails(2, {"new", "u.xml", "--first-id", "1"}, "require --table");
    Fails(2, {"new", "u.xml", "--table", "T", "--narrow"}, "a table document must be wide");
    Fails(4, {"new", "u.xml", "--table", "x\x01"}, "u.xml: the name contains the control character U+0001");
    EXPECT_FALSE(Exists("u.xml"));
}

TEST_F(Editing, NewReplacesAFileOnlyIfAsked) {
    WriteBytes("a.xml", Narrow(kOneKeyText));
    Fails(4, {"new", "a.xml"}, "a.xml: the file exists; --overwrite replaces it");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kOneKeyText));
    Succeeds({"new", "a.xml", "--overwrite", "--backup"});
    EXPECT_EQ(Succeeds({"show", "a.xml"}), "settings document, wide\n");
    EXPECT_EQ(ReadBytes("a.xml.bak"), Narrow(kOneKeyText));
}

TEST_F(Editing, SectionsAreAddedChangedAndRemoved) {
    WriteBytes("a.xml", Narrow(kOneKeyText));
    Succeeds({"section", "add", "a.xml", "T", "--first-id", "5", "--type-code", "255", "--editable"});
    EXPECT_EQ(Succeeds({"show", "a.xml"}),
              "settings document, narrow\nsection S\n  k = \"1\"  [string]\n"
              "section T  [first id 5, type 00FF, editable]\n");
    Succeeds({"section", "set", "a.xml", "T", "--first-id", "6"});
    Succeeds({"section", "set", "a.xml", "S", "--type-code", "3"});
    EXPECT_EQ(Succeeds({"show", "a.xml"}),
              "settings document, narrow\nsection S  [type 0003]\n  k = \"1\"  [string]\n"
              "section T  [first id 6, type 00FF, editable]\n");
    Succeeds({"section", "remove", "a.xml", "S"});
    EXPECT_EQ(Succeeds({"sections", "a.xml"}), "T\n");
    const std::string before = ReadBytes("a.xml");
    Fails(2, {"section", "add", "a.xml", "T"}, "a.xml: there is a section T already");
    Fails(1, {"section", "set", "a.xml", "S", "--first-id", "1"}, "a.xml: no section S");
    Fails(2, {"section", "set", "a.xml", "T"},
          "section set requires --first-id, --type-code, --editable or --no-editable");
    Fails(1, {"section", "remove", "a.xml", "S"}, "a.xml: no section S");
    Fails(4, {"section", "add", "a.xml", "Ü"}, "a narrow file keeps 7-bit text only");
    EXPECT_EQ(ReadBytes("a.xml"), before);
}

TEST_F(Editing, EntryRenameKeepsTheEntryInItsPlace) {
    WriteBytes("t.xml", Wide(TableDocument(Var("a", "1") + Var("b", "2") + Var("c", "3"))));
    Succeeds({"entry", "rename", "t.xml", "b", "B 2"});
    EXPECT_EQ(Succeeds({"entries", "t.xml"}), "a\tstring\t1\nB 2\tstring\t2\nc\tstring\t3\n");
    const std::string before = ReadBytes("t.xml");
    Fails(1, {"entry", "rename", "t.xml", "b", "d"}, "t.xml: no entry b");
    Fails(2, {"entry", "rename", "t.xml", "a", "c"}, "t.xml: a: there is an entry of the new name");
    EXPECT_EQ(ReadBytes("t.xml"), before);
}

// ---- stdin and pipes

TEST_F(Editing, ADashIsStdinForVerbsThatReadTheFile) {
    WriteBytes("a.xml", Wide(kOneKeyText));
    WriteBytes("t.xml", Wide(TableDocument(Var("a", "1"))));
    EXPECT_EQ(RunWithStdin("get - S k", "a.xml").out, "1\n");
    EXPECT_EQ(RunWithStdin("sections -", "a.xml").out, "S\n");
    EXPECT_EQ(RunWithStdin("keys - S", "a.xml").out, "k\n");
    EXPECT_EQ(RunWithStdin("entries -", "t.xml").out, "a\tstring\t1\n");
    EXPECT_EQ(RunWithStdin("entry get - a", "t.xml").out, "1\n");
    EXPECT_EQ(RunWithStdin("show -", "t.xml").code, 0);
    EXPECT_EQ(RunWithStdin("check -", "a.xml").code, 0);
    EXPECT_EQ(RunWithStdin("export - out.xml --values", "a.xml").code, 0);
    EXPECT_EQ(Succeeds({"get", "out.xml", "S", "k"}), "1\n");
    const Result set = RunWithStdin("set - S k 2", "a.xml");
    EXPECT_EQ(set.code, 2);
    EXPECT_NE(set.err.find("\"-\" is stdin, which cannot be changed"), std::string::npos) << set;
    EXPECT_FALSE(Exists("-"));
}

#if !defined(_WIN32)

// Runs a script of bash in which "$t" is the tool. Returns its stdout.
std::string ByBash(const std::string& script) {
    WriteBytes("script", "t=$MOX_TOOL\n" + script);
    EXPECT_EQ(std::system("bash ./script >out.txt"), 0) << script;
    return ReadBytes("out.txt");
}

TEST_F(Editing, PipesAreReadLikeFiles) {
    WriteBytes("a.xml", Wide(kOneKeyText));
    EXPECT_EQ(ByBash("\"$t\" get <(cat a.xml) S k"), "1\n");
    EXPECT_EQ(ByBash("cat a.xml | \"$t\" export /dev/stdin out.xml --values; \"$t\" get out.xml S k"), "1\n");
    EXPECT_EQ(ByBash("\"$t\" diff <(cat a.xml) a.xml"), "");
    EXPECT_EQ(ByBash("\"$t\" entries --section S <(cat a.xml)"), "k\tstring\t1\n");
    EXPECT_EQ(ByBash("\"$t\" set <(cat a.xml) S k 2 2>err.txt; echo $?"), "4\n");
}

TEST_F(Editing, AFileWithoutAnEndIsRefused) {
    Fails(4, {"check", "/dev/zero"}, "/dev/zero: cannot read the file");
    Fails(4, {"set", "/dev/zero", "S", "k", "1"}, "/dev/zero: cannot read the file");
}

TEST_F(Editing, ABackupReplacesALinkInsteadOfWhatItRefersTo) {
    WriteBytes("a.xml", Narrow(kOneKeyText));
    WriteBytes("other", "belongs to somebody else");
    ASSERT_EQ(chmod("a.xml", 0644), 0);
    ASSERT_EQ(chmod("other", 0600), 0);
    fs::create_symlink("other", "a.xml.bak");
    Succeeds({"set", "a.xml", "S", "k", "2", "--backup"});
    EXPECT_EQ(ReadBytes("other"), "belongs to somebody else");
    EXPECT_EQ(fs::status("other").permissions(), fs::perms(0600));
    EXPECT_FALSE(fs::is_symlink("a.xml.bak"));
    EXPECT_EQ(ReadBytes("a.xml.bak"), Narrow(kOneKeyText));
}

TEST_F(Editing, AFullDiskLeavesTheFileAndItsOldBackup) {
    const std::string bytes =
        Narrow(Settings("<Table name=\"S\">" + Var("k", std::string(6000, '1')) + "</Table>\n"));
    WriteBytes("a.xml", bytes);
    WriteBytes("a.xml.bak", "the good backup");
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{2048, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);  // so that the write fails instead
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    std::vector<Result> results;
    for (auto call : WritingCalls("a.xml")) {
        call.emplace_back("--backup");
        results.push_back(RunTool(call));
    }
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    for (const Result& result : results) {
        EXPECT_EQ(result.code, 4) << result;
        // Either the document or its backup could not be written.
        const bool saysWhatIsThere = result.err.find("; nothing was changed\n") != std::string::npos ||
                                     result.err.find("; a.xml was not changed\n") != std::string::npos;
        EXPECT_TRUE(saysWhatIsThere) << result;
    }
    EXPECT_EQ(ReadBytes("a.xml"), bytes);
    EXPECT_EQ(ReadBytes("a.xml.bak"), "the good backup");
}

// Runs "set a.xml S k --value-from pipe", and writes `other` to a.xml after the tool has read it.
Result SetWhileTheFileChanges(const std::string& other, std::vector<std::string> more) {
    WriteBytes("a.xml", Narrow(kOneKeyText));
    fs::remove("pipe");
    EXPECT_EQ(mkfifo("pipe", 0600), 0);
    std::vector<std::string> call{"set", "a.xml", "S", "k", "--value-from", "pipe"};
    call.insert(call.end(), more.begin(), more.end());
    Result result;
    std::thread tool([&] { result = RunTool(call); });
    {
        std::ofstream value("pipe");  // waits until the tool opens the pipe, after it has read the file
        WriteBytes("a.xml", other);
        value << "2\n";
    }
    tool.join();
    return result;
}

TEST_F(Editing, AFileThatChangedMeanwhileIsReplacedOnlyIfAsked) {
    const std::string other = Narrow(Settings("\t<Table name=\"Other\"/>\n"));
    const Result refused = SetWhileTheFileChanges(other, {});
    EXPECT_EQ(refused.code, 4);
    EXPECT_EQ(refused.err, "mox-xml: a.xml: the file has changed since it was read (see --overwrite)\n");
    EXPECT_EQ(ReadBytes("a.xml"), other);
    EXPECT_EQ(SetWhileTheFileChanges(Narrow(kOneKeyText), {}).code, 0);
    const Result asked = SetWhileTheFileChanges(other, {"--overwrite"});
    EXPECT_EQ(asked.code, 0) << asked;
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k"}), "2\n");
}

#endif

}  // namespace
}  // namespace tool
