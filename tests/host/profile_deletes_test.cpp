// Deleting keys and sections.
#include <string_view>

#include "tests/host/host_support.h"

namespace host {
namespace {

constexpr std::string_view kRepeated =
    "<Var name=\"a\" type=\"long\"><Value>1</Value></Var><Var name=\"b\" type=\"long\"/>"
    "<Other name=\"a\"/><!--a--><Var/><Var name=\"a\" type=\"long\"/>";

TEST(ProfileDeletes, NullTextRemovesEveryEntryOfTheKey) {
    const Profile profile = LoadEntries(kRepeated);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "a"_w, nullptr), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"b\" type=\"long\"/>",
                                      "\t\t<!--a-->",
                                      "\t\t<Var/>",
                                  }));
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "a"_w, nullptr), 0U);
}

TEST(ProfileDeletes, NullBytesRemoveEveryEntryOfTheKey) {
    const Profile profile = LoadEntries(kRepeated);
    EXPECT_EQ(xmlWriteProfileData(profile, "S"_w, "a"_w, nullptr, 4), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"b\" type=\"long\"/>",
                                      "\t\t<!--a-->",
                                      "\t\t<Var/>",
                                  }));
    EXPECT_EQ(xmlWriteProfileData(profile, "S"_w, "a"_w, nullptr, 4), 0U);
}

TEST(ProfileDeletes, UnknownKeyIsAFailureAndChangesNothing) {
    const Profile profile = LoadEntries("<Var name=\"a\" type=\"long\"/>");
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "A"_w, nullptr), 0U);
    EXPECT_EQ(xmlWriteProfileData(profile, "S"_w, "aa"_w, nullptr, 0), 0U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({"\t\t<Var name=\"a\" type=\"long\"/>"}));
}

TEST(ProfileDeletes, UnknownSectionIsAFailureAndIsNotMade) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, nullptr), 0U);
    EXPECT_EQ(xmlWriteProfileData(profile, "S"_w, "k"_w, nullptr, 0), 0U);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, nullptr, "x"_w), 0U);
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, nullptr, 1), 0U);
    EXPECT_EQ(xmlWriteProfileData(profile, "S"_w, nullptr, "x", 1), 0U);
    EXPECT_EQ(SaveBytes(profile), EmptySettingsFile());
}

TEST(ProfileDeletes, EmptyKeyRemovesOnlyEntriesWithAnEmptyName) {
    const Profile profile = LoadEntries("<Var name=\"a\"/><Var name=\"\"/><Var/><Other name=\"\"/>");
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, ""_w, nullptr), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({"\t\t<Var name=\"a\"/>", "\t\t<Var/>"}));
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, ""_w, nullptr), 0U);
}

TEST(ProfileDeletes, ProtectedEntriesAreRemovedToo) {
    const Profile profile = LoadEntries("<Var name=\"a\" eud=\"true\"/><Var name=\"b\"/>");
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "a"_w, nullptr), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({"\t\t<Var name=\"b\"/>"}));
}

TEST(ProfileDeletes, LastKeyLeavesAnEmptySection) {
    const Profile profile = LoadEntries("<Var name=\"a\"/>");
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "a"_w, nullptr), 1U);
    EXPECT_EQ(SaveBytes(profile), SettingsFile({"\t<Table name=\"S\"/>"}));
}

TEST(ProfileDeletes, RemovedKeyMayBeWrittenAgain) {
    const Profile profile =
        LoadEntries("<Var name=\"a\" type=\"long\"><Value>1</Value></Var><Var name=\"b\"/>");
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "a"_w, nullptr), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "a"_w, -1), -1);
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "a"_w, 2), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({
                                      "\t\t<Var name=\"b\"/>",
                                      "\t\t<Var name=\"a\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value>2</Value>",
                                      "\t\t</Var>",
                                  }));
}

// What a delete of the section "S" leaves of a document that has others around it.
std::string AfterDelete(std::uint32_t (*deleteSection)(moxSettings*)) {
    const Profile profile = LoadSections(
        "<Table name=\"A\"/><Other name=\"S\"/><Table name=\"S\"><Var name=\"k\" type=\"long\"/></Table>"
        "<Table name=\"B\"/>");
    EXPECT_EQ(deleteSection(profile), 1U);
    EXPECT_EQ(xmlGetProfileSection(profile, "S"_w, nullptr), nullptr);
    EXPECT_EQ(deleteSection(profile), 0U);
    return SaveBytes(profile);
}

const std::string& WithoutS() {
    static const std::string bytes = SettingsFile({
        "\t<Table name=\"A\"/>",
        "\t<Other name=\"S\"/>",
        "\t<Table name=\"B\"/>",
    });
    return bytes;
}

TEST(ProfileDeletes, NullKeyOfAStringWriteRemovesTheSection) {
    EXPECT_EQ(AfterDelete([](moxSettings* profile) {
                  return xmlWriteProfileString(profile, "S"_w, nullptr, "ignored"_w);
              }),
              WithoutS());
    EXPECT_EQ(AfterDelete([](moxSettings* profile) {
                  return xmlWriteProfileString(profile, "S"_w, nullptr, nullptr);
              }),
              WithoutS());
}

TEST(ProfileDeletes, NullKeyOfAnIntegerWriteRemovesTheSection) {
    EXPECT_EQ(
        AfterDelete([](moxSettings* profile) { return xmlWriteProfileInt(profile, "S"_w, nullptr, 5); }),
        WithoutS());
}

TEST(ProfileDeletes, NullKeyOfADataWriteRemovesTheSection) {
    EXPECT_EQ(AfterDelete([](moxSettings* profile) {
                  return xmlWriteProfileData(profile, "S"_w, nullptr, "ignored", 3);
              }),
              WithoutS());
    EXPECT_EQ(AfterDelete([](moxSettings* profile) {
                  return xmlWriteProfileData(profile, "S"_w, nullptr, nullptr, 0);
              }),
              WithoutS());
}

TEST(ProfileDeletes, NextSectionOfTheNameComesIntoViewWhenTheFirstIsDeleted) {
    const Profile profile = LoadSections(
        "<Table name=\"S\"/><Table name=\"S\"><Var name=\"k\" type=\"long\"><Value>2</Value></Var></Table>");
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, nullptr, nullptr), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 2);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, nullptr, nullptr), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), -1);
    EXPECT_EQ(SaveBytes(profile), EmptySettingsFile());
}

TEST(ProfileDeletes, DeletedSectionMayBeMadeAgain) {
    const Profile profile = LoadSections("<Table name=\"S\" editable=\"true\"/><Table name=\"T\"/>");
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, nullptr, 0), 1U);
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 0, 3, 0, nullptr)));
    EXPECT_EQ(SaveBytes(profile),
              SettingsFile({"\t<Table name=\"T\"/>", "\t<Table name=\"S\" first_id=\"3\"/>"}));
}

}  // namespace
}  // namespace host
