// The parse proper, in the text's own memory.
#ifndef MOX_XMLAPI_XML_XML_PARSER_H
#define MOX_XMLAPI_XML_XML_PARSER_H

#include <cstddef>

#include "mox_xmlApi/xml/xml_document.h"

namespace mox {

// Parses `length` units at `text` and appends the top-level nodes to `parent`, whose pool is that of
// `document`.
//
// `text` is followed by 1 + kScanAhead zero units and lives as long as the tree: names and values become
// slices of it, entities are decoded in place. False at the first unit that does not fit; top-level nodes
// that were complete by then stay, of all others nothing is left. Throws std::bad_alloc, or std::length_error
// with "string too long", with the same effect.
bool ParseInPlace(XmlDocument& document, wchar16* text, std::size_t length, XmlNode* parent);

}  // namespace mox

#endif
