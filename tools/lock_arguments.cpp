#include "tools/lock_arguments.h"

#include <chrono>

#include "mox_xmlApi/document/text_format.h"
#include "tools/exit_error.h"
#include "tools/open_document.h"
#include "tools/save_file.h"

namespace mox::tool {

void LockArguments::AddTo(CLI::App& verb) {
    CLI::Option* const lock = verb.add_flag(
        "--lock", isWanted_, "Wait for other programs that lock the file, and let others wait for this one");
    timeout_ = verb.add_option("--lock-timeout", seconds_, "Seconds to wait with --lock; 30 by default");
    timeout_->needs(lock);
}

std::optional<FileLock> LockArguments::Acquire(const std::string& path) const {
    if (!isWanted_) return std::nullopt;
    Problem problem;
    std::optional<FileLock> lock = FileLock::acquire(path, std::chrono::seconds(seconds_), &problem);
    if (lock.has_value()) return lock;
    std::string waited;
    if (problem.reason == Reason::Busy)
        waited = "; gave up after " + Counted(seconds_, "second") + " (see --lock-timeout)";
    ThrowProblem(path, problem, (waited + kNothingChanged).c_str());
}

}  // namespace mox::tool
