// entries, entry get|set|add|remove: read and change table documents, and sections of settings documents.
#include <memory>

#include "mox_xmlApi/document/text_format.h"
#include "tools/entry_fields.h"
#include "tools/entry_target.h"
#include "tools/json_output.h"
#include "tools/save_file.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct EntryArguments {
    TargetArguments target{};
    EntryFields fields{};
    std::string name{};
    std::string before{};
    bool isJson = false;
    bool withBackup = false;
    bool isAll = false;
};

[[noreturn]] void ThrowNoEntry(const EntryArguments& arguments, const std::string& name) {
    throw ExitError(ExitCode::kNotFound, arguments.target.file.path + ": no entry " + QuotedIfNeeded(name));
}

[[noreturn]] void ThrowNotStored(const EntryArguments& arguments) {
    throw ExitError(ExitCode::kIoError, arguments.target.file.path + ": the table cannot store entry " +
                                            QuotedIfNeeded(arguments.name) +
                                            " with these fields; nothing was changed");
}

void RequireTextsStorable(const EntryArguments& arguments, const EntryTarget& target) {
    RequireStorable(arguments.target.file.path, target.GetForm(), {arguments.name});
    RequireStorable(arguments.target.file.path, target.GetForm(), arguments.fields.Texts());
}

void RunEntries(const EntryArguments& arguments, Output& output) {
    const EntryTarget target(arguments.target);
    Json json = Json::array();
    for (const DocumentEntry& entry : target.Model().entries) {
        if (arguments.isJson) {
            json.push_back(EntryJson(entry));
        } else if (entry.isReadable) {
            output.PrintFields({entry.name, entry.describeType(), entry.effectiveValue()});
        }
    }
    if (arguments.isJson) output.PrintLines(JsonText(json));
}

void RunGet(const EntryArguments& arguments, Output& output) {
    const EntryTarget target(arguments.target);
    const DocumentEntry* const entry = arguments.name.empty() ? nullptr : target.Model().find(arguments.name);
    if (entry == nullptr) ThrowNoEntry(arguments, arguments.name);
    if (arguments.isJson) {
        output.PrintLines(JsonText(EntryJson(*entry)));
    } else {
        output.PrintLine(entry->effectiveValue());
    }
}

void RunSet(const EntryArguments& arguments) {
    if (!arguments.fields.HasValue() && !arguments.fields.HasOthers())
        throw ExitError(ExitCode::kUsageError, "entry set requires a value or another field to change");
    EntryTarget target(arguments.target);
    EntryTable& table = target.Entries();
    std::optional<Entry> entry = table.find(arguments.name);
    if (!entry.has_value()) ThrowNoEntry(arguments, arguments.name);
    RequireTextsStorable(arguments, target);
    bool isStored = true;
    if (arguments.fields.HasOthers()) {
        // A field that is missing here stays as it is in the file.
        if (entry->ui.has_value()) entry->ui->value.reset();
        if (!arguments.fields.HasUi()) entry->ui.reset();
        entry->value.reset();
        arguments.fields.Apply(*entry);
        isStored = table.put(*entry);
    }
    if (isStored && arguments.fields.HasValue())
        isStored = table.setValue(arguments.name, arguments.fields.Value());
    if (!isStored) ThrowNotStored(arguments);
    target.Save(arguments.withBackup);
}

void RunAdd(const EntryArguments& arguments) {
    if (arguments.name.empty()) throw ExitError(ExitCode::kUsageError, "the entry name must not be empty");
    EntryTarget target(arguments.target);
    EntryTable& table = target.Entries();
    if (table.contains(arguments.name)) {
        throw ExitError(ExitCode::kUsageError, arguments.target.file.path + ": entry " +
                                                   QuotedIfNeeded(arguments.name) +
                                                   " already exists (see \"mox-xml entry set\")");
    }
    if (!arguments.before.empty() && !table.find(arguments.before).has_value())
        ThrowNoEntry(arguments, arguments.before);
    RequireTextsStorable(arguments, target);
    Entry entry;
    entry.name = arguments.name;
    entry.value = std::string();
    arguments.fields.Apply(entry);
    const bool isStored =
        arguments.before.empty() ? table.add(entry) : table.addBefore(arguments.before, entry);
    if (!isStored) ThrowNotStored(arguments);
    target.Save(arguments.withBackup);
}

void RunRemove(const EntryArguments& arguments) {
    EntryTarget target(arguments.target);
    EntryTable& table = target.Entries();
    const bool isRemoved = arguments.isAll ? table.removeAll(arguments.name) : table.remove(arguments.name);
    if (!isRemoved) ThrowNoEntry(arguments, arguments.name);
    target.Save(arguments.withBackup);
}

void AddName(CLI::App& verb, EntryArguments& arguments) {
    verb.add_option("NAME", arguments.name, "The entry")->required();
}

// Each verb has its own arguments, because their options tell which of them were given.
std::shared_ptr<EntryArguments> AddReadingVerb(CLI::App& verb, Output& output) {
    auto arguments = std::make_shared<EntryArguments>();
    arguments->target.AddTo(verb);
    AddItemOptions(verb, arguments->isJson, output);
    return arguments;
}

std::shared_ptr<EntryArguments> AddWritingVerb(CLI::App& verb) {
    auto arguments = std::make_shared<EntryArguments>();
    arguments->target.AddTo(verb);
    AddName(verb, *arguments);
    AddBackupOption(verb, arguments->withBackup);
    return arguments;
}

void AddEntrySet(CLI::App& group) {
    CLI::App& set = AddVerb(group, "set", "Change an entry",
                            "mox-xml entry set tools.xml \"Drill 3\" 3.2\n"
                            "mox-xml entry set tools.xml \"Drill 3\" --comment \"diameter in mm\"");
    const auto arguments = AddWritingVerb(set);
    arguments->fields.AddTo(set);
    set.callback([arguments] { RunSet(*arguments); });
}

void AddEntryAdd(CLI::App& group) {
    CLI::App& add = AddVerb(group, "add", "Add an entry, at the end or before another one",
                            "mox-xml entry add tools.xml \"Drill 4\" 4.0 --type double --id 2\n"
                            "mox-xml entry add tools.xml \"Drill 2\" 2.0 --before \"Drill 3\"");
    const auto arguments = AddWritingVerb(add);
    arguments->fields.AddTo(add);
    add.add_option("--before", arguments->before, "Insert before this entry");
    add.callback([arguments] { RunAdd(*arguments); });
}

void AddEntryRemove(CLI::App& group) {
    CLI::App& remove = AddVerb(group, "remove", "Remove an entry",
                               "mox-xml entry remove tools.xml \"Drill 3\"\n"
                               "mox-xml entry remove tools.xml \"Drill 3\" --all --backup");
    const auto arguments = AddWritingVerb(remove);
    remove.add_flag("--all", arguments->isAll, "Remove all entries of that name, not only the first");
    remove.callback([arguments] { RunRemove(*arguments); });
}

}  // namespace

void AddEntryVerbs(CLI::App& app, Output& output) {
    CLI::App& entries =
        AddVerb(app, "entries", "List the entries of a table file: name, type and value, tab-separated",
                "mox-xml entries tools.xml\nmox-xml entries camera.xml --section Camera --json");
    const auto listed = AddReadingVerb(entries, output);
    entries.callback([listed, &output] { RunEntries(*listed, output); });

    CLI::App& group = AddVerb(app, "entry", "Work on one entry of a table file: get, set, add, remove",
                              "mox-xml entry get tools.xml \"Drill 3\"\n"
                              "mox-xml entry set tools.xml \"Drill 3\" 3.2");
    group.require_subcommand(1);
    CLI::App& get = AddVerb(group, "get", "Print the value of an entry; with --json the whole entry",
                            "mox-xml entry get tools.xml \"Drill 3\"\n"
                            "mox-xml entry get camera.xml Gain --section Camera --json");
    const auto read = AddReadingVerb(get, output);
    AddName(get, *read);
    get.callback([read, &output] { RunGet(*read, output); });
    AddEntrySet(group);
    AddEntryAdd(group);
    AddEntryRemove(group);
}

}  // namespace mox::tool
