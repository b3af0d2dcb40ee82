// Saves of the exports, which write to a file by its name, as replacements of whole files.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_REPLACING_SAVE_HPP
#define MOX_XMLAPI_FRONT_REPLACING_SAVE_HPP

#include <optional>
#include <string>

#include "mox_xmlApi/disk/replace_file.hpp"
#include "mox_xmlApi/disk/scratch_file.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox::front {

// Replaces the file at `path`, or creates it. `write(scratch)` has to write the new content to the file of that name,
// which is private to this process, and to return whether that succeeded. Returns whether the new file is in place.
// What `write` throws passes through, and the old file is unchanged.
template <class Write>
bool ReplaceBySave(const Text& path, Write write, Problem* problem = nullptr) {
    std::optional<ScratchFile> scratch = ScratchFile::create(problem);
    if (!scratch.has_value()) return false;
    if (!write(scratch->path()))
        return Fail(problem, Reason::WriteFailed, "cannot write to a temporary file");
    const std::optional<std::string> bytes = scratch->read(problem);
    return bytes.has_value() && replaceFile(path, *bytes, {}, nullptr, problem);
}

}  // namespace mox::front

#endif
