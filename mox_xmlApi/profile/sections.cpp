#include "mox_xmlApi/profile/sections.h"

#include "mox_xmlApi/entries/entry_records.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

bool HasAttributeTrue(const XmlNode& section, WideView name) noexcept {
    WideView text;
    return XmlDocument::GetAttribute(&section, name, text) && text == names::kTrue;
}

void WriteNumber(XmlDocument& document, XmlNode& section, WideView name, WideView format,
                 std::uint32_t number) {
    FieldText text;
    text.Format(format, number);
    document.SetAttribute(section, name, text.View());
}

void UpdateSection(moxSettings& settings, XmlNode& section, const TableHeader& header) {
    if (!SectionCursor(settings, &section).IsReady()) throw kSectionUpdateFailed;
    XmlDocument& document = settings.document;
    document.SetAttribute(section, names::kName, header.name);
    document.SetAttribute(section, names::kEditable, IsEditable(section) ? names::kTrue : names::kFalse);
    WriteNumber(document, section, names::kFirstId, "%u"_w, header.first_id);
    WriteNumber(document, section, names::kType, "%04X"_w, header.type);
}

// The section is first made in a document of its own, so that it is appended complete or not at all.
XmlNode* NewSection(moxSettings& settings, const TableHeader& header) {
    if (settings.root == nullptr) return nullptr;
    XmlDocument scratch(settings.document.Pool());
    TableCursor cursor{true, true, &scratch, nullptr, true};
    TableHeader wanted = header;
    OpenTable(cursor, wanted, false);
    settings.root->children.CheckRoom();
    XmlNode* section = scratch.DetachLastChild(scratch.root);
    settings.document.AppendNode(settings.root, section);
    return section;
}

}  // namespace

XmlNode* FindSection(const moxSettings& settings, WideView name) noexcept {
    return settings.document.FindTableElement(settings.root, name);
}

bool IsEditable(const XmlNode& section) noexcept {
    return HasAttributeTrue(section, names::kEditable);
}

XmlNode* NextSection(const moxSettings& settings, XmlNode* current) noexcept {
    return XmlDocument::NextChildElement(settings.root, current);
}

XmlNode* ObtainSection(moxSettings& settings, const TableHeader& header, bool& eud) {
    eud = false;
    XmlNode* section = FindSection(settings, header.name);
    if (section == nullptr) return NewSection(settings, header);
    UpdateSection(settings, *section, header);
    eud = HasAttributeTrue(*section, names::kEud);
    return section;
}

int DeleteSection(moxSettings& settings, XmlNode* section) noexcept {
    return settings.document.RemoveNode(settings.root, section);
}

}  // namespace mox
