// new, section add|set|rename|copy|remove: create documents, and change what they consist of.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "mox_xmlApi/document/text_edit.hpp"
#include "mox_xmlApi/document/text_format.h"
#include "tools/document_diff.h"
#include "tools/edited_file.h"
#include "tools/exit_error.h"
#include "tools/open_document.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

// The attributes of a section or table besides its name.
struct HeaderArguments {
    std::uint32_t firstId = 0;
    std::uint16_t type = 0;
    bool isEditable = false;
    CLI::Option* firstIdOption = nullptr;  // null until AddTo; belong to the verb, like the next one
    CLI::Option* typeOption = nullptr;

    void AddTo(CLI::App& verb) {
        firstIdOption = verb.add_option("--first-id", firstId, "First id; 0 for none");
        typeOption = verb.add_option("--type-code", type, "Type, a number below 65536");
    }
    bool HasFirstId() const { return firstIdOption->count() > 0; }
    bool HasType() const { return typeOption->count() > 0; }
    TableOptions Options() const {
        TableOptions options;
        options.editable = isEditable;
        options.firstId = firstId;
        options.type = type;
        return options;
    }
};

struct NewArguments {
    EditArguments edit{};
    HeaderArguments header{};
    std::string table{};
    CLI::Option* tableOption = nullptr;
};

struct SectionArguments {
    EditArguments edit{};
    HeaderArguments header{};
    std::string section{};
    std::string newName{};
    bool isNotEditable = false;
};

// Whether the table has this name and these attributes.
bool HasHeader(const DocumentTable* table, const std::string& name, const TableOptions& options) {
    return table != nullptr && table->name == name && table->firstId == options.firstId &&
           table->type == options.type && table->isEditable == options.editable;
}

void RunNew(const NewArguments& arguments, Output& output) {
    const bool isTable = arguments.tableOption->count() > 0;
    const TableOptions options = arguments.header.Options();
    if (!isTable) {
        if (options.editable || arguments.header.HasFirstId() || arguments.header.HasType())
            throw ExitError(ExitCode::kUsageError,
                            "--first-id, --type-code and --editable require --table; a settings document has "
                            "them in its sections");
        EditedFile file(arguments.edit, Profile());
        file.Save(
            [](const Document& after) {
                return after.kind() == DocumentKind::Settings && after.tables().empty();
            },
            output);
        return;
    }
    if (arguments.edit.file.isNarrow) throw ExitError(ExitCode::kUsageError, "a table document must be wide");
    Problem problem;
    Table table = Table::create(arguments.table, options, &problem);
    if (!table) ThrowProblem(arguments.edit.file.path, problem);
    EditedFile file(arguments.edit, std::move(table));
    file.Save(
        [&](const Document& after) {
            return after.kind() == DocumentKind::Table &&
                   HasHeader(&after.tables().front(), arguments.table, options);
        },
        output);
}

// The section as it was read. Throws ExitError if it is missing (kNotFound) or there can be none (kUsageError).
const DocumentTable& RequireSection(const SectionArguments& arguments, const EditedFile& file) {
    RequireSettings(file.Path(), *file.Before());
    const DocumentTable* const section = file.Before()->findTable(arguments.section);
    if (section != nullptr) return *section;
    throw ExitError(ExitCode::kNotFound, file.Path() + ": no section " + QuotedIfNeeded(arguments.section));
}

void RunSectionAdd(const SectionArguments& arguments, Output& output) {
    EditedFile file(arguments.edit);
    Profile& profile = file.Settings();
    if (file.Before()->findTable(arguments.section) != nullptr) {
        throw ExitError(ExitCode::kUsageError, file.Path() + ": there is a section " +
                                                   QuotedIfNeeded(arguments.section) + " already");
    }
    const TableOptions options = arguments.header.Options();
    Problem problem;
    if (!profile.makeSection(arguments.section, options, &problem).has_value()) ThrowRefused(file, problem);
    file.Save(
        [&](const Document& after) {
            return HasHeader(after.findTable(arguments.section), arguments.section, options);
        },
        output);
}

// These three change the text of the file, because the library can neither rename nor copy a section, nor change whether
// one is editable. So nothing else changes, and "eud" stays.

void RunSectionSet(const SectionArguments& arguments, Output& output) {
    const HeaderArguments& header = arguments.header;
    const bool hasEditable = header.isEditable || arguments.isNotEditable;
    if (!header.HasFirstId() && !header.HasType() && !hasEditable)
        throw ExitError(ExitCode::kUsageError,
                        "section set requires --first-id, --type-code, --editable or --no-editable");
    EditedFile file(arguments.edit);
    const DocumentTable& before = RequireSection(arguments, file);
    HeaderChange change;
    if (header.HasFirstId()) change.firstId = header.firstId;
    if (header.HasType()) change.type = header.type;
    if (hasEditable) change.editable = header.isEditable;
    TableOptions options;
    options.editable = change.editable.value_or(before.isEditable);
    options.firstId = change.firstId.value_or(before.firstId);
    options.type = change.type.value_or(before.type);
    file.ChangeText([&](std::string_view bytes, Form form, Problem* problem) {
        return changeSection(bytes, form, arguments.section, change, problem);
    });
    file.Save(
        [&](const Document& after) {
            return HasHeader(after.findTable(arguments.section), arguments.section, options);
        },
        output);
}

// Whether the section has what the other one, of another name, has.
bool HasContentOf(const DocumentTable* table, const DocumentTable& other) {
    if (table == nullptr || FieldsOf(*table) != FieldsOf(other)) return false;
    return std::equal(table->entries.begin(), table->entries.end(), other.entries.begin(),
                      other.entries.end(), [](const DocumentEntry& one, const DocumentEntry& another) {
                          return one.name == another.name && FieldsOf(one) == FieldsOf(another);
                      });
}

using NameChange = std::optional<std::string> (*)(std::string_view bytes, std::optional<Form> form,
                                                  const Text& name, const Text& newName, Problem* problem);

// Renames or copies a section.
void RunNameChange(const SectionArguments& arguments, NameChange change, Output& output) {
    EditedFile file(arguments.edit);
    const DocumentTable& before = RequireSection(arguments, file);
    if (file.Before()->findTable(arguments.newName) != nullptr && !arguments.newName.empty()) {
        throw ExitError(ExitCode::kUsageError, file.Path() + ": there is a section " +
                                                   QuotedIfNeeded(arguments.newName) + " already");
    }
    file.ChangeText([&](std::string_view bytes, Form form, Problem* problem) {
        return change(bytes, form, arguments.section, arguments.newName, problem);
    });
    const std::size_t count = file.Before()->tables().size() + (change == copySection ? 1 : 0);
    file.Save(
        [&](const Document& after) {
            return after.tables().size() == count && HasContentOf(after.findTable(arguments.newName), before);
        },
        output);
}

void RunSectionRemove(const SectionArguments& arguments, Output& output) {
    EditedFile file(arguments.edit);
    Problem problem;
    if (!file.Settings().removeSection(arguments.section, &problem)) {
        if (problem.reason != Reason::NoSuchSection) ThrowRefused(file, problem);
        throw ExitError(ExitCode::kNotFound,
                        file.Path() + ": no section " + QuotedIfNeeded(arguments.section));
    }
    const std::size_t count = file.Before()->tables().size();
    file.Save([count](const Document& after) { return after.tables().size() < count; }, output);
}

std::shared_ptr<SectionArguments> AddSectionVerb(CLI::App& verb) {
    auto arguments = std::make_shared<SectionArguments>();
    arguments->edit.AddTo(verb);
    verb.add_option("SECTION", arguments->section, "The section")->required();
    return arguments;
}

void AddNew(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<NewArguments>();
    CLI::App& verb = AddVerb(app, "new", "Create an empty settings file, or with --table a table file",
                             "mox-xml new camera.xml\nmox-xml new tools.xml --table Tools --first-id 100");
    arguments->edit.AddTo(verb);
    arguments->tableOption =
        verb.add_option("--table", arguments->table, "Create a table file; its table has this name");
    arguments->header.AddTo(verb);
    verb.add_flag("--editable", arguments->header.isEditable, "The table is editable");
    verb.callback([arguments, &output] { RunNew(*arguments, output); });
}

void AddSections(CLI::App& app, Output& output) {
    CLI::App& group =
        AddVerb(app, "section", "Work on one section of a settings file: add, set, rename, copy, remove",
                "mox-xml section add camera.xml Lens\nmox-xml section remove camera.xml Lens");
    group.require_subcommand(1);

    CLI::App& add = AddVerb(group, "add", "Add an empty section",
                            "mox-xml section add camera.xml Lens\n"
                            "mox-xml section add camera.xml Lens --first-id 100 --editable");
    const auto added = AddSectionVerb(add);
    added->header.AddTo(add);
    add.add_flag("--editable", added->header.isEditable, "The section is editable");
    add.callback([added, &output] { RunSectionAdd(*added, output); });

    CLI::App& set = AddVerb(group, "set", "Change the attributes of a section",
                            "mox-xml section set camera.xml Lens --first-id 200\n"
                            "mox-xml section set camera.xml Lens --type-code 16 --editable --backup");
    const auto changed = AddSectionVerb(set);
    changed->header.AddTo(set);
    CLI::Option* const editable =
        set.add_flag("--editable", changed->header.isEditable, "The section becomes editable");
    set.add_flag("--no-editable", changed->isNotEditable, "The section becomes not editable")
        ->excludes(editable);
    set.callback([changed, &output] { RunSectionSet(*changed, output); });

    CLI::App& rename = AddVerb(group, "rename", "Give a section another name, and change nothing else",
                               "mox-xml section rename camera.xml Lens \"Front lens\"\n"
                               "mox-xml section rename camera.xml Lens Optics --backup");
    const auto renamed = AddSectionVerb(rename);
    rename.add_option("NEW", renamed->newName, "The new name")->required();
    rename.callback([renamed, &output] { RunNameChange(*renamed, renameSection, output); });

    CLI::App& copy = AddVerb(group, "copy", "Copy a section with everything in it",
                             "mox-xml section copy camera.xml Lens \"Second lens\"\n"
                             "mox-xml section copy camera.xml Lens Lens2 --backup");
    const auto copied = AddSectionVerb(copy);
    copy.add_option("NEW", copied->newName, "The name of the copy")->required();
    copy.callback([copied, &output] { RunNameChange(*copied, copySection, output); });

    CLI::App& remove = AddVerb(group, "remove", "Remove a section with all its keys",
                               "mox-xml section remove camera.xml Lens\n"
                               "mox-xml section remove camera.xml Lens --backup");
    const auto removed = AddSectionVerb(remove);
    remove.callback([removed, &output] { RunSectionRemove(*removed, output); });
}

}  // namespace

void AddDocumentVerbs(CLI::App& app, Output& output) {
    AddNew(app, output);
    AddSections(app, output);
}

}  // namespace mox::tool
