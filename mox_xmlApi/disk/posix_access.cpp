#include "mox_xmlApi/disk/posix_access.h"

#if !defined(_WIN32)

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <unistd.h>
#if defined(__linux__)
#include <sys/xattr.h>
#endif

namespace mox::disk {
namespace {

constexpr mode_t kAllBits = 07777;
constexpr mode_t kSetIdBits = S_ISUID | S_ISGID;

// ---- access-control lists, as Linux stores them: a version, then one record for each entry

struct ListEntry {
    std::uint16_t tag;
    std::uint16_t rights;
    std::uint32_t id;
};

constexpr std::size_t kListHeader = 4;
constexpr std::uint16_t kOwner = 0x01;
constexpr std::uint16_t kMask = 0x10;
constexpr std::uint16_t kOther = 0x20;

// Calls `visit` with each entry.
template <class Visit>
void ForEachEntry(std::string_view list, Visit visit) {
    for (std::size_t at = kListHeader; at + sizeof(ListEntry) <= list.size(); at += sizeof(ListEntry)) {
        ListEntry entry{};
        std::memcpy(&entry, list.data() + at, sizeof entry);
        visit(entry);
    }
}

// What the owner may do, what at least one of all others may do, and what each of them may do, as 0 to 7.
struct Rights {
    mode_t owner = 0;
    mode_t anyOther = 0;
    mode_t everyOther = 7;
};

Rights RightsOf(mode_t mode, std::string_view list) noexcept {
    const mode_t group =
        (mode >> 3) & 7;  // with a list, its mask: the most that the group and named ones have
    const mode_t others = mode & 7;
    Rights rights{(mode >> 6) & 7, others, others};
    const auto add = [&rights](mode_t bits) {
        rights.anyOther |= bits;
        rights.everyOther &= bits;
    };
    if (list.empty()) {
        add(group);
    } else {
        ForEachEntry(list, [&](const ListEntry& entry) {
            if (entry.tag != kOwner && entry.tag != kMask && entry.tag != kOther) add(entry.rights & group);
        });
    }
    return rights;
}

#if defined(__linux__)

constexpr char kListName[] = "system.posix_acl_access";
constexpr std::string_view kUserPrefix = "user.";

// Calls `get(buffer, size)`, which returns how many bytes there are, until they fit. Returns false on failure.
template <class Get>
bool GetWhole(Get get, std::string& bytes) {
    for (;;) {
        const ssize_t size = get(nullptr, 0);
        if (size < 0) return false;
        bytes.resize(static_cast<std::size_t>(size));
        if (size == 0) return true;
        const ssize_t got = get(bytes.data(), bytes.size());
        if (got >= 0) {
            bytes.resize(static_cast<std::size_t>(got));
            return true;
        }
        if (errno != ERANGE) return false;  // otherwise it has grown
    }
}

bool GetAttribute(const OpenFile& file, const char* name, std::string& value) {
    return GetWhole([&](char* buffer, std::size_t size) { return fgetxattr(file.Get(), name, buffer, size); },
                    value);
}

bool ReadList(const OpenFile& file, std::string& list) {
    if (GetAttribute(file, kListName, list)) return true;
    list.clear();
    return errno == ENODATA || errno == ENOTSUP;
}

bool WriteList(const OpenFile& file, const std::string& list) noexcept {
    return fsetxattr(file.Get(), kListName, list.data(), list.size(), 0) == 0;
}

// Removes what the file has inherited from its folder. Returns whether it has no list now.
bool RemoveList(const OpenFile& file) noexcept {
    return fremovexattr(file.Get(), kListName) == 0 || errno == ENODATA || errno == ENOTSUP;
}

#else

bool ReadList(const OpenFile& /*file*/, std::string& list) {
    list.clear();
    return true;
}

bool WriteList(const OpenFile& /*file*/, const std::string& /*list*/) noexcept {
    return false;
}

bool RemoveList(const OpenFile& /*file*/) noexcept {
    return true;
}

#endif

// Gives the file owner and group, or the group alone. Only the superuser can change the owner.
void ChangeOwner(const OpenFile& file, uid_t owner, gid_t group) noexcept {
    if (fchown(file.Get(), owner, group) == 0) return;
    static_cast<void>(fchown(file.Get(), static_cast<uid_t>(-1), group) == 0);
}

}  // namespace

mode_t NarrowedMode(mode_t mode, std::string_view list, Kept kept) noexcept {
    mode &= kAllBits;
    if (kept.owner && kept.group && list.empty()) return mode;
    const Rights rights = RightsOf(mode, list);
    mode_t group = (mode >> 3) & 7;
    mode_t others = mode & 7;
    // Whoever was in one class may now be in another one.
    if (!kept.group || !list.empty()) group = others = rights.everyOther;
    if (!kept.owner) {
        group &= rights.owner;
        others &= rights.owner;
    }
    if (!kept.owner || !kept.group) mode &= ~kSetIdBits;
    return (mode & ~mode_t{077}) | (group << 3) | others;
}

bool IsListSafe(mode_t mode, std::string_view list, Kept kept) noexcept {
    const Rights rights = RightsOf(mode, list);
    // The old owner is one of the others now.
    return kept.group && (kept.owner || (rights.anyOther & ~rights.owner) == 0);
}

bool Access::Read(const OpenFile& file) {
    return fstat(file.Get(), &status_) == 0 && ReadList(file, list_);
}

bool Access::GiveTo(const OpenFile& file) const {
    struct stat now;
    if (fstat(file.Get(), &now) != 0) return false;
    if (now.st_uid != status_.st_uid || now.st_gid != status_.st_gid) {
        ChangeOwner(file, status_.st_uid, status_.st_gid);
        if (fstat(file.Get(), &now) != 0) return false;
    }
    const Kept kept{now.st_uid == status_.st_uid, now.st_gid == status_.st_gid};

    // The mode is set last, because changing the owner or the list may change it.
    mode_t mode = status_.st_mode & kAllBits;
    if (!list_.empty() && IsListSafe(mode, list_, kept) && WriteList(file, list_)) {
        if (!kept.owner) mode &= ~kSetIdBits;
    } else {
        mode = NarrowedMode(mode, list_, kept);
        // The bits of the group are the most that an inherited list grants to anybody.
        if (!RemoveList(file)) mode &= ~mode_t{070};
    }
    const bool isSet = fchmod(file.Get(), mode) == 0;
    const int error = errno;
    if (fstat(file.Get(), &now) != 0) return false;
    const mode_t bits = now.st_mode & kAllBits;
    // The system may refuse single bits.
    if (bits == mode || (isSet && (bits & ~mode) == 0)) return true;
    // Where all files have the same mode bits, they cannot be set.
    if (now.st_mode == status_.st_mode && list_.empty() && kept.owner && kept.group) return true;
    errno = isSet ? EPERM : error;
    return false;
}

#if defined(__linux__)

void CopyUserAttributes(const OpenFile& from, const OpenFile& to) {
    std::string names;
    const auto list = [&](char* buffer, std::size_t size) { return flistxattr(from.Get(), buffer, size); };
    if (!GetWhole(list, names)) return;
    std::string value;
    for (std::size_t at = 0; at < names.size(); at += std::strlen(names.c_str() + at) + 1) {
        const char* const name = names.c_str() + at;
        if (std::string_view(name).substr(0, kUserPrefix.size()) != kUserPrefix) continue;
        if (GetAttribute(from, name, value))
            static_cast<void>(fsetxattr(to.Get(), name, value.data(), value.size(), 0));
    }
}

#else

void CopyUserAttributes(const OpenFile& /*from*/, const OpenFile& /*to*/) {}

#endif

}  // namespace mox::disk

#endif
