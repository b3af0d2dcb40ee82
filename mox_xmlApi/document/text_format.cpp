#include "mox_xmlApi/document/text_format.h"

#include "mox_xmlApi/front/text.hpp"

namespace mox {
namespace {

bool IsControl(char character) noexcept {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F;
}

void AppendEscaped(std::string& out, char character) {
    switch (character) {
        case '"':
        case '\\':
            out.append(1, '\\').append(1, character);
            return;
        case '\n':
            out += "\\n";
            return;
        case '\r':
            out += "\\r";
            return;
        case '\t':
            out += "\\t";
            return;
        default:
            break;
    }
    if (!IsControl(character)) {
        out += character;
        return;
    }
    out.append("\\u").append(Hex(static_cast<unsigned char>(character), 4));
}

}  // namespace

std::string Utf8(WideView text) {
    return front::Utf8Of(text);
}

std::string Quoted(std::string_view text) {
    std::string quoted("\"");
    for (const char character : text)
        AppendEscaped(quoted, character);
    return quoted + "\"";
}

std::string QuotedIfNeeded(std::string_view name) {
    bool isPlain = !name.empty() && name.front() != ' ' && name.back() != ' ';
    for (const char character : name) {
        if (IsControl(character) || character == '"' || character == '/' || character == '\\' ||
            character == '#')
            isPlain = false;
    }
    return isPlain ? std::string(name) : Quoted(name);
}

std::string Hex(std::uint32_t number, int digits) {
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += "0123456789ABCDEF"[(number >> shift) & 0xF];
    return text;
}

std::string UnitText(std::uint32_t unit) {
    return "U+" + Hex(unit, 4);
}

std::string ByteText(std::uint32_t byte) {
    return "0x" + Hex(byte, 2);
}

std::string Counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace mox
