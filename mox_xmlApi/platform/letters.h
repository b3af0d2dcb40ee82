// Which characters make up the names of elements and attributes.
//
// ASCII is answered from a table. Beyond it letters and digits are what the runtime's iswalpha and iswalnum
// say on Windows; elsewhere what a fixed Unicode locale says, whatever locale the process has chosen, and
// nothing at all where the system lacks that locale. A surrogate is never part of a name.
#ifndef MOX_XMLAPI_PLATFORM_LETTERS_H
#define MOX_XMLAPI_PLATFORM_LETTERS_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "mox_xmlApi/platform/wchar16.h"

namespace mox {
namespace letters {

inline constexpr std::uint8_t kStart = 1;
inline constexpr std::uint8_t kCharacter = 2;

consteval std::array<std::uint8_t, 128> MakeAsciiClasses() {
    std::array<std::uint8_t, 128> classes{};
    for (std::size_t i = '0'; i <= '9'; ++i)
        classes[i] = kCharacter;
    for (std::size_t i = 'A'; i <= 'Z'; ++i)
        classes[i] = kStart | kCharacter;
    for (std::size_t i = 'a'; i <= 'z'; ++i)
        classes[i] = kStart | kCharacter;
    classes[std::size_t{'_'}] = kStart | kCharacter;
    classes[std::size_t{':'}] = kStart | kCharacter;
    return classes;
}

inline constexpr std::array<std::uint8_t, 128> kAsciiClasses = MakeAsciiClasses();

// The answers for units from 0x80 on.
bool IsLetterBeyondAscii(wchar16 unit) noexcept;
bool IsLetterOrDigitBeyondAscii(wchar16 unit) noexcept;

}  // namespace letters

// Whether a name may start with the unit: a letter, "_" or ":".
inline bool IsNameStart(wchar16 unit) noexcept {
    if (unit < letters::kAsciiClasses.size()) return (letters::kAsciiClasses[unit] & letters::kStart) != 0;
    return letters::IsLetterBeyondAscii(unit);
}

// Whether a name may go on with the unit: a letter, a digit, "_" or ":".
inline bool IsNameCharacter(wchar16 unit) noexcept {
    if (unit < letters::kAsciiClasses.size())
        return (letters::kAsciiClasses[unit] & letters::kCharacter) != 0;
    return letters::IsLetterOrDigitBeyondAscii(unit);
}

}  // namespace mox

#endif
