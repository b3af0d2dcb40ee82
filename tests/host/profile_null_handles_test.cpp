// Null handles and null paths: every export answers as it promises.
#include "tests/host/host_support.h"

namespace host {
namespace {

constexpr std::uint32_t kGuard = 77;

TEST(NullHandle, DisposeDoesNothing) {
    moxSettings* profile = nullptr;
    xmlProfileDispose(&profile);
    EXPECT_EQ(profile, nullptr);
    void* section = nullptr;
    xmlTableDispose(&section);
    EXPECT_EQ(section, nullptr);
}

TEST(NullHandle, SaveFailsAndWritesNothing) {
    const ScratchFile file;
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        EXPECT_EQ(xmlProfileSave(nullptr, file.Name(), mode, 0, 0), 0U);
        EXPECT_EQ(xmlProfileSave(nullptr, nullptr, mode, 0, 0), 0U);
    }
    EXPECT_FALSE(file.Exists());
}

TEST(NullHandle, GetSectionGivesNullAndEditable) {
    std::uint32_t editable = kGuard;
    EXPECT_EQ(xmlGetProfileSection(nullptr, "S"_w, &editable), nullptr);
    EXPECT_EQ(editable, 1U);
    EXPECT_EQ(xmlGetProfileSection(nullptr, "S"_w, nullptr), nullptr);
}

TEST(NullHandle, EnumerationGivesNullAndEmptyNameAndKeepsThePosition) {
    std::uintptr_t position = 12345;
    wchar16 name[3] = {'x', 'y', 'z'};
    std::uint32_t editable = kGuard;
    EXPECT_EQ(xmlEnumProfileSections(nullptr, &position, name, 3, &editable), nullptr);
    EXPECT_EQ(position, 12345U);
    EXPECT_EQ(name[0], 0);
    EXPECT_EQ(name[1], 'y');
    EXPECT_EQ(name[2], 'z');
    EXPECT_EQ(editable, 1U);
    EXPECT_EQ(xmlEnumProfileSections(nullptr, &position, nullptr, 0, nullptr), nullptr);
}

TEST(NullHandle, EnumerationWithABufferOfNothingDoesNotTouchIt) {
    std::uintptr_t position = 0;
    wchar16 name[1] = {'x'};
    EXPECT_EQ(xmlEnumProfileSections(nullptr, &position, name, 0, nullptr), nullptr);
    EXPECT_EQ(name[0], 'x');
}

TEST(NullHandle, WriteSectionGivesNullAndLeavesTheMark) {
    std::uint32_t eud = kGuard;
    EXPECT_EQ(xmlWriteProfileSection(nullptr, "S"_w, 1, 2, 3, &eud), nullptr);
    EXPECT_EQ(eud, kGuard);
    EXPECT_EQ(xmlWriteProfileSection(nullptr, "S"_w, 1, 2, 3, nullptr), nullptr);
}

TEST(NullHandle, GetIntGivesTheDefault) {
    EXPECT_EQ(xmlGetProfileInt(nullptr, "S"_w, "k"_w, -9), -9);
    EXPECT_EQ(xmlGetProfileInt(nullptr, nullptr, nullptr, 8), 8);
}

TEST(NullHandle, GetStringGivesTheDefaultAndItsLength) {
    wchar16 buffer[5] = {'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(xmlGetProfileString(nullptr, "S"_w, "k"_w, buffer, 4, "ab"_w), 2U);
    EXPECT_EQ(WideText(buffer, 5), WideText({'a', 'b', 0, 0, 'x'}));
    EXPECT_EQ(xmlGetProfileString(nullptr, "S"_w, "k"_w, buffer, 4, "lengthy"_w), 3U);
    EXPECT_EQ(WideText(buffer, 5), WideText({'l', 'e', 'n', 0, 'x'}));
}

TEST(NullHandle, GetStringWithoutDefaultOrBufferGivesZero) {
    wchar16 buffer[2] = {'x', 'x'};
    EXPECT_EQ(xmlGetProfileString(nullptr, "S"_w, "k"_w, buffer, 2, nullptr), 0U);
    EXPECT_EQ(xmlGetProfileString(nullptr, "S"_w, "k"_w, buffer, 0, "ab"_w), 0U);
    EXPECT_EQ(WideText(buffer, 2), WideText({'x', 'x'}));
    EXPECT_EQ(xmlGetProfileString(nullptr, "S"_w, "k"_w, nullptr, 2, "ab"_w), 0U);
}

TEST(NullHandle, GetDataStoresNothing) {
    unsigned char byte = 0x55;
    EXPECT_EQ(xmlGetProfileData(nullptr, "S"_w, "k"_w, &byte, 1), 0U);
    EXPECT_EQ(byte, 0x55);
}

TEST(NullHandle, WritesFail) {
    EXPECT_EQ(xmlWriteProfileInt(nullptr, "S"_w, "k"_w, 1), 0U);
    EXPECT_EQ(xmlWriteProfileInt(nullptr, "S"_w, nullptr, 1), 0U);
    EXPECT_EQ(xmlWriteProfileString(nullptr, "S"_w, "k"_w, "v"_w), 0U);
    EXPECT_EQ(xmlWriteProfileString(nullptr, "S"_w, nullptr, nullptr), 0U);
    EXPECT_EQ(xmlWriteProfileData(nullptr, "S"_w, "k"_w, "v", 1), 0U);
    EXPECT_EQ(xmlWriteProfileData(nullptr, "S"_w, nullptr, nullptr, 0), 0U);
}

TEST(NullPath, SaveFailsAndKeepsTheMarks) {
    const Profile profile = LoadSections("<Table name=\"S\" eud=\"true\"/>");
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        EXPECT_EQ(xmlProfileSave(profile, nullptr, mode, 0, 0), 0U);
    }
    std::uint32_t eud = kGuard;
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 0, 0, 0, &eud)));
    EXPECT_EQ(eud, 1U);
}

}  // namespace
}  // namespace host
