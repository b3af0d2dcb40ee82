// What all fuzz targets share: how they decode their input, and how they report what is wrong.
//
// The input of a structured target reads like a small language, so that seeds can be written by hand: digits
// choose from tables of interesting things, quotes enclose texts, and every other byte means something, too.
#ifndef MOX_XMLAPI_FUZZ_FUZZ_INPUT_H
#define MOX_XMLAPI_FUZZ_FUZZ_INPUT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "fuzz/fixed_key.h"
#include "mox_xmlApi/platform/wide_text.h"
#include "tests/model/text.h"

namespace mox::fuzz {

// Ends the process as a finding unless `isTrue`. `what` says what was expected.
inline void Check(bool isTrue, const char* what) {
    if (isTrue) return;
    std::fprintf(stderr, "expected: %s\n", what);
    std::fflush(stderr);
    std::abort();
}

// An input that is one document after a byte that says what to do with it: by a letter, or by its lowest bits.
struct DocumentWithOptions {
    char letter;
    bool bit0;
    bool bit1;
    std::string_view text;
};

// `size` is at least 1.
inline DocumentWithOptions TakeApart(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    return {bytes[0], (*data & 1) != 0, (*data & 2) != 0, bytes.substr(1)};
}

class FuzzInput {
  public:
    FuzzInput(const std::uint8_t* data, std::size_t size)
        : bytes_(reinterpret_cast<const char*>(data), size) {}

    bool IsEmpty() const { return bytes_.empty(); }

    // The next byte; 0 after the end.
    std::uint8_t Byte() {
        if (bytes_.empty()) return 0;
        const char first = bytes_.front();
        bytes_.remove_prefix(1);
        return static_cast<std::uint8_t>(first);
    }

    // A number below `count`; a digit means itself where it can.
    std::size_t Below(std::size_t count) {
        const std::uint8_t byte = Byte();
        const bool isDigit = byte >= '0' && byte <= '9';
        return (isDigit ? std::size_t{byte} - '0' : std::size_t{byte}) % count;
    }

    bool Flag() { return Below(2) == 1; }

    // Digits choose a boundary, "#" takes the next four bytes, any other byte is the number.
    std::uint32_t Number() {
        constexpr std::array<std::uint32_t, 10> kBoundaries = {0,          1, 2,  0xFFFFFFFF, 0x80000000,
                                                               0x7FFFFFFF, 5, 31, 260,        0x10000};
        const std::uint8_t byte = Byte();
        if (byte >= '0' && byte <= '9') return kBoundaries[std::size_t{byte} - '0'];
        if (byte != '#') return byte;
        std::uint32_t number = 0;
        for (int i = 0; i < 4; ++i)
            number = number << 8 | Byte();
        return number;
    }

    // The bytes up to `end`, which is passed over, or all that are left.
    std::string_view Until(char end) {
        const std::size_t size = bytes_.find(end);
        const std::string_view taken = bytes_.substr(0, size);
        bytes_.remove_prefix(size == std::string_view::npos ? bytes_.size() : size + 1);
        return taken;
    }

    // A text as hosts hand it over, without zero units: "..." is a literal, a digit chooses a special text, a byte from
    // 0x80 on counts the 16-bit units that follow, "~" and a byte are one of some texts that collide in an index of
    // names, any other byte is a text of one unit.
    WideString Text() {
        const std::uint8_t byte = Byte();
        if (byte == '"') return model::FromNarrowBytes(Until('"'));
        if (byte >= '0' && byte <= '9') return SpecialText(std::size_t{byte} - '0');
        if (byte == '~') return NameOfSameHash(Byte());
        if (byte >= 0x80) return Units(byte - 0x80U);
        return byte == 0 ? WideString() : WideString(1, byte);
    }

  private:
    static WideString SpecialText(std::size_t number) {
        switch (number) {
            case 0:
                return {};
            case 1:
                return model::FromNarrowBytes(" leading and trailing ");
            case 2:
                return model::FromNarrowBytes("one\ntwo");
            case 3:
                return model::FromNarrowBytes("<&>'\"");
            case 4:
                return WideString(259, 'n');
            case 5:
                return WideString(2100, '&');
            case 6:
                return {0xD800, 'x', 0xDC00};
            case 7:
                return {0x0101, 0x0126, 0x010A, 0xFEFF, 0xFFFF};
            case 8:
                return model::FromNarrowBytes("\x80\xFF\t\r\x01");
            default:
                return model::FromNarrowBytes("true");
        }
    }

    WideString Units(std::size_t count) {
        WideString units;
        while (units.size() < count && !IsEmpty()) {
            const unsigned low = Byte();
            const auto unit = static_cast<wchar16>(low | static_cast<unsigned>(Byte()) << 8);
            units += unit == 0 ? wchar16{1} : unit;
        }
        return units;
    }

    std::string_view bytes_;
};

}  // namespace mox::fuzz

#endif
