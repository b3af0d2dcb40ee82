// Reads the arguments of the command line before CLI11 does, which takes some of them for what they are not.
#ifndef MOX_XMLAPI_TOOLS_ARGUMENTS_H
#define MOX_XMLAPI_TOOLS_ARGUMENTS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace mox::tool {

struct Arguments {
    const CLI::App* verb = nullptr;    // the innermost one that is named; the program itself without a verb
    std::vector<std::string> words{};  // the verb, its options, "--", everything else
};

// Sorts the arguments (UTF-8) of `program`. An option may stand before the verb or after it. An argument is an option if
// it begins with "-", is longer than that, is not a number and does not follow "--"; the value of an option may be
// anything. Throws ExitError (kUsageError) for an unknown or missing verb, an unknown option, and an option that lacks
// its value or has one that it does not take; with --help for none of the options.
Arguments SortArguments(const CLI::App& program, const std::vector<std::string>& given);

// "mox-xml entry set"
std::string FullName(const CLI::App& verb);

// The hint for an argument that is taken for an option, or that may have been.
inline constexpr const char* kDashHint = "; an argument that begins with \"-\" must follow \"--\"";

// Whether an argument that begins with "-" is an option.
bool IsOption(const std::string& argument) noexcept;

// Ends the program with a usage error that points to the help of the verb.
[[noreturn]] void ThrowUsageError(const CLI::App& verb, const std::string& message);

}  // namespace mox::tool

#endif
