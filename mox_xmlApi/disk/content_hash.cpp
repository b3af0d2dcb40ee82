#include "mox_xmlApi/disk/content_hash.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace mox::disk {
namespace {

// Two lanes of 64 bits, each of which every word goes into. A step maps different words to different lanes, and
// different lanes to different lanes: contents that differ in one word always have different hashes.
class Lanes {
  public:
    void Add(std::uint64_t word) noexcept {
        first_ = Rotate((first_ ^ word) * 0x9FB21C651E98DF25U, 29);
        second_ = Rotate((second_ + word) * 0xD1B54A32D192ED03U, 37);
    }

    std::uint64_t First() const noexcept { return Mix(first_ ^ Rotate(second_, 17)); }
    std::uint64_t Second() const noexcept { return Mix(second_ + 0x632BE59BD9B4E019U); }

  private:
    static std::uint64_t Rotate(std::uint64_t bits, int count) noexcept {
        return (bits << count) | (bits >> (64 - count));
    }

    static std::uint64_t Mix(std::uint64_t bits) noexcept {
        bits = (bits ^ (bits >> 32)) * 0xD6E8FEB86659FD93U;
        bits = (bits ^ (bits >> 32)) * 0xD6E8FEB86659FD93U;
        return bits ^ (bits >> 32);
    }

    std::uint64_t first_ = 0x2545F4914F6CDD1DU;
    std::uint64_t second_ = 0x5851F42D4C957F2DU;
};

}  // namespace

void DescribeContent(std::string_view bytes, FileStamp& stamp) noexcept {
    stamp.exists = true;
    stamp.size = bytes.size();
    Lanes lanes;
    lanes.Add(bytes.size());
    std::uint64_t word = 0;
    std::size_t at = 0;
    for (; bytes.size() - at >= sizeof word; at += sizeof word) {
        std::memcpy(&word, bytes.data() + at, sizeof word);
        lanes.Add(word);
    }
    word = 0;
    std::memcpy(&word, bytes.data() + at, bytes.size() - at);
    lanes.Add(word);
    stamp.hash[0] = lanes.First();
    stamp.hash[1] = lanes.Second();
}

}  // namespace mox::disk
