#include "tools/entry_target.h"

#include "tools/exit_error.h"
#include "tools/open_document.h"
#include "tools/save_file.h"
#include "tools/text_format.h"

namespace mox::tool {

void TargetArguments::AddTo(CLI::App& verb) {
    AddFileArgument(verb, file);
    sectionOption = verb.add_option("--section", section, "Work on this section of a settings file");
}

EntryTarget::EntryTarget(const TargetArguments& arguments)
    : source_(arguments.file.path, arguments.file.RequestedForm()) {
    source_.RequireParsed();
    document_ = ReadDocument(source_);
    if (!arguments.HasSection()) {
        RequireTable(source_, document_);
        model_ = &document_.tables.front();
        return;
    }
    RequireSettings(source_, document_);
    model_ = FindTable(document_, arguments.section);
    if (model_ == nullptr)
        throw ExitError(ExitCode::kNotFound,
                        source_.Path() + ": no section " + QuotedIfNeeded(arguments.section));
}

EntryTable& EntryTarget::Entries() {
    if (section_.has_value()) return *section_;
    if (table_.has_value()) return *table_;
    if (document_.kind == DocumentKind::Table) return table_.emplace(OpenTableDocument(source_));
    profile_.emplace(OpenProfile(source_));
    section_ = profile_->findSection(model_->name);
    if (!section_.has_value())
        throw ExitError(ExitCode::kNotFound, source_.Path() + ": no section " + QuotedIfNeeded(model_->name));
    return *section_;
}

void EntryTarget::Save(bool withBackup) {
    if (table_.has_value()) {
        SaveTable(*table_, source_.Path(), withBackup);
    } else if (profile_.has_value()) {
        SaveProfile(*profile_, source_.Path(), source_.GetForm(), withBackup);
    }
}

}  // namespace mox::tool
