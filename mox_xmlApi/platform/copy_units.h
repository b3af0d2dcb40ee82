// Copying texts of 16-bit units into wide or narrow output, eight units at a time where the processor can.
#ifndef MOX_XMLAPI_PLATFORM_COPY_UNITS_H
#define MOX_XMLAPI_PLATFORM_COPY_UNITS_H

#include <cstddef>
#include <cstring>

#include "mox_xmlApi/platform/scan.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

// Whether XML has an entity for the unit.
constexpr bool IsMarkup(wchar16 unit) noexcept {
    return unit == '"' || unit == '&' || unit == '\'' || unit == '<' || unit == '>';
}

// Copies the units before the first markup to `to`, which has room for all of `text`, and returns how many they are.
// A narrow output gets the low byte of each.
template <class Unit>
std::size_t CopyToMarkupPlain(Unit* to, WideView text) noexcept {
    std::size_t count = 0;
    for (; count < text.size() && !IsMarkup(text[count]); ++count)
        to[count] = static_cast<Unit>(text[count]);
    return count;
}

#if defined(MOX_SCAN_SSE2)
namespace detail {

inline __m128i LoadEight(const wchar16* units) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
}

inline __m128i LoadFour(const wchar16* units) noexcept {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(units));
}

inline bool HasMarkup(__m128i units) noexcept {
    const auto all = [](int unit) { return _mm_set1_epi16(static_cast<short>(unit)); };
    // Two pairs differ in one bit each: & from ', and < from >.
    const __m128i quote = _mm_cmpeq_epi16(units, all('"'));
    const __m128i ampersand = _mm_cmpeq_epi16(_mm_or_si128(units, all('&' ^ '\'')), all('&' | '\''));
    const __m128i bracket = _mm_cmpeq_epi16(_mm_or_si128(units, all('<' ^ '>')), all('<' | '>'));
    return _mm_movemask_epi8(_mm_or_si128(quote, _mm_or_si128(ampersand, bracket))) != 0;
}

inline void Store(wchar16* to, __m128i units, std::size_t count) noexcept {
    std::memcpy(to, &units, count * sizeof(wchar16));
}

inline void Store(char* to, __m128i units, std::size_t count) noexcept {
    const __m128i lowBytes = _mm_and_si128(units, _mm_set1_epi16(0xFF));
    const __m128i bytes = _mm_packus_epi16(lowBytes, lowBytes);
    std::memcpy(to, &bytes, count);
}

}  // namespace detail
#endif

// The same, faster. The last four are looked at once more rather than one by one.
template <class Unit>
std::size_t CopyToMarkup(Unit* to, WideView text) noexcept {
    std::size_t count = 0;
#if defined(MOX_SCAN_SSE2)
    for (; text.size() - count >= 8; count += 8) {
        const __m128i units = detail::LoadEight(text.data() + count);
        if (detail::HasMarkup(units)) break;
        detail::Store(to + count, units, 8);
    }
    if (text.size() - count >= 4) {
        const __m128i units = detail::LoadFour(text.data() + count);
        if (!detail::HasMarkup(units)) {
            detail::Store(to + count, units, 4);
            count += 4;
        }
    }
    if (count >= 4 && text.size() - count < 4) {
        const std::size_t last = text.size() - 4;
        const __m128i units = detail::LoadFour(text.data() + last);
        if (!detail::HasMarkup(units)) {
            detail::Store(to + last, units, 4);
            return text.size();
        }
    }
#endif
    return count + CopyToMarkupPlain(to + count, text.substr(count));
}

// Copies all of `text` to `to`, which has room for it, and returns the place after it. A narrow output gets the low
// byte of each unit.
template <class Unit>
Unit* CopyUnitsPlain(Unit* to, WideView text) noexcept {
    for (const wchar16 unit : text)
        *to++ = static_cast<Unit>(unit);
    return to;
}

// The same, faster.
template <class Unit>
Unit* CopyUnits(Unit* to, WideView text) noexcept {
#if defined(MOX_SCAN_SSE2)
    const std::size_t size = text.size();
    if (size >= 8) {
        const std::size_t last = size - 8;
        for (std::size_t i = 0; i < last; i += 8)
            detail::Store(to + i, detail::LoadEight(text.data() + i), 8);
        detail::Store(to + last, detail::LoadEight(text.data() + last), 8);
        return to + size;
    }
    if (size >= 4) {
        detail::Store(to, detail::LoadFour(text.data()), 4);
        detail::Store(to + size - 4, detail::LoadFour(text.data() + size - 4), 4);
        return to + size;
    }
#endif
    return CopyUnitsPlain(to, text);
}

}  // namespace mox

#endif
