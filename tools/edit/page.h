// The editor's page: one HTML file with its script and its style.
#ifndef MOX_XMLAPI_TOOLS_EDIT_PAGE_H
#define MOX_XMLAPI_TOOLS_EDIT_PAGE_H

#include <string>

#include "tools/json_output.h"

namespace mox::tool {

enum class PageUse {
    Served,  // asks the server for the document
    Alone,   // has the document in it
};

// The policy for the browser: only this script and this style, no other sources.
std::string PagePolicy(PageUse use);

// The page. If it stands alone, `form` (see EditorSession::Form) becomes part of it, written so that no text in it ends
// the element that it is in.
std::string PageText(PageUse use, const Json& form = Json());

// The parts of the page; the build makes them from page.html, page.css and page.js.
extern const char* const kPageHtml;
extern const char* const kPageStyle;
extern const char* const kPageScript;
extern const char* const kPageStyleHash;  // SHA-256 in hexadecimal
extern const char* const kPageScriptHash;

}  // namespace mox::tool

#endif
