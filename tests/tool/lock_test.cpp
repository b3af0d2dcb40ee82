// --lock: writers wait for each other.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/tool/tool_support.h"
#include "tests/tool/writing_calls.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

using Lock = ToolTest;

TEST_F(Lock, WritersGiveUpAfterTheTimeAndSaySo) {
    WriteBytes("a.xml", Narrow(TextForCalls()));
    const std::optional<mox::FileLock> lock = mox::FileLock::acquire("a.xml", std::chrono::seconds(1));
    ASSERT_TRUE(lock.has_value());
    Calls calls = WritingCalls("a.xml");
    calls.push_back({"convert", "a.xml", "--wide"});
    WriteBytes("changes.json", "[]");
    calls.push_back({"apply", "a.xml", "changes.json"});
    for (auto call : calls) {
        call.emplace_back("--lock");
        call.emplace_back("--lock-timeout=0");
        const Result result =
            RunTool(call, "waiting");  // a process: on Windows, a thread can lock a file again
        EXPECT_EQ(result.code, 4) << result;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(
            result.err,
            "mox-xml: a.xml: another process has locked the file and does not release it; gave up after 0 "
            "seconds (see --lock-timeout); nothing was changed\n");
    }
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(TextForCalls()));
}

TEST_F(Lock, AllWritersSucceedOneAfterTheOther) {
    constexpr int kWriters = 6;
    std::vector<std::thread> writers;
    std::vector<Result> results(kWriters);
    WriteBytes("a.xml", Narrow(TextForCalls()));
    for (int i = 0; i < kWriters; ++i) {
        writers.emplace_back([i, &results] {
            results[static_cast<std::size_t>(i)] =
                RunTool({"set", "a.xml", "S", "w" + std::to_string(i), "1", "--lock"}, std::to_string(i));
        });
    }
    for (std::thread& writer : writers)
        writer.join();
    for (const Result& result : results)
        EXPECT_EQ(result.code, 0) << result;
    for (int i = 0; i < kWriters; ++i)
        EXPECT_EQ(Succeeds({"get", "a.xml", "S", "w" + std::to_string(i)}), "1\n");
    std::size_t files = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator("."))
        files += entry.is_regular_file() ? 1 : 0;
    EXPECT_EQ(files, 1U);
}

TEST_F(Lock, CreatorsWaitForEachOther) {
    constexpr int kWriters = 4;
    std::vector<std::thread> writers;
    std::vector<Result> results(kWriters);
    for (int i = 0; i < kWriters; ++i) {
        writers.emplace_back([i, &results] {
            results[static_cast<std::size_t>(i)] = RunTool(
                {"set", "a.xml", "S", "w" + std::to_string(i), "1", "--lock", "--create"}, std::to_string(i));
        });
    }
    for (std::thread& writer : writers)
        writer.join();
    for (const Result& result : results)
        EXPECT_EQ(result.code, 0) << result;
    EXPECT_EQ(Succeeds({"keys", "a.xml", "S"}).size(), 12U);
}

TEST_F(Lock, ATimeoutNeedsALock) {
    WriteBytes("a.xml", Narrow(TextForCalls()));
    Fails(2, {"set", "a.xml", "S", "k", "2", "--lock-timeout=1"}, "--lock-timeout requires --lock");
    Fails(2, {"set", "a.xml", "S", "k", "2", "--lock", "--lock-timeout=-1"}, "--lock-timeout");
    EXPECT_EQ(RunTool({"set", "a.xml", "S", "k", "2", "--lock", "--lock-timeout", "1"}).code, 0);
}

}  // namespace
}  // namespace tool
