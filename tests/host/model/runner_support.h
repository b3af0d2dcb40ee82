// Runs a sequence of calls over the library and over the model, and says where they part.
#ifndef MOX_XMLAPI_TESTS_HOST_MODEL_RUNNER_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_MODEL_RUNNER_SUPPORT_H

#include <optional>
#include <string>

#include "tests/host/model/calls_support.h"

namespace host::model {

// Everything that a sequence does: the documents, then one line per call, and, when it comes to that, what
// the library answered and what was expected.
struct Outcome {
    std::string story{};
    bool agreed = true;
    // How many calls had something to work on.
    int calls = 0;
};

Outcome Run(const Sequence& sequence);

}  // namespace host::model

#endif
