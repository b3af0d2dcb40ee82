// Values of C++ types as the texts that documents hold, and back.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
//   Type                          Text                                         Type of a new entry
//   bool                          1 or 0; true and false are read, too         bool
//   integers of 16 and 32 bits    decimal                                      short, ushort, long, ulong
//   integers of 64 bits           decimal                                      string: no type has 64 bits
//   double                        the shortest decimal that reads back         double
//   std::string, std::u16string   the text itself                              string
//   std::vector<std::uint8_t>     two upper-case hexadecimal digits per byte   string
//
// A text is read as a number, a truth value or bytes only if all of it is one. White space before and after it does not
// count, because people put it there who edit files by hand. Hosts that read `1` by other means get the same value.
#ifndef MOX_XMLAPI_FRONT_TYPED_VALUE_HPP
#define MOX_XMLAPI_FRONT_TYPED_VALUE_HPP

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/value_type.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/platform/mox_dbtInfo.h"

namespace mox::front {

// ---- which types there are

template <class T, class... Others>
inline constexpr bool kIsOneOf = (std::is_same_v<T, Others> || ...);

// A signed or unsigned integer of 16, 32 or 64 bits that is a number, not a character or a truth value.
template <class T>
inline constexpr bool kIsInteger =
    kIsOneOf<T, short, unsigned short, int, unsigned, long, unsigned long, long long, unsigned long long>;

using Bytes = std::vector<std::uint8_t>;

// Whether T is a container of bytes in one piece: std::vector or std::array of std::uint8_t, std::span of std::byte.
template <class T, class = void>
inline constexpr bool kIsBytes = false;
template <class T>
inline constexpr bool kIsBytes<
    T, std::void_t<decltype(std::declval<const T&>().data()), decltype(std::declval<const T&>().size())>> =
    kIsOneOf<std::remove_cv_t<std::remove_pointer_t<decltype(std::declval<const T&>().data())>>,
             unsigned char, std::byte>;

template <class T>
inline constexpr bool kIsGettable =
    kIsInteger<T> || kIsOneOf<T, bool, double, std::string, std::u16string, Bytes>;

template <class T>
constexpr void RequireGettable() {
    static_assert(kIsGettable<T>,
                  "a value is read as bool, an integer of 16, 32 or 64 bits, double, std::string, "
                  "std::u16string or std::vector<std::uint8_t>");
}

// Whether an argument is a pointer to a Problem; a literal 0 is none.
template <class T>
inline constexpr bool kIsProblem = kIsOneOf<T, Problem*, std::nullptr_t>;

// T, where it is not to be deduced.
template <class T>
struct SameType {
    using type = T;
};
template <class T>
using Same = typename SameType<T>::type;

// ---- from texts

// Why a text is no value of a type; None if it is one. `what` ends the sentence that begins with the value.
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

inline Misfit ParseBytes(std::string_view text, Bytes& bytes) {
    bytes.resize(text.size() / 2);
    const std::size_t count =
        TableEntryValueInfoStruct::HexToData(std::string(text).c_str(), bytes.data(), bytes.size());
    if (text.size() % 2 == 0 && count == bytes.size()) return {};
    return {Reason::WrongType, "does not consist of pairs of hexadecimal digits"};
}

// Returns the value of the text, which is no std::string; nullopt if it has none, which the target reports.
template <class T>
std::optional<T> ValueOfText(std::string_view text, const Target& target) {
    T value{};
    Misfit misfit;
    const std::string_view inner = WithoutSpace(text);
    if constexpr (std::is_same_v<T, bool>) {
        misfit = ParseBool(inner, value);
    } else if constexpr (std::is_same_v<T, double>) {
        misfit = ParseDouble(inner, value);
    } else if constexpr (std::is_same_v<T, Bytes>) {
        misfit = ParseBytes(inner, value);
    } else {
        misfit = ParseInteger(inner, value);
    }
    if (misfit.reason == Reason::None) {
        target.Succeed();
        return value;
    }
    if (target.problem != nullptr) {
        constexpr std::size_t kMostShown = 60;
        const std::string shown =
            text.size() > kMostShown ? std::string(text.substr(0, kMostShown)) + "..." : std::string(text);
        target.Refuse(misfit.reason, "the value \"" + shown + "\" " + misfit.what);
    }
    return std::nullopt;
}

// ---- to texts

// A value as text, and the type that a new entry with it gets.
struct TypedText {
    Text text;
    ValueType type;
};

inline std::string HexOf(const void* data, std::size_t size) {
    std::string hex(2 * size, '\0');
    TableEntryValueInfoStruct::DataToHex(data, hex.data(), size);  // ends it with a zero, as it is already
    return hex;
}

template <class Integer>
std::string FormatInteger(Integer value) {
    char text[24];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

template <class Integer>
constexpr ValueType TypeOfInteger() noexcept {
    if (sizeof(Integer) == 2) return (std::is_signed_v<Integer>) ? ValueType::Short : ValueType::UShort;
    if (sizeof(Integer) == 4) return (std::is_signed_v<Integer>) ? ValueType::Long : ValueType::ULong;
    return ValueType::String;
}

// Returns nullopt for a double that is no number, which the target reports.
template <class T>
std::optional<TypedText> TypedTextOf(const T& value, const Target& target) {
    static_assert(std::is_same_v<T, bool> || kIsInteger<T> || std::is_same_v<T, double> ||
                      std::is_convertible_v<const T&, Text> || kIsBytes<T>,
                  "a value is a bool, an integer of 16, 32 or 64 bits, a double, a text or a container of "
                  "std::uint8_t or std::byte; convert any other to one of these");
    if constexpr (std::is_same_v<T, bool>) {
        return TypedText{value ? "1" : "0", ValueType::Bool};
    } else if constexpr (kIsInteger<T>) {
        return TypedText{FormatInteger(value), TypeOfInteger<T>()};
    } else if constexpr (std::is_same_v<T, double>) {
        if (std::isfinite(value)) return TypedText{FormatDouble(value), ValueType::Double};
        target.Refuse(Reason::OutOfRange, "the value is infinite or not a number");
        return std::nullopt;
    } else if constexpr (std::is_convertible_v<const T&, Text>) {
        return TypedText{value, ValueType::String};
    } else {
        return TypedText{HexOf(value.data(), value.size()), ValueType::String};
    }
}

}  // namespace mox::front

#endif
