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

bool UpdateKey(const TableCursor& section, XmlNode* entry, EntryValueRecord& record) {
    record.writeMask = kWriteValue;
    const bool written = WriteEntry(section, entry, &record, nullptr, false);
    section.document->RemoveAttribute(entry, names::kEud);
    return written;
}

}  // namespace

bool ReadKeyValue(const moxSettings& settings, WideView section, WideView key, WideView& value) noexcept {
    XmlNode* entry = nullptr;
    return settings.document.FindChildByNameAttribute(FindSection(settings, section), key, entry) &&
           ReadEntryText(*entry, value);
}

bool WriteKeyValue(moxSettings& settings, WideView section, WideView key, WideView value) {
    EntryValueRecord record;
    record.name = key;
    record.Value = value;
    record.type = kTypeString;

    XmlNode* element = FindSection(settings, section);
    bool eud = false;
    if (element == nullptr) element = ObtainSection(settings, TableHeader{section}, eud);
    if (element == nullptr) return false;
    const TableHandle handle(settings.document.Pool(), element);
    if (XmlNode* entry = FindEntry(handle.cursor, key); entry != nullptr)
        return UpdateKey(handle.cursor, entry, record);
    return AddEntry(handle.cursor, nullptr, key, &record, nullptr, false, false);
}

bool RemoveKey(moxSettings& settings, WideView section, WideView key) noexcept {
    XmlNode* element = FindSection(settings, section);
    if (element == nullptr) return false;
    const TableHandle handle(settings.document.Pool(), element);
    return RemoveEntry(handle.cursor, key, -1, true);
}

bool RemoveSection(moxSettings& settings, WideView section) noexcept {
    return DeleteSection(settings, FindSection(settings, section)) == 1;
}

}  // namespace mox
