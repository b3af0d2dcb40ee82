#include "tools/json_depth.h"

#include <cstddef>

namespace mox::tool {

bool IsDeepJson(std::string_view text) noexcept {
    constexpr std::size_t kMostDepth = 16;
    std::size_t depth = 0;
    bool isInString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (isInString) {
            if (character == '\\') ++i;
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
