// entries, entry get|set|add|remove: table documents, and sections taken as tables.
#include <memory>

#include "tools/entry_fields.h"
#include "tools/entry_target.h"
#include "tools/json_output.h"
#include "tools/saving.h"
#include "tools/shown_text.h"
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
    bool all = false;
};

[[noreturn]] void NoEntry(const EntryArguments& arguments, const std::string& name) {
    throw Stop(ExitCode::kNotFound, arguments.target.file.path + ": no entry " + ShownName(name));
}

[[noreturn]] void NotStored(const EntryArguments& arguments) {
    throw Stop(ExitCode::kNoAccess, arguments.target.file.path + ": the table cannot hold entry " +
                                        ShownName(arguments.name) + " like this; nothing was changed");
}

void RequireTextsKept(const EntryArguments& arguments, const EntryTarget& target) {
    RequireKept(arguments.target.file.path, target.GetForm(), {arguments.name});
    for (const std::string& text : arguments.fields.Texts())
        RequireKept(arguments.target.file.path, target.GetForm(), {text});
}

void Entries(const EntryArguments& arguments, Session& session) {
    const EntryTarget target(arguments.target);
    Json json = Json::array();
    for (const EntryModel& entry : target.Model().entries) {
        if (arguments.isJson) {
            json.push_back(EntryJson(entry));
        } else if (entry.isReadable) {
            session.Line(entry.name + "\t" + TypeText(entry) + "\t" + EffectiveValue(entry));
        }
    }
    if (arguments.isJson) session.out += JsonText(json);
}

void Get(const EntryArguments& arguments, Session& session) {
    const EntryTarget target(arguments.target);
    for (const EntryModel& entry : target.Model().entries) {
        if (!entry.isReadable || !entry.hasName || entry.name != arguments.name) continue;
        if (arguments.isJson) {
            session.out += JsonText(EntryJson(entry));
        } else {
            session.Line(EffectiveValue(entry));
        }
        return;
    }
    NoEntry(arguments, arguments.name);
}

void Set(const EntryArguments& arguments) {
    if (!arguments.fields.HasValue() && !arguments.fields.HasOthers())
        throw Stop(ExitCode::kUsage, "entry set wants a value or something else to change");
    EntryTarget target(arguments.target);
    EntryTable& table = target.Entries();
    std::optional<Entry> entry = table.find(arguments.name);
    if (!entry.has_value()) NoEntry(arguments, arguments.name);
    RequireTextsKept(arguments, target);
    bool isStored = true;
    if (arguments.fields.HasOthers()) {
        // What was not given is left out, so that it stays as it is in the file.
        if (entry->ui.has_value()) entry->ui->value.reset();
        if (!arguments.fields.HasUi()) entry->ui.reset();
        entry->value.reset();
        arguments.fields.Apply(*entry);
        isStored = table.put(*entry);
    }
    if (isStored && arguments.fields.HasValue())
        isStored = table.setValue(arguments.name, arguments.fields.Value());
    if (!isStored) NotStored(arguments);
    target.Save(arguments.withBackup);
}

void Add(const EntryArguments& arguments) {
    if (arguments.name.empty()) throw Stop(ExitCode::kUsage, "an entry has a name");
    EntryTarget target(arguments.target);
    EntryTable& table = target.Entries();
    if (table.contains(arguments.name)) {
        throw Stop(ExitCode::kUsage, arguments.target.file.path + ": there is an entry " +
                                         ShownName(arguments.name) + " already; see \"entry set\"");
    }
    if (!arguments.before.empty() && !table.find(arguments.before).has_value())
        NoEntry(arguments, arguments.before);
    RequireTextsKept(arguments, target);
    Entry entry;
    entry.name = arguments.name;
    entry.value = std::string();
    arguments.fields.Apply(entry);
    const bool isStored =
        arguments.before.empty() ? table.add(entry) : table.addBefore(arguments.before, entry);
    if (!isStored) NotStored(arguments);
    target.Save(arguments.withBackup);
}

void Remove(const EntryArguments& arguments) {
    EntryTarget target(arguments.target);
    EntryTable& table = target.Entries();
    const bool isRemoved = arguments.all ? table.removeAll(arguments.name) : table.remove(arguments.name);
    if (!isRemoved) NoEntry(arguments, arguments.name);
    target.Save(arguments.withBackup);
}

void AddName(CLI::App& verb, EntryArguments& arguments) {
    verb.add_option("NAME", arguments.name, "The entry's name")->required();
}

// Each verb has arguments of its own, since their options are asked whether they were given.
std::shared_ptr<EntryArguments> AddReadingVerb(CLI::App& verb) {
    auto arguments = std::make_shared<EntryArguments>();
    arguments->target.AddTo(verb);
    AddJson(verb, arguments->isJson);
    return arguments;
}

std::shared_ptr<EntryArguments> AddWritingVerb(CLI::App& verb) {
    auto arguments = std::make_shared<EntryArguments>();
    arguments->target.AddTo(verb);
    AddName(verb, *arguments);
    AddBackup(verb, arguments->withBackup);
    return arguments;
}

void AddSet(CLI::App& group) {
    CLI::App& set = AddVerb(group, "set", "Change an entry",
                            "mox-xml entry set tools.xml \"Drill 3\" 3.2\n"
                            "mox-xml entry set tools.xml \"Drill 3\" --comment \"diameter in mm\"");
    const auto arguments = AddWritingVerb(set);
    arguments->fields.AddTo(set);
    set.callback([arguments] { Set(*arguments); });
}

void AddAdd(CLI::App& group) {
    CLI::App& add = AddVerb(group, "add", "Add an entry at the end, or before another one",
                            "mox-xml entry add tools.xml \"Drill 4\" 4.0 --type double --id 2\n"
                            "mox-xml entry add tools.xml \"Drill 2\" 2.0 --before \"Drill 3\"");
    const auto arguments = AddWritingVerb(add);
    arguments->fields.AddTo(add);
    add.add_option("--before", arguments->before, "The entry that is to come next");
    add.callback([arguments] { Add(*arguments); });
}

void AddRemove(CLI::App& group) {
    CLI::App& remove = AddVerb(group, "remove", "Remove an entry",
                               "mox-xml entry remove tools.xml \"Drill 3\"\n"
                               "mox-xml entry remove tools.xml \"Drill 3\" --all --backup");
    const auto arguments = AddWritingVerb(remove);
    remove.add_flag("--all", arguments->all, "Every entry of that name, not the first alone");
    remove.callback([arguments] { Remove(*arguments); });
}

}  // namespace

void AddEntryVerbs(CLI::App& app, Session& session) {
    CLI::App& entries =
        AddVerb(app, "entries", "The entries of a table file: name, type and value, parted by tabs",
                "mox-xml entries tools.xml\nmox-xml entries camera.xml --section Camera --json");
    const auto listed = AddReadingVerb(entries);
    entries.callback([listed, &session] { Entries(*listed, session); });

    CLI::App& group = AddVerb(app, "entry", "One entry of a table file: get, set, add, remove",
                              "mox-xml entry get tools.xml \"Drill 3\"\n"
                              "mox-xml entry set tools.xml \"Drill 3\" 3.2");
    group.require_subcommand(1);
    CLI::App& get = AddVerb(group, "get", "The value of an entry; with --json the whole entry",
                            "mox-xml entry get tools.xml \"Drill 3\"\n"
                            "mox-xml entry get camera.xml Gain --section Camera --json");
    const auto read = AddReadingVerb(get);
    AddName(get, *read);
    get.callback([read, &session] { Get(*read, session); });
    AddSet(group);
    AddAdd(group);
    AddRemove(group);
}

}  // namespace mox::tool
