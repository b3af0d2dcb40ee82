// From opening the file to having released the document.
#include <algorithm>

#include "bench/suite.h"

namespace bench {
namespace {

// Small documents are loaded several times per batch, so that reading the clock costs nothing.
constexpr double kBytesPerBatch = 300000;

// The document is read in the last round alone, and outside the time.
Participant Loads(Make make, const DocumentFiles& files, const std::vector<Query>& queries, bool wide) {
    std::shared_ptr<Contestant> contestant = make();
    const Sum expected = StringWorkload(queries).expected;
    const int rounds =
        std::max(1, static_cast<int>(kBytesPerBatch / static_cast<double>(files.Xml().size())));
    const auto batch = [contestant, &files, &queries, wide, rounds, expected] {
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

void RunShape(Suite& suite, const DocumentShape& shape, double least, double aim, double leastWide) {
    const DocumentFiles files(shape);
    const std::vector<Query> queries = SampleQueries(shape, 20);
    Row narrow{"load, narrow", ShapeName(shape), {}, {{"pugixml", least, aim}}};
    for (const Make make : {MakeOurs, MakePugixml, MakeRapidxml, MakeTinyxml2, MakeLibxml2, MakePropertyTree})
        narrow.participants.push_back(Loads(make, files, queries, false));
    if (!shape.irregular) {
        for (const Make make : {MakeGKeyFile, MakeSimpleIni})
            narrow.participants.push_back(Loads(make, files, queries, false));
    } else {
        narrow.targets.clear();
    }
    suite.Add(narrow);

    Row wide{"load, wide", ShapeName(shape), {}, {}};
    if (leastWide > 0) wide.targets = {{"pugixml", leastWide, leastWide + 0.5}};
    for (const Make make : {MakeOurs, MakePugixml, MakeLibxml2})
        wide.participants.push_back(Loads(make, files, queries, true));
    suite.Add(wide);
}

}  // namespace

void RunLoad(Suite& suite) {
    if (!suite.Wants("load, ")) return;
    RunShape(suite, {4, 5}, 1.2, 1.7, 0);
    RunShape(suite, {50, 40}, 0.85, 1.1, 2.0);
    RunShape(suite, {50, 40, true}, 0, 0, 0);
    if (suite.Quick()) return;
    RunShape(suite, {500, 200}, 0.85, 1.1, 2.0);
    RunShape(suite, {500, 200, true}, 0, 0, 0);
}

}  // namespace bench
