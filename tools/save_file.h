// Writes files so that each is replaced as a whole or not at all, and tells what a narrow file cannot store.
#ifndef MOX_XMLAPI_TOOLS_SAVE_FILE_H
#define MOX_XMLAPI_TOOLS_SAVE_FILE_H

#include <string>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"

namespace mox::tool {

// Whether the unit reads back from a narrow file as it was.
bool FitsNarrowForm(wchar16 unit) noexcept;

// Throws ExitError (kIoError) if a file of that form cannot store one of the texts (UTF-8). The path is for the message.
void RequireStorable(const std::string& path, Form form, const std::vector<std::string>& texts);

// Each replaces the file at `path`, or creates it. With `withBackup` an old file is first copied to "<path>.bak". Throws
// ExitError (kIoError) on failure; the file is then unchanged. See disk/replace_file.hpp.
void SaveProfile(const Profile& profile, const std::string& path, Form form, bool withBackup);
void SaveTable(const Table& table, const std::string& path, bool withBackup);
void SaveBytes(const std::string& bytes, const std::string& path, bool withBackup);

}  // namespace mox::tool

#endif
