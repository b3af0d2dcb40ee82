// Which characters the names of elements and attributes consist of.
//
// ASCII is answered from a table, everything else by the system's classification of letters. A surrogate is never
// part of a name.
#ifndef MOX_XMLAPI_XML_XML_NAME_CHARACTERS_H
#define MOX_XMLAPI_XML_XML_NAME_CHARACTERS_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "mox_xmlApi/platform/letters.h"
#include "mox_xmlApi/platform/wchar16.h"

namespace mox {
namespace detail {

inline constexpr std::uint8_t kNameStart = 1;
inline constexpr std::uint8_t kNameCharacter = 2;

consteval std::array<std::uint8_t, 128> MakeAsciiNameClasses() {
    std::array<std::uint8_t, 128> classes{};
    for (std::size_t i = '0'; i <= '9'; ++i)
        classes[i] = kNameCharacter;
    for (std::size_t i = 'A'; i <= 'Z'; ++i)
        classes[i] = kNameStart | kNameCharacter;
    for (std::size_t i = 'a'; i <= 'z'; ++i)
        classes[i] = kNameStart | kNameCharacter;
    classes[std::size_t{'_'}] = kNameStart | kNameCharacter;
    classes[std::size_t{':'}] = kNameStart | kNameCharacter;
    return classes;
}

inline constexpr std::array<std::uint8_t, 128> kAsciiNameClasses = MakeAsciiNameClasses();

}  // namespace detail

// Whether a name may start with the unit: a letter, "_" or ":".
inline bool IsNameStart(wchar16 unit) noexcept {
    if (unit < detail::kAsciiNameClasses.size())
        return (detail::kAsciiNameClasses[unit] & detail::kNameStart) != 0;
    return IsLetterBeyondAscii(unit);
}

// Whether a name may go on with the unit: a letter, a digit, "_" or ":".
inline bool IsNameCharacter(wchar16 unit) noexcept {
    if (unit < detail::kAsciiNameClasses.size())
        return (detail::kAsciiNameClasses[unit] & detail::kNameCharacter) != 0;
    return IsLetterOrDigitBeyondAscii(unit);
}

}  // namespace mox

#endif
