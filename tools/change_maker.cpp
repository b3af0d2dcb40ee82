#include "tools/change_maker.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "mox_xmlApi/document/text_edit.hpp"
#include "mox_xmlApi/document/text_format.h"
#include "tools/document_diff.h"
#include "tools/entry_fields.h"
#include "tools/exit_error.h"
#include "tools/save_file.h"

namespace mox::tool {
namespace {

// Says why one change cannot be made. MakeAll adds which change it is.
[[noreturn]] void Refuse(ExitCode code, const std::string& message) {
    throw ExitError(code, message);
}

[[noreturn]] void Refuse(const Problem& problem) {
    const bool isMissing = problem.reason == Reason::NoSuchKey || problem.reason == Reason::NoSuchSection ||
                           problem.reason == Reason::NameTaken;
    Refuse(isMissing ? ExitCode::kNotFound : ExitCode::kIoError, problem.message);
}

void Require(bool isDone, const Problem& problem) {
    if (!isDone) Refuse(problem);
}

void RequireBefore(const RequestedChange& change, const std::string& found) {
    if (change.before.has_value() && *change.before != found)
        Refuse(ExitCode::kNotFound, "found " + Quoted(found) + ", expected " + Quoted(*change.before));
}

// ---- texts of fields

std::uint32_t NumberOf(const std::string& text, int base = 10) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [parsedEnd, error] = std::from_chars(text.data(), end, number, base);
    if (error == std::errc() && parsedEnd == end) return number;
    Refuse(ExitCode::kUsageError, Quoted(text) + " is not a 32-bit number");
}

bool TruthOf(const std::string& text) {
    if (text != "true" && text != "false")
        Refuse(ExitCode::kUsageError, Quoted(text) + " is neither true nor false");
    return text == "true";
}

// "long array"
void SetType(Entry& entry, const std::string& text) {
    const std::size_t space = text.find(' ');
    const std::string shape = space == std::string::npos ? "" : text.substr(space + 1);
    entry.type = ValueTypeOf(text.substr(0, space));
    if (shape.empty()) {
        entry.shape = Shape::Single;
    } else if (shape == "array" || shape == "vector") {
        entry.shape = shape == "array" ? Shape::Array : Shape::Vector;
    } else {
        Refuse(ExitCode::kUsageError, "unknown type " + Quoted(text));
    }
}

void SetField(Entry& entry, const std::string& field, const std::string& text) {
    if (field == "type") return SetType(entry, text);
    if (field == "id") {
        entry.id = NumberOf(text);
        return;
    }
    if (field == "value") {
        entry.value = text;
        return;
    }
    if (!entry.ui.has_value()) entry.ui.emplace();
    if (field == "ui.control") {
        entry.ui->control = ControlOf(text);
    } else if (field == "ui.shown_name") {
        entry.ui->shownName = text;
    } else if (field == "ui.comment") {
        entry.ui->comment = text;
    } else if (field == "ui.value") {
        entry.ui->value = text;
    } else if (field == "ui.provider") {
        entry.ui->providerOwner = OwnerOf(text);
    } else if (field == "ui.provider_index") {
        entry.ui->providerIndex = NumberOf(text);
    } else {
        Refuse(ExitCode::kIoError, "the library cannot write the field " + Quoted(field));
    }
}

void SetSectionField(TableOptions& options, const std::string& field, const std::string& text) {
    if (field == "first_id") {
        options.firstId = NumberOf(text);
    } else if (field == "type") {
        const std::uint32_t type = NumberOf(text, 16);
        if (type > 0xFFFF)
            Refuse(ExitCode::kUsageError, Quoted(text) + " is not a hexadecimal 16-bit number");
        options.type = static_cast<std::uint16_t>(type);
    } else if (field == "editable") {
        options.editable = TruthOf(text);
    } else {
        Refuse(ExitCode::kIoError, "the library cannot write the field " + Quoted(field));
    }
}

std::string TextOfSectionField(const TableOptions& options, const std::string& field) {
    if (field == "type") return Hex(options.type, 4);
    if (field == "editable") return options.editable ? "true" : "false";
    return std::to_string(options.firstId);
}

}  // namespace

ChangeMaker::ChangeMaker(EditedFile& file) : file_(file), before_(*file.Before()) {
    if (before_.kind() == DocumentKind::Table) {
        table_ = &file.TableDocument();
        inFile_[""].push_back(&before_.tables().front());
        return;
    }
    profile_ = &file.Settings();
    for (const DocumentTable& table : before_.tables()) {
        if (table.isTable && table.hasName) inFile_[table.name].push_back(&table);
    }
}

void ChangeMaker::MakeAll(const std::vector<RequestedChange>& changes) {
    std::size_t number = 0;
    for (const RequestedChange& change : changes) {
        ++number;
        try {
            Make(change);
        } catch (const ExitError& refusal) {
            // The messages of the library have the place already.
            const std::string place = change.Location();
            const std::string message = refusal.what();
            const bool hasPlace = place.empty() || message.rfind(place + ": ", 0) == 0;
            throw ExitError(refusal.Code(), file_.Path() + ": change " + std::to_string(number) + ": " +
                                                (hasPlace ? "" : place + ": ") + message + kNothingChanged);
        }
    }
    RequireAllRemoved();
    ChangeEditableTexts();
}

void ChangeMaker::Make(const RequestedChange& change) {
    const bool isRemoval = change.kind.has_value() && *change.kind == Change::Removed;
    std::optional<std::size_t>& lastRemoved = StateOf(change).lastRemoved;
    if (isRemoval && change.hasEntry && lastRemoved.has_value())
        return RemoveFrom(removedSections_[*lastRemoved], change);
    lastRemoved.reset();
    if (change.occurrence > 1)
        Refuse(ExitCode::kIoError, "only the first one of several with the same name can be changed");
    if (!change.hasSection && profile_ != nullptr) Refuse(ExitCode::kUsageError, "\"section\" is missing");
    if (table_ != nullptr && change.hasSection && change.section != before_.tables().front().name)
        Refuse(ExitCode::kNotFound, "the table has another name");
    if (!change.hasEntry) return ChangeSection(change);
    if (!change.kind.has_value()) return SetValue(change);
    if (*change.kind == Change::Added) return AddEntry(change);
    EntryTable& table = TableOf(change);
    if (isRemoval) return RemoveEntry(change, table);
    ChangeField(change, table);
}

// What the section of the change is called in the maps and the expectations: a table document has one name for its
// table, whether the change names that or not.
std::string ChangeMaker::KeyOf(const RequestedChange& change) const {
    return table_ != nullptr ? "" : change.section;
}

ChangeMaker::SectionState& ChangeMaker::StateOf(const RequestedChange& change) {
    return sections_[KeyOf(change)];
}

// The section of the change as it is in the file; null if the changes have added it, or if there is none.
const DocumentTable* ChangeMaker::InFile(const RequestedChange& change) const {
    const auto tables = inFile_.find(KeyOf(change));
    const auto state = sections_.find(KeyOf(change));
    const std::size_t index = state == sections_.end() ? 0 : state->second.removals;
    return tables == inFile_.end() || index >= tables->second.size() ? nullptr : tables->second[index];
}

// The entry of the change as it is in the file; null if the changes have added it, or if there is none that can be
// read.
const DocumentEntry* ChangeMaker::EntryInFile(const RequestedChange& change) const {
    const DocumentTable* const table = InFile(change);
    if (table == nullptr) return nullptr;
    const auto state = sections_.find(KeyOf(change));
    std::size_t removed = 0;
    if (state != sections_.end() && state->second.removedEntries.count(change.entry) != 0)
        removed = state->second.removedEntries.at(change.entry);
    if (removed == 0) return table->find(change.entry);
    for (const DocumentEntry& entry : table->entries) {
        if (entry.hasName && entry.name == change.entry && removed-- == 0)
            return entry.isReadable ? &entry : nullptr;
    }
    return nullptr;
}

EntryTable& ChangeMaker::TableOf(const RequestedChange& change) {
    if (table_ != nullptr) return *table_;
    Problem problem;
    section_ = profile_->findSection(change.section, &problem);
    if (!section_.has_value()) Refuse(problem);
    return *section_;
}

// An entry of a section that was removed: whether it was there, with the value that the change expects.
void ChangeMaker::RemoveFrom(RemovedSection& section, const RequestedChange& change) const {
    const auto entry = section.left.find({change.entry, change.occurrence});
    if (entry == section.left.end()) Refuse(ExitCode::kNotFound, "there is no such entry");
    RequireBefore(change, entry->second->effectiveValue());
    section.left.erase(entry);
}

void ChangeMaker::RequireAllRemoved() const {
    for (const RemovedSection& section : removedSections_) {
        if (section.left.empty()) continue;
        throw ExitError(ExitCode::kNotFound, file_.Path() + ": section " + QuotedIfNeeded(section.name) +
                                                 " has the entry " +
                                                 QuotedIfNeeded(section.left.begin()->first.first) +
                                                 ", which the changes do not remove" + kNothingChanged);
    }
}

// ---- sections

void ChangeMaker::ChangeSection(const RequestedChange& change) {
    if (profile_ == nullptr || !change.kind.has_value())
        Refuse(ExitCode::kUsageError, "only sections of settings documents can be changed");
    if (*change.kind == Change::Removed) {
        RemoveSection(change);
    } else if (*change.kind == Change::Added) {
        AddSection(change);
    } else {
        ChangeSectionField(change);
    }
}

void ChangeMaker::RemoveSection(const RequestedChange& change) {
    const DocumentTable* const table = InFile(change);
    Problem problem;
    Require(profile_->removeSection(change.section, &problem), problem);
    SectionState& state = StateOf(change);
    if (table != nullptr) {
        RemovedSection removed{change.section, {}};
        std::map<std::string, std::size_t> counts;
        for (const DocumentEntry& entry : table->entries) {
            if (!entry.isReadable && !entry.hasName) continue;
            const std::size_t occurrence = ++counts[entry.name];
            if (occurrence > state.removedEntries[entry.name])
                removed.left[{entry.name, occurrence}] = &entry;
        }
        state.lastRemoved = removedSections_.size();
        removedSections_.push_back(std::move(removed));
        ++state.removals;
    }
    state.removedEntries.clear();
    state.options.reset();
    state.isEditableChanged = false;
    expectations_.Forget(change.section);
    // Of several, the removal of the first leaves the next one.
    if (InFile(change) == nullptr) expectations_.SetGone(change.section);
}

void ChangeMaker::AddSection(const RequestedChange& change) {
    if (profile_->findSection(change.section).has_value())
        Refuse(ExitCode::kNotFound, "the section already exists");
    TableOptions options;
    for (const auto& [field, text] : change.fields)
        SetSectionField(options, field, text);
    Problem problem;
    Require(profile_->makeSection(change.section, options, &problem).has_value(), problem);
    StateOf(change).options = options;
    expectations_.Forget(change.section);
    for (const char* const field : {"first_id", "type", "editable"})
        expectations_.SetSection(change.section, field, TextOfSectionField(options, field));
}

void ChangeMaker::ChangeSectionField(const RequestedChange& change) {
    if (!profile_->findSection(change.section).has_value())
        Refuse(ExitCode::kNotFound, "there is no such section");
    if (change.field != "first_id" && change.field != "type" && change.field != "editable")
        Refuse(ExitCode::kIoError, "the library cannot change the field " + Quoted(change.field));
    SectionState& state = StateOf(change);
    const DocumentTable* const table = InFile(change);  // otherwise a value has added the section
    if (!state.options.has_value())
        state.options =
            table == nullptr ? TableOptions{} : TableOptions{table->isEditable, table->firstId, table->type};
    TableOptions& options = *state.options;
    RequireBefore(change, TextOfSectionField(options, change.field));
    SetSectionField(options, change.field, *change.after);
    Problem problem;
    Require(profile_->makeSection(change.section, options, &problem).has_value(), problem);
    if (change.field == "editable") state.isEditableChanged = true;
    expectations_.SetSection(change.section, change.field, TextOfSectionField(options, change.field));
}

// Whether a section is editable can be changed only in the text, which is there when all other changes are made.
void ChangeMaker::ChangeEditableTexts() {
    std::vector<SectionChange> changes;
    for (const auto& [section, state] : sections_) {
        if (!state.isEditableChanged) continue;
        changes.push_back({section, {}});
        changes.back().header.editable = state.options->editable;
    }
    if (changes.empty()) return;
    file_.ChangeText([changes = std::move(changes)](std::string_view bytes, Form form, Problem* why) {
        return changeSections(bytes, form, changes, why);
    });
}

// ---- values

void ChangeMaker::Expect(const RequestedChange& change, const std::string& field, const std::string& text) {
    expectations_.Set(KeyOf(change), change.entry, field, text);
}

template <class T>
void ChangeMaker::Write(const RequestedChange& change, const T& value) {
    Problem problem;
    Require(table_ != nullptr ? table_->set(change.entry, value, &problem)
                              : profile_->set(change.section, change.entry, value, &problem),
            problem);
}

// A new entry gets the type that fits.
void ChangeMaker::WriteInteger(const RequestedChange& change) {
    const nlohmann::json& value = change.value;
    if (value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX)
        return Write(change, value.get<std::uint64_t>());
    const auto number = value.get<std::int64_t>();
    if (number >= INT32_MIN && number <= INT32_MAX) return Write(change, static_cast<std::int32_t>(number));
    if (number > 0 && number <= UINT32_MAX) return Write(change, static_cast<std::uint32_t>(number));
    Write(change, number);
}

void ChangeMaker::WriteBytes(const RequestedChange& change) {
    std::vector<std::uint8_t> bytes;
    for (const nlohmann::json& byte : change.value) {
        if (!byte.is_number_unsigned() || byte.get<std::uint64_t>() > 0xFF)
            Refuse(ExitCode::kUsageError, "the list may contain only numbers from 0 to 255");
        bytes.push_back(byte.get<std::uint8_t>());
    }
    Write(change, bytes);
}

void ChangeMaker::SetValue(const RequestedChange& change) {
    if (change.before.has_value()) {
        const std::optional<Entry> entry = TableOf(change).find(change.entry);
        if (!entry.has_value()) Refuse(ExitCode::kNotFound, "there is no such entry");
        RequireBefore(change, entry->effectiveValue());
    }
    const nlohmann::json& value = change.value;
    if (value.is_string()) {
        Write(change, value.get<std::string>());
    } else if (value.is_boolean()) {
        Write(change, value.get<bool>());
    } else if (value.is_number_integer()) {
        WriteInteger(change);
    } else if (value.is_number()) {
        Write(change, value.get<double>());
    } else if (value.is_array()) {
        WriteBytes(change);
    } else {
        Refuse(ExitCode::kUsageError,
               "\"value\" is neither a text nor a number, true, false or a list of bytes");
    }
    const std::optional<Entry> entry = TableOf(change).find(change.entry);
    const std::string own = entry.has_value() ? entry->value.value_or("") : "";
    const std::string effective = entry.has_value() ? entry->effectiveValue() : "";
    Expect(change, "value", own);
    if (own.empty()) Expect(change, "ui.value", effective);
    Expect(change, Expectations::kEffective, effective);
}

// ---- entries

void ChangeMaker::AddEntry(const RequestedChange& change) {
    Entry entry;
    entry.name = change.entry;
    const bool hasValue = std::any_of(change.fields.begin(), change.fields.end(), [](const auto& field) {
        return field.first == "value" || field.first == "ui.value";
    });
    entry.value = hasValue ? std::string() : change.after.value_or("");
    SetType(entry, change.type);
    for (const auto& [field, text] : change.fields)
        SetField(entry, field, text);
    if (profile_ != nullptr && !profile_->findSection(change.section).has_value())
        Refuse(ExitCode::kNotFound, "there is no such section");
    Problem problem;
    Require(TableOf(change).add(entry, Eud::DoNotSet, &problem), problem);
    expectations_.Forget(KeyOf(change), change.entry);
    Expect(change, "type", change.type);
    if (change.after.has_value()) Expect(change, Expectations::kEffective, *change.after);
    for (const auto& [field, text] : change.fields)
        Expect(change, field, text);
}

void ChangeMaker::RemoveEntry(const RequestedChange& change, EntryTable& table) {
    const std::optional<Entry> entry = table.find(change.entry);
    if (entry.has_value()) {
        RequireBefore(change, entry->effectiveValue());
    } else if (table.contains(change.entry)) {
        RequireBefore(change, "");  // what hosts read from an entry without a known type
    }
    Problem problem;
    Require(table.remove(change.entry, 0, &problem), problem);
    ++StateOf(change).removedEntries[change.entry];
    expectations_.Forget(KeyOf(change), change.entry);
    if (!table.contains(change.entry) && !change.entry.empty())
        expectations_.SetGone(KeyOf(change), change.entry);
}

void ChangeMaker::ChangeField(const RequestedChange& change, EntryTable& table) {
    RequireOldField(change);
    Problem problem;
    std::optional<Entry> entry = table.find(change.entry, &problem);
    if (!entry.has_value()) Refuse(problem);
    const std::string& field = change.field;
    const std::string& text = *change.after;
    // The values as they will be.
    std::optional<std::string> own = field == "value" ? text : entry->value;
    std::optional<std::string> shown = field == "ui.value"     ? text
                                       : entry->ui.has_value() ? entry->ui->value
                                                               : std::string();
    bool isDone = false;
    if (field == "value") {
        isDone = table.setValue(change.entry, text, Eud::DoNotSet, &problem);
    } else if (field == "ui.comment") {
        isDone = table.setComment(change.entry, text, &problem);
    } else if (field == "ui.shown_name") {
        isDone = table.setShownName(change.entry, text, &problem);
    } else if (field == "ui.provider" || field == "ui.provider_index") {
        SetField(*entry, field, text);
        isDone =
            table.setProvider(change.entry, entry->ui->providerOwner, entry->ui->providerIndex, &problem);
    } else if (field == "eud" && table_ != nullptr) {
        isDone = table.setEud(change.entry, TruthOf(text), &problem);
    } else {
        // What is missing here stays as it is.
        entry->value.reset();
        entry->id = 0;
        if (field == "type" || field == "id") {
            entry->ui.reset();
        } else if (entry->ui.has_value()) {
            entry->ui->value.reset();
        }
        SetField(*entry, field, text);
        isDone = table.put(*entry, Eud::DoNotSet, &problem);
    }
    Require(isDone, problem);
    Expect(change, field, text);
    const std::optional<std::string>& effective = own == "" ? shown : own;
    if ((field == "value" || field == "ui.value") && effective.has_value())
        Expect(change, Expectations::kEffective, *effective);
}

// Refuses the change unless the entry, as it was read from the file, has the text that the change expects in the field.
// Earlier changes in the list are not taken into account.
void ChangeMaker::RequireOldField(const RequestedChange& change) const {
    if (!change.before.has_value()) return;
    const DocumentEntry* const entry = EntryInFile(change);
    if (entry == nullptr) Refuse(ExitCode::kNotFound, "there is no such entry");
    for (const auto& [name, text] : FieldsOf(*entry)) {
        if (name == change.field) RequireBefore(change, text);
    }
}

const Document& PrepareChanges(EditedFile& file, const std::vector<RequestedChange>& changes) {
    ChangeMaker maker(file);
    maker.MakeAll(changes);
    const Document& after = file.Prepare();
    const std::string broken = maker.Expected().FindBroken(after);
    if (broken.empty()) return after;
    throw ExitError(ExitCode::kIoError,
                    file.Path() + ": the file would not keep " + broken + kNothingChanged);
}

}  // namespace mox::tool
