#include "mox_xmlApi/disk/file_lock.hpp"

#include <utility>

#include "mox_xmlApi/disk/held_lock.h"

namespace mox {

FileLock::FileLock(std::unique_ptr<disk::HeldLock> held) noexcept : held_(std::move(held)) {}
FileLock::FileLock(FileLock&& other) noexcept = default;
FileLock& FileLock::operator=(FileLock&& other) noexcept = default;
FileLock::~FileLock() = default;

std::optional<FileLock> FileLock::acquire(const Text& path, std::chrono::milliseconds patience,
                                          Problem* problem) {
    if (!path.isValid() || path.units().empty()) {
        disk::FailFor(problem, path, Reason::InvalidText, "the path is empty or not valid");
        return std::nullopt;
    }
    const disk::Deadline deadline(patience);
    for (;;) {
        auto held = std::make_unique<disk::HeldLock>();
        switch (held->TryToLock(path, deadline, problem)) {
            case disk::Outcome::Done:
                front::Succeed(problem);
                return FileLock(std::move(held));
            case disk::Outcome::Failed:
            case disk::Outcome::Unconfirmed:  // for replacements only
                return std::nullopt;
            case disk::Outcome::Again:
                if (!deadline.IsOver()) break;
                disk::FailFor(problem, path, Reason::Busy, "other processes keep replacing the file");
                return std::nullopt;
        }
    }
}

}  // namespace mox
