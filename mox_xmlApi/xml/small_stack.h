// A stack of plain values that needs no memory of its own until it holds more than `Inline` of them.
#ifndef MOX_XMLAPI_XML_SMALL_STACK_H
#define MOX_XMLAPI_XML_SMALL_STACK_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <type_traits>

namespace mox {

template <class T, std::size_t Inline>
class SmallStack {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

  public:
    SmallStack() = default;
    SmallStack(const SmallStack&) = delete;
    SmallStack& operator=(const SmallStack&) = delete;

    std::size_t Size() const noexcept { return size_; }
    bool IsEmpty() const noexcept { return size_ == 0; }
    T& Top() noexcept { return items_[size_ - 1]; }
    // The items from `position` on, oldest first.
    T* From(std::size_t position) noexcept { return items_ + position; }

    // Throws std::bad_alloc; the stack stays as it was then.
    void Push(T item) {
        if (size_ == capacity_) Grow();
        items_[size_++] = item;
    }
    void Pop() noexcept { --size_; }
    void PopTo(std::size_t size) noexcept { size_ = size; }

  private:
    void Grow() {
        std::unique_ptr<T[]> grown(new T[capacity_ * 2]);
        std::copy_n(items_, size_, grown.get());
        heap_ = std::move(grown);
        items_ = heap_.get();
        capacity_ *= 2;
    }

    std::array<T, Inline> inline_;
    std::unique_ptr<T[]> heap_;
    T* items_ = inline_.data();
    std::size_t size_ = 0;
    std::size_t capacity_ = Inline;
};

}  // namespace mox

#endif
