#include "mox_xmlApi/disk/windows_access.h"

#if defined(_WIN32)

#include "mox_xmlApi/platform/windows_api.h"

namespace mox::disk {

bool Access::Read(const OpenFile& file) {
    // Not everybody may see the owner, and it is not needed.
    if (!Get(file, OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION, owner_)) owner_.clear();
    return Get(file, DACL_SECURITY_INFORMATION, rights_);
}

bool Access::GiveTo(const OpenFile& file) {
    if (!owner_.empty()) {
        static_cast<void>(SetKernelObjectSecurity(
            file.Get(), OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION, owner_.data()));
    }
    return SetKernelObjectSecurity(file.Get(), DACL_SECURITY_INFORMATION, rights_.data()) != 0;
}

bool Access::Get(const OpenFile& file, std::uint32_t what, std::string& description) {
    DWORD size = 0;
    GetKernelObjectSecurity(file.Get(), what, nullptr, 0, &size);
    if (size == 0) return false;
    description.resize(size);
    return GetKernelObjectSecurity(file.Get(), what, description.data(), size, &size) != 0;
}

}  // namespace mox::disk

#endif
