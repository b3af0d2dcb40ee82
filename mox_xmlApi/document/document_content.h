// What a Document is made of.
#ifndef MOX_XMLAPI_DOCUMENT_DOCUMENT_CONTENT_H
#define MOX_XMLAPI_DOCUMENT_DOCUMENT_CONTENT_H

#include <optional>
#include <string_view>
#include <vector>

#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/document/parsed_text.h"
#include "mox_xmlApi/document/text_units.h"
#include "mox_xmlApi/entries/table_cursor.h"

namespace mox::front {

struct DocumentContent {
    // Parses the bytes; `parsed` tells whether that succeeded. Only then are kind, root and tables set, by ReadTables.
    DocumentContent(std::string_view bytes, const EncodingReport& report);
    DocumentContent(const DocumentContent&) = delete;
    DocumentContent& operator=(const DocumentContent&) = delete;

    void ReadTables();

    // The node of the tree that a handle refers to, or null; and the other way round.
    static const XmlNode* NodeOf(DocumentNode node) noexcept {
        return static_cast<const XmlNode*>(node.node_);
    }
    static const DocumentContent* ContentOf(DocumentNode node) noexcept { return node.content_; }
    DocumentNode HandleOf(const XmlNode* node) const noexcept {
        return node == nullptr ? DocumentNode() : DocumentNode(this, node);
    }

    Position PositionAt(std::size_t offset) const;
    Position PositionOf(const XmlNode& node) const;

    EncodingReport encoding;
    WideString text;  // as it is in the file
    ParsedText parsed;
    DocumentKind kind = DocumentKind::Other;
    XmlNode* root = nullptr;
    std::vector<DocumentTable> tables{};

  private:
    DocumentEntry ReadEntryOf(const TableCursor& cursor, const XmlNode& node) const;
    DocumentTable ReadTable(XmlNode& node) const;

    mutable std::optional<LineIndex> lines_{};  // made by the first question for a position
};

}  // namespace mox::front

#endif
