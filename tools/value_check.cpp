#include "tools/value_check.h"

#include "mox_xmlApi/document/entry_check.h"
#include "mox_xmlApi/document/text_format.h"
#include "tools/exit_error.h"
#include "tools/save_file.h"

namespace mox::tool {

void ValueCheck::AddTo(CLI::App& verb) {
    verb.add_flag("--strict", isStrict_,
                  "Refuse a value that does not suit the type, the minimum and maximum, or the control");
}

void ValueCheck::Run(const std::string& path, const DocumentEntry& entry, Output& output) const {
    CheckValue(entry, " " + QuotedIfNeeded(entry.name), [&](DocumentNode, const std::string& message) {
        if (isStrict_) throw ExitError(ExitCode::kIoError, path + ": " + message + kNothingChanged);
        output.PrintMessage(path + ": warning: " + message);
    });
}

}  // namespace mox::tool
