// Counts what the program asks of the C library's memory: by malloc and its kin, and so by operator new, from
// whichever library in the process.
#ifndef BENCH_ALLOCATION_COUNTER_H
#define BENCH_ALLOCATION_COUNTER_H

#include <cstdint>
#include <functional>

namespace bench {

// Calls that asked for memory during `work`.
std::uint64_t CountAllocationsOf(const std::function<void()>& work);

// Bytes that were asked for during `work` and not given back in it. A block counts with the size that it has,
// what the allocator adds for itself apart.
std::int64_t BytesRetainedBy(const std::function<void()>& work);

}  // namespace bench

#endif
