#include "tests/tool/help_support.h"

#include <sstream>

#include "tests/tool/tool_support.h"

namespace tool {
namespace {

// The lines of the list of options, from the "--" of the option on.
std::vector<std::string> OptionLines(const std::string& help) {
    std::vector<std::string> found;
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find("--");
        const bool isShortBefore = begin == 5 && line[2] == '-' && line[4] == ',';
        if (begin == 2 || isShortBefore) found.push_back(line.substr(begin));
    }
    return found;
}

std::string NameIn(const std::string& line) {
    return line.substr(0, line.find_first_not_of("-abcdefghijklmnopqrstuvwxyz"));
}

}  // namespace

std::vector<std::string> Verbs() {
    return {
        "sections",       "keys",      "get",          "set",          "delete", "entries",     "entry get",
        "entry set",      "entry add", "entry rename", "entry remove", "new",    "section add", "section set",
        "section remove", "show",      "export",       "convert",      "diff",   "apply",       "check"};
}

std::string HelpOf(const std::string& verb) {
    const std::size_t space = verb.find(' ');
    std::vector<std::string> call{verb.substr(0, space)};
    if (space != std::string::npos) call.push_back(verb.substr(space + 1));
    call.emplace_back("--help");
    return RunTool(call).out;
}

std::vector<std::string> OptionsIn(const std::string& help) {
    std::vector<std::string> options;
    for (const std::string& line : OptionLines(help))
        options.push_back(NameIn(line));
    return options;
}

std::vector<std::string> OptionsWithValueIn(const std::string& help) {
    std::vector<std::string> options;
    for (const std::string& line : OptionLines(help)) {
        const std::string name = NameIn(line);
        for (const std::string type : {"TEXT", "UINT", "INT"}) {
            if (line.compare(name.size(), type.size() + 1, " " + type) == 0) options.push_back(name);
        }
    }
    return options;
}

}  // namespace tool
