// What a run of the tool prints, and how it exits.
#ifndef MOX_XMLAPI_TOOLS_OUTPUT_H
#define MOX_XMLAPI_TOOLS_OUTPUT_H

#include <string>

#include "tools/exit_error.h"

namespace mox::tool {

// Collects the output of a verb. main writes it after the verb has ended, data first.
struct Output {
    std::string data{};      // for stdout
    std::string messages{};  // for stderr
    ExitCode code = ExitCode::kSuccess;

    // Adds a line of data. A text may itself contain line breaks.
    void PrintLine(const std::string& text) { data.append(text).append("\n"); }
    // Adds a line of messages, prefixed with the name of the program.
    void PrintMessage(const std::string& text) { messages.append("mox-xml: ").append(text).append("\n"); }
};

}  // namespace mox::tool

#endif
