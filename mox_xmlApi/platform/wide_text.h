// 16-bit text: the string types of the library and their literals, the same on every system.
#ifndef MOX_XMLAPI_PLATFORM_WIDE_TEXT_H
#define MOX_XMLAPI_PLATFORM_WIDE_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "mox_xmlApi/platform/wchar16.h"

namespace mox {

using WideString = std::basic_string<wchar16>;
using WideView = std::basic_string_view<wchar16>;

static_assert(sizeof(wchar16) == 2, "all text is in 16-bit units");

// The units of a literal, in static storage.
template <std::size_t Size>
struct WideLiteral {
    wchar16 units[Size]{};

    // NOLINTNEXTLINE(google-explicit-constructor): the literal operator converts the text implicitly
    consteval WideLiteral(const char (&text)[Size]) {
        for (std::size_t i = 0; i < Size; ++i)
            units[i] = static_cast<wchar16>(text[i]);
    }
};

// "Table"_w is a WideView of the ASCII text, followed by a zero unit.
template <WideLiteral Literal>
constexpr WideView operator""_w() {
    return WideView(Literal.units, sizeof(Literal.units) / sizeof(wchar16) - 1);
}

namespace detail {

template <class Word>
bool SameWord(const wchar16* a, const wchar16* b) noexcept {
    Word wordOfA;
    Word wordOfB;
    std::memcpy(&wordOfA, a, sizeof wordOfA);
    std::memcpy(&wordOfB, b, sizeof wordOfB);
    return wordOfA == wordOfB;
}

}  // namespace detail

// Whether two texts are equal. Short texts, such as names, are compared inline, four units at a time; the last four may
// be compared twice.
inline bool SameText(WideView a, WideView b) noexcept {
    constexpr std::size_t kShort = 16;
    const std::size_t size = a.size();
    if (size != b.size()) return false;
    if (size > kShort) return std::memcmp(a.data(), b.data(), size * sizeof(wchar16)) == 0;
    if (size < 4) {
        if (size < 2) return size == 0 || a[0] == b[0];
        return detail::SameWord<std::uint32_t>(a.data(), b.data()) && a[size - 1] == b[size - 1];
    }
    for (std::size_t i = 0; i + 4 < size; i += 4) {
        if (!detail::SameWord<std::uint64_t>(a.data() + i, b.data() + i)) return false;
    }
    return detail::SameWord<std::uint64_t>(a.data() + size - 4, b.data() + size - 4);
}

// A view of a zero-terminated text; empty for null.
inline WideView ViewOf(const wchar16* text) {
    return text == nullptr ? WideView() : WideView(text);
}

// Copies `text` into a host's buffer of `length` units: at most length - 1 units, and zeros in the rest, so that the
// last unit is always zero. With a length of 0 nothing is written. `text` may lie in the buffer. Returns how many units
// of `text` were copied.
inline std::size_t CopyToBuffer(WideView text, wchar16* buffer, std::size_t length) noexcept {
    if (length == 0) return 0;
    const std::size_t copied = std::min(text.size(), length - 1);
    if (copied != 0) std::char_traits<wchar16>::move(buffer, text.data(), copied);
    std::memset(buffer + copied, 0, (length - copied) * sizeof(wchar16));
    return copied;
}

}  // namespace mox

#endif
