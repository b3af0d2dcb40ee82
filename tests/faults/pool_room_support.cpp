#include "tests/faults/pool_room_support.h"

#include <new>

#include "tests/faults/failing_memory_support.h"

namespace faults {
namespace {

constexpr std::size_t kSmallest = mox::XmlPool::kAlignment;

// The sizes in which the pool keeps returned blocks, but for the smallest.
std::vector<std::size_t> LargerSizes() {
    std::vector<std::size_t> sizes;
    for (std::size_t size = kSmallest + 1; size <= mox::XmlPool::kLargestSmall;) {
        sizes.push_back(mox::XmlPool::BlockSize(size));
        size = sizes.back() + 1;
    }
    return sizes;
}

// Takes blocks as long as there are any.
std::size_t TakeBlocks(mox::XmlPool& pool, std::size_t size) {
    std::size_t count = 0;
    FailingMemory memory(1, Failing::FromThenOn);
    try {
        for (;; ++count)
            pool.Allocate(size);
    } catch (const std::bad_alloc&) {
        memory.Stop();
    }
    return count;
}

}  // namespace

std::size_t PoolRoom::Bytes() const {
    return smallest * kSmallest;
}

PoolRoom TakeAll(mox::XmlPool& pool) {
    PoolRoom room;
    room.smallest = TakeBlocks(pool, kSmallest);
    for (const std::size_t size : LargerSizes())
        room.returned.push_back(TakeBlocks(pool, size));
    return room;
}

void TakeAllBut(mox::XmlPool& pool, const PoolRoom& room, std::size_t bytes) {
    const std::vector<std::size_t> sizes = LargerSizes();
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        for (std::size_t count = room.returned[i]; count > 0; --count)
            pool.Allocate(sizes[i]);
    }
    for (std::size_t count = room.smallest - bytes / kSmallest; count > 0; --count)
        pool.Allocate(kSmallest);
}

}  // namespace faults
