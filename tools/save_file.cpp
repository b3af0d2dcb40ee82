#include "tools/save_file.h"

#include "tools/exit_error.h"
#include "tools/open_document.h"

namespace mox::tool {

void ThrowUnsaved(const std::string& path, const Problem& problem) {
    if (problem.reason == Reason::Unconfirmed) ThrowProblem(path, problem);
    if (problem.file == path) ThrowProblem(path, problem, kNothingChanged);
    // The backup may be the new one.
    ThrowProblem(path, problem, ("; " + path + " was not changed").c_str());
}

void SaveBytes(const std::string& bytes, const std::string& path, const SaveArguments& arguments) {
    ReplaceOptions options;
    if (arguments.withBackup) options.backup = Text(path + ".bak");
    options.onlyIf = arguments.onlyIf;
    options.lock = arguments.lock;
    Problem problem;
    if (replaceFile(path, bytes, options, nullptr, &problem)) return;
    if (problem.reason != Reason::Changed) ThrowUnsaved(path, problem);
    const bool isNew = arguments.onlyIf != nullptr && !arguments.onlyIf->exists;
    if (isNew) throw ExitError(ExitCode::kIoError, path + ": the file exists; --overwrite replaces it");
    ThrowProblem(path, problem, arguments.onlyIf != nullptr ? " (see --overwrite)" : "");
}

}  // namespace mox::tool
