// Describes why a text does not parse.
#ifndef MOX_XMLAPI_DOCUMENT_SYNTAX_ERROR_H
#define MOX_XMLAPI_DOCUMENT_SYNTAX_ERROR_H

#include <string>

#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_parser.h"

namespace mox {

struct SyntaxError {
    Position position{};     // of what was found
    std::string found{};     // `"</Tabel"` or `the end of the file`, for example
    std::string expected{};  // `">" after "/"`, for example
};

// Describes a failed parse of the text, which is as it was before: the parser decodes references in its own copy.
SyntaxError DescribeSyntaxError(WideView text, Form form, const ParseFailure& failure);

// "found ..., expected ..."
std::string MessageOf(const SyntaxError& error);

// Sets the problem, if it is not null, to the error: of Reason::Encoding if the text is in an encoding that the library
// does not read, otherwise of Reason::Syntax. Returns false.
bool FailWithSyntaxError(const SyntaxError& error, const EncodingReport& encoding, Problem* problem);

}  // namespace mox

#endif
