// apply: makes many changes to a file, all or none.
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tools/change_list.h"
#include "tools/change_maker.h"
#include "tools/document_diff.h"
#include "tools/edited_file.h"
#include "tools/open_document.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct ApplyArguments {
    EditArguments edit{};
    std::string changes{};
    bool isDryRun = false;
};

void RunApply(const ApplyArguments& arguments, Output& output) {
    RefuseStdin(arguments.edit.file.path);
    const std::vector<RequestedChange> changes = ReadChanges(arguments.changes, ReadBytes(arguments.changes));
    EditedFile file(arguments.edit);
    const Document& after = PrepareChanges(file, changes);
    // A save of settings removes every "eud", which is no change that was asked for.
    const bool isTable = file.Before()->kind() == DocumentKind::Table;
    const std::vector<Difference> differences = CompareDocuments(*file.Before(), after, isTable);
    if (arguments.isDryRun) {
        for (const Difference& difference : differences)
            output.PrintLine(LineOf(difference));
        return;
    }
    if (differences.empty()) return;  // a save would change only the layout
    std::set<std::string> changedEud;
    for (const RequestedChange& change : changes) {
        if (change.field == "eud") changedEud.insert(change.entry);
    }
    file.Write(output, changedEud);
}

}  // namespace

void AddApplyVerb(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<ApplyArguments>();
    CLI::App& apply = AddVerb(app, "apply", "Make the changes that \"diff --json\" prints, all or none",
                              "mox-xml apply camera.xml changes.json --dry-run\n"
                              "mox-xml diff old.xml new.xml --json | mox-xml apply camera.xml -");
    arguments->edit.AddTo(apply);
    apply.add_option("CHANGES", arguments->changes, "A file with the changes as JSON; \"-\" is stdin")
        ->required();
    apply.add_flag("--dry-run", arguments->isDryRun, "Print what would change, and change nothing");
    apply.callback([arguments, &output] { RunApply(*arguments, output); });
}

}  // namespace mox::tool
