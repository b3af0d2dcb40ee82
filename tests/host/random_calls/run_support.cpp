#include "tests/host/random_calls/run_support.h"

#include <exception>

#include "tests/host/random_calls/runner_support.h"

namespace host::random_calls {
namespace {

// What comes out of an export although nothing is short of memory is a disagreement as well.
template <class Step>
void Try(Runner& runner, const Step& step) {
    try {
        step();
    } catch (const std::exception& error) {
        runner.Compare(Concat("threw ", error.what()), "no exception");
    } catch (const std::int32_t code) {
        runner.Compare(Concat("threw ", code), "no exception");
    }
}

}  // namespace

Outcome Run(const Sequence& sequence) {
    Runner runner(sequence);
    for (const Call& call : sequence.calls) {
        if (runner.Result().agreed) Try(runner, [&] { runner.Do(call); });
    }
    if (runner.Result().agreed) Try(runner, [&] { runner.End(); });
    return runner.Result();
}

}  // namespace host::random_calls
