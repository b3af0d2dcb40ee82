// Another user who may write in the folder of the file tries to have the superuser do harm. For these tests, which need
// users, the tests must run as root.
#if !defined(_WIN32)

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <grp.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/disk/disk_support.h"
#include "tests/faults/child_process_support.h"

namespace {

namespace fs = std::filesystem;
using disk_tests::ReasonFor;
using disk_tests::ScratchFolder;
using disk_tests::WithBackup;
using mox::Reason;

constexpr uid_t kAttacker = 41236;

// How long the attacker gets to be in time.
constexpr std::chrono::seconds kLongest{20};

bool BecomeAttacker() {
    return setgroups(0, nullptr) == 0 && setgid(kAttacker) == 0 && setuid(kAttacker) == 0;
}

// Another user who does the same thing again and again with each temporary file that appears in a folder. The test fails
// if none ever does while this exists.
class Attacker {
  public:
    // `attack` is called with the name of the file; the folder is the current one. It returns whether the file was still
    // there.
    Attacker(const fs::path& folder, const std::function<bool(const char* name)>& attack)
        : attempts_(static_cast<std::atomic<int>*>(mmap(
              nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))),
          process_(fork()) {
        if (process_ != 0) return;
        if (chdir(folder.c_str()) != 0 || !BecomeAttacker()) _exit(1);
        for (;;) {
            DIR* const names = opendir(".");
            if (names == nullptr) _exit(1);
            while (const dirent* const entry = readdir(names)) {
                if (std::strncmp(entry->d_name, ".mox-", 5) == 0 && attack(entry->d_name)) ++*attempts_;
            }
            closedir(names);
        }
    }
    ~Attacker() {
        kill(process_, SIGKILL);
        int status = 0;
        waitpid(process_, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << "it gave up";
        EXPECT_GT(Attempts(), 0) << "the attacker was never in time";
        munmap(attempts_, sizeof *attempts_);
    }
    Attacker(const Attacker&) = delete;
    Attacker& operator=(const Attacker&) = delete;

    // How many times it was in time.
    int Attempts() const { return *attempts_; }

  private:
    std::atomic<int>* attempts_;  // shared by both processes
    pid_t process_;
};

class HostileFolder : public testing::Test {
  protected:
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only the superuser can be attacked by another user here";
        ASSERT_TRUE(fs::create_directory(open));
        ASSERT_EQ(chmod(open.c_str(), 0777), 0);
        host::WriteBytes(file, "old");
        host::WriteBytes(victim, "secret");
        ASSERT_EQ(chmod(victim.c_str(), 0600), 0);
        if (faults::InChild([&]() -> std::string {
                return BecomeAttacker() && access(open.c_str(), W_OK) == 0 ? "" : "no";
            }) != "")
            GTEST_SKIP() << "other users cannot reach the folder";
    }

    // Replaces the file under attack until some attempts have failed. `check` is called after each.
    void ReplaceUntilFoiled(const std::function<bool(const char* name)>& attack) {
        const Attacker attacker(open, attack);
        const auto end = std::chrono::steady_clock::now() + kLongest;
        std::string expected = "old";
        int foiled = 0;
        for (int round = 0; round < 100 || (foiled == 0 && std::chrono::steady_clock::now() < end); ++round) {
            const std::string text = "text " + std::to_string(round);
            mox::Problem problem;
            const bool isReplaced = mox::replaceFile(file.u16string(), text, {}, nullptr, &problem);
            ExpectUnharmedVictim();
            if (isReplaced) expected = text;
            if (!isReplaced) ++foiled;
            // Only a file that came into place after the last look can be another one, and then it is not a success.
            const bool isWhole =
                fs::is_regular_file(fs::symlink_status(file)) && host::ReadBytes(file) == expected;
            ASSERT_TRUE(isWhole || (!isReplaced && problem.reason == Reason::Changed)) << problem.toString();
            if (!isWhole) {
                fs::remove(file);
                host::WriteBytes(file, expected);
            }
            if (HasFailure()) return;
        }
        EXPECT_GT(foiled, 0) << "the attacker was never in time";
        RecordProperty("foiled", foiled);
    }

    void ExpectUnharmedVictim() const {
        struct stat status {};
        ASSERT_EQ(stat(victim.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, mode_t{0600});
        EXPECT_EQ(status.st_uid, 0U);
        EXPECT_EQ(host::ReadBytes(victim), "secret");
    }

    const ScratchFolder folder;
    const fs::path open = folder.Of("open");
    const fs::path file = open / "f.xml";
    const fs::path victim = folder.Of("victim");
};

TEST_F(HostileFolder, ATemporaryFileExchangedByALinkHarmsNobody) {
    const std::string target = fs::absolute(victim).string();
    ReplaceUntilFoiled(
        [&](const char* name) { return unlink(name) == 0 && symlink(target.c_str(), name) == 0; });
}

TEST_F(HostileFolder, ATemporaryFileMovedAwayForALinkHarmsNobody) {
    const std::string target = fs::absolute(victim).string();
    ReplaceUntilFoiled(
        [&](const char* name) { return rename(name, "moved") == 0 && symlink(target.c_str(), name) == 0; });
}

TEST_F(HostileFolder, ATemporaryFileExchangedByAnotherOneIsNoSuccess) {
    ReplaceUntilFoiled([](const char* name) {
        if (unlink(name) != 0) return false;
        const int other = ::open(name, O_WRONLY | O_CREAT | O_EXCL, 0666);
        if (other < 0) return false;
        const bool isWritten = write(other, "forged", 6) == 6;
        close(other);
        return isWritten;
    });
}

TEST_F(HostileFolder, ATemporaryFileThatIsRemovedIsNoSuccess) {
    ReplaceUntilFoiled([](const char* name) { return unlink(name) == 0; });
}

TEST_F(HostileFolder, ALinkOfAnotherUserToAFileOfTheSuperuserIsNotFollowed) {
    fs::remove(file);
    fs::create_symlink(fs::absolute(victim), file);
    ASSERT_EQ(lchown(file.c_str(), kAttacker, kAttacker), 0);
    EXPECT_EQ(ReasonFor(file, "new"), Reason::NoPermission);
    ExpectUnharmedVictim();
    fs::remove(file);
    fs::create_symlink(fs::absolute(folder.Of("missing")), file);
    ASSERT_EQ(lchown(file.c_str(), kAttacker, kAttacker), 0);
    EXPECT_EQ(ReasonFor(file, "new"), Reason::NoPermission);
    EXPECT_FALSE(fs::exists(folder.Of("missing")));
}

TEST_F(HostileFolder, ALinkOfTheOwnerOfTheFileIsFollowed) {
    fs::rename(file, open / "target");
    fs::create_symlink("target", file);
    ASSERT_EQ(lchown(file.c_str(), kAttacker, kAttacker), 0);
    ASSERT_EQ(chown((open / "target").c_str(), kAttacker, kAttacker), 0);
    EXPECT_EQ(ReasonFor(file, "new"), Reason::None);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(host::ReadBytes(open / "target"), "new");
}

TEST_F(HostileFolder, ALinkAtTheNameOfTheBackupHarmsNobody) {
    const fs::path backup = open / "f.xml.bak";
    fs::create_symlink(fs::absolute(victim), backup);
    ASSERT_EQ(lchown(backup.c_str(), kAttacker, kAttacker), 0);
    EXPECT_EQ(ReasonFor(file, "new", WithBackup(backup)), Reason::None);
    ExpectUnharmedVictim();
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(backup)));
    EXPECT_EQ(host::ReadBytes(backup), "old");
}

TEST_F(HostileFolder, ABackupThatIsExchangedHarmsNobody) {
    const std::string target = fs::absolute(victim).string();
    const fs::path backup = open / "f.xml.bak";
    const Attacker attacker(open, [&](const char* name) {
        const bool isExchanged = unlink(name) == 0 && symlink(target.c_str(), name) == 0;
        unlink("f.xml.bak");
        static_cast<void>(symlink(target.c_str(), "f.xml.bak") == 0);
        return isExchanged;
    });
    const auto end = std::chrono::steady_clock::now() + kLongest;
    for (int round = 0; round < 50 || (attacker.Attempts() == 0 && std::chrono::steady_clock::now() < end);
         ++round) {
        mox::Problem problem;
        static_cast<void>(mox::replaceFile(file.u16string(), "new", WithBackup(backup), nullptr, &problem));
        ExpectUnharmedVictim();
        // What the attacker himself puts there is up to him, but nothing of it is by our hand.
        if (!fs::is_regular_file(fs::symlink_status(file))) {
            fs::remove(file);
            host::WriteBytes(file, "old");
        }
    }
}

TEST_F(HostileFolder, APrivateFileIsNeverOpenForOthers) {
    ASSERT_EQ(chmod(file.c_str(), 0600), 0);
    // Whoever could open the temporary file could read what is written to it.
    const std::string taken = fs::absolute(open / "taken").string();
    {
        const Attacker attacker(open, [&](const char* name) {
            const int opened = ::open(name, O_RDONLY);
            const bool isRefused = opened < 0 && errno == EACCES;
            if (opened >= 0) close(::open(taken.c_str(), O_WRONLY | O_CREAT, 0666));
            return isRefused;
        });
        const auto end = std::chrono::steady_clock::now() + kLongest;
        for (int round = 0;
             round < 100 || (attacker.Attempts() == 0 && std::chrono::steady_clock::now() < end); ++round)
            EXPECT_EQ(ReasonFor(file, "new"), Reason::None);
    }
    EXPECT_FALSE(fs::exists(taken));
}

}  // namespace

#endif
