// Texts of the C++ front: conversion of UTF-8 and UTF-16 to the 16-bit texts of the exports, and back.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
// The library stores 16-bit units and never checks them, so a surrogate may be unpaired. Here its UTF-8 form is the
// three bytes that the UTF-8 pattern gives for its number (ED A0 80 to ED BF BF). Every 16-bit text thus has a UTF-8
// form, and converting that back gives the same units. Two such forms in a row that make a surrogate pair are read as
// the pair. Other bytes that are not UTF-8 (a stray or missing continuation byte, an overlong form, a number above
// 10FFFF) have no 16-bit form.
#ifndef MOX_XMLAPI_FRONT_TEXT_HPP
#define MOX_XMLAPI_FRONT_TEXT_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "mox_xmlApi/platform/wchar16.h"

namespace mox {
namespace front {

// Text of the exports.
using Units = std::basic_string<wchar16>;
using UnitsView = std::basic_string_view<wchar16>;

inline bool IsSpace(char32_t unit) noexcept {
    return unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r';
}

inline bool IsLeadSurrogate(char32_t unit) noexcept {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

inline bool IsTrailSurrogate(char32_t unit) noexcept {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

inline void AppendUtf8(std::string& out, char32_t character) {
    const auto append = [&out](char32_t byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (character < 0x80) return append(character);
    if (character < 0x800) {
        append(0xC0 | (character >> 6));
    } else if (character < 0x10000) {
        append(0xE0 | (character >> 12));
        append(0x80 | ((character >> 6) & 0x3F));
    } else {
        append(0xF0 | (character >> 18));
        append(0x80 | ((character >> 12) & 0x3F));
        append(0x80 | ((character >> 6) & 0x3F));
    }
    append(0x80 | (character & 0x3F));
}

// Copies the ASCII characters that `bytes` begins with, up to the first zero, to `units`, which has room for
// bytes.size() units. Returns how many there are. Most texts are ASCII, so four characters are copied at a time
// (little-endian).
template <class Unit>
std::size_t WidenAscii(std::string_view bytes, Unit* units) noexcept {
    std::size_t at = 0;
    for (; bytes.size() - at >= 4; at += 4) {
        std::uint32_t four = 0;
        std::memcpy(&four, bytes.data() + at, sizeof four);
        if (((four | (four - 0x01010101U)) & 0x80808080U) != 0) break;  // not ASCII, or zero
        std::uint64_t wide = four;
        wide = (wide | wide << 16) & 0x0000FFFF0000FFFFU;
        wide = (wide | wide << 8) & 0x00FF00FF00FF00FFU;
        std::memcpy(units + at, &wide, sizeof wide);
    }
    for (; at < bytes.size() && static_cast<signed char>(bytes[at]) > 0; ++at)
        units[at] = static_cast<Unit>(bytes[at]);
    return at;
}

// The reverse: copies the ASCII characters that `units` begins with to `bytes`, which has room for units.size() bytes.
template <class Unit>
std::size_t NarrowAscii(std::basic_string_view<Unit> units, char* bytes) noexcept {
    std::size_t at = 0;
    for (; units.size() - at >= 4; at += 4) {
        std::uint64_t four = 0;
        std::memcpy(&four, units.data() + at, sizeof four);
        if ((four & 0xFF80FF80FF80FF80U) != 0) break;
        four = (four | four >> 8) & 0x0000FFFF0000FFFFU;
        const auto narrow = static_cast<std::uint32_t>(four | four >> 16);
        std::memcpy(bytes + at, &narrow, sizeof narrow);
    }
    for (; at < units.size() && (static_cast<char32_t>(units[at]) & 0xFFFF) < 0x80; ++at)
        bytes[at] = static_cast<char>(units[at]);
    return at;
}

// The UTF-8 form of a text of any type of 16-bit unit.
template <class Unit>
std::string Utf8Of(std::basic_string_view<Unit> text) {
    static_assert(sizeof(Unit) == 2, "a 16-bit unit");
    const auto unit = [&text](std::size_t at) { return static_cast<char32_t>(text[at]) & 0xFFFF; };
    std::string result(text.size(), '\0');
    std::size_t at = NarrowAscii(text, result.data());
    result.resize(at);
    for (; at < text.size(); ++at) {
        char32_t character = unit(at);
        if (IsLeadSurrogate(character) && at + 1 < text.size() && IsTrailSurrogate(unit(at + 1)))
            character = 0x10000 + ((character - 0xD800) << 10) + (unit(++at) - 0xDC00);
        AppendUtf8(result, character);
    }
    return result;
}

// Decodes the character, or the unpaired surrogate, that the non-empty `bytes` begin with, and removes it from them.
// Returns false if they do not begin with one; `bytes` and `character` are then unspecified.
inline bool DecodeUtf8(std::string_view& bytes, char32_t& character) noexcept {
    const auto byte = [&bytes](std::size_t at) {
        return static_cast<char32_t>(static_cast<unsigned char>(bytes[at]));
    };
    const char32_t first = byte(0);
    std::size_t length = 1;
    char32_t smallest = 0;  // smaller characters have a shorter form
    if (first < 0x80) {
        character = first;
    } else if (first >= 0xC0 && first <= 0xDF) {
        length = 2, smallest = 0x80, character = first & 0x1F;
    } else if (first >= 0xE0 && first <= 0xEF) {
        length = 3, smallest = 0x800, character = first & 0x0F;
    } else if (first >= 0xF0 && first <= 0xF7) {
        length = 4, smallest = 0x10000, character = first & 0x07;
    } else {
        return false;
    }
    if (bytes.size() < length) return false;
    for (std::size_t at = 1; at < length; ++at) {
        if ((byte(at) & 0xC0) != 0x80) return false;
        character = (character << 6) | (byte(at) & 0x3F);
    }
    bytes.remove_prefix(length);
    return character >= smallest && character <= 0x10FFFF;
}

// Writes the 16-bit form of UTF-8 bytes to `units`, which has room for utf8.size() units: no form is longer. Returns
// its length; nullopt if there is no such form.
template <class Unit>
std::optional<std::size_t> ConvertUtf8(std::string_view utf8, Unit* units) noexcept {
    static_assert(sizeof(Unit) == 2, "a 16-bit unit");
    std::size_t length = WidenAscii(utf8, units);
    utf8.remove_prefix(length);
    while (!utf8.empty()) {
        char32_t character = 0;
        if (!DecodeUtf8(utf8, character)) return std::nullopt;
        if (character >= 0x10000) {
            units[length++] = static_cast<Unit>(0xD800 + ((character - 0x10000) >> 10));
            character = 0xDC00 + ((character - 0x10000) & 0x3FF);
        }
        units[length++] = static_cast<Unit>(character);
    }
    return length;
}

// The 16-bit form of UTF-8 bytes; nullopt if there is none.
template <class Unit>
std::optional<std::basic_string<Unit>> UnitsOf(std::string_view utf8) {
    std::basic_string<Unit> result(utf8.size(), Unit{0});
    const std::optional<std::size_t> length = ConvertUtf8(utf8, result.data());
    if (!length.has_value()) return std::nullopt;
    result.resize(*length);
    return result;
}

// A 16-bit text as std::string (UTF-8) or std::u16string.
template <class String>
String StringOf(UnitsView text) {
    if constexpr (sizeof(typename String::value_type) == 1) {
        return Utf8Of(text);
    } else {
        return String(text.begin(), text.end());
    }
}

}  // namespace front

// Returns the UTF-8 form of a 16-bit text. Every text has one, see the top of this file.
inline std::string toUtf8(std::u16string_view text) {
    return front::Utf8Of(text);
}

// Returns the 16-bit form of UTF-8 bytes; nullopt if they have none, see the top of this file.
inline std::optional<std::u16string> toUtf16(std::string_view utf8) {
    return front::UnitsOf<char16_t>(utf8);
}

namespace front {

// Whether T is std::filesystem::path, which this header need not include, or one like it.
template <class T, class = void>
inline constexpr bool kIsPath = false;
template <class T>
inline constexpr bool kIsPath<T, std::void_t<typename T::string_type, typename T::value_type,
                                             decltype(std::declval<const T&>().native()),
                                             decltype(std::declval<const T&>().lexically_normal())>> = true;

}  // namespace front

// An argument of the front. It converts implicitly from UTF-8 (std::string, std::string_view, "..."), UTF-16
// (std::u16string, std::u16string_view, u"..."; on Windows also std::wstring, std::wstring_view and L"...") and
// std::filesystem::path. It holds a copy of the text; a short one needs no allocated memory.
//
// A text that cannot be passed to the exports is invalid: bytes without a 16-bit form, a text that contains a zero
// unit, a null pointer. A function that is given an invalid text fails and does nothing.
class Text {
  public:
    // NOLINTBEGIN(google-explicit-constructor): arguments are to convert implicitly
    Text(std::string_view utf8) : Text() { AssignUtf8(utf8); }
    Text(std::u16string_view text) : Text() { AssignUnits(text); }
    Text(const std::string& utf8) : Text(std::string_view(utf8)) {}
    Text(const std::u16string& text) : Text(std::u16string_view(text)) {}
    Text(const char* utf8) : Text() {
        if (utf8 != nullptr) AssignUtf8(utf8);
    }
    Text(const char16_t* text) : Text() {
        if (text != nullptr) AssignUnits(std::u16string_view(text));
    }
#if defined(__cpp_char8_t)
    Text(std::basic_string_view<char8_t> utf8) : Text(std::string(utf8.begin(), utf8.end())) {}
    Text(const std::basic_string<char8_t>& utf8) : Text(std::basic_string_view<char8_t>(utf8)) {}
    Text(const char8_t* utf8) : Text() {
        if (utf8 != nullptr) AssignUtf8(std::string(utf8, utf8 + std::char_traits<char8_t>::length(utf8)));
    }
#endif
#if defined(_WIN32)
    Text(std::wstring_view text) : Text() {
        AssignUnits(text);
    }
    Text(const std::wstring& text) : Text(std::wstring_view(text)) {}
    Text(const wchar_t* text) : Text() {
        if (text != nullptr) AssignUnits(std::wstring_view(text));
    }
#endif

    // The path as the system stores it: UTF-16 on Windows, elsewhere bytes that have to be UTF-8.
    template <class Path, class = std::enable_if_t<front::kIsPath<Path>>>
    Text(const Path& path) : Text(path.native()) {}

    // NOLINTEND(google-explicit-constructor)

    Text(const Text& other) : shortLength_(other.shortLength_), long_(other.long_), isValid_(other.isValid_) {
        CopyShort(other);
    }
    Text& operator=(const Text& other) {
        if (this == &other) return *this;
        long_ = other.long_;
        shortLength_ = other.shortLength_;
        isValid_ = other.isValid_;
        CopyShort(other);
        return *this;
    }
    ~Text() = default;

    bool isValid() const noexcept {
        return isValid_;
    }

    // The text for the exports, zero-terminated; empty if invalid. The pointer and the view are valid as long as this
    // object exists and is not assigned to.
    const wchar16* c_str() const noexcept {
        return units().data();
    }
    front::UnitsView units() const noexcept {
        return long_.empty() ? front::UnitsView(short_, shortLength_) : front::UnitsView(long_);
    }

  private:
    static constexpr std::size_t kShortSize = 64;

    Text() noexcept {
        short_[0] = 0;
    }

    // Returns room for `length` units and a zero unit, which is set. Called once, by a constructor.
    wchar16* Reserve(std::size_t length) {
        if (length < kShortSize) return short_;
        long_.resize(length);
        return long_.data();
    }

    // Ends the text after the first `length` of the units that were reserved.
    void Commit(std::size_t length) {
        if (long_.empty()) {
            shortLength_ = length;
            short_[length] = 0;
        } else {
            long_.resize(length);
        }
        isValid_ = true;
    }

    void AssignUtf8(std::string_view utf8) {
        wchar16* const units = Reserve(utf8.size());
        if (front::WidenAscii(utf8, units) == utf8.size()) {
            Commit(utf8.size());
        } else if (const auto length = front::ConvertUtf8(utf8, units);
                   length.has_value() && utf8.find('\0') == std::string_view::npos) {
            Commit(*length);
        } else {
            long_.clear();
            short_[0] = 0;
        }
    }

    template <class Unit>
    void AssignUnits(std::basic_string_view<Unit> text) {
        if (text.find(Unit{0}) != std::basic_string_view<Unit>::npos) return;
        std::copy(text.begin(), text.end(), Reserve(text.size()));
        Commit(text.size());
    }

    void CopyShort(const Text& other) noexcept {
        std::copy_n(other.short_, shortLength_ + 1, short_);
    }

    // The text is in long_ unless that is empty; otherwise it is in short_, followed by a zero unit. What comes after
    // that is not set: most texts are short, and each call makes some.
    wchar16 short_[kShortSize];
    std::size_t shortLength_ = 0;
    front::Units long_;
    bool isValid_ = false;
};

}  // namespace mox

#endif
