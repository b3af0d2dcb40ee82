// The root of a profile, and profile functions on a handle without one: no document that a host can open gives one.
#include <gtest/gtest.h>

#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/profile/sections.h"
#include "mox_xmlApi/profile/settings.h"
#include "tests/unit/scratch_file.h"
#include "tests/unit/xml_support.h"

namespace mox::test {
namespace {

TEST(ProfileRoot, IsMadeOnceWithTheDocument) {
    const OwnedSettings owner(new moxSettings);
    moxSettings& settings = *owner;
    EXPECT_TRUE(settings.CreateNew());
    XmlNode* const root = settings.root;
    ASSERT_NE(root, nullptr);
    const std::string made = Written(settings.document.root);
    EXPECT_FALSE(settings.CreateNew());
    EXPECT_FALSE(settings.LocateRoot());
    EXPECT_EQ(settings.root, root);
    EXPECT_EQ(Written(settings.document.root), made);
}

TEST(ProfileRoot, IsNotLookedForBeforeADocumentIsLoaded) {
    const OwnedSettings owner(new moxSettings);
    moxSettings& settings = *owner;
    EXPECT_FALSE(settings.LocateRoot());
    EXPECT_EQ(settings.root, nullptr);
    EXPECT_TRUE(settings.document.root->children.IsEmpty());
}

class RootlessProfile : public testing::Test {
  protected:
    ~RootlessProfile() override { EXPECT_TRUE(settings_.document.root->children.IsEmpty()); }

    const OwnedSettings owner_{new moxSettings};
    moxSettings& settings_ = *owner_;
};

TEST_F(RootlessProfile, MakesNoSection) {
    std::uint32_t eud = 7;
    EXPECT_EQ(xmlWriteProfileSection(&settings_, "S"_w.data(), 1, 2, 3, &eud), nullptr);
    EXPECT_EQ(eud, 0U);
}

TEST_F(RootlessProfile, HasNoSections) {
    std::uint32_t editable = 7;
    EXPECT_EQ(xmlGetProfileSection(&settings_, "S"_w.data(), &editable), nullptr);
    std::uintptr_t position = 0;
    EXPECT_EQ(xmlEnumProfileSections(&settings_, &position, nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(position, 0U);
    EXPECT_EQ(DeleteSection(settings_, nullptr), 0);
}

TEST_F(RootlessProfile, WritesNoKeys) {
    EXPECT_EQ(xmlWriteProfileInt(&settings_, "S"_w.data(), "K"_w.data(), 1), 0U);
    EXPECT_EQ(xmlWriteProfileString(&settings_, "S"_w.data(), "K"_w.data(), "1"_w.data()), 0U);
    EXPECT_EQ(xmlWriteProfileData(&settings_, "S"_w.data(), "K"_w.data(), "1", 1), 0U);
    EXPECT_EQ(xmlGetProfileInt(&settings_, "S"_w.data(), "K"_w.data(), 5), 5);
}

TEST_F(RootlessProfile, RemovesNothing) {
    EXPECT_EQ(xmlWriteProfileString(&settings_, "S"_w.data(), "K"_w.data(), nullptr), 0U);
    EXPECT_EQ(xmlWriteProfileString(&settings_, "S"_w.data(), nullptr, nullptr), 0U);
}

TEST_F(RootlessProfile, IsSavedAsAnEmptyDocument) {
    const ScratchFile file;
    EXPECT_EQ(xmlProfileSave(&settings_, file.Name(), 0, 0, 0), 1U);
    EXPECT_EQ(file.Bytes(), std::string(1, '\0'));
}

}  // namespace
}  // namespace mox::test
