#include "tools/command_line.h"

#include <memory>
#include <sstream>
#include <utility>

namespace mox::tool {
namespace {

class ExamplesFirst : public CLI::Formatter {
  public:
    explicit ExamplesFirst(std::string examples) : examples_(std::move(examples)) { column_width(28); }

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

void ExamplesInHelp(CLI::App& app, const std::string& examples) {
    app.formatter(std::make_shared<ExamplesFirst>(examples));
}

CLI::App& AddVerb(CLI::App& parent, const std::string& name, const std::string& description,
                  const std::string& examples) {
    CLI::App* const verb = parent.add_subcommand(name, description);
    ExamplesInHelp(*verb, examples);
    return *verb;
}

void AddFile(CLI::App& verb, FileArgument& file) {
    verb.add_option("FILE", file.path, "The file")->required();
    CLI::Option* const wide =
        verb.add_flag("--wide", file.isWide, "The file has two bytes per unit, whatever it looks like");
    verb.add_flag("--narrow", file.isNarrow, "The file has one byte per unit, whatever it looks like")
        ->excludes(wide);
}

void AddBackup(CLI::App& verb, bool& isWanted) {
    verb.add_flag("--backup", isWanted, "Keep the old file as FILE.bak");
}

void AddJson(CLI::App& verb, bool& isWanted) {
    verb.add_flag("--json", isWanted, "Write JSON");
}

}  // namespace mox::tool
