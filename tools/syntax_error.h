// Describes why a file does not parse.
#ifndef MOX_XMLAPI_TOOLS_SYNTAX_ERROR_H
#define MOX_XMLAPI_TOOLS_SYNTAX_ERROR_H

#include <string>

#include "tools/source_file.h"

namespace mox::tool {

struct SyntaxError {
    Position position;     // of what was found
    std::string found;     // `"</Tabel"` or `the end of the file`, for example
    std::string expected;  // `">" after "/"`, for example
};

// The file must be one that does not parse.
SyntaxError DescribeSyntaxError(const SourceFile& file);

// "found ..., expected ..."
std::string MessageOf(const SyntaxError& error);

}  // namespace mox::tool

#endif
