// Checks of single elements and entries, for diagnose.
#ifndef MOX_XMLAPI_DOCUMENT_ENTRY_CHECK_H
#define MOX_XMLAPI_DOCUMENT_ENTRY_CHECK_H

#include <cstdint>
#include <functional>
#include <string>

#include "mox_xmlApi/document/document.hpp"

namespace mox {

// Takes a warning about a node.
using Warner = std::function<void(DocumentNode node, const std::string& message)>;

// Warns of attributes that the element has twice.
void CheckAttributes(DocumentNode element, const Warner& warn);

// Warns of an attribute of the element that is a number of more than 32 bits, and says what the library reads.
void CheckNumber(DocumentNode element, const char* attribute, std::uint32_t read, const Warner& warn);

// Warns of parts that the entry has twice, of names that the library does not know, of numbers beyond 32 bits, and of an
// empty value where the presentation data have one. `name` is how messages name the entry: " gain", for example.
void CheckParts(const DocumentEntry& entry, const std::string& name, const Warner& warn);

// Warns if the value that hosts read does not suit the type, the minimum and maximum, or the control of the entry. Of an
// array or vector, the first item that does not suit is reported. Any text suits the types "string" and "ucstring".
void CheckValue(const DocumentEntry& entry, const std::string& name, const Warner& warn);

}  // namespace mox

#endif
