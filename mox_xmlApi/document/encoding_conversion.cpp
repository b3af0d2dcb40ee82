// Conversion between documents and other encodings.
#include <algorithm>

#include "mox_xmlApi/document/encoded_bytes.h"
#include "mox_xmlApi/document/encoding.hpp"
#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/document/text_units.h"
#include "mox_xmlApi/front/text.hpp"

namespace mox {
namespace {

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
    if (!mark.empty() && bytes.starts_with(mark)) import.begin = mark.size();
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

// Whether the bytes are a text in the encoding, without zeros. If not, the problem says why.
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

}  // namespace

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
