// What the example hosts need besides the library: conversion between UTF-8 and 16-bit text, and saved files as
// lines.
#ifndef MOX_XMLAPI_EXAMPLES_DEMO_TEXT_H
#define MOX_XMLAPI_EXAMPLES_DEMO_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/platform/wchar16.h"

using WideText = std::basic_string<wchar16>;

// Checks a result. main catches the exception and exits with 1.
inline void Expect(bool isTrue, const std::string& what) {
    if (!isTrue) throw std::runtime_error("unexpected result: " + what);
}

// A path as the library takes it. On Linux the path's bytes are UTF-8.
inline WideText WidePath(const std::filesystem::path& path) {
    return path.string<wchar16>();
}

// 16-bit text from UTF-8, which must be well-formed.
inline WideText Wide(std::string_view utf8) {
    WideText text;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[i++]);
        const int more = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        std::uint32_t code = more == 0 ? lead : lead & (0x3FU >> more);
        for (int n = 0; n < more && i < utf8.size(); ++n) {
            code = code << 6 | (static_cast<unsigned char>(utf8[i++]) & 0x3FU);
        }
        if (code < 0x10000) {
            text += static_cast<wchar16>(code);
        } else {
            text += static_cast<wchar16>(0xD800 + ((code - 0x10000) >> 10));
            text += static_cast<wchar16>(0xDC00 + ((code - 0x10000) & 0x3FF));
        }
    }
    return text;
}

// UTF-8 from 16-bit text, for printing. A surrogate without a partner becomes U+FFFD.
inline std::string Utf8(std::basic_string_view<wchar16> text) {
    std::string utf8;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t code = static_cast<std::uint16_t>(text[i]);
        if (code >= 0xD800 && code < 0xE000) {
            const std::uint32_t next = i + 1 < text.size() ? static_cast<std::uint16_t>(text[i + 1]) : 0;
            const bool isPair = code < 0xDC00 && next >= 0xDC00 && next < 0xE000;
            code = isPair ? 0x10000 + ((code - 0xD800) << 10) + (next - 0xDC00) : 0xFFFD;
            if (isPair) ++i;
        }
        const int more = code < 0x80 ? 0 : code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        const std::uint32_t leads[] = {0, 0xC0, 0xE0, 0xF0};
        utf8 += static_cast<char>(leads[more] | code >> 6 * more);
        for (int n = more - 1; n >= 0; --n)
            utf8 += static_cast<char>(0x80 | (code >> 6 * n & 0x3F));
    }
    return utf8;
}

// The lines of a settings or table file, as UTF-8. The file must end with a zero unit.
inline std::vector<std::string> ReadLines(const std::filesystem::path& path, bool isWide) {
    std::ifstream file(path, std::ios::binary);
    Expect(file.is_open(), "open " + path.string());
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    WideText units;
    const std::size_t step = isWide ? 2 : 1;
    for (std::size_t i = 0; i + step <= bytes.size(); i += step) {
        const unsigned high = isWide ? static_cast<unsigned char>(bytes[i + 1]) : 0;
        units += static_cast<wchar16>(high << 8 | static_cast<unsigned char>(bytes[i]));
    }
    Expect(!units.empty() && units.back() == 0, "a zero at the end of " + path.string());
    units.pop_back();

    std::vector<std::string> lines;
    const std::string text = Utf8(units);
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

// Prints the lines that were removed ("-") and added ("+"), using the longest common subsequence. Returns their number.
inline std::size_t PrintDiff(const std::vector<std::string>& before, const std::vector<std::string>& after) {
    // common[i][j]: length of the longest common subsequence of before[i...] and after[j...]
    std::vector<std::vector<std::size_t>> common(before.size() + 1,
                                                 std::vector<std::size_t>(after.size() + 1));
    for (std::size_t i = before.size(); i-- > 0;) {
        for (std::size_t j = after.size(); j-- > 0;) {
            common[i][j] = before[i] == after[j] ? common[i + 1][j + 1] + 1
                                                 : std::max(common[i + 1][j], common[i][j + 1]);
        }
    }
    std::size_t i = 0;
    std::size_t j = 0;
    std::size_t changes = 0;
    while (i < before.size() || j < after.size()) {
        if (i < before.size() && j < after.size() && before[i] == after[j]) {
            ++i;
            ++j;
            continue;
        }
        const bool isRemoved =
            j == after.size() || (i < before.size() && common[i + 1][j] >= common[i][j + 1]);
        std::printf("  %c %s\n", isRemoved ? '-' : '+', (isRemoved ? before[i++] : after[j++]).c_str());
        ++changes;
    }
    return changes;
}

#endif
