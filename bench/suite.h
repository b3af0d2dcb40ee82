// What the files *_bench.cpp measure, and what they report it to.
#ifndef BENCH_SUITE_H
#define BENCH_SUITE_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bench/contestant.h"
#include "bench/document_files.h"
#include "bench/measurement.h"

namespace bench {

// A figure that is no time beside peers' times: a count, or how much a cost grows.
struct Figure {
    std::string subject;
    std::string size;
    double value = 0;
    std::optional<double> limit =
        {};                // the largest value allowed; without a limit the figure is for information
    bool isCount = false;  // the same in every run, and so part of the results
    std::string detail = {};
    std::optional<double> fresh = {};  // the value in fresh memory, where that is another
};

class Suite {
  public:
    // Measures operations whose names contain `filter`, and passes each row to `progress` when it is measured.
    Suite(const Settings& settings, std::string filter, std::function<void(const RowResult&)> progress)
        : settings_(settings), filter_(std::move(filter)), progress_(std::move(progress)) {}

    const Settings& Options() const { return settings_; }
    bool Quick() const { return settings_.quick; }
    // Whether operations whose names begin so, or are this, may be among those that the filter lets through.
    bool Wants(const std::string& operations) const;

    // Measures the row, unless the filter keeps it out.
    void Add(const Row& row);
    void Add(const Figure& figure);
    // The figure "time of one operation at a large size over that at a small one": measures all participants,
    // of which the first is the small size and the last the large one. Takes the least of the repetitions: here nothing
    // is compared in turn, and what else goes on can only add to a time.
    void AddGrowth(const std::string& subject, const std::string& size, std::vector<Participant> participants,
                   std::optional<double> limit);

    const std::vector<RowResult>& Rows() const { return rows_; }
    const std::vector<Figure>& Figures() const { return figures_; }

  private:
    Settings settings_;
    std::string filter_;
    std::function<void(const RowResult&)> progress_;
    std::vector<RowResult> rows_;
    std::vector<Figure> figures_;
};

using Make = std::unique_ptr<Contestant> (*)();

// A loaded document of each of these libraries; ours comes first.
std::vector<std::unique_ptr<Contestant>> Loaded(const std::vector<Make>& makers, const Source& source,
                                                bool wide = false);

// Keys to work on, and the sum that reading them must give.
struct Workload {
    std::shared_ptr<std::vector<Query>> queries;
    Sum expected;
};

Workload StringWorkload(std::vector<Query> queries);
Workload NumberWorkload(std::vector<Query> queries);

void RunLoad(Suite& suite);
void RunSave(Suite& suite);
void RunRelease(Suite& suite);
void RunGet(Suite& suite);
void RunChange(Suite& suite);
void RunRemoval(Suite& suite);
void RunEnumerate(Suite& suite);
void RunHost(Suite& suite);
void RunHostile(Suite& suite);
void RunMemory(Suite& suite);
void RunGrowth(Suite& suite);

// Where the memory of a measurement comes from.
enum class MemoryUse {
    AsMalloc,  // small documents get memory that the process has, large ones fetch theirs from the system each time
    FetchAll,  // from the system each time, as in the first load of a process: so are its page faults
    KeepAll,   // the process gives none back: what it takes the second time costs no page faults
};

// For all that follows. After the start it is AsMalloc, and from KeepAll there is no way back.
void UseMemory(MemoryUse use);
// Before a measurement: with FetchAll, gives back what the process does not use.
void ReturnMemory(MemoryUse use);
void RunGrowthInMemory(Suite& suite, MemoryUse use);
void RunShapes(Suite& suite);
void RunSpeedups(Suite& suite);

}  // namespace bench

#endif
