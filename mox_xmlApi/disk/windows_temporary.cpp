#include "mox_xmlApi/disk/windows_temporary.h"

#if defined(_WIN32)

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "mox_xmlApi/disk/replace_on_system.h"
#include "mox_xmlApi/disk/windows_paths.h"
#include "mox_xmlApi/platform/windows_api.h"

namespace mox::disk {

TemporaryFile::~TemporaryFile() {
    if (!file_.IsOpen() || isRenamed_) return;
    FILE_DISPOSITION_INFO remove{TRUE};
    SetFileInformationByHandle(file_.Get(), FileDispositionInfo, &remove, sizeof remove);
}

bool TemporaryFile::Create(const std::wstring& target, std::uint32_t attributes, void* security) {
    SECURITY_ATTRIBUTES rights{sizeof rights, security, FALSE};
    const std::wstring folder = target.substr(0, target.find_last_of(L"/\\:") + 1);
    const DWORD flags = (attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes) | FILE_FLAG_WRITE_THROUGH;
    constexpr DWORD kAccess = GENERIC_READ | GENERIC_WRITE | DELETE | READ_CONTROL | WRITE_DAC;
    for (int tries = 0; tries < kMostNames; ++tries) {
        const std::string name = TemporaryName(GetCurrentProcessId());
        const std::wstring path = folder + std::wstring(name.begin(), name.end());
        // The owner can be set only by a handle that was opened for it, which not every system permits.
        for (const DWORD access : {kAccess | WRITE_OWNER, kAccess}) {
            file_ = OpenFile(
                CreateFileW(path.c_str(), access, FILE_SHARE_READ, &rights, CREATE_NEW, flags, nullptr));
            if (file_.IsOpen()) return true;
            if (GetLastError() != ERROR_ACCESS_DENIED && GetLastError() != ERROR_PRIVILEGE_NOT_HELD) break;
        }
        if (GetLastError() != ERROR_FILE_EXISTS && GetLastError() != ERROR_ALREADY_EXISTS) break;
    }
    return false;
}

bool TemporaryFile::Rename(const std::wstring& target, bool replaces) {
    const std::wstring full = FullPath(target);
    const std::size_t bytes = full.size() * sizeof(wchar_t);
    const std::size_t size = offsetof(FILE_RENAME_INFO, FileName) + bytes + sizeof(wchar_t);
    std::string buffer(std::max(size, sizeof(FILE_RENAME_INFO)), '\0');
    auto* const rename = reinterpret_cast<FILE_RENAME_INFO*>(buffer.data());
    rename->ReplaceIfExists = replaces ? TRUE : FALSE;
    rename->FileNameLength = static_cast<DWORD>(bytes);
    std::memcpy(rename->FileName, full.data(), bytes);
    isRenamed_ = SetFileInformationByHandle(file_.Get(), FileRenameInfo, rename,
                                            static_cast<DWORD>(buffer.size())) != 0;
    return isRenamed_;
}

}  // namespace mox::disk

#endif
