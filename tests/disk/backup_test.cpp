// The backup that is made before a file is replaced.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/disk/disk_support.h"
#if !defined(_WIN32)
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;
using disk_tests::OnlyIf;
using disk_tests::ReasonFor;
using disk_tests::ScratchFolder;
using disk_tests::StampOf;
using disk_tests::WithBackup;
using mox::Reason;
using Names = std::vector<std::string>;

class Backup : public testing::Test {
  protected:
    Backup() { host::WriteBytes(file, "old"); }

    const ScratchFolder folder;
    const fs::path file = folder.Of("f.xml");
    const fs::path backup = folder.Of("f.xml.bak");
};

TEST_F(Backup, HasTheOldFile) {
    EXPECT_EQ(ReasonFor(file, "new", WithBackup(backup)), Reason::None);
    EXPECT_EQ(host::ReadBytes(file), "new");
    EXPECT_EQ(host::ReadBytes(backup), "old");
    EXPECT_EQ(ReasonFor(file, "newer", WithBackup(backup)), Reason::None);
    EXPECT_EQ(host::ReadBytes(backup), "new");
    EXPECT_EQ(folder.Names(), (Names{"f.xml", "f.xml.bak"}));
}

TEST_F(Backup, IsNotMadeOfAMissingFile) {
    fs::remove(file);
    host::WriteBytes(backup, "kept");
    EXPECT_EQ(ReasonFor(file, "new", WithBackup(backup)), Reason::None);
    EXPECT_EQ(host::ReadBytes(backup), "kept");
}

TEST_F(Backup, IsNotMadeOfAFileThatHasChanged) {
    const mox::FileStamp stamp = StampOf(file);
    host::WriteBytes(file, "changed");
    mox::ReplaceOptions options = WithBackup(backup);
    options.onlyIf = &stamp;
    EXPECT_EQ(ReasonFor(file, "new", options), Reason::Changed);
    EXPECT_EQ(folder.Names(), Names{"f.xml"});
}

TEST_F(Backup, ThatFailsLeavesTheFileAndWhatWasThere) {
    mox::Problem problem;
    const auto tryTo = [&](const fs::path& path) {
        EXPECT_FALSE(mox::replaceFile(file.u16string(), "new", WithBackup(path), nullptr, &problem));
        EXPECT_EQ(host::ReadBytes(file), "old");
        return problem.reason;
    };
    fs::create_directory(backup);
    EXPECT_EQ(tryTo(backup), Reason::NotRegularFile);
    EXPECT_EQ(problem.file, mox::toUtf8(backup.u16string()));
    EXPECT_TRUE(fs::is_empty(backup));
    EXPECT_EQ(tryTo(folder.Of("none/f.bak")), Reason::NotFound);
    EXPECT_EQ(tryTo(fs::path()), Reason::InvalidText);
    EXPECT_EQ(tryTo(file), Reason::InvalidText);
    EXPECT_EQ(folder.Names(), (Names{"f.xml", "f.xml.bak"}));
}

#if !defined(_WIN32)

using disk_tests::ModeOf;

TEST_F(Backup, HasTheAccessOfTheFile) {
    host::WriteBytes(backup, "wide open");
    ASSERT_EQ(chmod(backup.c_str(), 0666), 0);
    for (const mode_t mode : {0600U, 0640U, 0664U}) {
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        EXPECT_EQ(ReasonFor(file, "new", WithBackup(backup)), Reason::None);
        EXPECT_EQ(ModeOf(backup), mode);
        EXPECT_EQ(ModeOf(file), mode);
    }
}

TEST_F(Backup, TakesThePlaceOfALinkAndLeavesItsTarget) {
    const fs::path victim = folder.Of("victim");
    host::WriteBytes(victim, "mine");
    ASSERT_EQ(chmod(victim.c_str(), 0600), 0);
    for (const char* const target : {"victim", "missing", "f.xml"}) {
        host::WriteBytes(file, "old");
        ASSERT_EQ(chmod(file.c_str(), 0644), 0);
        fs::remove(backup);
        fs::create_symlink(target, backup);
        EXPECT_EQ(ReasonFor(file, "new", WithBackup(backup)), Reason::None);
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(backup))) << target;
        EXPECT_EQ(host::ReadBytes(backup), "old");
        EXPECT_EQ(host::ReadBytes(file), "new");
    }
    EXPECT_EQ(host::ReadBytes(victim), "mine");
    EXPECT_EQ(ModeOf(victim), mode_t{0600});
    EXPECT_EQ(folder.Names(), (Names{"f.xml", "f.xml.bak", "victim"}));
}

TEST_F(Backup, TakesThePlaceOfAHardLinkAndLeavesItsFile) {
    const fs::path victim = folder.Of("victim");
    host::WriteBytes(victim, "mine");
    fs::create_hard_link(victim, backup);
    EXPECT_EQ(ReasonFor(file, "new", WithBackup(backup)), Reason::None);
    EXPECT_EQ(host::ReadBytes(backup), "old");
    EXPECT_EQ(host::ReadBytes(victim), "mine");
    fs::remove(backup);
    fs::create_hard_link(file, backup);
    EXPECT_EQ(ReasonFor(file, "newer", WithBackup(backup)), Reason::None);
    EXPECT_EQ(host::ReadBytes(backup), "new");
    EXPECT_EQ(host::ReadBytes(file), "newer");
}

TEST_F(Backup, IsNotTheFileItselfWhichHasAnotherLink) {
    fs::create_hard_link(file, folder.Of("other"));
    EXPECT_EQ(ReasonFor(file, "new", WithBackup(file)), Reason::InvalidText);
    EXPECT_EQ(host::ReadBytes(file), "old");
    EXPECT_EQ(fs::hard_link_count(file), 2U);
}

TEST_F(Backup, IsRefusedWhereThereIsAPipe) {
    ASSERT_EQ(mkfifo(backup.c_str(), 0600), 0);
    EXPECT_EQ(ReasonFor(file, "new", WithBackup(backup)), Reason::NotRegularFile);
    EXPECT_TRUE(fs::is_fifo(backup));
    EXPECT_EQ(host::ReadBytes(file), "old");
}

TEST_F(Backup, ThatDoesNotFitOnTheDiskLeavesTheOneBefore) {
    host::WriteBytes(file, std::string(100000, 'x'));
    host::WriteBytes(backup, "good");
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{4096, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const Reason reason = ReasonFor(file, "new", WithBackup(backup));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(reason, Reason::WriteFailed);
    EXPECT_EQ(host::ReadBytes(backup), "good");
    EXPECT_EQ(host::ReadBytes(file).size(), 100000U);
    EXPECT_EQ(folder.Names(), (Names{"f.xml", "f.xml.bak"}));
}

#endif

}  // namespace
