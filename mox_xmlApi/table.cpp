// The table family of exports: promised outputs first, then the handle, then one call below.
#include <memory>

#include "mox_xmlApi/entries/table_entries.h"
#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/table/host_entries.h"
#include "mox_xmlApi/table/host_records.h"
#include "mox_xmlApi/table/table_handle.h"

using mox::TableHandle;
using mox::TableHeader;
using mox::ViewOf;
using mox::operator""_w;

namespace {

const mox::TableCursor& CursorOf(void* handle) noexcept {
    return static_cast<TableHandle*>(handle)->cursor;
}

}  // namespace

void* xmlTableNew(const wchar16* filePath, const char* buffer, int32_t bufferSize, const wchar16* tableName,
                  int32_t editable, uint32_t firstId, uint16_t type, int32_t newDocument) {
    auto table = std::make_unique<TableHandle>();
    if (filePath == nullptr && (buffer == nullptr || bufferSize == 0)) {
        const TableHeader header{tableName == nullptr ? "_MXTable_"_w : ViewOf(tableName), firstId, type,
                                 editable == 1};
        table->CreateNew(header, newDocument == 1);
        return table.release();
    }
    const bool loaded = table->document.Load(filePath, true, buffer, bufferSize);
    TableHeader header{ViewOf(tableName)};
    return loaded && table->Open(header, true) ? table.release() : nullptr;
}

bool xmlTableSave(void* handle, const wchar16* filePath, int32_t reserved, int32_t refuse) {
    if (handle == nullptr || reserved != 0 || !CursorOf(handle).IsReady()) return false;
    return static_cast<TableHandle*>(handle)->document.Save(filePath, refuse == 1, true);
}

void xmlTableDispose(void** handleAddress) {
    mox::SpareHandle::Release(std::unique_ptr<TableHandle>(static_cast<TableHandle*>(*handleAddress)));
    *handleAddress = nullptr;
}

bool xmlTableEntryGet(void* handle, uint64_t* position, TableEntryValueInfoStruct* valueRecord,
                      TableEntryUInfoStruct* uiRecord) {
    return handle != nullptr &&
           mox::GetHostEntry(CursorOf(handle), static_cast<TableHandle*>(handle)->buffers, position,
                             valueRecord, uiRecord);
}

bool xmlTableEntryIsExist(void* handle, const TableEntryBaseInfoStruct* record) {
    if (handle == nullptr || record == nullptr || !CursorOf(handle).IsReady()) return false;
    return mox::FindEntry(CursorOf(handle), mox::NameOf(*record)) != nullptr;
}

bool xmlTableEntrySet(void* handle, uint64_t* position, TableEntryValueInfoStruct* valueRecord,
                      TableEntryUInfoStruct* uiRecord, int32_t force, int32_t mark) {
    return handle != nullptr &&
           mox::SetHostEntry(CursorOf(handle), position, valueRecord, uiRecord, force == 1, mark == 1);
}

bool xmlTableEntryAdd(void* handle, uint64_t* position, TableEntryValueInfoStruct* valueRecord,
                      TableEntryUInfoStruct* uiRecord, int32_t mark, int32_t update) {
    return handle != nullptr &&
           mox::AddHostEntry(CursorOf(handle), position, valueRecord, uiRecord, mark == 1, update == 1);
}

bool xmlTableRemoveEntry(void* handle, const TableEntryBaseInfoStruct* record, int32_t occurrence,
                         int32_t removeAll) {
    if (handle == nullptr || record == nullptr) return false;
    return mox::RemoveEntry(CursorOf(handle), mox::NameOf(*record), occurrence, removeAll != 0);
}

bool xmlTableRemoveEntries(void* handle) {
    return handle != nullptr && mox::RemoveEntries(CursorOf(handle));
}
