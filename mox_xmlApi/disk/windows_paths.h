// Paths and the files that they name. Windows.
#ifndef MOX_XMLAPI_DISK_WINDOWS_PATHS_H
#define MOX_XMLAPI_DISK_WINDOWS_PATHS_H

#if defined(_WIN32)

#include <cstdint>
#include <string>

#include "mox_xmlApi/platform/open_file.h"

namespace mox::disk {

// Opens an existing file with these rights, whatever others do with it meanwhile. `flags` are those of the system. Not
// open on failure; LastSystemError() says why.
OpenFile OpenExisting(const std::wstring& path, std::uint32_t access, std::uint32_t flags = 0);

// The path of an open file, in which all links have been followed; empty on failure.
std::wstring FinalPath(const OpenFile& file);

// The path from the root on, which need not exist.
std::wstring FullPath(const std::wstring& path);

}  // namespace mox::disk

#endif

#endif
