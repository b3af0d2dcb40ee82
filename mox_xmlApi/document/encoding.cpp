#include "mox_xmlApi/document/encoding.hpp"

#include <algorithm>
#include <utility>

#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/document/text_units.h"
#include "mox_xmlApi/front/text.hpp"

namespace mox {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LeMark = "\xFF\xFE";
constexpr std::string_view kUtf16BeMark = "\xFE\xFF";

std::uint32_t ByteOf(char byte) noexcept {
    return static_cast<unsigned char>(byte);
}

bool IsBeyondAscii(char byte) noexcept {
    return ByteOf(byte) >= 0x80;
}

bool BeginsWith(std::string_view bytes, std::string_view start) noexcept {
    return bytes.substr(0, start.size()) == start;
}

// ---- detection

// A document begins with "<" or white space, so the second byte of a wide one is zero. A byte-order mark of UTF-16 counts,
// too: such a file does not parse, but the error should name the mark. An empty file has either form.
bool LooksWide(std::string_view bytes) noexcept {
    if (bytes.empty()) return true;
    if (bytes.size() == 1) return false;
    return bytes[1] == '\0' || BeginsWith(bytes, kUtf16LeMark) || BeginsWith(bytes, kUtf16BeMark);
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

// Returns the offset of the first byte that does not belong to a character.
std::optional<std::size_t> FindBadUtf8(std::string_view bytes) noexcept {
    std::string_view rest = bytes;
    while (!rest.empty()) {
        const std::size_t offset = bytes.size() - rest.size();
        char32_t character = 0;
        if (!front::DecodeUtf8(rest, character)) return offset;
    }
    return std::nullopt;
}

// Without a byte-order mark.
Encoding EncodingOfNarrow(std::string_view text) noexcept {
    if (std::none_of(text.begin(), text.end(), IsBeyondAscii)) return Encoding::Narrow;
    return FindBadUtf8(text).has_value() ? Encoding::Latin1 : Encoding::Utf8;
}

// ---- import

struct Import {
    std::string_view bytes;  // all of them
    Encoding from;
    std::size_t begin = 0;  // of the text in the bytes, without a byte-order mark
    std::size_t end = 0;    // without zeros
    Problem* problem;

    bool IsUtf16() const noexcept { return from == Encoding::Wide || from == Encoding::Utf16Be; }
    std::size_t UnitSizeOf() const noexcept { return IsUtf16() ? 2 : 1; }

    std::uint32_t UnitAt(std::size_t offset) const noexcept {
        const std::uint32_t first = ByteOf(bytes[offset]);
        if (!IsUtf16()) return first;
        const std::uint32_t second = ByteOf(bytes[offset + 1]);
        return from == Encoding::Wide ? first | second << 8 : first << 8 | second;
    }

    // Fails with the position of the offset and a message about it. Returns nullopt.
    std::nullopt_t Fail(Reason reason, const std::string& message, std::size_t offset) const {
        front::Fail(problem, reason, message);
        if (problem == nullptr) return std::nullopt;
        problem->line = 1;
        std::size_t start = begin;
        for (std::size_t at = begin; at < offset; at += UnitSizeOf()) {
            if (UnitAt(at) != '\n') continue;
            ++problem->line;
            start = at + UnitSizeOf();
        }
        problem->column = (offset - start) / UnitSizeOf() + 1;
        return std::nullopt;
    }
};

std::string_view MarkOf(Encoding encoding) noexcept {
    switch (encoding) {
        case Encoding::Utf8:
            return kUtf8Mark;
        case Encoding::Wide:
            return kUtf16LeMark;
        case Encoding::Utf16Be:
            return kUtf16BeMark;
        default:
            return {};
    }
}

// Leaves out the mark and the zeros at the end.
Import Begin(std::string_view bytes, Encoding from, Problem* problem) noexcept {
    Import import{bytes, from, 0, bytes.size(), problem};
    const std::string_view mark = MarkOf(from);
    if (!mark.empty() && BeginsWith(bytes, mark)) import.begin = mark.size();
    const std::size_t unitSize = import.UnitSizeOf();
    if ((import.end - import.begin) % unitSize != 0 && bytes[import.end - 1] == '\0') --import.end;
    if ((import.end - import.begin) % unitSize != 0) return import;
    while (import.end - import.begin >= unitSize && import.UnitAt(import.end - unitSize) == 0)
        import.end -= unitSize;
    return import;
}

std::string HexByte(char byte) {
    return ByteText(ByteOf(byte));
}

// Why the bytes are not a text in the encoding; nullopt if they are. Returns true if they are.
bool Check(const Import& import) {
    const std::string_view text = import.bytes.substr(import.begin, import.end - import.begin);
    const auto at = [](std::size_t offset) { return " at offset " + std::to_string(offset); };
    if (text.size() % import.UnitSizeOf() != 0) {
        import.Fail(Reason::Encoding, "an odd number of bytes is not UTF-16", import.end - 1);
        return false;
    }
    std::optional<std::size_t> bad;
    if (import.from == Encoding::Utf8) {
        bad = FindBadUtf8(text);
    } else if (import.from == Encoding::Narrow) {
        const auto found = std::find_if(text.begin(), text.end(), IsBeyondAscii);
        if (found != text.end()) bad = static_cast<std::size_t>(found - text.begin());
    }
    if (bad.has_value()) {
        const std::size_t offset = import.begin + *bad;
        const char* const wanted = import.from == Encoding::Utf8 ? " is not UTF-8" : " is not 7-bit text";
        import.Fail(Reason::Encoding, "byte " + HexByte(import.bytes[offset]) + at(offset) + wanted, offset);
        return false;
    }
    for (std::size_t i = import.begin; i < import.end; i += import.UnitSizeOf()) {
        if (import.UnitAt(i) != 0) continue;
        import.Fail(Reason::Encoding, "the zero" + at(i) + " would end the text", i);
        return false;
    }
    return true;
}

// The text, which is in the encoding.
front::Units Decode(const Import& import) {
    const std::string_view text = import.bytes.substr(import.begin, import.end - import.begin);
    if (import.from == Encoding::Utf8) return front::UnitsOf<wchar16>(text).value_or(front::Units());
    front::Units units;
    units.reserve(text.size() / import.UnitSizeOf());
    for (std::size_t i = import.begin; i < import.end; i += import.UnitSizeOf())
        units += static_cast<wchar16>(import.UnitAt(i));
    return units;
}

// The bytes of a file with this text, terminated by a zero unit. A narrow text is 7-bit.
std::string BytesOfFile(front::UnitsView text, Form form) {
    std::string bytes((text.size() + 1) * UnitSize(form), '\0');
    std::size_t at = 0;
    for (const wchar16 unit : text) {
        bytes[at++] = static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
        if (form == Form::Wide) bytes[at++] = static_cast<char>(static_cast<unsigned char>(unit >> 8 & 0xFF));
    }
    return bytes;
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
    if (BeginsWith(bytes, kUtf16LeMark) || BeginsWith(bytes, kUtf16BeMark)) {
        report.hasByteOrderMark = true;
        if (BeginsWith(bytes, kUtf16BeMark)) report.encoding = Encoding::Utf16Be;
    } else if (BeginsWith(bytes, kUtf8Mark)) {
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

std::optional<std::string> importText(std::string_view bytes, Encoding from, Form to, Problem* problem) {
    const Import import = Begin(bytes, from, problem);
    if (from == Encoding::Zeros) return import.Fail(Reason::Encoding, "there is nothing but zeros", 0);
    if (!Check(import)) return std::nullopt;
    if (to == Form::Narrow) {
        for (std::size_t i = import.begin; i < import.end; i += import.UnitSizeOf()) {
            if (import.UnitAt(i) < 0x80) continue;
            return import.Fail(Reason::NotKept,
                               "a narrow document keeps 7-bit text only; another character is at offset " +
                                   std::to_string(i),
                               i);
        }
    }
    front::Succeed(problem);
    return BytesOfFile(Decode(import), to);
}

std::string exportUtf8(std::string_view bytes, std::optional<Form> form) {
    const EncodingReport report = detectEncoding(bytes, form);
    return front::Utf8Of(WideView(UnitsOfBytes(bytes.substr(0, report.textSize), report.form)));
}

}  // namespace mox
