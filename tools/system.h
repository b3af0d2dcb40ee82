// What differs between the systems that the tool runs on.
#ifndef MOX_XMLAPI_TOOLS_SYSTEM_H
#define MOX_XMLAPI_TOOLS_SYSTEM_H

#include <string>
#include <vector>

namespace mox::tool {

// The arguments of the process without its own name, as UTF-8; on Windows made from the 16-bit command line, where
// main's own arguments have lost what the code page does not know.
std::vector<std::string> ProcessArguments(int argc, char** argv);

// The standard streams for one run: bytes as they are written, and shown as UTF-8 where they go to a console.
class StandardStreams {
  public:
    StandardStreams();
    ~StandardStreams();
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

    // Writes the data to stdout, then the messages to stderr. Returns whether the data are out.
    bool Write(const std::string& data, const std::string& messages);

  private:
    unsigned codePage_ = 0;
};

// Whether there is a file or folder of that name, or something that cannot be looked at. The path is UTF-8.
bool Exists(const std::string& path);

// Copies a file with its access rights over another one. Returns whether it could. Paths are UTF-8.
bool CopyFileTo(const std::string& from, const std::string& to);

}  // namespace mox::tool

#endif
