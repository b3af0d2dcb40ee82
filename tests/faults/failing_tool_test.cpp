// Every call of the system that the command-line tool makes fails in turn, once and from then on.
#if !defined(_WIN32)

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/faults/child_process_support.h"
#include "tests/faults/failing_disk_support.h"
#include "tests/faults/tool_in_process_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

class FailingTool : public testing::Test {
  protected:
    void SetUp() override {
        MOX_REQUIRE_TOOL();
        fs::remove_all(folder);
        fs::create_directories(folder);
        oldBytes = FileWithValues({"old"});
    }
    void TearDown() override {
        fs::remove_all(folder);
        fs::remove(output);
        fs::remove(changes);
    }

    void WriteFiles() const {
        for (const auto& entry : fs::directory_iterator(folder))
            fs::remove(entry.path());
        host::WriteBytes(file, oldBytes);
        host::WriteBytes(backup, "good");
    }

    std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.insert(entry.path().filename().string());
        return names;
    }

    // Runs the tool in a child in which one call fails. Returns its exit code, the first call that failed, and whether
    // a removal failed, so that a file may stay.
    std::string Run(const Arguments& arguments, std::uint64_t first, Failing how) const {
        return InChild([&] {
            SendOutputTo(output.string());
            FailedCall rule(first, how);
            int code = 0;
            const std::uint64_t before = OpenHandles();
            {
                const WatchedFiles files(std::ref(rule));
                code = RunTool(arguments);
            }
            if (OpenHandles() != before) return std::string("descriptors stay open");
            const std::optional<FileCall> failed = rule.Failed();
            return std::to_string(code) + " " + (failed ? NameOf(*failed) : "none") + " " +
                   (rule.HasFailed(FileCall::Remove) ? "stays" : "removed");
        });
    }

    // Expects that each failure is reported, and leaves the old or the new files. `withBackup` says whether the command
    // makes one.
    void FailEachCall(const Arguments& arguments, bool withBackup) {
        WriteFiles();
        ASSERT_EQ(Run(arguments, 0, Failing::Once), "0 none removed") << host::ReadBytes(output);
        const std::string newBytes = host::ReadBytes(file);
        ASSERT_NE(newBytes, oldBytes);
        ASSERT_EQ(host::ReadBytes(backup), withBackup ? oldBytes : "good");
        int failures = 0;
        int successes = 0;
        for (const Failing how : {Failing::Once, Failing::FromThenOn}) {
            for (std::uint64_t first = 1;; ++first) {
                WriteFiles();
                const std::string result = Run(arguments, first, how);
                const std::string said = host::ReadBytes(output);
                const std::string bytes = host::ReadBytes(file);
                const std::string kept = host::ReadBytes(backup);
                SCOPED_TRACE(std::string(how == Failing::Once ? "once" : "from then on") + ", call " +
                             std::to_string(first) + ": " + result + ": " + said);
                if (result == "0 none removed") break;
                ++failures;
                std::set<std::string> names = Names();
                names.erase("f.xml");
                names.erase("f.xml.bak");
                ASSERT_TRUE(names.empty() || result.find("stays") != std::string::npos);
                if (result[0] == '0') {
                    ++successes;
                    ASSERT_EQ(said, "");
                    ASSERT_EQ(bytes, newBytes);
                    ASSERT_EQ(kept, withBackup ? oldBytes : "good");
                    continue;
                }
                ASSERT_EQ(result[0], '4');
                ASSERT_EQ(said.find("mox-xml: "), 0U);
                ASSERT_EQ(said.find('\n'), said.size() - 1) << "one line";
                ASSERT_TRUE(bytes == oldBytes || bytes == newBytes);
                const std::string unsure = "f.xml: the file was replaced, but";
                const bool isReplaced = said.find(unsure) != std::string::npos;
                ASSERT_EQ(bytes, isReplaced ? newBytes : oldBytes);
                ASSERT_TRUE(kept == "good" || (withBackup && kept == oldBytes));
                if (isReplaced) {
                    ASSERT_EQ(said.find("nothing was changed"), std::string::npos);
                    ASSERT_EQ(said.find("--overwrite"), std::string::npos);
                }
                // What the system says, or the export that writes the document.
                const bool hasText =
                    said.find(": Input/output error") != std::string::npos ||
                    said.find(": Too many open files") != std::string::npos ||
                    said.find(": No space left on device") != std::string::npos ||
                    said.find("cannot write the document to a temporary file") != std::string::npos;
                ASSERT_TRUE(hasText);
            }
        }
        EXPECT_GT(failures, 40);
        EXPECT_GT(successes, 0);
        RecordProperty("failures", failures);
    }

    const fs::path folder = host::ScratchFolder() / "failing_tool";
    const fs::path file = folder / "f.xml";
    const fs::path backup = folder / "f.xml.bak";
    const fs::path output = host::ScratchFolder() / "failing_tool.txt";
    const fs::path changes = host::ScratchFolder() / "failing_tool.json";
    std::string oldBytes;
};

TEST_F(FailingTool, SetsAKeyOrSaysWhyNot) {
    FailEachCall({"set", file.string(), "S", "k", "new", "--backup"}, true);
}

TEST_F(FailingTool, ConvertsAFileOrSaysWhyNot) {
    FailEachCall({"convert", "--narrow", file.string(), "--backup"}, true);
}

TEST_F(FailingTool, AppliesChangesOrSaysWhyNot) {
    const fs::path other = folder / "other.xml";
    mox::Profile profile;
    ASSERT_TRUE(profile.set("S", "k", "new"));
    ASSERT_TRUE(profile.saveReplacing(other.u16string()));
    host::WriteBytes(file, oldBytes);
    ASSERT_EQ(InChild([&] {
                  SendOutputTo(changes.string());
                  return std::to_string(RunTool({"diff", "--json", file.string(), other.string()}));
              }),
              "1");
    FailEachCall({"apply", file.string(), changes.string(), "--backup"}, true);
}

}  // namespace
}  // namespace faults

#endif
