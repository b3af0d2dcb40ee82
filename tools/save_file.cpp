#include "tools/save_file.h"

#include "tools/exit_error.h"
#include "tools/open_document.h"

namespace mox::tool {

void SaveBytes(const std::string& bytes, const std::string& path, const SaveArguments& arguments) {
    ReplaceOptions options;
    if (arguments.withBackup) options.backup = Text(path + ".bak");
    options.onlyIf = arguments.onlyIf;
    options.lock = arguments.lock;
    Problem problem;
    if (replaceFile(path, bytes, options, nullptr, &problem)) return;
    const bool isNew = arguments.onlyIf != nullptr && !arguments.onlyIf->exists;
    if (problem.reason == Reason::Changed && isNew) {
        throw ExitError(ExitCode::kIoError, path + ": the file exists; --overwrite replaces it");
    }
    const bool isUnsure = problem.message.find("the file was replaced, but") == 0;
    const char* const hint = arguments.onlyIf != nullptr && !isUnsure ? " (see --overwrite)" : "";
    ThrowProblem(path, problem, problem.reason == Reason::Changed ? hint : kNothingChanged);
}

}  // namespace mox::tool
