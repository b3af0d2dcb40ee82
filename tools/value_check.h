// Tells people when a value that they write does not suit its entry.
#ifndef MOX_XMLAPI_TOOLS_VALUE_CHECK_H
#define MOX_XMLAPI_TOOLS_VALUE_CHECK_H

#include <CLI/CLI.hpp>
#include <string>

#include "mox_xmlApi/document/document.hpp"
#include "tools/output.h"

namespace mox::tool {

class ValueCheck {
  public:
    // Adds --strict. This object must live until the command line is parsed.
    void AddTo(CLI::App& verb);

    // Warns if the value of the entry, as it will be in the file, does not suit the type, the minimum and maximum, or the
    // control; `check --values` reports the same. With --strict throws ExitError (kIoError) instead.
    void Run(const std::string& path, const DocumentEntry& entry, Output& output) const;

  private:
    bool isStrict_ = false;
};

}  // namespace mox::tool

#endif
