#include "tools/import_hint.h"

#include "tools/exit_error.h"
#include "tools/open_document.h"

namespace mox::tool {

std::string ImportHint(Encoding encoding) {
    const char* from = nullptr;
    switch (encoding) {
        case Encoding::Utf8:
            from = "utf-8";
            break;
        case Encoding::Latin1:
            from = "latin1";
            break;
        case Encoding::Wide:
        case Encoding::Utf16Be:
            from = "utf-16";
            break;
        case Encoding::Narrow:
        case Encoding::Zeros:
            return "";
    }
    return std::string(" (see \"mox-xml convert --from ") + from + "\")";
}

std::string ImportHint(std::string_view bytes, std::optional<Form> form) {
    const EncodingReport report = detectEncoding(bytes, form);
    const bool isDocument = report.encoding == Encoding::Narrow || report.encoding == Encoding::Wide;
    return isDocument && !report.hasByteOrderMark ? "" : ImportHint(report.encoding);
}

void RequireReadEncoding(const std::string& path, const Document& document) {
    const EncodingReport& report = document.encoding();
    if (report.encoding != Encoding::Utf16Be && report.encoding != Encoding::Zeros) return;
    throw ExitError(
        ExitCode::kSyntaxError,
        AtPosition(path, Position(), "the text is " + describe(report) + ImportHint(report.encoding)));
}

}  // namespace mox::tool
