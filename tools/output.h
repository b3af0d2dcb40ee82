// What a run of the tool prints, and how it exits.
#ifndef MOX_XMLAPI_TOOLS_OUTPUT_H
#define MOX_XMLAPI_TOOLS_OUTPUT_H

#include <string>
#include <vector>

#include "tools/exit_error.h"

namespace mox::tool {

// Collects the output of a verb. main writes it after the verb has ended, data first.
//
// Texts from files and arguments are escaped (see terminal_text.h) where people read them: in messages always, in data
// if stdout is a terminal. Other data keep their bytes.
class Output {
  public:
    explicit Output(bool isTerminal) : isTerminal_(isTerminal) {}

    // Adds an item of data, as one line. In an exact item, the text may itself contain line feeds.
    void PrintLine(const std::string& text);
    // Adds an item of data that has several fields, as one line with tabs between them.
    void PrintFields(const std::vector<std::string>& fields);
    // Adds data that consist of lines: a help text, or JSON, which means the same after it is escaped.
    void PrintLines(const std::string& lines);
    // Adds a message, as one line that begins with the name of the program.
    void PrintMessage(const std::string& text);

    const std::string& Data() const noexcept { return data_; }          // for stdout
    const std::string& Messages() const noexcept { return messages_; }  // for stderr

    // Items end with a zero byte instead of a line feed, each field of an item does, and nothing is escaped. Does not
    // affect PrintLines.
    bool isZeroTerminated = false;
    ExitCode code = ExitCode::kSuccess;

  private:
    void PrintItem(const std::string& text, char end);

    bool isTerminal_;
    std::string data_{};
    std::string messages_{};
};

}  // namespace mox::tool

#endif
