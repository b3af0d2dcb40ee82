#include "tools/edited_file.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "mox_xmlApi/disk/read_file.hpp"
#include "tools/exit_error.h"
#include "tools/open_document.h"
#include "tools/save_file.h"

namespace mox::tool {
namespace {

// How many sections and entries have "eud" in one document and are there without it in the other, leaving out the
// entries whose "eud" was to be changed.
std::size_t CountLostEud(const Document& before, const Document& after, const std::set<std::string>& asked) {
    std::size_t count = 0;
    for (const DocumentTable& table : before.tables()) {
        if (before.findTable(table.name) != &table) continue;
        const DocumentTable* const left = after.findTable(table.name);
        if (left == nullptr) continue;
        if (table.hasEud && !left->hasEud && asked.empty()) ++count;
        for (const DocumentEntry& entry : table.entries) {
            if (!entry.hasEud || asked.count(entry.name) != 0) continue;
            const DocumentEntry* const leftEntry = left->findElement(entry.name);
            if (leftEntry != nullptr && !leftEntry->hasEud) ++count;
        }
    }
    return count;
}

// Whether the text has become another one only by white space that the layout of the file has added to its line breaks.
bool HasMoreSpace(const std::string& before, const std::string& after) {
    if (before == after || after.find('\n') == std::string::npos) return false;
    const auto withoutSpace = [](std::string text) {
        text.erase(
            std::remove_if(text.begin(), text.end(),
                           [](char character) { return std::strchr(" \t\r\n", character) != nullptr; }),
            text.end());
        return text;
    };
    return withoutSpace(before) == withoutSpace(after);
}

// How many values and comments of one document have more white space in the other.
std::size_t CountAddedSpace(const Document& before, const Document& after) {
    const DocumentPresentation none;
    std::size_t count = 0;
    for (const DocumentTable& table : before.tables()) {
        const DocumentTable* const left = after.findTable(table.name);
        if (left == nullptr) continue;
        for (const DocumentEntry& entry : table.entries) {
            if (table.find(entry.name) != &entry) continue;
            const DocumentEntry* const leftEntry = left->find(entry.name);
            if (leftEntry == nullptr) continue;
            const DocumentPresentation& ui = entry.ui == nullptr ? none : *entry.ui;
            const DocumentPresentation& leftUi = leftEntry->ui == nullptr ? none : *leftEntry->ui;
            if (HasMoreSpace(entry.value, leftEntry->value)) ++count;
            if (HasMoreSpace(ui.value, leftUi.value)) ++count;
            if (HasMoreSpace(ui.comment, leftUi.comment)) ++count;
        }
    }
    return count;
}

// Prints "<what> <count> <one>" or, unless it is one, "... <several>".
void PrintNote(const std::string& path, const char* what, std::size_t count, const char* one,
               const char* several, Output& output) {
    if (count == 0) return;
    output.PrintMessage(path + ": note: saving " + what + " " + std::to_string(count) + " " +
                        (count == 1 ? one : several));
}

}  // namespace

void EditArguments::AddTo(CLI::App& verb) {
    AddFileArgument(verb, file);
    AddBackupOption(verb, withBackup);
    verb.add_flag("--overwrite", mayOverwrite,
                  "Replace the file even if another program has changed it in the meantime");
    lock.AddTo(verb);
}

EditedFile::EditedFile(const EditArguments& arguments, Missing missing)
    : arguments_(arguments), missing_(missing) {
    RefuseStdin(Path());
    Lock();
    Problem problem;
    std::optional<std::string> bytes = readFile(Path(), &stamp_, &problem);
    if (!bytes.has_value()) {
        if (problem.reason != Reason::NotFound || missing == Missing::Refuse) ThrowUnread(Path(), problem);
        profile_.emplace();
        profile_->setForm(arguments.file.RequestedForm().value_or(Form::Wide));
        return;
    }
    bytes_ = std::move(*bytes);
    before_.emplace(ParseDocument(Path(), bytes_, arguments.file.RequestedForm()));
}

EditedFile::EditedFile(const EditArguments& arguments, std::string bytes, Form form)
    : arguments_(arguments), bytes_(std::move(bytes)) {
    before_.emplace(ParseDocument(Path(), bytes_, form));
}

EditedFile::EditedFile(const EditArguments& arguments, Profile&& profile)
    : arguments_(arguments), profile_(std::move(profile)) {
    RefuseStdin(Path());
    Lock();
    profile_->setForm(arguments.file.RequestedForm().value_or(Form::Wide));
}

EditedFile::EditedFile(const EditArguments& arguments, Table&& table)
    : arguments_(arguments), table_(std::move(table)) {
    RefuseStdin(Path());
    Lock();
}

void EditedFile::Lock() {
    lock_ = arguments_.lock.Acquire(Path());
}

Profile& EditedFile::Settings() {
    if (profile_.has_value()) return *profile_;
    OpenOptions options;
    options.form = before_->form();
    Problem problem;
    profile_ = Profile::parse(bytes_, options, &problem);
    const bool mayAddRoot = missing_ == Missing::Create && before_->kind() == DocumentKind::Other;
    if (!profile_.has_value() && problem.reason == Reason::WrongKind && mayAddRoot) {
        options.anyDocument = true;  // a save then adds the root element
        profile_ = Profile::parse(bytes_, options, &problem);
    }
    if (profile_.has_value()) return *profile_;
    if (problem.reason == Reason::WrongKind) RequireSettings(Path(), *before_);
    ThrowProblem(Path(), problem, kNothingChanged);
}

Table& EditedFile::TableDocument() {
    if (table_.has_value()) return *table_;
    OpenOptions options;
    options.form = before_->form();
    Problem problem;
    table_ = Table::parse(bytes_, "", options, &problem);
    if (!table_.has_value()) {
        if (problem.reason == Reason::WrongKind) RequireTable(Path(), *before_);
        ThrowProblem(Path(), problem, kNothingChanged);
    }
    if (before_->form() == Form::Narrow) {
        throw ExitError(ExitCode::kIoError,
                        Path() + ": a table document must be wide (see \"mox-xml convert --wide\")");
    }
    return *table_;
}

const Document& EditedFile::Prepare() {
    Form form = Form::Wide;
    Problem problem;
    std::optional<std::string> bytes;
    if (profile_.has_value()) {
        form = profile_->form();
        bytes = profile_->toBytes(form, Content::Document, &problem);
    } else if (table_.has_value()) {
        bytes = table_->toBytes(&problem);
    } else {
        form = before_->form();
        bytes = bytes_;
    }
    for (const TextChange& change : textChanges_) {
        if (bytes.has_value()) bytes = change(*bytes, form, &problem);
    }
    if (!bytes.has_value()) ThrowProblem(Path(), problem, kNothingChanged);
    newBytes_ = *std::move(bytes);
    after_.emplace(ParseDocument(Path(), newBytes_, form));
    return *after_;
}

void EditedFile::Write(Output& output, const std::set<std::string>& changedEud) {
    SaveArguments save;
    save.withBackup = arguments_.withBackup;
    if (!arguments_.mayOverwrite) save.onlyIf = &stamp_;
    if (lock_.has_value()) save.lock = &*lock_;
    SaveBytes(newBytes_, Path(), save);
    if (!before_.has_value()) return;
    PrintNote(Path(), "removed the attribute \"eud\" from", CountLostEud(*before_, *after_, changedEud),
              "section or entry", "sections and entries", output);
    PrintNote(Path(), "added white space to", CountAddedSpace(*before_, *after_),
              "value or comment with a line break", "values and comments with line breaks", output);
}

void EditedFile::Save(const std::function<bool(const Document& after)>& holds, Output& output) {
    if (!holds(Prepare())) {
        throw ExitError(ExitCode::kIoError,
                        Path() + ": the file would not contain what was to be written" + kNothingChanged);
    }
    Write(output);
}

void ThrowRefused(const EditedFile& file, const Problem& problem) {
    const bool isForm =
        problem.reason == Reason::NotKept && problem.message.find("a narrow file keeps") != std::string::npos;
    ThrowProblem(file.Path(), problem, isForm ? " (see \"mox-xml convert --wide\")" : "");
}

}  // namespace mox::tool
