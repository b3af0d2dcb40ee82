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

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/value_text.hpp"
#include "mox_xmlApi/front/value_type.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/platform/mox_dbtInfo.h"

namespace mox::front {

// ---- which types there are

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

// Whether an argument is a pointer to a Problem; a literal 0 does not count.
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

inline Misfit ParseBytes(std::string_view text, Bytes& bytes) {
    bytes.resize(text.size() / 2);
    const std::size_t count =
        TableEntryValueInfoStruct::HexToData(std::string(text).c_str(), bytes.data(), bytes.size());
    if (text.size() % 2 == 0 && count == bytes.size()) return {};
    return {Reason::WrongType, "does not consist of pairs of hexadecimal digits"};
}

// Converts the text to a T other than a string. Returns nullopt, and reports why to the target, if the text is not a T.
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
