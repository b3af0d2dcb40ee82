#include "mox_xmlApi/document/encoding.hpp"

#include <algorithm>

#include "mox_xmlApi/document/encoded_bytes.h"
#include "mox_xmlApi/document/text_format.h"

namespace mox {
namespace {

// A document begins with "<" or white space, so the second byte of a wide one is zero. A byte-order mark of UTF-16 counts,
// too: such a file does not parse, but the error should name the mark. An empty file has either form.
bool LooksWide(std::string_view bytes) noexcept {
    if (bytes.empty()) return true;
    if (bytes.size() == 1) return false;
    return bytes[1] == '\0' || bytes.starts_with(kUtf16LeMark) || bytes.starts_with(kUtf16BeMark);
}

// The high byte comes first of what a document begins with, and of an ASCII character after that.
bool LooksBigEndian(std::string_view bytes) noexcept {
    if (bytes.size() < 2 || bytes[0] != '\0') return false;
    if (std::string_view("< \t\r\n").find(bytes[1]) == std::string_view::npos) return false;
    return bytes.size() < 4 || (bytes[2] == '\0' && bytes[3] != '\0');
}

// The bytes before the first zero unit, or all whole units.
std::size_t TextSize(std::string_view bytes, Form form) noexcept {
    if (form == Form::Narrow) return std::min(bytes.find('\0'), bytes.size());
    std::size_t size = 0;
    while (size + 1 < bytes.size() && (bytes[size] != '\0' || bytes[size + 1] != '\0'))
        size += 2;
    return size;
}

// Without a byte-order mark.
Encoding EncodingOfNarrow(std::string_view text) noexcept {
    if (std::none_of(text.begin(), text.end(), IsBeyondAscii)) return Encoding::Narrow;
    return FindBadUtf8(text).has_value() ? Encoding::Latin1 : Encoding::Utf8;
}

// Without a byte-order mark.
std::string NameOf(Encoding encoding) {
    switch (encoding) {
        case Encoding::Narrow:
            return "7-bit text";
        case Encoding::Wide:
            return "UTF-16 with the low byte first";
        case Encoding::Utf8:
            return "UTF-8";
        case Encoding::Latin1:
            return "8-bit text other than UTF-8";
        case Encoding::Utf16Be:
            return "UTF-16 with the high byte first";
        case Encoding::Zeros:
            break;
    }
    return "nothing but zeros";
}

}  // namespace

EncodingReport detectEncoding(std::string_view bytes, std::optional<Form> form) noexcept {
    EncodingReport report;
    report.form = form.value_or(LooksWide(bytes) ? Form::Wide : Form::Narrow);
    report.textSize = TextSize(bytes, report.form);
    const std::string_view text = bytes.substr(0, report.textSize);
    const std::string_view rest = bytes.substr(report.textSize);
    report.unreadBytes = rest.size() - static_cast<std::size_t>(std::count(rest.begin(), rest.end(), '\0'));
    report.encoding = Encoding::Wide;
    if (bytes.starts_with(kUtf16LeMark) || bytes.starts_with(kUtf16BeMark)) {
        report.hasByteOrderMark = true;
        if (bytes.starts_with(kUtf16BeMark)) report.encoding = Encoding::Utf16Be;
    } else if (bytes.starts_with(kUtf8Mark)) {
        report.hasByteOrderMark = true;
        report.encoding = Encoding::Utf8;
    } else if (!bytes.empty() && text.empty() && report.unreadBytes == 0 && bytes[0] == '\0') {
        report.encoding = Encoding::Zeros;
    } else if (LooksBigEndian(bytes)) {
        report.encoding = Encoding::Utf16Be;
    } else if (report.form == Form::Narrow) {
        report.encoding = EncodingOfNarrow(text);
    }
    return report;
}

std::string describe(const EncodingReport& report) {
    std::string text = NameOf(report.encoding);
    const bool isUtf16 = report.encoding == Encoding::Wide || report.encoding == Encoding::Utf16Be;
    if (report.hasByteOrderMark) text += isUtf16 ? " and a byte-order mark" : " with a byte-order mark";
    if (report.unreadBytes != 0 && report.encoding != Encoding::Utf16Be)
        text += " that ends after " + Counted(report.textSize, "byte") + ", before " +
                Counted(report.unreadBytes, "byte") + " other than zero";
    return text;
}

}  // namespace mox
