// Saves that replace a file: the old file stays if they fail, its properties are kept if they succeed.
#include <filesystem>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <vector>

#include "tests/front/front_support.h"
#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;
using front_tests::ScratchFolder;
using mox::Form;
using mox::Profile;
using Names = std::vector<std::string>;

Profile WithText(std::size_t length) {
    Profile profile;
    EXPECT_TRUE(profile.setString("S", "K", std::string(length, 'x')));
    return profile;
}

// Writes the text to the file as the exports do.
bool WriteText(const wchar16* path, std::string_view text) {
    const std::basic_string<wchar16> units(path);
    host::WriteBytes(fs::path(std::u16string(units.begin(), units.end())), text);
    return true;
}

class FrontReplacing : public testing::Test {
  protected:
    FrontReplacing() { host::WriteBytes(file, "old"); }

    void ExpectTheOldFileAlone() const {
        EXPECT_EQ(host::ReadBytes(file), "old");
        EXPECT_EQ(folder.Names(), Names{"s.xml"});
    }

    const ScratchFolder folder;
    const fs::path file = folder.Of("s.xml");
};

TEST_F(FrontReplacing, WritesBesideTheFileAndRenames) {
    const bool isReplaced = mox::front::ReplaceWholeFile(file.u16string(), [&](const wchar16* temporary) {
        EXPECT_EQ(host::ReadBytes(file), "old");
        EXPECT_EQ(folder.Names().size(), 2U);
        return WriteText(temporary, "new");
    });
    EXPECT_TRUE(isReplaced);
    EXPECT_EQ(host::ReadBytes(file), "new");
    EXPECT_EQ(folder.Names(), Names{"s.xml"});
}

TEST_F(FrontReplacing, CreatesAMissingFile) {
    fs::remove(file);
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string()));
    EXPECT_EQ(Profile::open(file.u16string())->getString("S", "K"), "xxxxx");
    EXPECT_EQ(folder.Names(), Names{"s.xml"});
}

TEST_F(FrontReplacing, AFailedWriteLeavesTheOldFile) {
    EXPECT_FALSE(mox::front::ReplaceWholeFile(
        file.u16string(), [&](const wchar16* temporary) { return WriteText(temporary, "half") && false; }));
    ExpectTheOldFileAlone();
}

TEST_F(FrontReplacing, AnExceptionLeavesTheOldFile) {
    EXPECT_THROW(mox::front::ReplaceWholeFile(file.u16string(),
                                              [&](const wchar16* temporary) -> bool {
                                                  WriteText(temporary, "half");
                                                  throw std::bad_alloc();
                                              }),
                 std::bad_alloc);
    ExpectTheOldFileAlone();
}

TEST_F(FrontReplacing, UsesAnotherNameIfTheNameExists) {
    // The names are numbered: the next ones are used up here.
    std::string next;
    ASSERT_TRUE(mox::front::ReplaceWholeFile(file.u16string(), [&](const wchar16* temporary) {
        const std::basic_string<wchar16> units(temporary);
        next = fs::path(std::u16string(units.begin(), units.end())).filename().string();
        return WriteText(temporary, "old");
    }));
    const std::size_t dash = next.rfind('-');
    const int number = std::stoi(next.substr(dash + 1));
    for (int i = 1; i <= 3; ++i)
        host::WriteBytes(folder.Of((next.substr(0, dash + 1) + std::to_string(number + i) + ".tmp").c_str()),
                         "mine");
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string()));
    EXPECT_EQ(folder.Names().size(), 4U);
    EXPECT_EQ(
        host::ReadBytes(folder.Of((next.substr(0, dash + 1) + std::to_string(number + 2) + ".tmp").c_str())),
        "mine");
    EXPECT_EQ(Profile::open(file.u16string())->getString("S", "K"), "xxxxx");
}

TEST_F(FrontReplacing, AFileThatBecameAFolderStays) {
    EXPECT_FALSE(mox::front::ReplaceWholeFile(file.u16string(), [&](const wchar16* temporary) {
        fs::remove(file);
        fs::create_directory(file);
        host::WriteBytes(file / "kept", "kept");
        return WriteText(temporary, "new");
    }));
    EXPECT_EQ(host::ReadBytes(file / "kept"), "kept");
    EXPECT_EQ(folder.Names(), Names{"s.xml"});
}

TEST_F(FrontReplacing, RefusesPathsThatCannotBeFiles) {
    const Profile profile = WithText(5);
    const char* const null = nullptr;
    EXPECT_FALSE(profile.saveReplacing(""));
    EXPECT_FALSE(profile.saveReplacing(null));
    EXPECT_FALSE(profile.saveReplacing("a\xFF"));
    EXPECT_FALSE(profile.saveReplacing(folder.Of("none/s.xml").u16string()));
    fs::create_directory(folder.Of("folder"));
    EXPECT_FALSE(profile.saveReplacing(folder.Of("folder").u16string()));
    EXPECT_TRUE(fs::is_empty(folder.Of("folder")));
    EXPECT_EQ(folder.Names(), (Names{"folder", "s.xml"}));
}

TEST_F(FrontReplacing, AcceptsANameWithoutAFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.Of(""));
    const bool isSaved = WithText(5).saveReplacing("s.xml") && WithText(6).saveReplacing("t.xml");
    fs::current_path(before);
    EXPECT_TRUE(isSaved);
    EXPECT_EQ(folder.Names(), (Names{"s.xml", "t.xml"}));
}

#if defined(_WIN32)

TEST_F(FrontReplacing, AFileInUseIsNotReplaced) {
    const HANDLE handle =
        CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(WithText(5).saveReplacing(file.u16string()));
    CloseHandle(handle);
    ExpectTheOldFileAlone();
}

TEST_F(FrontReplacing, KeepsAttributes) {
    ASSERT_TRUE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_HIDDEN));
    const DWORD attributes = GetFileAttributesW(file.c_str());
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string()));
    EXPECT_EQ(GetFileAttributesW(file.c_str()), attributes);
}

TEST_F(FrontReplacing, AReadOnlyFileIsNotReplaced) {
    ASSERT_TRUE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_FALSE(WithText(5).saveReplacing(file.u16string()));
    EXPECT_TRUE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL));
    ExpectTheOldFileAlone();
}

#else

mode_t ModeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

// While this exists, no file can grow beyond the size: writing fails as on a full disk.
class SmallDisk {
  public:
    explicit SmallDisk(rlim_t size) {
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &old_), 0);
        const rlimit small{size, old_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    }
    ~SmallDisk() {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, handler_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

  private:
    rlimit old_{};
    void (*handler_)(int) = nullptr;
};

TEST_F(FrontReplacing, AFullDiskLeavesTheOldFile) {
    const Profile profile = WithText(100000);
    mox::Table table = mox::Table::create("T");
    ASSERT_TRUE(table.add({"K", std::string(100000, 'x')}));
    {
        const SmallDisk full(4096);
        EXPECT_FALSE(profile.saveReplacing(file.u16string()));
        EXPECT_FALSE(profile.saveReplacing(file.u16string(), Form::Narrow));
        EXPECT_FALSE(table.saveReplacing(file.u16string()));
    }
    ExpectTheOldFileAlone();
    EXPECT_TRUE(profile.saveReplacing(file.u16string()));
}

TEST_F(FrontReplacing, KeepsModeBits) {
    for (const mode_t mode : {0600U, 0640U, 0664U, 0755U, 0606U}) {
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        EXPECT_TRUE(WithText(5).saveReplacing(file.u16string()));
        EXPECT_EQ(ModeOf(file), mode);
    }
}

TEST_F(FrontReplacing, GivesANewFileTheUsualModeBits) {
    const mode_t mask = umask(0027);
    const bool isSaved = WithText(5).saveReplacing(folder.Of("new.xml").u16string());
    umask(mask);
    EXPECT_TRUE(isSaved);
    EXPECT_EQ(ModeOf(folder.Of("new.xml")), mode_t{0640});
}

TEST_F(FrontReplacing, KeepsOwnerAndGroupIfPermitted) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser may";
    ASSERT_EQ(chown(file.c_str(), 1234, 2345), 0);
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string()));
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 1234U);
    EXPECT_EQ(status.st_gid, 2345U);
}

TEST_F(FrontReplacing, AReadOnlyFileIsNotReplaced) {
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    const bool mayWrite = access(file.c_str(), W_OK) == 0;  // the superuser may
    EXPECT_EQ(WithText(5).saveReplacing(file.u16string()), mayWrite);
    EXPECT_EQ(ModeOf(file), mode_t{0444});
    if (!mayWrite) ExpectTheOldFileAlone();
}

TEST_F(FrontReplacing, FollowsLinksAndKeepsThem) {
    fs::create_directory(folder.Of("far"));
    const fs::path target = folder.Of("far/target.xml");
    host::WriteBytes(target, "old");
    ASSERT_EQ(chmod(target.c_str(), 0640), 0);
    fs::remove(file);
    fs::create_symlink("far/hop.xml", file);
    fs::create_symlink(fs::absolute(target), folder.Of("far/hop.xml"));
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string()));
    EXPECT_TRUE(fs::is_symlink(file) && fs::is_symlink(folder.Of("far/hop.xml")) && !fs::is_symlink(target));
    EXPECT_EQ(Profile::open(target.u16string())->getString("S", "K"), "xxxxx");
    EXPECT_EQ(ModeOf(target), mode_t{0640});
    EXPECT_EQ(folder.Names(), (Names{"far", "s.xml"}));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Of("far")), fs::directory_iterator()), 2);
}

TEST_F(FrontReplacing, ALinkToAMissingFileCreatesIt) {
    fs::remove(file);
    fs::create_symlink("new.xml", file);
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string()));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_FALSE(fs::is_symlink(folder.Of("new.xml")));
    EXPECT_EQ(folder.Names(), (Names{"new.xml", "s.xml"}));
}

TEST_F(FrontReplacing, ALinkToItselfIsRefused) {
    fs::remove(file);
    fs::create_symlink("s.xml", file);
    EXPECT_FALSE(WithText(5).saveReplacing(file.u16string()));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(folder.Names(), Names{"s.xml"});
}

TEST_F(FrontReplacing, AFileThatIsNotRegularIsRefused) {
    const fs::path pipe = folder.Of("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(WithText(5).saveReplacing(pipe.u16string()));
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_EQ(folder.Names(), (Names{"pipe", "s.xml"}));
}

TEST_F(FrontReplacing, ManySavesLeaveNoFilesOpen) {
    const Profile profile = WithText(5);
    const auto countOpen = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = countOpen();
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(profile.saveReplacing(file.u16string()));
        EXPECT_FALSE(profile.saveReplacing(folder.Of("").u16string()));
        mox::front::ReplaceWholeFile(file.u16string(), [](const wchar16*) { return false; });
    }
    EXPECT_EQ(countOpen(), before);
}

#endif

}  // namespace
