#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tests/front/front_support.h"

namespace {

using mox::Profile;
using mox::Section;

std::vector<std::string> NamesOf(const Profile& profile) {
    std::vector<std::string> names;
    for (const Section& section : profile.sections())
        names.push_back(section.name());
    return names;
}

Profile FiveSections() {
    Profile profile;
    for (const char* name : {"A", "B", "C", "D", "E"})
        EXPECT_TRUE(profile.setString(name, "K", name));
    return profile;
}

TEST(FrontSections, ALoopVisitsTheSectionsInOrder) {
    EXPECT_EQ(NamesOf(FiveSections()), (std::vector<std::string>{"A", "B", "C", "D", "E"}));
    EXPECT_TRUE(NamesOf(Profile()).empty());
}

TEST(FrontSections, ALoopCanBeLeft) {
    const Profile profile = FiveSections();
    std::string seen;
    for (const Section& section : profile.sections()) {
        seen += section.name();
        if (section.name() == "B") break;
    }
    EXPECT_EQ(seen, "AB");
    EXPECT_THROW(
        for (const Section& section
             : profile.sections()) {
            if (section) throw std::uint32_t{1};
        },
        std::uint32_t);
}

// The position owns memory, so the leak check of the sanitizers would report it.
TEST(FrontSections, AnAbandonedEnumerationIsEnded) {
    const Profile profile = FiveSections();
    mox::front::SectionEnumeration enumeration(profile.handle());
    void* handle = enumeration.Next(nullptr, 0, nullptr);
    EXPECT_NE(handle, nullptr);
    xmlTableDispose(&handle);
}

TEST(FrontSections, ALoopMayAddAndRemoveSections) {
    Profile profile = FiveSections();
    for (const Section& section : profile.sections()) {
        const std::string name = section.name();
        if (name == "B" || name == "E") {
            EXPECT_TRUE(profile.removeSection(name));
        }
        if (name == "A") {
            EXPECT_TRUE(profile.makeSection("F").has_value());
        }
    }
    EXPECT_EQ(NamesOf(profile), (std::vector<std::string>{"A", "C", "D", "F"}));
}

TEST(FrontSections, NamesOfAnyLengthAreReadWhole) {
    Profile profile;
    std::vector<std::string> expected;
    for (const std::size_t length : {1U, 126U, 127U, 128U, 129U, 511U, 512U, 513U, 5000U, 2U}) {
        expected.push_back(std::string(length - 1, 'n') + static_cast<char>('a' + expected.size()));
        ASSERT_TRUE(profile.setInt(expected.back(), "K", 1));
    }
    EXPECT_EQ(NamesOf(profile), expected);
}

TEST(FrontSections, NamesAreReadInBothEncodings) {
    Profile profile;
    profile.setLossy(true);
    const std::u16string name{0xFC, 0xD800, 0xD83D, 0xDE00};
    ASSERT_TRUE(profile.makeSection(name).has_value());
    ASSERT_EQ(profile.sections().size(), 1U);
    EXPECT_EQ(profile.sections()[0].name16(), name);
    EXPECT_EQ(profile.sections()[0].name(), "\xC3\xBC\xED\xA0\x80\xF0\x9F\x98\x80");
    EXPECT_TRUE(profile.findSection(profile.sections()[0].name()).has_value());
    EXPECT_EQ(profile.findSection(name)->name16(), name);
}

TEST(FrontSections, EveryElementUnderTheRootCounts) {
    std::string text(host::kRootStart);
    text.append("<Other/><!--x--><Table name=\"S\" editable=\"true\"/><Table/>").append(host::kRootEnd);
    const auto profile = Profile::parse(text);
    ASSERT_TRUE(profile.has_value());
    const std::vector<Section> sections = profile->sections();
    ASSERT_EQ(sections.size(), 3U);
    EXPECT_EQ(sections[0].name(), "");
    EXPECT_FALSE(sections[0].isEditable());
    EXPECT_EQ(sections[1].name(), "S");
    EXPECT_TRUE(sections[1].isEditable());
    EXPECT_EQ(sections[2].name16(), u"");
}

TEST(FrontSections, ASectionIsFoundByItsName) {
    const Profile profile = FiveSections();
    const auto section = profile.findSection("C");
    ASSERT_TRUE(section.has_value());
    EXPECT_TRUE(*section);
    EXPECT_NE(section->handle(), nullptr);
    EXPECT_EQ(section->name(), "C");
    EXPECT_FALSE(section->isEditable());
    EXPECT_EQ(section->find("K")->value, "C");
    EXPECT_FALSE(profile.findSection("X").has_value());
}

TEST(FrontSections, ANewSectionHasItsOptions) {
    Profile profile;
    mox::TableOptions options;
    options.editable = true;
    options.firstId = 100;
    options.type = 0x1F;
    auto section = profile.makeSection("S", options);
    ASSERT_TRUE(section.has_value());
    EXPECT_EQ(section->name(), "S");
    EXPECT_TRUE(section->isEditable());
    EXPECT_TRUE(profile.findSection("S")->isEditable());
    EXPECT_TRUE(section->add({"K", "1"}));
    EXPECT_TRUE(profile.saveReplacing(host::ScratchFile().Path().u16string()));
    const host::ScratchFile file;
    ASSERT_TRUE(profile.saveReplacing(file.Path().u16string(), mox::Form::Narrow));
    EXPECT_EQ(file.Bytes(),
              host::SettingsFile({"\t<Table name=\"S\" first_id=\"100\" type=\"001F\" editable=\"true\">",
                                  "\t\t<Var name=\"K\" type=\"string\" array=\"\">", "\t\t\t<Value>1</Value>",
                                  "\t\t</Var>", "\t</Table>"}));
}

TEST(FrontSections, AnExistingSectionStaysEditableOrNot) {
    Profile profile;
    ASSERT_TRUE(profile.makeSection("S").has_value());
    mox::TableOptions options;
    options.editable = true;
    const auto section = profile.makeSection("S", options);
    ASSERT_TRUE(section.has_value());
    EXPECT_FALSE(section->isEditable());
    EXPECT_EQ(profile.sections().size(), 1U);
}

TEST(FrontSections, ASectionKeepsItsDocumentAlive) {
    std::optional<Section> section;
    std::vector<Section> all;
    {
        const Profile profile = FiveSections();
        section = profile.findSection("D");
        all = profile.sections();
    }
    EXPECT_EQ(section->find("K")->value, "D");
    EXPECT_TRUE(section->setValue("K", "new"));
    EXPECT_EQ(all[3].find("K")->value, "new");
    std::string seen;
    for (const mox::Entry& entry : FiveSections().findSection("E")->entries())
        seen += entry.name + *entry.value;
    EXPECT_EQ(seen, "KE");
}

TEST(FrontSections, AMovedSectionLeavesAnEmptyOne) {
    const Profile profile = FiveSections();
    auto first = profile.findSection("A");
    Section second = std::move(*first);
    EXPECT_EQ(second.name(), "A");
    EXPECT_FALSE(*first);
    EXPECT_EQ(first->handle(), nullptr);
    EXPECT_FALSE(first->find("K").has_value());
    second = std::move(*profile.findSection("B"));
    EXPECT_EQ(second.find("K")->value, "B");
}

TEST(FrontSections, ASaveWritesOnlyTheElementOfTheSection) {
    const Profile profile = FiveSections();
    const std::string expected = host::WideFile(
        "<Table name=\"B\">\n\t<Var name=\"K\" type=\"string\" array=\"\">\n\t\t<Value>B</Value>\n"
        "\t</Var>\n</Table>");
    EXPECT_EQ(front_tests::SavedBytes(*profile.findSection("B")), expected);
}

}  // namespace
