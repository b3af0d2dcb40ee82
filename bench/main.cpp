// mox_bench [--quick] [--json=<file>] [--filter=<part of an operation's name>] [--repetitions=<number>]
//
// Prints the table of all measurements to standard output. Ends with 1 when a library read or left something
// wrong; times alone never make it fail.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <string_view>

#include "bench/report.h"
#include "bench/suite.h"

namespace {

struct Arguments {
    bench::Settings settings;
    std::string json;
    std::string filter;
    bool understood = true;
};

Arguments Parse(int count, char** values) {
    Arguments arguments;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument(values[i]);
        const auto value = [&](std::string_view name) { return std::string(argument.substr(name.size())); };
        if (argument == "--quick") {
            arguments.settings.quick = true;
        } else if (argument.starts_with("--json=")) {
            arguments.json = value("--json=");
        } else if (argument.starts_with("--filter=")) {
            arguments.filter = value("--filter=");
        } else if (argument.starts_with("--repetitions=")) {
            arguments.settings.repetitions = std::stoi(value("--repetitions="));
        } else {
            arguments.understood = false;
        }
    }
    return arguments;
}

int Run(const Arguments& arguments) {
    const bool quick = arguments.settings.quick;
    const auto progress = [quick](const bench::RowResult& row) {
        if (!quick) bench::PrintRow(row, std::cout);
    };
    bench::Suite suite(arguments.settings, arguments.filter, progress);
    if (!quick) bench::PrintHeader(std::cout);
    for (const auto run : {bench::RunSpeedups, bench::RunLoad, bench::RunSave, bench::RunRelease,
                           bench::RunGet, bench::RunChange, bench::RunRemoval, bench::RunHostile,
                           bench::RunEnumerate, bench::RunHost, bench::RunMemory, bench::RunGrowth})
        run(suite);
    bench::RunGrowthInMemory(suite, bench::MemoryUse::FetchAll);
    bench::RunGrowthInMemory(suite, bench::MemoryUse::KeepAll);
    bench::RunShapes(suite);
    if (quick) {
        bench::PrintChecked(suite, std::cout);
    } else {
        bench::PrintFigures(suite.Figures(), std::cout);
    }
    bench::Check(!suite.Rows().empty() || !suite.Figures().empty(),
                 "no operation has \"" + arguments.filter + "\" in its name");
    if (!arguments.json.empty()) {
        std::ofstream file(arguments.json);
        bench::WriteJson(suite, file);
        file.close();
        bench::Check(file.good(), "cannot write " + arguments.json);
    }
    return bench::CountsAreRight(suite) ? 0 : 1;
}

}  // namespace

int main(int count, char** values) {
    try {
        const Arguments arguments = Parse(count, values);
        if (!arguments.understood || arguments.settings.repetitions < 1) {
            std::fputs(
                "usage: mox_bench [--quick] [--json=<file>] [--filter=<text>] [--repetitions=<number>]\n",
                stderr);
            return 2;
        }
        int one = 1;
        benchmark::Initialize(&one, values);
        return Run(arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "mox_bench: %s\n", error.what());
        return 1;
    }
}
