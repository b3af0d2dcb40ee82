#include "tools/save_file.h"

#include <algorithm>

#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/platform/files.h"
#include "tools/exit_error.h"
#include "tools/system.h"

namespace mox::tool {
namespace {

void RequireReplaced(bool isReplaced, const std::string& path) {
    if (!isReplaced) throw ExitError(ExitCode::kIoError, path + ": cannot replace the file; it is unchanged");
}

void WriteBackup(const std::string& path) {
    if (!CopyFileTo(path, path + ".bak"))
        throw ExitError(ExitCode::kIoError, path + ".bak: cannot write the backup; nothing was changed");
}

}  // namespace

// The library reads the bytes from 0x80 on as U+FF80 to U+FFFF, and writes these as the bytes again.
bool FitsNarrowForm(wchar16 unit) noexcept {
    return unit < 0x80 || (unit & 0xFFFF) >= 0xFF80;
}

void RequireStorable(const std::string& path, Form form, const std::vector<std::string>& texts) {
    if (form == Form::Wide) return;
    for (const std::string& text : texts) {
        const mox::Text wide(text);
        if (std::all_of(wide.units().begin(), wide.units().end(), FitsNarrowForm)) continue;
        throw ExitError(ExitCode::kIoError, path + ": a narrow file cannot store " + Quoted(text) +
                                                " (see \"mox-xml convert --wide\")");
    }
}

void SaveProfile(const Profile& profile, const std::string& path, Form form, bool withBackup) {
    if (withBackup) WriteBackup(path);
    RequireReplaced(profile.saveReplacing(path, form), path);
}

void SaveTable(const Table& table, const std::string& path, bool withBackup) {
    if (withBackup) WriteBackup(path);
    RequireReplaced(table.saveReplacing(path), path);
}

void SaveBytes(const std::string& bytes, const std::string& path, bool withBackup) {
    if (withBackup) WriteBackup(path);
    const auto write = [&bytes](const wchar16* temporary) {
        OutputFile file(temporary);
        return file.Write(bytes.data(), bytes.size()) && file.Close();
    };
    RequireReplaced(front::ReplaceWholeFile(path, write), path);
}

}  // namespace mox::tool
