#include "tools/saving.h"

#include <algorithm>
#include <utility>

#include "mox_xmlApi/platform/files.h"
#include "tools/outcome.h"
#include "tools/shown_text.h"
#include "tools/system.h"

namespace mox::tool {
namespace {

[[noreturn]] void FailToWrite(const std::string& path) {
    throw Stop(ExitCode::kNoAccess, path + ": the file cannot be replaced; it is as it was");
}

void Backup(const std::string& path, bool isWanted) {
    if (!isWanted) return;
    if (!CopyFileTo(path, path + ".bak"))
        throw Stop(ExitCode::kNoAccess, path + ".bak: the backup cannot be written; nothing was changed");
}

}  // namespace

Profile OpenProfile(const SourceFile& file) {
    std::optional<Profile> profile = Profile::open(file.Path(), file.GetForm());
    if (!profile.has_value())
        throw Stop(ExitCode::kNoAccess, file.Path() + ": the document cannot be opened");
    return std::move(*profile);
}

Table OpenTableDocument(const SourceFile& file) {
    if (file.GetForm() == Form::Narrow)
        throw Stop(ExitCode::kNoAccess,
                   file.Path() + ": a table document has to be wide; see \"mox-xml convert --wide\"");
    std::optional<Table> table = Table::open(file.Path());
    if (!table.has_value()) throw Stop(ExitCode::kNoAccess, file.Path() + ": the document cannot be opened");
    return std::move(*table);
}

void RequireSettings(const SourceFile& file, const DocumentModel& document) {
    if (document.kind == DocumentKind::Settings) return;
    throw Stop(ExitCode::kUsage, file.Path() + ": this is a " + KindName(document.kind) +
                                     ", and the verb wants a settings document; see \"mox-xml check\"");
}

void RequireTable(const SourceFile& file, const DocumentModel& document) {
    if (document.kind == DocumentKind::Table) return;
    throw Stop(ExitCode::kUsage, file.Path() + ": this is a " + KindName(document.kind) +
                                     ", and the verb wants a table document, or --section");
}

// Bytes from 0x80 on are read as the last units of all, and these are written as the bytes again.
bool IsKeptByNarrowForm(wchar16 unit) noexcept {
    return unit < 0x80 || (unit & 0xFFFF) >= 0xFF80;
}

void RequireKept(const std::string& path, Form form, std::initializer_list<std::string> texts) {
    if (form == Form::Wide) return;
    for (const std::string& text : texts) {
        const mox::Text wide(text);
        if (std::all_of(wide.units().begin(), wide.units().end(), IsKeptByNarrowForm)) continue;
        throw Stop(ExitCode::kNoAccess, path + ": the file is narrow and cannot keep " + Quoted(text) +
                                            "; see \"mox-xml convert --wide\"");
    }
}

void SaveProfile(const Profile& profile, const std::string& path, Form form, bool withBackup) {
    Backup(path, withBackup);
    if (!profile.saveReplacing(path, form)) FailToWrite(path);
}

void SaveTable(const Table& table, const std::string& path, bool withBackup) {
    Backup(path, withBackup);
    if (!table.saveReplacing(path)) FailToWrite(path);
}

void SaveBytes(const std::string& bytes, const std::string& path, bool withBackup) {
    Backup(path, withBackup);
    const auto write = [&bytes](const wchar16* temporary) {
        OutputFile file(temporary);
        return file.Write(bytes.data(), bytes.size()) && file.Close();
    };
    if (!front::ReplaceWholeFile(path, write)) FailToWrite(path);
}

}  // namespace mox::tool
