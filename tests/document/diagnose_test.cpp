// Diagnostics with their positions.
#include "mox_xmlApi/document/diagnose.hpp"

#include "tests/document/document_support.h"

namespace document_tests {
namespace {

std::string Diagnosed(const std::string& bytes, std::optional<mox::Form> form = std::nullopt) {
    constexpr const char* kSeverities[] = {"error", "warning", "note"};
    std::string text;
    for (const mox::Diagnostic& diagnostic : mox::diagnose(bytes, form)) {
        text += std::to_string(diagnostic.position.line) + ":" + std::to_string(diagnostic.position.column) +
                ": " + kSeverities[static_cast<int>(diagnostic.severity)] + ": " + diagnostic.message + "\n";
    }
    return text;
}

TEST(Diagnose, AGoodDocumentHasNoDiagnostics) {
    EXPECT_EQ(Diagnosed(Section("<Var name=\"a\" type=\"long\"/>")), "");
    EXPECT_EQ(Diagnosed(Utf16Le("<Table name=\"T\"><Var name=\"a\" type=\"long\"/></Table>")), "");
    EXPECT_TRUE(mox::diagnose(Parsed(Settings(""))).empty());
}

TEST(Diagnose, ASyntaxErrorIsTheOnlyDiagnostic) {
    EXPECT_EQ(Diagnosed("<a>\xE4\n</b>"),
              "2:1: error: found \"</b\", expected \"</a>\" to close the element that begins on line 1\n");
    EXPECT_EQ(
        Diagnosed(Utf16Le("<a/>"), mox::Form::Narrow),
        "1:2: error: found the end of the file, expected an element name after \"<\" (in text, write \"<\" "
        "as \"&lt;\")\n");
}

TEST(Diagnose, DiagnosticsAreSortedByPosition) {
    const std::string root = "<Settings xmlns:noNamespaceSchemaLocation=\"\">\n";
    EXPECT_EQ(
        Diagnosed(
            root +
            "<Table name=\"S\">\n<Var name=\"a\"/>\n<Var name=\"a\" type=\"long\" array=\"x\"/>\n</Table>\n"
            "<Table name=\"S\"/>\n<svg/>\n</Settings>\n\0x"s),
        "3:2: warning: entry a has no type: hosts cannot read it, and exports of its section stop here\n"
        "4:2: warning: duplicate entry a: hosts find only the one on line 3, which they cannot read\n"
        "4:2: warning: entry a has array=\"x\", which is neither \"array\" nor \"vector\" and has no effect\n"
        "6:2: warning: duplicate section S: hosts read only the one on line 2\n"
        "7:2: warning: <svg> is not a section, but enumerations and exports treat it as one\n"
        "9:1: warning: the text ends here: hosts ignore what follows (1 byte), and saving discards it\n");
    EXPECT_EQ(Diagnosed("<svg/>"),
              "1:1: warning: neither a \"Settings\" element with a schema attribute nor a \"Table\" element: "
              "hosts see an empty document\n");
}

TEST(Diagnose, AnEncodingThatIsNotReadIsTheOnlyDiagnostic) {
    const std::vector<mox::Diagnostic> found = mox::diagnose(Utf16Be(Settings("")));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].severity, mox::Severity::Error);
    EXPECT_EQ(found[0].message, "the text is UTF-16 with the high byte first");
    EXPECT_EQ(found[0].encoding, mox::Encoding::Utf16Be);
    EXPECT_EQ(Diagnosed(std::string(434, '\0')), "1:1: error: the text is nothing but zeros\n");
}

TEST(Diagnose, ValuesAreCheckedOnlyIfAsked) {
    const mox::Document document = Parsed(Section("<Var name=\"a\" type=\"long\"><Value>x</Value></Var>"));
    EXPECT_TRUE(mox::diagnose(document).empty());
    mox::DiagnoseOptions options;
    options.values = true;
    const std::vector<mox::Diagnostic> found = mox::diagnose(document, options);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].message, "the value of entry a, \"x\", is not a value of its type long");
}

}  // namespace
}  // namespace document_tests
