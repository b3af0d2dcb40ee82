#include "mox_xmlApi/profile/profile_save.h"

#include "mox_xmlApi/entries/entry_reader.h"
#include "mox_xmlApi/profile/sections.h"
#include "mox_xmlApi/table/table_entries.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

// A section marked "true" loses the mark on its entries too; with any other text of "eud" they keep theirs.
void StripMarks(XmlDocument& document, XmlNode* section) noexcept {
    WideView mark;
    if (!XmlDocument::GetAttribute(section, names::kEud, mark)) return;
    XmlNode* entry = nullptr;
    while (mark == names::kTrue && XmlDocument::NextChildElement(section, entry) != nullptr) {
        document.RemoveAttribute(entry, names::kEud);
    }
    document.RemoveAttribute(section, names::kEud);
}

// Copies the entries of a section up to the first that cannot be read.
void ExportEntries(const TableCursor& from, const TableCursor& to, std::uint32_t mode) {
    XmlNode* entry = nullptr;
    while (XmlDocument::NextChildElement(from.table, entry) != nullptr) {
        EntryValueRecord value;
        EntryUiRecord ui;
        if (!ReadEntry(from, *entry, &value, &ui)) return;
        if (value.Value.empty()) value.Value = ui.Value;
        AddEntry(to, nullptr, value.name, mode == kExportValues ? &value : nullptr,
                 mode == kExportPresentation ? &ui : nullptr, false, false);
    }
}

void ExportSection(const moxSettings& source, XmlNode* section, moxSettings& target, std::uint32_t mode) {
    TableHeader header;
    const TableHandle from(source.document.Pool(), section, header);
    bool eud = false;
    XmlNode* copy = ObtainSection(target, header, eud);
    TableHeader copyHeader;
    const TableHandle to(target.document.Pool(), copy, copyHeader);
    ExportEntries(from.cursor, to.cursor, mode);
}

}  // namespace

bool WriteToFile(moxSettings& settings, const wchar16* path, bool refuse, bool wide) {
    XmlNode* section = nullptr;
    while (XmlDocument::NextChildElement(settings.root, section) != nullptr)
        StripMarks(settings.document, section);
    return settings.document.Save(path, refuse, wide);
}

bool WriteExport(const moxSettings& settings, const wchar16* path, std::uint32_t mode, bool refuse,
                 bool wide) {
    const OwnedSettings target(new moxSettings);
    target->CreateNew();
    XmlNode* section = nullptr;
    while (XmlDocument::NextChildElement(settings.root, section) != nullptr) {
        ExportSection(settings, section, *target, mode);
    }
    return WriteToFile(*target, path, refuse, wide);
}

}  // namespace mox
