#include "mox_xmlApi/disk/windows_mutex.h"

#if defined(_WIN32)

#include <algorithm>
#include <chrono>

#include "mox_xmlApi/disk/content_hash.h"
#include "mox_xmlApi/platform/windows_api.h"
// Needs the types of the header above.
#include <sddl.h>

namespace mox::disk {
namespace {

// The system compares paths without regard to case.
std::wstring NameFor(const std::wstring& finalPath) {
    std::wstring folded(finalPath.size(), L'\0');
    const int length = static_cast<int>(finalPath.size());
    if (LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, finalPath.data(), length, folded.data(), length,
                      nullptr, nullptr, 0) == 0)
        folded = finalPath;
    FileStamp stamp;
    DescribeContent({reinterpret_cast<const char*>(folded.data()), folded.size() * sizeof(wchar_t)}, stamp);
    return L"Global\\mox_xmlApi-" + std::to_wstring(stamp.hash[0]) + L"-" + std::to_wstring(stamp.hash[1]);
}

// Every user may lock it, in all sessions, and nobody may do more.
OpenFile MakeMutex(const std::wstring& name) {
    SECURITY_ATTRIBUTES security{sizeof security, nullptr, FALSE};
    if (ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:(A;;0x00100001;;;WD)", SDDL_REVISION_1,
                                                             &security.lpSecurityDescriptor, nullptr) == 0)
        security.lpSecurityDescriptor = nullptr;
    HANDLE mutex = CreateMutexExW(&security, name.c_str(), 0, SYNCHRONIZE | MUTEX_MODIFY_STATE);
    LocalFree(security.lpSecurityDescriptor);
    return mutex == nullptr ? OpenFile() : OpenFile(mutex);
}

}  // namespace

PathMutex::~PathMutex() {
    if (isOwned_) ReleaseMutex(mutex_.Get());
}

bool PathMutex::Lock(const std::wstring& finalPath, const Deadline& deadline) {
    mutex_ = MakeMutex(NameFor(finalPath));
    if (!mutex_.IsOpen()) return true;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline.End() -
                                                                            std::chrono::steady_clock::now());
    const auto wait = std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, INFINITE - 1);
    const DWORD result = WaitForSingleObject(mutex_.Get(), static_cast<DWORD>(wait));
    // An abandoned one is that of a process that ended in the middle; its file is the old or the new one.
    isOwned_ = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
    return result != WAIT_TIMEOUT;
}

}  // namespace mox::disk

#endif
