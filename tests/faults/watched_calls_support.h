// What the functions that take the place of the system's ask before they go on.
#ifndef MOX_XMLAPI_TESTS_FAULTS_WATCHED_CALLS_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_WATCHED_CALLS_SUPPORT_H

#include <cstddef>

#include "tests/faults/failing_disk_support.h"

namespace faults {

// What the rule says; Plain if there is none. What the rule itself does with files is not asked about.
Answer Ask(FileCall call);

// The number of bytes that a read or a write of this size may move.
std::size_t Cut(std::size_t size);

// The error with which such a call fails, as the system numbers it.
unsigned ErrorOf(FileCall call);

}  // namespace faults

#endif
