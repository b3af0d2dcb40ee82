// The content of a document as plain values, read from the parser's tree with the library's own functions.
#ifndef MOX_XMLAPI_TOOLS_DOCUMENT_MODEL_H
#define MOX_XMLAPI_TOOLS_DOCUMENT_MODEL_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mox_xmlApi/xml/xml_document.h"
#include "tools/source_file.h"

namespace mox::tool {

// The presentation data of an entry. A text that is missing in the file is empty.
struct UiModel {
    std::string control{};
    std::string access{};
    std::string flags{};     // hexadecimal; empty for 0
    std::string provider{};  // "app", "dwg", "erg" or empty
    std::uint32_t providerIndex = 0;
    std::string regen{};
    std::string minimum{};
    std::string maximum{};
    std::string shownName{};
    std::string comment{};
    std::string value{};
};

// A child element of a table. If its type is missing or unknown, hosts cannot read it: `isReadable` is false, `type` is
// the text in the file, and the fields after `type` are not set except `hasEud`.
struct EntryModel {
    const XmlNode* node = nullptr;
    bool isReadable = false;
    bool hasName = false;
    std::string name{};
    std::string type{};   // "long"
    std::string shape{};  // "array", "vector" or empty
    std::uint32_t id = 0;
    bool hasEud = false;  // the attribute "eud" is "true"
    std::string value{};
    std::optional<UiModel> ui{};
};

// A section, or the table of a table document. `isTable` is false for an element of another name in the place of a
// section.
struct TableModel {
    const XmlNode* node = nullptr;
    bool isTable = false;
    bool hasName = false;
    std::string name{};
    std::uint32_t firstId = 0;
    std::string type{};  // four hexadecimal digits
    bool isEditable = false;
    bool hasEud = false;  // the attribute "eud" is "true"
    std::vector<EntryModel> entries{};
};

// Other: at the top level there is neither a "Settings" with a schema attribute nor a "Table".
enum class DocumentKind { Settings, Table, Other };

struct DocumentModel {
    DocumentKind kind = DocumentKind::Other;
    const XmlNode* root = nullptr;     // the "Settings" or "Table" element; null for Other
    std::vector<TableModel> tables{};  // of Settings, all child elements of the root; of Table, the table
};

// Whether the library accepts the node as the root of a settings document: a "Settings" element with a schema attribute.
bool IsSettingsRoot(const XmlNode& node) noexcept;

// The text of the attribute; nothing if the node does not have it.
std::optional<std::string> AttributeOf(const XmlNode& node, WideView name);

// Reads the document of a file that parses. The result points into the file, which must outlive it.
DocumentModel ReadDocument(const SourceFile& file);

// The first section, or the table, with that name; null if there is none. It belongs to the document.
const TableModel* FindTable(const DocumentModel& document, const std::string& name) noexcept;

// "settings document", "table document" or "document without settings or a table"
std::string KindName(DocumentKind kind);

// The type of an entry with its shape: "string", "long array", "unknown type complex" or "no type".
std::string TypeText(const EntryModel& entry);

// The value that hosts read: that of the entry or, if it is empty, that of its presentation data.
const std::string& EffectiveValue(const EntryModel& entry) noexcept;

}  // namespace mox::tool

#endif
