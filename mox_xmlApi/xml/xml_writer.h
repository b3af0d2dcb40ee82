// Writing: nodes as text. Escaping happens here and nowhere else.
//
// Each function exists for both outputs and throws what they throw.
#ifndef MOX_XMLAPI_XML_XML_WRITER_H
#define MOX_XMLAPI_XML_XML_WRITER_H

#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_node.h"
#include "mox_xmlApi/xml/xml_output.h"

namespace mox {

// Appends `text` with the five special characters replaced by their entities.
template <class Output>
void XmlEscape(WideView text, Output& out);

// Appends a space and name="value" for each attribute in order.
template <class Output>
void WriteAttributes(const XmlNode& node, Output& out);

// Appends one node with its subtree, indented by `depth` tabs. No line feed follows. The depth of the tree is
// bounded by memory alone.
template <class Output>
void WriteNode(const XmlNode& node, Output& out, std::size_t depth);

// Appends a whole document, each top-level node followed by a line feed, or one subtree without.
template <class Output>
void WriteDocument(const XmlNode& node, Output& out);

}  // namespace mox

#endif
