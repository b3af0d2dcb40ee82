// What Profile::saveReplacing and Table::saveReplacing replace, and what they refuse to write.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "tests/front/front_support.h"

namespace {

using front_tests::Overwriting;
using front_tests::ScratchFolder;
using mox::Form;
using mox::Problem;
using mox::Profile;
using mox::Reason;
using mox::SaveOptions;
using mox::Table;

Profile With(const char* value) {
    Profile profile;
    EXPECT_TRUE(profile.setString("S", "K", value));
    return profile;
}

class FrontSaving : public testing::Test {
  protected:
    void Write(const char* value) const { ASSERT_TRUE(With(value).saveReplacing(file, Overwriting())); }
    std::string Value() const { return Profile::open(file)->getString("S", "K").value_or("none"); }

    const ScratchFolder folder;
    const std::filesystem::path file = folder.Of("s.xml");
};

TEST_F(FrontSaving, AFileThatChangedAfterItWasReadIsNotReplaced) {
    Write("1");
    auto first = Profile::open(file);
    auto second = Profile::open(file);
    ASSERT_TRUE(first->setString("S", "K", "2") && second->setString("S", "L", "3"));
    EXPECT_TRUE(first->saveReplacing(file));
    Problem problem;
    EXPECT_FALSE(second->saveReplacing(file, &problem));
    EXPECT_EQ(problem.reason, Reason::Changed);
    EXPECT_EQ(problem.file, mox::toUtf8(file.u16string()));
    EXPECT_EQ(Value(), "2");
    EXPECT_TRUE(second->saveReplacing(file, Overwriting(), &problem));
    EXPECT_FALSE(problem);
    EXPECT_EQ(Value(), "1");
}

TEST_F(FrontSaving, AFileThatDisappearedAfterItWasReadIsNotCreated) {
    Write("1");
    auto profile = Profile::open(file);
    std::filesystem::remove(file);
    Problem problem;
    EXPECT_FALSE(profile->saveReplacing(file, &problem));
    EXPECT_EQ(problem.reason, Reason::Changed);
    EXPECT_EQ(folder.Names(), std::vector<std::string>());
}

TEST_F(FrontSaving, ADocumentIsSavedAgainAndAgain) {
    Profile profile = With("1");
    EXPECT_TRUE(profile.saveReplacing(file));
    EXPECT_TRUE(profile.setString("S", "K", "2"));
    EXPECT_TRUE(profile.saveReplacing(file));
    EXPECT_EQ(Value(), "2");
    Write("3");
    EXPECT_FALSE(profile.saveReplacing(file));
    EXPECT_EQ(Value(), "3");
}

TEST_F(FrontSaving, ANewDocumentReplacesNoFileThatNobodyRead) {
    Write("1");
    Problem problem;
    EXPECT_FALSE(With("2").saveReplacing(file, &problem));
    EXPECT_EQ(problem.reason, Reason::Changed);
    EXPECT_EQ(Value(), "1");
    Table table = Table::create("T");
    EXPECT_FALSE(table.saveReplacing(file, &problem));
    EXPECT_EQ(problem.reason, Reason::Changed);
    EXPECT_TRUE(table.saveReplacing(file, Overwriting()));
    EXPECT_TRUE(Table::open(file, "T").has_value());
}

TEST_F(FrontSaving, AnotherFileIsReplacedOnlyIfItHasTheSameContent) {
    Write("1");
    auto profile = Profile::open(file);
    ASSERT_TRUE(profile->setString("S", "K", "2"));
    std::filesystem::copy_file(file, folder.Of("same.xml"));
    ASSERT_TRUE(With("3").saveReplacing(folder.Of("other.xml")));
    EXPECT_TRUE(profile->saveReplacing(folder.Of("same.xml")));
    EXPECT_FALSE(profile->saveReplacing(folder.Of("other.xml")));
    EXPECT_TRUE(profile->saveReplacing(folder.Of("new.xml")));
}

TEST_F(FrontSaving, AnExportDoesNotReplaceTheFileThatWasRead) {
    Write("1");
    const auto profile = Profile::open(file);
    SaveOptions options;
    options.content = mox::Content::Ui;
    Problem problem;
    EXPECT_FALSE(profile->saveReplacing(file, options, &problem));
    EXPECT_EQ(problem.reason, Reason::Changed);
    EXPECT_EQ(Value(), "1");
}

TEST_F(FrontSaving, ASectionReplacesNoFile) {
    Write("1");
    const auto profile = Profile::open(file);
    const auto section = profile->findSection("S");
    EXPECT_FALSE(section->saveReplacing(file));
    EXPECT_EQ(Value(), "1");
    EXPECT_TRUE(section->saveReplacing(folder.Of("section.xml")));
}

TEST_F(FrontSaving, ABackupHasTheOldFile) {
    Write("1");
    auto profile = Profile::open(file);
    ASSERT_TRUE(profile->setString("S", "K", "2"));
    SaveOptions options;
    options.backup = mox::Text(folder.Of("s.xml.bak"));
    EXPECT_TRUE(profile->saveReplacing(file, options));
    EXPECT_EQ(Value(), "2");
    EXPECT_EQ(Profile::open(folder.Of("s.xml.bak"))->getString("S", "K"), "1");
}

TEST_F(FrontSaving, TextThatANarrowFileDoesNotKeepIsNotSavedAsOne) {
    Write("\xC3\xA4");
    auto profile = Profile::open(file);
    Problem problem;
    EXPECT_FALSE(profile->saveReplacing(file, Form::Narrow, &problem));
    EXPECT_EQ(problem.reason, Reason::NotKept);
    EXPECT_EQ(problem.message, "the document contains U+00E4, and a narrow file keeps 7-bit text only");
    EXPECT_EQ(Value(), "\xC3\xA4");
    profile->setLossy(true);
    EXPECT_TRUE(profile->saveReplacing(file, Form::Narrow));
}

// Reads, adds a key and saves, until nobody else has saved in between. Returns whether that succeeded.
bool AddKey(const std::filesystem::path& file, const std::string& section, int key) {
    constexpr int kMostTries = 10000;
    for (int tries = 0; tries < kMostTries; ++tries) {
        auto profile = Profile::open(file);
        if (!profile.has_value() || !profile->set(section, std::to_string(key), key)) return false;
        Problem problem;
        if (profile->saveReplacing(file, &problem)) return true;
        if (problem.reason != Reason::Changed && problem.reason != Reason::Busy) return false;
    }
    return false;
}

TEST_F(FrontSaving, TwoWritersOfAHundredKeysLoseNone) {
    constexpr int kKeys = 100;
    Write("1");
    int added[2] = {};
    const auto write = [&](int writer) {
        for (int key = 0; key < kKeys; ++key)
            added[writer] += AddKey(file, "S" + std::to_string(writer), key) ? 1 : 0;
    };
    std::thread other(write, 1);
    write(0);
    other.join();
    EXPECT_EQ(added[0], kKeys);
    EXPECT_EQ(added[1], kKeys);
    const auto profile = Profile::open(file);
    ASSERT_TRUE(profile.has_value());
    for (const char* const section : {"S0", "S1"}) {
        for (int key = 0; key < kKeys; ++key)
            EXPECT_EQ(profile->get<int>(section, std::to_string(key)), key) << section;
    }
}

TEST_F(FrontSaving, ADeepDocumentIsNotSaved) {
    constexpr std::size_t kLevels = 100000;
    std::string text = host::Lines({host::kDeclaration, host::kRootStart});
    for (std::size_t i = 0; i < kLevels; ++i)
        text += "<a>";
    for (std::size_t i = 0; i < kLevels; ++i)
        text += "</a>";
    text += host::Lines({host::kRootEnd});
    auto profile = Profile::parse(text);
    ASSERT_TRUE(profile.has_value());
    Problem problem;
    EXPECT_FALSE(profile->saveReplacing(file, &problem));
    EXPECT_EQ(problem.reason, Reason::TooDeep);
    EXPECT_EQ(folder.Names(), std::vector<std::string>());
}

TEST_F(FrontSaving, AnEntryOfADeepTableIsNotReplaced) {
    constexpr std::size_t kLevels = 100000;
    std::string text = "<Var name=\"A\" type=\"long\"><Value>1</Value><UI><Comment>c</Comment></UI></Var>";
    for (std::size_t i = 0; i < kLevels; ++i)
        text += "<a>";
    for (std::size_t i = 0; i < kLevels; ++i)
        text += "</a>";
    Table table = front_tests::TableWith(text);
    Problem problem;
    EXPECT_FALSE(table.setComment("A", "", &problem));
    EXPECT_EQ(problem.reason, Reason::TooDeep);
    EXPECT_EQ(table.find("A")->ui->comment, "c");
}

TEST_F(FrontSaving, AnObjectThatWasMovedFromSavesNothing) {
    Profile profile = With("1");
    const Profile moved = std::move(profile);
    Problem problem;
    // NOLINTNEXTLINE(bugprone-use-after-move): its state after the move is tested
    EXPECT_FALSE(profile.saveReplacing(file, &problem));
    EXPECT_EQ(problem.reason, Reason::NotStored);
    EXPECT_EQ(folder.Names(), std::vector<std::string>());
}

}  // namespace
