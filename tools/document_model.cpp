#include "tools/document_model.h"

#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/entries/entry_reader.h"
#include "mox_xmlApi/entries/table_cursor.h"
#include "mox_xmlApi/platform/numbers.h"
#include "mox_xmlApi/xml/xml_names.h"
#include "tools/text_format.h"

namespace mox::tool {
namespace {

bool IsElement(const XmlNode& node) noexcept {
    return node.kind == XmlNodeKind::Element;
}

UiModel ReadUi(const EntryUiRecord& record) {
    UiModel ui;
    ui.control = Utf8(ControlKindToName(record.control));
    if (record.access != 0) ui.access = Utf8(AccessToName(record.access));
    if (record.flags != 0) ui.flags = Hex(record.flags, 4);
    ui.provider = Utf8(OwnerToName(record.prov_owner));
    ui.providerIndex = record.prov_index;
    ui.regen = Utf8(record.regen);
    ui.minimum = Utf8(record.minVal);
    ui.maximum = Utf8(record.maxVal);
    ui.shownName = Utf8(record.name);
    ui.comment = Utf8(record.Comment);
    ui.value = Utf8(record.Value);
    return ui;
}

EntryModel ReadEntryModel(const TableCursor& cursor, const XmlNode& node) {
    EntryModel entry;
    entry.node = &node;
    entry.hasName = XmlDocument::FindAttribute(&node, names::kName) != nullptr;
    entry.name = AttributeOf(node, names::kName).value_or("");
    entry.hasEud = AttributeOf(node, names::kEud) == "true";
    EntryValueRecord value;
    EntryUiRecord ui;
    entry.isReadable = ReadEntry(cursor, node, &value, &ui);
    if (!entry.isReadable) {
        entry.type = AttributeOf(node, names::kType).value_or("");
        return entry;
    }
    WideView type;
    WideView shape;
    ValueTypeToName(value.type, type, shape);
    entry.type = Utf8(type);
    entry.shape = Utf8(shape);
    entry.id = value.id;
    entry.value = Utf8(value.Value);
    std::uint64_t position = 0;
    if (XmlDocument::FindChildElement(&node, names::kUi, position) != nullptr) entry.ui = ReadUi(ui);
    return entry;
}

TableModel ReadTableModel(const SourceFile& file, XmlNode& node) {
    TableModel table;
    table.node = &node;
    table.isTable = node.name.View() == names::kTable;
    table.hasName = XmlDocument::FindAttribute(&node, names::kName) != nullptr;
    table.hasEud = AttributeOf(node, names::kEud) == "true";
    XmlDocument document(file.Document().Pool(), &node);
    TableCursor cursor{true, true, &document, nullptr, false};
    TableHeader header;
    OpenTable(cursor, header, false);
    table.name = Utf8(header.name);
    table.firstId = header.first_id;
    table.type = Hex(header.type, 4);
    table.isEditable = header.editable;
    for (const XmlNode* child : node.children) {
        if (IsElement(*child)) table.entries.push_back(ReadEntryModel(cursor, *child));
    }
    return table;
}

}  // namespace

bool IsSettingsRoot(const XmlNode& node) noexcept {
    return IsElement(node) && node.name.View() == names::kSettings &&
           (XmlDocument::FindAttribute(&node, names::kSchemaLocation) != nullptr ||
            XmlDocument::FindAttribute(&node, names::kSchemaLocationXsi) != nullptr);
}

std::optional<std::string> AttributeOf(const XmlNode& node, WideView name) {
    WideView text;
    if (!XmlDocument::GetAttribute(&node, name, text)) return std::nullopt;
    return Utf8(text);
}

DocumentModel ReadDocument(const SourceFile& file) {
    DocumentModel document;
    for (XmlNode* node : file.Tree().children) {
        if (!IsSettingsRoot(*node)) continue;
        document.kind = DocumentKind::Settings;
        document.root = node;
        for (XmlNode* section : node->children) {
            if (IsElement(*section)) document.tables.push_back(ReadTableModel(file, *section));
        }
        return document;
    }
    XmlNode* const table = XmlDocument::FindChildElement(&file.Tree(), names::kTable);
    if (table != nullptr) {
        document.kind = DocumentKind::Table;
        document.root = table;
        document.tables.push_back(ReadTableModel(file, *table));
    }
    return document;
}

const TableModel* FindTable(const DocumentModel& document, const std::string& name) noexcept {
    for (const TableModel& table : document.tables) {
        if (table.isTable && table.hasName && table.name == name) return &table;
    }
    return nullptr;
}

std::string KindName(DocumentKind kind) {
    if (kind == DocumentKind::Settings) return "settings document";
    return kind == DocumentKind::Table ? "table document" : "document without settings or a table";
}

std::string TypeText(const EntryModel& entry) {
    if (!entry.isReadable) return entry.type.empty() ? "no type" : "unknown type " + entry.type;
    return entry.shape.empty() ? entry.type : entry.type + " " + entry.shape;
}

const std::string& EffectiveValue(const EntryModel& entry) noexcept {
    return entry.value.empty() && entry.ui.has_value() ? entry.ui->value : entry.value;
}

}  // namespace mox::tool
