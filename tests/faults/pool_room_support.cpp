#include "tests/faults/pool_room_support.h"

#include <new>

#include "tests/faults/failing_memory_support.h"

namespace faults {
namespace {

constexpr std::size_t kSmallest = mox::XmlPool::kAlignment;

}  // namespace

std::size_t PoolRoom::Bytes() const {
    return blocks * kSmallest;
}

PoolRoom TakeAll(mox::XmlPool& pool) {
    PoolRoom room;
    FailingMemory memory(1, Failing::FromThenOn);
    try {
        for (;; ++room.blocks)
            pool.Allocate(kSmallest);
    } catch (const std::bad_alloc&) {
        memory.Stop();
    }
    return room;
}

void TakeAllBut(mox::XmlPool& pool, const PoolRoom& room, std::size_t bytes) {
    for (std::size_t count = room.blocks - bytes / kSmallest; count > 0; --count)
        pool.Allocate(kSmallest);
}

}  // namespace faults
