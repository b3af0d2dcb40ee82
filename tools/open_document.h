// Reads files, and the documents in them.
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

// Throws ExitError (kUsageError) if the path means stdin, for verbs that change the file.
void RefuseStdin(const std::string& path);

// The name of a file without its folder.
std::string FileNameOf(const std::string& path);

// The content of a file, or of stdin, and in `stamp`, unless null, its state; that of stdin is that of a missing file.
// Throws ExitError (kIoError) if it cannot be read.
std::string ReadBytes(const std::string& path, FileStamp* stamp = nullptr);

// Reads the document of a file, or of stdin. Without a form it is detected. Throws ExitError if the file cannot be read
// (kIoError), does not parse (kSyntaxError, with the position and the reason), or is in an encoding that the library does
// not read.
Document ReadDocument(const std::string& path, std::optional<Form> form);

// The same for a content that was read from the file. Throws ExitError (kSyntaxError).
Document ParseDocument(const std::string& path, std::string_view bytes, std::optional<Form> form);

// "path:line:column: message"
std::string AtPosition(const std::string& path, Position position, const std::string& message);

// Throw ExitError (kUsageError) unless the document of the file is of that kind.
void RequireSettings(const std::string& path, const Document& document);
void RequireTable(const std::string& path, const Document& document);
void RequireSettingsOrTable(const std::string& path, const Document& document);

// Ends the verb with the problem that the library reports about the file or what is in it, and the exit code for that.
// `rest` is the end of the message.
[[noreturn]] void ThrowProblem(const std::string& path, const Problem& problem, const char* rest = "");

// Ends the verb because a file cannot be read.
[[noreturn]] void ThrowUnread(const std::string& path, const Problem& problem);

}  // namespace mox::tool

#endif
