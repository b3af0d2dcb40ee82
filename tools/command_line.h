// What the verbs have in common on the command line.
#ifndef MOX_XMLAPI_TOOLS_COMMAND_LINE_H
#define MOX_XMLAPI_TOOLS_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "mox_xmlApi/mox_xmlApi.hpp"

namespace mox::tool {

// Lets the help of an application begin with the examples, a line each.
void ExamplesInHelp(CLI::App& app, const std::string& examples);

// A verb or a group of verbs, with its examples.
CLI::App& AddVerb(CLI::App& parent, const std::string& name, const std::string& description,
                  const std::string& examples);

// The file of a verb, and the form to take it in.
struct FileArgument {
    std::string path{};
    bool isWide = false;
    bool isNarrow = false;

    std::optional<Form> ForcedForm() const {
        if (isWide) return Form::Wide;
        return isNarrow ? std::optional(Form::Narrow) : std::nullopt;
    }
};

// FILE --wide --narrow. The argument must live as long as the verb, as in all functions here.
void AddFile(CLI::App& verb, FileArgument& file);

// --backup
void AddBackup(CLI::App& verb, bool& isWanted);

// --json
void AddJson(CLI::App& verb, bool& isWanted);

}  // namespace mox::tool

#endif
