// A file as the tool reads it: its text, the form it is stored in, and the tree that the library's parser builds.
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

// A place in the text. Lines end with a line feed. A column counts units: 16-bit units of a wide file, bytes of a narrow
// one. Both numbers begin with 1.
struct Position {
    std::size_t line = 1;
    std::size_t column = 1;
};

class SourceFile {
  public:
    // Reads and parses the file at `path` (UTF-8). Without a form it is detected from the first two bytes. Throws
    // ExitError (kIoError) if the file cannot be read; IsParsed tells whether it parses.
    SourceFile(const std::string& path, std::optional<Form> form);
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;

    // Throws ExitError (kSyntaxError) with the position and the reason if the file does not parse.
    void RequireParsed() const;

    const std::string& Path() const noexcept { return path_; }
    Form GetForm() const noexcept { return form_; }

    // The text of the file, up to the first zero unit. It belongs to this object, as everything does that it returns.
    WideView Text() const noexcept { return text_; }
    // The number of non-zero bytes that follow that zero unit or, without one, the last whole unit.
    std::size_t UnreadBytes() const noexcept { return unread_; }

    bool IsParsed() const noexcept { return isParsed_; }
    // Where and why the parser gave up. Meaningful only if IsParsed is false.
    const ParseFailure& Failure() const noexcept { return failure_; }

    // The document node. If IsParsed is false, it has the top-level nodes before the error.
    const XmlNode& Tree() const noexcept { return *document_->root; }
    XmlDocument& Document() const noexcept { return *document_; }

    // The position of a unit of Text(), given by its offset; the size of the text is allowed.
    Position PositionAt(std::size_t offset) const noexcept;
    // The position of the node's name, or of a comment's text. The node must be one that was parsed from the file.
    Position PositionOf(const XmlNode& node) const noexcept;

  private:
    void Parse(const std::string& bytes, Form form);

    std::string path_;
    Form form_ = Form::Wide;
    WideString text_;    // as it is in the file
    WideString parsed_;  // a copy, in which the parser decodes references in place; the tree points into it
    std::size_t unread_ = 0;
    bool isParsed_ = false;
    ParseFailure failure_;
    std::unique_ptr<XmlDocument> document_;
    std::vector<std::size_t> lineStarts_;  // offsets, ascending; the first is 0
};

// "path:line:column: message"
std::string AtPosition(const SourceFile& file, Position position, const std::string& message);

}  // namespace mox::tool

#endif
