// Reads the JSON that `diff --json` prints, or that people write, as changes to make.
#ifndef MOX_XMLAPI_TOOLS_CHANGE_LIST_H
#define MOX_XMLAPI_TOOLS_CHANGE_LIST_H

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/document_diff.h"

namespace mox::tool {

// One change. Without a kind, it writes `value`, and adds the section and the entry if they are missing.
struct RequestedChange {
    std::optional<Change> kind{};
    std::string section{};
    bool hasSection = false;  // only a table document does without
    std::string entry{};
    bool hasEntry = false;
    std::size_t occurrence = 1;
    std::string field{};                  // Changed
    std::string type{};                   // Added
    std::optional<std::string> before{};  // if given, the file must have it
    std::optional<std::string> after{};   // Changed: always given
    Fields fields{};                      // Added
    nlohmann::json value{};               // without a kind: a text, number, truth value or list of bytes

    // "Camera/Exposure"
    std::string Location() const;
};

// Throws ExitError (kSyntaxError), with the path, if the text is not JSON or not a list of changes, or if it has members
// or digits that JSON's reader would drop.
std::vector<RequestedChange> ReadChanges(const std::string& path, std::string_view text);

// The same for JSON that was parsed already, from a text that is not deep (see json_depth.h) and has no such members.
std::vector<RequestedChange> ChangesFromJson(const std::string& path, const nlohmann::json& list);

}  // namespace mox::tool

#endif
