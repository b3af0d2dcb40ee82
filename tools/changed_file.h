// Makes a list of changes to a document in memory.
#ifndef MOX_XMLAPI_TOOLS_CHANGED_FILE_H
#define MOX_XMLAPI_TOOLS_CHANGED_FILE_H

#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/document/document.hpp"
#include "tools/change_list.h"

namespace mox::tool {

struct ChangedFile {
    std::string bytes{};
    Document document;  // what the bytes are read as
};

// Returns what the file at `path` has after all changes. `bytes` are those that it has now, which are read as `form`;
// nothing is read or written. Throws ExitError, with the path and the number of the change, if one of them cannot be
// made or the new file would not keep it; kIoError if the document cannot be changed at all.
ChangedFile MakeChangedFile(const std::string& path, std::string_view bytes, Form form,
                            const std::vector<RequestedChange>& changes);

}  // namespace mox::tool

#endif
