// new, section add|remove|set: create documents, and change what they consist of.
#include <cstdint>
#include <memory>
#include <utility>

#include "mox_xmlApi/document/text_format.h"
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
    EditedFile file(arguments.edit, Table::create(arguments.table, options));
    file.Save(
        [&](const Document& after) {
            return after.kind() == DocumentKind::Table &&
                   HasHeader(&after.tables().front(), arguments.table, options);
        },
        output);
}

// Gives a section the attributes, and saves the file.
void WriteSection(const SectionArguments& arguments, EditedFile& file, const TableOptions& options,
                  Output& output) {
    Problem problem;
    if (!file.Settings().makeSection(arguments.section, options, &problem).has_value())
        ThrowRefused(file, problem);
    file.Save(
        [&](const Document& after) {
            return HasHeader(after.findTable(arguments.section), arguments.section, options);
        },
        output);
}

void RunSectionAdd(const SectionArguments& arguments, Output& output) {
    EditedFile file(arguments.edit);
    static_cast<void>(file.Settings());
    if (file.Before()->findTable(arguments.section) != nullptr) {
        throw ExitError(ExitCode::kUsageError, file.Path() + ": there is a section " +
                                                   QuotedIfNeeded(arguments.section) + " already");
    }
    WriteSection(arguments, file, arguments.header.Options(), output);
}

void RunSectionSet(const SectionArguments& arguments, Output& output) {
    if (!arguments.header.HasFirstId() && !arguments.header.HasType())
        throw ExitError(ExitCode::kUsageError, "section set requires --first-id or --type-code");
    EditedFile file(arguments.edit);
    static_cast<void>(file.Settings());
    const DocumentTable* const before = file.Before()->findTable(arguments.section);
    if (before == nullptr)
        throw ExitError(ExitCode::kNotFound,
                        file.Path() + ": no section " + QuotedIfNeeded(arguments.section));
    TableOptions options;
    options.editable = before->isEditable;
    options.firstId = arguments.header.HasFirstId() ? arguments.header.firstId : before->firstId;
    options.type = arguments.header.HasType() ? arguments.header.type : before->type;
    WriteSection(arguments, file, options, output);
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
    CLI::App& group = AddVerb(app, "section", "Work on one section of a settings file: add, set, remove",
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
                            "mox-xml section set camera.xml Lens --type-code 16 --backup");
    const auto changed = AddSectionVerb(set);
    changed->header.AddTo(set);
    set.callback([changed, &output] { RunSectionSet(*changed, output); });

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
