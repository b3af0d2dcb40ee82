// What all verbs share: usage errors, files that must stay unchanged, backups, help.
#include <filesystem>

#include "tests/tool/help_support.h"
#include "tests/tool/tool_support.h"
#include "tests/tool/writing_calls.h"
#if !defined(_WIN32)
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace tool {
namespace {

using AllVerbs = ToolTest;

const std::string kCallsText = TextForCalls();

// All verbs that change the file, and convert.
Calls AllCalls(const std::string& file) {
    Calls calls = WritingCalls(file);
    calls.push_back({"convert", file, "--wide"});
    return calls;
}

std::vector<std::string> FilesInFolder() {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator("."))
        names.push_back(entry.path().filename().string());
    return names;
}

TEST_F(AllVerbs, DoNotChangeAFileThatDoesNotParse) {
    const std::string bytes = Narrow(kCallsText).substr(0, 200);
    WriteBytes("a.xml", bytes);
    for (const auto& call : AllCalls("a.xml"))
        Fails(3, call, "mox-xml: a.xml:");
    EXPECT_EQ(ReadBytes("a.xml"), bytes);
    EXPECT_EQ(FilesInFolder(), std::vector<std::string>{"a.xml"});
}

TEST_F(AllVerbs, ExitWithFourIfAFileCannotBeRead) {
    fs::create_directory("folder");
    for (const auto& call : AllCalls("none.xml")) {
        if (call.back() != "--create") Fails(4, call, "none.xml: cannot open the file");
    }
    for (const std::string name : {"folder", "no folder/a.xml", ""}) {
        for (const std::string verb : {"sections", "show", "entries"})
            Fails(4, {verb, name}, ": cannot ");
        Fails(4, {"set", name, "S", "k", "v"}, ": cannot ");
    }
    EXPECT_EQ(FilesInFolder(), std::vector<std::string>{"folder"});
}

TEST_F(AllVerbs, DoNotWriteNonAsciiTextToANarrowFile) {
    WriteBytes("a.xml", Narrow(kCallsText));
    Fails(4, {"set", "a.xml", "S", "k", "ü"},
          "mox-xml: a.xml: S/k: the value contains U+00FC, and a narrow file keeps 7-bit text only (see "
          "\"mox-xml "
          "convert --wide\")\n");
    Fails(4, {"set", "a.xml", "S", "ü", "1"}, "convert --wide");
    Fails(4, {"set", "a.xml", "ü", "k", "1"}, "convert --wide");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kCallsText));
}

TEST_F(AllVerbs, KeepTheOldFileWithBackup) {
    for (auto call : AllCalls("a.xml")) {
        WriteBytes("a.xml", Narrow(kCallsText));
        WriteBytes("a.xml.bak", "something longer than the file" + std::string(2000, '.'));
        call.emplace_back("--backup");
        EXPECT_EQ(RunTool(call).code, 0) << call[0];
        EXPECT_EQ(ReadBytes("a.xml.bak"), Narrow(kCallsText)) << call[0];
        EXPECT_NE(ReadBytes("a.xml"), Narrow(kCallsText)) << call[0];
    }
}

TEST_F(AllVerbs, ChangeNothingIfTheBackupFails) {
    fs::create_directory("a.xml.bak");
    WriteBytes("a.xml", Narrow(kCallsText));
    for (auto call : AllCalls("a.xml")) {
        call.emplace_back("--backup");
        Fails(4, call,
              "a.xml.bak: the backup would replace what is not a regular file; a.xml was not changed");
    }
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kCallsText));
}

TEST_F(AllVerbs, KeepTheForm) {
    WriteBytes("w.xml", Wide(kCallsText));
    WriteBytes("n.xml", Narrow(kCallsText));
    EXPECT_EQ(RunTool({"set", "w.xml", "S", "k", "ü"}).code, 0);
    EXPECT_EQ(RunTool({"set", "n.xml", "S", "k", "u"}).code, 0);
    EXPECT_EQ(ReadBytes("w.xml").substr(0, 4), std::string("<\0?\0", 4));
    EXPECT_EQ(ReadBytes("n.xml").substr(0, 4), "<?xm");
    Fails(3, {"set", "w.xml", "S", "k", "1", "--narrow"}, "w.xml:1:2: found the end of the file");
    EXPECT_EQ(RunTool({"get", "n.xml", "S", "k", "--wide"}).code, 3);
    EXPECT_EQ(Succeeds({"get", "w.xml", "S", "k", "--wide"}), "ü\n");
    Fails(2, {"get", "w.xml", "S", "k", "--wide", "--narrow"}, "excludes");
}

TEST_F(AllVerbs, ExitWithTwoOnUsageErrors) {
    WriteBytes("a.xml", Narrow(kCallsText));
    Fails(2, {}, "mox-xml: a verb is required (see \"mox-xml --help\")\n");
    Fails(2, {"frobnicate", "a.xml"}, "mox-xml: unknown verb frobnicate (see \"mox-xml --help\")\n");
    Fails(2, {"get", "a.xml", "S"}, "KEY is required");
    Fails(2, {"--nope"}, "unknown option --nope");
    Fails(2, {"--nope", "get", "a.xml", "S", "k"}, "unknown option --nope");
    Fails(2, {"get", "a.xml", "S", "k", "more"}, "unexpected argument more");
    Fails(2, {"get", "a.xml", "S", "k", "--", "more"}, "unexpected argument more");
    Fails(2, {"keys", "a.xml", "S", "--nope"}, "unknown option --nope");
    Fails(2, {"keys", "a.xml", "S", "/nope"}, "unexpected argument \"/nope\"");
    Fails(2, {"get", "a.xml", "S", "k", "--default"}, "--default requires a value");
    Fails(2, {"get", "a.xml", "S", "k", "--default", "1", "--default", "2"},
          "--default can be given only once");
    Fails(2, {"check", "a.xml", "b.xml", "--nope"}, "unknown option --nope");
#if !defined(_WIN32)
    Fails(2, {"get", "a.xml", "S", "\xFF"}, "an argument is not valid UTF-8");
#endif
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kCallsText));
}

TEST_F(AllVerbs, ProgramHasHelpAndAVersion) {
    EXPECT_EQ(Succeeds({"--help"}).rfind("Examples:\n  mox-xml ", 0), 0U);
    EXPECT_EQ(Succeeds({"entry", "--help"}).rfind("Examples:\n  mox-xml entry ", 0), 0U);
    EXPECT_EQ(Succeeds({"--version"}).rfind("mox-xml ", 0), 0U);
}

TEST_F(AllVerbs, HelpHasExamplesAndMatchesManualAndCompletion) {
    const std::string manual = ReadBytes(SourceFolder() + "/../tools/mox-xml.1");
    const std::string completion = ReadBytes(SourceFolder() + "/../tools/completion/mox-xml");
    std::size_t count = 0;
    for (const std::string& verb : Verbs()) {
        EXPECT_NE(manual.find(".B " + verb + " "), std::string::npos) << verb;
        const std::string help = HelpOf(verb);
        EXPECT_EQ(help.rfind("Examples:\n  mox-xml " + verb + " ", 0), 0U) << help;
        EXPECT_NE(help.find("Usage: mox-xml " + verb + " "), std::string::npos) << help;
        for (const std::string& option : OptionsIn(help)) {
            std::string escaped = option;
            for (std::size_t at = 0; (at = escaped.find('-', at)) != std::string::npos; at += 2)
                escaped.replace(at, 1, "\\-");
            EXPECT_NE(manual.find(escaped), std::string::npos) << verb << " " << option;
            EXPECT_NE(completion.find(option), std::string::npos) << verb << " " << option;
            ++count;
        }
    }
    EXPECT_GT(count, 100U);
}

#if defined(_WIN32)

TEST_F(AllVerbs, DoNotChangeAReadOnlyFile) {
    WriteBytes("a.xml", Narrow(kCallsText));
    fs::permissions("a.xml", fs::perms::owner_read);
    for (const auto& call : AllCalls("a.xml"))
        Fails(4, call, "a.xml: the file is read-only; nothing was changed");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kCallsText));
    EXPECT_EQ(FilesInFolder(), std::vector<std::string>{"a.xml"});
    fs::permissions("a.xml", fs::perms::owner_all);
}

#else

TEST_F(AllVerbs, LeaveTheFileUnchangedOnAFullDisk) {
    const std::string bytes = Narrow(Settings("<Table name=\"S\">" + Var("k", std::string(3000, '1')) +
                                              Var("l", std::string(3000, '1')) + "</Table>\n"));
    WriteBytes("a.xml", bytes);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{2048, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);  // so that the write fails instead
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    std::vector<Result> results;
    for (const auto& call : AllCalls("a.xml")) {
        if ((call[0] != "delete" || call.size() > 3) && call[1] != "rename" && call[0] != "section")
            results.push_back(RunTool(call));
    }
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    for (const Result& result : results) {
        EXPECT_EQ(result.code, 4) << result;
        EXPECT_EQ(result.err.rfind("mox-xml: a.xml: cannot write ", 0), 0U) << result.err;
        EXPECT_NE(result.err.find("; nothing was changed\n"), std::string::npos) << result.err;
    }
    EXPECT_EQ(results.size(), 8U);
    EXPECT_EQ(ReadBytes("a.xml"), bytes);
    EXPECT_EQ(FilesInFolder(), std::vector<std::string>{"a.xml"});
}

TEST_F(AllVerbs, KeepPermissionsOfTheFileAndItsBackup) {
    WriteBytes("a.xml", Narrow(kCallsText));
    ASSERT_EQ(chmod("a.xml", 0640), 0);
    EXPECT_EQ(RunTool({"set", "a.xml", "S", "k", "2", "--backup"}).code, 0);
    for (const char* const name : {"a.xml", "a.xml.bak"}) {
        struct stat status {};
        ASSERT_EQ(stat(name, &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, 0640U) << name;
    }
}

TEST_F(AllVerbs, ExitWithFourIfStdoutCannotBeWritten) {
    WriteBytes("a.xml", Narrow(kCallsText));
    const std::string command = std::string("'") + std::getenv("MOX_TOOL") + "' show a.xml >/dev/full";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 4);
}

TEST_F(AllVerbs, WorkInShellPipes) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"A b\">" + Var("k", "1") +
                                        "</Table><Table name=\"C\">" + Var("l m", "2") + "</Table>")));
    const std::string script =
        "tool=$MOX_TOOL; \"$tool\" sections a.xml | while IFS= read -r s; do \"$tool\" keys "
        "a.xml \"$s\" | while IFS= read -r k; do \"$tool\" get a.xml \"$s\" \"$k\"; done; done "
        ">values; \"$tool\" show a.xml | head -n 1 >first";
    EXPECT_EQ(std::system(script.c_str()), 0);
    EXPECT_EQ(ReadBytes("values"), "1\n2\n");
    EXPECT_EQ(ReadBytes("first"), "settings document, narrow\n");
}

#endif

}  // namespace
}  // namespace tool
