// Texts as numbers and truth values, and back; front/typed_value.hpp says which texts these are.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_VALUE_TEXT_HPP
#define MOX_XMLAPI_FRONT_VALUE_TEXT_HPP

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox::front {

template <class T, class... Others>
inline constexpr bool kIsOneOf = (std::is_same_v<T, Others> || ...);

// A signed or unsigned integer of 16, 32 or 64 bits that is a number, not a character or a truth value.
template <class T>
inline constexpr bool kIsInteger =
    kIsOneOf<T, short, unsigned short, int, unsigned, long, unsigned long, long long, unsigned long long>;

// Whether every value of the integer type fits into 32 bits with a sign.
template <class T>
inline constexpr bool kFitsInt32 = kIsOneOf<T, short, unsigned short, int> ||
                                   (std::is_same_v<T, long> && sizeof(long) == sizeof(int));

// Why a text is not a valid value of a type; the reason is None if it is one. `what` ends the sentence that begins with
// the value.
struct Misfit {
    Reason reason = Reason::None;
    const char* what = "";
};

inline std::string_view WithoutSpace(std::string_view text) noexcept {
    const auto isSpace = [](char c) { return IsSpace(static_cast<unsigned char>(c)); };
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

inline std::size_t CountDigits(std::string_view text) noexcept {
    std::size_t count = 0;
    while (count < text.size() && text[count] >= '0' && text[count] <= '9')
        ++count;
    return count;
}

inline Misfit ParseBool(std::string_view text, bool& value) noexcept {
    value = text == "1" || text == "true";
    if (value || text == "0" || text == "false") return {};
    return {Reason::WrongType, "is not 1, 0, true or false"};
}

template <class Integer>
Misfit ParseInteger(std::string_view text, Integer& value) noexcept {
    constexpr const char* kOutOfRange =
        std::is_signed_v<Integer>
            ? (sizeof(Integer) == 2   ? "is not from -32768 to 32767"
               : sizeof(Integer) == 4 ? "is not from -2147483648 to 2147483647"
                                      : "is not from -9223372036854775808 to 9223372036854775807")
            : (sizeof(Integer) == 2   ? "is not from 0 to 65535"
               : sizeof(Integer) == 4 ? "is not from 0 to 4294967295"
                                      : "is not from 0 to 18446744073709551615");
    const bool hasSign = !text.empty() && (text.front() == '+' || text.front() == '-');
    const std::string_view digits = text.substr(hasSign ? 1 : 0);
    if (digits.empty() || CountDigits(digits) != digits.size())
        return {Reason::WrongType, "is not a whole number"};
    // std::from_chars takes no plus, and no minus for an unsigned number.
    const bool isNegative = hasSign && text.front() == '-';
    const bool takesSign = isNegative && std::is_signed_v<Integer>;
    const char* const begin = takesSign ? text.data() : digits.data();
    Integer number = 0;
    const std::errc error = std::from_chars(begin, text.data() + text.size(), number).ec;
    if (error != std::errc() || (isNegative && !takesSign && number != 0))
        return {Reason::OutOfRange, kOutOfRange};
    value = number;
    return {};
}

// Whether the text is a decimal number: digits with a sign, a point and an exponent where they belong.
inline bool IsDecimal(std::string_view text) noexcept {
    const auto skipSign = [&text] {
        if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
    };
    skipSign();
    std::size_t digits = CountDigits(text);
    text.remove_prefix(digits);
    if (!text.empty() && text.front() == '.') {
        text.remove_prefix(1);
        const std::size_t fraction = CountDigits(text);
        digits += fraction;
        text.remove_prefix(fraction);
    }
    if (digits == 0) return false;
    if (text.empty()) return true;
    if (text.front() != 'e' && text.front() != 'E') return false;
    text.remove_prefix(1);
    skipSign();
    return !text.empty() && CountDigits(text) == text.size();
}

// Two ways to convert doubles. The C functions follow the locale of the program and serve where the standard library
// has no std::to_chars for double.

inline char DecimalPoint() noexcept {
    char text[8] = "0.5";
    static_cast<void>(std::snprintf(text, sizeof text, "%.1f", 0.5));
    return text[1];
}

// Returns false if the number is too large or too small.
inline bool ParseDoubleInC(std::string_view decimal, double& value) {
    std::string text(decimal);
    for (char& c : text)
        c = c == '.' ? DecimalPoint() : c;
    const int before = std::exchange(errno, 0);
    value = std::strtod(text.c_str(), nullptr);
    const bool isOutOfRange = errno == ERANGE && (value == 0 || !std::isfinite(value));
    errno = before;
    return !isOutOfRange;
}

inline std::string FormatDoubleInC(double value) {
    char text[40];
    double read = 0;
    for (int digits = 15; digits <= 17; ++digits) {
        static_cast<void>(std::snprintf(text, sizeof text, "%.*g", digits, value));
        for (char& c : text)
            c = c == DecimalPoint() ? '.' : c;
        if (ParseDoubleInC(text, read) && read == value) break;
    }
    return text;
}

#if defined(__cpp_lib_to_chars)
inline bool ParseDoubleHere(std::string_view decimal, double& value) {
    if (decimal.front() == '+') decimal.remove_prefix(1);
    return std::from_chars(decimal.data(), decimal.data() + decimal.size(), value).ec == std::errc();
}
inline std::string FormatDouble(double value) {
    char text[40];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}
#else
inline bool ParseDoubleHere(std::string_view decimal, double& value) {
    return ParseDoubleInC(decimal, value);
}
inline std::string FormatDouble(double value) {
    return FormatDoubleInC(value);
}
#endif

inline Misfit ParseDouble(std::string_view text, double& value) {
    if (!IsDecimal(text)) return {Reason::WrongType, "is not a decimal number"};
    double number = 0;
    if (!ParseDoubleHere(text, number)) return {Reason::OutOfRange, "is out of the range of a double"};
    value = number;
    return {};
}

template <class Integer>
std::string FormatInteger(Integer value) {
    char text[24];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

}  // namespace mox::front

#endif
