// The numbers of the interface as the types of the C++ front.
#ifndef MOX_HOST_OPTION_VALUES_H
#define MOX_HOST_OPTION_VALUES_H

#include <cstdint>
#include <optional>

#include "mox_host/call.h"
#include "mox_xmlApi/document/encoding.hpp"
#include "mox_xmlApi/front/file_options.hpp"
#include "mox_xmlApi/front/form.hpp"

namespace mox::host {

// MOX_FORM_DEFAULT, NARROW or WIDE.
inline bool FormOf(std::uint32_t number, std::optional<Form>& form, Outcome& outcome) noexcept {
    const bool isForm = number == MOX_FORM_NARROW || number == MOX_FORM_WIDE;
    const Form given = number == MOX_FORM_NARROW ? Form::Narrow : Form::Wide;
    form = isForm ? std::optional(given) : std::nullopt;
    return isForm || number == MOX_FORM_DEFAULT ||
           outcome.RefuseArgument("the form is unknown, or not one for this function");
}

// An encoding that can be imported, or the default.
inline bool EncodingOf(std::uint32_t number, std::optional<Encoding>& encoding, Outcome& outcome) noexcept {
    if (number > MOX_ENCODING_UTF16BE) return outcome.RefuseArgument("the encoding is unknown");
    const bool isDefault = number == MOX_ENCODING_DEFAULT;
    encoding = isDefault ? std::nullopt : std::optional(static_cast<Encoding>(number - 1));
    return true;
}

inline bool ContentOf(std::uint32_t number, Content& content, Outcome& outcome) noexcept {
    if (number > MOX_CONTENT_VALUES) return outcome.RefuseArgument("the content is unknown");
    content = static_cast<Content>(number);
    return true;
}

// The numbers of the interface are those of the front.
static_assert(static_cast<int>(Encoding::Narrow) + 1 == MOX_ENCODING_NARROW);
static_assert(static_cast<int>(Encoding::Wide) + 1 == MOX_ENCODING_WIDE);
static_assert(static_cast<int>(Encoding::Utf8) + 1 == MOX_ENCODING_UTF8);
static_assert(static_cast<int>(Encoding::Latin1) + 1 == MOX_ENCODING_LATIN1);
static_assert(static_cast<int>(Encoding::Utf16Be) + 1 == MOX_ENCODING_UTF16BE);
static_assert(static_cast<int>(Encoding::Zeros) + 1 == MOX_ENCODING_ZEROS);
static_assert(static_cast<int>(Content::Document) == MOX_CONTENT_DOCUMENT);
static_assert(static_cast<int>(Content::Ui) == MOX_CONTENT_UI);
static_assert(static_cast<int>(Content::Values) == MOX_CONTENT_VALUES);

}  // namespace mox::host

#endif
