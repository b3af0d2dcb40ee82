// appender <file> <letter> <count>: appends that many lines "<letter><number>" to the file, one after the other: it
// reads the file, and replaces it by one with another line only if it is still the one that was read.
//
// The exit code is 0 if each line was written.
#include <cstdio>
#include <string>

#include "mox_xmlApi/mox_xmlApi.hpp"

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const std::string path(argv[1]);
    const int count = std::stoi(argv[3]);
    for (int number = 0; number < count;) {
        mox::FileStamp stamp;
        mox::Problem problem;
        const auto text = mox::readFile(path, &stamp, &problem);
        // Windows refuses to open a file at the moment in which it is replaced.
        if (!text.has_value() && problem.reason != mox::Reason::NotFound &&
            problem.reason != mox::Reason::NoPermission && problem.reason != mox::Reason::ReadFailed)
            return 3;
        if (!text.has_value() && problem.reason != mox::Reason::NotFound) continue;
        mox::ReplaceOptions options;
        options.onlyIf = &stamp;
        const std::string line = argv[2] + std::to_string(number) + "\n";
        if (mox::replaceFile(path, text.value_or("") + line, options, nullptr, &problem)) {
            ++number;
        } else if (problem.reason != mox::Reason::Changed) {
            std::fputs((problem.toString() + "\n").c_str(), stderr);
            return 4;
        }
    }
    return 0;
}
