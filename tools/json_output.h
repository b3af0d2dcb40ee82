// Converts documents and entries to JSON.
#ifndef MOX_XMLAPI_TOOLS_JSON_OUTPUT_H
#define MOX_XMLAPI_TOOLS_JSON_OUTPUT_H

#include <nlohmann/json.hpp>
#include <string>

#include "mox_xmlApi/document/document.hpp"

namespace mox::tool {

// Keeps its members in the order in which they are set.
using Json = nlohmann::ordered_json;

// The JSON text, indented, with a line feed at the end. A surrogate without a partner becomes U+FFFD.
std::string JsonText(const Json& json);

// The members are the fields of the document, in snake case. Optional ones are left out: empty texts, the numbers and
// flags that are 0 or false, and what an unreadable entry does not have.
Json EntryJson(const DocumentEntry& entry);
Json DocumentJson(const Document& document);

}  // namespace mox::tool

#endif
