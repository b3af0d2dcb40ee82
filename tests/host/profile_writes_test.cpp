// Writing keys: what a write makes of the section and the entry.
#include <climits>

#include "tests/host/host_support.h"

namespace host {
namespace {

TEST(ProfileWrites, MissingSectionAndKeyAreMade) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_EQ(xmlWriteProfileString(profile, "Display"_w, "theme"_w, "dark"_w), 1U);
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"Display\">",
                                      "\t\t<Var name=\"theme\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value>dark</Value>",
                                      "\t\t</Var>",
                                      "\t</Table>",
                                  }));
}

TEST(ProfileWrites, NewKeysFollowTheOthersInOrder) {
    const Profile profile = LoadEntries("<Var name=\"z\" type=\"long\"/><!--c--><Other/>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "b"_w, 1), 1U);
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "a"_w, 2), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"z\" type=\"long\"/>",
                                      "\t\t<!--c-->",
                                      "\t\t<Other/>",
                                      "\t\t<Var name=\"b\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value>1</Value>",
                                      "\t\t</Var>",
                                      "\t\t<Var name=\"a\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value>2</Value>",
                                      "\t\t</Var>",
                                  }));
}

TEST(ProfileWrites, EmptyTextMakesAnEmptyValue) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, ""_w), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"k\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value/>",
                                      "\t\t</Var>",
                                  }));
}

TEST(ProfileWrites, ExistingKeyChangesOnlyItsValue) {
    const Profile profile = LoadEntries(
        "<Var id=\"007\" name=\"k\" other=\"x\" type=\"double\" array=\"vector\" loc=\"true\">"
        "<!--c--><UI control=\"num\"><Value>3</Value></UI><Value loc=\"true\">1.5</Value><Extra/></Var>"
        "<Var name=\"l\" type=\"long\"><Value>1</Value></Var>");
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, "2.5"_w), 1U);
    EXPECT_EQ(SaveBytes(profile),
              SectionFile({
                  "\t\t<Var id=\"007\" name=\"k\" other=\"x\" type=\"double\" array=\"vector\" loc=\"true\">",
                  "\t\t\t<!--c-->",
                  "\t\t\t<UI control=\"num\">",
                  "\t\t\t\t<Value>3</Value>",
                  "\t\t\t</UI>",
                  "\t\t\t<Value loc=\"\">2.5</Value>",
                  "\t\t\t<Extra/>",
                  "\t\t</Var>",
                  "\t\t<Var name=\"l\" type=\"long\">",
                  "\t\t\t<Value>1</Value>",
                  "\t\t</Var>",
              }));
}

TEST(ProfileWrites, SecondWriteOfANewKeyClearsLocOfItsValue) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, "a"_w), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, "b"_w), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"k\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value loc=\"\">b</Value>",
                                      "\t\t</Var>",
                                  }));
}

TEST(ProfileWrites, ExistingKeyWithoutValueChildGainsOneAtItsEnd) {
    const Profile profile =
        LoadEntries("<Var name=\"k\" type=\"long\"><UI control=\"num\"><Value>3</Value></UI></Var>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 4), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"k\" type=\"long\">",
                                      "\t\t\t<UI control=\"num\">",
                                      "\t\t\t\t<Value>3</Value>",
                                      "\t\t\t</UI>",
                                      "\t\t\t<Value loc=\"\">4</Value>",
                                      "\t\t</Var>",
                                  }));
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 4);
}

TEST(ProfileWrites, FirstOfTwoValueChildrenIsWrittenAndTheLastIsRead) {
    const Profile profile =
        LoadEntries("<Var name=\"k\" type=\"long\"><Value>1</Value><Value>2</Value></Var>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 3), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 2);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"k\" type=\"long\">",
                                      "\t\t\t<Value loc=\"\">3</Value>",
                                      "\t\t\t<Value>2</Value>",
                                      "\t\t</Var>",
                                  }));
}

TEST(ProfileWrites, ValueChildKeepsItsOwnChildren) {
    const Profile profile = LoadEntries("<Var name=\"k\" type=\"long\"><Value>1<x/></Value></Var>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 3), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"k\" type=\"long\">",
                                      "\t\t\t<Value loc=\"\">",
                                      "\t\t\t\t3",
                                      "\t\t\t\t<x/>",
                                      "\t\t\t</Value>",
                                      "\t\t</Var>",
                                  }));
}

TEST(ProfileWrites, OnlyTheFirstOfTwoEntriesOfOneNameIsWritten) {
    const Profile profile = LoadEntries(
        "<Var name=\"k\" type=\"long\"><Value>1</Value></Var>"
        "<Var name=\"k\" type=\"long\" eud=\"true\"><Value>2</Value></Var>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 3), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"k\" type=\"long\">",
                                      "\t\t\t<Value loc=\"\">3</Value>",
                                      "\t\t</Var>",
                                      "\t\t<Var name=\"k\" type=\"long\" eud=\"true\">",
                                      "\t\t\t<Value>2</Value>",
                                      "\t\t</Var>",
                                  }));
}

TEST(ProfileWrites, OnlyTheFirstOfTwoSectionsOfOneNameIsWritten) {
    const Profile profile = LoadSections("<Table name=\"S\"/><Table name=\"S\"/>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 3), 1U);
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"S\">",
                                      "\t\t<Var name=\"k\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value>3</Value>",
                                      "\t\t</Var>",
                                      "\t</Table>",
                                      "\t<Table name=\"S\"/>",
                                  }));
}

TEST(ProfileWrites, WrittenEntryLosesItsFirstEudAndANewOneGetsNone) {
    const Profile profile = LoadEntries(
        "<Var eud=\"true\" name=\"k\" type=\"long\" eud=\"true\"><Value>1</Value></Var>"
        "<Var name=\"l\" type=\"long\" eud=\"false\"><Value>1</Value></Var>"
        "<Var name=\"m\" type=\"long\" eud=\"true\"><Value>1</Value></Var>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 2), 1U);
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "l"_w, 2), 1U);
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "n"_w, 2), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"k\" type=\"long\" eud=\"true\">",
                                      "\t\t\t<Value loc=\"\">2</Value>",
                                      "\t\t</Var>",
                                      "\t\t<Var name=\"l\" type=\"long\">",
                                      "\t\t\t<Value loc=\"\">2</Value>",
                                      "\t\t</Var>",
                                      "\t\t<Var name=\"m\" type=\"long\" eud=\"true\">",
                                      "\t\t\t<Value>1</Value>",
                                      "\t\t</Var>",
                                      "\t\t<Var name=\"n\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value>2</Value>",
                                      "\t\t</Var>",
                                  }));
}

TEST(ProfileWrites, EntryThatCannotBeReadIsWrittenAllTheSame) {
    const Profile profile = LoadEntries("<Var name=\"k\"/>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 3), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), -1);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"k\">",
                                      "\t\t\t<Value loc=\"\">3</Value>",
                                      "\t\t</Var>",
                                  }));
}

TEST(ProfileWrites, IntegersAreStoredInDecimal) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    struct {
        std::int32_t number;
        const wchar16* text;
    } const cases[] = {
        {-5, "-5"_w}, {0, "0"_w}, {7, "7"_w}, {INT_MAX, "2147483647"_w}, {INT_MIN, "-2147483648"_w}};
    for (const auto& [number, text] : cases) {
        EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, number), 1U);
        EXPECT_EQ(ReadText(profile, "S"_w, "k"_w), text);
        EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, 1), number);
    }
}

TEST(ProfileWrites, TextIsKeptUnitByUnit) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    for (const wchar16* text : {" \t\r\n two  words \n"_w, "<&>'\""_w, "&amp;"_w, "]]> -- <!--"_w,
                                u"\u00e4\u4e2d\U0001F600"_w, u"\xDC00\xD800\xFFFF\xFEFF\x0001"_w}) {
        EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, text), 1U);
        EXPECT_EQ(ReadText(profile, "S"_w, "k"_w), text);
    }
}

TEST(ProfileWrites, SectionThatIsNotEditableAcceptsWritesAndDeletes) {
    const Profile profile = LoadSections(
        "<Table name=\"S\" editable=\"false\"><Var name=\"k\" type=\"long\"><Value>1</Value></Var></Table>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 2), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 2);
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "l"_w, 3), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, nullptr), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), -1);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, nullptr, nullptr), 1U);
    EXPECT_EQ(SaveBytes(profile), EmptySettingsFile());
}

TEST(ProfileWrites, EmptyKeyOverwritesTheFirstNamedEntry) {
    const Profile profile = LoadEntries(
        "<Other/><Var name=\"k\" type=\"long\"><Value>1</Value></Var><Var name=\"\" type=\"long\"/>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, ""_w, 2), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Other/>",
                                      "\t\t<Var name=\"k\" type=\"long\">",
                                      "\t\t\t<Value loc=\"\">2</Value>",
                                      "\t\t</Var>",
                                      "\t\t<Var name=\"\" type=\"long\"/>",
                                  }));
}

TEST(ProfileWrites, EmptyKeyAddsAnEntryWhereNoneIsNamed) {
    const Profile profile = LoadEntries("<Other/>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, ""_w, 2), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Other/>",
                                      "\t\t<Var name=\"\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value>2</Value>",
                                      "\t\t</Var>",
                                  }));
}

TEST(ProfileWrites, EmptySectionNameIsANameLikeAnyOther) {
    const Profile profile = LoadSections("<Table name=\"S\"/><Table/>");
    EXPECT_EQ(xmlWriteProfileInt(profile, ""_w, "k"_w, 2), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, ""_w, "k"_w, -1), 2);
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"S\"/>",
                                      "\t<Table/>",
                                      "\t<Table name=\"\">",
                                      "\t\t<Var name=\"k\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value>2</Value>",
                                      "\t\t</Var>",
                                      "\t</Table>",
                                  }));
}

TEST(ProfileWrites, FileOnDiskIsNotTouchedBeforeASave) {
    const ScratchFile file;
    const std::string bytes(kEmptyRoot);
    WriteBytes(file.Path(), bytes);
    const Profile profile(xmlProfileNew(file.Name(), nullptr, 0, 0));
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 2), 1U);
    EXPECT_EQ(file.Bytes(), bytes);
}

}  // namespace
}  // namespace host
