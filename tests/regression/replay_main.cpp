// Runs a fuzz target over files, without a fuzzer: replay <file or folder>...
//
// An input that is found wanting ends the process, so the last name that was printed is its file. A folder
// that is missing or holds no file is an error: it would be a test that tests nothing.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> FilesOf(const std::filesystem::path& place) {
    if (!std::filesystem::is_directory(place)) return {place};
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(place)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool Replay(const std::filesystem::path& path) {
    std::printf("%s\n", path.string().c_str());
    std::fflush(stdout);
    std::ifstream stream(path, std::ios::binary);
    if (!stream.is_open()) return false;
    const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    // A block of just that size: the sanitizers see a read past the input.
    const auto input = std::make_unique<std::uint8_t[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), input.get());
    LLVMFuzzerTestOneInput(input.get(), bytes.size());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        const std::vector<std::filesystem::path> files = FilesOf(argv[i]);
        if (files.empty() || !std::all_of(files.begin(), files.end(), Replay)) {
            std::printf("%s: nothing to replay\n", argv[i]);
            return 1;
        }
        count += files.size();
    }
    std::printf("%zu inputs replayed\n", count);
    return count == 0 ? 1 : 0;
}
