// export, convert: write a whole file in another way.
#include <algorithm>
#include <memory>

#include "mox_xmlApi/platform/wide_text.h"
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

struct ConvertArguments {
    std::string path{};
    std::string output{};
    std::string from{};
    bool isWide = false;
    bool isNarrow = false;
    bool isLossy = false;
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
    SaveBytes(*exported, arguments.output, arguments.withBackup);
}

// Whether the unit reads back from a narrow file as it was. The library reads the bytes from 0x80 on as U+FF80 to U+FFFF,
// and writes these as the bytes again.
bool FitsNarrowForm(wchar16 unit) noexcept {
    return unit < 0x80 || (unit & 0xFFFF) >= 0xFF80;
}

// The bytes of a file with this text, terminated by a zero unit.
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

// Throws ExitError unless a narrow file can store the whole text.
void RequireLossless(const std::string& path, const Document& document) {
    const WideView text = document.units();
    const auto lost = std::find_if_not(text.begin(), text.end(), FitsNarrowForm);
    if (lost == text.end()) return;
    throw ExitError(
        ExitCode::kIoError,
        AtPosition(path, document.positionAt(static_cast<std::size_t>(lost - text.begin())),
                   "a narrow file cannot store this character (--lossy keeps only its low byte)"));
}

void RunConvert(const ConvertArguments& arguments, Output& output) {
    if (arguments.isWide == arguments.isNarrow)
        throw ExitError(ExitCode::kUsageError, "convert requires either --wide or --narrow");
    std::optional<Form> from;
    if (!arguments.from.empty()) from = arguments.from == "wide" ? Form::Wide : Form::Narrow;
    const Document document = ReadDocument(arguments.path, from);
    if (arguments.isNarrow && document.kind() == DocumentKind::Table)
        throw ExitError(ExitCode::kUsageError, arguments.path + ": a table document must be wide");
    if (arguments.isNarrow && !arguments.isLossy) RequireLossless(arguments.path, document);
    const auto isNonAscii = [](wchar16 unit) { return unit >= 0x80; };
    if (arguments.isWide && document.form() == Form::Narrow &&
        std::any_of(document.units().begin(), document.units().end(), isNonAscii)) {
        output.PrintMessage(
            arguments.path +
            ": warning: the bytes from 0x80 on become U+FF80 to U+FFFF, as the library reads them");
    }
    const std::string& target = arguments.output.empty() ? arguments.path : arguments.output;
    SaveBytes(BytesOf(document.units(), arguments.isWide ? Form::Wide : Form::Narrow), target,
              arguments.withBackup && arguments.output.empty());
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

void AddConvert(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<ConvertArguments>();
    CLI::App& verb = AddVerb(app, "convert",
                             "Convert a file between the wide and the narrow form, and change nothing else",
                             "mox-xml convert --wide camera.xml --backup\n"
                             "mox-xml convert --narrow camera.xml narrow.xml");
    verb.add_option("FILE", arguments->path, "The file")->required();
    verb.add_option("OUTPUT", arguments->output, "The file to write; FILE itself by default");
    verb.add_flag("--wide", arguments->isWide, "Write two bytes per unit, for any text");
    verb.add_flag("--narrow", arguments->isNarrow, "Write one byte per unit, for ASCII text");
    verb.add_option("--from", arguments->from, "The form that FILE has; do not detect it")
        ->check(CLI::IsMember({"wide", "narrow"}));
    verb.add_flag("--lossy", arguments->isLossy, "With --narrow: keep only the low byte of other characters");
    AddBackupOption(verb, arguments->withBackup);
    verb.callback([arguments, &output] { RunConvert(*arguments, output); });
}

}  // namespace

void AddFileVerbs(CLI::App& app, Output& output) {
    AddExport(app);
    AddConvert(app, output);
}

}  // namespace mox::tool
