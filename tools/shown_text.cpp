#include "tools/shown_text.h"

#include <algorithm>

#include "mox_xmlApi/front/text.hpp"

namespace mox::tool {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

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
    const auto byte = static_cast<unsigned char>(character);
    out.append("\\u00").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 0xF]);
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

std::string ShownName(std::string_view name) {
    const bool isPlain = !name.empty() && name.front() != ' ' && name.back() != ' ' &&
                         std::none_of(name.begin(), name.end(), [](char character) {
                             return IsControl(character) || character == '"' || character == '/' ||
                                    character == '\\' || character == '#';
                         });
    return isPlain ? std::string(name) : Quoted(name);
}

std::string UnitNumber(std::uint32_t unit) {
    std::string number("U+");
    for (int shift = 12; shift >= 0; shift -= 4)
        number += kDigits[(unit >> shift) & 0xF];
    return number;
}

}  // namespace mox::tool
