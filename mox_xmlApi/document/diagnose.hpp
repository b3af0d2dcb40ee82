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
    Error,    // the file does not parse, or is in an encoding of which the library reads nothing
    Warning,  // hosts do not read, or do not keep, all that the file contains
    Note,     // a restriction that takes effect only when the file is converted
};

struct Diagnostic {
    Severity severity = Severity::Warning;
    Position position{};
    std::string message{};  // in plain English, on one line
    // If the text is in another encoding than documents are: the one with which importText makes a document of it.
    std::optional<Encoding> encoding{};
};

struct DiagnoseOptions {
    // Also checks whether values suit the types, limits and controls of their entries, to which the library is
    // indifferent.
    bool values = false;
};

// Returns the diagnostics of a file with this content, sorted by position. A file with an error has no other
// diagnostics. Without a form, it is that of detectEncoding. Throws what Document::parse throws.
std::vector<Diagnostic> diagnose(std::string_view bytes, std::optional<Form> form = std::nullopt,
                                 const DiagnoseOptions& options = {});

// The same for a document that was read. Throws std::bad_alloc.
std::vector<Diagnostic> diagnose(const Document& document, const DiagnoseOptions& options = {});

}  // namespace mox

#endif
