// Memory that runs out when a test wants it to.
//
// On Linux the operators new and delete of this program are its own, and with them those of the library's
// objects and of every shared library in the process. On Windows each DLL has its own imports: there malloc
// and its kin are exchanged in the import tables of the modules, so that the operator new of the runtime
// meets the failure.
#ifndef MOX_XMLAPI_TESTS_FAULTS_FAILING_MEMORY_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_FAILING_MEMORY_SUPPORT_H

#include <cstdint>

namespace faults {

// How many blocks of memory this process has at present; only differences mean something.
std::int64_t LiveBlocks();

enum class Failing { Once, FromThenOn };

// From its making until Stop, the allocation with the number `first` fails, 1 being the next one, alone or
// with all that follow. One at a time.
class FailingMemory {
  public:
    FailingMemory(std::uint64_t first, Failing how);
    ~FailingMemory() { Stop(); }
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    void Stop();

    // How many allocations were asked for while it was in force, and how many of them failed.
    static std::uint64_t Asked();
    static std::uint64_t Injected();
};

}  // namespace faults

#endif
