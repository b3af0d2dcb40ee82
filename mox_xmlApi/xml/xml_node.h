// The nodes of the tree.
//
// An element keeps its character data in `value`; there are no text nodes, no parent pointers, no namespaces.
// `index` is the node's position in the list that holds it, at once after every change, and -1 outside a
// list.
#ifndef MOX_XMLAPI_XML_XML_NODE_H
#define MOX_XMLAPI_XML_XML_NODE_H

#include <cstdint>

#include "mox_xmlApi/xml/xml_array.h"
#include "mox_xmlApi/xml/xml_list.h"
#include "mox_xmlApi/xml/xml_text.h"

namespace mox {

// The W3C numbering of node types, as far as this tree has them. Attributes are no nodes here: what a node of
// that kind would add, its kind and its index, follows from where it lies.
enum class XmlNodeKind : std::int32_t {
    Element = 1,
    ProcessingInstruction = 7,  // the XML declaration alone
    Comment = 8,
    Document = 9,
};

struct XmlAttribute {
    XmlText name{};
    XmlText value{};
};

class ChildIndex;

struct XmlNode {
    XmlNodeKind kind;
    std::uint32_t scanned : 31 = 0;   // the account from which an index of the children is paid
    std::uint32_t isCovered : 1 = 0;  // an index of the parent's children may know this node by its name
    std::int64_t index = -1;
    XmlText name{};
    XmlText value{};
    XmlArray<XmlAttribute> attributes{};
    XmlList<XmlNode, ChildIndex> children{};  // with the index of their names, when there is one
};

}  // namespace mox

#endif
