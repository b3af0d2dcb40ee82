// Refuses JSON that is nested too deeply, before it is parsed.
#ifndef MOX_XMLAPI_TOOLS_JSON_DEPTH_H
#define MOX_XMLAPI_TOOLS_JSON_DEPTH_H

#include <string_view>

namespace mox::tool {

// Whether brackets outside of strings are nested more deeply than 16, which is more than anything here needs. Code that
// copies or writes parsed JSON recurses on its depth. The text need not be valid.
bool IsDeepJson(std::string_view text) noexcept;

// What to say then.
inline constexpr const char* kTooDeepJson = "the JSON is nested too deeply";

}  // namespace mox::tool

#endif
