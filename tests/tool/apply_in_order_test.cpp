// apply: changes of one list that concern the same section or entry.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

class ApplyInOrder : public ToolTest {
  protected:
    // Makes the changes to a narrow settings document, and expects that the new file has the expected sections.
    static void ExpectApplied(const std::string& sections, const std::string& changes,
                              const std::string& expected) {
        WriteBytes("a.xml", Narrow(Settings(sections)));
        WriteBytes("changes.json", changes);
        EXPECT_EQ(Succeeds({"apply", "a.xml", "changes.json"}), "");
        WriteBytes("b.xml", Narrow(Settings(expected)));
        EXPECT_EQ(RunTool({"diff", "a.xml", "b.xml"}).out, "") << changes;
    }

    // Expects that after the removal the entry k of the section S is one with the value 2: a change that expects
    // another old value is refused.
    static void ExpectSecondIsLeft(const std::string& sections, const std::string& removal) {
        const auto changes = [&](const std::string& before) {
            return "[" + removal +
                   R"(, {"change": "changed", "section": "S", "entry": "k", "field": "value", "before": ")" +
                   before + R"(", "after": "3"}])";
        };
        ExpectApplied(sections, changes("2"), "<Table name=\"S\">" + Var("k", "3") + "</Table>");
        WriteBytes("a.xml", Narrow(Settings(sections)));
        WriteBytes("changes.json", changes("1"));
        Fails(1, {"apply", "a.xml", "changes.json"}, "S/k: found \"2\", expected \"1\"");
    }
};

TEST_F(ApplyInOrder, GivesASectionThatIsAddedAgainNothingOfTheRemovedOne) {
    const std::string old = "<Table name=\"S\" first_id=\"7\" type=\"0010\" editable=\"true\"/>";
    const std::string again =
        R"([{"change": "removed", "section": "S"}, {"change": "added", "section": "S"},)";
    ExpectApplied(old, again + R"({"change": "changed", "section": "S", "field": "type", "after": "0001"}])",
                  "<Table name=\"S\" type=\"0001\"/>");
    ExpectApplied(old, again + R"({"change": "changed", "section": "S", "field": "first_id", "before": "0",
                              "after": "5"}])",
                  "<Table name=\"S\" first_id=\"5\"/>");
}

TEST_F(ApplyInOrder, ForgetsChangesToASectionThatIsRemovedLater) {
    const std::string change =
        R"([{"change": "changed", "section": "S", "field": "editable", "after": "true"},
                                   {"change": "changed", "section": "S", "field": "first_id", "after": "9"},
                                   {"change": "removed", "section": "S"})";
    ExpectApplied("<Table name=\"S\"/>", change + "]", "");
    ExpectApplied("<Table name=\"S\"/>", change + R"(, {"change": "added", "section": "S"}])",
                  "<Table name=\"S\"/>");
    ExpectApplied("<Table name=\"S\"/>", change + R"(, {"change": "added", "section": "S"},
                             {"change": "changed", "section": "S", "field": "type", "after": "0002"}])",
                  "<Table name=\"S\" type=\"0002\"/>");
}

TEST_F(ApplyInOrder, ChangesSectionsThatItHasAdded) {
    ExpectApplied("", R"([{"change": "added", "section": "S", "fields": {"first_id": "3", "type": "0010"}},
                          {"change": "changed", "section": "S", "field": "editable", "before": "false",
                           "after": "true"},
                          {"change": "changed", "section": "S", "field": "first_id", "before": "3",
                           "after": "4"}])",
                  "<Table name=\"S\" first_id=\"4\" type=\"0010\" editable=\"true\"/>");
}

TEST_F(ApplyInOrder, WritesTheLastOfSeveralTextsOfEditable) {
    ExpectApplied("<Table name=\"S\"/>",
                  R"([{"change": "changed", "section": "S", "field": "editable", "before": "false",
                       "after": "true"},
                      {"change": "changed", "section": "S", "field": "editable", "before": "true",
                       "after": "false"}])",
                  "<Table name=\"S\" editable=\"false\"/>");
}

TEST_F(ApplyInOrder, ChangesTheSectionThatIsLeftOfTwoWithOneName) {
    ExpectApplied("<Table name=\"S\" first_id=\"7\"/><Table name=\"S\" first_id=\"8\"/>",
                  R"([{"change": "removed", "section": "S"},
                      {"change": "changed", "section": "S", "field": "type", "after": "0001"}])",
                  "<Table name=\"S\" first_id=\"8\" type=\"0001\"/>");
}

TEST_F(ApplyInOrder, ChangesNoSectionThatItHasRemoved) {
    const std::string bytes = Narrow(Settings("<Table name=\"S\" first_id=\"7\"/>"));
    WriteBytes("a.xml", bytes);
    WriteBytes("changes.json", R"([{"change": "removed", "section": "S"},
                                   {"change": "changed", "section": "S", "field": "type", "after": "0001"}])");
    Fails(1, {"apply", "a.xml", "changes.json"}, "a.xml: change 2: S: ");
    EXPECT_EQ(ReadBytes("a.xml"), bytes);
}

TEST_F(ApplyInOrder, AddsARemovedSectionAgainWithAValue) {
    ExpectApplied("<Table name=\"S\" first_id=\"7\"/>",
                  R"([{"change": "removed", "section": "S"}, {"section": "S", "entry": "k", "value": "1"},
                           {"change": "changed", "section": "S", "field": "type", "before": "0000",
                            "after": "0001"}])",
                  "<Table name=\"S\" type=\"0001\">" + Var("k", "1") + "</Table>");
}

TEST_F(ApplyInOrder, TakesATableWithItsNameAndWithoutForTheSame) {
    const struct {
        std::string changes;
        std::string expected;
    } cases[] = {
        {R"([{"entry": "k", "value": 2}, {"section": "Tools", "entry": "k", "value": 3}])", Var("k", "3")},
        {R"([{"section": "Tools", "entry": "k", "value": 2}, {"entry": "k", "value": 3}])", Var("k", "3")},
        {R"([{"change": "removed", "entry": "k"}, {"section": "Tools", "entry": "k", "value": "4"}])",
         Var("k", "4")},
        {R"([{"section": "Tools", "entry": "k", "value": 2}, {"change": "removed", "entry": "k"}])", ""},
        {R"([{"change": "changed", "entry": "k", "field": "value", "after": "5"},
             {"change": "changed", "section": "Tools", "entry": "k", "field": "value", "after": "6"}])",
         Var("k", "6")},
    };
    for (const auto& test : cases) {
        WriteBytes("a.xml", Wide(TableDocument(Var("k", "1"))));
        WriteBytes("b.xml", Wide(TableDocument(test.expected)));
        WriteBytes("changes.json", test.changes);
        EXPECT_EQ(Succeeds({"apply", "a.xml", "changes.json"}), "");
        EXPECT_EQ(RunTool({"diff", "a.xml", "b.xml"}).out, "") << test.changes;
    }
}

TEST_F(ApplyInOrder, ChangesAnEntryWhoseValueItHasSet) {
    ExpectApplied("<Table name=\"S\">" + Var("k", "1") + "</Table>",
                  R"([{"section": "S", "entry": "k", "value": "2"},
                      {"change": "changed", "section": "S", "entry": "k", "field": "value", "after": "3"}])",
                  "<Table name=\"S\">" + Var("k", "3") + "</Table>");
    ExpectApplied("<Table name=\"S\"/>",
                  R"([{"change": "added", "section": "S", "entry": "k", "type": "string", "after": "2"},
                      {"change": "changed", "section": "S", "entry": "k", "field": "value", "after": "3"}])",
                  "<Table name=\"S\">" + Var("k", "3") + "</Table>");
}

TEST_F(ApplyInOrder, KeepsBothValuesOfAnEntryApart) {
    const std::string before =
        "<Table name=\"S\"><Var name=\"k\" type=\"string\"><Value>1</Value><UI control=\"num\">"
        "<Comment>c</Comment><Value>9</Value></UI></Var></Table>";
    const auto after = [](const std::string& own, const std::string& shown) {
        return "<Table name=\"S\"><Var name=\"k\" type=\"string\"><Value>" + own +
               "</Value><UI control=\"num\"><Comment>c</Comment><Value>" + shown +
               "</Value></UI></Var></Table>";
    };
    const std::string set = R"({"section": "S", "entry": "k", "value": "2"})";
    const std::string shown =
        R"({"change": "changed", "section": "S", "entry": "k", "field": "ui.value", "after": "8"})";
    const std::string own =
        R"({"change": "changed", "section": "S", "entry": "k", "field": "value", "after": "3"})";
    ExpectApplied(before, "[" + set + "," + shown + "]", after("2", "8"));
    ExpectApplied(before, "[" + shown + "," + set + "]", after("2", "8"));
    ExpectApplied(before, "[" + set + "," + own + "," + shown + "]", after("3", "8"));
    ExpectApplied(before, "[" + own + "," + set + "]", after("2", "9"));
    ExpectApplied("<Table name=\"S\">" + Var("k", "1") + "</Table>",
                  "[" + set + R"(, {"section": "S", "entry": "k", "value": ""}])",
                  "<Table name=\"S\">" + Var("k", "") + "</Table>");
}

TEST_F(ApplyInOrder, RemovesEntriesBeforeTheirSectionOrAfter) {
    const std::string two = "<Table name=\"S\">" + Var("a", "1") + Var("b", "2") + "</Table>";
    ExpectApplied(
        two, R"([{"change": "removed", "section": "S", "entry": "a"}, {"change": "removed", "section": "S"},
                           {"change": "removed", "section": "S", "entry": "b"}])",
        "");
    ExpectApplied(two, R"([{"change": "removed", "section": "S", "entry": "b"},
                           {"change": "removed", "section": "S", "entry": "a"},
                           {"change": "removed", "section": "S"}])",
                  "");
    WriteBytes("a.xml", Narrow(Settings(two)));
    WriteBytes("changes.json", R"([{"change": "removed", "section": "S", "entry": "a"},
                                   {"change": "removed", "section": "S"},
                                   {"change": "removed", "section": "S", "entry": "a"}])");
    Fails(1, {"apply", "a.xml", "changes.json"},
          "change 3: S/a: there is no such entry; nothing was changed\n");
}

TEST_F(ApplyInOrder, RemovesAnEntryOfTheSectionThatIsThereAgain) {
    ExpectApplied(
        "<Table name=\"S\">" + Var("k", "1") + "</Table>",
        R"([{"change": "removed", "section": "S"}, {"change": "removed", "section": "S", "entry": "k"},
                      {"section": "S", "entry": "k", "value": "2"}, {"section": "S", "entry": "l", "value": "3"},
                      {"change": "removed", "section": "S", "entry": "k", "before": "2"}])",
        "<Table name=\"S\">" + Var("l", "3") + "</Table>");
}

TEST_F(ApplyInOrder, RemovesAllSectionsOfANameOnlyWithAllTheirEntries) {
    const std::string two =
        "<Table name=\"S\">" + Var("a", "1") + "</Table><Table name=\"S\">" + Var("b", "2") + "</Table>";
    const std::string first =
        R"([{"change": "removed", "section": "S"}, {"change": "removed", "section": "S", "entry": "a"},
            {"change": "removed", "section": "S"})";
    WriteBytes("a.xml", Narrow(Settings(two)));
    WriteBytes("changes.json", first + "]");
    Fails(1, {"apply", "a.xml", "changes.json"},
          "section S has the entry b, which the changes do not remove; nothing was changed\n");
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(Settings(two)));
    ExpectApplied(two, first + R"(, {"change": "removed", "section": "S", "entry": "b"}])", "");
}

TEST_F(ApplyInOrder, ExpectsOldValuesOfTheSectionThatIsLeft) {
    ExpectSecondIsLeft(
        "<Table name=\"S\">" + Var("k", "1") + "</Table><Table name=\"S\">" + Var("k", "2") + "</Table>",
        R"({"change": "removed", "section": "S"},
                          {"change": "removed", "section": "S", "entry": "k"})");
}

TEST_F(ApplyInOrder, ExpectsOldValuesOfTheEntryThatIsLeft) {
    ExpectSecondIsLeft("<Table name=\"S\">" + Var("k", "1") + Var("k", "2") + "</Table>",
                       R"({"change": "removed", "section": "S", "entry": "k", "before": "1"})");
}

TEST_F(ApplyInOrder, RemovesNoUnreadableEntryThatIsExpectedToHaveAValue) {
    const std::string odd =
        "<Table name=\"S\"><Var name=\"k\" type=\"complex\"><Value>1</Value></Var></Table>";
    WriteBytes("a.xml", Narrow(Settings(odd)));
    WriteBytes("changes.json", R"([{"change": "removed", "section": "S", "entry": "k", "before": "2"}])");
    Fails(1, {"apply", "a.xml", "changes.json"}, "S/k: found \"\", expected \"2\"");
    ExpectApplied(odd, R"([{"change": "removed", "section": "S", "entry": "k", "before": ""}])",
                  "<Table name=\"S\"/>");
}

// Writing a value removes "eud".
TEST_F(ApplyInOrder, LosesNoEudThatItHasSet) {
    const std::string bytes = Wide(TableDocument(Var("k", "1")));
    const std::string eud =
        R"({"change": "changed", "entry": "k", "field": "eud", "before": "false", "after": "true"})";
    const std::string value = R"({"entry": "k", "value": "2"})";
    WriteBytes("a.xml", bytes);
    WriteBytes("changes.json", "[" + eud + "," + value + "]");
    Fails(4, {"apply", "a.xml", "changes.json"}, "the file would not keep k eud; nothing was changed\n");
    EXPECT_EQ(ReadBytes("a.xml"), bytes);
    WriteBytes("changes.json", "[" + value + "," + eud + "]");
    EXPECT_EQ(Succeeds({"apply", "a.xml", "changes.json"}), "");
    EXPECT_EQ(Succeeds({"entry", "get", "a.xml", "k"}), "2\n");
}

TEST_F(ApplyInOrder, SaysThatAnotherEudIsRemoved) {
    const std::string lock = R"({"change": "changed", "entry": "k", "field": "eud", "after": "true"})";
    const std::string unlock = R"({"change": "changed", "entry": "k", "field": "eud", "after": "false"})";
    const std::string value = R"({"entry": "other", "value": "2"})";
    for (const std::string& eud : {lock, unlock}) {
        WriteBytes("a.xml",
                   Wide("<Table name=\"Tools\" eud=\"true\"><Var name=\"k\" type=\"long\" eud=\"true\">"
                        "<Value>1</Value></Var><Var name=\"other\" type=\"long\" eud=\"true\">"
                        "<Value>1</Value></Var></Table>"));
        WriteBytes("changes.json", "[" + eud + "," + value + "]");
        const Result result = RunTool({"apply", "a.xml", "changes.json"});
        EXPECT_EQ(result.code, 0) << result;
        EXPECT_EQ(result.err,
                  "mox-xml: a.xml: note: saving removed the attribute \"eud\" from 1 section or entry\n");
    }
}

// ---- the list

TEST_F(ApplyInOrder, RefusesMembersThatItWouldIgnore) {
    const std::string bytes = Narrow(Settings("<Table name=\"S\">" + Var("k", "1") + "</Table>"));
    WriteBytes("a.xml", bytes);
    const struct {
        std::string change;
        std::string member;
    } cases[] = {
        {R"({"section": "S", "entry": "n", "value": 1, "type": "double"})", "type"},
        {R"({"section": "S", "entry": "n", "value": 1, "fields": {"id": "5"}})", "fields"},
        {R"({"section": "S", "entry": "k", "value": 1, "after": "2"})", "after"},
        {R"({"section": "S", "entry": "k", "value": 1, "field": "ui.comment"})", "field"},
        {R"({"change": "changed", "section": "S", "entry": "k", "field": "id", "after": "2", "type": "long"})",
         "type"},
        {R"({"change": "changed", "section": "S", "entry": "k", "field": "id", "after": "2", "fields": {}})",
         "fields"},
        {R"({"change": "added", "section": "S", "entry": "n", "type": "long", "before": "1"})", "before"},
        {R"({"change": "added", "section": "S", "entry": "n", "type": "long", "field": "id"})", "field"},
        {R"({"change": "added", "section": "N", "type": "0001"})", "type"},
        {R"({"change": "added", "section": "N", "after": "0001"})", "after"},
        {R"({"change": "removed", "section": "S", "entry": "k", "field": "ui.comment"})", "field"},
        {R"({"change": "removed", "section": "S", "entry": "k", "after": "1"})", "after"},
        {R"({"change": "removed", "section": "S", "before": "1"})", "before"},
    };
    for (const auto& test : cases) {
        WriteBytes("changes.json", "[" + test.change + "]");
        Fails(3, {"apply", "a.xml", "changes.json"},
              "changes.json: change 1: \"" + test.member + "\" does not belong to such a change\n");
        EXPECT_EQ(ReadBytes("a.xml"), bytes) << test.change;
    }
}

TEST_F(ApplyInOrder, RefusesMembersThatAreThereTwice) {
    const std::string bytes = Narrow(Settings("<Table name=\"S\">" + Var("k", "1") + "</Table>"));
    WriteBytes("a.xml", bytes);
    WriteBytes(
        "changes.json",
        R"([{"section": "S", "entry": "k", "value": "2"}, {"section": "S", "entry": "k", "value": "value"}])");
    EXPECT_EQ(Succeeds({"apply", "a.xml", "changes.json", "--dry-run"}), "~ S/k value: \"1\" -> \"value\"\n");
    WriteBytes("changes.json", R"([{"section": "S", "entry": "k", "value": "2", "value": "3"}])");
    Fails(3, {"apply", "a.xml", "changes.json"}, "changes.json: an object has the member \"value\" twice\n");
    WriteBytes("changes.json", R"([{"change": "added", "section": "S", "entry": "n", "type": "long",
                                    "fields": {"id": "1", "id": "2"}}])");
    Fails(3, {"apply", "a.xml", "changes.json"}, "changes.json: an object has the member \"id\" twice\n");
    EXPECT_EQ(ReadBytes("a.xml"), bytes);
}

TEST_F(ApplyInOrder, RefusesWholeNumbersThatLoseDigits) {
    const std::string bytes = Narrow(Settings("<Table name=\"S\">" + Var("k", "1") + "</Table>"));
    const auto changes = [](const std::string& value) {
        return R"([{"section": "S", "entry": "k\"18446744073709551616", "value": "\\"},
                   {"section": "S", "entry": "k", "value": )" +
               value + "}]";
    };
    for (const std::string value :
         {"18446744073709551616", "-9223372036854775809", "123456789012345678901"}) {
        WriteBytes("a.xml", bytes);
        WriteBytes("changes.json", changes(value));
        Fails(3, {"apply", "a.xml", "changes.json"},
              "changes.json: the number " + value + " has more than 64 bits; write it as a text\n");
        EXPECT_EQ(ReadBytes("a.xml"), bytes);
    }
    for (const std::string value : {"18446744073709551615", "-9223372036854775808", "1.5", "0", "-7"}) {
        WriteBytes("a.xml", bytes);
        WriteBytes("changes.json", changes(value));
        EXPECT_EQ(Succeeds({"apply", "a.xml", "changes.json"}), "");
        EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k"}), value + "\n");
    }
    WriteBytes("changes.json", changes("1e30"));
    EXPECT_EQ(Succeeds({"apply", "a.xml", "changes.json"}), "");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "k"}), "1e+30\n");
}

}  // namespace
}  // namespace tool
