// Writing a loaded document to a folder in memory.
#include <algorithm>
#include <filesystem>

#include "bench/suite.h"

namespace bench {
namespace {

constexpr double kBytesPerBatch = 300000;

// Loads what was saved and reads it there.
void CheckSaved(Contestant& contestant, const std::string& path, const std::vector<Query>& queries,
                bool wide) {
    const Sum expected = StringWorkload(queries).expected;
    contestant.Release();
    contestant.Load({path, path, path}, wide);
    Check(contestant.ReadStrings(queries) == expected, contestant.Name() + " saved other values than it has");
}

Participant Saves(Make make, const DocumentFiles& files, const std::vector<Query>& queries, bool wide) {
    std::shared_ptr<Contestant> contestant = make();
    contestant->Load(files.Files(), wide);
    const std::string path = files.Folder().File("saved." + contestant->Name());
    contestant->Save(path, wide);
    CheckSaved(*contestant, path, queries, wide);
    const auto size = std::filesystem::file_size(path);
    const int rounds =
        std::max(1, static_cast<int>(kBytesPerBatch / static_cast<double>(files.Xml().size())));
    const auto batch = [contestant, path, wide, rounds, size] {
        Stopwatch watch;
        watch.Start();
        for (int round = 0; round < rounds; ++round)
            contestant->Save(path, wide);
        watch.Stop();
        Check(std::filesystem::file_size(path) == size, contestant->Name() + " saved another size");
        return watch.Seconds();
    };
    return {contestant->Name(), batch, static_cast<double>(rounds)};
}

// Ours has to give back the very bytes of a regular document, and the zero that ends each file.
void CheckBytes(const DocumentFiles& files, bool wide) {
    const std::string expected = files.Xml() + '\0';
    const std::string path = files.Folder().File("bytes");
    const auto contestant = MakeOurs();
    contestant->Load(files.Files(), wide);
    contestant->Save(path, wide);
    Check(ReadFile(path) == (wide ? Widen(expected) : expected),
          "the saved bytes differ from the loaded ones");
}

void RunShape(Suite& suite, const DocumentShape& shape, bool judged) {
    const DocumentFiles files(shape);
    const std::vector<Query> queries = SampleQueries(shape, 20);
    Row narrow{"save, narrow", ShapeName(shape), {}, {}};
    if (judged) narrow.targets = {{"pugixml", 1.2, 1.5}};
    CheckBytes(files, false);
    for (const Make make : {MakeOurs, MakePugixml, MakeRapidxml, MakeTinyxml2, MakeLibxml2, MakePropertyTree})
        narrow.participants.push_back(Saves(make, files, queries, false));
    if (!shape.irregular) {
        for (const Make make : {MakeGKeyFile, MakeSimpleIni})
            narrow.participants.push_back(Saves(make, files, queries, false));
    }
    suite.Add(narrow);

    Row wide{"save, wide", ShapeName(shape), {}, narrow.targets};
    CheckBytes(files, true);
    for (const Make make : {MakeOurs, MakePugixml, MakeLibxml2})
        wide.participants.push_back(Saves(make, files, queries, true));
    suite.Add(wide);
}

}  // namespace

void RunSave(Suite& suite) {
    if (!suite.Wants("save, ")) return;
    RunShape(suite, {4, 5}, true);
    RunShape(suite, {50, 40}, true);
    RunShape(suite, {50, 40, true}, false);
    if (suite.Quick()) return;
    RunShape(suite, {500, 200}, true);
    RunShape(suite, {500, 200, true}, false);
}

}  // namespace bench
