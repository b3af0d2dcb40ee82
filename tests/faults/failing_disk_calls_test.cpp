// Every call of the system that a load or a save makes for its file fails in turn.
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/faults/failing_disk_support.h"
#include "tests/faults/failing_memory_support.h"
#include "tests/faults/open_documents_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

using host::operator""_w;

constexpr std::size_t kPiece = 4000;

TEST(FailingDisk, SaveSucceedsOnlyWhenNothingFailed) {
    const OpenDocuments documents(200);
    const std::uint64_t open = OpenHandles();
    int failures = 0;
    for (const Failing how : {Failing::Once, Failing::FromThenOn}) {
        for (const OpenDocuments::Save& save : documents.EverySave()) {
            for (std::uint64_t first = 1;; ++first) {
                FailedCall rule(first, how);
                const host::ScratchFile file;
                bool saved = false;
                {
                    const WatchedFiles files(std::ref(rule), kPiece);
                    saved = save(file.Name());
                }
                ASSERT_EQ(saved, !rule.Failed()) << "call " << first;
                ASSERT_EQ(OpenHandles(), open) << "call " << first;
                if (!rule.Failed()) break;
                ++failures;
                if (*rule.Failed() == FileCall::Open) {
                    ASSERT_FALSE(file.Exists());
                }
            }
        }
    }
    EXPECT_TRUE(documents.AreUntouched());
    EXPECT_GT(failures, 100);
    RecordProperty("failures", failures);
}

TEST(FailingDisk, SaveThatCannotOpenTheFileLeavesItAsItIs) {
    const OpenDocuments documents(1);
    for (const OpenDocuments::Save& save : documents.EverySave()) {
        const host::ScratchFile file;
        host::WriteBytes(file.Path(), "what was there before");
        FailedCall rule(1, Failing::FromThenOn);
        {
            const WatchedFiles files(std::ref(rule));
            EXPECT_FALSE(save(file.Name()));
        }
        EXPECT_EQ(rule.Failed(), FileCall::Open);
        EXPECT_EQ(file.Bytes(), "what was there before");
    }
}

struct Load {
    std::string bytes;
    std::function<void*(const wchar16* path)> open;
    std::function<void(void* handle)> dispose;
};

std::vector<Load> EveryLoad(int entries) {
    const auto openProfile = [](std::int32_t wide) {
        return
            [wide](const wchar16* path) { return static_cast<void*>(xmlProfileNew(path, nullptr, 0, wide)); };
    };
    const auto disposeProfile = [](void* handle) {
        auto* profile = static_cast<moxSettings*>(handle);
        xmlProfileDispose(&profile);
    };
    return {{ProfileText(entries), openProfile(0), disposeProfile},
            {host::WideFile(ProfileText(entries)), openProfile(1), disposeProfile},
            {host::WideFile(TableText(entries)),
             [](const wchar16* path) { return xmlTableNew(path, nullptr, 0, "T"_w, 0, 0, 0, 0); },
             [](void* handle) { xmlTableDispose(&handle); }}};
}

TEST(FailingDisk, LoadSucceedsOnlyWhenTheWholeFileWasRead) {
    const std::uint64_t open = OpenHandles();
    for (const Failing how : {Failing::Once, Failing::FromThenOn}) {
        for (const Load& load : EveryLoad(200)) {
            const host::ScratchFile file;
            host::WriteBytes(file.Path(), load.bytes);
            for (std::uint64_t first = 1;; ++first) {
                const std::int64_t blocks = LiveBlocks();
                FailedCall rule(first, how);
                void* handle = nullptr;
                {
                    const WatchedFiles files(std::ref(rule), kPiece);
                    handle = load.open(file.Name());
                }
                // The size is a hint, and the file was read when it is closed.
                const bool isHarmless = !rule.Failed() || *rule.Failed() == FileCall::Close ||
                                        (*rule.Failed() == FileCall::Size && how == Failing::Once);
                ASSERT_EQ(handle != nullptr, isHarmless) << "call " << first;
                load.dispose(handle);
                ASSERT_EQ(OpenHandles(), open);
                ASSERT_EQ(LiveBlocks(), blocks);
                if (!rule.Failed()) break;
            }
        }
    }
}

TEST(FailingDisk, PiecesOfAnySizeMakeTheSameFile) {
    const OpenDocuments documents(3);
    for (const std::size_t most : {1U, 2U, 3U, 7U, 511U, 4096U}) {
        const WatchedFiles files([](FileCall) { return Answer::Plain; }, most);
        EXPECT_TRUE(documents.AreUntouched()) << most;
    }
}

TEST(FailingDisk, PiecesOfAnySizeMakeTheSameDocument) {
    for (const Load& load : EveryLoad(3)) {
        const host::ScratchFile file;
        host::WriteBytes(file.Path(), load.bytes);
        for (const std::size_t most : {1U, 2U, 3U, 7U, 511U, 4096U}) {
            const WatchedFiles files([](FileCall) { return Answer::Plain; }, most);
            void* handle = load.open(file.Name());
            EXPECT_NE(handle, nullptr) << most;
            load.dispose(handle);
        }
    }
}

#if !defined(_WIN32)

TEST(FailingDisk, SignalsAreNoFailure) {
    const OpenDocuments documents(200);
    bool wasInterrupted = false;
    // Every other call; a file that is being closed is closed whatever comes.
    const auto rule = [&](FileCall call) {
        wasInterrupted = !wasInterrupted && call != FileCall::Close && call != FileCall::Size;
        return wasInterrupted ? Answer::Interrupted : Answer::Plain;
    };
    for (const OpenDocuments::Save& save : documents.EverySave()) {
        const host::ScratchFile file;
        const WatchedFiles files(rule, kPiece);
        EXPECT_TRUE(save(file.Name()));
    }
    for (const Load& load : EveryLoad(200)) {
        const host::ScratchFile file;
        host::WriteBytes(file.Path(), load.bytes);
        const WatchedFiles files(rule, kPiece);
        void* handle = load.open(file.Name());
        EXPECT_NE(handle, nullptr);
        load.dispose(handle);
    }
}

#endif

// Changes the file just before the read with the number `read`.
WatchedFiles::Rule BeforeRead(int read, std::function<void()> change) {
    return [read, change = std::move(change), reads = 0](FileCall call) mutable {
        if (call == FileCall::Read && ++reads == read) change();
        return Answer::Plain;
    };
}

TEST(FailingDisk, FileThatShrinksWhileItIsReadIsNoDocument) {
    for (const Load& load : EveryLoad(200)) {
        const host::ScratchFile file;
        for (const int read : {1, 2, 3}) {
            host::WriteBytes(file.Path(), load.bytes);
            const WatchedFiles files(
                BeforeRead(read, [&] { std::filesystem::resize_file(file.Path(), load.bytes.size() / 2); }),
                kPiece);
            void* handle = load.open(file.Name());
            EXPECT_EQ(handle, nullptr) << "before read " << read;
            load.dispose(handle);
        }
    }
}

TEST(FailingDisk, FileThatShrinksToNothingBeforeItIsReadIsAnEmptyDocument) {
    const host::ScratchFile file;
    host::WriteBytes(file.Path(), ProfileText(200));
    const WatchedFiles files(BeforeRead(1, [&] { std::filesystem::resize_file(file.Path(), 0); }));
    const host::Profile profile(xmlProfileNew(file.Name(), nullptr, 0, 0));
    EXPECT_EQ(host::SaveBytes(profile), host::NarrowFile(host::Lines({host::kEmptyRoot})));
}

TEST(FailingDisk, FileThatShrinksToWholeNodesHasThese) {
    const host::ScratchFile file;
    host::WriteBytes(file.Path(), "<a/>\n<b/>\n" + std::string(9000, ' ') + "<c/>\n");
    const WatchedFiles files(BeforeRead(1, [&] { std::filesystem::resize_file(file.Path(), 5); }));
    const host::Profile profile(xmlProfileNew(file.Name(), nullptr, 0, 0));
    EXPECT_EQ(host::SaveBytes(profile), host::NarrowFile(host::Lines({"<a/>", host::kEmptyRoot})));
}

TEST(FailingDisk, FileThatGrowsWhileItIsReadIsReadToItsNewEnd) {
    for (const bool wide : {false, true}) {
        const auto form = [&](const std::string& text) {
            std::string bytes = wide ? host::WideFile(text) : text;
            if (wide) bytes.resize(bytes.size() - 2);
            return bytes;
        };
        const host::ScratchFile file;
        host::WriteBytes(file.Path(), form("<a/>\n" + std::string(9000, ' ')));
        const WatchedFiles files(BeforeRead(2,
                                            [&] {
                                                std::ofstream stream(file.Path(),
                                                                     std::ios::binary | std::ios::app);
                                                stream << form(std::string(20000, ' ') + "<b/>\n");
                                            }),
                                 kPiece);
        const host::Profile profile(xmlProfileNew(file.Name(), nullptr, 0, wide ? 1 : 0));
        EXPECT_EQ(host::SaveBytes(profile),
                  host::NarrowFile(host::Lines({"<a/>", "<b/>", host::kEmptyRoot})));
    }
}

}  // namespace
}  // namespace faults
