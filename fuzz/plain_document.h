// A second, slow and obvious reading and writing of documents, which the fuzz targets hold against the
// library's own: no slices, no pool, no stack of its own, one unit at a time.
#ifndef MOX_XMLAPI_FUZZ_PLAIN_DOCUMENT_H
#define MOX_XMLAPI_FUZZ_PLAIN_DOCUMENT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_node.h"

namespace mox::fuzz {

using PlainAttribute = std::pair<WideString, WideString>;

struct PlainNode {
    XmlNodeKind kind = XmlNodeKind::Element;
    std::size_t depth = 0;  // 0: top level
    WideString name{};
    WideString value{};
    std::vector<PlainAttribute> attributes{};

    bool operator==(const PlainNode&) const = default;
};

// The nodes in the order in which they begin; the depths say which is whose child.
using PlainDocument = std::vector<PlainNode>;

// Reads a text without zero units. False when it is not in the dialect; `document` is then of no use.
bool PlainRead(WideView text, PlainDocument& document);

// The text of a document; each top-level node is followed by `topLevelEnd`.
WideString PlainWrite(const PlainDocument& document, WideView topLevelEnd);

// What opening a document adds to it: a root "Settings" unless one with a schema location is there, or a
// "Table" unless there is one.
void PlainOpenProfile(PlainDocument& document);
void PlainOpenTable(PlainDocument& document, WideView name);

// What saving a profile takes out of it: the marks "eud" of sections and of the entries of marked sections.
// True when another save would take out more: sections that had more than one mark.
bool PlainStripMarks(PlainDocument& document);

// The place of the root or of the table among the nodes; document.size() without one.
std::size_t PlainRoot(const PlainDocument& document);
std::size_t PlainTable(const PlainDocument& document);

// Whether the node has children.
bool PlainHasChildren(const PlainDocument& document, std::size_t node);

// The value of the first attribute called `name`, or null.
const WideString* PlainAttributeOf(const PlainNode& node, WideView name);

// The two forms of a file: the units, or the low byte of each, and a zero unit or byte.
std::string PlainFile(WideView text, bool wide);

// The units of a file before its first zero; an odd byte at the end of a wide one does not count.
WideString PlainUnits(std::string_view bytes, bool wide);

}  // namespace mox::fuzz

#endif
