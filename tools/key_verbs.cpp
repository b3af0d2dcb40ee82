// sections, keys, get: read settings documents.
#include <memory>

#include "mox_xmlApi/document/text_format.h"
#include "tools/command_line.h"
#include "tools/json_output.h"
#include "tools/open_document.h"
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

void PrintNames(Output& output, const std::vector<std::string>& names, bool isJson) {
    if (isJson) {
        output.PrintLines(JsonText(names));
        return;
    }
    for (const std::string& name : names)
        output.PrintLine(name);
}

void RunSections(const KeyArguments& arguments, Output& output) {
    const Document document = ReadDocument(arguments.file.path, arguments.file.RequestedForm());
    RequireSettings(arguments.file.path, document);
    std::vector<std::string> names;
    for (const DocumentTable& table : document.tables()) {
        if (table.isTable && table.hasName) names.push_back(table.name);
    }
    PrintNames(output, names, arguments.isJson);
}

void RunKeys(const KeyArguments& arguments, Output& output) {
    const Document document = ReadDocument(arguments.file.path, arguments.file.RequestedForm());
    RequireSettings(arguments.file.path, document);
    const DocumentTable* const section = document.findTable(arguments.section);
    if (section == nullptr)
        throw ExitError(ExitCode::kNotFound,
                        arguments.file.path + ": no section " + QuotedIfNeeded(arguments.section));
    std::vector<std::string> names;
    for (const DocumentEntry& entry : section->entries) {
        if (entry.isReadable && !entry.name.empty()) names.push_back(entry.name);
    }
    PrintNames(output, names, arguments.isJson);
}

void RunGet(const KeyArguments& arguments, Output& output) {
    const Document document = ReadDocument(arguments.file.path, arguments.file.RequestedForm());
    RequireSettings(arguments.file.path, document);
    const DocumentEntry* const entry =
        arguments.key.empty() ? nullptr : document.findEntry(arguments.section, arguments.key);
    std::optional<std::string> value;
    if (entry != nullptr) value = entry->effectiveValue();
    if (!value.has_value() && arguments.hasDefault) value = arguments.defaultValue;
    if (!value.has_value()) {
        throw ExitError(ExitCode::kNotFound, arguments.file.path + ": no key " +
                                                 QuotedIfNeeded(arguments.section) + "/" +
                                                 QuotedIfNeeded(arguments.key));
    }
    if (arguments.isJson) {
        output.PrintLines(JsonText(*value));
    } else {
        output.PrintLine(*value);
    }
}

}  // namespace

void AddKeyVerbs(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<KeyArguments>();

    CLI::App& sections = AddVerb(app, "sections", "List the sections of a settings file, one per line",
                                 "mox-xml sections camera.xml\nmox-xml sections camera.xml --json");
    AddFileArgument(sections, arguments->file);
    AddItemOptions(sections, arguments->isJson, output);
    sections.callback([arguments, &output] { RunSections(*arguments, output); });

    CLI::App& keys = AddVerb(app, "keys", "List the keys of a section, one per line",
                             "mox-xml keys camera.xml Camera\nmox-xml keys camera.xml \"Front lens\" --json");
    AddFileArgument(keys, arguments->file);
    keys.add_option("SECTION", arguments->section, "The section")->required();
    AddItemOptions(keys, arguments->isJson, output);
    keys.callback([arguments, &output] { RunKeys(*arguments, output); });

    CLI::App& get = AddVerb(app, "get", "Print the value of a key",
                            "mox-xml get camera.xml Camera Exposure\n"
                            "mox-xml get camera.xml Camera Exposure --default 1000");
    AddFileArgument(get, arguments->file);
    get.add_option("SECTION", arguments->section, "The section")->required();
    get.add_option("KEY", arguments->key, "The key")->required();
    CLI::Option* const defaultValue =
        get.add_option("--default", arguments->defaultValue, "Print this if there is no such key");
    AddItemOptions(get, arguments->isJson, output);
    get.callback([arguments, defaultValue, &output] {
        arguments->hasDefault = defaultValue->count() > 0;
        RunGet(*arguments, output);
    });
}

}  // namespace mox::tool
