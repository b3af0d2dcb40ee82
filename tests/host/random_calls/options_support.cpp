#include "tests/host/random_calls/options_support.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gmock/gmock.h>
#include <string>
#include <string_view>

namespace host {
namespace {

RandomOptions options;

// Reads "<name><number>"; false for anything else.
bool ReadOption(std::string_view argument, std::string_view name, std::uint64_t& number) {
    if (!argument.starts_with(name)) return false;
    const std::string digits(argument.substr(name.size()));
    char* end = nullptr;
    number = std::strtoull(digits.c_str(), &end, 10);
    return !digits.empty() && *end == '\0';
}

}  // namespace

const RandomOptions& GetRandomOptions() {
    return options;
}

}  // namespace host

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        if (host::ReadOption(argv[i], "--random-seed=", host::options.seed) ||
            host::ReadOption(argv[i], "--random-count=", host::options.count)) {
            continue;
        }
        std::fprintf(stderr, "unknown argument: %s\n", argv[i]);
        return 2;
    }
    return RUN_ALL_TESTS();
}
