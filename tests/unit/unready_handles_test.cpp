// Table functions on handles that are not ready: no document that a host can open gives one.
#include <gtest/gtest.h>
#include <memory>

#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/table/table_handle.h"
#include "tests/unit/entry_support.h"
#include "tests/unit/scratch_file.h"

namespace mox::test {
namespace {

struct Unready {
    const char* name;
    bool documentReady;
    bool tableReady;
    bool hasTable;
};

constexpr Unready kUnready[] = {{"Neither", false, false, true},
                                {"DocumentAlone", true, false, true},
                                {"TableAlone", false, true, true},
                                {"ReadyWithoutTable", true, true, false}};

// A handle over a table with the entry "a", taken back to a state that is not ready.
class UnreadyHandle : public testing::TestWithParam<Unready> {
  protected:
    UnreadyHandle() : handle_(std::make_unique<TableHandle>()) {
        constexpr std::string_view text =
            "<Table name=\"T\"><Var name=\"a\" type=\"long\"><Value>1</Value></Var></Table>";
        EXPECT_TRUE(handle_->document.LoadBuffer(text.data(), text.size()));
        TableHeader header;
        EXPECT_TRUE(handle_->Open(header, true));
        handle_->cursor.documentReady = GetParam().documentReady;
        handle_->cursor.tableReady = GetParam().tableReady;
        if (!GetParam().hasTable) handle_->cursor.table = nullptr;
        value_.name[0] = 'a';
        value_.id = 5;
        ui_.name[0] = 'a';
        ui_.control = 1;
    }
    ~UnreadyHandle() override {
        EXPECT_EQ(Written(handle_->document.root),
                  "<Table name=\"T\">\\n\\t<Var name=\"a\" type=\"long\">\\n"
                  "\\t\\t<Value>1</Value>\\n\\t</Var>\\n</Table>\\n");
    }

    std::unique_ptr<TableHandle> handle_;
    TableEntryValueInfoStruct value_;
    TableEntryUInfoStruct ui_;
    std::uint64_t position_ = 0;
};

TEST_P(UnreadyHandle, GetIsFalseAndKeepsThePosition) {
    EXPECT_FALSE(xmlTableEntryGet(handle_.get(), &position_, &value_, &ui_));
    EXPECT_EQ(position_, 0U);
}

TEST_P(UnreadyHandle, GetByNameIsFalseAndKeepsTheKey) {
    EXPECT_FALSE(xmlTableEntryGet(handle_.get(), nullptr, &value_, &ui_));
    position_ = ~std::uint64_t{0};
    EXPECT_FALSE(xmlTableEntryGet(handle_.get(), &position_, &value_, nullptr));
    EXPECT_EQ(position_, ~std::uint64_t{0});
    EXPECT_EQ(value_.id, 5U);
    EXPECT_EQ(value_.name[0], 'a');
}

TEST_P(UnreadyHandle, NothingExists) {
    EXPECT_FALSE(xmlTableEntryIsExist(handle_.get(), &value_));
}

TEST_P(UnreadyHandle, SetIsFalseAndKeepsThePosition) {
    EXPECT_FALSE(xmlTableEntrySet(handle_.get(), nullptr, &value_, &ui_, 1, 1));
    EXPECT_FALSE(xmlTableEntrySet(handle_.get(), &position_, &value_, &ui_, 1, 1));
    EXPECT_EQ(position_, 0U);
}

TEST_P(UnreadyHandle, SetCorrectsAnUnknownOwnerAllTheSame) {
    ui_.prov_owner = 3;
    EXPECT_FALSE(xmlTableEntrySet(handle_.get(), nullptr, &value_, &ui_, 0, 0));
    EXPECT_EQ(ui_.prov_owner, 0);
}

TEST_P(UnreadyHandle, AddIsFalse) {
    for (const std::int32_t update : {0, 1}) {
        EXPECT_FALSE(xmlTableEntryAdd(handle_.get(), nullptr, &value_, nullptr, 1, update));
        EXPECT_FALSE(xmlTableEntryAdd(handle_.get(), &position_, &value_, &ui_, 1, update));
    }
}

TEST_P(UnreadyHandle, RemovalsAreFalse) {
    EXPECT_FALSE(xmlTableRemoveEntry(handle_.get(), &value_, -1, 1));
    EXPECT_FALSE(xmlTableRemoveEntry(handle_.get(), &value_, 0, 0));
    EXPECT_FALSE(xmlTableRemoveEntries(handle_.get()));
}

TEST_P(UnreadyHandle, SaveIsFalseUnlessOnlyTheTableIsMissing) {
    const ScratchFile file;
    EXPECT_EQ(xmlTableSave(handle_.get(), file.Name(), 0, 0), !GetParam().hasTable);
}

INSTANTIATE_TEST_SUITE_P(, UnreadyHandle, testing::ValuesIn(kUnready),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(UnreadyHandles, OneWhoseDocumentIsNotEmptyMakesNoNewTable) {
    TableHandle handle;
    ASSERT_TRUE(handle.document.LoadBuffer("<a/>", 4));
    handle.CreateNew(TableHeader{"T"_w}, true);
    EXPECT_EQ(Written(handle.document.root), "<a/>\\n");
    const TableEntryBaseInfoStruct any;
    EXPECT_FALSE(xmlTableEntryIsExist(&handle, &any));
    EXPECT_FALSE(xmlTableRemoveEntries(&handle));
}

TEST(UnreadyHandles, CanBeDisposed) {
    auto handle = std::make_unique<TableHandle>();
    handle->cursor.documentReady = false;
    handle->cursor.tableReady = false;
    void* slot = handle.release();
    xmlTableDispose(&slot);
    EXPECT_EQ(slot, nullptr);
}

}  // namespace
}  // namespace mox::test
