// A file that was opened with the program, or dropped on it.
#ifndef MOX_XMLAPI_TOOLS_EDIT_DROPPED_FILE_H
#define MOX_XMLAPI_TOOLS_EDIT_DROPPED_FILE_H

#include <string>
#include <vector>

namespace mox::tool {

// On Windows, the arguments of "edit" for a file if that is the only argument, and no verb. Others are returned as they
// are, and all on other systems.
std::vector<std::string> WithDroppedFile(std::vector<std::string> arguments);

// On Windows, waits for a key if the console belongs to this process alone and closes with it, so that a message can be
// read.
void KeepConsoleOpen();

}  // namespace mox::tool

#endif
