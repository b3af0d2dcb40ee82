#include "tools/entry_target.h"

#include "mox_xmlApi/document/text_format.h"
#include "tools/exit_error.h"
#include "tools/open_document.h"
#include "tools/save_file.h"

namespace mox::tool {

void TargetArguments::AddTo(CLI::App& verb) {
    AddFileArgument(verb, file);
    sectionOption = verb.add_option("--section", section, "Work on this section of a settings file");
}

EntryTarget::EntryTarget(const TargetArguments& arguments)
    : path_(arguments.file.path), document_(ReadDocument(path_, arguments.file.RequestedForm())) {
    if (!arguments.HasSection()) {
        RequireTable(path_, document_);
        model_ = &document_.tables().front();
        return;
    }
    RequireSettings(path_, document_);
    model_ = document_.findTable(arguments.section);
    if (model_ == nullptr)
        throw ExitError(ExitCode::kNotFound, path_ + ": no section " + QuotedIfNeeded(arguments.section));
}

EntryTable& EntryTarget::Entries() {
    if (section_.has_value()) return *section_;
    if (table_.has_value()) return *table_;
    if (document_.kind() == DocumentKind::Table)
        return table_.emplace(OpenTableDocument(path_, document_.form()));
    profile_.emplace(OpenProfile(path_, document_.form()));
    section_ = profile_->findSection(model_->name);
    if (!section_.has_value())
        throw ExitError(ExitCode::kNotFound, path_ + ": no section " + QuotedIfNeeded(model_->name));
    return *section_;
}

void EntryTarget::Save(bool withBackup) {
    if (table_.has_value()) {
        SaveTable(*table_, path_, withBackup);
    } else if (profile_.has_value()) {
        SaveProfile(*profile_, path_, document_.form(), withBackup);
    }
}

}  // namespace mox::tool
