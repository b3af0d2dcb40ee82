// A power cut at any moment of a replacement leaves the old file or the new one, and so for the backup.
#if !defined(_WIN32)

#include <algorithm>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/faults/child_process_support.h"
#include "tests/faults/failing_disk_support.h"
#include "tests/faults/power_cut_support.h"
#include "tests/faults/recorded_disk_support.h"
#include "tests/faults/tool_in_process_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

namespace fs = std::filesystem;

FileNumber FolderOf(const fs::path& path) {
    const int folder = open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY);
    const FileNumber number = NumberOf(folder);
    close(folder);
    return number;
}

// Some saves of a file, one after the other, and what they did.
struct Saves {
    fs::path file;
    std::optional<fs::path> backup{};
    mode_t mode = 0;  // of the file at all times; 0 for any
    DiskModel before{};
    std::vector<Operation> operations{};
    std::vector<Content> files{};    // the file before the first save and after each one
    std::vector<Content> backups{};  // likewise
};

// Runs the saves and records them. `save` is called with 0, 1 and so on.
void RunSaves(Saves& saves, int count, const std::function<bool(int number)>& save) {
    const auto keepState = [&] {
        saves.files.push_back(ContentOf(saves.file));
        saves.backups.push_back(saves.backup ? ContentOf(*saves.backup) : std::nullopt);
    };
    saves.before.AddFolder(saves.file.parent_path());
    if (saves.backup) saves.before.AddFolder(saves.backup->parent_path());
    keepState();
    {
        const RecordedFiles record;
        for (int number = 0; number < count; ++number) {
            ASSERT_TRUE(save(number));
            Record({});
            keepState();
        }
        saves.operations = record.Operations();
    }
    // The model must have seen everything that changed the folder.
    DiskModel after = saves.before;
    for (const Operation& operation : saves.operations)
        after.Apply(operation);
    const DiskModel::Name name(FolderOf(saves.file), saves.file.filename().string());
    EXPECT_EQ(after.Content(name), *saves.files.back());
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(saves.file.parent_path())) {
        if (!entry.is_directory() && !entry.is_symlink()) names.insert(entry.path().filename().string());
    }
    EXPECT_EQ(after.NamesIn(FolderOf(saves.file)), names);
}

// Whether each content that the name may have is one of these.
bool IsOneOf(const DiskModel::State& state, const DiskModel::Name& name,
             const std::vector<Content>& allowed) {
    const auto isAllowed = [&](const Content& content) {
        return std::find(allowed.begin(), allowed.end(), content) != allowed.end();
    };
    const auto found = state.find(name);
    if (found == state.end()) return isAllowed(std::nullopt);
    return std::all_of(found->second.contents.begin(), found->second.contents.end(), isAllowed);
}

// What is wrong with a state after the saves with a number below `done` have returned; empty if nothing is.
std::string WrongIn(const DiskModel::State& state, const Saves& saves, std::size_t done) {
    const DiskModel::Name file(FolderOf(saves.file), saves.file.filename().string());
    const bool isLast = done + 1 == saves.files.size();
    std::vector<Content> allowed{saves.files[done]};
    if (!isLast) allowed.push_back(saves.files[done + 1]);
    if (!IsOneOf(state, file, allowed)) return "the file is neither the old nor the new one";
    const auto found = state.find(file);
    if (saves.mode != 0 && found != state.end() && found->second.modes != std::set<mode_t>{saves.mode})
        return "the file has other mode bits";
    if (!saves.backup) return "";
    const DiskModel::Name backup(FolderOf(*saves.backup), saves.backup->filename().string());
    std::vector<Content> allowedBackups{saves.backups[done]};
    if (!isLast) {
        const bool isOld = IsOneOf(state, file, {saves.files[done]});
        if (!isOld) allowedBackups.clear();  // the backup must have what the new file replaced
        allowedBackups.push_back(saves.backups[done + 1]);
    }
    return IsOneOf(state, backup, allowedBackups) ? "" : "the backup is not what it has to be";
}

// Plays the operations, and after each of them a power cut. Returns what is wrong after the first that does harm.
std::string WrongAfterPowerCuts(const Saves& saves, const std::vector<Operation>& operations, int& states) {
    DiskModel disk = saves.before;
    std::size_t done = 0;
    std::string wrong;
    for (std::size_t at = 0;; ++at) {
        disk.ForEachState([&](const DiskModel::State& state) {
            ++states;
            if (!wrong.empty()) return;
            wrong = WrongIn(state, saves, done);
            if (!wrong.empty() && at > 0) wrong += ", after " + Describe(operations[at - 1]);
        });
        if (!wrong.empty() || at == operations.size()) return wrong;
        if (operations[at].kind == Operation::Kind::Return) ++done;
        disk.Apply(operations[at]);
    }
}

// Expects no harm from a power cut at any point, and harm if any one of the flushes had not been made. Adds the number of
// states that were examined to `all`.
void ExpectSafeFromPowerCuts(const Saves& saves, int& all) {
    int states = 0;
    EXPECT_EQ(WrongAfterPowerCuts(saves, saves.operations, states), "");
    all += states;
    std::size_t flushes = 0;
    for (std::size_t at = 0; at < saves.operations.size(); ++at) {
        const Operation::Kind kind = saves.operations[at].kind;
        if (kind != Operation::Kind::Flush && kind != Operation::Kind::FlushAll) continue;
        ++flushes;
        std::vector<Operation> without = saves.operations;
        without.erase(without.begin() + static_cast<std::ptrdiff_t>(at));
        EXPECT_NE(WrongAfterPowerCuts(saves, without, states), "") << "without flush " << flushes;
    }
    // Content and names of each file that was put in place.
    const std::size_t perSave = saves.backup && saves.files[0] ? 4 : 2;
    EXPECT_GE(flushes, perSave * (saves.files.size() - 1));
}

class PowerCut : public testing::Test {
  protected:
    PowerCut() {
        fs::remove_all(folder);
        fs::create_directories(folder / "backups");
    }
    ~PowerCut() override { fs::remove_all(folder); }

    void TearDown() override { RecordProperty("states", states); }

    static bool Replace(const fs::path& path, const std::string& bytes,
                        const std::optional<fs::path>& backup) {
        mox::ReplaceOptions options;
        if (backup) options.backup = mox::Text(backup->u16string());
        mox::Problem problem;
        const bool isReplaced = mox::replaceFile(path.u16string(), bytes, options, nullptr, &problem);
        EXPECT_TRUE(isReplaced) << problem.toString();
        return isReplaced;
    }

    // Replaces the file some times. Each write moves a part of the bytes.
    void Run(Saves& saves, int count) {
        const WatchedFiles inPieces([](FileCall) { return Answer::Plain; }, 5);
        RunSaves(saves, count, [&](int number) {
            return Replace(saves.file, "new content " + std::to_string(number), saves.backup);
        });
    }

    const fs::path folder = host::ScratchFolder() / "power_cut";
    const fs::path file = folder / "f.xml";
    const fs::path backup = folder / "f.bak";
    int states = 0;  // that were examined, but for those of child processes
};

TEST_F(PowerCut, LeavesTheOldOrTheNewFile) {
    host::WriteBytes(file, "old content");
    ASSERT_EQ(chmod(file.c_str(), 0640), 0);
    Saves saves{file};
    saves.mode = 0640;
    Run(saves, 1);
    ExpectSafeFromPowerCuts(saves, states);
}

TEST_F(PowerCut, LeavesNoFileOrTheFirstOne) {
    Saves saves{file};
    Run(saves, 1);
    ExpectSafeFromPowerCuts(saves, states);
}

TEST_F(PowerCut, LeavesNoFileOrTheFirstOneWhereRenamingHasNoConditions) {
    Saves saves{file};
    {
        // As on a file system that cannot rename on condition that there is no such file.
        bool isFirst = true;
        const WatchedFiles files([&](FileCall call) {
            if (call != FileCall::Rename || !std::exchange(isFirst, false)) return Answer::Plain;
            return Answer::Unsupported;
        });
        RunSaves(saves, 1, [&](int) { return Replace(saves.file, "new content", {}); });
    }
    EXPECT_TRUE(std::any_of(saves.operations.begin(), saves.operations.end(),
                            [](const Operation& made) { return made.kind == Operation::Kind::Link; }));
    ExpectSafeFromPowerCuts(saves, states);
}

TEST_F(PowerCut, LeavesABackupBeforeItLeavesANewFile) {
    for (const bool hasBackup : {false, true}) {
        for (const fs::path& path : {backup, folder / "backups" / "f.bak"}) {
            host::WriteBytes(file, "old content");
            fs::remove(path);
            if (hasBackup) host::WriteBytes(path, "content before");
            ASSERT_EQ(chmod(file.c_str(), 0600), 0);
            Saves saves{file, path};
            saves.mode = 0600;
            Run(saves, 1);
            ExpectSafeFromPowerCuts(saves, states);
        }
    }
}

TEST_F(PowerCut, TakesNothingBackThatASaveHasReturned) {
    Saves saves{file, backup};
    Run(saves, 3);
    EXPECT_EQ(saves.files[0], std::nullopt);
    EXPECT_EQ(saves.backups[1], std::nullopt);
    EXPECT_EQ(saves.backups[3], "new content 1");
    ExpectSafeFromPowerCuts(saves, states);
}

TEST_F(PowerCut, LeavesTheOldOrTheNewDocumentOfASave) {
    mox::Profile profile;
    ASSERT_TRUE(profile.set("S", "k", "first"));
    Saves saves{file, backup};
    RunSaves(saves, 2, [&](int number) {
        mox::SaveOptions options;
        options.backup = mox::Text(backup.u16string());
        return profile.set("S", "k", number) && profile.saveReplacing(file.u16string(), options);
    });
    ExpectSafeFromPowerCuts(saves, states);

    fs::remove(file);
    fs::remove(backup);
    mox::Table table = mox::Table::create("T");
    Saves tableSaves{file, backup};
    RunSaves(tableSaves, 2, [&](int number) {
        mox::SaveOptions options;
        options.backup = mox::Text(backup.u16string());
        mox::Entry entry;
        entry.name = "e" + std::to_string(number);
        entry.type = mox::ValueType::String;
        entry.value = "text";
        return table.add(entry) && table.saveReplacing(file.u16string(), options);
    });
    ExpectSafeFromPowerCuts(tableSaves, states);
}

TEST_F(PowerCut, LeavesTheOldOrTheNewFileOfTheTool) {
    MOX_REQUIRE_TOOL();
    EXPECT_EQ(
        InChild([&]() -> std::string {
            SendOutputTo("/dev/null");
            mox::Profile profile;
            if (!profile.set("S", "k", "first") || !profile.saveReplacing(file.u16string())) return "no file";
            Saves saves{file, folder / "f.xml.bak"};
            RunSaves(saves, 2, [&](int number) {
                return RunTool({"set", file.string(), "S", "k", std::to_string(number), "--backup"}) == 0;
            });
            ExpectSafeFromPowerCuts(saves, states);
            return "";
        }),
        "");
}

TEST_F(PowerCut, LeavesTheOldOrTheNewFileInAFolderThatCannotBeListed) {
    host::WriteBytes(file, "old content");
    ASSERT_EQ(chmod(folder.c_str(), 0777), 0);
    ASSERT_EQ(chmod(file.c_str(), 0666), 0);
    EXPECT_EQ(InChild([&]() -> std::string {
                  fs::current_path(folder);
                  if (!GiveUpPrivileges()) return "privileges cannot be given up";
                  fs::create_directory("mine");
                  host::WriteBytes("mine/f.xml", "old content");
                  Saves saves{"mine/f.xml", "mine/f.bak"};
                  // As the recorder, not as the one who saves, this process may list the folder.
                  RunSaves(saves, 1, [&](int) {
                      chmod("mine", 0300);
                      const bool isReplaced = Replace("mine/f.xml", "new content", "mine/f.bak");
                      chmod("mine", 0700);
                      return isReplaced;
                  });
                  ExpectSafeFromPowerCuts(saves, states);
                  return "";
              }),
              "");
}

// ---- the model itself

// A name and its file as operations would make them that forget to flush.
TEST_F(PowerCut, MayLeaveAPartOfWhatWasNotFlushed) {
    host::WriteBytes(file, "old content");
    DiskModel disk;
    disk.AddFolder(folder);
    const FileNumber number = FolderOf(file);
    Operation create{Operation::Kind::Create, {1, 1}, number, "t"};
    create.mode = 0600;
    disk.Apply(create);
    Operation write{Operation::Kind::Write, {1, 1}};
    write.bytes = "abcd";
    disk.Apply(write);
    disk.Apply({Operation::Kind::Rename, {}, number, "t", "f.xml"});
    std::set<std::string> contents;
    disk.ForEachState([&](const DiskModel::State& state) {
        const auto found = state.find({number, "f.xml"});
        ASSERT_NE(found, state.end());
        contents.insert(found->second.contents.begin(), found->second.contents.end());
    });
    const std::string zeros(4, '\0');
    EXPECT_EQ(contents, (std::set<std::string>{"old content", "", "ab", "abcd", zeros, "ab" + zeros.substr(2),
                                               zeros.substr(2) + "cd"}));
    disk.Apply({Operation::Kind::Flush, {1, 1}});
    disk.Apply({Operation::Kind::Flush, number});
    disk.ForEachState([&](const DiskModel::State& state) {
        EXPECT_EQ(state.at({number, "f.xml"}).contents, std::set<std::string>{"abcd"});
        EXPECT_EQ(state.count({number, "t"}), 0U);
    });
}

}  // namespace
}  // namespace faults

#endif
