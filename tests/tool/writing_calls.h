// Calls of the verbs that change a file.
#ifndef MOX_XMLAPI_TESTS_TOOL_WRITING_CALLS_H
#define MOX_XMLAPI_TESTS_TOOL_WRITING_CALLS_H

#include <string>
#include <vector>

namespace tool {

using Calls = std::vector<std::vector<std::string>>;

// A settings file for them: the section "S" with the key "k".
std::string TextForCalls();

// Calls that change such a file through the library, and calls that change its text alone.
Calls LibraryCalls(const std::string& file);
Calls TextCalls(const std::string& file);

// All of them.
Calls WritingCalls(const std::string& file);

}  // namespace tool

#endif
