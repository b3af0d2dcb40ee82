// Why a file does not parse, in words.
#ifndef MOX_XMLAPI_TOOLS_PARSE_MESSAGE_H
#define MOX_XMLAPI_TOOLS_PARSE_MESSAGE_H

#include <string>

#include "tools/source_file.h"

namespace mox::tool {

// What was found, what the format wants there, and where that is.
struct ParseProblem {
    Position position;
    std::string found;
    std::string wanted;
};

// The file must be one that did not parse.
ParseProblem DescribeFailure(const SourceFile& file);

// "path:line:column: found ..., wanted ..."
std::string ParseMessage(const SourceFile& file);

}  // namespace mox::tool

#endif
