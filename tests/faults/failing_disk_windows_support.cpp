#if defined(_WIN32)

#include <windows.h>

#include "tests/faults/import_table_support.h"
#include "tests/faults/watched_calls_support.h"

namespace faults {

unsigned ErrorOf(FileCall call) {
    switch (call) {
        case FileCall::Open:
            return ERROR_TOO_MANY_OPEN_FILES;
        case FileCall::Write:
        case FileCall::Flush:
        case FileCall::Rename:
        case FileCall::Close:
            return ERROR_DISK_FULL;
        default:
            return ERROR_CRC;
    }
}

std::uint64_t OpenHandles() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

namespace {

decltype(&CreateFileW) realCreateFile = nullptr;
decltype(&GetFileSizeEx) realGetFileSize = nullptr;
decltype(&GetFileType) realGetFileType = nullptr;
decltype(&GetFileInformationByHandle) realGetFileInformation = nullptr;
decltype(&GetFileAttributesW) realGetFileAttributes = nullptr;
decltype(&GetFinalPathNameByHandleW) realGetFinalPath = nullptr;
decltype(&CreateMutexExW) realCreateMutex = nullptr;
decltype(&WaitForSingleObject) realWait = nullptr;
decltype(&ReadFile) realReadFile = nullptr;
decltype(&WriteFile) realWriteFile = nullptr;
decltype(&FlushFileBuffers) realFlushFileBuffers = nullptr;
decltype(&GetKernelObjectSecurity) realGetSecurity = nullptr;
decltype(&SetKernelObjectSecurity) realSetSecurity = nullptr;
decltype(&SetFileInformationByHandle) realSetFileInformation = nullptr;
decltype(&DeleteFileW) realDeleteFile = nullptr;
decltype(&GetTempPathW) realGetTempPath = nullptr;
decltype(&CloseHandle) realCloseHandle = nullptr;

// Whether the call is to go to the system; otherwise GetLastError() says why not.
bool GoesOn(FileCall call) {
    if (Ask(call) == Answer::Plain) return true;
    SetLastError(ErrorOf(call));
    return false;
}

HANDLE WINAPI WatchedCreateFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                DWORD how, DWORD flags, HANDLE like) {
    if (!GoesOn(FileCall::Open)) return INVALID_HANDLE_VALUE;
    return realCreateFile(path, access, share, security, how, flags, like);
}

BOOL WINAPI WatchedGetFileSize(HANDLE file, PLARGE_INTEGER size) {
    return GoesOn(FileCall::Size) ? realGetFileSize(file, size) : FALSE;
}

DWORD WINAPI WatchedGetFileType(HANDLE file) {
    return GoesOn(FileCall::Size) ? realGetFileType(file) : FILE_TYPE_UNKNOWN;
}

BOOL WINAPI WatchedGetFileInformation(HANDLE file, LPBY_HANDLE_FILE_INFORMATION information) {
    return GoesOn(FileCall::Size) ? realGetFileInformation(file, information) : FALSE;
}

DWORD WINAPI WatchedGetFileAttributes(LPCWSTR path) {
    return GoesOn(FileCall::Examine) ? realGetFileAttributes(path) : INVALID_FILE_ATTRIBUTES;
}

DWORD WINAPI WatchedGetFinalPath(HANDLE file, LPWSTR path, DWORD size, DWORD flags) {
    return GoesOn(FileCall::FollowLink) ? realGetFinalPath(file, path, size, flags) : 0;
}

HANDLE WINAPI WatchedCreateMutex(LPSECURITY_ATTRIBUTES security, LPCWSTR name, DWORD flags, DWORD access) {
    return GoesOn(FileCall::Lock) ? realCreateMutex(security, name, flags, access) : nullptr;
}

DWORD WINAPI WatchedWait(HANDLE object, DWORD time) {
    return GoesOn(FileCall::Lock) ? realWait(object, time) : WAIT_FAILED;
}

BOOL WINAPI WatchedReadFile(HANDLE file, LPVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
    if (!GoesOn(FileCall::Read)) return FALSE;
    return realReadFile(file, bytes, static_cast<DWORD>(Cut(size)), count, overlapped);
}

BOOL WINAPI WatchedWriteFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
    if (!GoesOn(FileCall::Write)) return FALSE;
    return realWriteFile(file, bytes, static_cast<DWORD>(Cut(size)), count, overlapped);
}

BOOL WINAPI WatchedFlushFileBuffers(HANDLE file) {
    return GoesOn(FileCall::Flush) ? realFlushFileBuffers(file) : FALSE;
}

BOOL WINAPI WatchedGetSecurity(HANDLE object, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR description,
                               DWORD size, LPDWORD needed) {
    return GoesOn(FileCall::ReadRights) ? realGetSecurity(object, what, description, size, needed) : FALSE;
}

BOOL WINAPI WatchedSetSecurity(HANDLE object, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR description) {
    return GoesOn(FileCall::SetRights) ? realSetSecurity(object, what, description) : FALSE;
}

BOOL WINAPI WatchedSetFileInformation(HANDLE file, FILE_INFO_BY_HANDLE_CLASS what, LPVOID information,
                                      DWORD size) {
    const FileCall call = what == FileRenameInfo ? FileCall::Rename : FileCall::Remove;
    return GoesOn(call) ? realSetFileInformation(file, what, information, size) : FALSE;
}

BOOL WINAPI WatchedDeleteFile(LPCWSTR path) {
    return GoesOn(FileCall::Remove) ? realDeleteFile(path) : FALSE;
}

DWORD WINAPI WatchedGetTempPath(DWORD size, LPWSTR path) {
    return GoesOn(FileCall::MakeFolder) ? realGetTempPath(size, path) : 0;
}

BOOL WINAPI WatchedCloseHandle(HANDLE handle) {
    const bool goesOn = GoesOn(FileCall::Close);
    const BOOL closed = realCloseHandle(handle);
    if (goesOn) return closed;
    SetLastError(ErrorOf(FileCall::Close));
    return FALSE;
}

template <class Function>
void Install(const char* name, Function* replacement, Function*& original) {
    ReplaceImports(Modules::Program, name, replacement, original);
}

[[maybe_unused]] const bool isInstalled = [] {
    Install("CreateFileW", &WatchedCreateFile, realCreateFile);
    Install("GetFileSizeEx", &WatchedGetFileSize, realGetFileSize);
    Install("GetFileType", &WatchedGetFileType, realGetFileType);
    Install("GetFileInformationByHandle", &WatchedGetFileInformation, realGetFileInformation);
    Install("GetFileAttributesW", &WatchedGetFileAttributes, realGetFileAttributes);
    Install("GetFinalPathNameByHandleW", &WatchedGetFinalPath, realGetFinalPath);
    Install("CreateMutexExW", &WatchedCreateMutex, realCreateMutex);
    Install("WaitForSingleObject", &WatchedWait, realWait);
    Install("ReadFile", &WatchedReadFile, realReadFile);
    Install("WriteFile", &WatchedWriteFile, realWriteFile);
    Install("FlushFileBuffers", &WatchedFlushFileBuffers, realFlushFileBuffers);
    Install("GetKernelObjectSecurity", &WatchedGetSecurity, realGetSecurity);
    Install("SetKernelObjectSecurity", &WatchedSetSecurity, realSetSecurity);
    Install("SetFileInformationByHandle", &WatchedSetFileInformation, realSetFileInformation);
    Install("DeleteFileW", &WatchedDeleteFile, realDeleteFile);
    Install("GetTempPathW", &WatchedGetTempPath, realGetTempPath);
    Install("CloseHandle", &WatchedCloseHandle, realCloseHandle);
    return true;
}();

}  // namespace
}  // namespace faults

#endif
