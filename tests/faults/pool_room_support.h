// Pools with hardly any room left. A pool hands out small blocks from slabs, so that most of what a call asks
// for never reaches the system; with just so much room left, each of these blocks in turn is the one that
// cannot be had.
#ifndef MOX_XMLAPI_TESTS_FAULTS_POOL_ROOM_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_POOL_ROOM_SUPPORT_H

#include <cstddef>

#include "mox_xmlApi/xml/xml_pool.h"

namespace faults {

// What a pool can give without asking the system: it divides all its free memory when it has to.
struct PoolRoom {
    std::size_t blocks = 0;  // of the smallest size

    std::size_t Bytes() const;
};

// Takes all that is left of the pool, and says what it was.
PoolRoom TakeAll(mox::XmlPool& pool);

// Takes all but `bytes` bytes of a pool that has `room`, as TakeAll found in one that was made in the same
// way.
void TakeAllBut(mox::XmlPool& pool, const PoolRoom& room, std::size_t bytes);

}  // namespace faults

#endif
