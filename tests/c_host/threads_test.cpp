// Documents in many threads: different ones at the same time, and one of them in different threads one after the other.
// Each thread finds what a single one would. Under ThreadSanitizer this also shows that nothing is shared.
#include <atomic>
#include <mutex>
#include <thread>

#include "tests/c_host/c_host_support.h"

namespace c_host {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 12;
constexpr int kKeys = 60;  // enough for an index of names

std::string KeyName(int i) {
    return "key" + std::to_string(i);
}

// Writes, saves to bytes, opens these, and reads every key, entry and node. Returns what is not as expected; "" if
// all is.
std::string WorkOnOwnDocument(int thread, int round) {
    const std::string section = "thread" + std::to_string(thread);
    const Problem problem;
    mox_document* made = nullptr;
    if (mox_new_settings(&made, problem) != MOX_OK) return "new";
    Document document(made);
    for (int i = 0; i < kKeys; ++i) {
        const std::string name = KeyName(i);
        if (mox_set_int(document.get(), section.data(), section.size(), name.data(), name.size(),
                        thread * 1000 + round + i, MOX_TYPE_LONG, problem) != MOX_OK)
            return "set: " + problem.Text();
    }
    if (SetText(document, section, "\xC3\xA4", "\xE2\x82\xAC") != MOX_OK) return "text";
    void* bytes = nullptr;
    size_t size = 0;
    if (mox_to_bytes(document.get(), nullptr, &bytes, &size, problem) != MOX_OK)
        return "save: " + problem.Text();
    const std::unique_ptr<void, Freeing<mox_free>> owned(bytes);
    mox_document* opened = nullptr;
    if (mox_parse(bytes, size, MOX_SETTINGS, nullptr, &opened, problem) != MOX_OK)
        return "open: " + problem.Text();
    document.reset(opened);
    for (int i = kKeys - 1; i >= 0; --i) {
        const std::string name = KeyName(i);
        int64_t value = -1;
        mox_get_int(document.get(), section.data(), section.size(), name.data(), name.size(), &value,
                    nullptr);
        if (value != thread * 1000 + round + i) return "found " + std::to_string(value);
    }
    mox_list* entries = nullptr;
    if (mox_entries(document.get(), section.data(), section.size(), &entries, nullptr) != MOX_OK)
        return "entries";
    const List list(entries);
    if (mox_list_count(entries) != kKeys + 1) return "the number of entries";
    mox_tree* tree = nullptr;
    if (mox_tree_parse(bytes, size, MOX_FORM_WIDE, &tree, nullptr) != MOX_OK) return "tree";
    const Tree nodes(tree);
    // The declaration, the root, the section, and for each entry itself and its value.
    if (mox_tree_count(tree) != 3 + 2 * (kKeys + 1)) return "the number of nodes";
    if (SetText(document, "S", "K", "\xFF", problem) != MOX_INVALID_TEXT) return "a failure that succeeds";
    return "";
}

TEST(HostThreads, DifferentDocumentsAtTheSameTime) {
    std::vector<std::string> results(kThreads);
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            ++ready;
            while (ready < kThreads)
                std::this_thread::yield();
            std::string& result = results[static_cast<std::size_t>(t)];
            for (int round = 0; round < kRounds && result.empty(); ++round)
                result = WorkOnOwnDocument(t, round);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(results, std::vector<std::string>(kThreads));
}

TEST(HostThreads, OneDocumentInOneThreadAfterTheOther) {
    Document document = Settings("");
    std::mutex mutex;
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kKeys; ++i) {
                const std::string name = KeyName(i);
                const std::lock_guard<std::mutex> lock(mutex);
                int64_t value = 0;
                mox_get_int(document.get(), MOX_STR("S"), name.data(), name.size(), &value, nullptr);
                if (mox_set_int(document.get(), MOX_STR("S"), name.data(), name.size(), value + t + 1,
                                MOX_TYPE_LONG, nullptr) != MOX_OK)
                    ++failures;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    for (int i = 0; i < kKeys; ++i)
        EXPECT_EQ(TextOf(document, "S", KeyName(i)), "36") << i;
    // The last one frees what the others have filled.
    std::thread([&] { document.reset(); }).join();
}

}  // namespace
}  // namespace c_host
