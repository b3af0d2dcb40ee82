// Reads a file as a whole.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_DISK_READ_FILE_HPP
#define MOX_XMLAPI_DISK_READ_FILE_HPP

#include <cstdint>
#include <optional>
#include <string>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox {

// The most bytes that are read: as many as the largest wide document has, or of what is not a regular file fewer,
// because it need not have an end.
inline constexpr std::uint64_t kLargestFile = std::uint64_t{1} << 32;
inline constexpr std::uint64_t kLargestStream = std::uint64_t{1} << 28;

// Reads the file at `path` from its beginning to its end. It is opened once and each byte is read once, so that pipes,
// terminals and character devices can be read, too. Nothing is locked, and other processes may replace the file
// meanwhile; the result is then the old file.
//
// `stamp`, unless null, is set to the state of the file as it was read, and to that of a missing file if there is none
// (Reason::NotFound). Of what is not a regular file, only the size and the hash mean something.
//
// Returns nullopt on failure; the reason is InvalidText, NotFound, NoPermission, NotRegularFile (a folder, or a device
// that is a disk), TooLarge or ReadFailed, and `stamp` is unchanged except for NotFound. Throws std::bad_alloc if there
// is no memory for the bytes.
std::optional<std::string> readFile(const Text& path, FileStamp* stamp = nullptr, Problem* problem = nullptr);

}  // namespace mox

#endif
