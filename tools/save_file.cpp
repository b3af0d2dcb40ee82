#include "tools/save_file.h"

#include "tools/exit_error.h"
#include "tools/open_document.h"

namespace mox::tool {

bool IsConflict(const std::string& path, const Problem& problem) noexcept {
    return problem.reason == Reason::Changed && problem.file == path &&
           problem.message.find("the file was replaced, but") != 0;
}

void ThrowUnsaved(const std::string& path, const Problem& problem) {
    if (problem.reason != Reason::Changed) ThrowProblem(path, problem, kNothingChanged);
    if (problem.file != path) ThrowProblem(path, problem, ("; " + path + " was not changed").c_str());
    ThrowProblem(path, problem);
}

void SaveBytes(const std::string& bytes, const std::string& path, const SaveArguments& arguments) {
    ReplaceOptions options;
    if (arguments.withBackup) options.backup = Text(path + ".bak");
    options.onlyIf = arguments.onlyIf;
    options.lock = arguments.lock;
    Problem problem;
    if (replaceFile(path, bytes, options, nullptr, &problem)) return;
    if (!IsConflict(path, problem)) ThrowUnsaved(path, problem);
    const bool isNew = arguments.onlyIf != nullptr && !arguments.onlyIf->exists;
    if (isNew) throw ExitError(ExitCode::kIoError, path + ": the file exists; --overwrite replaces it");
    ThrowProblem(path, problem, arguments.onlyIf != nullptr ? " (see --overwrite)" : "");
}

}  // namespace mox::tool
