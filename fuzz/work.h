// How much work the library does, in numbers that do not depend on the machine or on what else runs there, so that work
// that grows faster than its input is a finding.
#ifndef MOX_XMLAPI_FUZZ_WORK_H
#define MOX_XMLAPI_FUZZ_WORK_H

#include <cstdint>

namespace mox::fuzz {

// The edges that the instrumented library has passed since the program began, and one for every 16 bytes that were
// copied, filled, compared or searched by the C library. Always 0 in a program that is not instrumented.
std::uint64_t WorkDone() noexcept;

// The sum of the work inside the scopes of these objects since the last Reset. They must not be nested.
class MeasuredWork {
  public:
    MeasuredWork() noexcept : start_(WorkDone()) {}
    ~MeasuredWork() { sum_ += WorkDone() - start_; }
    MeasuredWork(const MeasuredWork&) = delete;
    MeasuredWork& operator=(const MeasuredWork&) = delete;

    static void Reset() noexcept { sum_ = 0; }
    static std::uint64_t Sum() noexcept { return sum_; }

  private:
    inline static std::uint64_t sum_ = 0;
    std::uint64_t start_;
};

// Makes one call and measures its work.
template <class Call>
auto Measured(const Call& call) {
    const MeasuredWork work;
    return call();
}

// Ends the process as a finding if `work` is more than a fixed amount for each of the `size` units, bytes or calls that
// it was done for. `what` names the work.
void CheckWork(std::uint64_t work, std::uint64_t size, const char* what);

}  // namespace mox::fuzz

#endif
