// What a loaded document keeps: of the memory that it asked for, and of the memory of the machine.
#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <limits>
#include <unistd.h>

#include "bench/allocation_counter.h"
#include "bench/suite.h"

namespace bench {
namespace {

double RetainedPerByte(Make make, const DocumentFiles& files) {
    const auto contestant = make();
    contestant->Load(files.Files(), false);  // what a library sets up once is not the document's
    contestant->Release();
    const std::int64_t bytes = BytesRetainedBy([&] { contestant->Load(files.Files(), false); });
    contestant->Release();
    return static_cast<double>(bytes) / static_cast<double>(files.Xml().size());
}

// How many bytes of the process lie in memory.
double ResidentBytes() {
    std::ifstream statistics("/proc/self/statm");
    double pages = 0;
    statistics >> pages >> pages;  // all, and those in memory
    return pages * static_cast<double>(sysconf(_SC_PAGESIZE));
}

// The least of some loads: what else the process touches for the first time can only add to one.
double ResidentPerByte(Make make, const DocumentFiles& files) {
    const auto contestant = make();
    double least = std::numeric_limits<double>::max();
    for (int load = 0; load < 3; ++load) {
        ReturnMemory(MemoryUse::FetchAll);
        const double before = ResidentBytes();
        contestant->Load(files.Files(), false);
        least = std::min(least, ResidentBytes() - before);
        contestant->Release();
    }
    return least / static_cast<double>(files.Xml().size());
}

std::string Text(const std::string& name, double retained, double resident) {
    std::array<char, 96> buffer;
    std::snprintf(buffer.data(), buffer.size(), "%s %.2f (fresh %.2f)", name.c_str(), retained, resident);
    return buffer.data();
}

}  // namespace

void RunMemory(Suite& suite) {
    if (!suite.Wants("bytes retained")) return;
    const DocumentShape shape{500, 200};
    const DocumentFiles files(shape, {false, true});
    Figure figure{"bytes retained per narrow input byte", ShapeName(shape)};
    figure.value = RetainedPerByte(MakeOurs, files);
    figure.fresh = ResidentPerByte(MakeOurs, files);
    figure.limit = 4.455;
    figure.isCount = true;
    figure.detail = "aim 4";
    for (const Make make : {MakePugixml, MakeRapidxml, MakeTinyxml2, MakeLibxml2, MakePropertyTree,
                            MakeGKeyFile, MakeSimpleIni})
        figure.detail +=
            ", " + Text(make()->Name(), RetainedPerByte(make, files), ResidentPerByte(make, files));
    suite.Add(figure);
}

}  // namespace bench
