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

// The index of a large section grows, and its names move, between deletions that find nothing and those that do.
TEST(ProfileDeletes, WorkBetweenAdditionsInALargeSection) {
    const auto nameOf = [](int number) {
        const std::string name = "key" + std::to_string(number);
        return WideText(name.begin(), name.end());
    };
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    int first = 0;
    for (int last = 0; last < 3000; ++last) {
        ASSERT_EQ(xmlWriteProfileInt(profile, "S"_w, nameOf(last).c_str(), last), 1U);
        ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, nameOf(last + 1).c_str(), nullptr), 0U);
        if (last % 3 != 0) continue;
        ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, nameOf(first).c_str(), nullptr), 1U);
        ASSERT_EQ(xmlGetProfileInt(profile, "S"_w, nameOf(first).c_str(), -1), -1);
        ++first;
    }
    for (int number = 0; number < 3000; ++number) {
        const int expected = number < first ? -1 : number;
        ASSERT_EQ(xmlGetProfileInt(profile, "S"_w, nameOf(number).c_str(), -1), expected);
        ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, nameOf(number).c_str(), nullptr),
                  number < first ? 0U : 1U);
    }
    EXPECT_EQ(SaveBytes(profile), SettingsFile({"\t<Table name=\"S\"/>"}));
}

// Of several keys of one name all go, whichever the index has first.
TEST(ProfileDeletes, TakeEachKeyOfOneNameInALargeSection) {
    std::string entries;
    for (int number = 0; number < 100; ++number) {
        const std::string name = number % 4 == 0 ? "many" : "key" + std::to_string(number);
        entries +=
            "<Var name=\"" + name + "\" type=\"long\"><Value>" + std::to_string(number) + "</Value></Var>";
    }
    const Profile profile = LoadEntries(entries);
    for (int round = 0; round < 20; ++round)
        ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "none"_w, nullptr), 0U);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "many"_w, nullptr), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "many"_w, nullptr), 0U);
    for (int number = 0; number < 100; ++number) {
        const std::string name = "key" + std::to_string(number);
        const WideText key(name.begin(), name.end());
        ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, key.c_str(), nullptr), number % 4 == 0 ? 0U : 1U);
    }
}

}  // namespace
}  // namespace host
