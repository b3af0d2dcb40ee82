// Runs a sequence of calls over the library and over the model, and says where they differ.
#ifndef MOX_XMLAPI_TESTS_HOST_RANDOM_CALLS_RUN_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_RANDOM_CALLS_RUN_SUPPORT_H

#include <cstdint>
#include <optional>
#include <string>

#include "tests/host/random_calls/calls_support.h"

namespace host::random_calls {

// Everything that a sequence does: the documents, then one line per call, and, when it comes to that, what
// the library answered and what was expected.
struct Outcome {
    std::string log{};
    bool agreed = true;
    // How many calls had something to work on.
    int calls = 0;
    // Of everything that the library answered and saved, byte by byte (FNV-1a).
    std::uint64_t digest = 0xCBF29CE484222325;
};

Outcome Run(const Sequence& sequence);

}  // namespace host::random_calls

#endif
