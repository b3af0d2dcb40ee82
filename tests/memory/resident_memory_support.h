// How much memory this process has.
#ifndef MOX_XMLAPI_TESTS_MEMORY_RESIDENT_MEMORY_SUPPORT_H
#define MOX_XMLAPI_TESTS_MEMORY_RESIDENT_MEMORY_SUPPORT_H

#include <cstddef>

namespace growth {

// The bytes of this process that lie in the machine's memory, as the system counts them; 0 when it does not say.
std::size_t ResidentBytes();

}  // namespace growth

#endif
