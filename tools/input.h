// What "-" and --stdin read.
#ifndef MOX_XMLAPI_TOOLS_INPUT_H
#define MOX_XMLAPI_TOOLS_INPUT_H

#include <functional>
#include <string>

namespace mox::tool {

// Returns all bytes of stdin. Throws ExitError (kIoError) if they cannot be read.
using InputReader = std::function<std::string()>;

// The stdin of a run of the tool, as long as this object exists. A process has one at a time.
class Input {
  public:
    // The reader must outlive this object.
    explicit Input(const InputReader& reader) noexcept;
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // All bytes of the stdin of this run. Throws what the reader throws, and ExitError (kUsageError) if they were read
    // before.
    static std::string ReadAll();
};

}  // namespace mox::tool

#endif
