// Loading: brings the text of a file or of a memory image into the document's pool, as 16-bit units, and
// parses it there. A file is taken in pieces that are small enough to be still in the processor's cache when
// they are widened and searched for the zero that ends the text.
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>

#include "mox_xmlApi/platform/files.h"
#include "mox_xmlApi/platform/scan.h"
#include "mox_xmlApi/xml/xml_document.h"
#include "mox_xmlApi/xml/xml_parser.h"

namespace mox {
namespace {

static_assert(std::endian::native == std::endian::little, "wide files are little-endian units");

// The memory for `count` units, a zero, and what the parser may read after it.
std::size_t BlockSize(std::size_t count) noexcept {
    return (count + 1 + kScanAhead) * sizeof(wchar16);
}

// Roughly how many bytes the nodes of a text will take, judged by the markup at its beginning.
template <class Unit>
std::size_t EstimateTreeSize(const Unit* text, std::size_t length) noexcept {
    constexpr std::size_t kSample = 4 * 1024;
    constexpr std::size_t kUsualBytesPerUnit = 3;
    constexpr std::size_t kMaxBytesPerUnit = 4;  // the beginning may mislead
    if (length < kSample) return length * kUsualBytesPerUnit;
    std::uint32_t nodes = 0;
    std::uint32_t quotes = 0;
    for (std::size_t i = 0; i < kSample - 1; ++i) {
        nodes += static_cast<std::uint32_t>(text[i] == '<') & static_cast<std::uint32_t>(text[i + 1] != '/');
        quotes += static_cast<std::uint32_t>(text[i] == '"');
    }
    const std::size_t bytes = nodes * sizeof(XmlNode) + quotes / 2 * sizeof(XmlAttribute);
    return std::min(length / kSample * bytes, length * kMaxBytesPerUnit);
}

// A block of the pool for the text that is loaded, given back unless it is kept.
class TextBlock {
  public:
    // Room for `count` units, in one piece of memory with room for the tree. The text begins as `sample` does.
    template <class Unit>
    TextBlock(XmlPool& pool, std::size_t count, const Unit* sample)
        : pool_(pool),
          bytes_(BlockSize(count)),
          memory_(Bytes(pool.AllocateWithRoom(bytes_, EstimateTreeSize(sample, count)))) {}
    // Room for a text that outgrew its block.
    TextBlock(XmlPool& pool, std::size_t bytes)
        : pool_(pool), bytes_(bytes), memory_(Bytes(pool.Allocate(bytes))) {}
    ~TextBlock() { pool_.Free(memory_, bytes_); }
    TextBlock(const TextBlock&) = delete;
    TextBlock& operator=(const TextBlock&) = delete;

    wchar16* Units() const noexcept { return static_cast<wchar16*>(static_cast<void*>(memory_)); }
    std::size_t Size() const noexcept { return bytes_; }
    void Keep() noexcept { memory_ = nullptr; }

    // Exchanges the memory of two blocks of one pool.
    void Swap(TextBlock& other) noexcept {
        std::swap(bytes_, other.bytes_);
        std::swap(memory_, other.memory_);
    }

  private:
    static unsigned char* Bytes(void* memory) noexcept { return static_cast<unsigned char*>(memory); }

    XmlPool& pool_;
    std::size_t bytes_;
    unsigned char* memory_;
};

// The part of a file that was read last.
struct Piece {
    static constexpr std::size_t kBytes = 16 * 1024;

    std::array<wchar16, kBytes / sizeof(wchar16)> units;
    std::size_t count = 0;  // bytes

    void Read(InputFile& file, std::size_t requested) noexcept { count = file.Read(units.data(), requested); }
};

// How many units to make room for if the text goes on after the first piece: those that a file of its size contains and
// one more, to detect its end.
std::size_t CapacityForWhole(const InputFile& file, std::size_t bytesPerUnit) {
    constexpr std::uint64_t kMaxSize = std::numeric_limits<std::size_t>::max() / 8;
    const std::uint64_t size = file.SizeHint();
    if (size > kMaxSize) throw std::bad_alloc();
    return std::max(static_cast<std::size_t>(size), Piece::kBytes) / bytesPerUnit + 1;
}

// Bytes become units with their sign: 0x80 to 0xFF give 0xFF80 to 0xFFFF.
void Widen(const unsigned char* bytes, std::size_t count, wchar16* units) noexcept {
    for (std::size_t i = 0; i < count; ++i)
        units[i] = static_cast<wchar16>(static_cast<std::int16_t>(static_cast<std::int8_t>(bytes[i])));
}

std::size_t BytesToZero(const unsigned char* bytes, std::size_t count) noexcept {
    const void* zero = count == 0 ? nullptr : std::memchr(bytes, 0, count);
    return zero == nullptr ? count
                           : static_cast<std::size_t>(static_cast<const unsigned char*>(zero) - bytes);
}

// Makes the block larger when it has room for `count` units alone.
void GrowWhenFull(XmlPool& pool, TextBlock& block, std::size_t count) {
    if (BlockSize(count) < block.Size()) return;
    TextBlock larger(pool, block.Size() * 2);
    std::memcpy(larger.Units(), block.Units(), count * sizeof(wchar16));
    block.Swap(larger);
}

// How many more units fit into the block with what follows them.
std::size_t RoomAfter(const TextBlock& block, std::size_t count) noexcept {
    return block.Size() / sizeof(wchar16) - 1 - kScanAhead - count;
}

// What differs between the two forms of a file. Length is the number of units in the piece before the first zero; an
// odd byte at the end of a wide file is dropped. Convert writes the first `length` units to `to`. Read reads up to
// `requested` units of the file, writes those before the first zero to `to`, and returns how many they are.
struct NarrowForm {
    static constexpr std::size_t kBytesPerUnit = 1;

    static const unsigned char* Begin(const Piece& piece) noexcept {
        return reinterpret_cast<const unsigned char*>(piece.units.data());
    }
    static std::size_t Length(const Piece& piece) noexcept { return BytesToZero(Begin(piece), piece.count); }
    static void Convert(const Piece& piece, std::size_t length, wchar16* to) noexcept {
        Widen(Begin(piece), length, to);
    }
    static std::size_t Read(InputFile& file, Piece& piece, wchar16* to, std::size_t requested) noexcept {
        piece.Read(file, requested);
        const std::size_t length = Length(piece);
        Convert(piece, length, to);
        return length;
    }
};

struct WideForm {
    static constexpr std::size_t kBytesPerUnit = sizeof(wchar16);

    static const wchar16* Begin(const Piece& piece) noexcept { return piece.units.data(); }
    static std::size_t Length(const Piece& piece) noexcept {
        return CountBefore(0, Begin(piece), piece.count / kBytesPerUnit);
    }
    static void Convert(const Piece& piece, std::size_t length, wchar16* to) noexcept {
        std::memcpy(to, Begin(piece), length * kBytesPerUnit);
    }
    static std::size_t Read(InputFile& file, Piece&, wchar16* to, std::size_t requested) noexcept {
        return CountBefore(0, to, file.Read(to, requested * kBytesPerUnit) / kBytesPerUnit);
    }
};

template <class Form>
inline constexpr std::size_t kUnitsPerPiece = Piece::kBytes / Form::kBytesPerUnit;

// Reads the rest of the text of a file, up to the first zero or its end, after `length` units that are in the block.
// Returns the number of units of the whole text.
template <class Form>
std::size_t ReadRest(InputFile& file, XmlPool& pool, TextBlock& block, Piece& piece, std::size_t length) {
    for (;;) {
        GrowWhenFull(pool, block, length);
        const std::size_t requested = std::min(kUnitsPerPiece<Form>, RoomAfter(block, length));
        const std::size_t read = Form::Read(file, piece, block.Units() + length, requested);
        length += read;
        if (read < requested) return length;
    }
}

// Parses the text of `block`, which the tree keeps if it has taken anything from it.
bool ParseBlock(XmlDocument& document, TextBlock& block, std::size_t length, XmlNode* parent) {
    std::fill_n(block.Units() + length, 1 + kScanAhead, wchar16{0});
    const std::size_t before = parent->children.Size();
    const auto keepIfUsed = [&] {
        if (parent->children.Size() != before) block.Keep();
    };
    try {
        const bool parsed = ParseInPlace(document, block.Units(), length, parent);
        keepIfUsed();
        return parsed;
    } catch (...) {
        keepIfUsed();
        throw;
    }
}

template <class Form>
bool LoadAs(XmlDocument& document, InputFile& file) {
    XmlPool& pool = document.Pool();
    Piece piece;
    piece.Read(file, Piece::kBytes);
    std::size_t length = Form::Length(piece);
    const bool isWhole = length < kUnitsPerPiece<Form>;
    TextBlock block(pool, isWhole ? length : CapacityForWhole(file, Form::kBytesPerUnit), Form::Begin(piece));
    Form::Convert(piece, length, block.Units());
    if (!isWhole) length = ReadRest<Form>(file, pool, block, piece, length);
    return !file.Failed() && ParseBlock(document, block, length, document.root);
}

}  // namespace

bool XmlDocument::LoadFile(const wchar16* path, bool wide) {
    if (!CanLoad()) return false;
    InputFile file(path);
    if (!file.IsOpen()) return false;
    return loaded = wide ? LoadAs<WideForm>(*this, file) : LoadAs<NarrowForm>(*this, file);
}

bool XmlDocument::LoadBuffer(const char* bytes, std::uint64_t size) {
    if (!CanLoad()) return false;
    const auto* image = reinterpret_cast<const unsigned char*>(bytes);
    constexpr std::uint64_t kNoLimit = std::numeric_limits<std::size_t>::max() / 2;
    const std::size_t length =
        size >= kNoLimit ? std::strlen(bytes) : BytesToZero(image, static_cast<std::size_t>(size));
    TextBlock block(*pool_, length, image);
    Widen(image, length, block.Units());
    return loaded = ParseBlock(*this, block, length, root);
}

bool XmlDocument::Load(const wchar16* path, bool wide, const char* bytes, std::int32_t size) {
    return path != nullptr ? LoadFile(path, wide)
                           : LoadBuffer(bytes, static_cast<std::uint64_t>(std::int64_t{size}));
}

bool XmlDocument::Parse(WideView text, XmlNode* parent) {
    if (parent == nullptr) return false;
    TextBlock block(*pool_, text.size(), text.data());
    std::char_traits<wchar16>::copy(block.Units(), text.data(), text.size());
    return ParseBlock(*this, block, text.size(), parent);
}

}  // namespace mox
