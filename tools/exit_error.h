// Exit codes, and the exception that ends a verb with one.
#ifndef MOX_XMLAPI_TOOLS_EXIT_ERROR_H
#define MOX_XMLAPI_TOOLS_EXIT_ERROR_H

#include <stdexcept>
#include <string>

namespace mox::tool {

// The exit code of the process. The order matters: `check` of several files returns the highest code.
enum class ExitCode : int {
    kSuccess = 0,
    kNotFound = 1,     // no such section, key or entry; `diff`: the files differ
    kUsageError = 2,   // wrong arguments, or a document of the wrong kind for the verb
    kSyntaxError = 3,  // the file does not parse
    kIoError = 4,      // the file cannot be read or written, or cannot store the value
};

// Ends a verb. main prints the message to stderr and exits with the code.
class ExitError : public std::runtime_error {
  public:
    ExitError(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}

    ExitCode Code() const noexcept { return code_; }

  private:
    ExitCode code_;
};

}  // namespace mox::tool

#endif
