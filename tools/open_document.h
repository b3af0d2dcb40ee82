// Reads files, and opens documents through the C++ front for verbs that change them or read single keys.
#ifndef MOX_XMLAPI_TOOLS_OPEN_DOCUMENT_H
#define MOX_XMLAPI_TOOLS_OPEN_DOCUMENT_H

#include <optional>
#include <string>
#include <string_view>

#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/mox_xmlApi.hpp"

namespace mox::tool {

// The path that means stdin, for verbs that only read the file.
inline constexpr const char* kStdinPath = "-";

// The content of a file, and in `stamp`, unless null, its state. Throws ExitError (kIoError) if it cannot be read.
std::string ReadBytes(const std::string& path, FileStamp* stamp = nullptr);

// The document that these bytes, the content of the file, contain; see ReadDocument.
Document ParseDocument(const std::string& path, std::string_view bytes, std::optional<Form> form);

// Reads the document of a file. Without a form it is detected. Throws ExitError if the file cannot be read (kIoError) or
// does not parse (kSyntaxError, with the position and the reason), or is in an encoding that the library does not read.
Document ReadDocument(const std::string& path, std::optional<Form> form);

// "path:line:column: message"
std::string AtPosition(const std::string& path, Position position, const std::string& message);

// Throw ExitError (kUsageError) unless the document of the file is of that kind.
void RequireSettings(const std::string& path, const Document& document);
void RequireTable(const std::string& path, const Document& document);

// Opens a settings document in the form that the file has. Throws ExitError (kIoError) if that fails.
Profile OpenProfile(const std::string& path, Form form);

// Opens a table document. Throws ExitError (kIoError) if that fails, and for a narrow file: the library opens wide
// table documents only.
Table OpenTableDocument(const std::string& path, Form form);

}  // namespace mox::tool

#endif
