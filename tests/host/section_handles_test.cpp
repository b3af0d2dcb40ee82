// Section handles that are taken and released in any order.
#include <string>

#include "tests/host/table_support.h"

namespace host {
namespace {

constexpr std::string_view kThreeSections =
    "<Table name=\"A\"><Var name=\"a\" type=\"long\"><Value>1</Value></Var></Table>"
    "<Table name=\"B\"><Var name=\"b\" type=\"long\"><Value>2</Value></Var></Table>"
    "<Table name=\"C\"><Var name=\"c\" type=\"long\"><Value>3</Value></Var></Table>";

// The value of the first entry of the section.
std::string FirstValue(void* section) {
    TableEntryValueInfoStruct value;
    std::uint64_t position = 0;
    return xmlTableEntryGet(section, &position, &value, nullptr) ? value.GetVal() : "none";
}

TEST(SectionHandles, ThatFollowAReleasedOneReferToTheirOwnSections) {
    const Profile profile = LoadSections(kThreeSections);
    for (int round = 0; round < 3; ++round) {
        void* a = xmlGetProfileSection(profile, "A"_w, nullptr);
        EXPECT_EQ(FirstValue(a), "1");
        xmlTableDispose(&a);
        EXPECT_EQ(a, nullptr);
        void* c = xmlWriteProfileSection(profile, "C"_w, 0, 0, 0, nullptr);
        EXPECT_EQ(FirstValue(c), "3");
        xmlTableDispose(&c);
        std::uintptr_t position = 0;
        std::string values;
        while (void* section = xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr)) {
            values += FirstValue(section);
            xmlTableDispose(&section);
        }
        EXPECT_EQ(values, "123");
    }
}

TEST(SectionHandles, ThatAreHeldTogetherAreIndependent) {
    const Profile profile = LoadSections(kThreeSections);
    void* a = xmlGetProfileSection(profile, "A"_w, nullptr);
    void* b = xmlGetProfileSection(profile, "B"_w, nullptr);
    void* c = xmlGetProfileSection(profile, "C"_w, nullptr);
    xmlTableDispose(&a);
    xmlTableDispose(&c);
    EXPECT_EQ(FirstValue(b), "2");
    a = xmlGetProfileSection(profile, "A"_w, nullptr);
    c = xmlGetProfileSection(profile, "C"_w, nullptr);
    EXPECT_EQ(FirstValue(a), "1");
    EXPECT_EQ(FirstValue(b), "2");
    EXPECT_EQ(FirstValue(c), "3");
    for (void** handle : {&b, &c, &a})
        xmlTableDispose(handle);
}

TEST(SectionHandles, OfADeletedSectionAreReleasedAndFollowedByOthers) {
    const Profile profile = LoadSections(kThreeSections);
    void* a = xmlGetProfileSection(profile, "A"_w, nullptr);
    EXPECT_EQ(xmlWriteProfileString(profile, "A"_w, nullptr, nullptr), 1U);
    xmlTableDispose(&a);
    void* b = xmlGetProfileSection(profile, "B"_w, nullptr);
    EXPECT_EQ(FirstValue(b), "2");
    xmlTableDispose(&b);
}

TEST(SectionHandles, OfTwoProfilesDoNotMix) {
    const Profile first = LoadSections(kThreeSections);
    const Profile second = LoadSections("<Table name=\"A\"><Var name=\"a\" type=\"bool\"/></Table>");
    void* ofFirst = xmlGetProfileSection(first, "A"_w, nullptr);
    void* ofSecond = xmlGetProfileSection(second, "A"_w, nullptr);
    xmlTableDispose(&ofFirst);
    xmlTableDispose(&ofSecond);
    ofSecond = xmlGetProfileSection(second, "A"_w, nullptr);
    ofFirst = xmlGetProfileSection(first, "A"_w, nullptr);
    EXPECT_EQ(FirstValue(ofFirst), "1");
    EXPECT_EQ(FirstValue(ofSecond), "");
    xmlTableDispose(&ofSecond);
    xmlTableDispose(&ofFirst);
}

// Not allowed, but harmless.
TEST(SectionHandles, ThatAreReleasedAfterTheirProfileAreHarmless) {
    moxSettings* profile = xmlProfileNew(
        nullptr, "<Settings xmlns:noNamespaceSchemaLocation=\"\"><Table name=\"A\"/></Settings>", -1, 0);
    ASSERT_NE(profile, nullptr);
    void* before = xmlGetProfileSection(profile, "A"_w, nullptr);
    void* after = xmlGetProfileSection(profile, "A"_w, nullptr);
    void* last = xmlGetProfileSection(profile, "A"_w, nullptr);
    xmlTableDispose(&before);
    xmlProfileDispose(&profile);
    xmlTableDispose(&after);
    xmlTableDispose(&last);
    EXPECT_EQ(after, nullptr);
    EXPECT_EQ(last, nullptr);
}

}  // namespace
}  // namespace host
