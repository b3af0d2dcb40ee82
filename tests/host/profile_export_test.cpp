// Exports: saves in modes other than 0 hold what the records of the entries carry and nothing else.
#include "tests/host/host_support.h"

namespace host {
namespace {

constexpr std::string_view kRich =
    "<!-- about --><Table eud=\"true\" name=\"S\" extra=\"1\" editable=\"true\" type=\"1f\" first_id=\"100\">"
    "<!-- c --><Var eud=\"true\" name=\"a\" id=\"7\" type=\"long\" extra=\"1\"><Value>5</Value><Extra/>"
    "<UI control=\"num\" access=\"hidden\" flags=\"00FF\" prov_index=\"3\" prov_owner=\"dwg\" name=\"A\""
    " regen=\"r\" minVal=\"1\" maxVal=\"9\"><Comment>note</Comment><Value>4</Value></UI></Var>"
    "<Var name=\"b\" type=\"string\"><Value>text</Value></Var></Table>";

TEST(ProfileExport, ModeOneKeepsPresentationDataOnly) {
    EXPECT_EQ(SaveBytes(LoadSections(kRich), 1),
              SettingsFile({
                  "\t<Table name=\"S\" first_id=\"100\" type=\"001F\" editable=\"true\">",
                  "\t\t<Var>",
                  "\t\t\t<UI control=\"num\" prov_index=\"3\" prov_owner=\"dwg\" name=\"A\">",
                  "\t\t\t\t<Comment>note</Comment>",
                  "\t\t\t</UI>",
                  "\t\t</Var>",
                  "\t\t<Var>",
                  "\t\t\t<UI control=\"text\"/>",
                  "\t\t</Var>",
                  "\t</Table>",
              }));
}

TEST(ProfileExport, ModeTwoKeepsValuesOnly) {
    EXPECT_EQ(SaveBytes(LoadSections(kRich), 2),
              SettingsFile({
                  "\t<Table name=\"S\" first_id=\"100\" type=\"001F\" editable=\"true\">",
                  "\t\t<Var name=\"a\" id=\"7\" type=\"long\" array=\"\">",
                  "\t\t\t<Value>5</Value>",
                  "\t\t</Var>",
                  "\t\t<Var name=\"b\" type=\"string\" array=\"\">",
                  "\t\t\t<Value>text</Value>",
                  "\t\t</Var>",
                  "\t</Table>",
              }));
}

TEST(ProfileExport, OtherModesKeepOnlyThatThereIsAnEntry) {
    for (const std::uint32_t mode : {3U, 256U, 0xFFFFFFFFU}) {
        EXPECT_EQ(SaveBytes(LoadSections(kRich), mode),
                  SettingsFile({
                      "\t<Table name=\"S\" first_id=\"100\" type=\"001F\" editable=\"true\">",
                      "\t\t<Var/>",
                      "\t\t<Var/>",
                      "\t</Table>",
                  }));
    }
}

TEST(ProfileExport, ProfileItselfStaysAsItIs) {
    const Profile profile = LoadSections("<Table name=\"S\"><Var name=\"k\" type=\"long\"/><!--c--></Table>");
    for (const std::uint32_t mode : {1U, 2U, 3U})
        SaveBytes(profile, mode);
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"S\">",
                                      "\t\t<Var name=\"k\" type=\"long\"/>",
                                      "\t\t<!--c-->",
                                      "\t</Table>",
                                  }));
}

TEST(ProfileExport, RootAndDeclarationAreMadeAnew) {
    const Profile profile = LoadText(
        "<!--top-->\n<Other/>\n<Settings a=\"1\" xsi:noNamespaceSchemaLocation=\"x\">text<Table "
        "name=\"S\"/></Settings>");
    for (const std::uint32_t mode : {1U, 2U, 3U}) {
        EXPECT_EQ(SaveBytes(profile, mode), SettingsFile({"\t<Table name=\"S\"/>"}));
    }
}

TEST(ProfileExport, EmptyProfileIsExportedAsAnEmptyDocument) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    for (const std::uint32_t mode : {1U, 2U, 3U})
        EXPECT_EQ(SaveBytes(profile, mode), EmptySettingsFile());
}

TEST(ProfileExport, SectionsOfOneNameBecomeOneWithTheNumbersOfTheLast) {
    const Profile profile = LoadSections(
        "<Table name=\"S\" first_id=\"10\" type=\"000A\" editable=\"true\"><Var name=\"a\" "
        "type=\"long\"/></Table>"
        "<Table name=\"T\"/>"
        "<Table name=\"S\" first_id=\"20\" editable=\"false\"><Var name=\"a\" type=\"bool\"/></Table>");
    EXPECT_EQ(SaveBytes(profile, 2),
              SettingsFile({
                  "\t<Table name=\"S\" first_id=\"20\" type=\"0000\" editable=\"true\">",
                  "\t\t<Var name=\"a\" type=\"long\" array=\"\">",
                  "\t\t\t<Value/>",
                  "\t\t</Var>",
                  "\t\t<Var name=\"a\" type=\"bool\" array=\"\">",
                  "\t\t\t<Value/>",
                  "\t\t</Var>",
                  "\t</Table>",
                  "\t<Table name=\"T\"/>",
              }));
}

TEST(ProfileExport, SectionMetAgainGainsTheAttributesThatItLacked) {
    const Profile profile =
        LoadSections("<Table name=\"S\"/><Table name=\"S\" first_id=\"20\" type=\"14\" editable=\"true\"/>");
    EXPECT_EQ(SaveBytes(profile, 1),
              SettingsFile({"\t<Table name=\"S\" editable=\"false\" first_id=\"20\" type=\"0014\"/>"}));
}

TEST(ProfileExport, ElementsOfAnyNameBecomeSections) {
    const Profile profile = LoadSections(
        "<Group name=\"G\" editable=\"true\"><x name=\"k\" type=\"long\"><Value>1</Value></x></Group>"
        "<Group><y type=\"long\"/></Group><Other first_id=\"4\"/>");
    EXPECT_EQ(SaveBytes(profile, 2),
              SettingsFile({
                  "\t<Table name=\"G\" editable=\"true\">",
                  "\t\t<Var name=\"k\" type=\"long\" array=\"\">",
                  "\t\t\t<Value>1</Value>",
                  "\t\t</Var>",
                  "\t</Table>",
                  "\t<Table name=\"\" editable=\"false\" first_id=\"4\" type=\"0000\">",
                  "\t\t<Var name=\"\" type=\"long\" array=\"\">",
                  "\t\t\t<Value/>",
                  "\t\t</Var>",
                  "\t</Table>",
              }));
}

TEST(ProfileExport, FirstEntryThatCannotBeReadEndsItsSection) {
    const Profile profile = LoadSections(
        "<Table name=\"S\"><Var name=\"a\" type=\"long\"/><Var name=\"b\" type=\"float\"/>"
        "<Var name=\"c\" type=\"long\"/></Table><Table name=\"T\"><Var name=\"d\" type=\"long\"/></Table>");
    EXPECT_EQ(SaveBytes(profile, 2), SettingsFile({
                                         "\t<Table name=\"S\">",
                                         "\t\t<Var name=\"a\" type=\"long\" array=\"\">",
                                         "\t\t\t<Value/>",
                                         "\t\t</Var>",
                                         "\t</Table>",
                                         "\t<Table name=\"T\">",
                                         "\t\t<Var name=\"d\" type=\"long\" array=\"\">",
                                         "\t\t\t<Value/>",
                                         "\t\t</Var>",
                                         "\t</Table>",
                                     }));
    for (const std::uint32_t mode : {1U, 3U}) {
        const std::string bytes = SaveBytes(profile, mode);
        EXPECT_NE(bytes.find("<Table name=\"T\">\n\t\t<Var"), std::string::npos);
        EXPECT_EQ(bytes.find("<Var"), bytes.rfind("<Var", bytes.find("</Table>")));
    }
}

TEST(ProfileExport, UiValueStandsInForAnEmptyValueInModeTwo) {
    const Profile profile = LoadEntries(
        "<Var name=\"a\" type=\"long\"><UI control=\"num\"><Value>7</Value></UI></Var>"
        "<Var name=\"b\" type=\"long\"><Value>1</Value><UI control=\"num\"><Value>7</Value></UI></Var>");
    EXPECT_EQ(SaveBytes(profile, 2), SectionFile({
                                         "\t\t<Var name=\"a\" type=\"long\" array=\"\">",
                                         "\t\t\t<Value>7</Value>",
                                         "\t\t</Var>",
                                         "\t\t<Var name=\"b\" type=\"long\" array=\"\">",
                                         "\t\t\t<Value>1</Value>",
                                         "\t\t</Var>",
                                     }));
}

TEST(ProfileExport, ModeOneNeverHoldsTheUiValue) {
    const Profile profile = LoadEntries(
        "<Var name=\"a\" type=\"long\"><UI control=\"num\"><Value loc=\"true\">7</Value></UI></Var>");
    EXPECT_EQ(SaveBytes(profile, 1), SectionFile({
                                         "\t\t<Var>",
                                         "\t\t\t<UI control=\"num\"/>",
                                         "\t\t</Var>",
                                     }));
}

TEST(ProfileExport, LargestFirstIdComesBackSmaller) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 0, 4294967295U, 0, nullptr)));
    EXPECT_EQ(SaveBytes(profile), SettingsFile({"\t<Table name=\"S\" first_id=\"4294967295\"/>"}));
    EXPECT_EQ(SaveBytes(profile, 2), SettingsFile({"\t<Table name=\"S\" first_id=\"2147483647\"/>"}));
}

TEST(ProfileExport, ExportOfAnExportIsTheSame) {
    const std::string first = SaveBytes(LoadSections(kRich), 2);
    EXPECT_EQ(SaveBytes(LoadBytes(first, 0), 2), first);
    EXPECT_EQ(SaveBytes(LoadBytes(first, 0), 0), first);
}

}  // namespace
}  // namespace host
