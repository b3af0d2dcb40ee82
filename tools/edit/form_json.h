// What the editor's page shows of a document, as JSON.
#ifndef MOX_XMLAPI_TOOLS_EDIT_FORM_JSON_H
#define MOX_XMLAPI_TOOLS_EDIT_FORM_JSON_H

#include "mox_xmlApi/document/document.hpp"
#include "tools/json_output.h"

namespace mox::tool {

// The sections and entries of a document with all that a form needs to show them. Members that are empty, false or 0
// are left out:
//
//     {"kind": "settings", "form": "narrow",
//      "sections": [{"name": "Camera", "found": true, "frozen": true, "eud": true,
//                    "entries": [{"name": "Gain", "type": "double", "shape": "array", "value": "1.25", "own": true,
//                                 "id": 103, "eud": true, "problem": "...", "notes": ["..."], "ui": {...},
//                                 "others": [...]}],
//                    "others": [...]}],
//      "others": [...]}
//
// "ui" has the presentation data, as PresentationJson says. "value" is what hosts read; "own" says that it is that of
// the entry and not that of "ui". "frozen": the file says that the section is not editable. "found": hosts find the
// section by its name. An element of another name in the place of a section has that in "element". "problem": why hosts
// or the editor cannot change the entry. "notes": what is odd about it. "others": comments and unknown elements, each a
// text in "comment" or "element".
Json FormJson(const Document& document);

// Whether the UTF-8 form of a 16-bit text has a surrogate without a partner, so that JSON cannot carry it.
bool HasLoneSurrogate(const std::string& text) noexcept;

}  // namespace mox::tool

#endif
