// Runs programs on a pseudo-terminal, as people do.
#ifndef MOX_XMLAPI_TESTS_TOOL_TERMINAL_SUPPORT_H
#define MOX_XMLAPI_TESTS_TOOL_TERMINAL_SUPPORT_H

#include <string>
#include <vector>

#if !defined(_WIN32)
#include <sys/types.h>
#endif

namespace tool {

// Runs the tool on a terminal. Returns what it writes there, data before messages. On Windows this is a console, which
// says what it shows: lines end with CR LF, and what is longer than 200 columns is wrapped. The arguments must need no
// quotes there.
std::string OnTerminal(const std::vector<std::string>& arguments);

#if !defined(_WIN32)

// A program with all three standard streams on a terminal of its own. The terminal passes bytes on unchanged and does
// not repeat what is typed.
class TerminalProgram {
  public:
    // Starts the program. Throws std::runtime_error if that fails.
    explicit TerminalProgram(const std::vector<std::string>& call);
    // Closes the terminal and waits for the program.
    ~TerminalProgram();
    TerminalProgram(const TerminalProgram&) = delete;
    TerminalProgram& operator=(const TerminalProgram&) = delete;

    // Reads output until `text` comes, from where the text of the previous call ended. Returns what is
    // before `text`. Throws std::runtime_error if the program exits first, or writes nothing for 20 seconds.
    std::string ReadUntil(const std::string& text);
    void Type(const std::string& keys);
    // Everything that the program has written and that has been read so far.
    const std::string& Output() const { return output_; }

    // Reads the output to its end and waits for the program. Returns its exit code, or -1 if it was killed.
    int Finish();

  private:
    bool Read();

    int terminal_ = -1;
    pid_t process_ = -1;
    std::string output_{};
    std::size_t found_ = 0;  // where the text of the last ReadUntil ended
};

#endif

}  // namespace tool

#endif
