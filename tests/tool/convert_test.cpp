// convert: import of other encodings, and which files it replaces. file_verbs_test.cpp has the two forms.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using Convert = ToolTest;

const std::string kConverted =
    Settings("\t<Table name=\"Größe\">\n" + Var("k", "ä\xF0\x9F\x95\x92") + "\t</Table>\n");

// The bytes of a wide file without the zero at its end.
std::string Utf16Le(const std::string& utf8) {
    const std::string bytes = Wide(utf8);
    return bytes.substr(0, bytes.size() - 2);
}

std::string Utf16Be(const std::string& utf8) {
    std::string bytes = Utf16Le(utf8);
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

TEST_F(Convert, ImportsUtf8AndUtf16WithAndWithoutAByteOrderMark) {
    const struct {
        const char* from;
        std::string bytes;
    } cases[] = {{"utf-8", kConverted},
                 {"utf-8", "\xEF\xBB\xBF" + kConverted},
                 {"utf-8", kConverted + std::string(3, '\0')},
                 {"utf-16", Utf16Le(kConverted)},
                 {"utf-16", "\xFF\xFE" + Utf16Le(kConverted)},
                 {"utf-16", Utf16Be(kConverted)},
                 {"utf-16", "\xFE\xFF" + Utf16Be(kConverted)},
                 {"utf-16", Utf16Be(kConverted) + std::string(2, '\0')}};
    for (const auto& test : cases) {
        WriteBytes("a.xml", test.bytes);
        Succeeds({"convert", "--from", test.from, "a.xml", "--backup"});
        EXPECT_EQ(ReadBytes("a.xml"), Wide(kConverted)) << test.from;
        EXPECT_EQ(ReadBytes("a.xml.bak"), test.bytes) << test.from;
        EXPECT_EQ(Succeeds({"get", "a.xml", "Größe", "k"}), "ä\xF0\x9F\x95\x92\n");
    }
}

TEST_F(Convert, ImportsLatin1) {
    WriteBytes("a.xml", Settings("<Table name=\"Gr\xF6\xDF"
                                 "e\"/>\n"));
    Succeeds({"convert", "--from=latin1", "a.xml", "b.xml", "--wide"});
    EXPECT_EQ(ReadBytes("b.xml"), Wide(Settings("<Table name=\"Größe\"/>\n")));
}

TEST_F(Convert, ImportsSevenBitTextIntoTheNarrowForm) {
    const std::string text = Settings("<Table name=\"S\"/>\n");
    WriteBytes("a.xml", "\xEF\xBB\xBF" + text);
    Succeeds({"convert", "--from", "utf-8", "a.xml", "--narrow"});
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(text));
    WriteBytes("b.xml", kConverted);
    Fails(4, {"convert", "--from", "utf-8", "b.xml", "--narrow"}, "b.xml:3:17: a narrow file cannot store");
    EXPECT_EQ(ReadBytes("b.xml"), kConverted);
}

TEST_F(Convert, RefusesWhatIsNotInTheEncoding) {
    const std::string broken = Settings("<Table name=\"\xE4\"/>\n");
    WriteBytes("a.xml", broken);
    Fails(3, {"convert", "--from", "utf-8", "a.xml"}, "a.xml:3:14: byte 0xE4 at offset");
    Fails(3, {"convert", "--from", "utf-16", "a.xml"}, "a.xml:");
    EXPECT_EQ(ReadBytes("a.xml"), broken);
    WriteBytes("w.xml", Utf16Be(kConverted));
    Fails(3, {"convert", "--from", "utf-8", "w.xml"}, "(see \"mox-xml convert --from utf-16\")");
    WriteBytes("no.xml", "<a>ä</b>");
    Fails(3, {"convert", "--from", "utf-8", "no.xml"},
          "no.xml:1:5: found \"</b\", expected \"</a>\" to close the element that begins on line 1");
    EXPECT_EQ(ReadBytes("no.xml"), "<a>ä</b>");
}

TEST_F(Convert, LeavesAFileInAnotherEncodingAsItIs) {
    const std::string big = Utf16Be(kConverted);
    WriteBytes("big.xml", big);
    for (const std::string form : {"--wide", "--narrow"}) {
        Fails(
            3, {"convert", "big.xml", form},
            "mox-xml: big.xml:1:1: the text is UTF-16 with the high byte first (see \"mox-xml convert --from "
            "utf-16\")\n");
    }
    EXPECT_EQ(ReadBytes("big.xml"), big);
    const std::string zeros(434, '\0');
    WriteBytes("zeros.xml", zeros);
    Fails(3, {"convert", "zeros.xml", "--wide"}, "zeros.xml:1:1: the text is nothing but zeros\n");
    EXPECT_EQ(ReadBytes("zeros.xml"), zeros);
    WriteBytes("mark.xml", "\xEF\xBB\xBF" + kConverted);
    Fails(3, {"convert", "mark.xml", "--wide"},
          "; the text is UTF-8 with a byte-order mark (see \"mox-xml convert --from utf-8\")\n");
}

TEST_F(Convert, DropsTheTextAfterAZeroOnlyWithLossy) {
    const std::string text = Settings("");
    WriteBytes("a.xml", Narrow(text) + "lost");
    Fails(4, {"convert", "a.xml", "--wide"},
          "a.xml:4:1: the text ends here, before 4 bytes other than zero (--lossy drops them)\n");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(text) + "lost");
    Succeeds({"convert", "a.xml", "--wide", "--lossy"});
    EXPECT_EQ(ReadBytes("a.xml"), Wide(text));
}

TEST_F(Convert, ReplacesAnotherFileOnlyWithOverwrite) {
    const std::string text = Settings("");
    WriteBytes("a.xml", Narrow(text));
    WriteBytes("b.xml", "precious");
    Fails(4, {"convert", "a.xml", "b.xml", "--wide", "--backup"},
          "mox-xml: b.xml: the file exists; --overwrite replaces it\n");
    EXPECT_EQ(ReadBytes("b.xml"), "precious");
    EXPECT_FALSE(Exists("b.xml.bak"));
    Succeeds({"convert", "a.xml", "b.xml", "--wide", "--backup", "--overwrite"});
    EXPECT_EQ(ReadBytes("b.xml"), Wide(text));
    EXPECT_EQ(ReadBytes("b.xml.bak"), "precious");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(text));
    EXPECT_FALSE(Exists("a.xml.bak"));
    Succeeds({"convert", "a.xml", "./a.xml", "--wide"});
    EXPECT_EQ(ReadBytes("a.xml"), Wide(text));
}

TEST_F(Convert, EveryReadingVerbNamesTheImport) {
    WriteBytes("a.xml", Utf16Be(kConverted));
    const std::string message =
        "a.xml:1:1: the text is UTF-16 with the high byte first (see \"mox-xml convert --from utf-16\")\n";
    for (const auto& call : std::vector<std::vector<std::string>>{{"show", "a.xml"},
                                                                  {"get", "a.xml", "S", "k"},
                                                                  {"sections", "a.xml"},
                                                                  {"entries", "a.xml"},
                                                                  {"set", "a.xml", "S", "k", "v"},
                                                                  {"diff", "a.xml", "a.xml"}})
        Fails(3, call, message);
    EXPECT_EQ(ReadBytes("a.xml"), Utf16Be(kConverted));
    const Result checked = RunTool({"check", "a.xml"});
    EXPECT_EQ(checked.code, 3);
    EXPECT_EQ(checked.out, message);
    WriteBytes("u.xml", Settings("<!-- ä -->\n"));
    EXPECT_EQ(
        Succeeds({"check", "u.xml"}),
        "u.xml:3:6: warning: non-ASCII text (2 bytes in the whole file): hosts read byte 0xC3 as U+FFC3; "
        "the text is UTF-8 (see \"mox-xml convert --from utf-8\")\n");
}

}  // namespace
}  // namespace tool
