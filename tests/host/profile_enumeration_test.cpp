// Enumerating sections.
#include <array>

#include "tests/host/host_support.h"

namespace host {
namespace {

TEST(EnumProfileSections, GivesEverySectionInOrder) {
    const Profile profile = LoadSections(
        "<Table name=\"B\" editable=\"true\"/><Table name=\"A\" editable=\"false\"/><Table name=\"C\"/>");
    struct {
        const wchar16* name;
        std::uint32_t editable;
    } const expected[] = {{"B"_w, 1}, {"A"_w, 0}, {"C"_w, 0}};
    std::uintptr_t position = 0;
    for (const auto& [expectedName, expectedEditable] : expected) {
        wchar16 name[8] = {};
        std::uint32_t editable = kGuard;
        EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, name, 8, &editable)));
        EXPECT_EQ(WideText(name), expectedName);
        EXPECT_EQ(editable, expectedEditable);
        EXPECT_NE(position, 0U);
    }
    wchar16 name[8] = {'x', 'y', 0};
    std::uint32_t editable = kGuard;
    EXPECT_EQ(xmlEnumProfileSections(profile, &position, name, 8, &editable), nullptr);
    EXPECT_EQ(position, 0U);
    EXPECT_EQ(name[0], 0);
    EXPECT_EQ(name[1], 'y');
    EXPECT_EQ(editable, 1U);
}

TEST(EnumProfileSections, EndsAtOnceWithoutSections) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    std::uintptr_t position = 0;
    wchar16 name[2] = {'x', 'y'};
    std::uint32_t editable = kGuard;
    EXPECT_EQ(xmlEnumProfileSections(profile, &position, name, 2, &editable), nullptr);
    EXPECT_EQ(position, 0U);
    EXPECT_EQ(name[0], 0);
    EXPECT_EQ(editable, 1U);
}

TEST(EnumProfileSections, StartsAgainAfterTheEnd) {
    const Profile profile = LoadSections("<Table name=\"A\"/>");
    std::uintptr_t position = 0;
    for (int round = 0; round < 2; ++round) {
        wchar16 name[2] = {};
        EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, name, 2, nullptr)));
        EXPECT_EQ(name[0], 'A');
        EXPECT_EQ(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr), nullptr);
        EXPECT_EQ(position, 0U);
    }
}

TEST(EnumProfileSections, GivesBothSectionsOfOneName) {
    const Profile profile = LoadSections("<Table name=\"A\" editable=\"true\"/><Table name=\"A\"/>");
    std::uintptr_t position = 0;
    for (const std::uint32_t expected : {1U, 0U}) {
        wchar16 name[2] = {};
        std::uint32_t editable = kGuard;
        EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, name, 2, &editable)));
        EXPECT_EQ(name[0], 'A');
        EXPECT_EQ(editable, expected);
    }
    EXPECT_EQ(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr), nullptr);
}

TEST(EnumProfileSections, GivesElementsOfAnyNameButNoComments) {
    const Profile profile = LoadSections(
        "<!--one--><Group/><Table name=\"A\"/><!--two--><Group name=\"B\" editable=\"true\"><c/></Group>");
    std::uintptr_t position = 0;
    for (const wchar16* expected : {""_w, "A"_w, "B"_w}) {
        wchar16 name[4] = {'x', 'x', 'x', 'x'};
        EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, name, 4, nullptr)));
        EXPECT_EQ(WideText(name), expected);
    }
    EXPECT_EQ(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(xmlGetProfileSection(profile, "B"_w, nullptr), nullptr);
    EXPECT_EQ(xmlGetProfileSection(profile, ""_w, nullptr), nullptr);
}

// What an enumeration of the one section "abcdef" leaves in a buffer of nine 'x' when this length is given.
std::array<wchar16, 9> NameBuffer(std::uint32_t length) {
    const Profile profile = LoadSections("<Table name=\"abcdef\"/>");
    std::array<wchar16, 9> name{};
    name.fill('x');
    std::uintptr_t position = 0;
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, name.data(), length, nullptr)));
    std::array<wchar16, 9> kept = name;
    EXPECT_EQ(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr), nullptr);
    return kept;
}

TEST(EnumProfileSections, NameIsPaddedWithZeroUpToTheLength) {
    EXPECT_EQ(NameBuffer(9), (std::array<wchar16, 9>{'a', 'b', 'c', 'd', 'e', 'f', 0, 0, 0}));
    EXPECT_EQ(NameBuffer(8), (std::array<wchar16, 9>{'a', 'b', 'c', 'd', 'e', 'f', 0, 0, 'x'}));
    EXPECT_EQ(NameBuffer(7), (std::array<wchar16, 9>{'a', 'b', 'c', 'd', 'e', 'f', 0, 'x', 'x'}));
}

TEST(EnumProfileSections, NameIsCutToTheLength) {
    EXPECT_EQ(NameBuffer(6), (std::array<wchar16, 9>{'a', 'b', 'c', 'd', 'e', 0, 'x', 'x', 'x'}));
    EXPECT_EQ(NameBuffer(2), (std::array<wchar16, 9>{'a', 0, 'x', 'x', 'x', 'x', 'x', 'x', 'x'}));
}

TEST(EnumProfileSections, NameBufferOfOneTakesOnlyTheZero) {
    EXPECT_EQ(NameBuffer(1), (std::array<wchar16, 9>{0, 'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x'}));
}

TEST(EnumProfileSections, NameBufferOfNothingIsNotTouched) {
    std::array<wchar16, 9> untouched{};
    untouched.fill('x');
    EXPECT_EQ(NameBuffer(0), untouched);
}

TEST(EnumProfileSections, NameBufferOfNothingIsNotTouchedAtTheEnd) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    wchar16 name[1] = {'x'};
    std::uintptr_t position = 0;
    EXPECT_EQ(xmlEnumProfileSections(profile, &position, name, 0, nullptr), nullptr);
    EXPECT_EQ(name[0], 'x');
}

TEST(EnumProfileSections, NameAndEditableAreOptional) {
    const Profile profile = LoadSections("<Table name=\"A\"/><Table name=\"B\"/>");
    std::uintptr_t position = 0;
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr)));
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, nullptr, 100, nullptr)));
    EXPECT_EQ(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr), nullptr);
}

TEST(EnumProfileSections, SeesSectionsAddedOnTheWay) {
    const Profile profile = LoadSections("<Table name=\"A\"/>");
    std::uintptr_t position = 0;
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr)));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "B"_w, 0, 0, 0, nullptr)));
    wchar16 name[2] = {};
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, name, 2, nullptr)));
    EXPECT_EQ(name[0], 'B');
    EXPECT_EQ(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr), nullptr);
}

TEST(EnumProfileSections, GoesOnAfterItsSectionWhenAnEarlierOneIsDeleted) {
    const Profile profile = LoadSections("<Table name=\"A\"/><Table name=\"B\"/><Table name=\"C\"/>");
    std::uintptr_t position = 0;
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr)));
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr)));
    ASSERT_EQ(xmlWriteProfileString(profile, "A"_w, nullptr, nullptr), 1U);
    wchar16 name[2] = {};
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &position, name, 2, nullptr)));
    EXPECT_EQ(name[0], 'C');
    EXPECT_EQ(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr), nullptr);
}

TEST(EnumProfileSections, TwoEnumerationsDoNotDisturbEachOther) {
    const Profile profile = LoadSections("<Table name=\"A\"/><Table name=\"B\"/>");
    std::uintptr_t first = 0;
    std::uintptr_t second = 0;
    wchar16 name[2] = {};
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &first, nullptr, 0, nullptr)));
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &second, name, 2, nullptr)));
    EXPECT_EQ(name[0], 'A');
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &first, name, 2, nullptr)));
    EXPECT_EQ(name[0], 'B');
    EXPECT_EQ(xmlEnumProfileSections(profile, &first, nullptr, 0, nullptr), nullptr);
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &second, name, 2, nullptr)));
    EXPECT_EQ(name[0], 'B');
    EXPECT_EQ(xmlEnumProfileSections(profile, &second, nullptr, 0, nullptr), nullptr);
}

}  // namespace
}  // namespace host
