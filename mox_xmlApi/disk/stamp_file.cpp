#include "mox_xmlApi/disk/stamp_file.h"

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "mox_xmlApi/platform/windows_api.h"

namespace mox::disk {

#if defined(_WIN32)

namespace {

std::uint64_t Joined(DWORD high, DWORD low) noexcept {
    return (std::uint64_t{high} << 32) | low;
}

}  // namespace

FileType StampFile(const OpenFile& file, FileStamp& stamp) noexcept {
    switch (GetFileType(file.Get())) {
        case FILE_TYPE_DISK:
            break;
        case FILE_TYPE_CHAR:
        case FILE_TYPE_PIPE:
            return FileType::Stream;
        default:
            return FileType::Unknown;
    }
    BY_HANDLE_FILE_INFORMATION information;
    if (GetFileInformationByHandle(file.Get(), &information) == 0) return FileType::Unknown;
    if ((information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return FileType::Folder;
    const FILETIME& time = information.ftLastWriteTime;
    stamp.exists = true;
    stamp.device = information.dwVolumeSerialNumber;
    stamp.file = Joined(information.nFileIndexHigh, information.nFileIndexLow);
    stamp.size = Joined(information.nFileSizeHigh, information.nFileSizeLow);
    stamp.time = static_cast<std::int64_t>(Joined(time.dwHighDateTime, time.dwLowDateTime));
    return FileType::Regular;
}

#else

FileType StampFile(const OpenFile& file, FileStamp& stamp) noexcept {
    struct stat status;
    if (fstat(file.Get(), &status) != 0) return FileType::Unknown;
    if (S_ISDIR(status.st_mode)) return FileType::Folder;
    if (S_ISBLK(status.st_mode)) return FileType::Disk;
    if (!S_ISREG(status.st_mode)) return FileType::Stream;
    constexpr std::uint64_t kNanosecondsPerSecond = 1000000000;
    stamp.exists = true;
    stamp.device = status.st_dev;
    stamp.file = status.st_ino;
    stamp.size = static_cast<std::uint64_t>(status.st_size);
    // Unsigned: a file may have any time, and a wrong one only has to be the same again.
    stamp.time =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(status.st_mtim.tv_sec) * kNanosecondsPerSecond +
                                  static_cast<std::uint64_t>(status.st_mtim.tv_nsec));
    return FileType::Regular;
}

#endif

}  // namespace mox::disk
