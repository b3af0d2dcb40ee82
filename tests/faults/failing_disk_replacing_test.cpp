// Every call of the system that a replacement makes for its files fails in turn, and between two calls others do what
// they can.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/disk/replace_file.hpp"
#include "mox_xmlApi/disk/scratch_file.hpp"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/faults/failing_disk_support.h"
#include "tests/host/host_support.h"
#if !defined(_WIN32)
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace faults {
namespace {

namespace fs = std::filesystem;
using mox::Reason;

// A folder with a file and perhaps its backup.
class Replacing : public testing::Test {
  protected:
    Replacing() {
        fs::remove_all(folder);
        fs::create_directory(folder);
    }
    ~Replacing() override { fs::remove_all(folder); }

    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    // The temporary file that there is now.
    fs::path Temporary() const {
        for (const std::string& name : Names()) {
            if (name.rfind(".mox-", 0) == 0) return folder / name;
        }
        return {};
    }

    const fs::path folder = host::ScratchFolder() / "replacing";
    const fs::path file = folder / "f.xml";
    const fs::path backup = folder / "f.bak";
};

#if !defined(_WIN32)

TEST_F(Replacing, TakesNoHarmFromSignals) {
    host::WriteBytes(file, "old");
    mox::ReplaceOptions options;
    options.backup = mox::Text(backup.u16string());
    bool wasInterrupted = false;
    const auto rule = [&](FileCall call) {
        const bool canBe = call == FileCall::Open || call == FileCall::Read || call == FileCall::Write ||
                           call == FileCall::Flush;
        wasInterrupted = canBe && !wasInterrupted;
        return wasInterrupted ? Answer::Interrupted : Answer::Plain;
    };
    {
        const WatchedFiles files(rule, 2);
        EXPECT_TRUE(mox::replaceFile(file.u16string(), "new text", options));
        EXPECT_EQ(mox::readFile(file.u16string()), "new text");
    }
    EXPECT_EQ(host::ReadBytes(backup), "old");
}

// Does something before the call of that kind with that number.
WatchedFiles::Rule Before(FileCall which, int number, std::function<void()> act) {
    return [=, count = 0](FileCall call) mutable {
        if (call == which && ++count == number) act();
        return Answer::Plain;
    };
}

TEST_F(Replacing, NoticesATemporaryFileThatWasExchanged) {
    const fs::path victim = folder / "victim";
    for (const bool isNew : {false, true}) {
        for (const FileCall moment : {FileCall::Write, FileCall::Flush}) {
            fs::remove(file);
            if (!isNew) host::WriteBytes(file, "old");
            host::WriteBytes(victim, "secret");
            mox::Problem problem;
            {
                const WatchedFiles files(Before(moment, 1, [&] {
                    const fs::path temporary = Temporary();
                    fs::remove(temporary);
                    fs::create_symlink("victim", temporary);
                }));
                EXPECT_FALSE(mox::replaceFile(file.u16string(), "new", {}, nullptr, &problem));
            }
            EXPECT_EQ(problem.reason, Reason::WriteFailed);
            EXPECT_EQ(problem.message, "another process has exchanged or removed the temporary file");
            EXPECT_EQ(host::ReadBytes(victim), "secret");
            EXPECT_EQ(fs::exists(file), !isNew);
            fs::remove(Temporary());  // which is not ours
        }
    }
}

TEST_F(Replacing, IsNoSuccessIfTheFileWasExchangedAtTheLastMoment) {
    const fs::path victim = folder / "victim";
    host::WriteBytes(victim, "secret");
    for (const bool isNew : {false, true}) {
        fs::remove(file);
        if (!isNew) host::WriteBytes(file, "old");
        mox::Problem problem;
        {
            const WatchedFiles files(Before(FileCall::Rename, 1, [&] {
                const fs::path temporary = Temporary();
                fs::remove(temporary);
                fs::create_symlink("victim", temporary);
            }));
            EXPECT_FALSE(mox::replaceFile(file.u16string(), "new", {}, nullptr, &problem));
        }
        EXPECT_EQ(problem.reason, Reason::Changed);
        EXPECT_EQ(host::ReadBytes(victim), "secret");
    }
}

mox::SaveOptions Overwriting() {
    mox::SaveOptions options;
    options.overwrite = true;
    return options;
}

// The system does not tell whose file has a name, from the first renaming on.
WatchedFiles::Rule WithoutExaminationAfterRenaming() {
    return [isRenamed = false](FileCall call) mutable {
        isRenamed = isRenamed || call == FileCall::Rename;
        return isRenamed && call == FileCall::Examine ? Answer::Fails : Answer::Plain;
    };
}

TEST_F(Replacing, IsUnconfirmedIfTheNewFileCannotBeExamined) {
    host::WriteBytes(file, "old");
    mox::FileStamp stamp;
    mox::Problem problem;
    {
        const WatchedFiles files(WithoutExaminationAfterRenaming());
        EXPECT_FALSE(mox::replaceFile(file.u16string(), "new", {}, &stamp, &problem));
    }
    EXPECT_EQ(problem.reason, Reason::Unconfirmed);
    EXPECT_EQ(problem.file, mox::toUtf8(file.u16string()));
    EXPECT_EQ(problem.message, "the file was replaced, but the new one cannot be examined: " +
                                   TextOfFailure(FileCall::Examine));
    EXPECT_EQ(host::ReadBytes(file), "new");
    EXPECT_EQ(Names(), std::vector<std::string>{"f.xml"});
    mox::ReplaceOptions options;
    options.onlyIf = &stamp;
    EXPECT_TRUE(mox::replaceFile(file.u16string(), "newer", options, nullptr, &problem))
        << problem.toString();
}

TEST_F(Replacing, ChangesOnlyTheBackupIfThatCannotBeExamined) {
    host::WriteBytes(file, "old");
    host::WriteBytes(backup, "older");
    mox::ReplaceOptions options;
    options.backup = mox::Text(backup.u16string());
    mox::Problem problem;
    {
        const WatchedFiles files(WithoutExaminationAfterRenaming());
        EXPECT_FALSE(mox::replaceFile(file.u16string(), "new", options, nullptr, &problem));
    }
    EXPECT_EQ(problem.reason, Reason::WriteFailed);
    EXPECT_EQ(problem.file, mox::toUtf8(backup.u16string()));
    EXPECT_EQ(problem.message, "cannot examine the backup: " + TextOfFailure(FileCall::Examine));
    EXPECT_EQ(host::ReadBytes(file), "old");
    EXPECT_EQ(host::ReadBytes(backup), "old");
}

TEST_F(Replacing, OfADocumentGoesOnFromAnUnconfirmedSave) {
    const auto other = folder / "other.xml";
    for (const fs::path& path : {file, other}) {
        mox::Profile profile;
        ASSERT_TRUE(profile.setString("S", "k", "1"));
        ASSERT_TRUE(profile.saveReplacing(file.u16string(), Overwriting()));
        ASSERT_TRUE(profile.setString("S", "k", "2"));
        mox::Problem problem;
        {
            const WatchedFiles files(WithoutExaminationAfterRenaming());
            EXPECT_FALSE(profile.saveReplacing(path.u16string(), &problem));
        }
        EXPECT_EQ(problem.reason, Reason::Unconfirmed) << problem.toString();
        EXPECT_EQ(mox::Profile::open(path.u16string())->getString("S", "k"), "2");
        ASSERT_TRUE(profile.setString("S", "k", "3"));
        EXPECT_TRUE(profile.saveReplacing(path.u16string(), &problem)) << problem.toString();
        EXPECT_EQ(mox::Profile::open(path.u16string())->getString("S", "k"), "3");
    }
}

TEST_F(Replacing, NoticesASecondNameOfTheTemporaryFile) {
    host::WriteBytes(file, "old");
    mox::Problem problem;
    {
        const WatchedFiles files(
            Before(FileCall::Flush, 1, [&] { fs::create_hard_link(Temporary(), folder / "second"); }));
        EXPECT_FALSE(mox::replaceFile(file.u16string(), "new", {}, nullptr, &problem));
    }
    EXPECT_EQ(problem.reason, Reason::WriteFailed);
    EXPECT_EQ(host::ReadBytes(file), "old");
}

TEST_F(Replacing, BeginsAgainIfAnotherProgramReplacesTheFileMeanwhile) {
    host::WriteBytes(file, "old");
    ASSERT_EQ(chmod(file.c_str(), 0600), 0);
    const auto replaceByOther = [&] {
        host::WriteBytes(folder / "other", "other");
        ASSERT_EQ(chmod((folder / "other").c_str(), 0640), 0);
        fs::rename(folder / "other", file);
    };
    {
        const WatchedFiles files(Before(FileCall::Flush, 1, replaceByOther));
        EXPECT_TRUE(mox::replaceFile(file.u16string(), "new"));
    }
    EXPECT_EQ(host::ReadBytes(file), "new");
    EXPECT_EQ(ModeOf(file), mode_t{0640});
    // The other one's file is the one that stays if only the file that was read may be replaced.
    mox::FileStamp stamp;
    ASSERT_TRUE(mox::readFile(file.u16string(), &stamp).has_value());
    mox::ReplaceOptions options;
    options.onlyIf = &stamp;
    mox::Problem problem;
    {
        const WatchedFiles files(Before(FileCall::Flush, 1, replaceByOther));
        EXPECT_FALSE(mox::replaceFile(file.u16string(), "newer", options, nullptr, &problem));
    }
    EXPECT_EQ(problem.reason, Reason::Changed);
    EXPECT_EQ(host::ReadBytes(file), "other");
}

TEST_F(Replacing, DoesNotOverwriteAFileThatAppearsMeanwhile) {
    const auto create = [&] { host::WriteBytes(file, "other"); };
    const mox::FileStamp missing;
    mox::ReplaceOptions options;
    options.onlyIf = &missing;
    mox::Problem problem;
    {
        const WatchedFiles files(Before(FileCall::Rename, 1, create));
        EXPECT_FALSE(mox::replaceFile(file.u16string(), "new", options, nullptr, &problem));
    }
    EXPECT_EQ(problem.reason, Reason::Changed);
    EXPECT_EQ(host::ReadBytes(file), "other");
    fs::remove(file);
    {
        const WatchedFiles files(Before(FileCall::Rename, 1, create));
        EXPECT_TRUE(mox::replaceFile(file.u16string(), "new"));
    }
    EXPECT_EQ(host::ReadBytes(file), "new");
    EXPECT_EQ(Names(), std::vector<std::string>{"f.xml"});
}

// Network file systems grant an exclusive lock only through such a descriptor.
TEST_F(Replacing, LocksTheFileByADescriptorThatMayWrite) {
    host::WriteBytes(file, "old");
    struct stat old {};
    ASSERT_EQ(stat(file.c_str(), &old), 0);
    std::vector<int> modes;
    {
        const WatchedFiles files(Before(FileCall::Lock, 1, [&] {
            for (int descriptor = 0; descriptor < 1024; ++descriptor) {
                struct stat status {};
                if (fstat(descriptor, &status) == 0 && status.st_ino == old.st_ino &&
                    status.st_dev == old.st_dev)
                    modes.push_back(fcntl(descriptor, F_GETFL) & O_ACCMODE);
            }
        }));
        EXPECT_TRUE(mox::replaceFile(file.u16string(), "new"));
    }
    EXPECT_EQ(modes, std::vector<int>{O_RDWR});
}

TEST_F(Replacing, HasNoFileThatOthersMayReadBeforeTheyMay) {
    host::WriteBytes(file, "old");
    ASSERT_EQ(chmod(file.c_str(), 0600), 0);
    mox::ReplaceOptions options;
    options.backup = mox::Text(backup.u16string());
    const mode_t mask = umask(0);
    int seen = 0;
    {
        const WatchedFiles files([&](FileCall) {
            struct stat status {};
            const fs::path temporary = Temporary();
            if (!temporary.empty() && stat(temporary.c_str(), &status) == 0) {
                ++seen;
                EXPECT_EQ(status.st_mode & 0177, 0U);
            }
            return Answer::Plain;
        });
        EXPECT_TRUE(mox::replaceFile(file.u16string(), "new", options));
    }
    umask(mask);
    EXPECT_GT(seen, 4);
}

// Not every file system can rename on condition that there is no such file.
WatchedFiles::Rule WithoutConditionalRenaming(std::function<void()> act) {
    return [=](FileCall call) {
        if (call != FileCall::Rename) return Answer::Plain;
        act();
        return Answer::Unsupported;
    };
}

TEST_F(Replacing, CreatesAFileWhereRenamingHasNoConditions) {
    mox::FileStamp stamp;
    mox::ReplaceOptions options;
    options.onlyIf = &stamp;
    {
        const WatchedFiles files(WithoutConditionalRenaming([] {}));
        EXPECT_TRUE(mox::replaceFile(file.u16string(), "new", options));
    }
    EXPECT_EQ(host::ReadBytes(file), "new");
    EXPECT_EQ(Names(), std::vector<std::string>{"f.xml"});
    fs::remove(file);
    mox::Problem problem;
    {
        const WatchedFiles files(WithoutConditionalRenaming([&] { host::WriteBytes(file, "other"); }));
        EXPECT_FALSE(mox::replaceFile(file.u16string(), "new", options, nullptr, &problem));
    }
    EXPECT_EQ(problem.reason, Reason::Changed);
    EXPECT_EQ(host::ReadBytes(file), "other");
    EXPECT_EQ(Names(), std::vector<std::string>{"f.xml"});
}

TEST_F(Replacing, ScratchFilesAreInAFolderOfTheirOwnIfNotInMemory) {
    const char* const before = std::getenv("TMPDIR");
    const std::string old = before == nullptr ? "" : before;
    setenv("TMPDIR", folder.c_str(), 1);
    const mode_t mask = umask(0);
    {
        const WatchedFiles files(
            [](FileCall call) { return call == FileCall::MakeInMemory ? Answer::Fails : Answer::Plain; });
        auto scratch = mox::ScratchFile::create();
        ASSERT_TRUE(scratch.has_value());
        ASSERT_EQ(Names().size(), 1U);
        EXPECT_EQ(ModeOf(folder / Names()[0]), mode_t{0700});
        EXPECT_TRUE(scratch->write("text"));
        EXPECT_EQ(scratch->read(), "text");
        mox::ScratchFile moved(std::move(*scratch));
        EXPECT_EQ(moved.read(), "text");
    }
    EXPECT_EQ(Names(), std::vector<std::string>{});
    fs::remove_all(folder);
    mox::Problem problem;
    {
        const WatchedFiles files(
            [](FileCall call) { return call == FileCall::MakeInMemory ? Answer::Fails : Answer::Plain; });
        EXPECT_FALSE(mox::ScratchFile::create(&problem).has_value());
    }
    EXPECT_EQ(problem.reason, Reason::NotFound);
    umask(mask);
    if (before == nullptr) {
        unsetenv("TMPDIR");
    } else {
        setenv("TMPDIR", old.c_str(), 1);
    }
}

#endif

}  // namespace
}  // namespace faults
