// How a run of the tool ends.
#ifndef MOX_XMLAPI_TOOLS_OUTCOME_H
#define MOX_XMLAPI_TOOLS_OUTCOME_H

#include <stdexcept>
#include <string>

namespace mox::tool {

// What the process returns. `diff` returns kNotFound when the files differ.
enum class ExitCode : int { kDone = 0, kNotFound = 1, kUsage = 2, kNotParsed = 3, kNoAccess = 4 };

// Ends a verb; the message goes to stderr.
class Stop : public std::runtime_error {
  public:
    Stop(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}

    ExitCode Code() const noexcept { return code_; }

  private:
    ExitCode code_;
};

// What a verb leaves behind: data for stdout, messages for stderr. Nothing is written before the verb is done.
struct Session {
    std::string out{};
    std::string messages{};
    ExitCode code = ExitCode::kDone;

    void Line(const std::string& text) { out.append(text).append("\n"); }
    void Message(const std::string& text) { messages.append(text).append("\n"); }
};

}  // namespace mox::tool

#endif
