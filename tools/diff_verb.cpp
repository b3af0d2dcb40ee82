// diff: compares the contents of two files.
#include <memory>

#include "tools/command_line.h"
#include "tools/json_output.h"
#include "tools/open_document.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct DiffArguments {
    FileArgument before{};
    std::string after{};
    bool isJson = false;
    bool withEud = false;
};

void RunDiff(const DiffArguments& arguments, Output& output) {
    const Document before = ReadDocument(arguments.before.path, arguments.before.RequestedForm());
    const Document after = ReadDocument(arguments.after, arguments.before.RequestedForm());
    const std::vector<Difference> differences = CompareDocuments(before, after, arguments.withEud);
    Json json = Json::array();
    for (const Difference& difference : differences) {
        if (arguments.isJson) {
            json.push_back(DifferenceJson(difference));
        } else {
            output.PrintLine(LineOf(difference));
        }
    }
    if (arguments.isJson) output.PrintLines(JsonText(json));
    if (!differences.empty()) output.code = ExitCode::kNotFound;
}

}  // namespace

void AddDiffVerb(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<DiffArguments>();
    CLI::App& diff =
        AddVerb(app, "diff", "Compare the contents of two files; the exit code is 1 if they differ",
                "mox-xml diff old.xml new.xml\nmox-xml diff old.xml new.xml --json >changes.json");
    AddFileArgument(diff, arguments->before);
    diff.add_option("OTHER", arguments->after, "The other file")->required();
    diff.add_flag("--eud", arguments->withEud, "Compare the attribute \"eud\", too, which saving removes");
    AddJsonOption(diff, arguments->isJson);
    diff.callback([arguments, &output] { RunDiff(*arguments, output); });
}

}  // namespace mox::tool
