// Reads what is left of an open file.
#ifndef MOX_XMLAPI_DISK_READ_TO_END_H
#define MOX_XMLAPI_DISK_READ_TO_END_H

#include <cstdint>
#include <string>

#include "mox_xmlApi/platform/open_file.h"

namespace mox::disk {

enum class ReadResult : std::uint8_t { Done, TooLarge, Failed };

// Appends what the file has from its present position to its end, at most `most` bytes, to `bytes`. `expected` is how
// many bytes it probably has. If it failed, LastSystemError() says why.
ReadResult ReadToEnd(const OpenFile& file, std::uint64_t expected, std::uint64_t most, std::string& bytes);

}  // namespace mox::disk

#endif
