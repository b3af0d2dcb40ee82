// edit: a form for the file in the browser; form: the same as a page to read, to print and to send.
#include <chrono>
#include <memory>

#include "tools/command_line.h"
#include "tools/edit/browser.h"
#include "tools/edit/editor_session.h"
#include "tools/edit/editor_site.h"
#include "tools/edit/form_json.h"
#include "tools/edit/http_server.h"
#include "tools/edit/page.h"
#include "tools/edit/system_random.h"
#include "tools/exit_error.h"
#include "tools/open_document.h"
#include "tools/system.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct EditorArguments {
    SessionOptions session{};
    bool hasNoBrowser = false;
    std::uint32_t idleMinutes = 60;
};

// The output of a verb is written when it ends; the address is needed before.
void WriteAddress(const EditorArguments& arguments, const std::string& address) {
    if (arguments.hasNoBrowser || !OpenBrowser(address)) {
        if (WriteStandardStreams(address + "\n", "")) return;
        throw ExitError(ExitCode::kIoError, "cannot write the address to stdout");
    }
    Output note(false);
    note.PrintMessage(arguments.session.file.path + ": opening the browser; if it does not come up, use " +
                      address + " (Ctrl-C ends the editor)");
    static_cast<void>(WriteStandardStreams("", note.Messages()));
}

void RunEdit(const EditorArguments& arguments, Output& output) {
    EditorSession session(arguments.session);
    HttpServer server;
    EditorSite site(session, server.Port(), {RandomSecret(), RandomSecret(), RandomSecret()});
    WriteAddress(arguments, site.Address());
    ServerPatience patience;
    patience.idle = std::chrono::minutes(arguments.idleMinutes);
    if (server.Run(site, patience) == ServerEnd::Idle)
        output.PrintMessage(session.Path() + ": nobody used the page for " +
                            std::to_string(arguments.idleMinutes) + " minutes");
}

void RunForm(const FileArgument& file, Output& output) {
    const Document document = ReadDocument(file.path, file.RequestedForm());
    RequireSettingsOrTable(file.path, document);
    Json form = Json::object();
    form["file"] = file.path == kStdinPath ? "" : FileNameOf(file.path);
    form["readOnly"] = "This page is for reading only.";
    form.update(FormJson(document));
    output.PrintLines(PageText(PageUse::Alone, form));
}

}  // namespace

void AddEditVerb(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<EditorArguments>();
    CLI::App& edit = AddVerb(app, "edit", "Edit a file in the browser, as a form",
                             "mox-xml edit camera.xml\n"
                             "mox-xml edit camera.xml --read-only --no-browser");
    AddFileArgument(edit, arguments->session.file);
    edit.add_flag("--no-browser", arguments->hasNoBrowser,
                  "Print the address of the page; do not open a browser");
    edit.add_flag("--read-only", arguments->session.isReadOnly, "Show the file; do not let it be changed");
    edit.add_option("--choices", arguments->session.choicesPath,
                    "A JSON file with the choices of providers: {\"erg:1\": [\"on\", \"off\"]}");
    edit.add_option("--idle", arguments->idleMinutes,
                    "End when nobody has used the page for this many minutes (60)")
        ->check(CLI::Range(1, 10080));
    edit.callback([arguments, &output] { RunEdit(*arguments, output); });

    const auto file = std::make_shared<FileArgument>();
    CLI::App& form = AddVerb(app, "form", "Write a page that shows a file as a form, to read or to print",
                             "mox-xml form camera.xml >camera.html\n"
                             "mox-xml form - <camera.xml >camera.html");
    AddFileArgument(form, *file);
    form.callback([file, &output] { RunForm(*file, output); });
}

}  // namespace mox::tool
