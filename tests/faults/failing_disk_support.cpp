#include "tests/faults/failing_disk_support.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

#include "mox_xmlApi/disk/system_problem.h"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/faults/watched_calls_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

WatchedFiles::Rule watch;
std::size_t mostBytes = std::numeric_limits<std::size_t>::max();

}  // namespace

Answer Ask(FileCall call) {
    if (!watch) return Answer::Plain;
    WatchedFiles::Rule rule = std::exchange(watch, nullptr);
    const Answer answer = rule(call);
    watch = std::move(rule);
    return answer;
}

std::size_t Cut(std::size_t size) {
    return std::min(size, mostBytes);
}

WatchedFiles::WatchedFiles(Rule rule, std::size_t most) {
    mostBytes = most;
    watch = std::move(rule);
}

WatchedFiles::~WatchedFiles() {
    watch = nullptr;
    mostBytes = std::numeric_limits<std::size_t>::max();
}

std::string NameOf(FileCall call) {
    static const char* const kNames[] = {
        "Open",   "Size",  "Examine", "Access",   "FollowLink",   "Lock",      "Read",
        "Write",  "Flush", "SetMode", "SetOwner", "ReadRights",   "SetRights", "ListAttributes",
        "Rename", "Link",  "Remove",  "Close",    "MakeInMemory", "MakeFolder"};
    return kNames[static_cast<std::size_t>(call)];
}

std::string TextOfFailure(FileCall call) {
    return mox::disk::TextOf(ErrorOf(call));
}

Content ContentOf(const std::filesystem::path& path) {
    return std::filesystem::exists(path) ? Content(host::ReadBytes(path)) : std::nullopt;
}

std::string FileWithValues(std::initializer_list<const char*> values) {
    mox::Profile profile;
    for (const char* const value : values)
        EXPECT_TRUE(profile.set("S", "k", value));
    const host::ScratchFile file;
    EXPECT_TRUE(profile.saveReplacing(file.Path().u16string()));
    return file.Bytes();
}

#if !defined(_WIN32)
mode_t ModeOf(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}
#endif

}  // namespace faults
