// What a program can ask for when it opens and saves a document.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_FILE_OPTIONS_HPP
#define MOX_XMLAPI_FRONT_FILE_OPTIONS_HPP

#include <cstdint>
#include <optional>

#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox {

struct OpenOptions {
    // The form of the file; detected if there is none. A document opened in the wrong form does not parse.
    std::optional<Form> form{};

    // Opens whatever the exports open: any document that parses, up to its first zero. To the exports a document of
    // another kind is an empty one. What they do not see stays in it, unless it comes after that zero.
    bool anyDocument = false;
};

// What a save of a profile writes: the document, or an export of the entries' presentation data or of their values.
// See xmlProfileSave.
enum class Content : std::uint32_t { Document = 0, Ui = 1, Values = 2 };

struct SaveOptions {
    // The form to save in; that of the profile if there is none. Tables and sections are always wide.
    std::optional<Form> form{};

    // Tables and sections are always saved as they are.
    Content content = Content::Document;

    // Replaces whatever is there. If it is false, a file is replaced only if it still has the content that was read from
    // it, or that was saved to it, and is created only if there is none.
    bool overwrite = false;

    // A path to which the old file is copied before it is replaced, see ReplaceOptions.
    std::optional<Text> backup{};
};

}  // namespace mox

#endif
