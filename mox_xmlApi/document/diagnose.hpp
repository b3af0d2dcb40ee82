// Finds what is wrong with a file, and what is likely to be.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_DOCUMENT_DIAGNOSE_HPP
#define MOX_XMLAPI_DOCUMENT_DIAGNOSE_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/document/document.hpp"

namespace mox {

enum class Severity : std::uint8_t {
    Error,    // the file does not parse
    Warning,  // hosts do not read, or do not keep, all that the file contains
    Note,     // a restriction that takes effect only when the file is converted
};

struct Diagnostic {
    Severity severity = Severity::Warning;
    Position position{};
    std::string message{};  // in plain English, on one line
};

// Returns the diagnostics of a file with this content, sorted by position. A file that does not parse has one error and
// nothing else. Without a form, it is that of detectEncoding. Throws what Document::parse throws.
std::vector<Diagnostic> diagnose(std::string_view bytes, std::optional<Form> form = std::nullopt);

// The same for a document that was read. Throws std::bad_alloc.
std::vector<Diagnostic> diagnose(const Document& document);

}  // namespace mox

#endif
