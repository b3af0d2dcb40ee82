// What the verbs share on the command line: their help, and the arguments that several of them take.
//
// Functions that take a variable bind it to the verb: it is set when the command line is parsed, so it must live until
// then.
#ifndef MOX_XMLAPI_TOOLS_COMMAND_LINE_H
#define MOX_XMLAPI_TOOLS_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tools/output.h"

namespace mox::tool {

// Makes the help of `app` begin with the examples, one per line.
void SetHelpExamples(CLI::App& app, const std::string& examples);

// Adds a verb, or a group of verbs, to `parent`, which owns it. The help begins with the examples, one per line.
CLI::App& AddVerb(CLI::App& parent, const std::string& name, const std::string& description,
                  const std::string& examples);

// Adds --version. AddVerb does this for each verb.
void AddVersionOption(CLI::App& app);

// The file that a verb works on, and the form that the user says it has.
struct FileArgument {
    std::string path{};
    bool isWide = false;
    bool isNarrow = false;

    // Nothing when the form is to be detected.
    std::optional<Form> RequestedForm() const {
        if (isWide) return Form::Wide;
        return isNarrow ? std::optional(Form::Narrow) : std::nullopt;
    }
};

// Adds FILE, --wide and --narrow.
void AddFileArgument(CLI::App& verb, FileArgument& file);

// Adds --backup.
void AddBackupOption(CLI::App& verb, bool& isSet);

// Adds --json.
void AddJsonOption(CLI::App& verb, bool& isSet);

// Adds --json and --null, for a verb that prints names or values.
void AddItemOptions(CLI::App& verb, bool& isJson, Output& output);

}  // namespace mox::tool

#endif
