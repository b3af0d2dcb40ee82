// What the speed-ups of the library are worth: the library compared with itself without one of them.
#include <dlfcn.h>

#include "bench/suite.h"

namespace bench {
namespace {

// The whole library, or the library without a speed-up. Plug-ins lie in a folder next to the program, and stay loaded.
std::unique_ptr<Contestant> MakeFromPlugin(const std::string& name) {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "plugins";
    const std::string path = folder / (name + ".so");
    void* plugin = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    Check(plugin != nullptr, "build the target mox_bench_plugins: cannot load ", path);
    const auto make = reinterpret_cast<Contestant* (*)()>(dlsym(plugin, "MakeContestant"));
    Check(make != nullptr, "no plug-in of the benchmark: ", path);
    return std::unique_ptr<Contestant>(make());
}

using MakeBatch = Participant (*)(std::shared_ptr<Contestant> contestant, const DocumentFiles& files,
                                  const DocumentShape& shape);

Participant Loads(const std::shared_ptr<Contestant>& contestant, const DocumentFiles& files, bool wide,
                  int rounds, MemoryUse use) {
    const auto batch = [contestant, &files, wide, rounds, use] {
        ReturnMemory(use);
        Stopwatch watch;
        watch.Start();
        for (int round = 0; round < rounds; ++round) {
            contestant->Load(files.Files(), wide);
            contestant->Release();
        }
        watch.Stop();
        return watch.Seconds();
    };
    return {{}, batch, static_cast<double>(rounds)};
}

constexpr int kRounds = 10;

Participant LoadsNarrow(std::shared_ptr<Contestant> contestant, const DocumentFiles& files,
                        const DocumentShape& /*shape*/) {
    return Loads(contestant, files, false, kRounds, MemoryUse::AsMalloc);
}

Participant LoadsWide(std::shared_ptr<Contestant> contestant, const DocumentFiles& files,
                      const DocumentShape& /*shape*/) {
    return Loads(contestant, files, true, kRounds, MemoryUse::AsMalloc);
}

Participant LoadsFresh(std::shared_ptr<Contestant> contestant, const DocumentFiles& files,
                       const DocumentShape& /*shape*/) {
    return Loads(contestant, files, false, 1, MemoryUse::FetchAll);
}

Participant Saves(std::shared_ptr<Contestant> contestant, const DocumentFiles& files,
                  const DocumentShape& /*shape*/) {
    contestant->Load(files.Files(), false);
    const auto batch = [contestant, &files] {
        const std::string path = files.Folder().File("saved");
        Stopwatch watch;
        watch.Start();
        contestant->Save(path, false);
        watch.Stop();
        Check(std::filesystem::file_size(path) > files.Xml().size(), "saved too little");
        return watch.Seconds();
    };
    return {{}, batch, 1};
}

// Reads more keys than the caches hold.
Participant Gets(std::shared_ptr<Contestant> contestant, const DocumentFiles& files,
                 const DocumentShape& shape) {
    contestant->Load(files.Files(), false);
    const Workload work = StringWorkload(SampleQueries(shape, 65536));
    const auto batch = [contestant, work] {
        Stopwatch watch;
        watch.Start();
        const Sum sum = contestant->ReadStrings(*work.queries);
        watch.Stop();
        Check(sum == work.expected, "read other values");
        return watch.Seconds();
    };
    return {{}, batch, static_cast<double>(work.queries->size())};
}

struct Comparison {
    std::string speedup;  // as in mox_xmlApi/platform/speedup.h
    std::string operation;
    DocumentShape shape;
    MakeBatch makeBatch;
};

}  // namespace

// A speed-up stays in the library as long as it is worth 5 %.
void RunSpeedups(Suite& suite) {
    if (suite.Quick() || !suite.Wants("speed-up ")) return;
    const std::vector<Comparison> comparisons = {
        {"VectorSearch", "load, narrow", {50, 40}, LoadsNarrow},
        {"VectorZeroSearch", "load, wide", {50, 40}, LoadsWide},
        {"LargePages", "load, narrow, fresh memory", {50, 40}, LoadsFresh},
        {"VectorCopy", "save, narrow", {50, 40}, Saves},
        {"TextPrefetch", "get string, 65,536 keys", {1, 100000}, Gets},
    };
    for (const Comparison& each : comparisons) {
        Row row{"speed-up " + each.speedup + ": " + each.operation,
                ShapeName(each.shape),
                {},
                {{"without", 1.05, 1.05}}};
        if (!suite.Wants(row.operation)) continue;
        const DocumentFiles files(each.shape, {true, false});
        for (const bool whole : {true, false}) {
            const std::shared_ptr<Contestant> contestant =
                MakeFromPlugin(whole ? "whole" : "without_" + each.speedup);
            row.participants.push_back(each.makeBatch(contestant, files, each.shape));
            row.participants.back().name = whole ? "with" : "without";
        }
        suite.Add(row);
    }
}

}  // namespace bench
