#include "mox_xmlApi/entries/table_cursor.h"

#include "mox_xmlApi/entries/entry_records.h"
#include "mox_xmlApi/platform/numbers.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

void WriteHeader(XmlDocument& document, XmlNode& table, const TableHeader& header, bool withSchema) {
    FieldText number;
    if (withSchema) document.SetAttribute(table, names::kSchemaLocation, names::kTableSchema);
    document.SetAttribute(table, names::kName, header.name);
    if (header.first_id != 0) {
        number.Format("%u"_w, header.first_id);
        document.SetAttribute(table, names::kFirstId, number.View());
    }
    if (header.type != 0) {
        number.Format("%04X"_w, header.type);
        document.SetAttribute(table, names::kType, number.View());
    }
    if (header.editable) document.SetAttribute(table, names::kEditable, names::kTrue);
}

}  // namespace

TableHeader ReadTableHeader(const XmlNode& table) noexcept {
    TableHeader header;
    WideView text;
    if (XmlDocument::GetAttribute(&table, names::kName, text)) header.name = text;
    // Read as a signed number, as hosts have always seen it: one beyond the signed range is read as the largest.
    if (XmlDocument::GetAttribute(&table, names::kFirstId, text)) {
        header.first_id = static_cast<std::uint32_t>(ReadDecimal(text));
    }
    if (XmlDocument::GetAttribute(&table, names::kType, text)) {
        header.type = static_cast<std::uint16_t>(ReadUnsignedHex(text) & 0xFFFF);
    }
    if (XmlDocument::GetAttribute(&table, names::kEditable, text)) header.editable = text == names::kTrue;
    return header;
}

bool OpenTable(TableCursor& cursor, TableHeader& header, bool withSchema) {
    XmlNode* const root = cursor.document == nullptr ? nullptr : cursor.document->root;
    if (root == nullptr) return false;
    XmlNode* table = cursor.openExisting ? XmlDocument::FindChildElement(root, names::kTable) : root;
    if (table == nullptr) {
        table = &cursor.document->AppendElement(*root, names::kTable);
        WriteHeader(*cursor.document, *table, header, withSchema);
    } else {
        const TableHeader found = ReadTableHeader(*table);
        if (!header.name.empty() && header.name != found.name) return false;
        header = found;
    }
    cursor.table = table;
    return true;
}

}  // namespace mox
