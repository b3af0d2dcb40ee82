#include "tools/open_document.h"

#include <optional>
#include <utility>

#include "tools/exit_error.h"

namespace mox::tool {
namespace {

[[noreturn]] void ThrowCannotOpen(const SourceFile& file) {
    throw ExitError(ExitCode::kIoError, file.Path() + ": cannot open the document");
}

[[noreturn]] void ThrowWrongKind(const SourceFile& file, const DocumentModel& document,
                                 const std::string& expected) {
    throw ExitError(ExitCode::kUsageError,
                    file.Path() + ": found a " + KindName(document.kind) + ", expected " + expected);
}

}  // namespace

void RequireSettings(const SourceFile& file, const DocumentModel& document) {
    if (document.kind == DocumentKind::Settings) return;
    ThrowWrongKind(file, document, "a settings document (see \"mox-xml check\")");
}

void RequireTable(const SourceFile& file, const DocumentModel& document) {
    if (document.kind == DocumentKind::Table) return;
    ThrowWrongKind(file, document, "a table document (for a section of a settings document, use --section)");
}

Profile OpenProfile(const SourceFile& file) {
    std::optional<Profile> profile = Profile::open(file.Path(), file.GetForm());
    if (!profile.has_value()) ThrowCannotOpen(file);
    return std::move(*profile);
}

Table OpenTableDocument(const SourceFile& file) {
    if (file.GetForm() == Form::Narrow) {
        throw ExitError(ExitCode::kIoError,
                        file.Path() + ": a table document must be wide (see \"mox-xml convert --wide\")");
    }
    std::optional<Table> table = Table::open(file.Path());
    if (!table.has_value()) ThrowCannotOpen(file);
    return std::move(*table);
}

}  // namespace mox::tool
