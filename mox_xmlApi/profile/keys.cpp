#include "mox_xmlApi/profile/keys.h"

#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/entries/entry_writer.h"
#include "mox_xmlApi/entries/table_entries.h"
#include "mox_xmlApi/profile/sections.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {

bool ReadKeyValue(moxSettings& settings, WideView section, WideView key, WideView& value) noexcept {
    XmlNode* element = FindSection(settings, section);
    return element != nullptr && ReadEntryByName(SectionCursor(settings, element), key, value);
}

bool WriteKeyValue(moxSettings& settings, WideView section, WideView key, WideView value) {
    XmlNode* element = FindSection(settings, section);
    bool eud = false;
    // Without a root element there is still none, and AddEntry fails.
    if (element == nullptr) element = ObtainSection(settings, TableHeader{section}, eud);

    EntryValueRecord record;
    record.name = key;
    record.Value = value;
    record.type = kTypeString;
    const TableCursor cursor = SectionCursor(settings, element);
    XmlNode* entry = FindEntry(cursor, key);
    if (entry == nullptr) return AddEntry(cursor, &record, nullptr);
    record.writeMask = kWriteValue;
    const bool isWritten = WriteEntry(cursor, entry, &record, nullptr, false);
    settings.document.RemoveAttribute(entry, names::kEud);  // a key write protects nothing
    return isWritten;
}

bool RemoveKey(moxSettings& settings, WideView section, WideView key) noexcept {
    XmlNode* element = FindSection(settings, section);
    return element != nullptr && RemoveEntry(SectionCursor(settings, element), key, -1, true);
}

bool RemoveSection(moxSettings& settings, WideView section) noexcept {
    return DeleteSection(settings, FindSection(settings, section)) == 1;
}

}  // namespace mox
