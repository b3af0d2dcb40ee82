// The C++ front when memory runs out.
#include <cstdint>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <utility>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "mox_xmlApi/table/table_handle.h"
#include "tests/faults/failing_memory_support.h"
#include "tests/faults/memory_script_support.h"
#include "tests/faults/pool_room_support.h"

namespace faults {
namespace {

// Its values are in the presentation data. The comment makes the text long: a load reserves memory in proportion to it,
// and what it leaves serves the first changes.
mox::Table NewTable() {
    auto table = mox::Table::parse(
        "<Table name=\"T\"><Var name=\"A\" type=\"long\"><UI><Value>1</Value></UI></Var>"
        "<Var name=\"B\" type=\"long\"/><!--" +
        std::string(1000, 'c') + "--></Table>\n");
    EXPECT_TRUE(table.has_value());
    return std::move(*table);
}

mox::XmlPool& PoolOf(const mox::Table& table) {
    return static_cast<mox::TableHandle*>(table.handle())->document.Pool();
}

// How many entries there are, readable or not.
std::size_t CountEntries(const mox::Table& table) {
    return table.list().size() + table.countUnreadable();
}

// Makes each allocation of the call fail in turn, in a pool with so much room. Returns how many failed.
template <class Call>
std::uint64_t FailEachAllocation(std::size_t added, const PoolRoom& whole, std::size_t bytes, Call call) {
    constexpr std::size_t kBefore = 2;
    for (std::uint64_t first = 1;; ++first) {
        mox::Table table = NewTable();
        TakeAllBut(PoolOf(table), whole, bytes);
        bool isDone = false;
        {
            FailingMemory memory(first, Failing::Once);
            try {
                isDone = call(table);
            } catch (const std::bad_alloc&) {
            }
        }
        const std::size_t count = CountEntries(table);
        if (FailingMemory::Injected() == 0) {
            EXPECT_TRUE(isDone);
            EXPECT_EQ(count, kBefore + added);
            return first - 1;
        }
        EXPECT_TRUE(count == kBefore || count == kBefore + added)
            << count << " entries after failure " << first << " with room for " << bytes;
        if (testing::Test::HasFailure()) return first;
    }
}

template <class Call>
void ExpectNoOtherEntryWhateverFails(std::size_t added, Call call) {
    constexpr std::size_t kMostRoom = 960;  // more than any of the calls needs
    constexpr std::size_t kRoomStep = kIsThorough ? mox::XmlPool::kAlignment : 4 * mox::XmlPool::kAlignment;
    mox::Table table = NewTable();
    const PoolRoom whole = TakeAll(PoolOf(table));
    ASSERT_GE(whole.Bytes(), kMostRoom);
    std::uint64_t failures = 0;
    for (std::size_t bytes = 0; bytes <= kMostRoom && !testing::Test::HasFailure(); bytes += kRoomStep)
        failures += FailEachAllocation(added, whole, bytes, call);
    EXPECT_GT(failures, 100U);
}

TEST(FailingMemoryInFront, NoEntryButTheOneThatIsWrittenIsLeftBehind) {
    const std::string text = "a value that needs some memory of its own";
    ExpectNoOtherEntryWhateverFails(1, [&](mox::Table& table) { return table.add({"C", text}); });
    ExpectNoOtherEntryWhateverFails(0, [&](mox::Table& table) { return table.put({"B", text}); });
    ExpectNoOtherEntryWhateverFails(0, [&](mox::Table& table) { return table.setValue("B", text); });
}

}  // namespace
}  // namespace faults
