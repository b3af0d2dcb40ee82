// Opens the system's browser.
#ifndef MOX_XMLAPI_TOOLS_EDIT_BROWSER_H
#define MOX_XMLAPI_TOOLS_EDIT_BROWSER_H

#include <string>

namespace mox::tool {

// Opens the address (ASCII) in the user's browser, by ShellExecute on Windows and xdg-open elsewhere, and does not wait
// for it. Returns false if that could not be started.
bool OpenBrowser(const std::string& address);

}  // namespace mox::tool

#endif
