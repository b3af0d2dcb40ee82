#include "tests/faults/tool_in_process_support.h"

#if !defined(_WIN32)

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#if defined(MOX_TOOL_IN_TESTS)
#include "tools/main.h"
#endif

namespace faults {

void SendOutputTo(const std::string& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ASSERT_GE(file, 0);
    ASSERT_GE(dup2(file, STDOUT_FILENO), 0);
    ASSERT_GE(dup2(file, STDERR_FILENO), 0);
    close(file);
}

int RunTool(const std::vector<std::string>& arguments) {
    std::vector<std::string> copies{"mox-xml"};
    copies.insert(copies.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& copy : copies)
        pointers.push_back(copy.data());
    pointers.push_back(nullptr);
#if defined(MOX_TOOL_IN_TESTS)
    const int code = mox::tool::Main(static_cast<int>(copies.size()), pointers.data());
    std::fflush(nullptr);
    return code;
#else
    return -1;
#endif
}

}  // namespace faults

#endif
