// check: whether files load, and what will surprise.
#include <algorithm>
#include <memory>
#include <vector>

#include "tools/command_line.h"
#include "tools/findings.h"
#include "tools/json_output.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct CheckArguments {
    std::vector<std::string> paths{};
    FileArgument form{};
    bool isJson = false;
    bool isQuiet = false;
};

std::string Word(Severity severity) {
    if (severity == Severity::Error) return "error";
    return severity == Severity::Warning ? "warning" : "note";
}

Json JsonOf(const SourceFile& file, const Finding& finding) {
    Json json = Json::object();
    json["file"] = file.Path();
    json["line"] = finding.position.line;
    json["column"] = finding.position.column;
    json["severity"] = Word(finding.severity);
    json["message"] = finding.message;
    return json;
}

// Adds what there is to say of one file; returns how the check of it ended.
ExitCode CheckFile(const std::string& path, const CheckArguments& arguments, Session& session, Json& json) {
    const SourceFile file(path, arguments.form.ForcedForm());
    for (const Finding& finding : FindingsIn(file)) {
        const bool isError = finding.severity == Severity::Error;
        if (arguments.isQuiet && !isError) continue;
        if (arguments.isJson) {
            json.push_back(JsonOf(file, finding));
        } else {
            const std::string word = isError ? "" : Word(finding.severity) + ": ";
            session.Line(AtPosition(file, finding.position, word + finding.message));
        }
    }
    return file.IsParsed() ? ExitCode::kDone : ExitCode::kNotParsed;
}

void Check(const CheckArguments& arguments, Session& session) {
    Json json = Json::array();
    for (const std::string& path : arguments.paths) {
        ExitCode code = ExitCode::kDone;
        try {
            code = CheckFile(path, arguments, session, json);
        } catch (const Stop& stop) {
            session.Message(std::string("mox-xml: ") + stop.what());
            code = stop.Code();
        }
        session.code = std::max(session.code, code);
    }
    if (arguments.isJson) session.out += JsonText(json);
}

}  // namespace

void AddCheckVerb(CLI::App& app, Session& session) {
    const auto arguments = std::make_shared<CheckArguments>();
    CLI::App& check = AddVerb(app, "check", "What keeps files from being loaded, and what will surprise",
                              "mox-xml check camera.xml\nmox-xml check --quiet *.xml");
    // CLI11 would take "[a,b]" apart in a list, so that the files but the first are what is left over.
    check.add_option("FILE", arguments->paths.emplace_back(), "The files, one or more")->required();
    check.allow_extras();
    CLI::Option* const wide = check.add_flag("--wide", arguments->form.isWide, "Two bytes per unit");
    check.add_flag("--narrow", arguments->form.isNarrow, "One byte per unit")->excludes(wide);
    check.add_flag("--quiet", arguments->isQuiet, "Errors alone, no warnings and notes");
    AddJson(check, arguments->isJson);
    check.callback([arguments, &check, &session] {
        for (const std::string& path : check.remaining()) {
            if (path == "--") continue;
            if (path.rfind("--", 0) == 0) throw Stop(ExitCode::kUsage, "there is no option " + path);
            arguments->paths.push_back(path);
        }
        Check(*arguments, session);
    });
}

}  // namespace mox::tool
