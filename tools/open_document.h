// Opens documents through the C++ front, for verbs that change them or read single keys.
#ifndef MOX_XMLAPI_TOOLS_OPEN_DOCUMENT_H
#define MOX_XMLAPI_TOOLS_OPEN_DOCUMENT_H

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tools/document_model.h"

namespace mox::tool {

// Throw ExitError (kUsageError) unless the document, read from the file, is of that kind.
void RequireSettings(const SourceFile& file, const DocumentModel& document);
void RequireTable(const SourceFile& file, const DocumentModel& document);

// Opens a settings document in the form that the file has. Throws ExitError (kIoError) if that fails.
Profile OpenProfile(const SourceFile& file);

// Opens a table document. Throws ExitError (kIoError) if that fails, and for a narrow file: the library opens wide
// table documents only.
Table OpenTableDocument(const SourceFile& file);

}  // namespace mox::tool

#endif
