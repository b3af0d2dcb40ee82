#include "tools/terminal_text.h"

#include <algorithm>
#include <iterator>

#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/front/text.hpp"

namespace mox::tool {
namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// Ascending. Joiners (200C, 200D) and variation selectors are not in it: scripts and emoji need them.
constexpr Range kEscaped[] = {
    {0x00, 0x1F},        // C0
    {0x7F, 0x9F},        // DEL, C1
    {0xAD, 0xAD},        // soft hyphen
    {0x61C, 0x61C},      // Arabic letter mark
    {0x180E, 0x180E},    // Mongolian vowel separator
    {0x200B, 0x200B},    // zero width space
    {0x200E, 0x200F},    // marks of direction
    {0x2028, 0x202E},    // line and paragraph separator, embeddings and overrides of direction
    {0x2060, 0x206F},    // word joiner, invisible operators, isolates, deprecated controls
    {0xD800, 0xDFFF},    // surrogates without a partner
    {0xFEFF, 0xFEFF},    // byte-order mark
    {0xFFF9, 0xFFFB},    // interlinear annotation
    {0xE0000, 0xE007F},  // tags
};

bool IsEscaped(char32_t character) noexcept {
    const auto* const range =
        std::find_if(std::begin(kEscaped), std::end(kEscaped),
                     [character](const Range& candidate) { return character <= candidate.last; });
    return range != std::end(kEscaped) && character >= range->first;
}

void AppendUnit(std::string& out, char32_t unit) {
    out.append("\\u").append(Hex(static_cast<std::uint32_t>(unit), 4));
}

void AppendEscape(std::string& out, char32_t character) {
    if (character == '\n') {
        out += "\\n";
    } else if (character == '\r') {
        out += "\\r";
    } else if (character == '\t') {
        out += "\\t";
    } else if (character < 0x10000) {
        AppendUnit(out, character);
    } else {
        AppendUnit(out, 0xD800 + ((character - 0x10000) >> 10));
        AppendUnit(out, 0xDC00 + ((character - 0x10000) & 0x3FF));
    }
}

std::string Escaped(std::string_view text, bool keepsLineFeeds) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        std::string_view rest = text;
        char32_t character = 0;
        if (!front::DecodeUtf8(rest, character)) {
            out.append("\\x").append(Hex(static_cast<unsigned char>(text.front()), 2));
            text.remove_prefix(1);
            continue;
        }
        if (IsEscaped(character) && !(keepsLineFeeds && character == '\n')) {
            AppendEscape(out, character);
        } else {
            out.append(text.substr(0, text.size() - rest.size()));
        }
        text = rest;
    }
    return out;
}

}  // namespace

std::string EscapedLine(std::string_view text) {
    return Escaped(text, false);
}

std::string EscapedLines(std::string_view text) {
    return Escaped(text, true);
}

}  // namespace mox::tool
