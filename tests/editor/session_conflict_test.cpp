// The editor's session when somebody else has changed the file, and what previews tell.
#include <filesystem>

#include "tests/editor/session_support.h"
#include "tools/exit_error.h"

namespace editor {
namespace {

using mox::tool::EditorSession;
using mox::tool::Json;

class SessionConflict : public SessionTest {
  protected:
    static std::string Entry(const std::string& name, const std::string& value,
                             const std::string& more = "") {
        return "<Var name=\"" + name + "\" type=\"string\"" + more + "><Value>" + value + "</Value></Var>";
    }

    static std::string Section(const std::string& entries, const std::string& name = "S") {
        return "<Table name=\"" + name + "\">" + entries + "</Table>";
    }

    // Opens one document, writes another one, and saves. Returns what the conflict says.
    Json ConflictOf(const std::string& base, const std::string& theirs,
                    const std::vector<mox::tool::RequestedChange>& changes) {
        WriteBytes(path_, Narrow(base));
        session_ = std::make_unique<EditorSession>(Options());
        const std::string bytes = theirs[0] == '<' && theirs[1] == 'T' ? Narrow(theirs) : theirs;
        WriteBytes(path_, bytes);
        const Json answer = session_->Save(1, changes, false);
        EXPECT_EQ(ReadBytes(path_), bytes);
        EXPECT_EQ(answer.size(), 1U);
        return answer.value("conflict", Json());
    }

    std::string MessageOf(const std::function<void()>& call) {
        try {
            call();
        } catch (const mox::tool::ExitError& error) {
            return error.what();
        }
        return "";
    }

    std::unique_ptr<EditorSession> session_{};
};

TEST_F(SessionConflict, ShowsTheThreeVersionsOfEachField) {
    std::vector<mox::tool::RequestedChange> changes = Change("S", "a", "1", "2");
    for (const char* const name : {"b", "d"})
        changes.push_back(Change("S", name, "1", "2")[0]);
    const Json conflict =
        ConflictOf(Section(Entry("a", "1") + Entry("b", "1") + Entry("c", "1") + Entry("d", "1")),
                   Section(Entry("a", "5") + Entry("b", "2") + Entry("c", "5") + Entry("d", "1")), changes);
    EXPECT_EQ(
        conflict["rows"].dump(),
        R"([{"section":"S","entry":"a","field":"value","base":"1","theirs":"5","mine":"2","by":"conflict"},)"
        R"({"section":"S","entry":"b","field":"value","base":"1","theirs":"2","mine":"2","by":"both"},)"
        R"({"section":"S","entry":"c","field":"value","base":"1","theirs":"5","mine":"1","by":"theirs"},)"
        R"({"section":"S","entry":"d","field":"value","base":"1","theirs":"1","mine":"2","by":"mine"}])");
}

TEST_F(SessionConflict, ShowsEntriesAndSectionsThatAreGoneOrNew) {
    const Json conflict =
        ConflictOf(Section(Entry("a", "1")) + Section("", "T"),
                   Section(Entry("b", "2") + Entry("c", "3") + Entry("c", "4")) + Section("", "U"),
                   Change("S", "a", "1", "2"));
    EXPECT_EQ(conflict["rows"].dump(),
              R"([{"section":"S","entry":"a","field":"","base":"1","mine":"1","by":"theirs"},)"
              R"({"section":"S","entry":"a","field":"value","base":"1","mine":"2","by":"conflict"},)"
              R"({"section":"S","entry":"b","field":"","theirs":"2","by":"theirs"},)"
              R"({"section":"S","entry":"c","field":"","theirs":"3","by":"theirs"},)"
              R"({"section":"S","entry":"c","occurrence":2,"field":"","theirs":"4","by":"theirs"},)"
              R"({"section":"T","field":"","base":"","mine":"","by":"theirs"},)"
              R"({"section":"U","field":"","theirs":"","by":"theirs"}])");
}

TEST_F(SessionConflict, FileThatIsBrokenIsReplacedOnRequestOnly) {
    const auto change = Change("S", "a", "1", "2");
    const Json conflict = ConflictOf(Section(Entry("a", "1")), "<broken", change);
    EXPECT_EQ(conflict["version"], 2);
    EXPECT_NE(conflict["unreadable"].get<std::string>().find("a.xml:1:"), std::string::npos);
    EXPECT_NE(MessageOf([&] { session_->Rebase(2); }), "");
    EXPECT_NE(MessageOf([&] { session_->Overwrite(1, change, false); }), "");
    WriteBytes(path_, "<broken again");
    EXPECT_EQ(session_->Overwrite(2, change, false)["conflict"]["version"], 3);
    EXPECT_EQ(ReadBytes(path_), "<broken again");
    EXPECT_EQ(session_->Overwrite(3, change, true)["document"]["version"], 4);
    EXPECT_NE(ReadBytes(path_).find(">2<"), std::string::npos);
    EXPECT_EQ(ReadBytes(path_ + ".bak"), "<broken again");
    EXPECT_NE(MessageOf([&] { session_->Overwrite(3, change, false); }), "");
}

TEST_F(SessionConflict, FileThatIsGoneIsWrittenOnRequestOnly) {
    WriteBytes(path_, Narrow(Section(Entry("a", "1"))));
    EditorSession session(Options());
    std::filesystem::remove(path_);
    const auto change = Change("S", "a", "1", "2");
    EXPECT_TRUE(session.Save(1, change, false)["conflict"].contains("unreadable"));
    EXPECT_FALSE(std::filesystem::exists(path_));
    EXPECT_TRUE(session.Overwrite(2, change, false).contains("saved"));
    EXPECT_NE(ReadBytes(path_).find(">2<"), std::string::npos);
}

TEST_F(SessionConflict, DocumentOfAnotherKindIsUnreadable) {
    const Json conflict =
        ConflictOf(Section(Entry("a", "1")), "<?xml version=\"1.0\"?>\n<Other/>\n" + std::string(1, '\0'),
                   Change("S", "a", "1", "2"));
    EXPECT_EQ(conflict["unreadable"],
              path_ +
                  ": found a document without settings or a table, expected a settings "
                  "document");
}

TEST_F(SessionConflict, SaveWithoutADifferenceWritesNothing) {
    // Each save removes "eud" from settings, which is no difference.
    WriteBytes(path_, Narrow(Section(Entry("a", "1") + Entry("b", "1", " eud=\"true\""))));
    const std::string before = ReadBytes(path_);
    EditorSession session(Options());
    EXPECT_EQ(session.Save(1, {}, true).dump(), R"({"unchanged":true})");
    EXPECT_EQ(session.Save(1, Change("S", "a", "1", "1"), true).dump(), R"({"unchanged":true})");
    EXPECT_EQ(ReadBytes(path_), before);
    EXPECT_FALSE(std::filesystem::exists(path_ + ".bak"));
}

TEST_F(SessionConflict, FailedSaveLeavesTheSessionAsItWas) {
    WriteBytes(path_, Narrow(Section(Entry("a", "1"))));
    const std::string before = ReadBytes(path_);
    std::filesystem::create_directory(path_ + ".bak");
    EditorSession session(Options());
    const auto change = Change("S", "a", "1", "2");
    const std::string message = MessageOf([&] { session.Save(1, change, true); });
    EXPECT_NE(message.find("; " + path_ + " was not changed"), std::string::npos) << message;
    EXPECT_EQ(ReadBytes(path_), before);
    EXPECT_TRUE(session.Save(1, change, false).contains("saved"));
    EXPECT_NE(MessageOf([&] { session.Save(1, change, false); }).find("load the page again"),
              std::string::npos);
}

TEST_F(SessionConflict, PreviewTellsWhatASaveChangesBesides) {
    WriteBytes(path_, Narrow("<Table name=\"S\" eud=\"true\">" + Entry("a", "1", " eud=\"true\"") +
                             Entry("b", "1") + Entry("l", "one\ntwo") + "</Table>"));
    const std::string before = ReadBytes(path_);
    const EditorSession session(Options());
    std::vector<mox::tool::RequestedChange> changes = Change("S", "a", "1", "2");
    changes.push_back(Change("S", "b", "1", "3")[0]);
    const Json preview = session.Preview(1, changes);
    const auto listOf = [](const Json& differences) {
        std::string list;
        for (const Json& one : differences)
            list += one.value("entry", "-") + " " + one.value("field", "") + "; ";
        return list;
    };
    EXPECT_EQ(listOf(preview["asked"]), "a value; b value; ");
    EXPECT_EQ(listOf(preview["besides"]), "- eud; a eud; l value; ");
    EXPECT_EQ(ReadBytes(path_), before);
    EXPECT_NE(MessageOf([&] { session.Preview(2, changes); }), "");
}

TEST_F(SessionConflict, TableDocumentsAreSavedToo) {
    WriteBytes(path_, Wide("<Table name=\"T\">" + Entry("a", "1") + Entry("b", "1", " eud=\"true\"") +
                           "</Table>\n" + std::string(1, '\0')));
    EditorSession session(Options());
    const auto changes = mox::tool::ReadChanges(
        "changes", R"([{"change": "changed", "entry": "a", "field": "value", "before": "1", "after": "2"}])");
    EXPECT_EQ(session.Preview(1, changes)["asked"].dump(),
              R"([{"change":"changed","section":"T","entry":"a","field":"value","before":"1","after":"2"}])");
    EXPECT_EQ(session.Save(1, changes, false)["document"]["sections"][0]["entries"].dump(),
              R"([{"name":"a","type":"string","value":"2","own":true},)"
              R"({"name":"b","type":"string","eud":true,"value":"1","own":true}])");
    // There the attribute is kept, and can be asked for.
    const auto eud = mox::tool::ReadChanges(
        "changes",
        R"([{"change": "changed", "entry": "b", "field": "eud", "before": "true", "after": "false"}])");
    EXPECT_TRUE(session.Save(2, eud, false).contains("saved"));
}

TEST_F(SessionConflict, DocumentThatCannotBeChangedIsForReading) {
    WriteBytes(path_, "<?xml version=\"1.0\"?>\n<Table name=\"T\">" + Entry("a", "1") + "</Table>\n" +
                          std::string(1, '\0'));
    EditorSession session(Options());
    EXPECT_NE(session.Form()["readOnly"].get<std::string>().find("must be wide"), std::string::npos);
    EXPECT_NE(MessageOf([&] { session.Save(1, {}, false); }).find("must be wide"), std::string::npos);
}

}  // namespace
}  // namespace editor
