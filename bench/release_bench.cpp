// Giving back a loaded document.
#include "bench/suite.h"

namespace bench {
namespace {

Participant Releases(Make make, const DocumentFiles& files) {
    std::shared_ptr<Contestant> contestant = make();
    const auto batch = [contestant, &files] {
        contestant->Load(files.Files(), false);
        Stopwatch watch;
        watch.Start();
        contestant->Release();
        watch.Stop();
        return watch.Seconds();
    };
    return {contestant->Name(), batch, 1};
}

}  // namespace

void RunRelease(Suite& suite) {
    if (!suite.Wants("release")) return;
    const DocumentShape shape = suite.Quick() ? DocumentShape{50, 40} : DocumentShape{500, 200};
    const DocumentFiles files(shape);
    Row row{"release", ShapeName(shape), {}, {{"pugixml", 1.0, 2.0}}};
    for (const Make make : {MakeOurs, MakePugixml, MakeRapidxml, MakeTinyxml2, MakeLibxml2, MakePropertyTree,
                            MakeGKeyFile, MakeSimpleIni})
        row.participants.push_back(Releases(make, files));
    suite.Add(row);
}

}  // namespace bench
