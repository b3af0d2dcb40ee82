#include "tools/json_depth.h"

#include <cstddef>

namespace mox::tool {

bool IsDeepJson(std::string_view text) noexcept {
    constexpr std::size_t kMostDepth = 16;
    std::size_t depth = 0;
    bool isInString = false;
    bool isEscaped = false;
    for (const char character : text) {
        if (isEscaped) {
            isEscaped = false;
        } else if (isInString) {
            isEscaped = character == '\\';
            isInString = character != '"';
        } else if (character == '"') {
            isInString = true;
        } else if (character == '[' || character == '{') {
            if (++depth > kMostDepth) return true;
        } else if ((character == ']' || character == '}') && depth > 0) {
            --depth;
        }
    }
    return false;
}

}  // namespace mox::tool
