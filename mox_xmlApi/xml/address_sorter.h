// Sorts linked blocks of memory by address, in place: it needs no memory of its own.
#ifndef MOX_XMLAPI_XML_ADDRESS_SORTER_H
#define MOX_XMLAPI_XML_ADDRESS_SORTER_H

#include <array>
#include <bit>
#include <cstddef>
#include <functional>
#include <limits>
#include <utility>

namespace mox {

// A merge sort that takes what is in order already as it comes. N blocks in a few ascending or descending sequences
// cost linear work, in any other order at most N log N. `Block` has a pointer `next`.
template <class Block>
class AddressSorter {
  public:
    // Takes a block, whose `next` may be anything.
    void Add(Block* block) noexcept {
        if (size_ != 0 && IsHigher(block, first_)) {
            block->next = first_;
            first_ = block;
        } else if (size_ != 0 && IsHigher(last_, block)) {
            last_->next = block;
            last_ = block;
        } else {
            EndSequence();
            first_ = last_ = block;
        }
        ++size_;
    }

    // All blocks that were added, linked from the highest address to the lowest; null for none. The sorter is empty
    // then.
    Block* Finish() noexcept {
        EndSequence();
        Block* all = nullptr;
        for (; used_ != 0; used_ &= used_ - 1)
            all = Merge(all, sorted_[LowestUsed()]);
        return all;
    }

  private:
    static bool IsHigher(const Block* a, const Block* b) noexcept { return std::greater<>()(a, b); }

    static Block* Merge(Block* a, Block* b) noexcept {
        Block* first = nullptr;
        Block** end = &first;
        while (a != nullptr && b != nullptr) {
            Block*& higher = IsHigher(a, b) ? a : b;
            *end = higher;
            end = &higher->next;
            higher = higher->next;
        }
        *end = a != nullptr ? a : b;
        return first;
    }

    std::size_t LowestUsed() const noexcept { return static_cast<std::size_t>(std::countr_zero(used_)); }

    // Puts the current sequence among the sorted lists. Shorter ones are merged first, so that no block takes part in
    // more merges than the number of blocks has binary digits, but for one more at the end.
    void EndSequence() noexcept {
        if (size_ == 0) return;
        last_->next = nullptr;
        std::size_t rank = static_cast<std::size_t>(std::bit_width(size_)) - 1;
        size_ = 0;
        Block* sorted = nullptr;
        for (; used_ != 0 && LowestUsed() < rank; used_ &= used_ - 1)
            sorted = Merge(sorted, sorted_[LowestUsed()]);
        sorted = Merge(sorted, first_);
        for (; ((used_ >> rank) & 1) != 0; ++rank) {
            sorted = Merge(sorted, sorted_[rank]);
            used_ &= ~(std::size_t{1} << rank);
        }
        sorted_[rank] = sorted;
        used_ |= std::size_t{1} << rank;
    }

    // The sequence that is being taken, from its highest block to its lowest.
    Block* first_ = nullptr;
    Block* last_ = nullptr;
    std::size_t size_ = 0;

    // Sorted lists; that of rank N has at least 2^N blocks. Those that are there have their bit set in `used_`.
    std::array<Block*, std::numeric_limits<std::size_t>::digits> sorted_;
    std::size_t used_ = 0;
};

}  // namespace mox

#endif
