// Every call of the system that a save of the editor makes fails in turn, once and from then on.
#if defined(MOX_TOOL_IN_TESTS) && !defined(_WIN32)

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/faults/failing_disk_support.h"
#include "tests/host/host_support.h"
#include "tools/edit/editor_session.h"
#include "tools/exit_error.h"

namespace faults {
namespace {

namespace fs = std::filesystem;
using mox::tool::EditorSession;

class FailingEditor : public testing::Test {
  protected:
    void SetUp() override {
        fs::remove_all(folder);
        fs::create_directories(folder);
        oldBytes = FileWithValues({"old"});
        newBytes = FileWithValues({"old", "new"});
        options.file.path = file.string();
        changes = mox::tool::ReadChanges("changes", R"([{"section": "S", "entry": "k", "value": "new"}])");
    }
    void TearDown() override { fs::remove_all(folder); }

    // Saves with a backup. Returns the answer, or the message of the failure.
    std::string Save(EditorSession& session) const {
        try {
            return session.Save(1, changes, true).dump();
        } catch (const mox::tool::ExitError& error) {
            return error.what();
        }
    }

    static bool Has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }

    const fs::path folder = host::ScratchFolder() / "failing_editor";
    const fs::path file = folder / "f.xml";
    std::string oldBytes;
    std::string newBytes;
    mox::tool::SessionOptions options;
    std::vector<mox::tool::RequestedChange> changes;
};

TEST_F(FailingEditor, SavesOrSaysWhatHasBecomeOfTheFile) {
    int refused = 0;
    int unsure = 0;
    for (const Failing how : {Failing::Once, Failing::FromThenOn}) {
        for (std::uint64_t first = 1;; ++first) {
            host::WriteBytes(file, oldBytes);
            EditorSession session(options);
            FailedCall rule(first, how);
            std::string said;
            {
                const WatchedFiles files(std::ref(rule));
                said = Save(session);
            }
            if (!rule.Failed()) break;
            const std::string bytes = host::ReadBytes(file);
            SCOPED_TRACE("call " + std::to_string(first) + ", " + NameOf(*rule.Failed()) + ": " + said);
            ASSERT_FALSE(Has(said, "\"conflict\"")) << "nobody else has changed the file";
            if (Has(said, "\"saved\":true")) {
                ASSERT_EQ(bytes, newBytes);
            } else if (Has(said, "f.xml: the file was replaced, but")) {
                ++unsure;
                ASSERT_EQ(bytes, newBytes);
                ASSERT_FALSE(Has(said, "nothing was changed"));
                // The page can go on: both have made the same change.
                ASSERT_TRUE(Has(Save(session), R"("theirs":"new","mine":"new","by":"both")"));
            } else {
                ++refused;
                ASSERT_EQ(bytes, oldBytes);
                ASSERT_TRUE(Has(said, "; nothing was changed") || Has(said, "f.xml was not changed"));
            }
        }
    }
    EXPECT_GT(refused, 20);
    EXPECT_GT(unsure, 0);
}

}  // namespace
}  // namespace faults

#endif
