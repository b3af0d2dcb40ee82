// A sequence of calls over both families, with their handles, positions and records. How an input is decoded
// stands at CallHost::Step and, for texts and numbers, in fuzz_input.h.
#include "fuzz/call_host.h"
#include "fuzz/large_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mox::fuzz;
    constexpr int kMostCalls = 400;
    static const ScratchFile file;
    WithLargeStack([&] {
        FuzzInput input(data, size);
        CallHost host(input, file);
        for (int i = 0; i < kMostCalls && !input.IsEmpty(); ++i)
            host.Step();
    });
    return 0;
}
