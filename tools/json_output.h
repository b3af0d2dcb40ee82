// Converts documents, entries and differences to JSON.
#ifndef MOX_XMLAPI_TOOLS_JSON_OUTPUT_H
#define MOX_XMLAPI_TOOLS_JSON_OUTPUT_H

#include <nlohmann/json.hpp>
#include <string>

#include "mox_xmlApi/document/document.hpp"
#include "tools/document_diff.h"

namespace mox::tool {

// Keeps its members in the order in which they are set.
using Json = nlohmann::ordered_json;

// Set a member of an object, unless the value is empty or false.
void PutIfNotEmpty(Json& json, const char* name, const std::string& text);
void PutIfTrue(Json& json, const char* name, bool value);

// The JSON text, indented, with a line feed at the end. A surrogate without a partner becomes U+FFFD.
std::string JsonText(const Json& json);

// The members are the fields of the document, in snake case. Optional ones are left out: empty texts, the numbers and
// flags that are 0 or false, and what an unreadable entry does not have.
//
// "value" is a number if the type of the entry is one and the text says one, true or false for "bool", and a list of
// numbers for an array or vector of "byte"; otherwise it is the text. "text" is the text in the file where "value" does
// not tell it: "1.50", " 7", "true", or an integer beyond 2^53.
//
// "other" lists the comments and elements that are neither sections nor entries nor known parts of an entry, also those
// of an entry that is not readable; "outside" those beside the root. Each is one object, followed by those of the nodes
// in it: "index" is the number of sections or entries before it, "depth" how deeply it is nested in the first.
Json EntryJson(const DocumentEntry& entry);
Json DocumentJson(const Document& document);

// The presentation data of an entry, as EntryJson has them in "ui".
Json PresentationJson(const DocumentPresentation& ui);

// A difference as `diff --json` prints it, and `apply` reads it: its kind in "change", "section", "entry", "occurrence"
// if it is not 1, "field" of what was changed or "type" of an entry that was added or removed, "before" and "after",
// and in "fields" the other fields of what was added.
Json DifferenceJson(const Difference& difference);

}  // namespace mox::tool

#endif
