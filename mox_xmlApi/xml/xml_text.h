// A text of the tree: a slice of the loaded text, or storage of its own from the document's pool.
//
// It is a plain value of 12 bytes without a destructor: copying it copies the reference, and whoever removes
// a text from the tree for good calls Release. A tree is mostly texts, and it is loaded, saved and searched as
// fast as memory lets it: so the address needs no alignment of its own, and storage holds its own capacity:
//
//   block of the pool:  [ capacity, 4 bytes | units ... ]
//                                             ^ address
#ifndef MOX_XMLAPI_XML_XML_TEXT_H
#define MOX_XMLAPI_XML_XML_TEXT_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_pool.h"

namespace mox {

class XmlText {
  public:
    constexpr XmlText() = default;

    // A text that lives in `pool`, a copy of `text`. Throws std::bad_alloc; std::length_error "string too
    // long".
    static XmlText Copy(XmlPool& pool, WideView text) {
        XmlText copy;
        copy.Assign(pool, text);
        return copy;
    }

    // A text that refers to `text`, which must live as long as the tree: the loaded text, or a literal.
    static XmlText Slice(WideView text) {
        XmlText slice;
        slice.SetView(text.data(), CheckedLength(text.size()));
        return slice;
    }

    WideView View() const noexcept { return {Data(), Length()}; }
    bool IsEmpty() const noexcept { return Length() == 0; }

    // Replaces the text by a copy of `text`, which may be a part of this very text. What fits is overwritten
    // in place. Throws std::bad_alloc, or std::length_error with "string too long"; the old text stays then.
    void Assign(XmlPool& pool, WideView text) {
        const std::size_t capacity = Capacity();
        if (text.size() <= capacity && !IsWasteful(text.size(), capacity)) {
            if (!text.empty()) WideTraits::move(Storage(), text.data(), text.size());
            SetLength(text.size());
            return;
        }
        const bool grows = capacity != 0 && text.size() > capacity;
        const std::size_t room = grows ? std::min(capacity + capacity / 8, kMaxLength) : 0;
        Replace(pool, NewStorage(pool, text, std::max(text.size(), room)));
    }

    // Appends `text`, with room for as much again, so that many pieces cost no more than linear work. Throws
    // as Assign does; the text stays as it was then.
    void Append(XmlPool& pool, WideView text) {
        const std::size_t old = Length();
        const std::size_t length = old + text.size();
        if (length > Capacity()) {
            Replace(pool,
                    NewStorage(pool, View(), std::max(length, std::min(length + length / 2, kMaxLength))));
        }
        WideTraits::copy(Storage() + old, text.data(), text.size());
        SetLength(length);
    }

    // Gives storage back to `pool` and leaves the text empty.
    void Release(XmlPool& pool) noexcept {
        FreeStorage(pool);
        *this = XmlText();
    }

  private:
    using WideTraits = std::char_traits<wchar16>;

    static constexpr std::size_t kMaxLength = 0x7FFFFFFF;
    static constexpr std::uint32_t kOwnsStorage =
        0x80000000;  // without it: a slice, which is never written to
    static constexpr std::size_t kHeaderSize = sizeof(std::uint32_t);

    static std::uint32_t CheckedLength(std::size_t length) {
        if (length > kMaxLength) throw std::length_error("string too long");
        return static_cast<std::uint32_t>(length);
    }

    // A copy of `text` in storage for `room` units or a few more.
    static XmlText NewStorage(XmlPool& pool, WideView text, std::size_t room) {
        XmlText fresh;
        if (room == 0) return fresh;
        CheckedLength(room);
        const std::size_t bytes = XmlPool::BlockSize(kHeaderSize + room * sizeof(wchar16));
        auto* block = static_cast<std::byte*>(pool.Allocate(bytes));
        const auto capacity = static_cast<std::uint32_t>((bytes - kHeaderSize) / sizeof(wchar16));
        std::memcpy(block, &capacity, sizeof capacity);
        auto* units = static_cast<wchar16*>(static_cast<void*>(block + kHeaderSize));
        WideTraits::copy(units, text.data(), text.size());
        fresh.SetView(units, static_cast<std::uint32_t>(text.size()) | kOwnsStorage);
        return fresh;
    }

    // By value: the new text is complete before anything of the old one is touched.
    void Replace(XmlPool& pool, XmlText fresh) noexcept {
        FreeStorage(pool);
        *this = fresh;
    }

    // A short text does not go on holding the memory of a long one.
    static bool IsWasteful(std::size_t length, std::size_t capacity) noexcept {
        return capacity > XmlPool::kLargestSmall && length < capacity / 4;
    }

    void SetView(const wchar16* data, std::uint32_t length) noexcept {
        std::memcpy(address_.data(), &data, sizeof data);
        length_ = length;
    }
    const wchar16* Data() const noexcept {
        const wchar16* data = nullptr;
        std::memcpy(&data, address_.data(), sizeof data);
        return data;
    }
    wchar16* Storage() const noexcept { return const_cast<wchar16*>(Data()); }
    std::byte* Block() const noexcept {
        return static_cast<std::byte*>(static_cast<void*>(Storage())) - kHeaderSize;
    }

    std::size_t Length() const noexcept { return length_ & ~kOwnsStorage; }
    void SetLength(std::size_t length) noexcept {
        length_ = static_cast<std::uint32_t>(length) | (length_ & kOwnsStorage);
    }

    // How many units the storage has room for; 0 for a slice.
    std::size_t Capacity() const noexcept {
        if ((length_ & kOwnsStorage) == 0) return 0;
        std::uint32_t capacity = 0;
        std::memcpy(&capacity, Block(), sizeof capacity);
        return capacity;
    }

    void FreeStorage(XmlPool& pool) const noexcept {
        if (const std::size_t capacity = Capacity(); capacity != 0)
            pool.Free(Block(), kHeaderSize + capacity * sizeof(wchar16));
    }

    alignas(std::uint32_t) std::array<std::byte, sizeof(const wchar16*)> address_{};
    std::uint32_t length_ = 0;  // with kOwnsStorage
};

}  // namespace mox

#endif
