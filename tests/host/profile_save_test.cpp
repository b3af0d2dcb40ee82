// Saving: files, flags and the marks that a save removes.
#include "tests/host/host_support.h"

namespace host {
namespace {

// Whether the section still carries its mark; asking stamps the section.
std::uint32_t EudOf(moxSettings* profile, const wchar16* section) {
    std::uint32_t eud = kGuard;
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, section, 0, 0, 0, &eud)));
    return eud;
}

TEST(ProfileSave, RefuseOfOneRefusesInEveryMode) {
    const Profile profile = LoadEntries("<Var name=\"k\" type=\"long\"/>");
    const ScratchFile missing;
    const ScratchFile present;
    WriteBytes(present.Path(), "as it was");
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        for (const std::int32_t wide : {0, 1}) {
            EXPECT_EQ(xmlProfileSave(profile, missing.Name(), mode, 1, wide), 0U);
            EXPECT_EQ(xmlProfileSave(profile, present.Name(), mode, 1, wide), 0U);
        }
    }
    EXPECT_FALSE(missing.Exists());
    EXPECT_EQ(present.Bytes(), "as it was");
}

TEST(ProfileSave, OtherValuesOfRefuseSave) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    for (const std::uint32_t refuse : {0U, 2U, 0x101U, 0x80000001U, 0xFFFFFFFFU}) {
        const ScratchFile file;
        EXPECT_EQ(xmlProfileSave(profile, file.Name(), 0, refuse, 0), 1U);
        EXPECT_EQ(file.Bytes(), EmptySettingsFile());
    }
}

TEST(ProfileSave, OnlyWideOfOneWritesWideText) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    const std::string text = Lines({kDeclaration, kEmptyRoot});
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        EXPECT_EQ(SaveBytes(profile, mode, 1), WideFile(text));
        for (const std::int32_t wide : {0, 2, -1, 0x101, 256}) {
            EXPECT_EQ(SaveBytes(profile, mode, wide), NarrowFile(text));
        }
    }
}

TEST(ProfileSave, LongerFileIsReplacedWhole) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    const ScratchFile file;
    WriteBytes(file.Path(), std::string(10000, 'x'));
    EXPECT_EQ(xmlProfileSave(profile, file.Name(), 0, 0, 0), 1U);
    EXPECT_EQ(file.Bytes(), EmptySettingsFile());
}

TEST(ProfileSave, LoadedFileMayBeWrittenOver) {
    const ScratchFile file;
    WriteBytes(file.Path(), kEmptyRoot);
    const Profile profile(xmlProfileNew(file.Name(), nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 5), 1U);
    EXPECT_EQ(xmlProfileSave(profile, file.Name(), 0, 0, 0), 1U);
    const Profile again(xmlProfileNew(file.Name(), nullptr, 0, 0));
    EXPECT_EQ(xmlGetProfileInt(again, "S"_w, "k"_w, -1), 5);
}

TEST(ProfileSave, SaveMayBeRepeatedAndWorkGoesOn) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_EQ(SaveBytes(profile), EmptySettingsFile());
    EXPECT_EQ(SaveBytes(profile), EmptySettingsFile());
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, "v"_w), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"k\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value>v</Value>",
                                      "\t\t</Var>",
                                  }));
}

TEST(ProfileSave, FileNameMayHoldAnyUnicodeText) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    const ScratchFile file(u"host_\u00e4\u0416\u4e2d\U0001F600_saved.xml");
    EXPECT_EQ(xmlProfileSave(profile, file.Name(), 0, 0, 0), 1U);
    EXPECT_EQ(file.Bytes(), EmptySettingsFile());
}

TEST(ProfileSave, FileThatCannotBeOpenedIsAFailure) {
    const Profile profile = LoadSections("<Table name=\"S\"/>");
    const WideText folder = WidePath(ScratchFolder());
    const WideText inMissingFolder = WidePath(ScratchFolder() / "no such folder" / "file.xml");
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        EXPECT_EQ(xmlProfileSave(profile, folder.c_str(), mode, 0, 0), 0U);
        EXPECT_EQ(xmlProfileSave(profile, inMissingFolder.c_str(), mode, 0, 0), 0U);
        EXPECT_EQ(xmlProfileSave(profile, ""_w, mode, 0, 0), 0U);
    }
}

TEST(ProfileSave, PathWithUnpairedSurrogateIsNoException) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    const WideText path = WidePath(ScratchFolder()) + u"/\xD800.xml"_w;
    EXPECT_NO_THROW(xmlProfileSave(profile, path.c_str(), 0, 0, 0));
}

#ifndef _WIN32
TEST(ProfileSave, PathThatCannotBeExpressedIsAFailure) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    const WideText path = WidePath(ScratchFolder()) + u"/\xD800.xml"_w;
    EXPECT_EQ(xmlProfileSave(profile, path.c_str(), 0, 0, 0), 0U);
}

TEST(ProfileSave, FullDiskIsAFailure) {
    const Profile profile = LoadSections("<Table name=\"S\" eud=\"true\"/>");
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        for (const std::int32_t wide : {0, 1}) {
            EXPECT_EQ(xmlProfileSave(profile, "/dev/full"_w, mode, 0, wide), 0U);
        }
    }
    const std::string large(100000, 'x');
    const WideText value(large.begin(), large.end());
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, value.c_str()), 1U);
    EXPECT_EQ(xmlProfileSave(profile, "/dev/full"_w, 0, 0, 0), 0U);
}
#endif

TEST(ProfileSave, MarksOfAMarkedSectionAndItsEntriesAreRemoved) {
    const Profile profile = LoadSections(
        "<Table name=\"S\" eud=\"true\"><Var name=\"a\" eud=\"true\"/><Other eud=\"any\"><Var "
        "eud=\"x\"/></Other>"
        "<!--c--><Var name=\"b\"/></Table>");
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"S\">",
                                      "\t\t<Var name=\"a\"/>",
                                      "\t\t<Other>",
                                      "\t\t\t<Var eud=\"x\"/>",
                                      "\t\t</Other>",
                                      "\t\t<!--c-->",
                                      "\t\t<Var name=\"b\"/>",
                                      "\t</Table>",
                                  }));
}

TEST(ProfileSave, SectionMarkedOtherwiseLosesOnlyItsOwnMark) {
    const Profile profile = LoadSections(
        "<Table name=\"A\" eud=\"false\"><Var name=\"a\" eud=\"true\"/></Table>"
        "<Table name=\"B\" eud=\"\"><Var name=\"a\" eud=\"true\"/></Table>"
        "<Table name=\"C\" eud=\"True\"><Var name=\"a\" eud=\"true\"/></Table>"
        "<Table name=\"D\"><Var name=\"a\" eud=\"true\"/></Table>");
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"A\">",
                                      "\t\t<Var name=\"a\" eud=\"true\"/>",
                                      "\t</Table>",
                                      "\t<Table name=\"B\">",
                                      "\t\t<Var name=\"a\" eud=\"true\"/>",
                                      "\t</Table>",
                                      "\t<Table name=\"C\">",
                                      "\t\t<Var name=\"a\" eud=\"true\"/>",
                                      "\t</Table>",
                                      "\t<Table name=\"D\">",
                                      "\t\t<Var name=\"a\" eud=\"true\"/>",
                                      "\t</Table>",
                                  }));
}

TEST(ProfileSave, ElementsOfAnyNameUnderTheRootLoseTheirMarks) {
    const Profile profile = LoadSections("<Group eud=\"true\"><x eud=\"true\"/></Group><Group eud=\"1\"/>");
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Group>",
                                      "\t\t<x/>",
                                      "\t</Group>",
                                      "\t<Group/>",
                                  }));
}

TEST(ProfileSave, SecondMarkOfAnElementStaysUntilTheNextSave) {
    const Profile profile =
        LoadSections("<Table name=\"S\" eud=\"true\" eud=\"x\"><Var eud=\"1\" eud=\"2\" eud=\"3\"/></Table>");
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"S\" eud=\"x\">",
                                      "\t\t<Var eud=\"2\" eud=\"3\"/>",
                                      "\t</Table>",
                                  }));
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"S\">",
                                      "\t\t<Var eud=\"2\" eud=\"3\"/>",
                                      "\t</Table>",
                                  }));
}

TEST(ProfileSave, MarksOutsideOfTheRootStay) {
    const Profile profile = LoadText(
        "<a eud=\"true\"><b eud=\"true\"/></a>\n<Settings xsi:noNamespaceSchemaLocation=\"x\" "
        "eud=\"true\"/>");
    EXPECT_EQ(SaveBytes(profile),
              NarrowFile(Lines({"<a eud=\"true\">", "\t<b eud=\"true\"/>", "</a>",
                                "<Settings xsi:noNamespaceSchemaLocation=\"x\" eud=\"true\"/>"})));
}

TEST(ProfileSave, MarksAreRemovedInMemoryEvenWhenTheSaveFails) {
    const ScratchFile file;
    const Profile refused = LoadSections("<Table name=\"S\" eud=\"true\"/>");
    EXPECT_EQ(xmlProfileSave(refused, file.Name(), 0, 1, 0), 0U);
    EXPECT_EQ(EudOf(refused, "S"_w), 0U);
    const Profile unopened = LoadSections("<Table name=\"S\" eud=\"true\"/>");
    EXPECT_EQ(xmlProfileSave(unopened, ""_w, 0, 0, 0), 0U);
    EXPECT_EQ(EudOf(unopened, "S"_w), 0U);
}

TEST(ProfileSave, SavedProfileHasNoMarksAnyMore) {
    const Profile profile = LoadSections("<Table name=\"S\" eud=\"true\"/>");
    SaveBytes(profile);
    EXPECT_EQ(EudOf(profile, "S"_w), 0U);
}

TEST(ProfileSave, ExportsLeaveTheMarksInMemory) {
    const Profile profile =
        LoadSections("<Table name=\"S\" eud=\"true\"><Var name=\"k\" type=\"long\" eud=\"true\"/></Table>");
    for (const std::uint32_t mode : {1U, 2U, 3U})
        SaveBytes(profile, mode);
    EXPECT_EQ(EudOf(profile, "S"_w), 1U);
}

TEST(ProfileSave, EmptySectionHandleDoesNotDisturbASave) {
    const Profile profile = LoadSections("<Table name=\"S\"/>");
    const Section section(xmlGetProfileSection(profile, "S"_w, nullptr));
    EXPECT_EQ(SaveBytes(profile), SettingsFile({"\t<Table name=\"S\"/>"}));
}

}  // namespace
}  // namespace host
