// The options with which writers wait for each other.
#ifndef MOX_XMLAPI_TOOLS_LOCK_ARGUMENTS_H
#define MOX_XMLAPI_TOOLS_LOCK_ARGUMENTS_H

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>

#include "mox_xmlApi/disk/file_lock.hpp"

namespace mox::tool {

class LockArguments {
  public:
    // Adds --lock and --lock-timeout. This object must live until the command line is parsed.
    void AddTo(CLI::App& verb);

    // Locks the file, if the user asks for that. Throws ExitError (kIoError) if it cannot be locked, or if another program
    // does not release it in time.
    std::optional<FileLock> Acquire(const std::string& path) const;

  private:
    bool isWanted_ = false;
    std::uint32_t seconds_ = 30;
    CLI::Option* timeout_ = nullptr;  // belongs to the verb
};

}  // namespace mox::tool

#endif
