#include "mox_xmlApi/disk/windows_paths.h"

#if defined(_WIN32)

#include <cstddef>

#include "mox_xmlApi/platform/windows_api.h"

namespace mox::disk {
namespace {

constexpr std::size_t kLongestPath = std::size_t{1} << 15;

}  // namespace

OpenFile OpenExisting(const std::wstring& path, std::uint32_t access, std::uint32_t flags) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return OpenFile(CreateFileW(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING, flags, nullptr));
}

std::wstring FinalPath(const OpenFile& file) {
    std::wstring path(kLongestPath, L'\0');
    const DWORD length =
        GetFinalPathNameByHandleW(file.Get(), path.data(), static_cast<DWORD>(path.size()), 0);
    path.resize(length < path.size() ? length : 0);
    return path;
}

std::wstring FullPath(const std::wstring& path) {
    std::wstring full(kLongestPath, L'\0');
    const DWORD length =
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0 || length >= full.size()) return path;
    full.resize(length);
    return full;
}

}  // namespace mox::disk

#endif
