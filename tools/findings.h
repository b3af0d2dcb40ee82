// What will surprise the user of a file that loads.
#ifndef MOX_XMLAPI_TOOLS_FINDINGS_H
#define MOX_XMLAPI_TOOLS_FINDINGS_H

#include <string>
#include <vector>

#include "tools/source_file.h"

namespace mox::tool {

// Note: nothing is wrong, but it is good to know.
enum class Severity { Error, Warning, Note };

struct Finding {
    Severity severity = Severity::Warning;
    Position position{};
    std::string message{};
};

// What there is to say of a file, in the order of the positions. One error when it does not parse.
std::vector<Finding> FindingsIn(const SourceFile& file);

}  // namespace mox::tool

#endif
