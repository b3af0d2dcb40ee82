#include "mox_xmlApi/platform/mox_porting.h"

#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <type_traits>

namespace {

using WideText = std::basic_string<wchar16>;

constexpr char32_t kIllFormed = 0xFFFFFFFF;

bool IsLeadSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsTrailSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Decodes the character that begins at wide[at], and moves `at` past it. Returns kIllFormed if there is none.
char32_t DecodeCharacter(const WideText& wide, std::size_t& at) {
    const char32_t unit = wide[at++];
    if (!IsLeadSurrogate(unit)) return IsTrailSurrogate(unit) ? kIllFormed : unit;
    if (at == wide.size() || !IsTrailSurrogate(wide[at])) return kIllFormed;
    const char32_t trail = wide[at++];
    return 0x10000 + ((unit - 0xD800) << 10) + (trail - 0xDC00);
}

// Decodes the character that begins at narrow[at], and moves `at` past it. Returns kIllFormed if there is none.
char32_t DecodeCharacter(const std::string& narrow, std::size_t& at) {
    const char32_t first = static_cast<unsigned char>(narrow[at++]);
    if (first < 0x80) return first;

    int following = 0;
    char32_t smallest = 0;  // smaller ones have a shorter sequence, and must use it
    char32_t character = 0;
    if (first >= 0xC0 && first <= 0xDF) {
        following = 1, smallest = 0x80, character = first & 0x1F;
    } else if (first >= 0xE0 && first <= 0xEF) {
        following = 2, smallest = 0x800, character = first & 0x0F;
    } else if (first >= 0xF0 && first <= 0xF7) {
        following = 3, smallest = 0x10000, character = first & 0x07;
    } else {
        return kIllFormed;
    }
    for (; following > 0; --following) {
        if (at == narrow.size()) return kIllFormed;
        const char32_t next = static_cast<unsigned char>(narrow[at++]);
        if ((next & 0xC0) != 0x80) return kIllFormed;
        character = (character << 6) | (next & 0x3F);
    }
    const bool isSurrogate = IsLeadSurrogate(character) || IsTrailSurrogate(character);
    return character < smallest || character > 0x10FFFF || isSurrogate ? kIllFormed : character;
}

// Encodes a character at `out`. Returns the end.
char* EncodeCharacter(char* out, char32_t character) {
    const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(static_cast<unsigned char>(byte)); };
    const auto putFollowing = [&put](char32_t bits) { put(0x80 | (bits & 0x3F)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | (character >> 6));
        putFollowing(character);
    } else if (character < 0x10000) {
        put(0xE0 | (character >> 12));
        putFollowing(character >> 6);
        putFollowing(character);
    } else {
        put(0xF0 | (character >> 18));
        putFollowing(character >> 12);
        putFollowing(character >> 6);
        putFollowing(character);
    }
    return out;
}

wchar16* EncodeCharacter(wchar16* out, char32_t character) {
    if (character < 0x10000) {
        *out++ = static_cast<wchar16>(character);
    } else {
        *out++ = static_cast<wchar16>(0xD800 + ((character - 0x10000) >> 10));
        *out++ = static_cast<wchar16>(0xDC00 + ((character - 0x10000) & 0x3FF));
    }
    return out;
}

// The length of a character in UTF-8.
std::size_t NarrowLength(char32_t character) {
    if (character < 0x80) return 1;
    if (character < 0x800) return 2;
    return character < 0x10000 ? 3 : 4;
}

template <class Word, class Unit>
Word Load(const Unit* units) {
    Word word = 0;
    std::memcpy(&word, units, sizeof word);
    return word;
}

// Calls `four(from)` for every group of four units; the last group overlaps the one before it if necessary. For fewer
// than four units, calls `one(i)` for each.
template <class Four, class One>
void ForEachFour(std::size_t size, Four four, One one) {
    if (size < 4) {
        for (std::size_t i = 0; i < size; ++i)
            one(i);
        return;
    }
    for (std::size_t from = 0; from + 4 < size; from += 4)
        four(from);
    four(size - 4);
}

// Most texts are ASCII. Several units are tested at a time.
template <class Text>
bool IsAscii(const Text& text) {
    constexpr bool kIsNarrow = sizeof(typename Text::value_type) == 1;
    using Word = std::conditional_t<kIsNarrow, std::uint32_t, std::uint64_t>;
    constexpr Word kNonAsciiBits = static_cast<Word>(kIsNarrow ? 0x80808080U : 0xFF80FF80FF80FF80U);
    const auto* units = text.data();
    Word all = 0;
    ForEachFour(
        text.size(), [&](std::size_t from) { all |= Load<Word>(units + from); },
        [&](std::size_t i) { all |= static_cast<Word>(units[i]) & kNonAsciiBits; });
    return (all & kNonAsciiBits) == 0;
}

// Copies an ASCII text to the other form.
void CopyAscii(const std::basic_string<wchar16>& wide, std::string& narrow) {
    narrow.resize(wide.size());
    const wchar16* units = wide.data();
    char* out = narrow.data();
    const auto four = [=](std::size_t from) {
        auto word = Load<std::uint64_t>(units + from);
        word = (word | (word >> 8)) & 0x0000FFFF0000FFFFU;
        const auto bytes = static_cast<std::uint32_t>(word | (word >> 16));
        std::memcpy(out + from, &bytes, sizeof bytes);
    };
    ForEachFour(wide.size(), four, [=](std::size_t i) { out[i] = static_cast<char>(units[i]); });
}

void CopyAscii(const std::string& narrow, std::basic_string<wchar16>& wide) {
    wide.resize(narrow.size());
    const char* bytes = narrow.data();
    wchar16* out = wide.data();
    const auto four = [=](std::size_t from) {
        std::uint64_t word = Load<std::uint32_t>(bytes + from);
        word = (word | (word << 16)) & 0x0000FFFF0000FFFFU;
        word = (word | (word << 8)) & 0x00FF00FF00FF00FFU;
        std::memcpy(out + from, &word, sizeof word);
    };
    ForEachFour(narrow.size(), four, [=](std::size_t i) { out[i] = static_cast<wchar16>(bytes[i]); });
}

// The output buffer. Stores at most `capacity` units, one of which is reserved for the zero unit.
class BoundedText {
  public:
    BoundedText(wchar16* buffer, std::size_t capacity) : buffer_(buffer), capacity_(capacity) {}

    void Put(wchar16 unit) {
        if (length_ + 1 < capacity_) {
            buffer_[length_++] = unit;
        } else {
            fits_ = false;
        }
    }

    // Stops when the buffer is full, so that a huge count takes no time.
    void Fill(char unit, std::size_t count) {
        for (; count > 0 && fits_; --count)
            Put(static_cast<wchar16>(unit));
    }

    void Put(std::string_view ascii) {
        for (const char unit : ascii)
            Put(static_cast<wchar16>(unit));
    }

    bool Fits() const { return fits_; }

    // Terminates the text. Returns its length, or -1 if it did not fit or the format was not valid.
    int Finish(bool isFormatValid) {
        if (capacity_ == 0) return -1;
        buffer_[length_] = 0;
        const bool isInt = length_ <= static_cast<std::size_t>(std::numeric_limits<int>::max());
        return fits_ && isFormatValid && isInt ? static_cast<int>(length_) : -1;
    }

  private:
    wchar16* buffer_;
    std::size_t capacity_;
    std::size_t length_ = 0;
    bool fits_ = true;
};

struct Conversion {
    bool fillWithZeros = false;
    bool hasPrecision = false;
    std::size_t width = 0;
    std::size_t precision = 0;
    wchar16 letter = 0;
};

// Reads a decimal number of the format and moves `format` past it. The result stops growing above 10^9.
std::size_t ReadNumber(const wchar16*& format) {
    std::size_t count = 0;
    for (; *format >= '0' && *format <= '9'; ++format) {
        if (count < 1'000'000'000) count = count * 10 + static_cast<std::size_t>(*format - '0');
    }
    return count;
}

// Reads the conversion whose "%" is just before `format`, and moves `format` past its letter.
Conversion ReadConversion(const wchar16*& format) {
    Conversion result;
    for (; *format == '0'; ++format)
        result.fillWithZeros = true;
    result.width = ReadNumber(format);
    if (*format == '.') {
        ++format;
        result.hasPrecision = true;
        result.precision = ReadNumber(format);
    }
    result.letter = *format;
    if (*format != 0) ++format;
    return result;
}

void PutNumber(BoundedText& out, const Conversion& how, bool negative, std::uint32_t magnitude) {
    const char* const digits = how.letter == 'X' ? "0123456789ABCDEF" : "0123456789abcdef";
    const std::uint32_t base = how.letter == 'd' || how.letter == 'u' ? 10 : 16;
    char storage[10];
    char* const end = storage + sizeof(storage);
    char* first = end;
    for (; magnitude != 0; magnitude /= base)
        *--first = digits[magnitude % base];
    const std::string_view text(first, static_cast<std::size_t>(end - first));

    const std::size_t sign = negative ? 1 : 0;
    std::size_t minDigits = how.hasPrecision ? how.precision : 1;
    if (how.fillWithZeros && !how.hasPrecision && how.width > sign + minDigits) minDigits = how.width - sign;
    const std::size_t zeros = minDigits > text.size() ? minDigits - text.size() : 0;
    const std::size_t length = sign + zeros + text.size();
    if (how.width > length) out.Fill(' ', how.width - length);
    if (negative) out.Put("-");
    out.Fill('0', zeros);
    out.Put(text);
}

void PutText(BoundedText& out, const Conversion& how, const wchar16* text) {
    static const wchar16 kNull[] = {'(', 'n', 'u', 'l', 'l', ')', 0};
    if (text == nullptr) text = kNull;
    const std::size_t maxUnits = how.hasPrecision ? how.precision : std::numeric_limits<std::size_t>::max();
    if (how.width > 0) {
        std::size_t length = 0;
        while (length < maxUnits && length < how.width && text[length] != 0)
            ++length;
        out.Fill(' ', how.width - length);
    }
    for (std::size_t i = 0; i < maxUnits && text[i] != 0 && out.Fits(); ++i)
        out.Put(text[i]);
}

void PutSignedNumber(BoundedText& out, const Conversion& how, int value) {
    const auto bits = static_cast<std::uint32_t>(value);
    PutNumber(out, how, value < 0, value < 0 ? 0 - bits : bits);
}

}  // namespace

bool pdConvertString(const std::basic_string<wchar16>& wide, std::string& narrow) {
    if (IsAscii(wide)) {
        CopyAscii(wide, narrow);
        return true;
    }
    std::size_t length = 0;
    for (std::size_t at = 0; at < wide.size();) {
        const char32_t character = DecodeCharacter(wide, at);
        if (character == kIllFormed) return false;
        length += NarrowLength(character);
    }
    narrow.resize(length);
    char* out = narrow.data();
    for (std::size_t at = 0; at < wide.size();)
        out = EncodeCharacter(out, DecodeCharacter(wide, at));
    return true;
}

bool pdConvertString(const std::string& narrow, std::basic_string<wchar16>& wide) {
    if (IsAscii(narrow)) {
        CopyAscii(narrow, wide);
        return true;
    }
    std::size_t length = 0;
    for (std::size_t at = 0; at < narrow.size();) {
        const char32_t character = DecodeCharacter(narrow, at);
        if (character == kIllFormed) return false;
        length += character < 0x10000 ? 1 : 2;
    }
    wide.resize(length);
    wchar16* out = wide.data();
    for (std::size_t at = 0; at < narrow.size();)
        out = EncodeCharacter(out, DecodeCharacter(narrow, at));
    return true;
}

int pdSwprintf(wchar16* buffer, std::size_t capacity, const wchar16* format, ...) {
    BoundedText out(buffer, capacity);
    bool isFormatValid = true;
    std::va_list arguments;
    va_start(arguments, format);
    while (*format != 0 && isFormatValid && out.Fits()) {
        if (*format != '%') {
            out.Put(*format++);
            continue;
        }
        ++format;
        const Conversion how = ReadConversion(format);
        switch (how.letter) {
            case 'd':
                PutSignedNumber(out, how, va_arg(arguments, int));
                break;
            case 'u':
            case 'x':
            case 'X':
                PutNumber(out, how, false, va_arg(arguments, unsigned int));
                break;
            case 's':
                PutText(out, how, va_arg(arguments, const wchar16*));
                break;
            case '%':
                out.Put("%");
                break;
            default:
                isFormatValid = false;
        }
    }
    va_end(arguments);
    return out.Finish(isFormatValid);
}
