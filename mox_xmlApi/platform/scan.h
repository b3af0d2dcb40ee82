// Searching 16-bit text, eight units at a time where the processor can.
#ifndef MOX_XMLAPI_PLATFORM_SCAN_H
#define MOX_XMLAPI_PLATFORM_SCAN_H

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "mox_xmlApi/platform/speedup.h"
#include "mox_xmlApi/platform/wchar16.h"

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define MOX_SCAN_SSE2 1
#endif

namespace mox {

// How many units FindAnyOf may read after the one that it finds.
inline constexpr std::size_t kScanAhead = 7;

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
inline constexpr std::uint64_t kStopBits = [] {
    std::uint64_t bits = 0;
    for (wchar16 unit = 0; unit < 64; ++unit) {
        const bool stops = std::any_of(kStops.begin(), kStops.end(),
                                       [unit](UnitPattern pattern) { return pattern.Matches(unit); });
        bits |= std::uint64_t{stops} << unit;
    }
    return bits;
}();

}  // namespace detail

// Whether a pattern of the array `kStops` matches. All values of the patterns are below 64.
template <auto kStops>
constexpr bool MatchesAny(wchar16 unit) noexcept {
    static_assert(std::all_of(kStops.begin(), kStops.end(), [](auto pattern) { return pattern.value < 64; }));
    return unit < 64 && ((detail::kStopBits<kStops> >> unit) & 1) != 0;
}

// Returns the first unit from `text` on that a pattern of the array `kStops` matches. There must be one. Examines one
// unit at a time.
template <auto kStops>
wchar16* FindAnyOfScalar(wchar16* text) noexcept {
    while (!MatchesAny<kStops>(*text))
        ++text;
    return text;
}

#if defined(MOX_SCAN_SSE2)
namespace detail {

inline __m128i LoadEight(const wchar16* units) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
}

inline __m128i Matches(UnitPattern pattern, __m128i units) noexcept {
    const auto all = [](wchar16 unit) { return _mm_set1_epi16(static_cast<short>(unit)); };
    return _mm_cmpeq_epi16(_mm_or_si128(units, all(pattern.ignored)), all(pattern.value));
}

// Two bits for each of the eight units, both set when a pattern matches it.
template <auto kStops>
unsigned MatchMask(__m128i units) noexcept {
    __m128i matches = _mm_setzero_si128();
    for (const UnitPattern& stop : kStops)
        matches = _mm_or_si128(matches, Matches(stop, units));
    return static_cast<unsigned>(_mm_movemask_epi8(matches));
}

}  // namespace detail
#endif

// Returns what FindAnyOfScalar returns, and examines eight units at a time where the processor can. kScanAhead units of
// readable memory must follow the unit that is found.
template <auto kStops>
wchar16* FindAnyOf(wchar16* text) noexcept {
#if defined(MOX_SCAN_SSE2)
    for (; Has(Speedup::VectorSearch); text += kScanAhead + 1) {
        const unsigned matches = detail::MatchMask<kStops>(detail::LoadEight(text));
        if (matches != 0) return text + static_cast<unsigned>(std::countr_zero(matches)) / 2;
    }
#endif
    return FindAnyOfScalar<kStops>(text);
}

// Returns how many of the `count` units come before the first one that equals `unit`; `count` if none does. Examines
// one unit at a time.
inline std::size_t CountBeforeScalar(wchar16 unit, const wchar16* units, std::size_t count) noexcept {
    std::size_t length = 0;
    while (length < count && units[length] != unit)
        ++length;
    return length;
}

// Returns what CountBeforeScalar returns, and examines eight units at a time where the processor can. Reads no memory
// after the `count` units.
inline std::size_t CountBefore(wchar16 unit, const wchar16* units, std::size_t count) noexcept {
    std::size_t length = 0;
#if defined(MOX_SCAN_SSE2)
    const __m128i all = _mm_set1_epi16(static_cast<short>(unit));
    for (; Has(Speedup::VectorZeroSearch) && count - length >= 8; length += 8) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + length));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(block, all)) != 0) break;
    }
#endif
    return length + CountBeforeScalar(unit, units + length, count - length);
}

}  // namespace mox

#endif
