// What a document means, as plain values: read from the parser's tree by the library's own reader of entries.
#ifndef MOX_XMLAPI_TOOLS_DOCUMENT_MODEL_H
#define MOX_XMLAPI_TOOLS_DOCUMENT_MODEL_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mox_xmlApi/xml/xml_document.h"
#include "tools/source_file.h"

namespace mox::tool {

// The presentation data of an entry. Texts that are missing are empty.
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

// One element child of a table. Without a known type it is no entry for any host; then `type` is as it is in the file.
struct EntryModel {
    const XmlNode* node = nullptr;
    bool isReadable = false;
    bool hasName = false;
    std::string name{};
    std::string type{};   // "long"
    std::string shape{};  // "array", "vector" or empty
    std::uint32_t id = 0;
    bool isMarked = false;
    std::string value{};
    std::optional<UiModel> ui{};
};

// A section, or the table of a table document. `isTable` is false for an element of another name under the root.
struct TableModel {
    const XmlNode* node = nullptr;
    bool isTable = false;
    bool hasName = false;
    std::string name{};
    std::uint32_t firstId = 0;
    std::string type{};  // four hexadecimal digits
    bool isEditable = false;
    bool isMarked = false;
    std::vector<EntryModel> entries{};
};

// Other: neither a marked "Settings" nor a "Table" at the top level.
enum class DocumentKind { Settings, Table, Other };

struct DocumentModel {
    DocumentKind kind = DocumentKind::Other;
    const XmlNode* root = nullptr;  // the "Settings" or "Table" element
    std::vector<TableModel> tables{};
};

// Whether it is a "Settings" element that the library takes for a root.
bool IsMarkedSettings(const XmlNode& node) noexcept;

// The attribute's text; nothing when there is none.
std::optional<std::string> AttributeOf(const XmlNode& node, WideView name);

// The file must have been parsed, and must live as long as the model.
DocumentModel ReadDocument(const SourceFile& file);

// The first table that is one and has the name; null without one.
const TableModel* FindTable(const DocumentModel& document, const std::string& name) noexcept;

// "settings document", "table document", "document without settings or table"
std::string KindName(DocumentKind kind);

// "string", "long array", "unknown type complex": the type as people see it, with its shape.
std::string TypeText(const EntryModel& entry);

// The value that a host reads: the own one or, when it is empty, the one of the presentation data.
const std::string& EffectiveValue(const EntryModel& entry) noexcept;

}  // namespace mox::tool

#endif
