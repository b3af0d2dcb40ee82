#include "tools/save_file.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "mox_xmlApi/document/text_format.h"
#include "tools/exit_error.h"

namespace mox::tool {
namespace {

// The bytes of a document to save; throws if there are none.
std::string Required(std::optional<std::string> bytes, const std::string& path, const Problem& problem) {
    if (bytes.has_value()) return *std::move(bytes);
    throw ExitError(ExitCode::kIoError, path + ": " + problem.message + "; nothing was changed");
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
    Problem problem;
    SaveBytes(Required(profile.toBytes(form, Content::Document, &problem), path, problem), path, withBackup);
}

void SaveTable(const Table& table, const std::string& path, bool withBackup) {
    Problem problem;
    SaveBytes(Required(table.toBytes(&problem), path, problem), path, withBackup);
}

void SaveBytes(const std::string& bytes, const std::string& path, bool withBackup) {
    ReplaceOptions options;
    if (withBackup) options.backup = Text(path + ".bak");
    Problem problem;
    if (replaceFile(path, bytes, options, nullptr, &problem)) return;
    const char* const rest = problem.reason == Reason::Changed ? "" : "; nothing was changed";
    throw ExitError(ExitCode::kIoError, problem.toString() + rest);
}

}  // namespace mox::tool
