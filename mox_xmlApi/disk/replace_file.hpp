// Replaces a file atomically: after a crash, a full disk or the end of the process, it is the whole old file or the
// whole new one.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
// The new content is written to a temporary file in the same folder, which is flushed to the disk and renamed to the
// name of the old file. So the folder must be writable, and the disk must have room for both. In detail:
//
// Names
//   A symbolic link stays, and the file that it refers to is replaced. A link that belongs neither to the user of the
//   process nor to root nor to the owner of the file is not followed, because somebody may have put it there to have
//   another file replaced (on POSIX systems). Other hard links to the old file keep the old content.
//
// Access
//   Nobody can do more with the new file than with the old one, at no time. A file that the process may not write, or
//   that is not a regular file, is not replaced. A new file gets the defaults of the system. A replaced one keeps:
//   On POSIX systems, its mode bits and, as far as the process is permitted to set them, its owner and group; on Linux
//   also its access-control list and its extended attributes in the namespace "user". If owner, group or list cannot be
//   kept, the rights of the group and of others are reduced to what all of them had, and the set-user-ID and
//   set-group-ID bits are removed.
//   On Windows, its attributes and its access rights (the DACL), and if permitted its owner and group. If the rights
//   cannot be kept, the file is not replaced.
//
// Others
//   The temporary file is created anew and written through the handle that created it. Before it is renamed, and again
//   afterwards, it is compared with the file of that name, so that a file which another user has swapped in is
//   detected.
//   Programs that use this function on the same file exclude each other from the comparison with `onlyIf` to the
//   renaming, by a lock on the file (flock; on Windows a named mutex) that ends with the process. FileLock holds it
//   from the reading on. On a file system without locks, and against other programs, the comparison is made but a
//   change right after it is not seen. Whoever may read the file can hold that lock, too, and so make replacements end
//   with Reason::Busy.
//   A missing file is created without a lock, whether a FileLock is held on it or not. If another program creates it
//   first, that is seen: with `onlyIf` the call fails (Changed), and without it the other one's file is replaced. (Not
//   on a file system that knows neither links nor a renaming that replaces nothing: there a file that is created at
//   the very moment of the renaming is replaced.)
//
// Failure
//   The old file is unchanged and the temporary file is removed. That file, ".mox-<number>-<number>.tmp" in the folder
//   of the file, stays only if the process ends midway or if the system cannot remove it.
//   There are two exceptions, both right after the renaming on POSIX systems. If the system fails to say whose file has
//   the name (Unconfirmed), the new file is in place, unless another program was faster. If another program has put its
//   own file in the place of the new one (Changed), that file is there.
//
// Power cuts
//   At each moment the disk has the old file or the new one, whole, and the backup or what was there before it; the new
//   file only if it has the backup. On POSIX systems the folder is flushed after the renaming, so that a replacement
//   that has succeeded stays; where the folder cannot be read, the whole file system is flushed. An error of that flush
//   is ignored, because the new file is in place: then it may be the old one again after a power cut.
#ifndef MOX_XMLAPI_DISK_REPLACE_FILE_HPP
#define MOX_XMLAPI_DISK_REPLACE_FILE_HPP

#include <chrono>
#include <optional>
#include <string_view>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox {

class FileLock;

struct ReplaceOptions {
    // The stamp that readFile gave: the file is replaced only if it still has that content, or is still missing. Only
    // the content counts. The same bytes under a new time, or in a new file of that name, are no change, because
    // nothing is lost. Null replaces whatever is there.
    const FileStamp* onlyIf = nullptr;

    // A path to which the old file, if there is one, is copied before it is replaced, with the same access. The copy
    // replaces what was there, a link too, as atomically as the file itself, and is flushed before that is replaced.
    //
    // If making the backup fails, the file is unchanged. So is what was at the path of the backup, with three
    // exceptions on POSIX systems, after the copy was renamed: the copy is there if the system cannot
    // examine it or cannot flush its folder, and another program's file is there if that has put it in the place of the
    // copy. If replacing the file fails after that, the new backup stays: it is a copy of the file as it was.
    std::optional<Text> backup{};

    // The lock on the file that the caller holds. Without it, a file that anybody has locked cannot be replaced (Busy);
    // a missing one is created nevertheless. (On Windows it is not needed: the thread that has locked a file can
    // replace it.)
    const FileLock* lock = nullptr;

    // How long to wait for other processes that are replacing the same file, have locked it, or have a lease on it.
    std::chrono::milliseconds patience{10000};
};

// Replaces the file at `path` by one with these bytes, or creates it. See the top of this file.
//
// `stamp`, unless null, is set to the state of the new file, from which a further replacement can go on.
//
// Returns false on failure, and `stamp` is unchanged. The reason is InvalidText, NotFound (of the folder), NoPermission,
// NotRegularFile, TooLarge (of an old file that has to be read), ReadFailed (of it) or WriteFailed; Changed if the file
// is not the one that `onlyIf` describes, or if another program has put its own file in place of the new one; Busy if
// another process did not finish in time. With Unconfirmed, `stamp` is set as on success. `problem->file` is the backup
// if that is what failed. Throws std::bad_alloc.
bool replaceFile(const Text& path, std::string_view bytes, const ReplaceOptions& options = {},
                 FileStamp* stamp = nullptr, Problem* problem = nullptr);

}  // namespace mox

#endif
