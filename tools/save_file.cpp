#include "tools/save_file.h"

#include "tools/open_document.h"

namespace mox::tool {

void SaveBytes(const std::string& bytes, const std::string& path, bool withBackup, const FileStamp* onlyIf) {
    ReplaceOptions options;
    if (withBackup) options.backup = Text(path + ".bak");
    options.onlyIf = onlyIf;
    Problem problem;
    if (replaceFile(path, bytes, options, nullptr, &problem)) return;
    const bool isUnsure = problem.message.find("the file was replaced, but") == 0;
    const char* const hint = onlyIf != nullptr && !isUnsure ? " (see --overwrite)" : "";
    ThrowProblem(path, problem, problem.reason == Reason::Changed ? hint : kNothingChanged);
}

}  // namespace mox::tool
