// What replaceFile leaves to the operating system.
#ifndef MOX_XMLAPI_DISK_REPLACE_ON_SYSTEM_H
#define MOX_XMLAPI_DISK_REPLACE_ON_SYSTEM_H

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/disk/replace_file.hpp"

namespace mox::disk {

// A file name that no other thread of this process uses, and most likely no other process. The caller still has to
// check that the file is new.
inline std::string TemporaryName(std::uint64_t process) {
    static std::atomic<std::uint32_t> number{0};
    std::string name(".mox-");
    name.append(std::to_string(process)).append("-").append(std::to_string(++number)).append(".tmp");
    return name;
}

// How many names are tried before it is an error that each of them exists.
inline constexpr int kMostNames = 1000;

// The moment until which to wait for others.
class Deadline {
  public:
    // More than a year counts as a year, so that the sum with the present time stays in range.
    explicit Deadline(std::chrono::milliseconds patience)
        : end_(std::chrono::steady_clock::now() + std::clamp(patience, kNone, kYear)) {}

    bool IsOver() const { return std::chrono::steady_clock::now() >= end_; }
    std::chrono::steady_clock::time_point End() const { return end_; }

  private:
    static constexpr std::chrono::milliseconds kNone{0};
    static constexpr std::chrono::milliseconds kYear = std::chrono::hours(365 * 24);

    std::chrono::steady_clock::time_point end_;
};

enum class Outcome : std::uint8_t {
    Done,
    Failed,
    Unconfirmed,  // the file was replaced, but the system does not tell whether the new one is in place
    Again,        // another process has replaced or created the file meanwhile: begin again
};

// Makes one attempt at what replaceFile does. Paths are valid and not empty.
Outcome TryToReplace(const Text& path, std::string_view bytes, const ReplaceOptions& options,
                     const Deadline& deadline, FileStamp& stamp, Problem* problem);

}  // namespace mox::disk

#endif
