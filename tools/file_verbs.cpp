// export: writes a part of a file to another one.
#include <memory>

#include "tools/command_line.h"
#include "tools/open_document.h"
#include "tools/save_file.h"
#include "tools/system.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct ExportArguments {
    FileArgument file{};
    std::string output{};
    bool isValues = false;
    bool isUi = false;
    bool withBackup = false;
};

void RunExport(const ExportArguments& arguments) {
    if (arguments.isValues == arguments.isUi)
        throw ExitError(ExitCode::kUsageError, "export requires either --values or --ui");
    const std::string& path = arguments.file.path;
    const std::string bytes = ReadBytes(path);
    const Document document = ParseDocument(path, bytes, arguments.file.RequestedForm());
    RequireSettings(path, document);
    if (IsSameFile(path, arguments.output))
        throw ExitError(ExitCode::kUsageError, arguments.output + ": the output would replace FILE itself");
    OpenOptions options;
    options.form = document.form();
    Problem problem;
    const std::optional<Profile> profile = Profile::parse(bytes, options, &problem);
    if (!profile.has_value()) ThrowProblem(path, problem);
    const Content content = arguments.isValues ? Content::Values : Content::Ui;
    const std::optional<std::string> exported = profile->toBytes(document.form(), content, &problem);
    if (!exported.has_value()) ThrowProblem(path, problem);
    SaveArguments save;
    save.withBackup = arguments.withBackup;
    SaveBytes(*exported, arguments.output, save);
}

void AddExport(CLI::App& app) {
    const auto arguments = std::make_shared<ExportArguments>();
    CLI::App& verb =
        AddVerb(app, "export", "Write the values or the presentation data of a settings file to another file",
                "mox-xml export camera.xml values.xml --values\n"
                "mox-xml export camera.xml ui.xml --ui");
    AddFileArgument(verb, arguments->file);
    verb.add_option("OUTPUT", arguments->output, "The file to write, in the form of FILE")->required();
    verb.add_flag("--values", arguments->isValues, "Export the names, types and values of all entries");
    verb.add_flag("--ui", arguments->isUi, "Export the presentation data of all entries");
    verb.add_flag("--backup", arguments->withBackup, "Keep an old OUTPUT as OUTPUT.bak");
    verb.callback([arguments] { RunExport(*arguments); });
}

}  // namespace

void AddFileVerbs(CLI::App& app, Output& /*output*/) {
    AddExport(app);
}

}  // namespace mox::tool
