// One row of the comparison: an operation at a size, run by several contestants in turn.
#ifndef BENCH_MEASUREMENT_H
#define BENCH_MEASUREMENT_H

#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace bench {

// Processor time of this thread since it started, in seconds: what other programs do on a shared machine
// counts least there. All files lie in memory, so nothing is waited for.
double ThreadSeconds();

// Adds up the stretches between Start and Stop.
class Stopwatch {
  public:
    void Start() { begin_ = ThreadSeconds(); }
    void Stop() { seconds_ += ThreadSeconds() - begin_; }
    double Seconds() const { return seconds_; }

  private:
    double begin_ = 0;
    double seconds_ = 0;
};

struct Participant {
    std::string name;
    // Does `operations` operations with what they need before and after, checks what came of them and returns
    // the seconds that they alone took. Throws CheckFailed.
    std::function<double()> batch;
    double operations = 1;
};

// What the ratio to a peer has to reach. A peer that has none is there to look at.
struct Target {
    std::string peer;
    double least;
    double aim;
};

// The first participant is ours, the others are compared with it.
struct Row {
    std::string operation;
    std::string size;
    std::vector<Participant> participants;
    std::vector<Target> targets;
    // Whether the batches get all their memory from the system, as in a new process. Such a row stands beside the one
    // of the same operation and size that does not.
    bool isFresh = false;
};

struct Timing {
    std::string name;
    double median = std::numeric_limits<double>::quiet_NaN();  // seconds per operation
    std::vector<double> repetitions;
};

struct RowResult {
    std::string operation;
    std::string size;
    std::vector<Timing> timings;
    std::vector<Target> targets;
    bool isFresh = false;

    // The peer's median over ours.
    double Ratio(const std::string& peer) const;
};

struct Settings {
    int repetitions = 9;
    double secondsPerRepetition = 0.04;  // of measured time, for each participant
    bool quick = false;                  // one batch each: enough to check the results, not for times
};

// Runs each participant once to warm up and to see how long a batch takes, then all of them in turn, each
// repetition in the opposite order of the one before. A participant whose batch takes many seconds has had
// its only repetition then. Throws CheckFailed.
RowResult Measure(const Row& row, const Settings& settings);

double Median(std::vector<double> values);

}  // namespace bench

#endif
