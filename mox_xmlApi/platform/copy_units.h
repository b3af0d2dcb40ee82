// Copying texts of 16-bit units into wide or narrow output, eight units at a time where the processor can.
#ifndef MOX_XMLAPI_PLATFORM_COPY_UNITS_H
#define MOX_XMLAPI_PLATFORM_COPY_UNITS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "mox_xmlApi/platform/scan.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

// Matches the units that equal `value` once the bits of `ignored` are set in them: with `ignored` 0 one unit, with one
// bit two.
struct UnitPattern {
    wchar16 ignored;
    wchar16 value;

    constexpr bool Matches(wchar16 unit) const noexcept { return (unit | ignored) == value; }
};

namespace detail {

// One bit for each unit below 64 that a pattern of the array `kStops` matches.
template <auto kStops>
constexpr std::uint64_t StopBits() noexcept {
    std::uint64_t bits = 0;
    for (wchar16 unit = 0; unit < 64; ++unit) {
        const bool stops = std::any_of(kStops.begin(), kStops.end(),
                                       [unit](UnitPattern pattern) { return pattern.Matches(unit); });
        bits |= std::uint64_t{stops} << unit;
    }
    return bits;
}

}  // namespace detail

// Whether a pattern of the array `kStops` matches. All values of the patterns are below 64.
template <auto kStops>
constexpr bool MatchesAny(wchar16 unit) noexcept {
    static_assert(std::all_of(kStops.begin(), kStops.end(), [](auto pattern) { return pattern.value < 64; }));
    constexpr std::uint64_t kBits = detail::StopBits<kStops>();
    return unit < 64 && ((kBits >> unit) & 1) != 0;
}

// Copies the units before the first one that a pattern of `kStops` matches to `to`, which has room for all of `text`.
// Returns how many they are. A narrow output gets the low byte of each.
template <auto kStops, class Unit>
std::size_t CopyUntilScalar(Unit* to, WideView text) noexcept {
    std::size_t count = 0;
    for (; count < text.size() && !MatchesAny<kStops>(text[count]); ++count)
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

inline __m128i Matches(UnitPattern pattern, __m128i units) noexcept {
    const auto all = [](wchar16 unit) { return _mm_set1_epi16(static_cast<short>(unit)); };
    return _mm_cmpeq_epi16(_mm_or_si128(units, all(pattern.ignored)), all(pattern.value));
}

template <auto kStops>
bool HasMatch(__m128i units) noexcept {
    __m128i matches = Matches(kStops[0], units);
    for (std::size_t i = 1; i < kStops.size(); ++i)
        matches = _mm_or_si128(matches, Matches(kStops[i], units));
    return _mm_movemask_epi8(matches) != 0;
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

// The same, faster. The last four units are examined a second time rather than one by one.
template <auto kStops, class Unit>
std::size_t CopyUntil(Unit* to, WideView text) noexcept {
    std::size_t count = 0;
#if defined(MOX_SCAN_SSE2)
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

// Copies all of `text` to `to`, which has room for it, and returns the place after it. A narrow output gets the low
// byte of each unit.
template <class Unit>
Unit* CopyUnitsScalar(Unit* to, WideView text) noexcept {
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
    return CopyUnitsScalar(to, text);
}

}  // namespace mox

#endif
