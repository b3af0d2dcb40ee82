// The C++ front when memory runs out while it opens or saves a document.
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <new>
#include <optional>
#include <string>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/faults/failing_memory_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

using mox::Problem;
using mox::Profile;
using mox::Reason;
using mox::Table;

// An entry with a part twice, which the front remembers, and text that needs a wide file.
const std::string kEntries =
    "<Var name=\"K\" type=\"long\"><Value>1</Value></Var>"
    "<Var name=\"L\" type=\"long\"><Value>1</Value><Value>2</Value></Var>";
const std::string kNarrow =
    "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"><Table name=\"S\">" + kEntries +
    "</Table></Settings>\n";

std::string Wide(const std::string& utf8) {
    return mox::importText(utf8, mox::Encoding::Utf8).value();
}

void Nothing() {}

// Makes each allocation of the call fail in turn, alone and with all that follow. After each failure no memory is left of
// the call. `call` returns whether it succeeded. `prepare` is called before it, and `check` after it, with memory.
template <class Call, class Prepare = void (*)(), class Check = void (*)()>
void FailEachAllocation(const char* what, Call call, Prepare prepare = Nothing, Check check = Nothing) {
    SCOPED_TRACE(what);
    prepare();
    call();  // what is made once per process
    try {
        throw std::bad_alloc();  // the first exception of a thread takes memory that stays (MinGW)
    } catch (const std::bad_alloc&) {
    }
    for (const Failing how : {Failing::Once, Failing::FromThenOn}) {
        for (std::uint64_t first = 1; !testing::Test::HasFailure(); ++first) {
            prepare();
            const std::int64_t blocks = LiveBlocks();
            bool isDone = false;
            std::uint64_t injected = 0;
            {
                FailingMemory memory(first, how);
                try {
                    isDone = call();
                } catch (const std::bad_alloc&) {
                }
                memory.Stop();
                injected = FailingMemory::Injected();
            }
            EXPECT_EQ(LiveBlocks(), blocks) << "failure " << first;
            check();
            if (injected != 0) continue;
            EXPECT_TRUE(isDone);
            EXPECT_GT(first, 3U);
            break;
        }
    }
}

TEST(FailingMemoryInFrontFiles, NothingIsLeftOfADocumentThatCannotBeOpened) {
    const std::string wide = Wide("<?xml version=\"1.0\"?>\n" + kNarrow + "<!-- \xC3\xA4 -->\n");
    const std::string table = Wide("<Table name=\"T\">" + kEntries + "<!-- \xC3\xA4 --></Table>\n");
    FailEachAllocation("narrow", [] { return Profile::parse(kNarrow).has_value(); });
    FailEachAllocation("wide", [&] { return Profile::parse(wide).has_value(); });
    FailEachAllocation("table", [&] { return Table::parse(table, "T").has_value(); });
    FailEachAllocation("new table", [] { return static_cast<bool>(Table::create("T")); });
    FailEachAllocation("UTF-8", [] { return Profile::import(kNarrow, mox::Encoding::Utf8).has_value(); });
}

TEST(FailingMemoryInFrontFiles, ARefusalNeedsNoMoreThanItGets) {
    FailEachAllocation("syntax", [] {
        Problem problem;
        const bool isOpen = Profile::parse("<Settings><Table name='S'/></Settings>", &problem).has_value();
        return !isOpen && problem.reason == Reason::Syntax;
    });
    FailEachAllocation("kind", [] {
        Problem problem;
        const bool isOpen =
            Profile::parse("<Table name=\"some table with a long name\"/>\n", &problem).has_value();
        return !isOpen && problem.reason == Reason::WrongKind;
    });
}

TEST(FailingMemoryInFrontFiles, TheFileIsTheOldOrTheNewOne) {
    const host::ScratchFile file;
    const std::string oldBytes = Wide("<Table name=\"T\"/>\n");
    Table table = Table::parse(Wide("<Table name=\"T\">" + kEntries + "</Table>\n"), "T").value();
    const std::string newBytes = table.toBytes().value();
    ASSERT_NE(newBytes, oldBytes);
    mox::SaveOptions options;
    options.overwrite = true;
    const std::u16string path = file.Path().u16string();
    FailEachAllocation(
        "save", [&] { return table.saveReplacing(path, options); },
        [&] { host::WriteBytes(file.Path(), oldBytes); },
        [&] {
            const std::string bytes = file.Bytes();
            EXPECT_TRUE(bytes == oldBytes || bytes == newBytes);
        });
    EXPECT_EQ(file.Bytes(), newBytes);
    FailEachAllocation("open and save", [&] {
        std::optional<Table> opened = Table::open(path);
        return opened.has_value() && opened->toBytes().has_value();
    });
}

}  // namespace
}  // namespace faults
