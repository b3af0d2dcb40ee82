// export: writes a part of a file to another one.
#include <memory>

#include "tools/command_line.h"
#include "tools/open_document.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct ExportArguments {
    FileArgument file{};
    std::string output{};
    bool isValues = false;
    bool isUi = false;
};

void RunExport(const ExportArguments& arguments) {
    if (arguments.isValues == arguments.isUi)
        throw ExitError(ExitCode::kUsageError, "export requires either --values or --ui");
    const Document document = ReadDocument(arguments.file.path, arguments.file.RequestedForm());
    RequireSettings(arguments.file.path, document);
    const Profile profile = OpenProfile(arguments.file.path, document.form());
    const Content content = arguments.isValues ? Content::Values : Content::Ui;
    SaveOptions options;
    options.form = document.form();
    options.content = content;
    options.overwrite = true;
    if (!profile.saveReplacing(arguments.output, options))
        throw ExitError(ExitCode::kIoError, arguments.output + ": cannot write the file");
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
    verb.callback([arguments] { RunExport(*arguments); });
}

}  // namespace

void AddFileVerbs(CLI::App& app, Output& /*output*/) {
    AddExport(app);
}

}  // namespace mox::tool
