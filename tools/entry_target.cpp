#include "tools/entry_target.h"

#include "mox_xmlApi/document/text_edit.hpp"
#include "mox_xmlApi/document/text_format.h"
#include "tools/exit_error.h"
#include "tools/open_document.h"

namespace mox::tool {
namespace {

void AddSectionOption(CLI::App& verb, TargetArguments& arguments) {
    arguments.sectionOption =
        verb.add_option("--section", arguments.section, "Work on this section of a settings file");
}

}  // namespace

void TargetArguments::AddForReading(CLI::App& verb) {
    AddFileArgument(verb, edit.file);
    AddSectionOption(verb, *this);
}

void TargetArguments::AddForWriting(CLI::App& verb) {
    edit.AddTo(verb);
    AddSectionOption(verb, *this);
}

const DocumentTable& FindTarget(const TargetArguments& arguments, const Document& document) {
    if (!arguments.HasSection()) {
        RequireTable(arguments.Path(), document);
        return document.tables().front();
    }
    RequireSettings(arguments.Path(), document);
    const DocumentTable* const table = document.findTable(arguments.section);
    if (table == nullptr)
        throw ExitError(ExitCode::kNotFound,
                        arguments.Path() + ": no section " + QuotedIfNeeded(arguments.section));
    return *table;
}

EditedTable::EditedTable(const TargetArguments& arguments) : arguments_(arguments), file_(arguments.edit) {
    if (!arguments.HasSection()) {
        entries_ = &file_.TableDocument();
        return;
    }
    const Profile& profile = file_.Settings();
    static_cast<void>(Before());  // requires the section
    Problem problem;
    section_ = profile.findSection(arguments.section, &problem);
    if (!section_.has_value()) ThrowRefused(problem);
    entries_ = &*section_;
}

void EditedTable::RemovePresentation(const std::string& name) {
    std::optional<Text> section;
    if (arguments_.HasSection()) section = Text(arguments_.section);
    file_.ChangeText([section, name](std::string_view bytes, Form form, Problem* problem) {
        return removePresentation(bytes, form, section, name, problem);
    });
}

void EditedTable::Save(const std::function<bool(const DocumentTable& after)>& holds, Output& output) {
    file_.Save([&](const Document& after) { return holds(FindTarget(arguments_, after)); }, output);
}

}  // namespace mox::tool
