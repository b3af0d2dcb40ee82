// Every call of the system that a replacement of a file makes fails in turn, once and from then on: the result, the
// reason and the files say the same.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/disk/scratch_file.hpp"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/faults/child_process_support.h"
#include "tests/faults/failing_disk_support.h"
#include "tests/faults/tool_in_process_support.h"
#include "tests/host/host_support.h"
#if defined(_WIN32)
#include <windows.h>
#else
#include <cstdlib>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#endif

namespace faults {
namespace {

namespace fs = std::filesystem;
using mox::Reason;
using Calls = std::set<FileCall>;

// Failures of these calls can be tolerated: what was to be closed is no longer needed; a lock that the file system does
// not have is not missed; owner, attributes and access-control list are kept as far as possible; and the folder is
// flushed when the new file is in place.
#if defined(_WIN32)
const Calls kTolerated{FileCall::Close,      FileCall::Lock,      FileCall::FollowLink,
                       FileCall::ReadRights, FileCall::SetRights, FileCall::Open};
#else
const Calls kTolerated{FileCall::Close,          FileCall::Lock,       FileCall::SetOwner,
                       FileCall::ListAttributes, FileCall::ReadRights, FileCall::SetRights,
                       FileCall::Flush};
#endif

// Wine takes milliseconds for each call. Both kinds of documents are saved by the same code, so it does one half of the
// work with each.
#if defined(_WIN32)
constexpr bool kIsSlow = true;
#else
constexpr bool kIsSlow = false;
#endif

// One way to replace a file, and what has to be there before and after it.
struct Case {
    std::string name;
    std::function<void()> prepare;  // makes the files anew
    std::function<bool(mox::Problem& problem)> replace;
    fs::path file;                // the file that is replaced
    std::set<std::string> names;  // what is in the folder after a success
    Calls mustFail{};             // the calls of which each has to be among those that failed
    Calls tolerated = kTolerated;
    Answer firstRename = Answer::Plain;  // how the first call of that kind is answered
    std::vector<Failing> howToFail{Failing::Once, Failing::FromThenOn};
};

// The calls that creating a file needs at least.
const Calls kOfNewFile{FileCall::Open,  FileCall::Size,   FileCall::Examine, FileCall::Write,
                       FileCall::Flush, FileCall::Rename, FileCall::Close};

// The same for replacing one. To compare or copy it, it is read, too.
Calls OfOldFile(bool isRead = false) {
    Calls calls = kOfNewFile;
#if defined(_WIN32)
    calls.insert({FileCall::Lock, FileCall::FollowLink, FileCall::ReadRights, FileCall::SetRights});
#else
    calls.insert({FileCall::Access, FileCall::Lock, FileCall::SetMode, FileCall::ReadRights,
                  FileCall::ListAttributes});
#endif
    if (isRead) calls.insert(FileCall::Read);
    return calls;
}

class FailingReplacement : public testing::Test {
  protected:
    FailingReplacement() {
        fs::remove_all(folder);
        fs::create_directories(folder);
        fs::create_directories(scratch);
#if !defined(_WIN32)
        if (const char* const before = std::getenv("TMPDIR"); before != nullptr) oldScratch = before;
        setenv("TMPDIR", scratch.c_str(), 1);
#endif
    }
    ~FailingReplacement() override {
        fs::remove_all(folder);
        fs::remove_all(scratch);
#if !defined(_WIN32)
        if (oldScratch) {
            setenv("TMPDIR", oldScratch->c_str(), 1);
        } else {
            unsetenv("TMPDIR");
        }
#endif
    }

    void TearDown() override {
        RecordProperty("failures", failures);
    }

    std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.insert(entry.path().filename().string());
        return names;
    }

    mox::ReplaceOptions Options(bool withBackup) const {
        mox::ReplaceOptions options;
        if (withBackup) options.backup = mox::Text(backup.u16string());
        options.patience = std::chrono::milliseconds(100);
        return options;
    }

    // The file as it is before.
    void WriteOld(const fs::path& path) const {
        fs::remove(path);
        host::WriteBytes(path, "old");
#if !defined(_WIN32)
        ASSERT_EQ(chmod(path.c_str(), 0640), 0);
        // A file with an owner and an attribute of its own, where that is permitted.
        static_cast<void>(chown(path.c_str(), 41236, 41236));
        static_cast<void>(setxattr(path.c_str(), "user.mox", "1", 1, 0));
#endif
    }

    // A replacement of the file by one with the content "new".
    Case Plain(const std::string& name, bool isNew, bool withBackup) {
        Case tried{name,
                   [this, isNew, withBackup] {
                       for (const auto& entry : fs::directory_iterator(folder))
                           fs::remove(entry.path());
                       if (!isNew) WriteOld(file);
                       if (withBackup) host::WriteBytes(backup, "good");
                   },
                   [this, withBackup](mox::Problem& problem) {
                       return mox::replaceFile(file.u16string(), "new", Options(withBackup), nullptr,
                                               &problem);
                   },
                   file,
                   {"f.xml"}};
        if (withBackup) tried.names.insert("f.bak");
        return tried;
    }

    mox::SaveOptions SavingOptions() const {
        mox::SaveOptions options;
        options.backup = mox::Text(backup.u16string());
        return options;
    }

    // A save of a document with a backup. `open` opens the file, which is a copy of the original, and changes the
    // document.
    Case OfDocument(const std::string& name, const host::ScratchFile& original,
                    const std::function<void()>& open,
                    const std::function<bool(mox::Problem& problem)>& save) {
        Case tried = Plain(name, false, true);
        const fs::path copy = original.Path();
        tried.prepare = [this, prepare = tried.prepare, open, copy] {
            prepare();
            host::WriteBytes(file, host::ReadBytes(copy));
            open();
        };
        tried.replace = save;
        // The file for what the exports write is not in memory then; that it is there is checked twice; and it stays if
        // it cannot be removed.
        tried.tolerated.insert(
            {FileCall::MakeInMemory, FileCall::Examine, FileCall::Access, FileCall::Size, FileCall::Remove});
        tried.mustFail = OfOldFile(true);
        return tried;
    }

    // Fails each call of the case in turn.
    void FailEachCall(const Case& tried) {
        SCOPED_TRACE(tried.name);
        tried.prepare();
        const Content oldFile = ContentOf(tried.file);
        const Content oldBackup = ContentOf(backup);
        mox::Problem none;
        int flushes = 0;
        {
            Answer rename = tried.firstRename;
            const WatchedFiles files([&](FileCall call) {
                if (call == FileCall::Flush) ++flushes;
                return call == FileCall::Rename ? std::exchange(rename, Answer::Plain) : Answer::Plain;
            });
            ASSERT_TRUE(tried.replace(none)) << none.toString();
        }
        const Content newFile = ContentOf(tried.file);
        const Content newBackup = ContentOf(backup);
        ASSERT_NE(oldFile, newFile);

        const std::uint64_t open = OpenHandles();
        Calls failedCalls;
        for (const Failing how : tried.howToFail) {
            for (std::uint64_t first = 1;; ++first) {
                tried.prepare();
                FailedCall rule(first, how);
                Answer rename = tried.firstRename;
                mox::Problem problem;
                bool isReplaced = false;
                int goodFlushes = 0;
                {
                    const WatchedFiles files([&](FileCall call) {
                        const Answer answer = rule(call);
                        if (call == FileCall::Flush && answer == Answer::Plain) ++goodFlushes;
                        if (call != FileCall::Rename || answer != Answer::Plain) return answer;
                        return std::exchange(rename, Answer::Plain);
                    });
                    isReplaced = tried.replace(problem);
                }
                const std::optional<FileCall> failed = rule.Failed();
                SCOPED_TRACE(std::string(how == Failing::Once ? "once" : "from then on") + ", call " +
                             std::to_string(first) + ", " + (failed ? NameOf(*failed) : "none") + ": " +
                             problem.toString());
                ASSERT_EQ(OpenHandles(), open);
                ASSERT_EQ(isReplaced, !problem);
                if (!failed) {
                    ASSERT_TRUE(isReplaced);
                    break;
                }
                ++failures;
                failedCalls.insert(*failed);
                Check(tried, rule, isReplaced, problem, oldFile, newFile, oldBackup, newBackup);
                // Of the flushes, only the last one is tolerated, that of the folder of the new file.
                if (isReplaced) {
                    ASSERT_GE(goodFlushes, flushes - 1);
                }
                if (HasFatalFailure()) return;
                // Afterwards it succeeds: nothing stays locked or in the way.
                if (ContentOf(tried.file) == oldFile) {
                    ASSERT_TRUE(tried.replace(none)) << none.toString();
                    ASSERT_EQ(ContentOf(tried.file), newFile);
                }
            }
        }
        for (const FileCall call : tried.mustFail)
            EXPECT_EQ(failedCalls.count(call), 1U) << NameOf(call);
    }

    void Check(const Case& tried, const FailedCall& rule, bool isReplaced, const mox::Problem& problem,
               const Content& oldFile, const Content& newFile, const Content& oldBackup,
               const Content& newBackup) const {
        // No scratch file stays that can be removed.
        ASSERT_TRUE(fs::is_empty(scratch) || rule.HasFailed(FileCall::Remove));
        for (const auto& entry : fs::directory_iterator(scratch))
            fs::remove_all(entry.path());
        const Content now = ContentOf(tried.file);
        const Content kept = ContentOf(backup);
        std::set<std::string> names = Names();
#if !defined(_WIN32)
        // Nobody ever may do more than before; and no less, unless owner and list could not be set.
        if (oldFile && now) {
            EXPECT_EQ(ModeOf(tried.file) & ~mode_t{0640}, 0U);
            if (!rule.HasFailed(FileCall::SetOwner) && !rule.HasFailed(FileCall::SetRights)) {
                EXPECT_EQ(ModeOf(tried.file), mode_t{0640});
            }
        }
#endif
        if (isReplaced) {
            ASSERT_EQ(tried.tolerated.count(*rule.Failed()), 1U);
            ASSERT_EQ(now, newFile);
            ASSERT_EQ(kept, newBackup);
            RemoveStaying(tried, rule, names);
            ASSERT_EQ(names, tried.names);
            return;
        }
        // A system that cannot say which file has the name now may have renamed it.
        const Reason reason = problem.reason;
        const bool isUnconfirmed = reason == Reason::Unconfirmed;
        ASSERT_EQ(now, isUnconfirmed ? newFile : oldFile);
        ASSERT_TRUE(!isUnconfirmed || problem.file != mox::toUtf8(backup.u16string()));
        ASSERT_TRUE(kept == oldBackup || kept == newBackup);
        ASSERT_TRUE(isUnconfirmed || reason == Reason::WriteFailed || reason == Reason::ReadFailed);
        ASSERT_NE(problem.file, "");
        ASSERT_TRUE(NamesFailure(rule, problem.message));
        RemoveStaying(tried, rule, names);
        names.insert(tried.names.begin(), tried.names.end());
        ASSERT_EQ(names, tried.names);
    }

    // Takes the temporary files out that may stay: those that could not be removed.
    static void RemoveStaying(const Case& tried, const FailedCall& rule, std::set<std::string>& names) {
        if (rule.HasFailed(FileCall::Remove)) names = tried.names;
    }

    // Whether the message ends with the system's text for a call that failed.
    static bool NamesFailure(const FailedCall& rule, const std::string& message) {
        for (auto call = FileCall::Open; call <= FileCall::MakeFolder;
             call = static_cast<FileCall>(static_cast<int>(call) + 1)) {
            const std::string end = ": " + TextOfFailure(call);
            if (rule.HasFailed(call) && message.size() > end.size() &&
                message.compare(message.size() - end.size(), end.size(), end) == 0)
                return true;
        }
        // What an export says.
        return message == "cannot write the document to a temporary file";
    }

    const fs::path folder = host::ScratchFolder() / "failing";
    const fs::path file = folder / "f.xml";
    const fs::path backup = folder / "f.bak";
    const fs::path scratch = host::ScratchFolder() / "failing_scratch";
    std::optional<std::string> oldScratch;
    int failures = 0;
};

TEST_F(FailingReplacement, OfNoFileCreatesItOrSaysWhyNot) {
    Case tried = Plain("new file", true, false);
    tried.mustFail = kOfNewFile;
    FailEachCall(tried);
}

TEST_F(FailingReplacement, OfAFileReplacesItOrSaysWhyNot) {
    Case tried = Plain("old file", false, false);
    tried.mustFail = OfOldFile();
    FailEachCall(tried);
}

TEST_F(FailingReplacement, WithABackupHasItWholeOrTheOneBefore) {
    Case tried = Plain("with backup", false, true);
    tried.mustFail = OfOldFile(true);
    FailEachCall(tried);
    Case first = Plain("first backup", false, true);
    first.prepare = [this, prepare = first.prepare] {
        prepare();
        fs::remove(backup);
    };
    FailEachCall(first);
}

TEST_F(FailingReplacement, OfTheFileThatWasReadComparesItOrSaysWhyNot) {
    Case tried = Plain("only if unchanged", false, true);
    const auto prepare = tried.prepare;
    mox::FileStamp stamp;
    tried.prepare = [&, prepare] {
        prepare();
        static_cast<void>(mox::readFile(file.u16string(), &stamp));
    };
    tried.replace = [&](mox::Problem& problem) {
        mox::ReplaceOptions options = Options(true);
        options.onlyIf = &stamp;
        return mox::replaceFile(file.u16string(), "new", options, nullptr, &problem);
    };
    tried.mustFail = OfOldFile(true);
    FailEachCall(tried);
}

#if !defined(_WIN32)

TEST_F(FailingReplacement, ThroughALinkReplacesItsFileOrSaysWhyNot) {
    Case tried = Plain("through a link", false, false);
    const fs::path link = folder / "link";
    const auto prepare = tried.prepare;
    tried.prepare = [=] {
        prepare();
        fs::create_symlink("f.xml", link);
    };
    tried.replace = [this, link](mox::Problem& problem) {
        return mox::replaceFile(link.u16string(), "new", Options(false), nullptr, &problem);
    };
    tried.names = {"f.xml", "link"};
    tried.mustFail = OfOldFile();
    tried.mustFail.insert(FileCall::FollowLink);
    FailEachCall(tried);
    EXPECT_TRUE(fs::is_symlink(link));
}

TEST_F(FailingReplacement, WhereRenamingHasNoConditionsCreatesTheFileOrSaysWhyNot) {
    Case tried = Plain("without conditional renaming", true, false);
    tried.firstRename = Answer::Unsupported;
    tried.mustFail = kOfNewFile;
    tried.mustFail.insert({FileCall::Link, FileCall::Remove});
    // Where files have no second names either, a rename does; and the first name may stay.
    tried.tolerated.insert({FileCall::Link, FileCall::Remove});
    FailEachCall(tried);
}

#endif

TEST_F(FailingReplacement, OfASettingsDocumentSavesItOrSaysWhyNot) {
    mox::Profile profile;
    ASSERT_TRUE(profile.set("S", "k", "old"));
    const host::ScratchFile original;
    ASSERT_TRUE(profile.saveReplacing(original.Path().u16string()));
    Case tried = OfDocument(
        "settings", original,
        [&] {
            profile = mox::Profile::open(file.u16string()).value();
            ASSERT_TRUE(profile.set("S", "k", "new"));
        },
        [&](mox::Problem& problem) {
            return profile.saveReplacing(file.u16string(), SavingOptions(), &problem);
        });
    if (kIsSlow) tried.howToFail = {Failing::Once};
    FailEachCall(tried);
}

TEST_F(FailingReplacement, OfATableDocumentSavesItOrSaysWhyNot) {
    mox::Table table = mox::Table::create("T");
    const host::ScratchFile original;
    ASSERT_TRUE(table.saveReplacing(original.Path().u16string()));
    Case tried = OfDocument(
        "table", original,
        [&] {
            table = mox::Table::open(file.u16string()).value();
            mox::Entry entry;
            entry.name = "e";
            entry.type = mox::ValueType::String;
            entry.value = "new";
            ASSERT_TRUE(table.add(entry));
        },
        [&](mox::Problem& problem) {
            return table.saveReplacing(file.u16string(), SavingOptions(), &problem);
        });
    if (kIsSlow) tried.howToFail = {Failing::FromThenOn};
    FailEachCall(tried);
}

}  // namespace
}  // namespace faults
