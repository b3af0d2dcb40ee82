// A program in a process of its own, which a test can kill.
#ifndef MOX_XMLAPI_TESTS_FRONT_CHILD_PROGRAM_SUPPORT_H
#define MOX_XMLAPI_TESTS_FRONT_CHILD_PROGRAM_SUPPORT_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace front_tests {

// Kills the process at the end of its scope.
class ChildProgram {
  public:
    // Starts the program of that name from the folder of the test program.
    ChildProgram(const std::string& name, const std::vector<std::filesystem::path>& arguments);
    ~ChildProgram() { Kill(); }
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    bool IsStarted() const { return process_ != 0; }

    // Kills the process, which it cannot prevent, and waits until it has ended. Returns whether it was running until
    // then.
    bool Kill();

  private:
    std::intptr_t process_ = 0;
};

}  // namespace front_tests

#endif
