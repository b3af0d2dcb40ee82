// Files that are replaced: the old file stays if that fails, its properties are kept if it succeeds.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "mox_xmlApi/disk/replace_on_system.h"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/disk/disk_support.h"
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
using front_tests::Overwriting;
using front_tests::ScratchFolder;
using mox::Form;
using mox::Profile;
using mox::Reason;
using Names = std::vector<std::string>;

Profile WithText(std::size_t length) {
    Profile profile;
    EXPECT_TRUE(profile.setString("S", "K", std::string(length, 'x')));
    return profile;
}

class FileReplacing : public testing::Test {
  protected:
    FileReplacing() { host::WriteBytes(file, "old"); }

    void ExpectTheOldFileAlone() const {
        EXPECT_EQ(host::ReadBytes(file), "old");
        EXPECT_EQ(folder.Names(), Names{"s.xml"});
    }

    const ScratchFolder folder;
    const fs::path file = folder.Of("s.xml");
};

TEST_F(FileReplacing, WritesTheBytesAndNothingElse) {
    const std::string bytes("a\0b\r\n\x1A\xFF", 7);
    EXPECT_TRUE(mox::replaceFile(file.u16string(), bytes));
    EXPECT_EQ(host::ReadBytes(file), bytes);
    EXPECT_TRUE(mox::replaceFile(file.u16string(), ""));
    EXPECT_EQ(host::ReadBytes(file), "");
    EXPECT_EQ(folder.Names(), Names{"s.xml"});
}

TEST_F(FileReplacing, CreatesAMissingFile) {
    fs::remove(file);
    EXPECT_TRUE(mox::replaceFile(file.u16string(), "new"));
    EXPECT_EQ(host::ReadBytes(file), "new");
    EXPECT_EQ(folder.Names(), Names{"s.xml"});
}

TEST_F(FileReplacing, ServesTheSavesOfDocuments) {
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string(), Overwriting()));
    EXPECT_EQ(Profile::open(file.u16string())->getString("S", "K"), "xxxxx");
    mox::Table table = mox::Table::create("T");
    ASSERT_TRUE(table.add({"K", "xxxxx"}));
    EXPECT_TRUE(table.saveReplacing(file.u16string(), Overwriting()));
    EXPECT_EQ(mox::Table::open(file.u16string(), "T")->find("K")->value, "xxxxx");
    EXPECT_EQ(folder.Names(), Names{"s.xml"});
}

TEST_F(FileReplacing, GivesTheStampThatReadingGives) {
    mox::FileStamp written;
    mox::FileStamp read;
    ASSERT_TRUE(mox::replaceFile(file.u16string(), "new", {}, &written));
    ASSERT_EQ(mox::readFile(file.u16string(), &read), "new");
    EXPECT_TRUE(written.exists);
    EXPECT_EQ(written.size, 3U);
    EXPECT_EQ(written.hash[0], read.hash[0]);
    EXPECT_EQ(written.hash[1], read.hash[1]);
    EXPECT_EQ(written.file, read.file);
    EXPECT_EQ(written.device, read.device);
    EXPECT_TRUE(written.hasContentOf(read));
#if !defined(_WIN32)
    EXPECT_TRUE(written == read);
#endif
}

TEST_F(FileReplacing, UsesAnotherNameIfTheNameExists) {
#if defined(_WIN32)
    const std::uint64_t process = GetCurrentProcessId();
#else
    const auto process = static_cast<std::uint64_t>(getpid());
#endif
    // The names are numbered: the next three exist already.
    const std::string name = mox::disk::TemporaryName(process);
    const std::size_t dash = name.rfind('-');
    const int number = std::stoi(name.substr(dash + 1));
    Names names;
    for (int i = 1; i <= 3; ++i) {
        names.push_back(name.substr(0, dash + 1) + std::to_string(number + i) + ".tmp");
        host::WriteBytes(folder.Of(names.back().c_str()), "mine");
    }
    EXPECT_TRUE(mox::replaceFile(file.u16string(), "new"));
    EXPECT_EQ(host::ReadBytes(file), "new");
    EXPECT_EQ(folder.Names().size(), 4U);
    for (const std::string& taken : names)
        EXPECT_EQ(host::ReadBytes(folder.Of(taken.c_str())), "mine");
}

TEST_F(FileReplacing, RefusesPathsThatCannotBeFiles) {
    fs::create_directory(folder.Of("folder"));
    const char* const null = nullptr;
    const auto reasonFor = [](const mox::Text& path) {
        mox::Problem problem;
        EXPECT_FALSE(mox::replaceFile(path, "new", {}, nullptr, &problem));
        EXPECT_FALSE(problem.message.empty());
        EXPECT_EQ(problem.file, mox::front::Utf8Of(path.units()));
        return problem.reason;
    };
    EXPECT_EQ(reasonFor(""), Reason::InvalidText);
    EXPECT_EQ(reasonFor(null), Reason::InvalidText);
    EXPECT_EQ(reasonFor("a\xFF"), Reason::InvalidText);
    EXPECT_EQ(reasonFor(folder.Of("none/s.xml").u16string()), Reason::NotFound);
    EXPECT_EQ(reasonFor(folder.Of("folder").u16string()), Reason::NotRegularFile);
    EXPECT_TRUE(fs::is_empty(folder.Of("folder")));
    EXPECT_EQ(folder.Names(), (Names{"folder", "s.xml"}));
}

TEST_F(FileReplacing, ASuccessResetsTheProblem) {
    mox::Problem problem;
    problem.reason = Reason::Syntax;
    EXPECT_TRUE(mox::replaceFile(file.u16string(), "new", {}, nullptr, &problem));
    EXPECT_EQ(problem.reason, Reason::None);
}

TEST_F(FileReplacing, AcceptsANameWithoutAFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.Of(""));
    const bool isSaved = WithText(5).saveReplacing("s.xml", Overwriting()) &&
                         WithText(6).saveReplacing("t.xml", Overwriting());
    fs::current_path(before);
    EXPECT_TRUE(isSaved);
    EXPECT_EQ(folder.Names(), (Names{"s.xml", "t.xml"}));
}

#if defined(_WIN32)

TEST_F(FileReplacing, AFileInUseIsNotReplaced) {
    const HANDLE handle =
        CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(WithText(5).saveReplacing(file.u16string(), Overwriting()));
    CloseHandle(handle);
    ExpectTheOldFileAlone();
}

TEST_F(FileReplacing, KeepsAttributes) {
    ASSERT_TRUE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_HIDDEN));
    const DWORD attributes = GetFileAttributesW(file.c_str());
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string(), Overwriting()));
    EXPECT_EQ(GetFileAttributesW(file.c_str()), attributes);
}

TEST_F(FileReplacing, AReadOnlyFileIsNotReplaced) {
    ASSERT_TRUE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_FALSE(WithText(5).saveReplacing(file.u16string(), Overwriting()));
    EXPECT_TRUE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL));
    ExpectTheOldFileAlone();
}

#else

using disk_tests::CountOpen;
using disk_tests::ModeOf;

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

TEST_F(FileReplacing, AFullDiskLeavesTheOldFile) {
    const Profile profile = WithText(100000);
    mox::Table table = mox::Table::create("T");
    ASSERT_TRUE(table.add({"K", std::string(100000, 'x')}));
    {
        const SmallDisk full(4096);
        EXPECT_FALSE(profile.saveReplacing(file.u16string(), Overwriting()));
        EXPECT_FALSE(profile.saveReplacing(file.u16string(), Overwriting(Form::Narrow)));
        EXPECT_FALSE(table.saveReplacing(file.u16string(), Overwriting()));
    }
    ExpectTheOldFileAlone();
    EXPECT_TRUE(profile.saveReplacing(file.u16string(), Overwriting()));
}

TEST_F(FileReplacing, KeepsModeBits) {
    for (const mode_t mode : {0600U, 0640U, 0664U, 0755U, 0606U}) {
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        EXPECT_TRUE(WithText(5).saveReplacing(file.u16string(), Overwriting()));
        EXPECT_EQ(ModeOf(file), mode);
    }
}

TEST_F(FileReplacing, GivesANewFileTheUsualModeBits) {
    const mode_t mask = umask(0027);
    const bool isSaved = WithText(5).saveReplacing(folder.Of("new.xml").u16string(), Overwriting());
    umask(mask);
    EXPECT_TRUE(isSaved);
    EXPECT_EQ(ModeOf(folder.Of("new.xml")), mode_t{0640});
}

TEST_F(FileReplacing, KeepsOwnerAndGroupIfPermitted) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser may";
    ASSERT_EQ(chown(file.c_str(), 1234, 2345), 0);
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string(), Overwriting()));
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 1234U);
    EXPECT_EQ(status.st_gid, 2345U);
}

TEST_F(FileReplacing, AReadOnlyFileIsNotReplaced) {
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    const bool mayWrite = access(file.c_str(), W_OK) == 0;  // the superuser may
    EXPECT_EQ(WithText(5).saveReplacing(file.u16string(), Overwriting()), mayWrite);
    EXPECT_EQ(ModeOf(file), mode_t{0444});
    if (!mayWrite) ExpectTheOldFileAlone();
}

TEST_F(FileReplacing, FollowsLinksAndKeepsThem) {
    fs::create_directory(folder.Of("far"));
    const fs::path target = folder.Of("far/target.xml");
    host::WriteBytes(target, "old");
    ASSERT_EQ(chmod(target.c_str(), 0640), 0);
    fs::remove(file);
    fs::create_symlink("far/hop.xml", file);
    fs::create_symlink(fs::absolute(target), folder.Of("far/hop.xml"));
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string(), Overwriting()));
    EXPECT_TRUE(fs::is_symlink(file) && fs::is_symlink(folder.Of("far/hop.xml")) && !fs::is_symlink(target));
    EXPECT_EQ(Profile::open(target.u16string())->getString("S", "K"), "xxxxx");
    EXPECT_EQ(ModeOf(target), mode_t{0640});
    EXPECT_EQ(folder.Names(), (Names{"far", "s.xml"}));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Of("far")), fs::directory_iterator()), 2);
}

TEST_F(FileReplacing, ALinkToAMissingFileCreatesIt) {
    fs::remove(file);
    fs::create_symlink("new.xml", file);
    EXPECT_TRUE(WithText(5).saveReplacing(file.u16string(), Overwriting()));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_FALSE(fs::is_symlink(folder.Of("new.xml")));
    EXPECT_EQ(folder.Names(), (Names{"new.xml", "s.xml"}));
}

TEST_F(FileReplacing, ALinkToItselfIsRefused) {
    fs::remove(file);
    fs::create_symlink("s.xml", file);
    EXPECT_FALSE(WithText(5).saveReplacing(file.u16string(), Overwriting()));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(folder.Names(), Names{"s.xml"});
}

TEST_F(FileReplacing, AFileThatIsNotRegularIsRefused) {
    const fs::path pipe = folder.Of("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(WithText(5).saveReplacing(pipe.u16string(), Overwriting()));
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_EQ(folder.Names(), (Names{"pipe", "s.xml"}));
}

TEST_F(FileReplacing, ManySavesLeaveNoFilesOpen) {
    const mox::FileStamp missing;
    mox::ReplaceOptions onlyNew;
    onlyNew.onlyIf = &missing;
    const Profile profile = WithText(5);
    const auto before = CountOpen();
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(profile.saveReplacing(file.u16string(), Overwriting()));
        EXPECT_FALSE(profile.saveReplacing(folder.Of("").u16string(), Overwriting()));
        EXPECT_FALSE(mox::replaceFile(file.u16string(), "new", onlyNew));
    }
    EXPECT_EQ(CountOpen(), before);
}

#endif

}  // namespace
