// Texts for terminals: they cannot control the terminal, hide or reorder what is around them, or look like a line of
// the tool's own.
#ifndef MOX_XMLAPI_TOOLS_TERMINAL_TEXT_H
#define MOX_XMLAPI_TOOLS_TERMINAL_TEXT_H

#include <string>
#include <string_view>

namespace mox::tool {

// The text with escapes for control characters (tabs and line breaks included), for characters that change the writing
// direction, separate lines or are invisible, and for unpaired surrogates: \n, \r, \t or, as in JSON, \uXXXX for each
// 16-bit unit. A byte that is not UTF-8 becomes \xXX. Everything else, backslashes included, stays as it is.
std::string EscapedLine(std::string_view text);

// The same for a text of several lines: line feeds stay.
std::string EscapedLines(std::string_view text);

}  // namespace mox::tool

#endif
