// A text and the tree that the library's parser builds from it.
#ifndef MOX_XMLAPI_DOCUMENT_PARSED_TEXT_H
#define MOX_XMLAPI_DOCUMENT_PARSED_TEXT_H

#include <cstddef>

#include "mox_xmlApi/platform/scan.h"
#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_document.h"
#include "mox_xmlApi/xml/xml_parser.h"

namespace mox {

class ParsedText {
  public:
    // How many zero units must follow a text that is to be parsed.
    static constexpr std::size_t kZeros = 1 + kScanAhead;

    // Parses `text` except for the kZeros units at its end. Throws what the parser throws.
    explicit ParsedText(WideString text);
    ParsedText(const ParsedText&) = delete;
    ParsedText& operator=(const ParsedText&) = delete;

    bool IsParsed() const noexcept { return isParsed_; }
    // Where and why the parser stopped. Meaningful only if IsParsed is false.
    const ParseFailure& Failure() const noexcept { return failure_; }

    // The document. If IsParsed is false, it has the top-level nodes before the error.
    XmlDocument& Document() const noexcept { return document_; }
    XmlNode& Tree() const noexcept { return *document_.root; }

    // The offset of a view into the text: of the name of an element or attribute, or of a comment's text.
    std::size_t OffsetOf(WideView part) const noexcept {
        return static_cast<std::size_t>(part.data() - text_.data());
    }

  private:
    WideString text_;  // in which references are decoded in place; the tree points into it
    // Look-ups in the tree remember what they have cost, but do not change it.
    mutable XmlDocument document_;
    bool isParsed_ = false;
    ParseFailure failure_;
};

}  // namespace mox

#endif
