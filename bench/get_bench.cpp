// Reading the values of keys, spread over the document, in a mixed order.
#include <algorithm>

#include "bench/allocation_counter.h"
#include "bench/suite.h"

namespace bench {
namespace {

using Read = Sum (Contestant::*)(std::span<const Query>);

// One pass over all queries makes the indexes and caches warm.
Participant Reads(std::shared_ptr<Contestant> contestant, std::shared_ptr<std::vector<Query>> queries,
                  Read read, Sum expected) {
    Check((contestant.get()->*read)(*queries) == expected, contestant->Name() + " reads other values");
    const auto batch = [contestant, queries, read, expected] {
        Stopwatch watch;
        watch.Start();
        const Sum sum = (contestant.get()->*read)(*queries);
        watch.Stop();
        Check(sum == expected, contestant->Name() + " reads other values");
        return watch.Seconds();
    };
    return {contestant->Name(), batch, static_cast<double>(queries->size())};
}

Workload MakeWorkload(const DocumentShape& shape, bool numbers, std::size_t count) {
    return numbers ? NumberWorkload(SampleNumbers(shape, count))
                   : StringWorkload(SampleQueries(shape, count));
}

// All get the same keys, more than the fastest cache holds in a large document. Only where a scan passes a hundred
// thousand keys, a few of them that are evenly spread have to do: they give the same mean.
void RunRow(Suite& suite, const DocumentShape& shape, const DocumentFiles& files, bool numbers,
            const std::vector<Target>& targets) {
    const Read read = numbers ? &Contestant::ReadNumbers : &Contestant::ReadStrings;
    const Workload work = MakeWorkload(shape, numbers, suite.Quick() ? 512 : 4096);
    const Workload scanned = shape.keys > 10000 ? MakeWorkload(shape, numbers, 128) : work;

    std::vector<Make> scanners = {MakePugixml, MakeTinyxml2};
    if (!numbers) scanners.insert(scanners.end(), {MakeRapidxml, MakeLibxml2, MakePropertyTree});
    Row row{numbers ? "get integer" : "get string", ShapeName(shape), {}, targets};
    for (auto& contestant : Loaded({MakeOurs, MakeGKeyFile, MakeSimpleIni}, files.Files()))
        row.participants.push_back(Reads(std::move(contestant), work.queries, read, work.expected));
    for (auto& contestant : Loaded(scanners, files.Files()))
        row.participants.push_back(Reads(std::move(contestant), scanned.queries, read, scanned.expected));
    suite.Add(row);
}

// Once the indexes are there, reading a key asks for no memory.
void CountAllocations(Suite& suite, const DocumentShape& shape, const DocumentFiles& files, bool numbers) {
    constexpr std::size_t kPerSection = 16;
    const Workload work =
        MakeWorkload(shape, numbers, std::max<std::size_t>(128, kPerSection * shape.sections));
    const auto contestant = MakeOurs();
    contestant->Load(files.Files(), false);
    const Read read = numbers ? &Contestant::ReadNumbers : &Contestant::ReadStrings;
    for (int pass = 0; pass < 3; ++pass)
        Check((contestant.get()->*read)(*work.queries) == work.expected, "other values while warming up");
    Sum sum = 0;
    const std::uint64_t allocations =
        CountAllocationsOf([&] { sum = (contestant.get()->*read)(*work.queries); });
    Check(sum == work.expected, "other values while counting");
    Figure figure{numbers ? "allocations per xmlGetProfileInt" : "allocations per xmlGetProfileString",
                  ShapeName(shape)};
    figure.value = static_cast<double>(allocations) / static_cast<double>(work.queries->size());
    figure.limit = 0;
    figure.isCount = true;
    suite.Add(figure);
}

void RunShape(Suite& suite, const DocumentShape& shape, const std::vector<Target>& targets,
              const std::vector<Target>& numberTargets = {}) {
    const DocumentFiles files(shape);
    for (const bool numbers : {false, true}) {
        RunRow(suite, shape, files, numbers, numbers ? numberTargets : targets);
        CountAllocations(suite, shape, files, numbers);
    }
}

}  // namespace

void RunGet(Suite& suite) {
    if (!suite.Wants("get ")) return;
    const std::vector<Target> small = {
        {"GKeyFile", 1.0, 1.3}, {"SimpleIni", 1.0, 1.3}, {"pugixml", 1.0, 1.3}};
    const Target gKeyFile{"GKeyFile", 0.9, 1.2};
    const Target simpleIni{"SimpleIni", 1.4, 2};
    RunShape(suite, {4, 5}, small, small);
    RunShape(suite, {50, 40}, {{"pugixml", 2.5, 5}, gKeyFile, simpleIni});
    if (suite.Quick()) {
        RunShape(suite, {1, 2000}, {});
        return;
    }
    RunShape(suite, {500, 200}, {{"pugixml", 15, 30}, gKeyFile, simpleIni});
    RunShape(suite, {1, 100000}, {{"pugixml", 3000, 8000}, gKeyFile, simpleIni});
}

}  // namespace bench
