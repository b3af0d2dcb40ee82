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

TEST(HostRecords, MaskKeepsTheFourBitsOfHosts) {
    TableEntryValueInfoStruct record;
    record.writeMask = 0xFFFF;
    EXPECT_EQ(FieldsOf(record).writeMask, 0x000F);
    record.writeMask = 0x0010;
    EXPECT_EQ(FieldsOf(record).writeMask, 0);
}

TEST(HostRecords, OwnerIsTakenAsItIs) {
    TableEntryUInfoStruct record;
    record.prov_owner = 3;
    EXPECT_EQ(FieldsOf(record).prov_owner, 3);
    EXPECT_EQ(record.prov_owner, 3);
}

TEST(HostRecords, LongNameIsCutTo259Units) {
    const WideString name(300, 'n');
    EntryValueRecord entry;
    entry.name = name;
    TableEntryValueInfoStruct record;
    TextBuffers buffers;
    record.name[259] = 'x';
    ASSERT_TRUE(FillValueRecord(entry, EntryUiRecord(), true, buffers, record));
    EXPECT_EQ(WideView(record.name), WideView(name).substr(0, 259));
}

TEST(HostRecords, ValueWithoutNarrowFormIsRefusedUnlessItIsWideText) {
    const WideString unpaired(1, static_cast<wchar16>(0xD800));
    EntryValueRecord entry;
    entry.Value = unpaired;
    entry.name = "n"_w;
    entry.type = 3;
    entry.id = 7;
    TableEntryValueInfoStruct record;
    TextBuffers buffers;
    EXPECT_FALSE(FillValueRecord(entry, EntryUiRecord(), true, buffers, record));
    EXPECT_EQ(record.id, 7U);
    EXPECT_EQ(record.type, 3);
    EXPECT_EQ(record.name[0], 0);
    entry.type = 31;
    EXPECT_TRUE(FillValueRecord(entry, EntryUiRecord(), true, buffers, record));
    EXPECT_EQ(WideView(record.GetVal_w()), unpaired);
}

}  // namespace
}  // namespace mox::test
