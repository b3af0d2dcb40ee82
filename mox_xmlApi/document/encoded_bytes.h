// What detecting an encoding and converting from it have in common.
#ifndef MOX_XMLAPI_DOCUMENT_ENCODED_BYTES_H
#define MOX_XMLAPI_DOCUMENT_ENCODED_BYTES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "mox_xmlApi/front/text.hpp"

namespace mox {

inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
inline constexpr std::string_view kUtf16LeMark = "\xFF\xFE";
inline constexpr std::string_view kUtf16BeMark = "\xFE\xFF";

inline std::uint32_t ByteOf(char byte) noexcept {
    return static_cast<unsigned char>(byte);
}

inline bool IsBeyondAscii(char byte) noexcept {
    return ByteOf(byte) >= 0x80;
}

// Returns the offset of the first byte that does not belong to a character.
inline std::optional<std::size_t> FindBadUtf8(std::string_view bytes) noexcept {
    std::string_view rest = bytes;
    while (!rest.empty()) {
        const std::size_t offset = bytes.size() - rest.size();
        char32_t character = 0;
        if (!front::DecodeUtf8(rest, character)) return offset;
    }
    return std::nullopt;
}

}  // namespace mox

#endif
