#include "tools/edit/page.h"

#include <cstddef>
#include <string_view>

namespace mox::tool {
namespace {

unsigned HexDigitValue(char digit) noexcept {
    return static_cast<unsigned>(digit <= '9' ? digit - '0' : (digit | 0x20) - 'a' + 10);
}

// The bytes that the hexadecimal digits stand for, in base 64.
std::string Base64OfHex(std::string_view digits) {
    constexpr const char* kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t at = 0; at < digits.size(); at += 3) {
        unsigned bits = 0;  // of three digits, which make two letters
        for (std::size_t i = at; i < at + 3; ++i)
            bits = (bits << 4U) | (i < digits.size() ? HexDigitValue(digits[i]) : 0);
        text += kLetters[bits >> 6U];
        if (at + 1 < digits.size()) text += kLetters[bits & 0x3FU];
    }
    while (text.size() % 4 != 0)
        text += '=';
    return text;
}

void ReplaceMark(std::string& text, const std::string& mark, const std::string& by) {
    const std::size_t at = text.find(mark);
    if (at != std::string::npos) text.replace(at, mark.size(), by);
}

// JSON means the same with these characters escaped, and then cannot end or begin an element or a comment.
std::string EmbeddedJson(const Json& json) {
    const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string embedded;
    embedded.reserve(text.size());
    for (const char character : text) {
        if (character == '<' || character == '>' || character == '&') {
            constexpr const char* kHexDigits = "0123456789abcdef";
            const auto code = static_cast<unsigned char>(character);
            embedded.append("\\u00").append(1, kHexDigits[code >> 4U]).append(1, kHexDigits[code & 0xFU]);
        } else {
            embedded += character;
        }
    }
    return embedded;
}

}  // namespace

std::string PagePolicy(PageUse use) {
    std::string policy = "default-src 'none'; script-src 'sha256-" + Base64OfHex(kPageScriptHash) +
                         "'; style-src 'sha256-" + Base64OfHex(kPageStyleHash) +
                         "'; base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'; "
                         "trusted-types 'none'";
    if (use == PageUse::Served) policy += "; connect-src 'self'";
    return policy;
}

std::string PageText(PageUse use, const Json& form) {
    std::string text = kPageHtml;
    const bool isAlone = use == PageUse::Alone;
    ReplaceMark(
        text, "@POLICY@",
        isAlone ? "<meta http-equiv=\"Content-Security-Policy\" content=\"" + PagePolicy(use) + "\">" : "");
    ReplaceMark(text, "@STYLE@", kPageStyle);
    ReplaceMark(text, "@SCRIPT@", kPageScript);
    ReplaceMark(text, "@DOCUMENT@", isAlone ? EmbeddedJson(form) : "null");
    return text;
}

}  // namespace mox::tool
