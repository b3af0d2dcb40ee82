#include "mox_xmlApi/document/document_content.h"

#include <memory>

#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/entries/entry_reader.h"
#include "mox_xmlApi/entries/table_entries.h"
#include "mox_xmlApi/xml/settings_root.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox::front {
namespace {

bool IsElement(const XmlNode& node) noexcept {
    return node.kind == XmlNodeKind::Element;
}

WideView AttributeOf(const XmlNode& node, WideView name) noexcept {
    WideView text;
    XmlDocument::GetAttribute(&node, name, text);
    return text;
}

DocumentPresentation PresentationOf(const EntryUiRecord& record) {
    DocumentPresentation ui;
    ui.control = Utf8(ControlKindToName(record.control));
    if (record.access != 0) ui.access = Utf8(AccessToName(record.access));
    ui.flags = record.flags;
    ui.provider = Utf8(OwnerToName(record.prov_owner));
    ui.providerIndex = record.prov_index;
    ui.regen = Utf8(record.regen);
    ui.minimum = Utf8(record.minVal);
    ui.maximum = Utf8(record.maxVal);
    ui.shownName = Utf8(record.name);
    ui.comment = Utf8(record.Comment);
    ui.value = Utf8(record.Value);
    ui.isLocalised = record.loc;
    return ui;
}

WideString WithZeros(WideView text) {
    WideString copy;
    copy.reserve(text.size() + ParsedText::kZeros);
    copy.append(text).append(ParsedText::kZeros, wchar16{0});
    return copy;
}

}  // namespace

DocumentContent::DocumentContent(std::string_view bytes, const EncodingReport& report)
    : encoding(report),
      text(UnitsOfBytes(bytes.substr(0, report.textSize), report.form)),
      parsed(WithZeros(text)) {}

void DocumentContent::ReadTables() {
    XmlNode& tree = parsed.Tree();
    root = FindSettingsRoot(tree);
    if (root != nullptr) {
        kind = DocumentKind::Settings;
        for (XmlNode* section : root->children) {
            if (IsElement(*section)) tables.push_back(ReadTable(*section));
        }
        return;
    }
    root = XmlDocument::FindChildElement(&tree, names::kTable);
    if (root == nullptr) return;
    kind = DocumentKind::Table;
    tables.push_back(ReadTable(*root));
}

DocumentTable DocumentContent::ReadTable(XmlNode& node) const {
    DocumentTable table;
    table.node = HandleOf(&node);
    table.isTable = node.name.View() == names::kTable;
    table.hasName = XmlDocument::FindAttribute(&node, names::kName) != nullptr;
    table.hasEud = HasEud(&node);
    const TableHeader header = ReadTableHeader(node);
    table.name = Utf8(header.name);
    table.firstId = header.first_id;
    table.type = header.type;
    table.isEditable = header.editable;
    const TableCursor cursor{true, true, &parsed.Document(), &node, false};
    for (const XmlNode* child : node.children) {
        if (IsElement(*child)) table.entries.push_back(ReadEntryOf(cursor, *child));
    }
    return table;
}

DocumentEntry DocumentContent::ReadEntryOf(const TableCursor& cursor, const XmlNode& node) const {
    DocumentEntry entry;
    entry.node = HandleOf(&node);
    entry.hasName = XmlDocument::FindAttribute(&node, names::kName) != nullptr;
    entry.name = Utf8(AttributeOf(node, names::kName));
    entry.hasEud = HasEud(&node);
    EntryValueRecord value;
    EntryUiRecord ui;
    entry.isReadable = ReadEntry(cursor, node, &value, &ui);
    if (!entry.isReadable) {
        entry.type = Utf8(AttributeOf(node, names::kType));
        return entry;
    }
    WideView type;
    WideView shape;
    ValueTypeToName(value.type, type, shape);
    entry.type = Utf8(type);
    entry.shape = Utf8(shape);
    entry.id = value.id;
    entry.isLocalised = value.loc;
    entry.isValueLocalised = value.locval;
    entry.value = Utf8(value.Value);
    if (XmlDocument::FindChildElement(&node, names::kUi) != nullptr)
        entry.ui = std::make_shared<const DocumentPresentation>(PresentationOf(ui));
    return entry;
}

Position DocumentContent::PositionAt(std::size_t offset) const {
    if (!lines_.has_value()) lines_.emplace(text);
    return lines_->PositionAt(offset);
}

Position DocumentContent::PositionOf(const XmlNode& node) const {
    return PositionAt(parsed.OffsetOf(node.name.IsEmpty() ? node.value.View() : node.name.View()));
}

}  // namespace mox::front
