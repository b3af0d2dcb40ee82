// What Profile::open and Table::open accept, and what they say about what they refuse.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "tests/front/front_support.h"

namespace {

using front_tests::ScratchFolder;
using mox::Encoding;
using mox::Form;
using mox::OpenOptions;
using mox::Problem;
using mox::Profile;
using mox::Reason;
using mox::Table;

const std::string kSettings =
    host::Lines({host::kDeclaration, host::kRootStart, "\t<Table name=\"S\">",
                 "\t\t<Var name=\"K\" type=\"string\" array=\"\">", "\t\t\t<Value>1</Value>", "\t\t</Var>",
                 "\t</Table>", host::kRootEnd});
const std::string kTable = host::Lines({"<Table name=\"T\">", "</Table>"});
const std::string kDrawing = "<svg xmlns=\"http://www.w3.org/2000/svg\"></svg>\n";

OpenOptions Any() {
    OpenOptions options;
    options.anyDocument = true;
    return options;
}

Problem ProblemOf(const std::string& bytes) {
    Problem problem;
    EXPECT_FALSE(Profile::parse(bytes, &problem).has_value());
    return problem;
}

class FrontOpening : public testing::Test {
  protected:
    std::u16string Written(const std::string& bytes) const {
        host::WriteBytes(folder.Of("s.xml"), bytes);
        return folder.Of("s.xml").u16string();
    }

    const ScratchFolder folder;
};

TEST_F(FrontOpening, AMissingFileIsNotFound) {
    Problem problem;
    EXPECT_FALSE(Profile::open(folder.Of("none.xml"), &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::NotFound);
    EXPECT_EQ(problem.file, mox::toUtf8(folder.Of("none.xml").u16string()));
    EXPECT_EQ(problem.line, 0U);
    EXPECT_FALSE(Table::open(folder.Of("none.xml"), "", &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::NotFound);
}

TEST_F(FrontOpening, AFolderIsNoRegularFile) {
    Problem problem;
    EXPECT_FALSE(Profile::open(folder.Of(""), &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::NotRegularFile);
}

TEST_F(FrontOpening, ASyntaxErrorHasItsPlaceAndWhatWasExpected) {
    const std::u16string path = Written("<Settings>\n  <Table name='S'>\n");
    Problem problem;
    EXPECT_FALSE(Profile::open(path, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::Syntax);
    EXPECT_EQ(problem.line, 2U);
    EXPECT_EQ(problem.column, 15U);
    EXPECT_EQ(problem.found, "\"'\"");
    EXPECT_EQ(problem.expected,
              "a double quote (\") before the value of \"name\" (single quotes are not supported)");
    EXPECT_EQ(problem.toString(), mox::toUtf8(path) + ":2:15: " + problem.message);
}

TEST_F(FrontOpening, SuccessResetsTheProblem) {
    Problem problem;
    problem.reason = Reason::Busy;
    problem.message = "old";
    EXPECT_TRUE(Profile::open(Written(kSettings), &problem).has_value());
    EXPECT_FALSE(problem);
    EXPECT_EQ(problem.message, "");
}

TEST_F(FrontOpening, OtherDocumentsAreNotOpenedAsEmptyProfiles) {
    EXPECT_EQ(ProblemOf(kDrawing).reason, Reason::WrongKind);
    EXPECT_EQ(ProblemOf(kDrawing).message,
              "found a document without settings or a table, expected a settings document");
    EXPECT_EQ(ProblemOf(kTable).message, "found a table document, expected a settings document");
    EXPECT_EQ(ProblemOf("").reason, Reason::WrongKind);
    Problem problem;
    EXPECT_FALSE(Table::parse(kSettings, "", &problem).has_value());
    EXPECT_EQ(problem.message, "found a settings document, expected a table document");
}

TEST_F(FrontOpening, OtherEncodingsAreNamed) {
    EXPECT_EQ(ProblemOf("\xEF\xBB\xBF" + kSettings).reason, Reason::Encoding);
    const std::string wide = host::WideFile(kSettings);
    std::string swapped = wide;
    for (std::size_t i = 0; i + 1 < swapped.size(); i += 2)
        std::swap(swapped[i], swapped[i + 1]);
    EXPECT_EQ(ProblemOf(swapped).reason, Reason::Encoding);
    EXPECT_EQ(ProblemOf("\xFF\xFE" + wide).reason, Reason::Encoding);
    EXPECT_EQ(ProblemOf(std::string(100, '\0')).reason, Reason::Encoding);
    EXPECT_EQ(ProblemOf(host::NarrowFile(kSettings) + "<more/>").reason, Reason::Encoding);
}

TEST_F(FrontOpening, AnyDocumentIsOpenedIfTheProgramSaysSo) {
    for (const std::string& bytes : {kDrawing, kTable, std::string(), std::string(100, '\0'),
                                     host::NarrowFile(kSettings) + "<more/>", host::WideFile(kDrawing)}) {
        Problem problem;
        const auto profile = Profile::parse(bytes, Any(), &problem);
        ASSERT_TRUE(profile.has_value()) << bytes;
        EXPECT_FALSE(problem);
    }
    EXPECT_FALSE(Profile::parse("<a", Any()).has_value());
}

TEST_F(FrontOpening, AnotherDocumentKeepsItsContentWhenSettingsAreAddedToIt) {
    auto profile = Profile::parse(kDrawing, Any());
    ASSERT_TRUE(profile->setString("S", "K", "1"));
    const std::string saved = *profile->toBytes(Form::Narrow);
    EXPECT_EQ(saved.rfind("<svg xmlns=\"http://www.w3.org/2000/svg\"/>\n<Settings ", 0), 0U) << saved;
}

TEST_F(FrontOpening, ANewTableWithAnInvalidNameIsEmpty) {
    const char* const null = nullptr;
    Table invalid[] = {Table::create("\xFF"), Table::create(null)};
    for (Table& table : invalid) {
        EXPECT_FALSE(static_cast<bool>(table));
        EXPECT_FALSE(table.add({"K", "1"}));
        EXPECT_FALSE(table.toBytes().has_value());
    }
    EXPECT_TRUE(Table::create(""));
}

TEST_F(FrontOpening, ANewTableHasANameThatFilesKeep) {
    struct Case {
        const char* name;
        Reason reason;
        const char* message;
    };
    for (const Case& wrong :
         {Case{"\xFF", Reason::InvalidText, "the name is not UTF-8, contains a zero, or is null"},
          Case{
              "a\x01z", Reason::NotKept,
              "the name contains the control character U+0001, with which other XML programs cannot read the "
              "file"},
          Case{"\xED\xA0\x80", Reason::NotKept,
               "the name contains half of a surrogate pair, U+D800, with which other XML programs cannot "
               "read the "
               "file"}}) {
        Problem problem;
        EXPECT_FALSE(Table::create(wrong.name, {}, &problem));
        EXPECT_EQ(problem.reason, wrong.reason);
        EXPECT_EQ(problem.message, wrong.message);
        EXPECT_FALSE(Table::create(wrong.name));
        EXPECT_TRUE(Table::create("\xC3\xA4 <&>\t", {}, &problem));
        EXPECT_EQ(problem.reason, Reason::None);
    }
}

TEST_F(FrontOpening, ATableDocumentIsWideAndHasTheName) {
    Problem problem;
    EXPECT_FALSE(Table::open(Written(kTable), "T", &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::Encoding);
    EXPECT_EQ(problem.message, "found a narrow file, expected a wide one: table documents are wide");
    const std::u16string wide = Written(host::WideFile(kTable));
    EXPECT_TRUE(Table::open(wide, "T", &problem).has_value());
    EXPECT_FALSE(problem);
    EXPECT_FALSE(Table::open(wide, "Other", &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::WrongKind);
    EXPECT_EQ(problem.message, "the table has another name");
}

TEST_F(FrontOpening, BytesInMemoryOpenInBothForms) {
    const std::string text = host::Lines({host::kDeclaration, host::kRootStart, "<Table name=\"S\">",
                                          "<Var name=\"K\" type=\"string\"><Value>\xC3\xA4</Value></Var>",
                                          "</Table>", host::kRootEnd});
    const auto wide = Profile::import(text, Encoding::Utf8);
    ASSERT_TRUE(wide.has_value());
    EXPECT_EQ(wide->getString("S", "K"), "\xC3\xA4");
    EXPECT_EQ(wide->form(), Form::Wide);
    const auto again = Profile::parse(*wide->toBytes(Form::Wide));
    EXPECT_EQ(again->getString("S", "K"), "\xC3\xA4");
    EXPECT_EQ(Profile::import(*wide->toUtf8(), Encoding::Utf8)->getString("S", "K"), "\xC3\xA4");
    const auto narrow = Profile::parse(kSettings);
    EXPECT_EQ(narrow->form(), Form::Narrow);
    EXPECT_EQ(narrow->toBytes(Form::Narrow), host::NarrowFile(kSettings));
    EXPECT_EQ(narrow->toBytes(Form::Wide), host::WideFile(kSettings));
    EXPECT_EQ(Profile::parse(host::WideFile(kSettings))->getString("S", "K"), "1");
}

TEST_F(FrontOpening, ATableIsReadFromAndWrittenToUtf8) {
    const std::string text = host::Lines({"<Table name=\"T\">", "\t<Var name=\"K\" type=\"string\">",
                                          "\t\t<Value>\xE4\xB8\xAD</Value>", "\t</Var>", "</Table>"});
    auto table = Table::import("\xEF\xBB\xBF" + text, Encoding::Utf8, "T");
    ASSERT_TRUE(table.has_value());
    EXPECT_EQ(table->find("K")->value, "\xE4\xB8\xAD");
    EXPECT_EQ(table->toUtf8(), text);
    Problem problem;
    EXPECT_FALSE(Table::import("<Table name=\"\xFF\"/>", Encoding::Utf8, "", &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::Encoding);
}

TEST_F(FrontOpening, ANarrowFileWithOtherBytesKeepsThem) {
    std::string bytes = kSettings;
    bytes.replace(bytes.find(">1<"), 3, ">\xE4\x80\xFF<");
    const auto profile = Profile::parse(bytes);
    ASSERT_TRUE(profile.has_value());
    EXPECT_EQ(profile->toBytes(Form::Narrow), host::NarrowFile(bytes));
}

TEST_F(FrontOpening, AnEntryWithTwoValuesIsReadButNotWritten) {
    const std::string two =
        "<Var name=\"K\" type=\"string\"><Value>1</Value><Value>2</Value></Var><Var name=\"L\" "
        "type=\"string\"/>";
    auto profile = front_tests::ProfileWith(two);
    const std::string before = *profile.toBytes(Form::Narrow);
    EXPECT_EQ(profile.getString("S", "K"), "2");
    Problem problem;
    EXPECT_FALSE(profile.setString("S", "K", "3", &problem));
    EXPECT_EQ(problem.reason, Reason::Ambiguous);
    EXPECT_FALSE(profile.set("S", "K", 3, &problem));
    EXPECT_FALSE(profile.findSection("S")->setValue("K", "3", mox::Eud::DoNotSet, &problem));
    EXPECT_EQ(problem.reason, Reason::Ambiguous);
    EXPECT_EQ(*profile.toBytes(Form::Narrow), before);
    EXPECT_TRUE(profile.setString("S", "L", "3", &problem));

    auto table = front_tests::TableWith(two);
    EXPECT_FALSE(table.setValue("K", "3", mox::Eud::DoNotSet, &problem));
    EXPECT_EQ(problem.reason, Reason::Ambiguous);

    EXPECT_TRUE(profile.remove("S", "K"));
    EXPECT_TRUE(profile.setString("S", "K", "3"));
    EXPECT_EQ(profile.getString("S", "K"), "3");
}

TEST_F(FrontOpening, ARemovalFromOneOfTwoSectionsOfANameDoesNotFreeTheOther) {
    const std::string odd = "<Var name=\"K\" type=\"string\"><Value>1</Value><Value>2</Value></Var>";
    const std::string plain = "<Var name=\"K\" type=\"string\"><Value>1</Value></Var>";
    for (const bool isFirstOdd : {true, false}) {
        auto profile = front_tests::ProfileWith((isFirstOdd ? odd : plain) + "</Table><Table name=\"S\">" +
                                                (isFirstOdd ? plain : odd));
        std::vector<mox::Section> sections = profile.sections();
        ASSERT_EQ(sections.size(), 2U);
        EXPECT_TRUE(sections[isFirstOdd ? 1 : 0].clear());
        Problem problem;
        EXPECT_FALSE(sections[isFirstOdd ? 0 : 1].setValue("K", "3", mox::Eud::DoNotSet, &problem));
        EXPECT_EQ(problem.reason, Reason::Ambiguous);
    }
}

// A save writes the children on lines of their own, and reading adds what is before them to the text.
TEST_F(FrontOpening, AValueWithChildrenIsReadButNotWritten) {
    for (const char* const value :
         {"<Value>1<!-- one --></Value>", "<Value>1<b/></Value>", "<Value>1<b/>2</Value>"}) {
        auto profile =
            front_tests::ProfileWith(std::string("<Var name=\"K\" type=\"string\">") + value + "</Var>");
        Problem problem;
        EXPECT_FALSE(profile.setString("S", "K", "3", &problem)) << value;
        EXPECT_EQ(problem.reason, Reason::Ambiguous);
    }
}

}  // namespace
