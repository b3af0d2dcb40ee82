#include "mox_xmlApi/disk/old_file.h"

#include <utility>

#include "mox_xmlApi/disk/content_hash.h"
#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/disk/read_to_end.h"

namespace mox::disk {

FileType OldFile::Open(OpenFile file, bool isReadable) noexcept {
    file_ = std::move(file);
    isReadable_ = isReadable;
    return StampFile(file_, stamp_);
}

bool OldFile::Read(const Text& path, Problem* problem) {
    if (isRead_) return true;
    if (!isReadable_)
        return FailFor(problem, path, Reason::NoPermission, "cannot read the file to compare or copy it");
    bytes_.clear();
    switch (ReadToEnd(file_, stamp_.size, kLargestFile, bytes_)) {
        case ReadResult::Done:
            break;
        case ReadResult::TooLarge:
            return FailFor(problem, path, Reason::TooLarge, "it is too large to compare or copy it");
        case ReadResult::Failed:
            return FailBySystem(problem, path, Reason::ReadFailed, "cannot read the file", LastSystemError());
    }
    DescribeContent(bytes_, stamp_);
    isRead_ = true;
    return true;
}

bool OldFile::IsAsExpected(const FileStamp* expected, const Text& path, Problem* problem) {
    const auto fail = [&](std::string_view message) {
        return FailFor(problem, path, Reason::Changed, message);
    };
    if (expected == nullptr) return true;
    if (!IsOpen()) return !expected->exists || fail("the file no longer exists");
    if (!expected->exists) return fail("the file exists by now");
    constexpr std::string_view kChanged = "the file has changed since it was read";
    if (expected->size != stamp_.size) return fail(kChanged);
    return Read(path, problem) && (stamp_.hasContentOf(*expected) || fail(kChanged));
}

}  // namespace mox::disk
