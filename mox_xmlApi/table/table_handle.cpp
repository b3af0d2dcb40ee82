#include "mox_xmlApi/table/table_handle.h"

#include <utility>

namespace mox {

TableHandle::TableHandle() {
    cursor.document = &document;
    cursor.openExisting = true;
}

TableHandle::TableHandle(XmlPool& shared, XmlNode* element)
    : document(shared, element), cursor{true, true, &document, element, false} {}

bool TableHandle::Open(TableHeader& header, bool withSchema) {
    const bool opened = OpenTable(cursor, header, withSchema);
    cursor.documentReady = opened;
    cursor.tableReady = opened;
    return opened;
}

void TableHandle::CreateNew(const TableHeader& header, bool asDocument) {
    if (asDocument && !document.AddDeclaration()) return;
    TableHeader wanted = header;
    Open(wanted, asDocument);
}

std::unique_ptr<TableHandle> SpareHandle::Take(std::shared_ptr<SpareHandle>& spare, XmlPool& pool,
                                               XmlNode* element) {
    if (spare == nullptr) spare = std::make_shared<SpareHandle>();
    std::unique_ptr<TableHandle> handle = std::move(spare->handle);
    if (handle != nullptr) {
        handle->document.Attach(element);
        handle->cursor.table = element;
    } else {
        handle = std::make_unique<TableHandle>(pool, element);
        handle->profile = spare;
    }
    return handle;
}

void SpareHandle::Release(std::unique_ptr<TableHandle> handle) noexcept {
    const std::shared_ptr<SpareHandle> spare = handle == nullptr ? nullptr : handle->profile.lock();
    if (spare == nullptr || spare->handle != nullptr) return;
    handle->buffers.ReleaseLarge();  // an exception may have left a long text there
    spare->handle = std::move(handle);
}

}  // namespace mox
