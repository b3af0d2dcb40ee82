// Formats texts, numbers and names for output.
#ifndef MOX_XMLAPI_DOCUMENT_TEXT_FORMAT_H
#define MOX_XMLAPI_DOCUMENT_TEXT_FORMAT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

// Converts a text of the tree to UTF-8. A surrogate without a partner becomes three bytes.
std::string Utf8(WideView text);

// The text in double quotes, on one line: quotes, backslashes and control characters are escaped by a backslash.
std::string Quoted(std::string_view text);

// The name unchanged, or quoted if it could be confused with the text around it.
std::string QuotedIfNeeded(std::string_view name);

// The last `digits` hexadecimal digits of the number, in upper case, with leading zeros.
std::string Hex(std::uint32_t number, int digits);

// "U+00E4"
std::string UnitText(std::uint32_t unit);

// "0xE4"
std::string ByteText(std::uint32_t byte);

// "1 byte", "2 bytes": the noun must take an "s" in the plural.
std::string Counted(std::size_t count, const std::string& noun);

}  // namespace mox

#endif
