// sections, keys, get: reading settings documents.
#include <memory>

#include "tools/command_line.h"
#include "tools/document_model.h"
#include "tools/json_output.h"
#include "tools/saving.h"
#include "tools/shown_text.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct KeyArguments {
    FileArgument file{};
    std::string section{};
    std::string key{};
    std::string defaultValue{};
    bool hasDefault = false;
    bool isJson = false;
};

void WriteNames(Session& session, const std::vector<std::string>& names, bool isJson) {
    if (isJson) {
        session.out += JsonText(names);
        return;
    }
    for (const std::string& name : names)
        session.Line(name);
}

void Sections(const KeyArguments& arguments, Session& session) {
    const SourceFile file(arguments.file.path, arguments.file.ForcedForm());
    file.RequireParsed();
    const DocumentModel document = ReadDocument(file);
    RequireSettings(file, document);
    std::vector<std::string> names;
    for (const TableModel& table : document.tables) {
        if (table.isTable && table.hasName) names.push_back(table.name);
    }
    WriteNames(session, names, arguments.isJson);
}

void Keys(const KeyArguments& arguments, Session& session) {
    const SourceFile file(arguments.file.path, arguments.file.ForcedForm());
    file.RequireParsed();
    const DocumentModel document = ReadDocument(file);
    RequireSettings(file, document);
    const TableModel* const section = FindTable(document, arguments.section);
    if (section == nullptr)
        throw Stop(ExitCode::kNotFound, file.Path() + ": no section " + ShownName(arguments.section));
    std::vector<std::string> names;
    for (const EntryModel& entry : section->entries) {
        if (entry.isReadable && !entry.name.empty()) names.push_back(entry.name);
    }
    WriteNames(session, names, arguments.isJson);
}

void Get(const KeyArguments& arguments, Session& session) {
    const SourceFile file(arguments.file.path, arguments.file.ForcedForm());
    file.RequireParsed();
    RequireSettings(file, ReadDocument(file));
    const Profile profile = OpenProfile(file);
    std::optional<std::string> value = profile.getString(arguments.section, arguments.key);
    if (!value.has_value() && arguments.hasDefault) value = arguments.defaultValue;
    if (!value.has_value()) {
        throw Stop(ExitCode::kNotFound,
                   file.Path() + ": no key " + ShownName(arguments.section) + "/" + ShownName(arguments.key));
    }
    if (arguments.isJson) {
        session.out += JsonText(*value);
    } else {
        session.Line(*value);
    }
}

}  // namespace

void AddKeyVerbs(CLI::App& app, Session& session) {
    const auto arguments = std::make_shared<KeyArguments>();

    CLI::App& sections = AddVerb(app, "sections", "The sections of a settings file, one per line",
                                 "mox-xml sections camera.xml\nmox-xml sections camera.xml --json");
    AddFile(sections, arguments->file);
    AddJson(sections, arguments->isJson);
    sections.callback([arguments, &session] { Sections(*arguments, session); });

    CLI::App& keys = AddVerb(app, "keys", "The keys of a section, one per line",
                             "mox-xml keys camera.xml Camera\nmox-xml keys camera.xml \"Front lens\" --json");
    AddFile(keys, arguments->file);
    keys.add_option("SECTION", arguments->section, "The section's name")->required();
    AddJson(keys, arguments->isJson);
    keys.callback([arguments, &session] { Keys(*arguments, session); });

    CLI::App& get = AddVerb(app, "get", "The value of a key",
                            "mox-xml get camera.xml Camera Exposure\n"
                            "mox-xml get camera.xml Camera Exposure --default 1000");
    AddFile(get, arguments->file);
    get.add_option("SECTION", arguments->section, "The section's name")->required();
    get.add_option("KEY", arguments->key, "The key")->required();
    CLI::Option* const defaultValue =
        get.add_option("--default", arguments->defaultValue, "The value when there is no such key");
    AddJson(get, arguments->isJson);
    get.callback([arguments, defaultValue, &session] {
        arguments->hasDefault = defaultValue->count() > 0;
        Get(*arguments, session);
    });
}

}  // namespace mox::tool
