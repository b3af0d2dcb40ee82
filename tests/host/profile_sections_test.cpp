// Finding and making sections.
#include "tests/host/host_support.h"

namespace host {
namespace {

TEST(GetProfileSection, KnownSectionGivesAHandleAndItsEditableFlag) {
    const Profile profile = LoadSections(
        "<Table name=\"yes\" editable=\"true\"/><Table name=\"no\" editable=\"false\"/><Table name=\"none\"/>"
        "<Table name=\"upper\" editable=\"TRUE\"/><Table name=\"one\" editable=\"1\"/>");
    struct {
        const wchar16* name;
        std::uint32_t editable;
    } const cases[] = {{"yes"_w, 1}, {"no"_w, 0}, {"none"_w, 0}, {"upper"_w, 0}, {"one"_w, 0}};
    for (const auto& [name, editable] : cases) {
        std::uint32_t flag = kGuard;
        const Section section(xmlGetProfileSection(profile, name, &flag));
        EXPECT_TRUE(section) << Shown(name);
        EXPECT_EQ(flag, editable) << Shown(name);
    }
}

TEST(GetProfileSection, UnknownSectionGivesNullAndEditable) {
    const Profile profile = LoadSections("<Table name=\"S\" editable=\"false\"/>");
    std::uint32_t editable = kGuard;
    EXPECT_EQ(xmlGetProfileSection(profile, "T"_w, &editable), nullptr);
    EXPECT_EQ(editable, 1U);
}

TEST(GetProfileSection, EmptyProfileHasNoSection) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    std::uint32_t editable = kGuard;
    EXPECT_EQ(xmlGetProfileSection(profile, "S"_w, &editable), nullptr);
    EXPECT_EQ(editable, 1U);
}

TEST(GetProfileSection, EditableFlagIsOptional) {
    const Profile profile = LoadSections("<Table name=\"S\"/>");
    EXPECT_TRUE(Section(xmlGetProfileSection(profile, "S"_w, nullptr)));
    EXPECT_EQ(xmlGetProfileSection(profile, "T"_w, nullptr), nullptr);
}

TEST(GetProfileSection, NamesAreMatchedExactly) {
    const Profile profile = LoadSections("<Table name=\"Display\"/>");
    for (const wchar16* name : {"display"_w, "DISPLAY"_w, "Displa"_w, "Displays"_w, " Display"_w, ""_w}) {
        EXPECT_EQ(xmlGetProfileSection(profile, name, nullptr), nullptr) << Shown(name);
    }
}

TEST(GetProfileSection, EmptyNameFindsOnlyAnEmptyName) {
    const Profile without = LoadSections("<Table name=\"S\"/><Table/>");
    EXPECT_EQ(xmlGetProfileSection(without, ""_w, nullptr), nullptr);
    const Profile with = LoadSections("<Table name=\"S\"/><Table/><Table name=\"\" editable=\"true\"/>");
    std::uint32_t editable = kGuard;
    EXPECT_TRUE(Section(xmlGetProfileSection(with, ""_w, &editable)));
    EXPECT_EQ(editable, 1U);
}

TEST(GetProfileSection, FirstOfTwoSectionsOfOneNameIsFound) {
    const Profile profile =
        LoadSections("<Table name=\"S\" editable=\"false\"/><Table name=\"S\" editable=\"true\"/>");
    std::uint32_t editable = kGuard;
    EXPECT_TRUE(Section(xmlGetProfileSection(profile, "S"_w, &editable)));
    EXPECT_EQ(editable, 0U);
}

TEST(GetProfileSection, FirstOfTwoAttributesOfOneNameCounts) {
    const Profile profile =
        LoadSections("<Table name=\"S\" name=\"T\" editable=\"false\" editable=\"true\"/>");
    std::uint32_t editable = kGuard;
    EXPECT_TRUE(Section(xmlGetProfileSection(profile, "S"_w, &editable)));
    EXPECT_EQ(editable, 0U);
    EXPECT_EQ(xmlGetProfileSection(profile, "T"_w, nullptr), nullptr);
}

TEST(GetProfileSection, OnlyTableElementsRightUnderTheRootAreSections) {
    const Profile profile = LoadSections(
        "<Group name=\"A\"><Table name=\"B\"/></Group><table name=\"C\"/><!-- name=\"D\" -->"
        "<Table name=\"E\"><Table name=\"F\"/></Table>");
    for (const wchar16* name : {"A"_w, "B"_w, "C"_w, "D"_w, "F"_w}) {
        EXPECT_EQ(xmlGetProfileSection(profile, name, nullptr), nullptr) << Shown(name);
    }
    EXPECT_TRUE(Section(xmlGetProfileSection(profile, "E"_w, nullptr)));
}

TEST(GetProfileSection, ReleasedHandleLeavesTheSection) {
    const Profile profile = LoadEntries("<Var name=\"k\" type=\"long\"><Value>5</Value></Var>");
    void* section = xmlGetProfileSection(profile, "S"_w, nullptr);
    ASSERT_NE(section, nullptr);
    xmlTableDispose(&section);
    EXPECT_EQ(section, nullptr);
    xmlTableDispose(&section);
    EXPECT_EQ(section, nullptr);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 5);
}

TEST(GetProfileSection, EachCallGivesAHandleOfItsOwn) {
    const Profile profile = LoadSections("<Table name=\"S\"/>");
    void* first = xmlGetProfileSection(profile, "S"_w, nullptr);
    void* second = xmlGetProfileSection(profile, "S"_w, nullptr);
    EXPECT_NE(first, second);
    xmlTableDispose(&first);
    xmlTableDispose(&second);
}

TEST(WriteProfileSection, NewSectionTakesAllArguments) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    std::uint32_t eud = kGuard;
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 1, 100, 0x1F, &eud)));
    EXPECT_EQ(eud, 0U);
    EXPECT_EQ(SaveBytes(profile),
              SettingsFile({"\t<Table name=\"S\" first_id=\"100\" type=\"001F\" editable=\"true\"/>"}));
}

TEST(WriteProfileSection, NewSectionLeavesOutWhatIsZero) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 0, 0, 0, nullptr)));
    EXPECT_EQ(SaveBytes(profile), SettingsFile({"\t<Table name=\"S\"/>"}));
}

TEST(WriteProfileSection, AnyNonZeroEditableCounts) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "A"_w, 2, 0, 0, nullptr)));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "B"_w, 0x80000000U, 0, 0, nullptr)));
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"A\" editable=\"true\"/>",
                                      "\t<Table name=\"B\" editable=\"true\"/>",
                                  }));
}

TEST(WriteProfileSection, NumbersAreUnsignedAndTypeHasSixteenBits) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "A"_w, 0, 4294967295U, 0x1ABCDU, nullptr)));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "B"_w, 0, 1, 0x10000U, nullptr)));
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"A\" first_id=\"4294967295\" type=\"ABCD\"/>",
                                      "\t<Table name=\"B\" first_id=\"1\"/>",
                                  }));
}

TEST(WriteProfileSection, NewSectionsFollowTheOthersInOrder) {
    const Profile profile = LoadSections("<!--first--><Group/><!--last-->");
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "B"_w, 0, 0, 0, nullptr)));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "A"_w, 0, 0, 0, nullptr)));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, ""_w, 0, 0, 0, nullptr)));
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<!--first-->",
                                      "\t<Group/>",
                                      "\t<!--last-->",
                                      "\t<Table name=\"B\"/>",
                                      "\t<Table name=\"A\"/>",
                                      "\t<Table name=\"\"/>",
                                  }));
}

TEST(WriteProfileSection, ExistingSectionKeepsEditableAndTakesTheNumbers) {
    const Profile profile = LoadSections(
        "<Table type=\"0001\" editable=\"true\" name=\"A\" first_id=\"1\"/>"
        "<Table type=\"0001\" editable=\"false\" name=\"B\" first_id=\"1\"/>");
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "A"_w, 0, 20, 10, nullptr)));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "B"_w, 1, 0, 0, nullptr)));
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table type=\"000A\" editable=\"true\" name=\"A\" first_id=\"20\"/>",
                                      "\t<Table type=\"0000\" editable=\"false\" name=\"B\" first_id=\"0\"/>",
                                  }));
}

TEST(WriteProfileSection, ExistingSectionGainsWhatItLacks) {
    const Profile profile =
        LoadSections("<Table name=\"S\"><x/></Table><Table name=\"T\" editable=\"yes\"/>");
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 1, 5, 0x1000A, nullptr)));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "T"_w, 1, 5, 10, nullptr)));
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"S\" editable=\"false\" first_id=\"5\" type=\"000A\">",
                                      "\t\t<x/>",
                                      "\t</Table>",
                                      "\t<Table name=\"T\" editable=\"false\" first_id=\"5\" type=\"000A\"/>",
                                  }));
}

TEST(WriteProfileSection, FirstOfTwoSectionsOfOneNameIsStamped) {
    const Profile profile = LoadSections("<Table name=\"S\"/><Table name=\"S\"/>");
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 0, 1, 2, nullptr)));
    EXPECT_EQ(SaveBytes(profile), SettingsFile({
                                      "\t<Table name=\"S\" editable=\"false\" first_id=\"1\" type=\"0002\"/>",
                                      "\t<Table name=\"S\"/>",
                                  }));
}

TEST(WriteProfileSection, FirstOfTwoAttributesOfOneNameIsReplaced) {
    const Profile profile = LoadSections("<Table name=\"S\" type=\"0001\" type=\"0002\"/>");
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 0, 1, 3, nullptr)));
    EXPECT_EQ(SaveBytes(profile),
              SettingsFile({
                  "\t<Table name=\"S\" type=\"0003\" type=\"0002\" editable=\"false\" first_id=\"1\"/>",
              }));
}

TEST(WriteProfileSection, EudIsReportedOnlyForAMarkedExistingSection) {
    const Profile profile = LoadSections(
        "<Table name=\"marked\" eud=\"true\"/><Table name=\"other\" eud=\"false\"/><Table name=\"plain\"/>"
        "<Table name=\"upper\" eud=\"True\"/><Table name=\"second\" eud=\"\" eud=\"true\"/>");
    struct {
        const wchar16* name;
        std::uint32_t eud;
    } const cases[] = {{"marked"_w, 1}, {"other"_w, 0},  {"plain"_w, 0},
                       {"upper"_w, 0},  {"second"_w, 0}, {"new"_w, 0}};
    for (const auto& [name, expected] : cases) {
        std::uint32_t eud = kGuard;
        EXPECT_TRUE(Section(xmlWriteProfileSection(profile, name, 0, 0, 0, &eud))) << Shown(name);
        EXPECT_EQ(eud, expected) << Shown(name);
    }
}

TEST(WriteProfileSection, StampingKeepsTheMark) {
    const Profile profile = LoadSections("<Table name=\"S\" eud=\"true\"/>");
    for (int i = 0; i < 2; ++i) {
        std::uint32_t eud = kGuard;
        EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 0, 0, 0, &eud)));
        EXPECT_EQ(eud, 1U);
    }
}

TEST(WriteProfileSection, NewSectionIsFoundAtOnce) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "a<b> \"c\" & 'd'"_w, 1, 0, 0, nullptr)));
    std::uint32_t editable = kGuard;
    EXPECT_TRUE(Section(xmlGetProfileSection(profile, "a<b> \"c\" & 'd'"_w, &editable)));
    EXPECT_EQ(editable, 1U);
    EXPECT_EQ(SaveBytes(profile),
              SettingsFile({
                  "\t<Table name=\"a&lt;b&gt; &quot;c&quot; &amp; &apos;d&apos;\" editable=\"true\"/>",
              }));
}

}  // namespace
}  // namespace host
