#include "bench/suite.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <malloc.h>

#include "bench/report.h"

namespace bench {

bool Suite::Wants(const std::string& operations) const {
    return operations.find(filter_) != std::string::npos || filter_.starts_with(operations);
}

void Suite::Add(const Row& row) {
    if (row.operation.find(filter_) == std::string::npos) return;
    rows_.push_back(Measure(row, settings_));
    progress_(rows_.back());
}

void Suite::Add(const Figure& figure) {
    figures_.push_back(figure);
}

void Suite::AddGrowth(const std::string& subject, const std::string& size,
                      std::vector<Participant> participants, std::optional<double> limit) {
    const RowResult result = Measure({subject, size, std::move(participants), {}}, settings_);
    std::string detail;
    std::vector<double> least;
    for (const Timing& timing : result.timings) {
        least.push_back(*std::min_element(timing.repetitions.begin(), timing.repetitions.end()));
        detail += (detail.empty() ? "" : ", ") + timing.name + ": " + TimeText(least.back());
    }
    Add(Figure{subject, size, least.back() / least.front(), limit, false, detail});
}

Workload StringWorkload(std::vector<Query> queries) {
    Sum sum = 0;
    for (const Query& query : queries)
        sum += SumOf(std::string_view(query.value));
    return {std::make_shared<std::vector<Query>>(std::move(queries)), sum};
}

Workload NumberWorkload(std::vector<Query> queries) {
    Sum sum = 0;
    for (const Query& query : queries)
        sum += static_cast<Sum>(std::stoll(query.value));
    return {std::make_shared<std::vector<Query>>(std::move(queries)), sum};
}

void UseMemory(MemoryUse use) {
    if (use == MemoryUse::FetchAll) {
        constexpr int kUsualThreshold = 128 * 1024;  // set at all, it no longer grows with what is given back
        mallopt(M_MMAP_THRESHOLD, kUsualThreshold);
        mallopt(M_TRIM_THRESHOLD, kUsualThreshold);
    } else if (use == MemoryUse::KeepAll) {
        mallopt(M_MMAP_MAX, 0);
        mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    }
}

void ReturnMemory(MemoryUse use) {
    if (use == MemoryUse::FetchAll) malloc_trim(0);
}

std::vector<std::unique_ptr<Contestant>> Loaded(const std::vector<Make>& makers, const Source& source,
                                                bool wide) {
    std::vector<std::unique_ptr<Contestant>> contestants;
    for (const Make make : makers) {
        contestants.push_back(make());
        contestants.back()->Load(source, wide);
    }
    return contestants;
}

}  // namespace bench
