#include "tools/value_argument.h"

#include "tools/exit_error.h"
#include "tools/open_document.h"

namespace mox::tool {

void ValueArgument::AddTo(CLI::App& verb) {
    value_ = verb.add_option("VALUE", text_, "The value");
    verb.add_flag("--stdin", isStdin_, "Read the value from stdin");
    from_ = verb.add_option("--value-from", path_, "Read the value from this file");
}

bool ValueArgument::IsGiven() const {
    const int count = (value_->count() > 0 ? 1 : 0) + (from_->count() > 0 ? 1 : 0) + (isStdin_ ? 1 : 0);
    if (count > 1)
        throw ExitError(ExitCode::kUsageError, "VALUE, --stdin and --value-from exclude each other");
    return count == 1;
}

std::string ValueArgument::Read() const {
    if (value_->count() > 0) return text_;
    std::string text = ReadBytes(isStdin_ ? kStdinPath : path_);
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
        if (!text.empty() && text.back() == '\r') text.pop_back();
    }
    return text;
}

}  // namespace mox::tool
