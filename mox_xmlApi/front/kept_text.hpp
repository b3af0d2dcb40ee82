// Which texts a file keeps: the rules that a text has to obey to be the same after the document has been saved and
// opened again, and to leave the file readable for other XML programs.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
//   Rule               Where              Why
//   LeadingSpace       elements           reading drops blanks, tabs and line ends at the beginning of a text
//   LineFeed           elements           the text is written on lines of its own, and their indentation becomes a part
//                                         of it
//   ControlCharacter   everywhere         no XML program reads a file with U+0001 to U+001F in it, except tabs, line
//                                         feeds and carriage returns
//   Noncharacter       everywhere         the same for U+FFFE and U+FFFF
//   UnpairedSurrogate  everywhere         the same for half of a surrogate pair
//   NotAscii           narrow files       they have one byte per unit
//
// Values, comments, and values of presentation data are texts of elements; names of sections and entries, and displayed
// names, are attributes. Everything else is kept as it is: trailing blanks, tabs and carriage returns inside a text,
// "]]>", markup characters. (In an attribute other XML programs read tabs and line ends as blanks, and in an element
// carriage returns as line feeds. This library does not.)
#ifndef MOX_XMLAPI_FRONT_KEPT_TEXT_HPP
#define MOX_XMLAPI_FRONT_KEPT_TEXT_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox::front {

// Where a file stores a text.
enum class TextPlace : std::uint8_t { Element, Attribute };

enum class TextRule : std::uint8_t {
    None,
    LeadingSpace,
    LineFeed,
    ControlCharacter,
    Noncharacter,
    UnpairedSurrogate,
    NotAscii
};

// The rule that a text breaks, and the unit that breaks it.
struct BrokenRule {
    TextRule rule = TextRule::None;
    char16_t unit = 0;

    // True if a rule is broken.
    explicit operator bool() const noexcept { return rule != TextRule::None; }
};

// Returns how many units at the beginning of the text are from U+0020 to U+007F, which are kept everywhere.
inline std::size_t CountPlain(UnitsView text) noexcept {
    constexpr std::uint64_t kEach = 0x0001000100010001U;
    std::size_t at = 0;
    for (; text.size() - at >= 4; at += 4) {
        std::uint64_t four = 0;
        std::memcpy(&four, text.data() + at, sizeof four);
        // The first test leaves units below 0x80; adding 0x60 then carries those from 0x20 on into bit 7.
        if ((four & (kEach * 0xFF80)) != 0) break;
        if (((four + kEach * 0x60) & (kEach * 0x80)) != kEach * 0x80) break;
    }
    while (at < text.size() && (static_cast<char32_t>(text[at]) & 0xFFFF) - 0x20U < 0x60U)
        ++at;
    return at;
}

// Returns the rule that the unit at `at` breaks. If it leads a surrogate pair, moves `at` to the second half of it.
inline BrokenRule RuleBrokenAt(UnitsView text, std::size_t& at, TextPlace place, Form form) noexcept {
    const auto unitAt = [&text](std::size_t i) { return static_cast<char16_t>(text[i]); };
    const char16_t unit = unitAt(at);
    if (unit < 0x20) {
        if (unit == '\n' && place == TextPlace::Element) return {TextRule::LineFeed, unit};
        return IsSpace(unit) ? BrokenRule() : BrokenRule{TextRule::ControlCharacter, unit};
    }
    if (unit >= 0x80 && form == Form::Narrow) return {TextRule::NotAscii, unit};
    if (unit >= 0xFFFE) return {TextRule::Noncharacter, unit};
    if (IsTrailSurrogate(unit)) return {TextRule::UnpairedSurrogate, unit};
    if (IsLeadSurrogate(unit)) {
        if (at + 1 == text.size() || !IsTrailSurrogate(unitAt(at + 1)))
            return {TextRule::UnpairedSurrogate, unit};
        ++at;
    }
    return {};
}

inline bool HasUnpairedSurrogate(UnitsView text) noexcept {
    for (std::size_t at = CountPlain(text); at < text.size(); ++at) {
        if (RuleBrokenAt(text, at, TextPlace::Attribute, Form::Wide).rule == TextRule::UnpairedSurrogate)
            return true;
    }
    return false;
}

// Returns the first rule that the text breaks in that place of a file of that form. Looks at each unit once.
inline BrokenRule FindBrokenRule(UnitsView text, TextPlace place, Form form) noexcept {
    if (place == TextPlace::Element && !text.empty() && IsSpace(static_cast<char16_t>(text.front())))
        return {TextRule::LeadingSpace, static_cast<char16_t>(text.front())};
    for (std::size_t at = CountPlain(text); at < text.size(); ++at) {
        const BrokenRule broken = RuleBrokenAt(text, at, place, form);
        if (broken) return broken;
    }
    return {};
}

// "U+00FC", for example.
inline std::string NameOfUnit(char16_t unit) {
    std::string name = "U+";
    for (int shift = 12; shift >= 0; shift -= 4)
        name += "0123456789ABCDEF"[(unit >> shift) & 0xF];
    return name;
}

// The rule as the end of a sentence that begins with what the text is: "the value " + Describe(broken).
inline std::string Describe(const BrokenRule& broken) {
    const std::string unit = NameOfUnit(broken.unit);
    switch (broken.rule) {
        case TextRule::None:
            break;
        case TextRule::LeadingSpace:
            return "begins with white space, which is dropped when the file is opened";
        case TextRule::LineFeed:
            return "contains a line feed, so the file would add white space to it";
        case TextRule::ControlCharacter:
            return "contains the control character " + unit +
                   ", with which other XML programs cannot read the file";
        case TextRule::Noncharacter:
            return "contains " + unit + ", with which other XML programs cannot read the file";
        case TextRule::UnpairedSurrogate:
            return "contains half of a surrogate pair, " + unit +
                   ", with which other XML programs cannot read the file";
        case TextRule::NotAscii:
            return "contains " + unit + ", and a narrow file keeps 7-bit text only";
    }
    return "is kept";
}

}  // namespace mox::front

#endif
