// mox-xml: looks into the files of mox_xmlApi, changes and checks them.
#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "tools/command_line.h"
#include "tools/outcome.h"
#include "tools/system.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

constexpr const char* kExamples =
    R"(mox-xml show camera.xml                         what is in the file, as a tree
mox-xml get camera.xml Camera Exposure          the value of a key
mox-xml set camera.xml Camera Exposure 2400     change it; the file is replaced safely
mox-xml keys camera.xml Camera                  the keys of a section, one per line
mox-xml check camera.xml                        what is wrong with the file, and where
mox-xml diff old.xml new.xml                    what differs in meaning
mox-xml convert --wide camera.xml               16-bit text, for letters beyond ASCII)";

constexpr const char* kFooter =
    "Exit codes: 0 done, 1 not found (diff: the files differ), 2 wrong usage, 3 the file does not\n"
    "parse, 4 it cannot be read or written. \"mox-xml VERB --help\" tells more about a verb.\n";

class CommandLine {
  public:
    explicit CommandLine(Session& session) : session_(session) {
        app_.name("mox-xml");
        app_.description("Looks into settings and table files, changes and checks them.");
        app_.footer(kFooter);
        ExamplesInHelp(app_, kExamples);
        app_.set_version_flag("--version", "mox-xml " MOX_VERSION);
        app_.allow_windows_style_options(false);  // a path may begin with "/" everywhere
        app_.require_subcommand(1);
        AddKeyVerbs(app_, session_);
        AddKeyWritingVerbs(app_, session_);
        AddEntryVerbs(app_, session_);
        AddShowVerb(app_, session_);
        AddFileVerbs(app_, session_);
        AddDiffVerb(app_, session_);
        AddCheckVerb(app_, session_);
    }

    void Run(std::vector<std::string> arguments) {
        RequireTexts(arguments);
        std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
        try {
            app_.parse(std::move(reversed));
        } catch (const CLI::CallForHelp&) {
            session_.out += app_.help();
        } catch (const CLI::CallForVersion&) {
            session_.Line("mox-xml " MOX_VERSION);
        } catch (const CLI::ParseError& error) {
            throw Stop(ExitCode::kUsage, std::string(error.what()) + " (see \"mox-xml --help\")");
        }
    }

  private:
    static void RequireTexts(const std::vector<std::string>& arguments) {
        for (const std::string& argument : arguments) {
            if (!mox::Text(argument).isValid()) throw Stop(ExitCode::kUsage, "an argument is no UTF-8 text");
        }
    }

    Session& session_;
    CLI::App app_;
};

void RunInto(Session& session, std::vector<std::string> arguments) {
    const auto fail = [&session](ExitCode code, const std::string& message) {
        session.code = code;
        session.Message("mox-xml: " + message);
    };
    try {
        CommandLine(session).Run(std::move(arguments));
    } catch (const Stop& stop) {
        fail(stop.Code(), stop.what());
    } catch (const std::bad_alloc&) {
        fail(ExitCode::kNoAccess, "out of memory");
    } catch (const std::exception& problem) {
        fail(ExitCode::kNoAccess, problem.what());
    } catch (std::int32_t code) {  // what the library itself throws
        fail(ExitCode::kNoAccess, "the library gave up with code " + std::to_string(code));
    }
}

}  // namespace
}  // namespace mox::tool

int main(int argc, char** argv) {
    namespace tool = mox::tool;
    tool::Session session;
    tool::StandardStreams streams;
    tool::RunInto(session, tool::ProcessArguments(argc, argv));
    if (!streams.Write(session.out, session.messages)) return static_cast<int>(tool::ExitCode::kNoAccess);
    return static_cast<int>(session.code);
}
