// Texts on their way to people.
#ifndef MOX_XMLAPI_TOOLS_SHOWN_TEXT_H
#define MOX_XMLAPI_TOOLS_SHOWN_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>

#include "mox_xmlApi/platform/wide_text.h"

namespace mox::tool {

// A view of the tree as UTF-8.
std::string Utf8(WideView text);

// The text in double quotes on one line: quotes, backslashes and control characters are written with a backslash.
std::string Quoted(std::string_view text);

// The name as it is when it can be told from the text around it, otherwise quoted.
std::string ShownName(std::string_view name);

// "U+" and four upper-case hexadecimal digits.
std::string UnitNumber(std::uint32_t unit);

}  // namespace mox::tool

#endif
