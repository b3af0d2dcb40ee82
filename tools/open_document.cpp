#include "tools/open_document.h"

#include <filesystem>
#include <utility>

#include "mox_xmlApi/disk/read_file.hpp"
#include "tools/exit_error.h"
#include "tools/import_hint.h"
#include "tools/input.h"

namespace mox::tool {
namespace {

[[noreturn]] void ThrowWrongKind(const std::string& path, const Document& document,
                                 const std::string& expected) {
    throw ExitError(ExitCode::kUsageError,
                    path + ": found a " + describe(document.kind()) + ", expected " + expected);
}

ExitCode CodeOf(Reason reason) noexcept {
    switch (reason) {
        case Reason::NoSuchSection:
        case Reason::NoSuchKey:
            return ExitCode::kNotFound;
        case Reason::WrongKind:
        case Reason::NameTaken:
            return ExitCode::kUsageError;
        default:
            return ExitCode::kIoError;
    }
}

}  // namespace

void RefuseStdin(const std::string& path) {
    if (path == kStdinPath)
        throw ExitError(ExitCode::kUsageError,
                        "\"-\" is stdin, which cannot be changed (a file of that name is \"./-\")");
}

std::string FileNameOf(const std::string& path) {
    const std::u8string name =
        std::filesystem::path(std::u8string(path.begin(), path.end())).filename().u8string();
    return {name.begin(), name.end()};
}

std::string ReadBytes(const std::string& path, FileStamp* stamp) {
    if (path == kStdinPath) return Input::ReadAll();
    Problem problem;
    std::optional<std::string> bytes = readFile(path, stamp, &problem);
    if (!bytes.has_value()) ThrowUnread(path, problem);
    return std::move(*bytes);
}

Document ReadDocument(const std::string& path, std::optional<Form> form) {
    return ParseDocument(path, ReadBytes(path), form);
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

void RequireSettingsOrTable(const std::string& path, const Document& document) {
    if (document.kind() == DocumentKind::Other) RequireSettings(path, document);
}

void ThrowProblem(const std::string& path, const Problem& problem, const char* rest) {
    Problem named = problem;
    if (named.file.empty()) named.file = path;
    throw ExitError(CodeOf(problem.reason), named.toString() + rest);
}

void ThrowUnread(const std::string& path, const Problem& problem) {
    // The system's errors say what failed; the others say what the file is.
    const bool isBySystem = problem.reason == Reason::NotFound || problem.reason == Reason::NoPermission ||
                            problem.reason == Reason::ReadFailed;
    const char* const what = isBySystem ? ": " : ": cannot read the file: ";
    throw ExitError(ExitCode::kIoError, path + what + problem.message);
}

}  // namespace mox::tool
