// export, convert: other forms of a whole file.
#include <algorithm>
#include <memory>

#include "tools/command_line.h"
#include "tools/document_model.h"
#include "tools/saving.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct ExportArguments {
    FileArgument file{};
    std::string output{};
    bool isValues = false;
    bool isUi = false;
};

struct ConvertArguments {
    std::string path{};
    std::string output{};
    std::string from{};
    bool isWide = false;
    bool isNarrow = false;
    bool mayLose = false;
    bool withBackup = false;
};

void Export(const ExportArguments& arguments) {
    if (arguments.isValues == arguments.isUi)
        throw Stop(ExitCode::kUsage, "export wants one of --values and --ui");
    const SourceFile file(arguments.file.path, arguments.file.ForcedForm());
    file.RequireParsed();
    RequireSettings(file, ReadDocument(file));
    const Profile profile = OpenProfile(file);
    const Content content = arguments.isValues ? Content::Values : Content::Ui;
    if (!profile.saveReplacing(arguments.output, file.GetForm(), content))
        throw Stop(ExitCode::kNoAccess, arguments.output + ": the file cannot be written");
}

// The text in the other form, followed by its zero.
std::string BytesOf(WideView text, Form form) {
    std::string bytes;
    const std::size_t unitSize = form == Form::Wide ? 2 : 1;
    bytes.reserve((text.size() + 1) * unitSize);
    const auto put = [&bytes, form](wchar16 unit) {
        bytes += static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
        if (form == Form::Wide) bytes += static_cast<char>(static_cast<unsigned char>((unit >> 8) & 0xFF));
    };
    for (const wchar16 unit : text)
        put(unit);
    put(0);
    return bytes;
}

void RefuseLosses(const SourceFile& file) {
    const WideView text = file.Text();
    const auto lost = std::find_if_not(text.begin(), text.end(), IsKeptByNarrowForm);
    if (lost == text.end()) return;
    throw Stop(ExitCode::kNoAccess,
               AtPosition(file, file.PositionAt(static_cast<std::size_t>(lost - text.begin())),
                          "the narrow form cannot keep this character; --lossy cuts it and all others"));
}

void Convert(const ConvertArguments& arguments, Session& session) {
    if (arguments.isWide == arguments.isNarrow)
        throw Stop(ExitCode::kUsage, "convert wants one of --wide and --narrow");
    std::optional<Form> from;
    if (!arguments.from.empty()) from = arguments.from == "wide" ? Form::Wide : Form::Narrow;
    const SourceFile file(arguments.path, from);
    file.RequireParsed();
    if (arguments.isNarrow && ReadDocument(file).kind == DocumentKind::Table)
        throw Stop(ExitCode::kUsage, file.Path() + ": a table document is always wide");
    if (arguments.isNarrow && !arguments.mayLose) RefuseLosses(file);
    const auto isHigh = [](wchar16 unit) { return unit >= 0x80; };
    if (arguments.isWide && file.GetForm() == Form::Narrow &&
        std::any_of(file.Text().begin(), file.Text().end(), isHigh)) {
        session.Message("mox-xml: " + file.Path() +
                        ": bytes from 0x80 on have become U+FF80 to U+FFFF, as the library reads them");
    }
    const std::string& output = arguments.output.empty() ? arguments.path : arguments.output;
    SaveBytes(BytesOf(file.Text(), arguments.isWide ? Form::Wide : Form::Narrow), output,
              arguments.withBackup && arguments.output.empty());
}

void AddExport(CLI::App& app) {
    const auto arguments = std::make_shared<ExportArguments>();
    CLI::App& verb = AddVerb(app, "export", "Write the values of a settings file, or its presentation data",
                             "mox-xml export camera.xml values.xml --values\n"
                             "mox-xml export camera.xml ui.xml --ui");
    AddFile(verb, arguments->file);
    verb.add_option("OUTPUT", arguments->output, "The file to write; it takes the form of FILE")->required();
    verb.add_flag("--values", arguments->isValues, "Names, types and values of all entries");
    verb.add_flag("--ui", arguments->isUi, "Presentation data of all entries");
    verb.callback([arguments] { Export(*arguments); });
}

void AddConvert(CLI::App& app, Session& session) {
    const auto arguments = std::make_shared<ConvertArguments>();
    CLI::App& verb =
        AddVerb(app, "convert", "Change between two bytes and one byte per unit, and nothing else",
                "mox-xml convert --wide camera.xml --backup\n"
                "mox-xml convert --narrow camera.xml narrow.xml");
    verb.add_option("FILE", arguments->path, "The file")->required();
    verb.add_option("OUTPUT", arguments->output, "The file to write; none: FILE itself");
    verb.add_flag("--wide", arguments->isWide, "Two bytes per unit, for any text");
    verb.add_flag("--narrow", arguments->isNarrow, "One byte per unit, for ASCII text");
    verb.add_option("--from", arguments->from, "The form that FILE has, when it is taken for the other")
        ->check(CLI::IsMember({"wide", "narrow"}));
    verb.add_flag("--lossy", arguments->mayLose, "With --narrow: cut what one byte cannot hold");
    AddBackup(verb, arguments->withBackup);
    verb.callback([arguments, &session] { Convert(*arguments, session); });
}

}  // namespace

void AddFileVerbs(CLI::App& app, Session& session) {
    AddExport(app);
    AddConvert(app, session);
}

}  // namespace mox::tool
