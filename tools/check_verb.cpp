// check: reports the diagnostics of files.
#include <algorithm>
#include <memory>
#include <vector>

#include "mox_xmlApi/document/diagnose.hpp"
#include "tools/command_line.h"
#include "tools/import_hint.h"
#include "tools/json_output.h"
#include "tools/open_document.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct CheckArguments {
    std::vector<std::string> paths{};
    FileArgument form{};
    bool isJson = false;
    bool isQuiet = false;
    bool withValues = false;
};

std::string SeverityName(Severity severity) {
    if (severity == Severity::Error) return "error";
    return severity == Severity::Warning ? "warning" : "note";
}

std::string MessageOf(const Diagnostic& diagnostic) {
    return diagnostic.message + (diagnostic.encoding.has_value() ? ImportHint(*diagnostic.encoding) : "");
}

Json JsonOf(const std::string& path, const Diagnostic& diagnostic) {
    Json json = Json::object();
    json["file"] = path;
    json["line"] = diagnostic.position.line;
    json["column"] = diagnostic.position.column;
    json["severity"] = SeverityName(diagnostic.severity);
    json["message"] = MessageOf(diagnostic);
    return json;
}

// A file that cannot be read has no position.
Json UnreadJson(const std::string& path, const std::string& message) {
    Json json = Json::object();
    json["file"] = path;
    json["severity"] = "error";
    json["message"] = message;
    return json;
}

// Prints the diagnostics of one file, to `json` if JSON is wanted. Returns the exit code for the file.
ExitCode CheckFile(const std::string& path, const CheckArguments& arguments, Output& output, Json& json) {
    ExitCode code = ExitCode::kSuccess;
    DiagnoseOptions options;
    options.values = arguments.withValues;
    for (const Diagnostic& diagnostic : diagnose(ReadBytes(path), arguments.form.RequestedForm(), options)) {
        const bool isError = diagnostic.severity == Severity::Error;
        if (isError) code = ExitCode::kSyntaxError;
        if (arguments.isQuiet && !isError) continue;
        if (arguments.isJson) {
            json.push_back(JsonOf(path, diagnostic));
        } else {
            const std::string prefix = isError ? "" : SeverityName(diagnostic.severity) + ": ";
            output.PrintLine(AtPosition(path, diagnostic.position, prefix + MessageOf(diagnostic)));
        }
    }
    return code;
}

void RunCheck(const CheckArguments& arguments, Output& output) {
    Json json = Json::array();
    for (const std::string& path : arguments.paths) {
        ExitCode code = ExitCode::kSuccess;
        try {
            code = CheckFile(path, arguments, output, json);
        } catch (const ExitError& error) {
            if (arguments.isJson) json.push_back(UnreadJson(path, error.what()));
            output.PrintMessage(error.what());
            code = error.Code();
        }
        output.code = std::max(output.code, code);
    }
    if (arguments.isJson) output.PrintLines(JsonText(json));
}

}  // namespace

void AddCheckVerb(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<CheckArguments>();
    CLI::App& check = AddVerb(app, "check", "Report errors and likely problems in files",
                              "mox-xml check camera.xml\nmox-xml check --quiet *.xml");
    // Not an option with a list of values: CLI11 would split a file name such as "[a,b]". The files after the first are
    // what remains of the command line.
    check.add_option("FILE", arguments->paths.emplace_back(), "The files, one or more")->required();
    check.allow_extras();
    CLI::Option* const wide =
        check.add_flag("--wide", arguments->form.isWide,
                       "The files are wide (two bytes per unit); do not detect their form");
    check
        .add_flag("--narrow", arguments->form.isNarrow,
                  "The files are narrow (one byte per unit); do not detect their form")
        ->excludes(wide);
    check.add_flag("--quiet", arguments->isQuiet, "Report errors only, no warnings or notes");
    check.add_flag("--values", arguments->withValues,
                   "Check values against the type, the minimum and maximum, and the control of the entry");
    AddJsonOption(check, arguments->isJson);
    check.callback([arguments, &check, &output] {
        const std::vector<std::string> remaining = check.remaining();  // begins with "--"
        arguments->paths.insert(arguments->paths.end(), remaining.begin() + 1, remaining.end());
        RunCheck(*arguments, output);
    });
}

}  // namespace mox::tool
