// The value of a record when memory runs out while its other form is made.
#include <gtest/gtest.h>
#include <new>
#include <string>

#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "tests/faults/failing_memory_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

using host::operator""_w;

TEST(FailingMemoryOfRecords, WideFormOfANarrowValueIsMadeOrTheValueStays) {
    TableEntryValueInfoStruct record;
    ASSERT_TRUE(record.SetVal("a value that needs memory of its own"));
    bool hasFailed = false;
    {
        const FailingMemory failing(1, Failing::FromThenOn);
        try {
            record.GetVal_w();
        } catch (const std::bad_alloc&) {
            hasFailed = true;
        }
    }
    EXPECT_TRUE(hasFailed);
    EXPECT_STREQ(record.GetVal(), "a value that needs memory of its own");
    EXPECT_EQ(host::WideText(record.GetVal_w()), "a value that needs memory of its own"_w);
}

TEST(FailingMemoryOfRecords, NarrowFormOfAWideValueIsMadeOrTheValueStays) {
    TableEntryValueInfoStruct record;
    ASSERT_TRUE(record.SetVal_w("a value that needs memory of its own"_w));
    bool hasFailed = false;
    {
        const FailingMemory failing(1, Failing::FromThenOn);
        try {
            record.GetVal();
        } catch (const std::bad_alloc&) {
            hasFailed = true;
        }
    }
    EXPECT_TRUE(hasFailed);
    EXPECT_EQ(host::WideText(record.GetVal_w()), "a value that needs memory of its own"_w);
    EXPECT_STREQ(record.GetVal(), "a value that needs memory of its own");
}

TEST(FailingMemoryOfRecords, ValueThatCannotBeSetLeavesTheOldOneInBothForms) {
    TableEntryValueInfoStruct record;
    ASSERT_TRUE(record.SetVal("old"));
    for (const char* text :
         {"a value that needs memory of its own", "a value with \xC3\xA4 that needs memory"}) {
        const FailingMemory failing(1, Failing::FromThenOn);
        EXPECT_THROW(record.SetVal(text), std::bad_alloc);
    }
    EXPECT_STREQ(record.GetVal(), "old");
    EXPECT_EQ(host::WideText(record.GetVal_w()), "old"_w);
}

}  // namespace
}  // namespace faults
