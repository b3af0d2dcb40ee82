#include "tools/output.h"

#include "tools/terminal_text.h"

namespace mox::tool {

void Output::PrintItem(const std::string& text, char end) {
    const bool isExact = isZeroTerminated || !isTerminal_;
    data_.append(isExact ? text : EscapedLine(text)) += end;
}

void Output::PrintLine(const std::string& text) {
    PrintItem(text, isZeroTerminated ? '\0' : '\n');
}

void Output::PrintFields(const std::vector<std::string>& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const char lineEnd = i + 1 < fields.size() ? '\t' : '\n';
        PrintItem(fields[i], isZeroTerminated ? '\0' : lineEnd);
    }
}

void Output::PrintLines(const std::string& lines) {
    data_ += isTerminal_ ? EscapedLines(lines) : lines;
}

void Output::PrintMessage(const std::string& text) {
    messages_.append("mox-xml: ").append(EscapedLine(text)).append("\n");
}

}  // namespace mox::tool
