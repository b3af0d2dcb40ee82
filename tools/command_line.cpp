#include "tools/command_line.h"

#include <memory>
#include <sstream>
#include <utility>

namespace mox::tool {
namespace {

// Prints the examples before the rest of the help, and calls things what the manual page calls them.
class HelpFormatter : public CLI::Formatter {
  public:
    explicit HelpFormatter(std::string examples) : examples_(std::move(examples)) {
        column_width(28);
        label("SUBCOMMAND", "VERB");
        label("Positionals", "Arguments");
    }

    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
        std::ostringstream help;
        help << "Examples:\n";
        std::istringstream lines(examples_);
        for (std::string line; std::getline(lines, line);)
            help << "  " << line << "\n";
        help << "\n" << CLI::Formatter::make_help(app, std::move(name), mode);
        std::string text = help.str();
        text.erase(text.find_last_not_of('\n') + 1);
        return text.append("\n");
    }

  private:
    std::string examples_;
};

}  // namespace

void SetHelpExamples(CLI::App& app, const std::string& examples) {
    app.formatter(std::make_shared<HelpFormatter>(examples));
}

CLI::App& AddVerb(CLI::App& parent, const std::string& name, const std::string& description,
                  const std::string& examples) {
    CLI::App* const verb = parent.add_subcommand(name, description);
    verb->group("Verbs");
    AddVersionOption(*verb);
    SetHelpExamples(*verb, examples);
    return *verb;
}

void AddVersionOption(CLI::App& app) {
    app.set_version_flag("--version", "mox-xml " MOX_VERSION, "Print the version and exit");
}

void AddFileArgument(CLI::App& verb, FileArgument& file) {
    verb.add_option("FILE", file.path, "The file")->required();
    CLI::Option* const wide =
        verb.add_flag("--wide", file.isWide, "FILE is wide (two bytes per unit); do not detect its form");
    verb.add_flag("--narrow", file.isNarrow, "FILE is narrow (one byte per unit); do not detect its form")
        ->excludes(wide);
}

void AddBackupOption(CLI::App& verb, bool& isSet) {
    verb.add_flag("--backup", isSet, "Keep the old file as FILE.bak");
}

void AddJsonOption(CLI::App& verb, bool& isSet) {
    verb.add_flag("--json", isSet, "Print JSON");
}

void AddItemOptions(CLI::App& verb, bool& isJson, Output& output) {
    AddJsonOption(verb, isJson);
    verb.add_flag("-z,--null", output.isZeroTerminated,
                  "End each item with a zero byte; even a terminal gets the exact text")
        ->excludes("--json");
}

}  // namespace mox::tool
