#include "mox_xmlApi/disk/read_to_end.h"

#include <algorithm>
#include <cstddef>

namespace mox::disk {

ReadResult ReadToEnd(const OpenFile& file, std::uint64_t expected, std::uint64_t most, std::string& bytes) {
    constexpr std::size_t kSmallestPiece = std::size_t{1} << 16;
    if (expected > most) return ReadResult::TooLarge;
    const std::size_t start = bytes.size();
    // One byte more than expected, so that the end is found without another piece.
    std::size_t room = static_cast<std::size_t>(expected) + 1;
    for (std::size_t done = 0;;) {
        if (done == room) room += std::max(kSmallestPiece, room / 2);
        room = static_cast<std::size_t>(std::min<std::uint64_t>(room, most + 1));
        bytes.resize(start + room);
        std::size_t count = 0;
        const bool isRead = ReadSome(file, bytes.data() + start + done, room - done, count);
        done += count;
        if (!isRead || count == 0) {
            bytes.resize(start + done);
            return isRead ? ReadResult::Done : ReadResult::Failed;
        }
        if (done > most) return ReadResult::TooLarge;
    }
}

}  // namespace mox::disk
