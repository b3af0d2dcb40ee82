// Tells people how to import a file that is stored in another encoding than documents are.
#ifndef MOX_XMLAPI_TOOLS_IMPORT_HINT_H
#define MOX_XMLAPI_TOOLS_IMPORT_HINT_H

#include <optional>
#include <string>
#include <string_view>

#include "mox_xmlApi/document/document.hpp"

namespace mox::tool {

// ` (see "mox-xml convert --from utf-16")`, or empty if there is nothing to import from this encoding.
std::string ImportHint(Encoding encoding);

// The same for the bytes of a file; empty if the library reads them as what they are. Without a form, it is detected.
std::string ImportHint(std::string_view bytes, std::optional<Form> form = std::nullopt);

// Throws ExitError (kSyntaxError) if the document is empty only because the library does not read its encoding.
void RequireReadEncoding(const std::string& path, const Document& document);

}  // namespace mox::tool

#endif
