#include "tools/save_file.h"

#include "tools/open_document.h"

namespace mox::tool {

void SaveBytes(const std::string& bytes, const std::string& path, bool withBackup, const FileStamp* onlyIf) {
    ReplaceOptions options;
    if (withBackup) options.backup = Text(path + ".bak");
    options.onlyIf = onlyIf;
    Problem problem;
    if (replaceFile(path, bytes, options, nullptr, &problem)) return;
    ThrowProblem(path, problem, problem.reason == Reason::Changed ? " (see --overwrite)" : kNothingChanged);
}

}  // namespace mox::tool
