// Finds what is wrong with a file, and what is likely to be.
#ifndef MOX_XMLAPI_TOOLS_DIAGNOSTICS_H
#define MOX_XMLAPI_TOOLS_DIAGNOSTICS_H

#include <string>
#include <vector>

#include "tools/source_file.h"

namespace mox::tool {

enum class Severity {
    Error,    // the file does not parse
    Warning,  // hosts do not read, or do not keep, all that the file contains
    Note,     // a restriction that takes effect only when the file is converted
};

struct Diagnostic {
    Severity severity = Severity::Warning;
    Position position{};
    std::string message{};
};

// The diagnostics of a file, sorted by position. A file that does not parse has one error and nothing else.
std::vector<Diagnostic> Diagnose(const SourceFile& file);

}  // namespace mox::tool

#endif
