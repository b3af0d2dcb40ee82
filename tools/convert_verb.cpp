// convert: writes the text of a file in the other form, or imports one that is in another encoding.
#include <algorithm>
#include <memory>
#include <utility>

#include "mox_xmlApi/document/text_format.h"
#include "tools/command_line.h"
#include "tools/import_hint.h"
#include "tools/lock_arguments.h"
#include "tools/open_document.h"
#include "tools/save_file.h"
#include "tools/system.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct ConvertArguments {
    std::string path{};
    std::string output{};
    std::string from{};
    bool isWide = false;
    bool isNarrow = false;
    bool isLossy = false;
    bool withBackup = false;
    bool mayOverwrite = false;
    LockArguments lock{};
};

// The encoding to import from; nullopt if --from names a form, or is not given.
std::optional<Encoding> EncodingToImport(const std::string& from, std::string_view bytes) {
    if (from == "utf-8") return Encoding::Utf8;
    if (from == "latin1") return Encoding::Latin1;
    if (from != "utf-16") return std::nullopt;
    return detectEncoding(bytes).encoding == Encoding::Utf16Be ? Encoding::Utf16Be : Encoding::Wide;
}

// The bytes of a wide file with the text of this one.
std::string Import(const std::string& path, std::string_view bytes, Encoding from) {
    Problem problem;
    std::optional<std::string> wide = importText(bytes, from, Form::Wide, &problem);
    if (wide.has_value()) return *std::move(wide);
    throw ExitError(ExitCode::kSyntaxError,
                    AtPosition(path, {problem.line, problem.column}, problem.message + ImportHint(bytes)));
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

// Whether the unit reads back from a narrow file as it was: the library reads the bytes from 0x80 on as U+FF80 to
// U+FFFF, and writes these as the bytes again.
bool FitsNarrow(wchar16 unit) noexcept {
    return unit < 0x80 || (unit & 0xFFFF) >= 0xFF80;
}

// Throws ExitError unless a narrow file can store the whole text.
void RequireLossless(const std::string& path, const Document& document) {
    const WideView text = document.units();
    const auto lost = std::find_if_not(text.begin(), text.end(), FitsNarrow);
    if (lost == text.end()) return;
    throw ExitError(
        ExitCode::kIoError,
        AtPosition(path, document.positionAt(static_cast<std::size_t>(lost - text.begin())),
                   "a narrow file cannot store this character (--lossy keeps only its low byte)"));
}

// Throws ExitError if the file has text after the zero that ends it.
void RequireWhole(const std::string& path, const Document& document) {
    const std::size_t unread = document.encoding().unreadBytes;
    if (unread == 0) return;
    throw ExitError(ExitCode::kIoError, AtPosition(path, document.positionAt(document.units().size()),
                                                   "the text ends here, before " + Counted(unread, "byte") +
                                                       " other than zero (--lossy drops them)"));
}

void WarnOfHighBytes(const std::string& path, const Document& document, Output& output) {
    const auto isNonAscii = [](wchar16 unit) { return unit >= 0x80; };
    if (std::none_of(document.units().begin(), document.units().end(), isNonAscii)) return;
    output.PrintMessage(path +
                        ": warning: the bytes from 0x80 on become U+FF80 to U+FFFF, as the library reads "
                        "them" +
                        ImportHint(document.encoding().encoding));
}

void RunConvert(const ConvertArguments& arguments, Output& output) {
    if (arguments.path == kStdinPath && arguments.output.empty())
        throw ExitError(ExitCode::kUsageError, "stdin requires an OUTPUT (a file named \"-\" is \"./-\")");
    const std::string& target = arguments.output.empty() ? arguments.path : arguments.output;
    const std::optional<FileLock> lock = arguments.lock.Acquire(target);
    FileStamp stamp;
    const std::string bytes = ReadBytes(arguments.path, &stamp);
    const std::optional<Encoding> encoding = EncodingToImport(arguments.from, bytes);
    if (arguments.isWide == arguments.isNarrow && (arguments.isWide || !encoding.has_value()))
        throw ExitError(ExitCode::kUsageError, "convert requires either --wide or --narrow");
    std::optional<Form> from;
    if (encoding.has_value() || arguments.from == "wide") from = Form::Wide;
    if (arguments.from == "narrow") from = Form::Narrow;
    const Document document =
        encoding.has_value() ? ParseDocument(arguments.path, Import(arguments.path, bytes, *encoding), from)
                             : ParseDocument(arguments.path, bytes, from);
    if (arguments.isNarrow && document.kind() == DocumentKind::Table)
        throw ExitError(ExitCode::kUsageError, arguments.path + ": a table document must be wide");
    if (!arguments.isLossy) RequireWhole(arguments.path, document);
    if (arguments.isNarrow && !arguments.isLossy) RequireLossless(arguments.path, document);
    if (!arguments.isNarrow && document.form() == Form::Narrow)
        WarnOfHighBytes(arguments.path, document, output);
    const bool isInPlace = arguments.output.empty() || IsSameFile(arguments.path, arguments.output);
    const FileStamp missing;
    SaveArguments save;
    save.withBackup = arguments.withBackup;
    if (!arguments.mayOverwrite) save.onlyIf = isInPlace ? &stamp : &missing;
    if (lock.has_value()) save.lock = &*lock;
    SaveBytes(BytesOf(document.units(), arguments.isNarrow ? Form::Narrow : Form::Wide), target, save);
}

}  // namespace

void AddConvertVerb(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<ConvertArguments>();
    CLI::App& verb =
        AddVerb(app, "convert",
                "Convert a file to the wide or the narrow form, or import another encoding, and change "
                "nothing else",
                "mox-xml convert --wide camera.xml --backup\n"
                "mox-xml convert --narrow camera.xml narrow.xml\n"
                "mox-xml convert --from utf-8 edited.xml camera.xml --overwrite --backup");
    verb.add_option("FILE", arguments->path, "The file")->required();
    verb.add_option("OUTPUT", arguments->output, "The file to write; FILE itself by default");
    verb.add_flag("--wide", arguments->isWide,
                  "Write two bytes per unit, for any text; the default of an import");
    verb.add_flag("--narrow", arguments->isNarrow, "Write one byte per unit, for ASCII text");
    verb.add_option("--from", arguments->from,
                    "The form that FILE has, or the encoding to import; do not detect it")
        ->check(CLI::IsMember({"wide", "narrow", "utf-8", "utf-16", "latin1"}));
    verb.add_flag("--lossy", arguments->isLossy,
                  "Drop text after a zero; with --narrow, keep only the low byte of other characters");
    verb.add_flag("--overwrite", arguments->mayOverwrite,
                  "Replace an existing OUTPUT, and a FILE that has changed meanwhile");
    verb.add_flag("--backup", arguments->withBackup,
                  "Keep the file that is replaced, with \".bak\" appended");
    arguments->lock.AddTo(verb);
    verb.callback([arguments, &output] { RunConvert(*arguments, output); });
}

}  // namespace mox::tool
