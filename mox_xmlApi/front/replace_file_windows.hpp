// The part of front/replace_file.hpp for Windows. Valid in C++17 and later.
//
// <windows.h> would define its macros in every program that includes the front. The few functions that are needed are
// declared here instead, in the same way, so that a program can still include that header before or after.
#ifndef MOX_XMLAPI_FRONT_REPLACE_FILE_WINDOWS_HPP
#define MOX_XMLAPI_FRONT_REPLACE_FILE_WINDOWS_HPP

#include <cstddef>
#include <cstdint>
#include <string>

#include "mox_xmlApi/front/text.hpp"

struct _SECURITY_ATTRIBUTES;

namespace mox::front {
namespace win {

extern "C" {
__declspec(dllimport) void* __stdcall CreateFileW(const wchar_t* name, unsigned long access,
                                                  unsigned long share, ::_SECURITY_ATTRIBUTES* security,
                                                  unsigned long disposition, unsigned long flags,
                                                  void* model);
__declspec(dllimport) int __stdcall CloseHandle(void* handle);
__declspec(dllimport) int __stdcall DeleteFileW(const wchar_t* name);
__declspec(dllimport) int __stdcall FlushFileBuffers(void* handle);
__declspec(dllimport) unsigned long __stdcall GetCurrentProcessId();
__declspec(dllimport) unsigned long __stdcall GetFileAttributesW(const wchar_t* name);
__declspec(dllimport) unsigned long __stdcall GetFinalPathNameByHandleW(void* handle, wchar_t* path,
                                                                        unsigned long size,
                                                                        unsigned long flags);
__declspec(dllimport) unsigned long __stdcall GetLastError();
__declspec(dllimport) int __stdcall MoveFileExW(const wchar_t* from, const wchar_t* to, unsigned long flags);
__declspec(dllimport) int __stdcall SetFileAttributesW(const wchar_t* name, unsigned long attributes);
}

inline constexpr unsigned long kGenericWrite = 0x40000000;
inline constexpr unsigned long kShareAll = 7;
inline constexpr unsigned long kCreateNew = 1;
inline constexpr unsigned long kOpenExisting = 3;
inline constexpr unsigned long kBackupSemantics = 0x02000000;  // allows opening a folder
inline constexpr unsigned long kReadOnly = 0x01;
inline constexpr unsigned long kDirectory = 0x10;
inline constexpr unsigned long kNormal = 0x80;
inline constexpr unsigned long kSettable = 0x2026;  // hidden, system, archive, not indexed
inline constexpr unsigned long kReparsePoint = 0x400;
inline constexpr unsigned long kNoAttributes = 0xFFFFFFFF;
inline constexpr unsigned long kErrorFileNotFound = 2;
inline constexpr unsigned long kErrorFileExists = 80;
inline constexpr unsigned long kErrorAlreadyExists = 183;
inline constexpr unsigned long kReplaceExisting = 1;
inline constexpr unsigned long kWriteThrough = 8;

// A file handle that closes itself.
class File {
  public:
    File(const std::wstring& path, unsigned long access, unsigned long disposition, unsigned long flags)
        : handle_(CreateFileW(path.c_str(), access, kShareAll, nullptr, disposition, flags, nullptr)) {}
    ~File() {
        if (IsOpen()) CloseHandle(handle_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool IsOpen() const noexcept { return reinterpret_cast<std::intptr_t>(handle_) != -1; }
    void* Get() const noexcept { return handle_; }

  private:
    void* handle_;
};

}  // namespace win

inline std::uint64_t ProcessNumber() {
    return win::GetCurrentProcessId();
}

// A new file in the folder of the file that it is to replace, the target.
class TemporaryFile {
  public:
    TemporaryFile() = default;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // Sets the file to replace, following links. Returns false if it cannot be replaced.
    bool SetTarget(UnitsView path) {
        target_.assign(path.begin(), path.end());
        attributes_ = win::GetFileAttributesW(target_.c_str());
        if (attributes_ == win::kNoAttributes) return win::GetLastError() == win::kErrorFileNotFound;
        if ((attributes_ & win::kReparsePoint) != 0 && !FollowLinks()) return false;
        return attributes_ != win::kNoAttributes && (attributes_ & (win::kDirectory | win::kReadOnly)) == 0;
    }

    // Creates the file. Returns false on failure; IsNameTaken tells whether the name exists already.
    bool Create(const std::string& name) {
        path_ = target_.substr(0, target_.find_last_of(L"/\\:") + 1);
        path_.append(name.begin(), name.end());
        const win::File file(path_, win::kGenericWrite, win::kCreateNew, win::kNormal);
        if (file.IsOpen()) return true;
        const unsigned long error = win::GetLastError();
        isNameTaken_ = error == win::kErrorFileExists || error == win::kErrorAlreadyExists;
        path_.clear();
        return false;
    }

    bool IsNameTaken() const noexcept { return isNameTaken_; }
    const std::wstring& Path() const noexcept { return path_; }

    // Flushes the file and renames it to the target, in one step. Returns false on failure; the target is then
    // unchanged. ReplaceFileW would keep access rights, too, but it moves the old file away first: a process that ends
    // in between would leave no file of that name.
    bool ReplaceTarget() {
        if (!Flush()) return false;
        if (attributes_ != win::kNoAttributes && !CopyAttributes()) return false;
        if (win::MoveFileExW(path_.c_str(), target_.c_str(), win::kReplaceExisting | win::kWriteThrough) == 0)
            return false;
        path_.clear();
        return true;
    }

    // Removes the file unless it has replaced the target.
    void Discard() noexcept {
        if (!path_.empty()) win::DeleteFileW(path_.c_str());
        path_.clear();
    }

  private:
    bool FollowLinks() {
        const win::File file(target_, 0, win::kOpenExisting, win::kBackupSemantics);
        if (!file.IsOpen()) return false;
        std::wstring path(std::size_t{1} << 15, L'\0');
        const unsigned long length = win::GetFinalPathNameByHandleW(
            file.Get(), path.data(), static_cast<unsigned long>(path.size()), 0);
        if (length == 0 || length >= path.size()) return false;
        path.resize(length);
        target_ = path;
        attributes_ = win::GetFileAttributesW(target_.c_str());
        return true;
    }

    bool CopyAttributes() const {
        const unsigned long attributes = attributes_ & win::kSettable;
        return win::SetFileAttributesW(path_.c_str(), attributes == 0 ? win::kNormal : attributes) != 0;
    }

    bool Flush() const {
        const win::File file(path_, win::kGenericWrite, win::kOpenExisting, win::kNormal);
        return file.IsOpen() && win::FlushFileBuffers(file.Get()) != 0;
    }

    std::wstring target_;
    std::wstring path_;
    unsigned long attributes_ = win::kNoAttributes;
    bool isNameTaken_ = false;
};

}  // namespace mox::front

#endif
