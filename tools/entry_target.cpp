#include "tools/entry_target.h"

#include "tools/outcome.h"
#include "tools/saving.h"
#include "tools/shown_text.h"

namespace mox::tool {

void TargetArguments::AddTo(CLI::App& verb) {
    AddFile(verb, file);
    sectionOption = verb.add_option("--section", section, "Of a settings file: the section's name");
}

EntryTarget::EntryTarget(const TargetArguments& arguments)
    : source_(arguments.file.path, arguments.file.ForcedForm()) {
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
        throw Stop(ExitCode::kNotFound, source_.Path() + ": no section " + ShownName(arguments.section));
}

EntryTable& EntryTarget::Entries() {
    if (section_.has_value()) return *section_;
    if (table_.has_value()) return *table_;
    if (document_.kind == DocumentKind::Table) return table_.emplace(OpenTableDocument(source_));
    profile_.emplace(OpenProfile(source_));
    section_ = profile_->findSection(model_->name);
    if (!section_.has_value())
        throw Stop(ExitCode::kNotFound, source_.Path() + ": no section " + ShownName(model_->name));
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
