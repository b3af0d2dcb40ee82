// What depends on the operating system.
#ifndef MOX_XMLAPI_TOOLS_SYSTEM_H
#define MOX_XMLAPI_TOOLS_SYSTEM_H

#include <string>
#include <vector>

namespace mox::tool {

// The arguments of main without the program's name. On Windows they are UTF-8, made from the 16-bit command line: argv
// lacks the characters that the code page lacks. Elsewhere they are the bytes of argv, valid UTF-8 or not.
std::vector<std::string> CommandLineArguments(int argc, char** argv);

// The standard output streams. While an object of this class exists, bytes are written unchanged on Windows, and its
// console takes them for UTF-8.
class StandardStreams {
  public:
    StandardStreams();
    ~StandardStreams();
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

    // Whether stdout is a terminal: a console on Windows.
    bool IsTerminal() const;

    // Writes the data to stdout, then the messages to stderr. Returns whether all data were written.
    bool Write(const std::string& data, const std::string& messages);

  private:
    unsigned codePage_ = 0;  // that the console had before
};

// Whether the path (UTF-8) exists. Also true when the system cannot tell, for lack of permission for example.
bool Exists(const std::string& path);

}  // namespace mox::tool

#endif
