// Runs mox-xml in this process, in a folder of its own, and checks what holds for every run.
#ifndef MOX_XMLAPI_FUZZ_TOOL_RUNS_H
#define MOX_XMLAPI_FUZZ_TOOL_RUNS_H

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace mox::fuzz {

// The files that the runs work on; all others that a run leaves behind are a finding.
inline constexpr const char* kFile = "a.xml";
inline constexpr const char* kOther = "b.xml";

struct RunResult {
    int code = 0;
    std::string data{};
    std::string messages{};
};

// A run of the tool: its arguments, and what it may do.
struct Run {
    std::vector<std::string> arguments{};
    std::string input{};      // of stdin
    bool isTerminal = false;  // stdout is one
    bool isExact = false;     // -z was given: even a terminal gets the exact text
    bool hasTabs = false;     // the verb prints fields with tabs between them
    std::string writes{};     // the file that the verb writes; empty for a verb that only reads
    bool withBackup = false;  // --backup was given
};

class ToolFolder {
  public:
    // Makes the folder, and makes it the current one until this object is destroyed.
    ToolFolder();
    ~ToolFolder();
    ToolFolder(const ToolFolder&) = delete;
    ToolFolder& operator=(const ToolFolder&) = delete;

    // nullopt if there is no such file.
    static std::optional<std::string> Read(const std::string& name);
    static void Write(const std::string& name, const std::string& bytes);
    void Clear() const;

    // Runs the tool. Ends the process as a finding if a run that fails changes a file, if one changes another file than it
    // may, leaves a file behind or loses the old one in spite of --backup, or if the output could control a terminal.
    static RunResult Execute(const Run& run);

  private:
    std::filesystem::path folder_;
    std::filesystem::path before_;  // the current folder
};

}  // namespace mox::fuzz

#endif
