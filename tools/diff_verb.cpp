// diff: what differs between two files in meaning.
#include <memory>

#include "tools/command_line.h"
#include "tools/document_diff.h"
#include "tools/json_output.h"
#include "tools/shown_text.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct DiffArguments {
    FileArgument before{};
    std::string after{};
    bool isJson = false;
};

std::string Place(const Difference& difference) {
    std::string place = ShownName(difference.table);
    if (difference.hasEntry) place += "/" + ShownName(difference.entry);
    if (difference.occurrence > 1) place += "#" + std::to_string(difference.occurrence);
    return place;
}

std::string LineOf(const Difference& difference) {
    if (difference.field == "kind") return "~ a " + difference.before + " -> a " + difference.after;
    const std::string place = Place(difference);
    if (difference.change == Change::Changed) {
        return "~ " + place + " " + difference.field + ": " + Quoted(difference.before) + " -> " +
               Quoted(difference.after);
    }
    const bool isAdded = difference.change == Change::Added;
    const std::string sign = isAdded ? "+ " : "- ";
    if (!difference.hasEntry) return sign + place;
    return sign + place + " " + difference.field + ": " +
           Quoted(isAdded ? difference.after : difference.before);
}

Json JsonOf(const Difference& difference) {
    constexpr const char* kChanges[] = {"added", "removed", "changed"};
    Json json = Json::object();
    json["change"] = kChanges[static_cast<int>(difference.change)];
    json["section"] = difference.table;
    if (difference.hasEntry) json["entry"] = difference.entry;
    if (difference.occurrence > 1) json["occurrence"] = difference.occurrence;
    if (difference.change == Change::Changed) json["field"] = difference.field;
    if (difference.hasEntry && difference.change != Change::Changed) json["type"] = difference.field;
    if (difference.change == Change::Changed || difference.hasEntry) {
        if (difference.change != Change::Added) json["before"] = difference.before;
        if (difference.change != Change::Removed) json["after"] = difference.after;
    }
    return json;
}

void Diff(const DiffArguments& arguments, Session& session) {
    const SourceFile before(arguments.before.path, arguments.before.ForcedForm());
    before.RequireParsed();
    const SourceFile after(arguments.after, arguments.before.ForcedForm());
    after.RequireParsed();
    const std::vector<Difference> differences = CompareDocuments(ReadDocument(before), ReadDocument(after));
    Json json = Json::array();
    for (const Difference& difference : differences) {
        if (arguments.isJson) {
            json.push_back(JsonOf(difference));
        } else {
            session.Line(LineOf(difference));
        }
    }
    if (arguments.isJson) session.out += JsonText(json);
    if (!differences.empty()) session.code = ExitCode::kNotFound;
}

}  // namespace

void AddDiffVerb(CLI::App& app, Session& session) {
    const auto arguments = std::make_shared<DiffArguments>();
    CLI::App& diff =
        AddVerb(app, "diff", "What differs in meaning between two files; the exit code is 1 if anything does",
                "mox-xml diff old.xml new.xml\nmox-xml diff old.xml new.xml --json");
    AddFile(diff, arguments->before);
    diff.add_option("OTHER", arguments->after, "The other file")->required();
    AddJson(diff, arguments->isJson);
    diff.callback([arguments, &session] { Diff(*arguments, session); });
}

}  // namespace mox::tool
