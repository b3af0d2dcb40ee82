#include "bench/measurement.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <exception>
#include <time.h>

#include "bench/contestant.h"

namespace bench {
namespace {

// Takes the times of the runs and prints nothing.
class Collector final : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                seconds_ = run.real_accumulated_time / static_cast<double>(run.iterations);
        }
    }
    double SecondsPerIteration() const { return seconds_; }

  private:
    double seconds_ = std::numeric_limits<double>::quiet_NaN();
};

// Lets the benchmark library run `iterations` batches, after one that does not count when `warm` is set. Returns
// the seconds of one.
double RunBatches(const Participant& participant, benchmark::IterationCount iterations, bool warm) {
    std::exception_ptr failure;
    benchmark::RegisterBenchmark(participant.name.c_str(),
                                 [&](benchmark::State& state) {
                                     try {
                                         if (warm) participant.batch();
                                         for ([[maybe_unused]] auto _ : state)
                                             state.SetIterationTime(participant.batch());
                                     } catch (...) {
                                         failure = std::current_exception();
                                         state.SkipWithError("failed");
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(iterations);
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector, "all");
    benchmark::ClearRegisteredBenchmarks();
    if (failure) std::rethrow_exception(failure);
    return collector.SecondsPerIteration();
}

constexpr double kSlowBatch = 4;
constexpr double kShortBatch = 0.02;

struct Plan {
    double first = 0;                          // seconds of the first batch, which also built all indexes
    benchmark::IterationCount iterations = 1;  // of each repetition
    bool warm = false;  // whether each repetition begins with a batch that does not count
};

// As many batches as fill the time of a repetition, unless what goes on around the measured part takes much
// longer than that. What the others did in between leaves the caches cold: short batches are warmed up again.
Plan RunFirst(const Participant& participant, const Settings& settings) {
    Plan plan;
    plan.first = RunBatches(participant, 1, false);
    if (settings.quick || plan.first > kSlowBatch) return plan;
    const double begin = ThreadSeconds();
    const double measured = RunBatches(participant, 1, false);
    const double whole = ThreadSeconds() - begin;
    const double iterations = std::min(settings.secondsPerRepetition / std::max(measured, 1e-9),
                                       3 * settings.secondsPerRepetition / std::max(whole, 1e-9));
    plan.iterations = static_cast<benchmark::IterationCount>(std::clamp(iterations, 1.0, 100000.0));
    plan.warm = whole < kShortBatch;
    return plan;
}

}  // namespace

double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    return values.size() % 2 != 0 ? values[half] : (values[half - 1] + values[half]) / 2;
}

double RowResult::Ratio(const std::string& peer) const {
    for (const Timing& timing : timings) {
        if (timing.name == peer) return timing.median / timings.front().median;
    }
    throw CheckFailed(operation + ": no participant " + peer);
}

RowResult Measure(const Row& row, const Settings& settings) {
    std::vector<Timing> timings(row.participants.size());
    std::vector<Plan> plans;
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < row.participants.size(); ++i) {
        const Participant& participant = row.participants[i];
        timings[i].name = participant.name;
        plans.push_back(RunFirst(participant, settings));
        if (settings.quick || plans[i].first > kSlowBatch) {
            timings[i].repetitions = {plans[i].first / participant.operations};
        } else {
            order.push_back(i);
        }
    }
    for (int repetition = 0; repetition < settings.repetitions; ++repetition) {
        for (const std::size_t i : order) {
            const double seconds = RunBatches(row.participants[i], plans[i].iterations, plans[i].warm);
            timings[i].repetitions.push_back(seconds / row.participants[i].operations);
        }
        std::reverse(order.begin(), order.end());
    }
    for (Timing& timing : timings)
        timing.median = Median(timing.repetitions);
    return {row.operation, row.size, timings, row.targets, row.isFresh};
}

}  // namespace bench
