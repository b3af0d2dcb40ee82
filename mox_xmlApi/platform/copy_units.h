// Copying texts of 16-bit units into wide or narrow output.
#ifndef MOX_XMLAPI_PLATFORM_COPY_UNITS_H
#define MOX_XMLAPI_PLATFORM_COPY_UNITS_H

#include <array>
#include <cstddef>
#include <cstring>

#include "mox_xmlApi/platform/scan.h"
#include "mox_xmlApi/platform/speedup.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

// Copies the units of `text` before the first one that a pattern of the array `kStops` matches, or all if there is
// none. Returns how many it copied. `to` must have room for all of `text` and not overlap it. If `Unit` is char, the
// low byte of each unit is copied. Examines one unit at a time.
template <auto kStops, class Unit>
std::size_t CopyUntilScalar(Unit* to, WideView text) noexcept {
    std::size_t count = 0;
    for (; count < text.size() && !MatchesAny<kStops>(text[count]); ++count)
        to[count] = static_cast<Unit>(text[count]);
    return count;
}

#if defined(MOX_SCAN_SSE2)
namespace detail {

inline __m128i LoadFour(const wchar16* units) noexcept {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(units));
}

template <auto kStops>
bool HasMatch(__m128i units) noexcept {
    return MatchMask<kStops>(units) != 0;
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

// Does what CopyUntilScalar does, eight units at a time where the processor can. The last four units are examined twice
// rather than one by one.
template <auto kStops, class Unit>
std::size_t CopyUntil(Unit* to, WideView text) noexcept {
    std::size_t count = 0;
#if defined(MOX_SCAN_SSE2)
    if constexpr (!Has(Speedup::VectorCopy)) return CopyUntilScalar<kStops>(to, text);
    for (; text.size() - count >= 8; count += 8) {
        const __m128i units = detail::LoadEight(text.data() + count);
        if (detail::HasMatch<kStops>(units)) break;
        detail::Store(to + count, units, 8);
    }
    if (text.size() - count >= 4) {
        const __m128i units = detail::LoadFour(text.data() + count);
        if (!detail::HasMatch<kStops>(units)) {
            detail::Store(to + count, units, 4);
            count += 4;
        }
    }
    if (count >= 4 && text.size() - count < 4) {
        const std::size_t last = text.size() - 4;
        const __m128i units = detail::LoadFour(text.data() + last);
        if (!detail::HasMatch<kStops>(units)) {
            detail::Store(to + last, units, 4);
            return text.size();
        }
    }
#endif
    return count + CopyUntilScalar<kStops>(to + count, text.substr(count));
}

// Copies all of `text` to `to`, which must have room for it and not overlap it. Returns the place after the copy. If
// `Unit` is char, the low byte of each unit is copied.
template <class Unit>
Unit* CopyUnits(Unit* to, WideView text) noexcept {
    constexpr std::array<UnitPattern, 0> kNoStops = {};
    return to + CopyUntil<kNoStops>(to, text);
}

}  // namespace mox

#endif
