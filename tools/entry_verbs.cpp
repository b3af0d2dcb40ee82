// entries, entry get|set|add|rename|remove: read and change table documents, and sections of settings documents.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "mox_xmlApi/document/text_format.h"
#include "tools/entry_fields.h"
#include "tools/entry_target.h"
#include "tools/json_output.h"
#include "tools/open_document.h"
#include "tools/value_check.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct EntryArguments {
    TargetArguments target{};
    EntryFields fields{};
    ValueCheck check{};
    std::string name{};
    std::string newName{};
    std::string before{};
    bool isJson = false;
    bool isAll = false;
    bool isWithoutUi = false;
};

[[noreturn]] void ThrowNoEntry(const EntryArguments& arguments, const std::string& name) {
    throw ExitError(ExitCode::kNotFound, arguments.target.Path() + ": no entry " + QuotedIfNeeded(name));
}

// Ends the verb with the problem about the entry.
[[noreturn]] void ThrowRefused(const EntryArguments& arguments, const EditedTable& table,
                               const std::string& name, const Problem& problem) {
    if (problem.reason == Reason::NoSuchKey) ThrowNoEntry(arguments, name);
    table.ThrowRefused(problem);
}

Document Read(const TargetArguments& target) {
    return ReadDocument(target.Path(), target.edit.file.RequestedForm());
}

void RunEntries(const EntryArguments& arguments, Output& output) {
    const Document document = Read(arguments.target);
    Json json = Json::array();
    for (const DocumentEntry& entry : FindTarget(arguments.target, document).entries) {
        if (arguments.isJson) {
            json.push_back(EntryJson(entry));
        } else if (entry.isReadable) {
            output.PrintFields({entry.name, entry.describeType(), entry.effectiveValue()});
        }
    }
    if (arguments.isJson) output.PrintLines(JsonText(json));
}

void RunGet(const EntryArguments& arguments, Output& output) {
    const Document document = Read(arguments.target);
    const DocumentTable& table = FindTarget(arguments.target, document);
    const DocumentEntry* const entry = arguments.name.empty() ? nullptr : table.find(arguments.name);
    if (entry == nullptr) ThrowNoEntry(arguments, arguments.name);
    if (arguments.isJson) {
        output.PrintLines(JsonText(EntryJson(*entry)));
    } else {
        output.PrintLine(entry->effectiveValue());
    }
}

// Saves the file with an entry that has these fields and, unless it is null, this value. Without presentation data, if
// the user asks for that.
void SaveEntry(const EntryArguments& arguments, EditedTable& edited, const std::string* value,
               Output& output) {
    if (arguments.isWithoutUi) edited.RemovePresentation(arguments.name);
    edited.Save(
        [&](const DocumentTable& after) {
            const DocumentEntry* const entry = after.find(arguments.name);
            if (entry == nullptr || !arguments.fields.AreIn(*entry) ||
                (value != nullptr && entry->effectiveValue() != *value) ||
                (arguments.isWithoutUi && entry->ui != nullptr))
                return false;
            if (value != nullptr || arguments.fields.HasOthers())
                arguments.check.Run(arguments.target.Path(), *entry, output);
            return true;
        },
        output);
}

void RequireNoUi(const EntryArguments& arguments) {
    if (arguments.isWithoutUi && arguments.fields.HasPresentation())
        throw ExitError(ExitCode::kUsageError, "--no-ui excludes the options for presentation data");
}

// The entry as it is, without what need not be written again. An entry without a known type can be given one.
Entry FindForChange(const EntryArguments& arguments, const EditedTable& edited, EntryTable& table) {
    Problem problem;
    std::optional<Entry> entry = table.find(arguments.name, &problem);
    if (!entry.has_value()) {
        if (problem.reason != Reason::Unreadable || !arguments.fields.HasType())
            ThrowRefused(arguments, edited, arguments.name, problem);
        entry.emplace().name = arguments.name;
    }
    entry->value.reset();
    if (entry->ui.has_value()) entry->ui->value.reset();
    return *std::move(entry);
}

void RunSet(const EntryArguments& arguments, Output& output) {
    const EntryFields& fields = arguments.fields;
    const bool hasValue = fields.Value().IsGiven();
    RequireNoUi(arguments);
    if (!hasValue && !fields.HasOthers() && !fields.HasCleared() && !arguments.isWithoutUi)
        throw ExitError(ExitCode::kUsageError, "entry set requires a value or another field to change");
    EditedTable edited(arguments.target);
    EntryTable& table = edited.Entries();
    Entry entry = FindForChange(arguments, edited, table);
    std::optional<std::string> value;
    if (hasValue) value = fields.Value().Read();
    Problem problem;
    bool isDone = true;
    if (fields.HasOthers()) {
        std::optional<Presentation> ui;
        ui.swap(entry.ui);
        fields.Apply(entry);
        if (entry.ui.has_value()) {  // some of it is changed
            entry.ui = ui;
            fields.Apply(entry);
        }
        isDone = table.put(entry, Eud::DoNotSet, &problem);
    }
    isDone = isDone && fields.Clear(table, arguments.name, problem);
    if (isDone && hasValue) isDone = table.setValue(arguments.name, *value, Eud::DoNotSet, &problem);
    if (!isDone) ThrowRefused(arguments, edited, arguments.name, problem);
    const std::string* const written = hasValue ? &*value : nullptr;
    SaveEntry(arguments, edited, written, output);
}

void RunAdd(const EntryArguments& arguments, Output& output) {
    if (arguments.name.empty()) throw ExitError(ExitCode::kUsageError, "the entry name must not be empty");
    const bool hasValue = arguments.fields.Value().IsGiven();
    RequireNoUi(arguments);
    EditedTable edited(arguments.target);
    EntryTable& table = edited.Entries();
    Entry entry;
    entry.name = arguments.name;
    arguments.fields.Apply(entry);
    entry.value = hasValue ? arguments.fields.Value().Read() : std::string();
    Problem problem;
    const bool isAdded = arguments.before.empty()
                             ? table.add(entry, Eud::DoNotSet, &problem)
                             : table.addBefore(arguments.before, entry, Eud::DoNotSet, &problem);
    if (!isAdded) ThrowRefused(arguments, edited, arguments.before, problem);
    const std::string* const written = hasValue ? &*entry.value : nullptr;
    SaveEntry(arguments, edited, written, output);
}

void RunRename(const EntryArguments& arguments, Output& output) {
    EditedTable edited(arguments.target);
    Problem problem;
    if (!edited.Entries().rename(arguments.name, arguments.newName, &problem))
        ThrowRefused(arguments, edited, arguments.name, problem);
    const DocumentEntry* const before = edited.Before().find(arguments.name);
    edited.Save(
        [&](const DocumentTable& after) {
            const DocumentEntry* const renamed = after.find(arguments.newName);
            return renamed != nullptr && before != nullptr &&
                   renamed->effectiveValue() == before->effectiveValue();
        },
        output);
}

std::size_t CountNamed(const DocumentTable& table, const std::string& name) {
    return static_cast<std::size_t>(std::count_if(
        table.entries.begin(), table.entries.end(),
        [&](const DocumentEntry& entry) { return (entry.hasName || name.empty()) && entry.name == name; }));
}

void RunRemove(const EntryArguments& arguments, Output& output) {
    EditedTable edited(arguments.target);
    EntryTable& table = edited.Entries();
    Problem problem;
    const bool isRemoved = arguments.isAll ? table.removeAll(arguments.name, &problem)
                                           : table.remove(arguments.name, 0, &problem);
    if (!isRemoved) ThrowRefused(arguments, edited, arguments.name, problem);
    const std::size_t count = CountNamed(edited.Before(), arguments.name);
    edited.Save(
        [&](const DocumentTable& after) {
            const std::size_t left = CountNamed(after, arguments.name);
            return arguments.isAll ? left == 0 : left < count;
        },
        output);
}

void AddName(CLI::App& verb, EntryArguments& arguments) {
    verb.add_option("NAME", arguments.name, "The entry")->required();
}

// Each verb has its own arguments, because their options tell which of them were given.
std::shared_ptr<EntryArguments> AddReadingVerb(CLI::App& verb, Output& output) {
    auto arguments = std::make_shared<EntryArguments>();
    arguments->target.AddForReading(verb);
    AddItemOptions(verb, arguments->isJson, output);
    return arguments;
}

std::shared_ptr<EntryArguments> AddWritingVerb(CLI::App& verb) {
    auto arguments = std::make_shared<EntryArguments>();
    arguments->target.AddForWriting(verb);
    AddName(verb, *arguments);
    return arguments;
}

void AddEntrySet(CLI::App& group, Output& output) {
    CLI::App& set = AddVerb(group, "set", "Change an entry",
                            "mox-xml entry set tools.xml \"Drill 3\" 3.2\n"
                            "mox-xml entry set tools.xml \"Drill 3\" --comment \"diameter in mm\"");
    const auto arguments = AddWritingVerb(set);
    arguments->fields.AddTo(set);
    arguments->check.AddTo(set);
    set.add_flag("--no-ui", arguments->isWithoutUi,
                 "Remove the presentation data; a value that only they have becomes that of the entry");
    set.callback([arguments, &output] { RunSet(*arguments, output); });
}

void AddEntryAdd(CLI::App& group, Output& output) {
    CLI::App& add = AddVerb(group, "add", "Add an entry, at the end or before another one",
                            "mox-xml entry add tools.xml \"Drill 4\" 4.0 --type double --id 2\n"
                            "mox-xml entry add tools.xml \"Drill 2\" 2.0 --before \"Drill 3\"");
    const auto arguments = AddWritingVerb(add);
    arguments->fields.AddTo(add);
    arguments->check.AddTo(add);
    add.add_flag("--no-ui", arguments->isWithoutUi,
                 "Add no presentation data, even in a table that keeps its values there");
    add.add_option("--before", arguments->before, "Insert before this entry");
    add.callback([arguments, &output] { RunAdd(*arguments, output); });
}

void AddEntryRename(CLI::App& group, Output& output) {
    CLI::App& rename = AddVerb(group, "rename", "Give an entry another name, in its place",
                               "mox-xml entry rename tools.xml \"Drill 3\" \"Drill 4\"\n"
                               "mox-xml entry rename camera.xml Gain Amplification --section Camera");
    const auto arguments = AddWritingVerb(rename);
    rename.add_option("NEW", arguments->newName, "The new name")->required();
    rename.callback([arguments, &output] { RunRename(*arguments, output); });
}

void AddEntryRemove(CLI::App& group, Output& output) {
    CLI::App& remove = AddVerb(group, "remove", "Remove an entry",
                               "mox-xml entry remove tools.xml \"Drill 3\"\n"
                               "mox-xml entry remove tools.xml \"Drill 3\" --all --backup");
    const auto arguments = AddWritingVerb(remove);
    remove.add_flag("--all", arguments->isAll, "Remove all entries of that name, not only the first");
    remove.callback([arguments, &output] { RunRemove(*arguments, output); });
}

}  // namespace

void AddEntryVerbs(CLI::App& app, Output& output) {
    CLI::App& entries =
        AddVerb(app, "entries", "List the entries of a table file: name, type and value, tab-separated",
                "mox-xml entries tools.xml\nmox-xml entries camera.xml --section Camera --json");
    const auto listed = AddReadingVerb(entries, output);
    entries.callback([listed, &output] { RunEntries(*listed, output); });

    CLI::App& group =
        AddVerb(app, "entry", "Work on one entry of a table file: get, set, add, rename, remove",
                "mox-xml entry get tools.xml \"Drill 3\"\n"
                "mox-xml entry set tools.xml \"Drill 3\" 3.2");
    group.require_subcommand(1);
    CLI::App& get = AddVerb(group, "get", "Print the value of an entry; with --json the whole entry",
                            "mox-xml entry get tools.xml \"Drill 3\"\n"
                            "mox-xml entry get camera.xml Gain --section Camera --json");
    const auto read = AddReadingVerb(get, output);
    AddName(get, *read);
    get.callback([read, &output] { RunGet(*read, output); });
    AddEntrySet(group, output);
    AddEntryAdd(group, output);
    AddEntryRename(group, output);
    AddEntryRemove(group, output);
}

}  // namespace mox::tool
