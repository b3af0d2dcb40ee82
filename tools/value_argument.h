// The value that a verb writes: an argument, or what a file or stdin contains.
#ifndef MOX_XMLAPI_TOOLS_VALUE_ARGUMENT_H
#define MOX_XMLAPI_TOOLS_VALUE_ARGUMENT_H

#include <CLI/CLI.hpp>
#include <string>

namespace mox::tool {

class ValueArgument {
  public:
    // Adds [VALUE], --stdin and --value-from. Parsing the command line sets this object, which must live until then. The
    // other functions need the verb, which owns the options.
    void AddTo(CLI::App& verb);

    // Whether a value was given, in whatever way. Throws ExitError (kUsageError) if there are several.
    bool IsGiven() const;

    // The value. Reads the file or stdin, so call it once, after everything else was checked. One line break at the end
    // of what is read does not belong to the value. Throws ExitError (kIoError).
    std::string Read() const;

  private:
    std::string text_{};
    std::string path_{};
    bool isStdin_ = false;
    CLI::Option* value_ = nullptr;
    CLI::Option* from_ = nullptr;
};

}  // namespace mox::tool

#endif
