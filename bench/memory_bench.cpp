// What a loaded document keeps.
#include <array>
#include <cstdio>

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

std::string Text(const std::string& name, double value) {
    std::array<char, 64> buffer;
    std::snprintf(buffer.data(), buffer.size(), "%s %.2f", name.c_str(), value);
    return buffer.data();
}

}  // namespace

void RunMemory(Suite& suite) {
    if (!suite.Wants("bytes retained")) return;
    const DocumentShape shape{500, 200};
    const DocumentFiles files(shape, {false, true});
    Figure figure{"bytes retained per narrow input byte", ShapeName(shape)};
    figure.value = RetainedPerByte(MakeOurs, files);
    figure.limit = 6.5;
    figure.isCount = true;
    figure.detail = "aim 4.5";
    for (const Make make : {MakePugixml, MakeRapidxml, MakeTinyxml2, MakeLibxml2, MakePropertyTree,
                            MakeGKeyFile, MakeSimpleIni})
        figure.detail += ", " + Text(make()->Name(), RetainedPerByte(make, files));
    suite.Add(figure);
}

}  // namespace bench
