// Texts of the C++ front: 16-bit texts for the exports, made from UTF-8 or UTF-16 and given back as either.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
// The library keeps rows of 16-bit units and never checks them, so a surrogate may stand without its partner. In
// UTF-8 such a unit is given, and taken, as the three bytes that the UTF-8 pattern makes of its number (ED A0 80 to
// ED BF BF). Thus every 16-bit text has a UTF-8 form, and comes back from it unit by unit. Two such forms that make a
// pair are taken as the pair. Other bytes that are not UTF-8 (a stray or missing following byte, a longer form than
// needed, numbers above 10FFFF) have no 16-bit form.
#ifndef MOX_XMLAPI_FRONT_TEXT_HPP
#define MOX_XMLAPI_FRONT_TEXT_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "mox_xmlApi/platform/wchar16.h"

namespace mox {
namespace front {

// Text as the exports have it.
using Units = std::basic_string<wchar16>;
using UnitsView = std::basic_string_view<wchar16>;

inline bool IsLead(char32_t unit) noexcept {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

inline bool IsTrail(char32_t unit) noexcept {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

inline void PutUtf8(std::string& out, char32_t character) {
    const auto put = [&out](char32_t byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (character < 0x80) return put(character);
    if (character < 0x800) {
        put(0xC0 | (character >> 6));
    } else if (character < 0x10000) {
        put(0xE0 | (character >> 12));
        put(0x80 | ((character >> 6) & 0x3F));
    } else {
        put(0xF0 | (character >> 18));
        put(0x80 | ((character >> 12) & 0x3F));
        put(0x80 | ((character >> 6) & 0x3F));
    }
    put(0x80 | (character & 0x3F));
}

// Works on any type of 16-bit unit.
template <class Unit>
std::string Utf8Of(std::basic_string_view<Unit> text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        char32_t character = static_cast<char32_t>(text[at]) & 0xFFFF;
        if (IsLead(character) && at + 1 < text.size() &&
            IsTrail(static_cast<char32_t>(text[at + 1]) & 0xFFFF)) {
            const char32_t trail = static_cast<char32_t>(text[++at]) & 0xFFFF;
            character = 0x10000 + ((character - 0xD800) << 10) + (trail - 0xDC00);
        }
        PutUtf8(result, character);
    }
    return result;
}

// Takes the character, or the lone surrogate, at the start of the bytes away from them. Returns false when there is
// none.
inline bool TakeUtf8(std::string_view& bytes, char32_t& character) noexcept {
    const auto byte = [&bytes](std::size_t at) {
        return static_cast<char32_t>(static_cast<unsigned char>(bytes[at]));
    };
    const char32_t first = byte(0);
    std::size_t length = 1;
    char32_t smallest = 0;  // what a shorter form could have said is not taken
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

template <class Unit>
std::optional<std::basic_string<Unit>> UnitsOf(std::string_view utf8) {
    std::basic_string<Unit> result;
    result.reserve(utf8.size());
    while (!utf8.empty()) {
        char32_t character = 0;
        if (!TakeUtf8(utf8, character)) return std::nullopt;
        if (character >= 0x10000) {
            result += static_cast<Unit>(0xD800 + ((character - 0x10000) >> 10));
            character = 0xDC00 + ((character - 0x10000) & 0x3FF);
        }
        result += static_cast<Unit>(character);
    }
    return result;
}

// A 16-bit text in the string type that the caller asks for: std::string (UTF-8) or std::u16string.
template <class String>
String StringOf(UnitsView text) {
    if constexpr (sizeof(typename String::value_type) == 1) {
        return Utf8Of(text);
    } else {
        return String(text.begin(), text.end());
    }
}

}  // namespace front

// The UTF-8 form of a 16-bit text. There always is one, see the top of this file.
inline std::string toUtf8(std::u16string_view text) {
    return front::Utf8Of(text);
}

// The 16-bit form of UTF-8 bytes; nothing when they have none, see the top of this file.
inline std::optional<std::u16string> toUtf16(std::string_view utf8) {
    return front::UnitsOf<char16_t>(utf8);
}

// An argument of the front: made by itself from UTF-8 (std::string, std::string_view, "...") and from UTF-16
// (std::u16string, std::u16string_view, u"..."; on Windows std::wstring, std::wstring_view and L"...", too). It keeps a
// copy.
//
// A text that the exports cannot be told is invalid: bytes that have no 16-bit form, a text with a zero unit in it, a
// null pointer. Every function fails that is given one, and does nothing.
class Text {
  public:
    // NOLINTBEGIN(google-explicit-constructor): texts become arguments by themselves
    Text(std::string_view utf8) : Text(front::UnitsOf<wchar16>(utf8)) {}
    Text(std::u16string_view text) : Text(std::optional(front::Units(text.begin(), text.end()))) {}
    Text(const std::string& utf8) : Text(std::string_view(utf8)) {}
    Text(const std::u16string& text) : Text(std::u16string_view(text)) {}
    Text(const char* utf8) : Text(OfPointer<std::string_view>(utf8)) {}
    Text(const char16_t* text) : Text(OfPointer<std::u16string_view>(text)) {}
#if defined(__cpp_char8_t)
    Text(const char8_t* utf8) : Text(OfPointer<std::u8string_view>(utf8)) {}
    Text(std::basic_string_view<char8_t> utf8) : Text(std::string(utf8.begin(), utf8.end())) {}
    Text(const std::basic_string<char8_t>& utf8) : Text(std::basic_string_view<char8_t>(utf8)) {}
#endif
#if defined(_WIN32)
    Text(std::wstring_view text) : Text(std::optional(front::Units(text))) {}
    Text(const std::wstring& text) : Text(std::wstring_view(text)) {}
    Text(const wchar_t* text) : Text(OfPointer<std::wstring_view>(text)) {}
#endif

    // NOLINTEND(google-explicit-constructor)

    bool isValid() const noexcept {
        return isValid_;
    }

    // The text for the exports, zero-terminated; empty when invalid. It lives as long as this object.
    const wchar16* c_str() const noexcept {
        return units_.c_str();
    }
    front::UnitsView units() const noexcept {
        return units_;
    }

  private:
    explicit Text(std::optional<front::Units> units)
        : units_(std::move(units).value_or(front::Units())),
          isValid_(units.has_value() && units_.find(wchar16{0}) == front::Units::npos) {
        if (!isValid_) units_.clear();
    }

    template <class View>
    static Text OfPointer(typename View::const_pointer text) {
        if (text == nullptr) return Text(std::optional<front::Units>());
        return Text(View(text));
    }

    front::Units units_;
    bool isValid_;
};

}  // namespace mox

#endif
