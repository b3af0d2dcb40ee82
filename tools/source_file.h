// A file as the tool reads it: its bytes, the form they have, and the tree that the library's parser makes of them.
#ifndef MOX_XMLAPI_TOOLS_SOURCE_FILE_H
#define MOX_XMLAPI_TOOLS_SOURCE_FILE_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_document.h"
#include "mox_xmlApi/xml/xml_parser.h"

namespace mox::tool {

// Lines end with a line feed. A column counts units: 16-bit units of a wide file, bytes of a narrow one. Both begin
// with 1.
struct Position {
    std::size_t line = 1;
    std::size_t column = 1;
};

class SourceFile {
  public:
    // Reads the file and parses it in the form that is asked for, or in the one that its first bytes show. Throws Stop
    // when it cannot be read.
    SourceFile(const std::string& path, std::optional<Form> form);
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;

    // Throws Stop with position and reason when the file does not parse.
    void RequireParsed() const;

    const std::string& Path() const noexcept { return path_; }
    Form GetForm() const noexcept { return form_; }

    // The text up to the zero that ends it, as it stands in the file.
    WideView Text() const noexcept { return text_; }
    // How many bytes there are behind that zero, zeros not counted, or behind the last whole unit.
    std::size_t UnreadBytes() const noexcept { return unread_; }

    bool IsParsed() const noexcept { return isParsed_; }
    // Where and why the parse ended. Set when IsParsed is false.
    const ParseFailure& Failure() const noexcept { return failure_; }

    // The document node, with what was parsed.
    const XmlNode& Tree() const noexcept { return *document_->root; }
    XmlDocument& Document() const noexcept { return *document_; }

    Position PositionAt(std::size_t offset) const noexcept;
    // Where the node's name stands, or the text of a comment.
    Position PositionOf(const XmlNode& node) const noexcept;

  private:
    void Parse(const std::string& bytes, Form form);

    std::string path_;
    Form form_ = Form::Wide;
    WideString text_;    // kept: the parser decodes references in place
    WideString parsed_;  // what the tree refers to
    std::size_t unread_ = 0;
    bool isParsed_ = false;
    ParseFailure failure_;
    std::unique_ptr<XmlDocument> document_;
    std::vector<std::size_t> lineStarts_;
};

// "path:line:column: " in front of the message.
std::string AtPosition(const SourceFile& file, Position position, const std::string& message);

}  // namespace mox::tool

#endif
