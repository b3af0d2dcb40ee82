// Writes files so that each is replaced as a whole or not at all.
#ifndef MOX_XMLAPI_TOOLS_SAVE_FILE_H
#define MOX_XMLAPI_TOOLS_SAVE_FILE_H

#include <string>

#include "mox_xmlApi/disk/replace_file.hpp"

namespace mox::tool {

// Ends the message of a failure.
inline constexpr const char* kNothingChanged = "; nothing was changed";

// Replaces the file at `path`, or creates it; see disk/replace_file.hpp. With `withBackup` an old file is first copied to
// "<path>.bak". Unless `onlyIf` is null, a file that is not in that state is not replaced. Throws ExitError (kIoError) on
// failure; the file is then unchanged.
void SaveBytes(const std::string& bytes, const std::string& path, bool withBackup,
               const FileStamp* onlyIf = nullptr);

}  // namespace mox::tool

#endif
