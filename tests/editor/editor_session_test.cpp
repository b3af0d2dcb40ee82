// The editor's session: a file, its form, and what saves make of it.
#include "tests/editor/session_support.h"
#include "tools/edit/form_json.h"
#include "tools/exit_error.h"

namespace editor {
namespace {

using mox::tool::EditorSession;
using mox::tool::ExitCode;
using mox::tool::ExitError;
using mox::tool::Json;

using Session = SessionTest;

// The exit code with which the call ends; kSuccess if it does not throw.
template <class Call>
ExitCode CodeOf(const Call& call) {
    try {
        call();
    } catch (const ExitError& error) {
        return error.Code();
    }
    return ExitCode::kSuccess;
}

TEST_F(Session, FormHasAllThatTheFileSaysOfAnEntry) {
    WriteBytes(
        path_,
        Narrow(
            "<Table name=\"S\" editable=\"false\" eud=\"true\"><Var name=\"g\" id=\"7\" type=\"double\" "
            "array=\"vector\" eud=\"true\"><Value>1 2</Value><UI control=\"num\" access=\"visible\" "
            "prov_owner=\"erg\" prov_index=\"4\" minVal=\"1\" maxVal=\"8\" name=\"Gain\"><Comment>c</Comment>"
            "<Value>u</Value></UI><X a=\"b\">t</X></Var><!-- note --></Table>\n"));
    const Json form = EditorSession(Options()).Form();
    EXPECT_EQ(form["file"], "a.xml");
    EXPECT_EQ(form["version"], 1);
    EXPECT_FALSE(form.contains("readOnly"));
    EXPECT_EQ(
        form["sections"].dump(),
        R"([{"name":"S","found":true,"frozen":true,"eud":true,"entries":[{"name":"g","type":"double","eud":true,)"
        R"("shape":"vector","id":7,"value":"1 2","own":true,"ui":{"control":"num","access":"visible",)"
        R"("provider":"erg","provider_index":4,"minimum":"1","maximum":"8","shown_name":"Gain","comment":"c",)"
        R"("value":"u"},)"
        R"("others":[{"element":"<X a=\"b\"> t"}]}],"others":[{"comment":" note "}]}])");
}

TEST_F(Session, FormSaysWhatCannotBeChanged) {
    WriteBytes(path_, Narrow("<Table name=\"S\"><Var name=\"a\" type=\"odd\"/><Var name=\"b\"/>"
                             "<Var type=\"long\"><Value>1</Value></Var><Var name=\"c\" type=\"long\"/>"
                             "<Var name=\"c\" type=\"long\"/></Table><Table name=\"S\"/><Other/>\n"));
    const Json form = EditorSession(Options()).Form();
    std::vector<std::string> problems;
    for (const Json& entry : form["sections"][0]["entries"])
        problems.push_back(entry.value("problem", ""));
    EXPECT_EQ(problems,
              (std::vector<std::string>{
                  "The type of the entry is unknown, so programs cannot read it.",
                  "The entry has no type, so programs cannot read it.",
                  "The entry has no name, so it cannot be changed.", "",
                  "Another entry before this one has the same name: programs read only the first."}));
    EXPECT_TRUE(form["sections"][0].contains("found"));
    EXPECT_FALSE(form["sections"][1].contains("found"));
    EXPECT_EQ(form["sections"][2]["element"], "Other");
    EXPECT_FALSE(form["sections"][2].contains("found"));
}

TEST_F(Session, ValueOfThePresentationDataIsNotTheEntrysOwn) {
    WriteBytes(path_,
               Narrow("<Table name=\"S\"><Var name=\"a\" type=\"string\"><UI><Value>u</Value></UI></Var>"
                      "</Table>\n"));
    const Json entry = EditorSession(Options()).Form()["sections"][0]["entries"][0];
    EXPECT_EQ(entry["value"], "u");
    EXPECT_FALSE(entry.contains("own"));
}

TEST_F(Session, HalfACharacterIsFound) {
    EXPECT_TRUE(mox::tool::HasLoneSurrogate("a\xED\xA0\x80"));
    EXPECT_TRUE(mox::tool::HasLoneSurrogate("\xED\xBF\xBF"));
    EXPECT_FALSE(mox::tool::HasLoneSurrogate("\xED\x9F\xBF"));
    EXPECT_FALSE(mox::tool::HasLoneSurrogate("\xED"));
    EXPECT_FALSE(mox::tool::HasLoneSurrogate(""));
}

TEST_F(Session, SaveReplacesTheFileAndCountsTheVersion) {
    EditorSession session(Options());
    const Json saved = session.Save(1, Change("S", "k", "1", "2"), false);
    EXPECT_EQ(saved["saved"], true);
    EXPECT_EQ(saved["document"]["version"], 2);
    EXPECT_EQ(saved["document"]["sections"][0]["entries"][0]["value"], "2");
    EXPECT_EQ(ReadBytes(path_), Narrow("\t<Table name=\"S\">\n\t\t<Var name=\"k\" type=\"long\" array=\"\">\n"
                                       "\t\t\t<Value loc=\"\">2</Value>\n\t\t</Var>\n\t</Table>\n"));
    EXPECT_EQ(CodeOf([&] { session.Save(1, Change("S", "k", "2", "3"), false); }), ExitCode::kUsageError);
    EXPECT_EQ(session.Save(2, Change("S", "k", "2", "3"), true)["document"]["version"], 3);
    EXPECT_NE(ReadBytes(path_ + ".bak").find(">2<"), std::string::npos);
}

TEST_F(Session, ReadOnlySessionRefusesEveryChange) {
    mox::tool::SessionOptions options = Options();
    options.isReadOnly = true;
    EditorSession session(options);
    const auto change = Change("S", "k", "1", "2");
    EXPECT_EQ(CodeOf([&] { session.Preview(1, change); }), ExitCode::kIoError);
    EXPECT_EQ(CodeOf([&] { session.Save(1, change, false); }), ExitCode::kIoError);
    EXPECT_EQ(CodeOf([&] { session.Overwrite(1, change, false); }), ExitCode::kIoError);
    EXPECT_EQ(CodeOf([&] { session.Rebase(1); }), ExitCode::kIoError);
}

TEST_F(Session, ConflictIsLeftByRebaseOrOverwriteOnly) {
    EditorSession session(Options());
    const auto change = Change("S", "k", "1", "2");
    EXPECT_EQ(CodeOf([&] { session.Rebase(1); }), ExitCode::kUsageError);
    EXPECT_EQ(CodeOf([&] { session.Overwrite(1, change, false); }), ExitCode::kUsageError);
    WriteBytes(
        path_,
        Narrow(
            "\t<Table name=\"S\">\n\t\t<Var name=\"k\" type=\"long\"><Value>5</Value></Var>\n\t</Table>\n"));
    const std::string theirs = ReadBytes(path_);
    const Json conflict = session.Save(1, change, false)["conflict"];
    EXPECT_EQ(conflict.dump(),
              R"({"version":2,"rows":[{"section":"S","entry":"k","field":"value","base":"1",)"
              R"("theirs":"5","mine":"2","by":"conflict"}]})");
    EXPECT_EQ(ReadBytes(path_), theirs);
    EXPECT_EQ(CodeOf([&] { session.Overwrite(2, change, false); }), ExitCode::kUsageError);
    EXPECT_EQ(CodeOf([&] { session.Rebase(1); }), ExitCode::kUsageError);
    EXPECT_EQ(session.Rebase(2)["sections"][0]["entries"][0]["value"], "5");
    EXPECT_EQ(CodeOf([&] { session.Rebase(2); }), ExitCode::kUsageError);
    EXPECT_TRUE(session.Save(2, Change("S", "k", "5", "6"), false).contains("saved"));
}

TEST_F(Session, DocumentsThatAreNoneAreRefused) {
    mox::tool::SessionOptions options = Options();
    for (const auto& [bytes, code] :
         {std::pair("<a/>", ExitCode::kUsageError), std::pair("<a", ExitCode::kSyntaxError),
          std::pair("\xEF\xBB\xBF<a/>", ExitCode::kSyntaxError)}) {
        WriteBytes(path_, bytes);
        EXPECT_EQ(CodeOf([&] { EditorSession session(options); }), code) << bytes;
    }
    options.file.path = "-";
    EXPECT_EQ(CodeOf([&] { EditorSession session(options); }), ExitCode::kUsageError);
    options.file.path = path_ + ".none";
    EXPECT_EQ(CodeOf([&] { EditorSession session(options); }), ExitCode::kIoError);
}

TEST_F(Session, ChoicesThatAreNoneAreRefused) {
    mox::tool::SessionOptions options = Options();
    options.choicesPath = path_ + ".json";
    for (const char* const bytes :
         {"", "[]", "{\"a\": 1}", "{\"a\": [1]}", "{\"a\": [{}]}", "{\"a\": [{\"value\": \"1\"}]}",
          "{\"a\": [{\"value\": 1, \"name\": \"x\"}]}"}) {
        WriteBytes(options.choicesPath, bytes);
        EXPECT_EQ(CodeOf([&] { EditorSession session(options); }), ExitCode::kSyntaxError) << bytes;
    }
    WriteBytes(options.choicesPath, R"({"app:1": ["x", {"value": "1", "name": "one"}]})");
    EXPECT_EQ(EditorSession(options).Form()["choices"].dump(),
              R"({"app:1":["x",{"value":"1","name":"one"}]})");
    WriteBytes(options.choicesPath, R"({"app:1": [{"value": "1", "name": "one", "more": 5}]})");
    EXPECT_EQ(EditorSession(options).Form()["choices"].dump(), R"({"app:1":[{"value":"1","name":"one"}]})");
}

TEST_F(Session, ChoicesThatAreNestedTooDeeplyAreRefused) {
    mox::tool::SessionOptions options = Options();
    options.choicesPath = path_ + ".json";
    const std::size_t depth = 1000000;
    WriteBytes(options.choicesPath, R"({"a": [{"value": "1", "name": "x", "more": )" +
                                        std::string(depth, '[') + std::string(depth, ']') + "}]}");
    EXPECT_EQ(CodeOf([&] { EditorSession session(options); }), ExitCode::kSyntaxError);
}

}  // namespace
}  // namespace editor
