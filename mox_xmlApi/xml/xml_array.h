// A growable array of plain values with its storage in the document's pool.
//
// It is a value of 16 bytes without a destructor: copying it copies the reference, and whoever removes an
// array from the tree for good calls Release.
#ifndef MOX_XMLAPI_XML_XML_ARRAY_H
#define MOX_XMLAPI_XML_XML_ARRAY_H

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <type_traits>

#include "mox_xmlApi/xml/xml_pool.h"

namespace mox {

template <class T>
class XmlArray {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    std::size_t Size() const noexcept { return size_; }
    bool IsEmpty() const noexcept { return size_ == 0; }
    T* begin() const noexcept { return items_; }
    T* end() const noexcept { return items_ + size_; }

    // The item at `position`. Throws std::out_of_range beyond the end.
    T& At(std::size_t position) const {
        if (position >= size_) throw std::out_of_range("invalid vector<T> subscript");
        return items_[position];
    }

    // Makes room for `more` further items, so that as many Append calls cannot fail.
    // Throws std::bad_alloc or std::length_error; the array stays as it was then.
    void Reserve(XmlPool& pool, std::size_t more) {
        if (more <= capacity_ - size_) return;
        if (more > kLargestSize - size_) throw std::length_error("vector<T> too long");
        Move(pool, std::max({size_ + more, std::size_t{size_} + size_ / 2, kMinCapacity}));
    }

    // Takes a block of the pool that was asked for `count` items and holds them as the whole array, which must be
    // empty.
    void Adopt(T* items, std::size_t count) noexcept {
        items_ = items;
        size_ = static_cast<std::uint32_t>(count);
        capacity_ = CapacityOf(XmlPool::BlockSize(count * sizeof(T)));
    }

    // Adds `item` as the last one. Room must have been reserved.
    void Append(T item) noexcept { items_[size_++] = item; }

    // Takes out the item at `position`, which must be there.
    void RemoveAt(std::size_t position) noexcept {
        std::copy(items_ + position + 1, items_ + size_, items_ + position);
        --size_;
    }

    // Gives the storage back and leaves the array empty.
    void Release(XmlPool& pool) noexcept {
        pool.Free(items_, std::size_t{capacity_} * sizeof(T));
        *this = XmlArray();
    }

  private:
    static constexpr std::size_t kMinCapacity = 4;  // of an array that grows
    static constexpr std::size_t kLargestSize = std::numeric_limits<std::uint32_t>::max() / 2;

    static std::uint32_t CapacityOf(std::size_t bytes) noexcept {
        return static_cast<std::uint32_t>(bytes / sizeof(T));
    }

    void Move(XmlPool& pool, std::size_t wanted) {
        const std::size_t capacity = CapacityOf(XmlPool::BlockSize(wanted * sizeof(T)));
        auto* moved = static_cast<T*>(pool.Allocate(capacity * sizeof(T)));
        std::copy_n(items_, size_, moved);
        pool.Free(items_, std::size_t{capacity_} * sizeof(T));
        items_ = moved;
        capacity_ = static_cast<std::uint32_t>(capacity);
    }

    T* items_ = nullptr;
    std::uint32_t size_ = 0;
    std::uint32_t capacity_ = 0;
};

}  // namespace mox

#endif
