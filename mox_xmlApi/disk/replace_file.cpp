#include "mox_xmlApi/disk/replace_file.hpp"

#include "mox_xmlApi/disk/replace_on_system.h"
#include "mox_xmlApi/disk/system_problem.h"

namespace mox {
namespace {

bool IsPath(const Text& path) {
    return path.isValid() && !path.units().empty();
}

}  // namespace

bool replaceFile(const Text& path, std::string_view bytes, const ReplaceOptions& options, FileStamp* stamp,
                 Problem* problem) {
    if (!IsPath(path))
        return disk::FailFor(problem, path, Reason::InvalidText, "the path is empty or not valid");
    if (options.backup.has_value() && !IsPath(*options.backup)) {
        return disk::FailFor(problem, path, Reason::InvalidText,
                             "the path of the backup is empty or not valid; nothing has changed");
    }
    const disk::Deadline deadline(options.patience);
    FileStamp written;
    for (;;) {
        switch (disk::TryToReplace(path, bytes, options, deadline, written, problem)) {
            case disk::Outcome::Done:
                if (stamp != nullptr) *stamp = written;
                return front::Succeed(problem);
            case disk::Outcome::Unconfirmed:
                if (stamp != nullptr) *stamp = written;
                return false;
            case disk::Outcome::Failed:
                return false;
            case disk::Outcome::Again:
                if (!deadline.IsOver()) break;
                return disk::FailFor(problem, path, Reason::Busy, "other processes keep replacing the file");
        }
    }
}

}  // namespace mox
