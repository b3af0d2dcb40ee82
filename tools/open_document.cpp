#include "tools/open_document.h"

#include <utility>

#include "mox_xmlApi/disk/read_file.hpp"
#include "tools/exit_error.h"
#include "tools/import_hint.h"

namespace mox::tool {
namespace {

[[noreturn]] void ThrowCannotOpen(const std::string& path) {
    throw ExitError(ExitCode::kIoError, path + ": cannot open the document");
}

[[noreturn]] void ThrowWrongKind(const std::string& path, const Document& document,
                                 const std::string& expected) {
    throw ExitError(ExitCode::kUsageError,
                    path + ": found a " + describe(document.kind()) + ", expected " + expected);
}

}  // namespace

std::string ReadBytes(const std::string& path, FileStamp* stamp) {
    Problem problem;
    std::optional<std::string> bytes = readFile(path, stamp, &problem);
    if (bytes.has_value()) return std::move(*bytes);
    // The system's errors say what failed; the others say what the file is.
    const bool isBySystem = problem.reason == Reason::NotFound || problem.reason == Reason::NoPermission ||
                            problem.reason == Reason::ReadFailed;
    const char* const what = isBySystem ? ": " : ": cannot read the file: ";
    throw ExitError(ExitCode::kIoError, path + what + problem.message);
}

Document ParseDocument(const std::string& path, std::string_view bytes, std::optional<Form> form) {
    Problem problem;
    std::optional<Document> document = Document::parse(bytes, form, &problem);
    if (document.has_value()) {
        RequireReadEncoding(path, *document);
        return std::move(*document);
    }
    const std::string hint = problem.reason == Reason::Encoding ? ImportHint(bytes, form) : "";
    throw ExitError(ExitCode::kSyntaxError,
                    AtPosition(path, {problem.line, problem.column}, problem.message + hint));
}

Document ReadDocument(const std::string& path, std::optional<Form> form) {
    return ParseDocument(path, ReadBytes(path), form);
}

std::string AtPosition(const std::string& path, Position position, const std::string& message) {
    return path + ":" + std::to_string(position.line) + ":" + std::to_string(position.column) + ": " +
           message;
}

void RequireSettings(const std::string& path, const Document& document) {
    if (document.kind() == DocumentKind::Settings) return;
    ThrowWrongKind(path, document, "a settings document (see \"mox-xml check\")");
}

void RequireTable(const std::string& path, const Document& document) {
    if (document.kind() == DocumentKind::Table) return;
    ThrowWrongKind(path, document, "a table document (for a section of a settings document, use --section)");
}

Profile OpenProfile(const std::string& path, Form form) {
    OpenOptions options;
    options.form = form;
    options.anyDocument = true;  // the verbs decide which documents they change
    std::optional<Profile> profile = Profile::open(path, options);
    if (!profile.has_value()) ThrowCannotOpen(path);
    return std::move(*profile);
}

Table OpenTableDocument(const std::string& path, Form form) {
    if (form == Form::Narrow) {
        throw ExitError(ExitCode::kIoError,
                        path + ": a table document must be wide (see \"mox-xml convert --wide\")");
    }
    OpenOptions options;
    options.anyDocument = true;
    std::optional<Table> table = Table::open(path, "", options);
    if (!table.has_value()) ThrowCannotOpen(path);
    return std::move(*table);
}

}  // namespace mox::tool
