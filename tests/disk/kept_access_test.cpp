// What of the access rights of a file stays when it is replaced, and that nobody can do more with the new file.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/disk/disk_support.h"
#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <cstdint>
#include <functional>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>
#if defined(__linux__)
#include <sys/xattr.h>
#endif

#include "mox_xmlApi/disk/posix_access.h"
#include "tests/faults/child_process_support.h"
#endif

namespace {

namespace fs = std::filesystem;
using disk_tests::ReasonFor;
using disk_tests::ScratchFolder;
using mox::Reason;

#if defined(_WIN32)

// The DACL of a file, as the system describes it.
std::string RightsOf(const fs::path& path) {
    const HANDLE file = CreateFileW(path.c_str(), READ_CONTROL, 7, nullptr, OPEN_EXISTING, 0, nullptr);
    DWORD size = 0;
    GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::string rights(size, '\0');
    EXPECT_TRUE(GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, rights.data(), size, &size));
    CloseHandle(file);
    return rights;
}

TEST(KeptAccess, TheNewFileHasTheRightsOfTheOldOne) {
    const ScratchFolder folder;
    const fs::path file = folder.Of("f.xml");
    host::WriteBytes(file, "old");
    const std::string usual = RightsOf(file);

    // One entry: the rights to read and to write for the owner of the file.
    std::string owner;
    DWORD size = 0;
    const HANDLE handle =
        CreateFileW(file.c_str(), READ_CONTROL | WRITE_DAC, 7, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    GetKernelObjectSecurity(handle, OWNER_SECURITY_INFORMATION, nullptr, 0, &size);
    owner.resize(size);
    ASSERT_TRUE(GetKernelObjectSecurity(handle, OWNER_SECURITY_INFORMATION, owner.data(), size, &size));
    PSID sid = nullptr;
    BOOL isDefault = FALSE;
    ASSERT_TRUE(GetSecurityDescriptorOwner(owner.data(), &sid, &isDefault));
    alignas(ACL) char list[256];
    ACL* const acl = reinterpret_cast<ACL*>(list);
    ASSERT_TRUE(InitializeAcl(acl, sizeof list, ACL_REVISION));
    ASSERT_TRUE(AddAccessAllowedAce(acl, ACL_REVISION, GENERIC_READ | GENERIC_WRITE | DELETE, sid));
    SECURITY_DESCRIPTOR rights;
    ASSERT_TRUE(InitializeSecurityDescriptor(&rights, SECURITY_DESCRIPTOR_REVISION));
    ASSERT_TRUE(SetSecurityDescriptorDacl(&rights, TRUE, acl, FALSE));
    ASSERT_TRUE(SetKernelObjectSecurity(handle, DACL_SECURITY_INFORMATION, &rights));
    CloseHandle(handle);
    const std::string narrow = RightsOf(file);
    if (narrow == usual) GTEST_SKIP() << "the file system has no access rights";

    EXPECT_EQ(ReasonFor(file, "new", disk_tests::WithBackup(folder.Of("f.bak"))), Reason::None);
    EXPECT_EQ(RightsOf(file), narrow);
    EXPECT_EQ(RightsOf(folder.Of("f.bak")), narrow);
}

#else

using mox::disk::Kept;
using mox::disk::NarrowedMode;

constexpr Kept kAll{true, true};
constexpr Kept kOwnerOnly{true, false};
constexpr Kept kGroupOnly{false, true};
constexpr Kept kNothing{false, false};

// ---- access-control lists, as Linux stores them

struct ListEntry {
    std::uint16_t tag;
    std::uint16_t rights;
    std::uint32_t id = 0xFFFFFFFF;
};

constexpr std::uint16_t kOwnerTag = 1;
constexpr std::uint16_t kUserTag = 2;
constexpr std::uint16_t kGroupTag = 4;
constexpr std::uint16_t kNamedGroupTag = 8;
constexpr std::uint16_t kMaskTag = 16;
constexpr std::uint16_t kOtherTag = 32;

std::string ListOf(const std::vector<ListEntry>& entries) {
    std::string list("\2\0\0\0", 4);
    for (const ListEntry& entry : entries)
        list.append(reinterpret_cast<const char*>(&entry), sizeof entry);
    return list;
}

TEST(KeptAccess, TheModeStaysWithOwnerAndGroup) {
    for (const mode_t mode : {0600U, 0664U, 0606U, 04755U, 06775U})
        EXPECT_EQ(NarrowedMode(mode, "", kAll), mode);
}

TEST(KeptAccess, WithAnotherGroupAllHaveWhatBothClassesHad) {
    EXPECT_EQ(NarrowedMode(0640, "", kOwnerOnly), 0600U);
    EXPECT_EQ(NarrowedMode(0660, "", kOwnerOnly), 0600U);
    EXPECT_EQ(NarrowedMode(0664, "", kOwnerOnly), 0644U);
    EXPECT_EQ(NarrowedMode(0606, "", kOwnerOnly), 0600U);  // the old group is among the others now
    EXPECT_EQ(NarrowedMode(0646, "", kOwnerOnly), 0644U);
    EXPECT_EQ(NarrowedMode(02775, "", kOwnerOnly), 0755U);
}

TEST(KeptAccess, WithAnotherOwnerTheOldOneGainsNothing) {
    EXPECT_EQ(NarrowedMode(0664, "", kGroupOnly), 0664U);
    EXPECT_EQ(NarrowedMode(0466, "", kGroupOnly), 0444U);
    EXPECT_EQ(NarrowedMode(06775, "", kGroupOnly), 0775U);
    EXPECT_EQ(NarrowedMode(0466, "", kNothing), 0444U);
}

TEST(KeptAccess, WithoutItsListAllHaveWhatEverybodyInItHad) {
    const auto listWith = [](std::uint16_t user, std::uint16_t mask) {
        return ListOf({{kOwnerTag, 6},
                       {kUserTag, user, 4242},
                       {kGroupTag, 6},
                       {kNamedGroupTag, 7, 4243},
                       {kMaskTag, mask},
                       {kOtherTag, 4}});
    };
    EXPECT_EQ(NarrowedMode(0664, listWith(6, 6), kAll), 0644U);
    EXPECT_EQ(NarrowedMode(0664, listWith(6, 6), kNothing), 0644U);
    EXPECT_EQ(NarrowedMode(0664, listWith(0, 6), kAll), 0600U);  // somebody was shut out
    EXPECT_EQ(NarrowedMode(0624, listWith(6, 2), kAll), 0600U);  // the mask took it from them
}

TEST(KeptAccess, AListStaysOnlyIfNobodyGainsByIt) {
    const std::string list =
        ListOf({{kOwnerTag, 4}, {kUserTag, 6, 4242}, {kGroupTag, 4}, {kMaskTag, 6}, {kOtherTag, 0}});
    EXPECT_TRUE(mox::disk::IsListSafe(0460, list, kAll));
    EXPECT_FALSE(mox::disk::IsListSafe(0460, list, kOwnerOnly));
    EXPECT_FALSE(mox::disk::IsListSafe(0460, list, kGroupOnly));  // the old owner may be that user
    EXPECT_TRUE(mox::disk::IsListSafe(0660, list, kGroupOnly));
}

// ---- files of several users, for which the tests must run as root

constexpr uid_t kUser = 41234;
constexpr uid_t kOther = 41235;
constexpr gid_t kGroup = 42345;

struct stat StatusOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status;
}

class KeptAccessOf : public testing::Test {
  protected:
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of others";
        host::WriteBytes(file, "old");
        ASSERT_EQ(chmod(folder.Of("").c_str(), 0777), 0);
        if (AsUser([&] { return access(file.c_str(), R_OK) == 0; }) != "")
            GTEST_SKIP() << "other users cannot reach the folder";
    }

    void SetAccess(uid_t owner, gid_t group, mode_t mode) const {
        ASSERT_EQ(chown(file.c_str(), owner, group), 0);
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
    }

    // Does it as an ordinary user whose only group is the one of the same number. Returns what was wrong.
    static std::string AsUser(const std::function<bool()>& work) {
        return faults::InChild([&]() -> std::string {
            if (setgroups(0, nullptr) != 0 || setgid(kUser) != 0 || setuid(kUser) != 0)
                return "cannot be that user";
            return work() ? "" : "it failed";
        });
    }

    // Replaces the file as that user.
    void ReplaceAsUser() const {
        ASSERT_EQ(AsUser([&] { return ReasonFor(file, "new") == Reason::None; }), "");
        ASSERT_EQ(host::ReadBytes(file), "new");
    }

    void ExpectAccess(uid_t owner, gid_t group, mode_t mode) const {
        const struct stat status = StatusOf(file);
        EXPECT_EQ(status.st_uid, owner);
        EXPECT_EQ(status.st_gid, group);
        EXPECT_EQ(status.st_mode & 07777, mode) << std::oct << status.st_mode;
    }

    const ScratchFolder folder;
    const fs::path file = folder.Of("f.xml");
};

TEST_F(KeptAccessOf, TheSuperuserKeepsEverything) {
    for (const mode_t mode : {0600U, 0640U, 0664U, 04755U, 02775U}) {
        SetAccess(kOther, kGroup, mode);
        EXPECT_EQ(ReasonFor(file, "new"), Reason::None);
        ExpectAccess(kOther, kGroup, mode);
    }
}

TEST_F(KeptAccessOf, AGroupThatCannotBeKeptLosesItsRights) {
    SetAccess(kUser, kGroup, 0640);
    ReplaceAsUser();
    ExpectAccess(kUser, kUser, 0600);
    SetAccess(kUser, kGroup, 0664);
    ReplaceAsUser();
    ExpectAccess(kUser, kUser, 0644);
    SetAccess(kUser, kGroup, 02775);
    ReplaceAsUser();
    ExpectAccess(kUser, kUser, 0755);
}

TEST_F(KeptAccessOf, AGroupOfTheUserIsKept) {
    SetAccess(kOther, kUser, 0664);
    ReplaceAsUser();
    ExpectAccess(kUser, kUser, 0664);
}

TEST_F(KeptAccessOf, SetIdBitsDoNotSurviveAChangeOfTheOwner) {
    SetAccess(kOther, kUser, 06777);
    ReplaceAsUser();
    ExpectAccess(kUser, kUser, 0777);
    SetAccess(0, 0, 06777);
    ReplaceAsUser();
    ExpectAccess(kUser, kUser, 0777);
}

TEST_F(KeptAccessOf, ABackupHasNoMoreAccessThanTheFile) {
    SetAccess(kUser, kGroup, 0640);
    const fs::path backup = folder.Of("f.bak");
    ASSERT_EQ(AsUser([&] { return ReasonFor(file, "new", disk_tests::WithBackup(backup)) == Reason::None; }),
              "");
    const struct stat status = StatusOf(backup);
    EXPECT_EQ(status.st_uid, kUser);
    EXPECT_EQ(status.st_mode & 07777, mode_t{0600});
    EXPECT_EQ(host::ReadBytes(backup), "old");
}

TEST_F(KeptAccessOf, AFileThatTheUserMayNotWriteIsNotReplaced) {
    SetAccess(kOther, kGroup, 0644);
    ASSERT_EQ(AsUser([&] { return ReasonFor(file, "new") == Reason::NoPermission; }), "");
    EXPECT_EQ(host::ReadBytes(file), "old");
    ExpectAccess(kOther, kGroup, 0644);
}

#if defined(__linux__)

constexpr char kListName[] = "system.posix_acl_access";
constexpr char kDefaultListName[] = "system.posix_acl_default";

// The list of the file; empty if it has none.
std::string ListOfFile(const fs::path& path) {
    char list[1024];
    const ssize_t size = getxattr(path.c_str(), kListName, list, sizeof list);
    return size < 0 ? std::string() : std::string(list, static_cast<std::size_t>(size));
}

class KeptLists : public KeptAccessOf {
  protected:
    void SetUp() override {
        KeptAccessOf::SetUp();
        if (IsSkipped()) return;
        if (setxattr(file.c_str(), kListName, list.data(), list.size(), 0) != 0)
            GTEST_SKIP() << "the file system has no access-control lists";
    }

    const std::string list =
        ListOf({{kOwnerTag, 6}, {kUserTag, 6, kOther}, {kGroupTag, 4}, {kMaskTag, 6}, {kOtherTag, 0}});
};

TEST_F(KeptLists, StayWithOwnerAndGroup) {
    EXPECT_EQ(ReasonFor(file, "new", disk_tests::WithBackup(folder.Of("f.bak"))), Reason::None);
    EXPECT_EQ(ListOfFile(file), list);
    EXPECT_EQ(ListOfFile(folder.Of("f.bak")), list);
    ExpectAccess(0, 0, 0660);
    ASSERT_EQ(chown(file.c_str(), kUser, kUser), 0);
    ReplaceAsUser();
    EXPECT_EQ(ListOfFile(file), list);
    ExpectAccess(kUser, kUser, 0660);
}

TEST_F(KeptLists, AreGivenUpWithTheRightsOfAllInThemIfTheGroupChanges) {
    ASSERT_EQ(chown(file.c_str(), kUser, kGroup), 0);
    ReplaceAsUser();
    EXPECT_EQ(ListOfFile(file), "");
    ExpectAccess(kUser, kUser, 0600);
}

TEST_F(KeptLists, OfTheFolderAreNotAddedToAFileWithoutOne) {
    ASSERT_EQ(removexattr(file.c_str(), kListName), 0);
    ASSERT_EQ(setxattr(folder.Of("").c_str(), kDefaultListName, list.data(), list.size(), 0), 0);
    for (const mode_t mode : {0600U, 0640U, 0664U}) {
        SetAccess(kUser, kUser, mode);
        ReplaceAsUser();
        EXPECT_EQ(ListOfFile(file), "");
        ExpectAccess(kUser, kUser, mode);
    }
}

TEST_F(KeptLists, OfTheFolderAreThoseOfANewFile) {
    fs::remove(file);
    ASSERT_EQ(setxattr(folder.Of("").c_str(), kDefaultListName, list.data(), list.size(), 0), 0);
    EXPECT_EQ(ReasonFor(file, "new"), Reason::None);
    EXPECT_EQ(ListOfFile(file), list);
}

TEST(KeptAttributes, OfTheUserStay) {
    const ScratchFolder folder;
    const fs::path file = folder.Of("f.xml");
    host::WriteBytes(file, "old");
    const std::string large(2000, 'x');
    if (setxattr(file.c_str(), "user.note", "mine", 4, 0) != 0) GTEST_SKIP() << "the file system has none";
    ASSERT_EQ(setxattr(file.c_str(), "user.empty", "", 0, 0), 0);
    ASSERT_EQ(setxattr(file.c_str(), "user.large", large.data(), large.size(), 0), 0);
    EXPECT_EQ(ReasonFor(file, "new"), Reason::None);
    char value[4096];
    EXPECT_EQ(getxattr(file.c_str(), "user.note", value, sizeof value), 4);
    EXPECT_EQ(std::string(value, 4), "mine");
    EXPECT_EQ(getxattr(file.c_str(), "user.empty", value, sizeof value), 0);
    EXPECT_EQ(getxattr(file.c_str(), "user.large", value, sizeof value), 2000);
}

#endif

#endif

}  // namespace
