#include "mox_xmlApi/profile/keys.h"

#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/entries/entry_reader.h"
#include "mox_xmlApi/entries/entry_writer.h"
#include "mox_xmlApi/profile/sections.h"
#include "mox_xmlApi/table/entry_removal.h"
#include "mox_xmlApi/table/table_entries.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

// The handle that keys need for the time of one call. It costs no memory.
struct BoundSection {
    BoundSection(const moxSettings& settings, XmlNode* element)
        : handle(settings.document.Pool(), element, header) {}

    TableHeader header;
    TableHandle handle;
};

bool UpdateKey(const BoundSection& section, XmlNode* entry, EntryValueRecord& record) {
    record.writeMask = kWriteValue;
    const bool written = WriteEntry(section.handle.cursor, entry, &record, nullptr, false);
    section.handle.cursor.document->RemoveAttribute(entry, names::kEud);
    return written;
}

}  // namespace

bool ReadKeyValue(const moxSettings& settings, WideView section, WideView key, WideView& value) noexcept {
    bool editable = false;
    XmlNode* element = FindSection(settings, section, editable);
    if (element == nullptr) return false;
    const BoundSection bound(settings, element);
    const XmlNode* entry = FindEntry(bound.handle.cursor, key);
    EntryValueRecord record;
    EntryUiRecord ui;
    if (entry == nullptr || !ReadEntry(bound.handle.cursor, *entry, &record, &ui)) return false;
    value = record.Value.empty() ? ui.Value : record.Value;
    return true;
}

bool WriteKeyValue(moxSettings& settings, WideView section, WideView key, WideView value) {
    EntryValueRecord record;
    record.name = key;
    record.Value = value;
    record.type = kTypeString;

    bool flag = false;
    XmlNode* element = FindSection(settings, section, flag);
    if (element == nullptr) element = ObtainSection(settings, TableHeader{section}, flag);
    if (element == nullptr) return false;
    const BoundSection bound(settings, element);
    if (!bound.handle.cursor.IsReady()) return false;
    if (XmlNode* entry = FindEntry(bound.handle.cursor, key); entry != nullptr)
        return UpdateKey(bound, entry, record);
    return AddEntry(bound.handle.cursor, nullptr, key, &record, nullptr, false, false);
}

bool RemoveKey(moxSettings& settings, WideView section, WideView key) noexcept {
    bool editable = false;
    XmlNode* element = FindSection(settings, section, editable);
    if (element == nullptr) return false;
    const BoundSection bound(settings, element);
    return RemoveEntry(bound.handle.cursor, key, -1, true);
}

bool RemoveSection(moxSettings& settings, WideView section) noexcept {
    bool editable = false;
    return DeleteSection(settings, FindSection(settings, section, editable)) == 1;
}

}  // namespace mox
