// From opening the file to having released the document.
#include <algorithm>

#include "bench/suite.h"

namespace bench {
namespace {

// Small documents are loaded several times per batch, so that reading the clock costs nothing.
constexpr double kBytesPerBatch = 300000;

// The document is read in the last round alone, and outside the time. With `fresh` there is one round.
Participant Loads(Make make, const DocumentFiles& files, const std::vector<Query>& queries, bool wide,
                  bool fresh) {
    std::shared_ptr<Contestant> contestant = make();
    const Sum expected = StringWorkload(queries).expected;
    const double fitting = kBytesPerBatch / static_cast<double>(files.Xml().size());
    const int rounds = fresh ? 1 : std::max(1, static_cast<int>(fitting));
    const auto batch = [contestant, &files, &queries, wide, fresh, rounds, expected] {
        if (fresh) ReturnMemory(MemoryUse::FetchAll);
        Stopwatch watch;
        watch.Start();
        for (int round = 1; round < rounds; ++round) {
            contestant->Load(files.Files(), wide);
            contestant->Release();
        }
        contestant->Load(files.Files(), wide);
        watch.Stop();
        Check(contestant->ReadStrings(queries) == expected,
              contestant->Name() + " loaded other values than the file has");
        watch.Start();
        contestant->Release();
        watch.Stop();
        return watch.Seconds();
    };
    return {contestant->Name(), batch, static_cast<double>(rounds)};
}

// What a row has to reach beside pugixml: with the memory that the process has, and in fresh memory.
struct Targets {
    std::vector<Target> usual;
    std::vector<Target> fresh;
};

void RunRows(Suite& suite, const DocumentShape& shape, bool wide, const std::vector<Make>& makers,
             const Targets& targets) {
    const DocumentFiles files(shape);
    const std::vector<Query> queries = SampleQueries(shape, 20);
    for (const bool fresh : {false, true}) {
        Row row{wide ? "load, wide" : "load, narrow",
                ShapeName(shape),
                {},
                fresh ? targets.fresh : targets.usual,
                fresh};
        for (const Make make : makers)
            row.participants.push_back(Loads(make, files, queries, wide, fresh));
        suite.Add(row);
    }
}

void RunShape(Suite& suite, const DocumentShape& shape, const Targets& narrow, const Targets& wide) {
    std::vector<Make> makers = {MakeOurs,     MakePugixml, MakeRapidxml,
                                MakeTinyxml2, MakeLibxml2, MakePropertyTree};
    // The INI libraries have no comments and no entities to read.
    if (!shape.irregular) makers.insert(makers.end(), {MakeGKeyFile, MakeSimpleIni});
    RunRows(suite, shape, false, makers, narrow);
    RunRows(suite, shape, true, {MakeOurs, MakePugixml, MakeLibxml2}, wide);
}

}  // namespace

void RunLoad(Suite& suite) {
    if (!suite.Wants("load, ")) return;
    const auto beside = [](double least, double aim) { return std::vector<Target>{{"pugixml", least, aim}}; };
    RunShape(suite, {4, 5}, {beside(1.3, 1.7), beside(1.0, 1.7)}, {});
    RunShape(suite, {50, 40}, {beside(0.85, 1.1), beside(1.15, 1.6)}, {beside(2.4, 3.5), {}});
    RunShape(suite, {50, 40, true}, {{}, beside(1.05, 1.6)}, {});
    if (suite.Quick()) return;
    RunShape(suite, {500, 200}, {beside(0.85, 1.1), {}}, {beside(2.8, 3.5), {}});
    RunShape(suite, {500, 200, true}, {}, {});
}

}  // namespace bench
