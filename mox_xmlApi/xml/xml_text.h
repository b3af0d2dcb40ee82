// A text of the tree: a slice of the loaded text, or storage of its own from the document's pool.
//
// It is a plain value of 16 bytes without a destructor: copying it copies the reference, and whoever removes
// a text from the tree for good calls Release.
#ifndef MOX_XMLAPI_XML_XML_TEXT_H
#define MOX_XMLAPI_XML_XML_TEXT_H

#include <algorithm>
#include <cstdint>
#include <limits>
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
        slice.data_ = text.data();
        slice.length_ = CheckedLength(text.size());
        return slice;
    }

    WideView View() const noexcept { return {data_, length_}; }
    bool IsEmpty() const noexcept { return length_ == 0; }

    // Replaces the text by a copy of `text`, which may be a part of this very text. What fits is overwritten
    // in place. Throws std::bad_alloc, or std::length_error with "string too long"; the old text stays then.
    void Assign(XmlPool& pool, WideView text) {
        if (text.size() <= capacity_ && !IsWasteful(text.size())) {
            if (!text.empty()) WideTraits::move(Storage(), text.data(), text.size());
            length_ = static_cast<std::uint32_t>(text.size());
            return;
        }
        Replace(pool, NewStorage(pool, text, text.size()));
    }

    // Appends `text`, with room for as much again, so that many pieces cost no more than linear work. Throws
    // as Assign does; the text stays as it was then.
    void Append(XmlPool& pool, WideView text) {
        const std::size_t length = std::size_t{length_} + text.size();
        if (length > capacity_) {
            Replace(pool,
                    NewStorage(pool, View(), std::max(length, std::min(length + length / 2, kLongest))));
        }
        WideTraits::copy(Storage() + length_, text.data(), text.size());
        length_ = static_cast<std::uint32_t>(length);
    }

    // Gives storage back to `pool` and leaves the text empty.
    void Release(XmlPool& pool) noexcept {
        FreeStorage(pool);
        *this = XmlText();
    }

  private:
    using WideTraits = std::char_traits<wchar16>;

    static constexpr std::size_t kLongest = std::numeric_limits<std::uint32_t>::max();

    static std::uint32_t CheckedLength(std::size_t length) {
        if (length > kLongest) throw std::length_error("string too long");
        return static_cast<std::uint32_t>(length);
    }

    // A copy of `text` in storage for `room` units or a few more.
    static XmlText NewStorage(XmlPool& pool, WideView text, std::size_t room) {
        XmlText fresh;
        if (room == 0) return fresh;
        CheckedLength(room);
        const std::size_t block = XmlPool::BlockSize(room * sizeof(wchar16));
        auto* units = static_cast<wchar16*>(pool.Allocate(block));
        WideTraits::copy(units, text.data(), text.size());
        fresh.data_ = units;
        fresh.length_ = static_cast<std::uint32_t>(text.size());
        fresh.capacity_ = static_cast<std::uint32_t>(block / sizeof(wchar16));
        return fresh;
    }

    // By value: the new text is complete before anything of the old one is touched.
    void Replace(XmlPool& pool, XmlText fresh) noexcept {
        FreeStorage(pool);
        *this = fresh;
    }

    // A short text does not go on holding the memory of a long one.
    bool IsWasteful(std::size_t length) const noexcept {
        return capacity_ > XmlPool::kLargestSmall && length < capacity_ / 4;
    }

    wchar16* Storage() const noexcept { return const_cast<wchar16*>(data_); }

    void FreeStorage(XmlPool& pool) const noexcept {
        if (capacity_ != 0) pool.Free(Storage(), std::size_t{capacity_} * sizeof(wchar16));
    }

    const wchar16* data_ = nullptr;
    std::uint32_t length_ = 0;
    std::uint32_t capacity_ = 0;  // 0: a slice, which is never written to
};

}  // namespace mox

#endif
