// A program beside that of the tests, in a process of its own that can be killed.
#ifndef MOX_XMLAPI_TESTS_FRONT_CHILD_PROGRAM_SUPPORT_H
#define MOX_XMLAPI_TESTS_FRONT_CHILD_PROGRAM_SUPPORT_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace front_tests {

// Killed at the end of its scope, if not before.
class ChildProgram {
  public:
    // Starts the program of that name from the folder of the tests' own program.
    ChildProgram(const std::string& name, const std::vector<std::filesystem::path>& arguments);
    ~ChildProgram() { Kill(); }
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    bool IsStarted() const { return process_ != 0; }

    // Ends it at once, as no program can prevent, and waits until it is gone. Returns whether it was running until
    // then.
    bool Kill();

  private:
    std::intptr_t process_ = 0;
};

}  // namespace front_tests

#endif
