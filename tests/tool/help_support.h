// What --help says, for tests that compare other texts with it.
#ifndef MOX_XMLAPI_TESTS_TOOL_HELP_SUPPORT_H
#define MOX_XMLAPI_TESTS_TOOL_HELP_SUPPORT_H

#include <string>
#include <vector>

namespace tool {

// All verbs: "get", "entry get".
std::vector<std::string> Verbs();

// The help of the verb.
std::string HelpOf(const std::string& verb);

// The options in the list of a help text, without their short forms: all of them, or those that take a value.
std::vector<std::string> OptionsIn(const std::string& help);
std::vector<std::string> OptionsWithValueIn(const std::string& help);

}  // namespace tool

#endif
