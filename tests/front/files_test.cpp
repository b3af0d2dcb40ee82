// Opening and saving, in both forms.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "tests/front/front_support.h"

namespace {

using front_tests::Overwriting;
using front_tests::ScratchFolder;
using mox::Content;
using mox::Form;
using mox::Profile;
using mox::Table;

Profile Small() {
    Profile profile;
    EXPECT_TRUE(profile.setString("S", "K", "1"));
    return profile;
}

const std::string kSmall =
    host::Lines({host::kDeclaration, host::kRootStart, "\t<Table name=\"S\">",
                 "\t\t<Var name=\"K\" type=\"string\" array=\"\">", "\t\t\t<Value>1</Value>", "\t\t</Var>",
                 "\t</Table>", host::kRootEnd});

TEST(FrontFiles, ASaveWritesTheRequestedForm) {
    const ScratchFolder folder;
    const std::u16string path = folder.Of("s.xml").u16string();
    const Profile profile = Small();
    EXPECT_TRUE(profile.saveReplacing(path, Form::Narrow));
    EXPECT_EQ(host::ReadBytes(folder.Of("s.xml")), host::NarrowFile(kSmall));
    EXPECT_TRUE(profile.saveReplacing(path, Form::Wide));
    EXPECT_EQ(host::ReadBytes(folder.Of("s.xml")), host::WideFile(kSmall));
    EXPECT_TRUE(profile.saveReplacing(path, Form::Narrow));
    EXPECT_EQ(host::ReadBytes(folder.Of("s.xml")), host::NarrowFile(kSmall));
    EXPECT_TRUE(profile.saveReplacing(path, Form::Wide));
    EXPECT_EQ(host::ReadBytes(folder.Of("s.xml")), host::WideFile(kSmall));
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"s.xml"});
}

TEST(FrontFiles, ASaveToAnInvalidPathWritesNothing) {
    EXPECT_FALSE(Small().saveReplacing("a\xFF"));
    EXPECT_FALSE(Table::create("T").saveReplacing("a\xFF"));
    EXPECT_FALSE(std::filesystem::exists("a"));
}

TEST(FrontFiles, ANewProfileIsWideAndAParsedOneNarrow) {
    EXPECT_EQ(Profile().form(), Form::Wide);
    EXPECT_EQ(front_tests::SavedBytes(Small()), host::WideFile(kSmall));
    EXPECT_EQ(Profile::parse(kSmall)->form(), Form::Narrow);
    EXPECT_EQ(front_tests::SavedBytes(*Profile::parse(kSmall)), host::NarrowFile(kSmall));
}

TEST(FrontFiles, TheFormIsDetectedAndKept) {
    const ScratchFolder folder;
    for (const Form form : {Form::Narrow, Form::Wide}) {
        const std::u16string path = folder.Of("s.xml").u16string();
        ASSERT_TRUE(Small().saveReplacing(path, Overwriting(form)));
        auto profile = Profile::open(path);
        ASSERT_TRUE(profile.has_value());
        EXPECT_EQ(profile->form(), form);
        EXPECT_EQ(profile->getInt("S", "K"), 1);
        const std::string before = host::ReadBytes(folder.Of("s.xml"));
        EXPECT_TRUE(profile->saveReplacing(path));
        EXPECT_EQ(host::ReadBytes(folder.Of("s.xml")), before);
    }
}

TEST(FrontFiles, TheFormIsDetectedAfterLeadingWhiteSpace) {
    const ScratchFolder folder;
    for (const std::string& text : {host::NarrowFile("\n <a/>"), host::WideFile("\n <a/>")}) {
        host::WriteBytes(folder.Of("s.xml"), text);
        mox::OpenOptions any;
        any.anyDocument = true;
        const auto profile = Profile::open(folder.Of("s.xml"), any);
        ASSERT_TRUE(profile.has_value());
        EXPECT_EQ(profile->form(), text[1] == '\0' ? Form::Wide : Form::Narrow);
    }
}

TEST(FrontFiles, AGivenFormIsNotDetected) {
    const ScratchFolder folder;
    const std::u16string path = folder.Of("s.xml").u16string();
    ASSERT_TRUE(Small().saveReplacing(path, Overwriting(Form::Narrow)));
    EXPECT_TRUE(Profile::open(path, Form::Narrow).has_value());
    EXPECT_FALSE(Profile::open(path, Form::Wide).has_value());
    ASSERT_TRUE(Small().saveReplacing(path, Overwriting()));
    EXPECT_FALSE(Profile::open(path, Form::Narrow).has_value());
    EXPECT_TRUE(Profile::open(path, Form::Wide).has_value());
}

TEST(FrontFiles, OpeningFailsForMissingAndBrokenFiles) {
    const ScratchFolder folder;
    host::WriteBytes(folder.Of("bad.xml"), "<a");
    const char* const null = nullptr;
    for (const std::u16string& path : {folder.Of("none.xml").u16string(), folder.Of("bad.xml").u16string(),
                                       folder.Of("").u16string(), std::u16string(u"a\0b", 3)}) {
        EXPECT_FALSE(Profile::open(path).has_value());
        EXPECT_FALSE(Profile::open(path, Form::Narrow).has_value());
        EXPECT_FALSE(Table::open(path).has_value());
    }
    EXPECT_FALSE(Profile::open(null).has_value());
    EXPECT_FALSE(Profile::parse("<a").has_value());
    EXPECT_FALSE(Table::parse("<a").has_value());
}

TEST(FrontFiles, AnEmptyTextIsADocumentIfAnyWillDo) {
    mox::OpenOptions any;
    any.anyDocument = true;
    auto profile = Profile::parse("", any);
    ASSERT_TRUE(profile.has_value());
    EXPECT_TRUE(profile->setInt("S", "K", 1));
    EXPECT_EQ(profile->getInt("S", "K"), 1);
    EXPECT_TRUE(Profile::parse(std::string_view(), any).has_value());
    EXPECT_TRUE(Profile::parse(std::string("\0<a", 3), any).has_value());
    EXPECT_TRUE(Table::parse("", "T", any).has_value());
}

TEST(FrontFiles, ATextNeedsNoZeroAfterItsEnd) {
    const std::string text = kSmall + "<broken";
    EXPECT_EQ(Profile::parse(std::string_view(text).substr(0, kSmall.size()))->getInt("S", "K"), 1);
}

TEST(FrontFiles, TextBeyondAsciiIsKeptInAWideFileWithANonAsciiName) {
    const ScratchFolder folder;
    const std::string name =
        "Gr\xC3\xB6\xC3\x9F"
        "e \xF0\x9F\x98\x80.xml";
    const std::string path = mox::toUtf8(folder.Of("").u16string()) + name;
    Profile profile;
    ASSERT_TRUE(profile.setString("S", "K", u"\u00E4\u4E2D\U0001F600"));
    const std::u16string lone{0xD800, 'x'};
    profile.setLossy(true);
    ASSERT_TRUE(profile.setString("S", "L", lone));
    ASSERT_TRUE(profile.saveReplacing(path));
    EXPECT_EQ(Profile::open(path)->getString16("S", "K"), u"\u00E4\u4E2D\U0001F600");
    EXPECT_EQ(Profile::open(*mox::toUtf16(path))->getString16("S", "L"), lone);
}

TEST(FrontFiles, ExportsHoldValuesOrPresentationData) {
    Profile profile;
    ASSERT_TRUE(profile.makeSection("S").has_value());
    mox::Presentation ui;
    ui.control = mox::Control::Number;
    ASSERT_TRUE(profile.findSection("S")->add({"K", "1", mox::ValueType::Long, mox::Shape::Single, 7, ui}));
    const host::ScratchFile file;
    ASSERT_TRUE(profile.saveReplacing(file.Path().u16string(), Overwriting(Form::Narrow, Content::Values)));
    EXPECT_EQ(file.Bytes(), host::SectionFile({"\t\t<Var name=\"K\" id=\"7\" type=\"long\" array=\"\">",
                                               "\t\t\t<Value>1</Value>", "\t\t</Var>"}));
    ASSERT_TRUE(profile.saveReplacing(file.Path().u16string(), Overwriting(Form::Narrow, Content::Ui)));
    EXPECT_EQ(file.Bytes(), host::SectionFile({"\t\t<Var>", "\t\t\t<UI control=\"num\"/>", "\t\t</Var>"}));
}

TEST(FrontFiles, ATableIsCreatedSavedAndOpened) {
    const ScratchFolder folder;
    const std::u16string path = folder.Of("t.xml").u16string();
    mox::TableOptions options;
    options.editable = true;
    options.firstId = 1;
    options.type = 0x1F;
    Table table = Table::create("Tools", options);
    ASSERT_TRUE(table.add({"K", "1"}));
    ASSERT_TRUE(table.saveReplacing(path));
    const std::string expected = host::WideFile(host::Lines(
        {host::kDeclaration,
         "<Table xmlns:noNamespaceSchemaLocation=\"MXTable.xsd\" name=\"Tools\" first_id=\"1\" type=\"001F\" "
         "editable=\"true\">",
         "\t<Var name=\"K\" type=\"string\" array=\"\">", "\t\t<Value>1</Value>", "\t</Var>", "</Table>"}));
    EXPECT_EQ(host::ReadBytes(folder.Of("t.xml")), expected);
    EXPECT_TRUE(table.saveReplacing(path));
    EXPECT_EQ(host::ReadBytes(folder.Of("t.xml")), expected);
    EXPECT_EQ(Table::open(path)->find("K")->value, "1");
    EXPECT_EQ(Table::open(path, u"Tools")->find("K")->value, "1");
    EXPECT_FALSE(Table::open(path, "Others").has_value());
    EXPECT_FALSE(Table::open(path, "a\xFF").has_value());
    EXPECT_FALSE(Table::parse("<Table/>", "a\xFF").has_value());
}

TEST(FrontFiles, AMovedTableKeepsItsDocument) {
    Table first = Table::create("T");
    ASSERT_TRUE(first.add({"K", "1"}));
    Table second = std::move(first);
    EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): its state after the move is tested
    EXPECT_FALSE(first.add({"L", "1"}));
    EXPECT_FALSE(first.saveReplacing(host::ScratchFile().Path().u16string()));
    EXPECT_TRUE(first.list().empty());
    EXPECT_FALSE(first.clear());
    EXPECT_EQ(second.find("K")->value, "1");
    first = std::move(second);
    EXPECT_EQ(first.find("K")->value, "1");
}

}  // namespace
