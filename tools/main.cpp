// mox-xml: displays, edits and checks the files of mox_xmlApi.
#include <algorithm>
#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "mox_xmlApi/document/text_format.h"
#include "tools/arguments.h"
#include "tools/command_line.h"
#include "tools/edit/dropped_file.h"
#include "tools/exit_error.h"
#include "tools/output.h"
#include "tools/system.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

constexpr const char* kExamples =
    R"(mox-xml show camera.xml                         print the whole file as a tree
mox-xml get camera.xml Camera Exposure          print the value of a key
mox-xml set camera.xml Camera Exposure 2400     change it; the file is replaced safely
mox-xml keys camera.xml Camera                  list the keys of a section
mox-xml check camera.xml                        report errors and likely problems
mox-xml diff old.xml new.xml                    compare the contents of two files
mox-xml edit camera.xml                         edit it in the browser, as a form
mox-xml convert --wide camera.xml               store as 16-bit text, which can hold any letter)";

constexpr const char* kFooter =
    "Exit codes: 0 success, 1 not found (diff: the files differ), 2 usage error, 3 syntax error in a\n"
    "file, 4 a file cannot be read or written, or cannot store a value.\n"
    "See \"mox-xml VERB --help\" and the manual page mox-xml(1) for more.\n";

class CommandLine {
  public:
    // The output must outlive this object.
    explicit CommandLine(Output& output) : output_(output) {
        app_.name("mox-xml");
        app_.description("Displays, edits and checks settings and table files of mox_xmlApi.");
        app_.footer(kFooter);
        SetHelpExamples(app_, kExamples);
        AddVersionOption(app_);
        app_.allow_windows_style_options(false);  // a path may begin with "/" on every system
        app_.require_subcommand(1);
        for (const auto addVerbs : kVerbSources)
            addVerbs(app_, output_);
    }

    // Parses the arguments, and with that runs the verb. Throws ExitError.
    void Run(const std::vector<std::string>& arguments) {
        RequireUtf8(arguments);
        const Arguments sorted = SortArguments(app_, arguments);
        const CLI::App& verb = *sorted.verb;
        std::vector<std::string> reversed(sorted.words.rbegin(), sorted.words.rend());  // as CLI11 expects
        try {
            app_.parse(std::move(reversed));
        } catch (const CLI::CallForHelp&) {
            output_.PrintLines(app_.help());
        } catch (const CLI::CallForVersion& version) {
            output_.PrintLine(version.what());
        } catch (const CLI::ExtrasError&) {
            ThrowUsageError(verb, "unexpected argument " + QuotedIfNeeded(FirstUnused()));
        } catch (const CLI::RequiredError& error) {
            const bool hasOption = std::any_of(arguments.begin(), arguments.end(), IsOption);
            ThrowUsageError(verb, std::string(error.what()) + (hasOption ? kDashHint : ""));
        } catch (const CLI::ParseError& error) {
            ThrowUsageError(verb, Reworded(error.what()));
        } catch (const ExitError& error) {
            const std::string message = error.what();
            const bool isPointing = message.find("(see \"") != std::string::npos;
            if (error.Code() != ExitCode::kUsageError || isPointing) throw;
            ThrowUsageError(verb, message);
        }
    }

  private:
    static void RequireUtf8(const std::vector<std::string>& arguments) {
        for (const std::string& argument : arguments) {
            if (!mox::Text(argument).isValid())
                throw ExitError(ExitCode::kUsageError, "an argument is not valid UTF-8");
        }
    }

    // Replaces messages of CLI11 that are hard to understand. All options take at most one value.
    static std::string Reworded(const std::string& message) {
        const std::size_t colon = message.find(": ");
        if (colon == std::string::npos) return message;
        const std::string option = message.substr(0, colon);
        const std::string rest = message.substr(colon + 2);
        if (option == "Could not convert") return "invalid value: " + rest;
        if (rest.rfind("At Most 1 ", 0) == 0) return option + " can be given only once";
        return message;
    }

    // The first argument that CLI11 could not use. "--" is before it.
    std::string FirstUnused() const {
        const std::vector<std::string> remaining = app_.remaining(true);
        return remaining.size() > 1 ? remaining[1] : std::string();
    }

    Output& output_;
    CLI::App app_;
};

// Runs the tool. Never throws: failures become a message and an exit code.
void RunTool(Output& output, const std::vector<std::string>& arguments) {
    const auto fail = [&output](ExitCode code, const std::string& message) {
        output.code = code;
        output.PrintMessage(message);
    };
    try {
        CommandLine(output).Run(arguments);
    } catch (const ExitError& error) {
        fail(error.Code(), error.what());
    } catch (const std::bad_alloc&) {
        fail(ExitCode::kIoError, "out of memory");
    } catch (const std::exception& error) {
        fail(ExitCode::kIoError, error.what());
    } catch (std::int32_t code) {  // the library throws these, see mox_xmlApi.h
        fail(ExitCode::kIoError, "the library failed with error code " + std::to_string(code));
    }
}

}  // namespace
}  // namespace mox::tool

int main(int argc, char** argv) {
    namespace tool = mox::tool;
    tool::Output output(tool::IsStdoutTerminal());
    const std::vector<std::string> given = tool::CommandLineArguments(argc, argv);
    const std::vector<std::string> arguments = tool::WithDroppedFile(given);
    tool::RunTool(output, arguments);
    if (!tool::WriteStandardStreams(output.Data(), output.Messages()))
        return static_cast<int>(tool::ExitCode::kIoError);
    const bool isDropped = arguments != given;
    if (isDropped && output.code != tool::ExitCode::kSuccess) tool::KeepConsoleOpen();
    return static_cast<int>(output.code);
}
