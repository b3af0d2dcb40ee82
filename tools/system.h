// What depends on the operating system.
#ifndef MOX_XMLAPI_TOOLS_SYSTEM_H
#define MOX_XMLAPI_TOOLS_SYSTEM_H

#include <string>
#include <vector>

namespace mox::tool {

// The arguments of main without the program's name. On Windows they are UTF-8, made from the 16-bit command line: argv
// lacks the characters that the code page lacks. Elsewhere they are the bytes of argv, valid UTF-8 or not.
std::vector<std::string> CommandLineArguments(int argc, char** argv);

// Whether stdout is a terminal. On Windows also if it is another character device: a console that can only be written
// to cannot be told from these.
bool IsStdoutTerminal();

// Writes the data to stdout, then the messages to stderr. Their bytes stay as they are; a console of Windows gets the
// characters, whatever its code page is. Returns whether all data were written.
bool WriteStandardStreams(const std::string& data, const std::string& messages);

// Whether both paths (UTF-8) lead to the same file. False if one of them does not exist.
bool IsSameFile(const std::string& one, const std::string& other);

// All bytes of stdin. Throws ExitError (kIoError) if they cannot be read or are too many (kLargestStream).
std::string ReadStdin();

}  // namespace mox::tool

#endif
