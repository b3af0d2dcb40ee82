// The tool's data as JSON.
#ifndef MOX_XMLAPI_TOOLS_JSON_OUTPUT_H
#define MOX_XMLAPI_TOOLS_JSON_OUTPUT_H

#include <nlohmann/json.hpp>
#include <string>

#include "tools/document_model.h"

namespace mox::tool {

// Members keep the order in which they are set.
using Json = nlohmann::ordered_json;

// One JSON text, indented, with its line end. A surrogate without its partner becomes U+FFFD.
std::string JsonText(const Json& json);

Json EntryJson(const EntryModel& entry);
Json DocumentJson(const DocumentModel& document, Form form);

}  // namespace mox::tool

#endif
