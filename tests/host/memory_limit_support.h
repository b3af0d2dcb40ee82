// A shortage of memory, made for the host and every library in its process.
#ifndef MOX_XMLAPI_TESTS_HOST_MEMORY_LIMIT_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_MEMORY_LIMIT_SUPPORT_H

#include <cstddef>

namespace host {

// While one lives, no module of this process gets a block of kRefused bytes or more; smaller ones come as
// usual. On Linux the system itself refuses, by the limit of the process's address space. On Windows, where a
// process cannot limit itself, malloc returns null: it is exchanged in the import tables of all modules, so
// that the operator new of the runtime library meets it and throws by itself. Not for use beside other
// threads.
class MemoryLimit {
  public:
    static constexpr std::size_t kRefused = std::size_t{1} << 32;

    MemoryLimit();
    ~MemoryLimit();
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

    // Whether the limit could be set: not under AddressSanitizer, whose own memory it would take away, and
    // which ends the process instead of throwing.
    static bool Available();
};

}  // namespace host

#endif
