#include "mox_xmlApi/platform/numbers.h"

#include <array>
#include <cstddef>
#include <limits>

namespace mox {
namespace {

// The digit zero of each script whose digits count, in ascending order. Unicode has more scripts with digits; the
// runtime whose behaviour this is does not know them.
constexpr std::array<std::uint16_t, 16> kZerosBeyondAscii = {
    0x0660, 0x06F0, 0x0966, 0x09E6, 0x0A66, 0x0AE6, 0x0B66, 0x0C66,
    0x0CE6, 0x0D66, 0x0E50, 0x0ED0, 0x0F20, 0x1040, 0x17E0, 0x1810,
};
constexpr std::uint16_t kFullWidthZero = 0xFF10;

constexpr std::uint32_t kNoDigit = 0xFFFF;

std::uint32_t DigitBeyondAscii(std::uint32_t unit) {
    if (unit >= kFullWidthZero) return unit - kFullWidthZero <= 9 ? unit - kFullWidthZero : kNoDigit;
    for (const std::uint16_t zero : kZerosBeyondAscii) {
        if (unit < zero) break;
        if (unit - zero <= 9) return unit - zero;
    }
    return kNoDigit;
}

// The value of a digit or of a Latin letter; kNoDigit for anything else.
std::uint32_t DigitValue(std::uint32_t unit) {
    if (unit >= '0' && unit <= '9') return unit - '0';
    if (unit >= 'A' && unit <= 'Z') return unit - 'A' + 10;
    if (unit >= 'a' && unit <= 'z') return unit - 'a' + 10;
    return unit < kZerosBeyondAscii.front() ? kNoDigit : DigitBeyondAscii(unit);
}

bool IsWhiteSpace(std::uint32_t unit) {
    if (unit < 0x80) return unit == ' ' || (unit >= '\t' && unit <= '\r');
    return unit == 0x00A0 || unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 ||
           unit == 0x2029 || unit == 0x202F || unit == 0x205F || unit == 0x3000;
}

struct Number {
    bool negative = false;
    std::uint32_t magnitude = 0;  // saturates at the largest value
};

Number Read(WideView text, std::uint32_t base) {
    constexpr std::uint32_t kMax = std::numeric_limits<std::uint32_t>::max();
    std::size_t at = 0;
    while (at < text.size() && IsWhiteSpace(text[at]))
        ++at;

    Number number;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) number.negative = text[at++] == '-';

    // When no digit follows the "x", the number is the 0 before it; skipping both characters gives 0 as well.
    const auto isX = [](wchar16 unit) { return unit == 'x' || unit == 'X'; };
    if (base == 16 && text.size() - at >= 2 && DigitValue(text[at]) == 0 && isX(text[at + 1])) at += 2;

    for (; at < text.size(); ++at) {
        const std::uint32_t digit = DigitValue(text[at]);
        if (digit >= base) break;
        const std::uint64_t next = std::uint64_t{number.magnitude} * base + digit;
        if (next > kMax) {
            number.magnitude = kMax;
            break;
        }
        number.magnitude = static_cast<std::uint32_t>(next);
    }
    return number;
}

std::uint32_t ReadUnsigned(WideView text, std::uint32_t base) {
    const Number number = Read(text, base);
    return number.negative ? 0 - number.magnitude : number.magnitude;
}

}  // namespace

std::int32_t ReadDecimal(WideView text) noexcept {
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    const Number number = Read(text, 10);
    if (number.magnitude > static_cast<std::uint32_t>(kMax)) return number.negative ? kMin : kMax;
    const auto magnitude = static_cast<std::int32_t>(number.magnitude);
    return number.negative ? -magnitude : magnitude;
}

std::uint32_t ReadUnsignedDecimal(WideView text) noexcept {
    return ReadUnsigned(text, 10);
}

std::uint32_t ReadUnsignedHex(WideView text) noexcept {
    return ReadUnsigned(text, 16);
}

}  // namespace mox
