#include "mox_xmlApi/profile/profile_save.h"

#include "mox_xmlApi/entries/entry_reader.h"
#include "mox_xmlApi/entries/table_entries.h"
#include "mox_xmlApi/profile/sections.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

// A section whose "eud" is "true" loses it together with its entries; with any other text the entries keep theirs.
void RemoveEud(XmlDocument& document, XmlNode* section) noexcept {
    WideView eud;
    if (!XmlDocument::GetAttribute(section, names::kEud, eud)) return;
    XmlNode* entry = nullptr;
    while (eud == names::kTrue && XmlDocument::NextChildElement(section, entry) != nullptr) {
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
        AddEntry(to, mode == kExportValues ? &value : nullptr, mode == kExportPresentation ? &ui : nullptr);
    }
}

void ExportSection(moxSettings& source, XmlNode* section, moxSettings& target, std::uint32_t mode) {
    bool eud = false;
    XmlNode* copy = ObtainSection(target, ReadTableHeader(*section), eud);
    ExportEntries(SectionCursor(source, section), SectionCursor(target, copy), mode);
}

}  // namespace

bool WriteToFile(moxSettings& settings, const wchar16* path, bool refuse, bool wide) {
    XmlNode* section = nullptr;
    while (XmlDocument::NextChildElement(settings.root, section) != nullptr)
        RemoveEud(settings.document, section);
    return settings.document.Save(path, refuse, wide);
}

bool WriteExport(moxSettings& settings, const wchar16* path, std::uint32_t mode, bool refuse, bool wide) {
    const OwnedSettings target(new moxSettings);
    target->CreateNew();
    XmlNode* section = nullptr;
    while (XmlDocument::NextChildElement(settings.root, section) != nullptr) {
        ExportSection(settings, section, *target, mode);
    }
    return WriteToFile(*target, path, refuse, wide);
}

}  // namespace mox
