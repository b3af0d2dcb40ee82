// How the writing verbs open documents and replace files.
#ifndef MOX_XMLAPI_TOOLS_SAVING_H
#define MOX_XMLAPI_TOOLS_SAVING_H

#include <initializer_list>
#include <string>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tools/document_model.h"

namespace mox::tool {

// Opens a settings document that was seen to parse. Throws Stop when it cannot.
Profile OpenProfile(const SourceFile& file);

// Opens a table document. Throws Stop when it cannot, as when the file is narrow.
Table OpenTableDocument(const SourceFile& file);

// Throw Stop when the file holds no document of that kind.
void RequireSettings(const SourceFile& file, const DocumentModel& document);
void RequireTable(const SourceFile& file, const DocumentModel& document);

// Whether the unit comes back from a narrow file as it was.
bool IsKeptByNarrowForm(wchar16 unit) noexcept;

// Throws Stop when a narrow file would not keep one of the texts.
void RequireKept(const std::string& path, Form form, std::initializer_list<std::string> texts);

// Replace the file by the document. The old file is kept as FILE.bak first, if that is wanted. Throw Stop when something
// cannot be written; the file is then as it was.
void SaveProfile(const Profile& profile, const std::string& path, Form form, bool withBackup);
void SaveTable(const Table& table, const std::string& path, bool withBackup);
void SaveBytes(const std::string& bytes, const std::string& path, bool withBackup);

}  // namespace mox::tool

#endif
