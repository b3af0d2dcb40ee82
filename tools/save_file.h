// Writes files so that each is replaced as a whole or not at all.
#ifndef MOX_XMLAPI_TOOLS_SAVE_FILE_H
#define MOX_XMLAPI_TOOLS_SAVE_FILE_H

#include <string>

#include "mox_xmlApi/disk/file_lock.hpp"
#include "mox_xmlApi/disk/replace_file.hpp"

namespace mox::tool {

// Ends the message of a failure.
inline constexpr const char* kNothingChanged = "; nothing was changed";

struct SaveArguments {
    bool withBackup = false;            // copy an old file to "<path>.bak" before
    const FileStamp* onlyIf = nullptr;  // unless null, a file that is not in this state is not replaced
    const FileLock* lock = nullptr;     // the lock on the file, if the caller has locked it
};

// Ends the verb because replaceFile has failed with a problem that is no conflict (Reason::Changed). Throws ExitError;
// the message ends with what has become of the file, unless the problem says so.
[[noreturn]] void ThrowUnsaved(const std::string& path, const Problem& problem);

// Replaces the file at `path`, or creates it; see disk/replace_file.hpp. Throws ExitError (kIoError) on failure; the
// file is then unchanged, with one exception: if the message says that the file was replaced, the new file is in place.
void SaveBytes(const std::string& bytes, const std::string& path, const SaveArguments& arguments);

}  // namespace mox::tool

#endif
