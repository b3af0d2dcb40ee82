// saver <file> <ready file>: replaces the file by two documents in turn until it is killed. Creates the ready file before
// the first save.
//
// Ends when a save fails, or after a minute, so that no process stays if the test itself ends early.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/front/saver/documents.h"

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::filesystem::path file(argv[1]);
    const mox::Profile first = saver::Document('a');
    const mox::Profile second = saver::Document('b');
    std::ofstream(argv[2]) << "ready\n";
    mox::SaveOptions overwriting;
    overwriting.overwrite = true;
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (std::chrono::steady_clock::now() < end) {
        if (!first.saveReplacing(file.u16string(), overwriting) ||
            !second.saveReplacing(file.u16string(), overwriting))
            return 1;
    }
    return 0;
}
