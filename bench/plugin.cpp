// The library as a plug-in of the benchmark. bench/CMakeLists.txt makes one of the whole library and one without each of
// its speed-ups.
#include "bench/contestant.h"

extern "C" __attribute__((visibility("default"))) bench::Contestant* MakeContestant() {
    return bench::MakeOurs().release();
}
