#include "mox_xmlApi/disk/scratch_file.hpp"

#include <utility>

#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/disk/system_problem.h"
#include "mox_xmlApi/platform/open_file.h"
#include "mox_xmlApi/platform/windows_api.h"

#if defined(_WIN32)
#include <atomic>
#else
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#if defined(__linux__)
#include <sys/mman.h>
#endif
#endif

namespace mox {
namespace {

bool FailToCreate(Problem* problem, const Text& path) {
    const disk::SystemError error = disk::LastSystemError();
    return disk::FailBySystem(problem, path, Reason::WriteFailed, "cannot create a temporary file", error);
}

#if defined(_WIN32)

OpenFile OpenToWrite(const front::Units& path) {
    return OpenFile(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, TRUNCATE_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
}

#else

OpenFile OpenToWrite(const front::Units& path) {
    const std::string name = front::Utf8Of(front::UnitsView(path));
    int file = -1;
    do {
        file = open(name.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    } while (file < 0 && errno == EINTR);
    return OpenFile(file);
}

#endif

}  // namespace

std::optional<ScratchFile> ScratchFile::create(Problem* problem) {
    ScratchFile file;
    if (!file.CreateInMemory() && !file.CreateInFolder(problem)) return std::nullopt;
    front::Succeed(problem);
    return file;
}

ScratchFile::ScratchFile(ScratchFile&& other) noexcept
    : path_(std::move(other.path_)),
      folder_(std::move(other.folder_)),
      memory_(std::exchange(other.memory_, -1)) {
    other.path_.clear();
    other.folder_.clear();
}

ScratchFile& ScratchFile::operator=(ScratchFile&& other) noexcept {
    std::swap(path_, other.path_);
    std::swap(folder_, other.folder_);
    std::swap(memory_, other.memory_);
    return *this;
}

ScratchFile::~ScratchFile() {
    Remove();
}

bool ScratchFile::write(std::string_view bytes, Problem* problem) {
    const OpenFile file = OpenToWrite(path_);
    if (file.IsOpen() && WriteAll(file, bytes.data(), bytes.size())) return front::Succeed(problem);
    const disk::SystemError error = disk::LastSystemError();
    return disk::FailBySystem(problem, Text(front::UnitsView(path_)), Reason::WriteFailed,
                              "cannot write to a temporary file", error);
}

std::optional<std::string> ScratchFile::read(Problem* problem) const {
    return readFile(Text(front::UnitsView(path_)), nullptr, problem);
}

#if defined(_WIN32)

bool ScratchFile::CreateInMemory() {
    return false;
}

bool ScratchFile::CreateInFolder(Problem* problem) {
    static std::atomic<std::uint32_t> number{0};
    std::wstring folder(MAX_PATH + 1, L'\0');
    const DWORD length = GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
    if (length == 0 || length > folder.size()) return FailToCreate(problem, Text(""));
    folder.resize(length);
    constexpr int kMostNames = 1000;
    for (int tries = 0; tries < kMostNames; ++tries) {
        LARGE_INTEGER time;
        QueryPerformanceCounter(&time);
        path_ = folder + L"mox-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                std::to_wstring(time.QuadPart) + L"-" + std::to_wstring(++number) + L".tmp";
        const OpenFile file(CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                        FILE_ATTRIBUTE_TEMPORARY, nullptr));
        if (file.IsOpen()) return true;
        if (GetLastError() != ERROR_FILE_EXISTS && GetLastError() != ERROR_ALREADY_EXISTS) break;
    }
    path_.clear();
    return FailToCreate(problem, Text(folder));
}

void ScratchFile::Remove() noexcept {
    if (!path_.empty()) DeleteFileW(path_.c_str());
}

#else

bool ScratchFile::CreateInMemory() {
#if defined(__linux__)
    memory_ = memfd_create("mox_xmlApi", MFD_CLOEXEC);
    if (memory_ < 0) return false;
    const std::string path = "/proc/self/fd/" + std::to_string(memory_);
    path_.assign(path.begin(), path.end());
    // Where /proc is not there, or is another one, it has no such name.
    struct stat own;
    struct stat named;
    if (fstat(memory_, &own) == 0 && stat(path.c_str(), &named) == 0 && own.st_dev == named.st_dev &&
        own.st_ino == named.st_ino && access(path.c_str(), R_OK | W_OK) == 0)
        return true;
    Remove();
#endif
    return false;
}

bool ScratchFile::CreateInFolder(Problem* problem) {
    const char* const temporary = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe): only read
    std::string folder(temporary == nullptr || *temporary == '\0' ? "/tmp" : temporary);
    folder += "/mox-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) return FailToCreate(problem, Text(folder));
    folder_ = folder;
    const std::string path = folder_ + "/file";
    const std::optional<front::Units> units = front::UnitsOf<wchar16>(path);
    if (!units.has_value()) {
        Remove();
        return disk::FailFor(problem, Text(""), Reason::InvalidText,
                             "the name of the folder for temporary files is not UTF-8");
    }
    path_ = *units;
    constexpr mode_t kOwnerOnly = 0600;
    const OpenFile file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly));
    if (file.IsOpen()) return true;
    const bool isCreated = FailToCreate(problem, Text(folder));
    Remove();
    return isCreated;
}

void ScratchFile::Remove() noexcept {
    if (memory_ >= 0) close(std::exchange(memory_, -1));
    if (!folder_.empty()) {
        unlink((folder_ + "/file").c_str());
        rmdir(folder_.c_str());
    }
    folder_.clear();
}

#endif

}  // namespace mox
