#include "mox_xmlApi/platform/files.h"

#if !defined(_WIN32)
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>

#include "mox_xmlApi/platform/mox_porting.h"
#endif

#include "mox_xmlApi/platform/windows_api.h"

namespace mox {
namespace {

#if defined(_WIN32)

OpenFile OpenToRead(const wchar16* path) noexcept {
    if (path == nullptr) return OpenFile();
    return OpenFile(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN,
                                nullptr));
}

// The sharing mode of the runtime's own streams, so that a host that has the file open can still save it.
OpenFile OpenToWrite(const wchar16* path) noexcept {
    if (path == nullptr) return OpenFile();
    return OpenFile(CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

#else

OpenFile Open(const wchar16* path, int flags) {
    if (path == nullptr) return OpenFile();
    std::string narrow;
    if (!pdConvertString(path, narrow)) return OpenFile();
    constexpr mode_t kReadAndWriteForAll = 0666;  // before the process's umask
    int file = -1;
    do {
        file = open(narrow.c_str(), flags | O_CLOEXEC, kReadAndWriteForAll);
    } while (file < 0 && errno == EINTR);
    return OpenFile(file);
}

OpenFile OpenToRead(const wchar16* path) {
    return Open(path, O_RDONLY);
}

OpenFile OpenToWrite(const wchar16* path) {
    return Open(path, O_WRONLY | O_CREAT | O_TRUNC);
}

#endif

}  // namespace

InputFile::InputFile(const wchar16* path) : file_(OpenToRead(path)) {}

std::uint64_t InputFile::SizeHint() const noexcept {
    if (!IsOpen()) return 0;
#if defined(_WIN32)
    LARGE_INTEGER size;
    if (GetFileType(file_.Get()) != FILE_TYPE_DISK || !GetFileSizeEx(file_.Get(), &size)) return 0;
    return static_cast<std::uint64_t>(size.QuadPart);
#else
    struct stat status;
    if (fstat(file_.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    return static_cast<std::uint64_t>(status.st_size);
#endif
}

std::size_t InputFile::Read(void* buffer, std::size_t size) noexcept {
    std::size_t done = 0;
    while (IsOpen() && done < size) {
        std::size_t count = 0;
        if (!ReadSome(file_, static_cast<char*>(buffer) + done, size - done, count)) failed_ = true;
        if (failed_ || count == 0) break;
        done += count;
    }
    return done;
}

OutputFile::OutputFile(const wchar16* path) : file_(OpenToWrite(path)) {}

bool OutputFile::Write(const void* bytes, std::size_t size) noexcept {
    if (!file_.IsOpen() || !WriteAll(file_, bytes, size)) failed_ = true;
    return !failed_;
}

bool OutputFile::Close() noexcept {
    return file_.IsOpen() && file_.Close() && !failed_;
}

}  // namespace mox
