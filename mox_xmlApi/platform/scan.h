// Searching 16-bit text, eight units at a time where the processor can.
#ifndef MOX_XMLAPI_PLATFORM_SCAN_H
#define MOX_XMLAPI_PLATFORM_SCAN_H

#include <bit>
#include <cstddef>

#include "mox_xmlApi/platform/wchar16.h"

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define MOX_SCAN_SSE2 1
#endif

namespace mox {

// How many units after the one that it finds FindAnyOf may read. So many units of readable memory must follow the text.
inline constexpr std::size_t kScanAhead = 7;

// The first unit from `text` on that is zero or one of the three, one unit at a time. There must be one.
inline wchar16* FindAnyOfScalar(wchar16* text, wchar16 a, wchar16 b, wchar16 c) noexcept {
    while (*text != 0 && *text != a && *text != b && *text != c)
        ++text;
    return text;
}

// The same, faster.
inline wchar16* FindAnyOf(wchar16* text, wchar16 a, wchar16 b, wchar16 c) noexcept {
#if defined(MOX_SCAN_SSE2)
    const auto all = [](wchar16 unit) { return _mm_set1_epi16(static_cast<short>(unit)); };
    for (;; text += kScanAhead + 1) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
        const __m128i isAOrB = _mm_or_si128(_mm_cmpeq_epi16(units, all(a)), _mm_cmpeq_epi16(units, all(b)));
        const __m128i isCOrZero =
            _mm_or_si128(_mm_cmpeq_epi16(units, all(c)), _mm_cmpeq_epi16(units, all(0)));
        const auto found = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(isAOrB, isCOrZero)));
        if (found != 0) return text + std::countr_zero(found) / 2;
    }
#else
    return FindAnyOfScalar(text, a, b, c);
#endif
}

// How many of the `count` units come before the first one that equals `unit`, one unit at a time; all when none does.
inline std::size_t CountBeforeScalar(wchar16 unit, const wchar16* units, std::size_t count) noexcept {
    std::size_t length = 0;
    while (length < count && units[length] != unit)
        ++length;
    return length;
}

// The same, faster.
inline std::size_t CountBefore(wchar16 unit, const wchar16* units, std::size_t count) noexcept {
    std::size_t length = 0;
#if defined(MOX_SCAN_SSE2)
    const __m128i all = _mm_set1_epi16(static_cast<short>(unit));
    for (; count - length >= 8; length += 8) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + length));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(block, all)) != 0) break;
    }
#endif
    return length + CountBeforeScalar(unit, units + length, count - length);
}

}  // namespace mox

#endif
