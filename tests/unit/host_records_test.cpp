// Records that no file and no host of this library's headers brings about. The others are in tests/host/table_*_test.cpp.
#include "mox_xmlApi/table/host_records.h"

#include <gtest/gtest.h>

#include "tests/unit/entry_support.h"

namespace mox::test {
namespace {

TEST(HostRecords, OnlyTheOwnersThatFilesHoldAreGiven) {
    for (unsigned owner = 0; owner <= 0xFF; ++owner) {
        EntryUiRecord ui;
        ui.prov_owner = static_cast<std::uint8_t>(owner);
        TableEntryUInfoStruct record;
        TextBuffers buffers;
        ASSERT_TRUE(FillUiRecord(EntryValueRecord(), ui, buffers, record));
        const bool isKnown = owner == 1 || owner == 2 || owner == 4;
        EXPECT_EQ(record.prov_owner, isKnown ? owner : 0) << owner;
    }
}

TEST(HostRecords, NameEndsAtItsFirstZeroOrAtTheEndOfTheField) {
    TableEntryBaseInfoStruct record;
    EXPECT_EQ(NameOf(record), WideView());
    record.name[0] = 'a';
    record.name[2] = 'b';
    EXPECT_EQ(NameOf(record), "a"_w);
    for (wchar16& unit : record.name)
        unit = 'n';
    EXPECT_EQ(NameOf(record).size(), 260U);
}

}  // namespace
}  // namespace mox::test
