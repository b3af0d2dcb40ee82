// The parse proper, in the text's own memory.
#ifndef MOX_XMLAPI_XML_XML_PARSER_H
#define MOX_XMLAPI_XML_XML_PARSER_H

#include <cstddef>
#include <cstdint>

#include "mox_xmlApi/xml/xml_document.h"

namespace mox {

// What the grammar expected where a parse stopped; the names are those of the rules in xml_parser.cpp.
enum class ParseExpectation : std::uint8_t {
    TopLevelNode,        // "<", or the end of the document
    DeclarationFirst,    // no declaration but as the first node of the document
    DeclarationName,     // "xml" and a space after "<?"
    DeclarationVersion,  // a version among the attributes of the declaration
    DeclarationEnd,      // "?>"
    CommentStart,        // "--" after "<!"
    CommentEnd,          // "-->", and before it neither ">" nor "--"
    ElementName,         // a name after "<"
    AttributeEquals,     // "=" after the name of an attribute
    AttributeQuote,      // a double quote before the value of an attribute
    AttributeEnd,        // a double quote after it, and before it no "<" and no "&" of its own
    TagEnd,              // another attribute, ">" or "/>"
    EmptyTagEnd,         // ">" after "/"
    Content,             // the element's end tag, and before it no "&" of its own
    EndTag,              // the name of the element that is open, and ">"
};

// Where and why a parse stopped. Offsets count units from the beginning of the text.
struct ParseFailure {
    static constexpr std::size_t kNowhere = ~std::size_t{0};

    ParseExpectation expected = ParseExpectation::TopLevelNode;
    std::size_t offset = 0;
    // The first unit of the name, the comment's text or the attribute's value in which the parse was; kNowhere at
    // the top level.
    std::size_t inside = kNowhere;
};

// Parses `length` units at `text` and appends the top-level nodes to `parent`, whose pool is that of
// `document`.
//
// `text` is followed by 1 + kScanAhead zero units, of which the first is overwritten, and lives as long as the tree: names
// and values become slices of it, entities are decoded in place. False at the first unit that does not fit; top-level nodes
// that were complete by then stay, of all others nothing is left. Throws std::bad_alloc, or std::length_error
// with "string too long", with the same effect.
//
// `failure`, if it is not null, is set when the result is false, and left alone otherwise.
bool ParseInPlace(XmlDocument& document, wchar16* text, std::size_t length, XmlNode* parent,
                  ParseFailure* failure = nullptr);

}  // namespace mox

#endif
