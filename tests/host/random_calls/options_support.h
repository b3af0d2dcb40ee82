// The options of the random tests on the command line of the test program.
#ifndef MOX_XMLAPI_TESTS_HOST_RANDOM_CALLS_OPTIONS_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_RANDOM_CALLS_OPTIONS_SUPPORT_H

#include <cstdint>

namespace host {

struct RandomOptions {
    std::uint64_t seed = 1;      // --random-seed=<number>, the first of a row
    std::uint64_t count = 1000;  // --random-count=<number>, how many
};

const RandomOptions& GetRandomOptions();

}  // namespace host

#endif
