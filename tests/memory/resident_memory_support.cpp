#include "tests/memory/resident_memory_support.h"

#if defined(_WIN32)
#include <windows.h>
// After the header that it needs.
#include <psapi.h>
#else
#include <fstream>
#include <unistd.h>
#endif

namespace growth {

#if defined(_WIN32)

std::size_t ResidentBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    if (K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) == 0) return 0;
    return counters.WorkingSetSize;
}

#else

std::size_t ResidentBytes() {
    std::ifstream file("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    if (!(file >> all >> resident)) return 0;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

#endif

}  // namespace growth
