// apply: many changes at once, all or none; and what diff --json prints for it.
#include <nlohmann/json.hpp>

#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using Apply = ToolTest;
using Json = nlohmann::json;

// Stores the differences of two files as changes.json.
void WriteDifferences(const std::string& before, const std::string& after) {
    const Result result = RunTool({"diff", before, after, "--json"});
    ASSERT_EQ(result.code, 1) << result;
    WriteBytes("changes.json", result.out);
}

const std::string kBefore =
    "<Table name=\"A\" first_id=\"1\">" + Var("k", "1") + Var("gone", "x") +
    "<Var name=\"g\" type=\"double\" id=\"3\"><Value>1.5</Value><UI control=\"num\" name=\"Gain\">"
    "<Comment>old</Comment></UI></Var></Table>\n<Table name=\"Old\">" +
    Var("o", "1") + "</Table>\n";
const std::string kAfter =
    "<Table name=\"A\" first_id=\"7\" type=\"0010\"><Var name=\"k\" type=\"long\" "
    "id=\"9\"><Value>2</Value></Var>"
    "<Var name=\"g\" type=\"double\" id=\"4\"><Value>2.5</Value><UI control=\"text\" name=\"Gain 2\" "
    "prov_owner=\"erg\" prov_index=\"5\"><Comment>new</Comment></UI></Var>"
    "<Var name=\"new\" type=\"byte\" array=\"array\" id=\"11\"><Value>00FF</Value>"
    "<UI control=\"switch\" name=\"N\"/></Var></Table>\n"
    "<Table name=\"B\" first_id=\"20\">" +
    Var("b", "ü &lt;") + "</Table>\n";

TEST_F(Apply, CarriesADifferenceToAThirdFile) {
    WriteBytes("a.xml", Wide(Settings(kBefore)));
    WriteBytes("b.xml", Wide(Settings(kAfter)));
    const std::string own = "<Table name=\"Own\">" + Var("o", "kept") + "</Table>\n";
    WriteBytes("c.xml", Wide(Settings(own + kBefore)));
    WriteDifferences("a.xml", "b.xml");
    const std::string lines = RunTool({"diff", "a.xml", "b.xml"}).out;
    EXPECT_EQ(Succeeds({"apply", "c.xml", "changes.json", "--dry-run"}), lines);
    EXPECT_EQ(ReadBytes("c.xml"), Wide(Settings(own + kBefore)));
    EXPECT_EQ(Succeeds({"apply", "c.xml", "changes.json", "--backup"}), "");
    EXPECT_EQ(ReadBytes("c.xml.bak"), Wide(Settings(own + kBefore)));
    EXPECT_EQ(Succeeds({"get", "c.xml", "Own", "o"}), "kept\n");
    Succeeds({"delete", "c.xml", "Own"});
    EXPECT_EQ(RunTool({"diff", "c.xml", "b.xml"}).out, "");
}

TEST_F(Apply, MakesAllChangesOrNone) {
    const std::string bytes = Narrow(Settings(kBefore));
    WriteBytes("a.xml", bytes);
    const std::string first = R"([{"section": "A", "entry": "k", "value": "2"},)";
    const struct {
        std::string change;
        int code;
        std::string message;
    } cases[] = {
        {R"({"change": "removed", "section": "A", "entry": "none"}])", 1,
         "a.xml: change 2: A/none: there is no"},
        {R"({"change": "removed", "section": "None", "entry": "k"}])", 1, "a.xml: change 2: None/k: "},
        {R"({"change": "removed", "section": "A", "entry": "gone", "before": "y"}])", 1,
         "a.xml: change 2: A/gone: found \"x\", expected \"y\"; nothing was changed\n"},
        {R"({"change": "changed", "section": "A", "entry": "g", "field": "value", "before": "1", "after": "2"}])",
         1, "a.xml: change 2: A/g: found \"1.5\", expected \"1\"; nothing was changed\n"},
        {R"({"change": "changed", "section": "A", "entry": "g", "field": "ui.minimum", "after": "2"}])", 4,
         "the library cannot write the field \"ui.minimum\"; nothing was changed\n"},
        {R"({"change": "added", "section": "A", "entry": "g", "type": "long"}])", 1,
         "a.xml: change 2: A/g: "},
        {R"({"change": "added", "section": "A", "entry": "n", "type": "complex"}])", 2,
         "a.xml: change 2: A/n: unknown type complex (expected short, long, "},
        {R"({"section": "A", "entry": "g", "value": "\u00fc"}])", 4, "a.xml: change 2: A/g: "},
        {R"({"section": "A", "entry": "g", "value": " x"}])", 4, "a.xml: change 2: A/g: "},
        {R"({"section": "A", "entry": "g", "value": {}}])", 2, "\"value\" is neither"},
        {R"({"section": "A", "entry": "g", "value": [1, 256]}])", 2, "numbers from 0 to 255"},
        {R"({"section": "A", "entry": "k", "occurrence": 2, "value": 1}])", 4,
         "change 2: A/k#2: only the first"},
        {R"({"section": "A", "entry": "g", "valeu": 1}])", 3,
         "changes.json: change 2: unknown member \"valeu\""},
        {R"({"section": "A", "entry": "g"}])", 3, "changes.json: change 2: \"value\" is missing"},
        {R"(1])", 3, "changes.json: change 2: expected an object"},
        {R"({"section": "A"])", 3, "changes.json: not JSON: "},
    };
    for (const auto& test : cases) {
        WriteBytes("changes.json", first + test.change);
        Fails(test.code, {"apply", "a.xml", "changes.json"}, test.message);
        EXPECT_EQ(ReadBytes("a.xml"), bytes) << test.change;
    }
    WriteBytes("changes.json", "{}");
    Fails(3, {"apply", "a.xml", "changes.json"}, "changes.json: expected a list of changes");
    Fails(4, {"apply", "a.xml", "none.json"}, "none.json: cannot open the file");
}

TEST_F(Apply, WritesTypedValuesAndAddsWhatIsMissing) {
    WriteBytes("a.xml", Narrow(Settings(kBefore)));
    WriteBytes("changes.json", R"([{"section": "A", "entry": "k", "value": "text"},
                                   {"section": "A", "entry": "g", "before": "1.5", "value": 0.25},
                                   {"section": "New", "entry": "n", "value": -7},
                                   {"section": "New", "entry": "b", "value": true},
                                   {"section": "New", "entry": "d", "value": [0, 255]}])");
    Succeeds({"apply", "a.xml", "changes.json"});
    EXPECT_EQ(Succeeds({"get", "a.xml", "A", "k"}), "text\n");
    EXPECT_EQ(Succeeds({"entries", "a.xml", "--section", "New"}),
              "n\tlong\t-7\nb\tbool\t1\nd\tstring\t00FF\n");
    EXPECT_EQ(Succeeds({"get", "a.xml", "A", "g"}), "0.25\n");
}

TEST_F(Apply, WorksOnTableDocuments) {
    WriteBytes("a.xml", Wide(TableDocument(Var("k", "1") + Var("gone", "2"))));
    WriteBytes("b.xml", Wide(TableDocument(Var("k", "3") + Var("new", "4"))));
    WriteDifferences("a.xml", "b.xml");
    Succeeds({"apply", "a.xml", "changes.json"});
    EXPECT_EQ(Succeeds({"diff", "a.xml", "b.xml"}), "");
    WriteBytes("changes.json", R"([{"entry": "k", "value": 5}])");
    Succeeds({"apply", "a.xml", "changes.json"});
    EXPECT_EQ(Succeeds({"entry", "get", "a.xml", "k"}), "5\n");
    WriteBytes("changes.json", R"([{"section": "Other", "entry": "k", "value": 5}])");
    Fails(1, {"apply", "a.xml", "changes.json"}, "change 1: Other/k: the table has another name");
}

TEST_F(Apply, WritesNothingIfNothingChanges) {
    const std::string bytes =
        Narrow(Settings("<Table name=\"S\"   eud=\"true\">" + Var("k", "1") + "</Table>"));
    WriteBytes("a.xml", bytes);
    WriteBytes("changes.json", R"([{"section": "S", "entry": "k", "value": "1"}])");
    Succeeds({"apply", "a.xml", "changes.json", "--backup"});
    EXPECT_EQ(ReadBytes("a.xml"), bytes);
    EXPECT_FALSE(Exists("a.xml.bak"));
}

TEST_F(Apply, SaysThatEudIsRemoved) {
    WriteBytes("a.xml",
               Narrow(Settings("<Table name=\"S\" eud=\"true\"><Var name=\"k\" type=\"long\" eud=\"true\">"
                               "<Value>1</Value></Var></Table>")));
    WriteBytes("b.xml", ReadBytes("a.xml"));
    WriteBytes("changes.json", R"([{"section": "S", "entry": "k", "value": "2"}])");
    const Result result = RunTool({"apply", "a.xml", "changes.json"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err,
              "mox-xml: a.xml: note: saving removed the attribute \"eud\" from 2 sections and entries\n");
    EXPECT_EQ(
        RunTool({"diff", "b.xml", "a.xml", "--eud"}).out,
        "~ S eud: \"true\" -> \"false\"\n~ S/k value: \"1\" -> \"2\"\n~ S/k eud: \"true\" -> \"false\"\n");
    EXPECT_EQ(RunTool({"diff", "b.xml", "a.xml"}).out, "~ S/k value: \"1\" -> \"2\"\n");
}

// A value of an added entry that looks like nothing is a value all the same.
TEST_F(Apply, AddsValuesThatLookLikeNothing) {
    WriteBytes("a.xml", Narrow(Settings("<Table name=\"S\"/>")));
    WriteBytes(
        "b.xml",
        Narrow(Settings("<Table name=\"S\"><Var name=\"zero\" type=\"long\" id=\"5\"><Value>0</Value></Var>"
                        "<Var name=\"no\" type=\"string\"><Value>false</Value><UI control=\"num\"/></Var>"
                        "<Var name=\"bytes\" type=\"byte\" array=\"array\" id=\"6\"><Value>0000</Value></Var>"
                        "</Table>")));
    WriteDifferences("a.xml", "b.xml");
    Succeeds({"apply", "a.xml", "changes.json"});
    EXPECT_EQ(RunTool({"diff", "a.xml", "b.xml"}).out, "");
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "zero"}), "0\n");
    WriteBytes("changes.json", R"([{"change": "added", "section": "S", "entry": "own", "type": "long",
                                    "after": "77", "fields": {"id": "3"}}])");
    Succeeds({"apply", "a.xml", "changes.json"});
    EXPECT_EQ(Succeeds({"get", "a.xml", "S", "own"}), "77\n");
}

TEST_F(Apply, ChangesEudInTableDocuments) {
    WriteBytes("a.xml", Wide(TableDocument(Var("k", "1"))));
    WriteBytes(
        "changes.json",
        R"([{"change": "changed", "entry": "k", "field": "eud", "before": "false", "after": "true"}])");
    EXPECT_EQ(Succeeds({"apply", "a.xml", "changes.json", "--dry-run"}),
              "~ Tools eud: \"false\" -> \"true\"\n~ Tools/k eud: \"false\" -> \"true\"\n");
    Succeeds({"apply", "a.xml", "changes.json"});
    EXPECT_NE(ReadBytes("a.xml").find(Wide("eud=\"true\"").substr(0, 20)), std::string::npos);
    WriteBytes(
        "changes.json",
        R"([{"change": "changed", "entry": "k", "field": "eud", "before": "true", "after": "false"}])");
    const Result result = RunTool({"apply", "a.xml", "changes.json"});
    EXPECT_EQ(result.code, 0) << result;
    EXPECT_EQ(result.err, "");
}

TEST_F(Apply, RemovesNoSectionWithEntriesThatTheListDoesNotHave) {
    WriteBytes("a.xml",
               Narrow(Settings("<Table name=\"Old\">" + Var("o", "1") + Var("o", "2") + "</Table>")));
    WriteBytes("b.xml", Narrow(Settings("")));
    WriteDifferences("a.xml", "b.xml");
    const std::string changed = Narrow(Settings("<Table name=\"Old\">" + Var("o", "9") + "</Table>"));
    WriteBytes("c.xml", changed);
    Fails(1, {"apply", "c.xml", "changes.json"}, "Old/o: found \"9\", expected \"1\"; nothing was changed\n");
    EXPECT_EQ(ReadBytes("c.xml"), changed);
    const std::string more =
        Narrow(Settings("<Table name=\"Old\">" + Var("o", "1") + Var("o", "2") + Var("p", "3") + "</Table>"));
    WriteBytes("c.xml", more);
    Fails(1, {"apply", "c.xml", "changes.json"},
          "section Old has the entry p, which the changes do not remove; nothing was changed\n");
    EXPECT_EQ(ReadBytes("c.xml"), more);
    Succeeds({"apply", "a.xml", "changes.json"});
    EXPECT_EQ(Succeeds({"sections", "a.xml"}), "");
}

TEST_F(Apply, RefusesFieldsOfSectionsThatDoNotFit) {
    const std::string bytes = Narrow(Settings("<Table name=\"S\"/>"));
    WriteBytes("a.xml", bytes);
    const struct {
        std::string change;
        std::string message;
    } cases[] = {
        {R"([{"change": "added", "section": "N", "fields": {"type": "12345"}}])",
         "\"12345\" is not a hexadecimal 16-bit number"},
        {R"([{"change": "changed", "section": "S", "field": "type", "after": "10000"}])",
         "\"10000\" is not a hexadecimal 16-bit number"},
        {R"([{"change": "added", "section": "N", "fields": {"editable": "yes"}}])",
         "\"yes\" is neither true nor false"},
    };
    for (const auto& test : cases) {
        WriteBytes("changes.json", test.change);
        Fails(2, {"apply", "a.xml", "changes.json"}, test.message);
        EXPECT_EQ(ReadBytes("a.xml"), bytes);
    }
}

TEST_F(Apply, RefusesChangesThatAreNestedTooDeeply) {
    const std::string before = Narrow(Settings(""));
    WriteBytes("a.xml", before);
    const std::string left(1000000, '[');
    const std::string right(1000000, ']');
    for (const std::string& json :
         {left, left + right, R"([{"section": "S", "entry": "k", "value": )" + left + right + "}]"}) {
        WriteBytes("changes.json", json);
        Fails(3, {"apply", "a.xml", "changes.json"}, "changes.json: the JSON is nested too deeply");
    }
    EXPECT_EQ(ReadBytes("a.xml"), before);
}

#if !defined(_WIN32)

TEST_F(Apply, ReadsChangesFromStdin) {
    WriteBytes("a.xml", Narrow(Settings(kBefore)));
    WriteBytes("b.xml", Narrow(Settings(kBefore)));
    Succeeds({"set", "b.xml", "A", "k", "2"});
    EXPECT_EQ(std::system("\"$MOX_TOOL\" diff a.xml b.xml --json | \"$MOX_TOOL\" apply a.xml -"), 0);
    EXPECT_EQ(Succeeds({"diff", "a.xml", "b.xml"}), "");
    Fails(2, {"apply", "-", "-"}, "\"-\" is stdin, which cannot be changed");
}

#endif

TEST_F(Apply, GivesNewEntriesTheTypeThatTheirNumberFits) {
    WriteBytes("a.xml", Narrow(Settings("")));
    WriteBytes("changes.json", R"([{"section": "S", "entry": "a", "value": -2147483648},
                                   {"section": "S", "entry": "b", "value": 2147483647},
                                   {"section": "S", "entry": "c", "value": 2147483648},
                                   {"section": "S", "entry": "d", "value": 4294967295},
                                   {"section": "S", "entry": "e", "value": -2147483649},
                                   {"section": "S", "entry": "f", "value": 4294967296}])");
    Succeeds({"apply", "a.xml", "changes.json"});
    EXPECT_EQ(Succeeds({"entries", "a.xml", "--section", "S"}),
              "a\tlong\t-2147483648\nb\tlong\t2147483647\nc\tulong\t2147483648\nd\tulong\t4294967295\n"
              "e\tstring\t-2147483649\nf\tstring\t4294967296\n");
}

}  // namespace
}  // namespace tool
