// apply: makes many changes to a file, all or none.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/entries/entry_codes.h"
#include "tools/change_list.h"
#include "tools/changed_bytes.h"
#include "tools/command_line.h"
#include "tools/document_diff.h"
#include "tools/open_document.h"
#include "tools/system.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct ApplyArguments {
    FileArgument file{};
    std::string changes{};
    bool isDryRun = false;
    bool withBackup = false;
    bool mayOverwrite = false;
};

// Why one change cannot be made. The caller adds which change it is.
class Refusal : public ExitError {
  public:
    using ExitError::ExitError;
};

[[noreturn]] void Refuse(ExitCode code, const std::string& message) {
    throw Refusal(code, message);
}

[[noreturn]] void Refuse(const Problem& problem) {
    const bool isMissing = problem.reason == Reason::NoSuchKey || problem.reason == Reason::NoSuchSection ||
                           problem.reason == Reason::NameTaken;
    Refuse(isMissing ? ExitCode::kNotFound : ExitCode::kIoError, problem.message);
}

void Require(bool isDone, const Problem& problem) {
    if (!isDone) Refuse(problem);
}

std::uint32_t NumberOf(const std::string& text, int base = 10) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [parsedEnd, error] = std::from_chars(text.data(), end, number, base);
    if (error == std::errc() && parsedEnd == end) return number;
    Refuse(ExitCode::kUsageError, Quoted(text) + " is not a 32-bit number");
}

// ---- names in files

// "long array"
void SetType(Entry& entry, const std::string& text) {
    const std::size_t space = text.find(' ');
    const Text type(text.substr(0, space));
    const Text shape(space == std::string::npos ? std::string() : text.substr(space + 1));
    std::uint16_t code = 0;
    if (!ValueTypeFromName(type.units(), shape.units(), code))
        Refuse(ExitCode::kUsageError, "there is no type " + Quoted(text));
    constexpr std::uint16_t kShapes = kTypeVector | kTypeArray;
    entry.type = static_cast<ValueType>(code & ~kShapes);
    entry.shape = static_cast<Shape>(code & kShapes);
}

Control ControlNamed(const std::string& name) {
    const Text text(name);
    const std::uint16_t code = ControlKindFromName(text.units());
    if (Utf8(ControlKindToName(code)) != name)
        Refuse(ExitCode::kUsageError, "there is no control " + Quoted(name));
    return static_cast<Control>(code);
}

Owner OwnerNamed(const std::string& name) {
    const Text text(name);
    const std::uint8_t code = OwnerFromName(text.units());
    if (Utf8(OwnerToName(code)) != name)
        Refuse(ExitCode::kUsageError, "there is no provider " + Quoted(name));
    return static_cast<Owner>(code);
}

// ---- changes

// The fields of the entries that were written, and what the new file must have there.
class Expectations {
  public:
    void Set(const RequestedChange& change, const std::string& field, const std::string& text) {
        fields_[{change.section, change.entry, field}] = text;
    }
    // A section; empty for the table of a table document.
    void SetSection(const std::string& section, const std::string& field, const std::string& text) {
        sectionFields_[{section, field}] = text;
    }
    void SetGone(const std::string& section) {
        Forget(section);
        gone_.insert({section, std::nullopt});
    }
    void SetGone(const std::string& section, const std::string& entry) {
        Forget(section, entry);
        gone_.insert({section, entry});
    }

    void Forget(const std::string& section) {
        gone_.erase({section, std::nullopt});
        sectionFields_.erase(sectionFields_.lower_bound({section, ""}),
                             sectionFields_.lower_bound({section + '\0', ""}));
        fields_.erase(fields_.lower_bound({section, "", ""}), fields_.lower_bound({section + '\0', "", ""}));
    }
    void Forget(const std::string& section, const std::string& entry) {
        gone_.erase({section, entry});
        fields_.erase(fields_.lower_bound({section, entry, ""}),
                      fields_.lower_bound({section, entry + '\0', ""}));
    }

    // Returns what the document does not have as expected, or an empty string. A change that names no section means the
    // table.
    std::string FindBroken(const Document& document) const {
        for (const auto& [section, entry] : gone_) {
            const DocumentTable* const table = TableIn(document, section);
            if (entry.has_value() ? table != nullptr && table->findElement(*entry) != nullptr
                                  : table != nullptr)
                return "that " + QuotedIfNeeded(section) +
                       (entry.has_value() ? "/" + QuotedIfNeeded(*entry) : "") + " is removed";
        }
        for (const auto& [place, text] : sectionFields_) {
            const DocumentTable* const table = TableIn(document, place.first);
            if (table == nullptr || FieldIn(FieldsOf(*table), place.second) != text)
                return QuotedIfNeeded(place.first) + " " + place.second;
        }
        for (const auto& [place, text] : fields_) {
            const auto& [section, entryName, field] = place;
            const DocumentTable* const table = TableIn(document, section);
            const DocumentEntry* const entry = table == nullptr ? nullptr : table->find(entryName);
            if (entry == nullptr ||
                (field == kEffective ? entry->effectiveValue() : FieldIn(FieldsOf(*entry), field)) != text)
                return QuotedIfNeeded(section) + "/" + QuotedIfNeeded(entryName) + " " + field;
        }
        return "";
    }

  private:
    static const DocumentTable* TableIn(const Document& document, const std::string& section) {
        return document.kind() == DocumentKind::Table ? &document.tables().front()
                                                      : document.findTable(section);
    }

    static std::string FieldIn(const Fields& fields, const std::string& field) {
        for (const auto& [name, text] : fields) {
            if (name == field) return text;
        }
        return "";
    }

    std::set<std::pair<std::string, std::optional<std::string>>> gone_;
    std::map<std::pair<std::string, std::string>, std::string> sectionFields_;
    std::map<std::tuple<std::string, std::string, std::string>, std::string> fields_;

  public:
    // The field that hosts read as the value.
    static constexpr const char* kEffective = "effective value";
};

// Makes changes to a document in memory.
class Changer {
  public:
    // Opens the document from the bytes, which are those of `before`. Throws ExitError.
    Changer(const std::string& path, std::string_view bytes, const Document& before) : before_(before) {
        Problem problem;
        OpenOptions options;
        options.form = before.form();
        if (before.kind() == DocumentKind::Table) {
            if (before.form() == Form::Narrow)
                throw ExitError(ExitCode::kIoError, path +
                                                        ": a table document must be wide (see \"mox-xml "
                                                        "convert --wide\")");
            table_ = Table::parse(bytes, "", options, &problem);
        } else {
            RequireSettings(path, before);
            profile_ = Profile::parse(bytes, options, &problem);
        }
        if (profile_.has_value() || table_.has_value()) return;
        problem.file = path;
        throw ExitError(ExitCode::kIoError, problem.toString() + "; nothing was changed");
    }

    void Make(const RequestedChange& change) {
        const bool isRemoval = change.kind.has_value() && *change.kind == Change::Removed;
        if (isRemoval && change.hasEntry && removedSections_.count(change.section) != 0)
            return RequireRemoved(change);
        if (change.occurrence > 1)
            Refuse(ExitCode::kIoError, "only the first one of several with the same name can be changed");
        if (!change.hasSection && profile_.has_value())
            Refuse(ExitCode::kUsageError, "\"section\" is missing");
        if (table_.has_value() && change.hasSection && change.section != before_.tables().front().name)
            Refuse(ExitCode::kNotFound, "the table has another name");
        if (!change.hasEntry) return ChangeSection(change);
        if (!change.kind.has_value()) return SetValue(change);
        if (*change.kind == Change::Added) return AddEntry(change);
        EntryTable& table = TableOf(change);
        if (isRemoval) return RemoveEntry(change, table);
        ChangeField(change, table);
    }

    // Throws ExitError if a section was removed with an entry that the changes do not remove.
    void RequireAllRemoved(const std::string& path) const {
        for (const auto& [section, removed] : removedSections_) {
            std::map<std::string, std::size_t> counts;
            for (const DocumentEntry& entry : before_.findTable(section)->entries) {
                if (!entry.isReadable && !entry.hasName) continue;
                if (removed.count({entry.name, ++counts[entry.name]}) != 0) continue;
                throw ExitError(ExitCode::kNotFound,
                                path + ": section " + QuotedIfNeeded(section) + " has the entry " +
                                    QuotedIfNeeded(entry.name) +
                                    ", which the changes do not remove; nothing was changed");
            }
        }
    }

    // The bytes of the changed file. Throws ExitError if they would not have what was asked for.
    std::string Bytes(const std::string& path) const {
        Problem problem;
        std::optional<std::string> bytes =
            table_.has_value() ? table_->toBytes(&problem)
                               : profile_->toBytes(before_.form(), Content::Document, &problem);
        if (!bytes.has_value())
            throw ExitError(ExitCode::kIoError, path + ": " + problem.message + "; nothing was changed");
        const std::string broken = expectations_.FindBroken(
            ParseDocument(path, *bytes, table_.has_value() ? Form::Wide : before_.form()));
        if (!broken.empty())
            throw ExitError(ExitCode::kIoError,
                            path + ": the file would not keep " + broken + "; nothing was changed");
        return *std::move(bytes);
    }

  private:
    EntryTable& TableOf(const RequestedChange& change) {
        if (table_.has_value()) return *table_;
        Problem problem;
        section_ = profile_->findSection(change.section, &problem);
        if (!section_.has_value()) Refuse(problem);
        return *section_;
    }

    static void RequireBefore(const RequestedChange& change, const std::string& found) {
        if (change.before.has_value() && *change.before != found)
            Refuse(ExitCode::kNotFound, "found " + Quoted(found) + ", expected " + Quoted(*change.before));
    }

    // The entry of a section that was removed: whether it was there, with the value that the change expects.
    void RequireRemoved(const RequestedChange& change) {
        std::size_t occurrence = 0;
        for (const DocumentEntry& entry : before_.findTable(change.section)->entries) {
            if ((!entry.isReadable && !entry.hasName) || entry.name != change.entry) continue;
            if (++occurrence != change.occurrence) continue;
            RequireBefore(change, entry.effectiveValue());
            removedSections_[change.section].insert({change.entry, occurrence});
            return;
        }
        Refuse(ExitCode::kNotFound, "there is no such entry");
    }

    // ---- sections

    // Whether there is one section of that name. Of several, the removal of the first leaves the next one.
    bool IsOnlySection(const std::string& name) const {
        const auto& tables = before_.tables();
        return std::count_if(tables.begin(), tables.end(), [&](const DocumentTable& table) {
                   return table.isTable && table.hasName && table.name == name;
               }) == 1;
    }

    void ChangeSection(const RequestedChange& change) {
        if (!profile_.has_value() || !change.kind.has_value())
            Refuse(ExitCode::kUsageError, "only sections of settings documents can be changed");
        Problem problem;
        if (*change.kind == Change::Removed) {
            if (before_.findTable(change.section) == nullptr)
                Refuse(ExitCode::kNotFound, "there is no such section in the file");
            Require(profile_->removeSection(change.section, &problem), problem);
            removedSections_.try_emplace(change.section);
            expectations_.Forget(change.section);
            if (IsOnlySection(change.section)) expectations_.SetGone(change.section);
        } else if (*change.kind == Change::Added) {
            if (profile_->findSection(change.section).has_value())
                Refuse(ExitCode::kNotFound, "the section already exists");
            TableOptions options;
            for (const auto& [field, text] : change.fields)
                SetSectionField(options, field, text);
            Require(profile_->makeSection(change.section, options, &problem).has_value(), problem);
            expectations_.Forget(change.section);
            for (const auto& [field, text] : change.fields)
                expectations_.SetSection(change.section, field, text);
        } else {
            ChangeSectionField(change);
        }
    }

    static void SetSectionField(TableOptions& options, const std::string& field, const std::string& text) {
        if (field == "first_id") {
            options.firstId = NumberOf(text);
        } else if (field == "type") {
            const std::uint32_t type = NumberOf(text, 16);
            if (type > 0xFFFF)
                Refuse(ExitCode::kUsageError, Quoted(text) + " is not a hexadecimal 16-bit number");
            options.type = static_cast<std::uint16_t>(type);
        } else if (field == "editable") {
            if (text != "true" && text != "false")
                Refuse(ExitCode::kUsageError, Quoted(text) + " is neither true nor false");
            options.editable = text == "true";
        } else {
            Refuse(ExitCode::kIoError, "the library cannot write the field " + Quoted(field));
        }
    }

    void ChangeSectionField(const RequestedChange& change) {
        const DocumentTable* const old = before_.findTable(change.section);
        if (old == nullptr) Refuse(ExitCode::kNotFound, "there is no such section");
        if (change.field != "first_id" && change.field != "type")
            Refuse(ExitCode::kIoError, "the library cannot change the field " + Quoted(change.field));
        auto [known, isNew] = sections_.try_emplace(change.section);
        TableOptions& options = known->second;
        if (isNew) {
            options.firstId = old->firstId;
            options.type = old->type;
        }
        RequireBefore(change,
                      change.field == "type" ? Hex(options.type, 4) : std::to_string(options.firstId));
        SetSectionField(options, change.field, *change.after);
        Problem problem;
        Require(profile_->makeSection(change.section, options, &problem).has_value(), problem);
        expectations_.SetSection(
            change.section, change.field,
            change.field == "type" ? Hex(options.type, 4) : std::to_string(options.firstId));
    }

    // ---- entries

    template <class T>
    void Write(const RequestedChange& change, const T& value) {
        Problem problem;
        Require(table_.has_value() ? table_->set(change.entry, value, &problem)
                                   : profile_->set(change.section, change.entry, value, &problem),
                problem);
    }

    // A new entry gets the type that fits.
    void WriteInteger(const RequestedChange& change) {
        const nlohmann::json& value = change.value;
        if (value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX)
            return Write(change, value.get<std::uint64_t>());
        const auto number = value.get<std::int64_t>();
        if (number >= INT32_MIN && number <= INT32_MAX)
            return Write(change, static_cast<std::int32_t>(number));
        if (number > 0 && number <= UINT32_MAX) return Write(change, static_cast<std::uint32_t>(number));
        Write(change, number);
    }

    void WriteBytes(const RequestedChange& change) {
        std::vector<std::uint8_t> bytes;
        for (const nlohmann::json& byte : change.value) {
            if (!byte.is_number_unsigned() || byte.get<std::uint64_t>() > 0xFF)
                Refuse(ExitCode::kUsageError, "the list may contain only numbers from 0 to 255");
            bytes.push_back(byte.get<std::uint8_t>());
        }
        Write(change, bytes);
    }

    void SetValue(const RequestedChange& change) {
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
        expectations_.Forget(change.section, change.entry);
        expectations_.Set(change, Expectations::kEffective, entry.has_value() ? entry->effectiveValue() : "");
    }

    void AddEntry(const RequestedChange& change) {
        Entry entry;
        entry.name = change.entry;
        const bool hasValue = std::any_of(change.fields.begin(), change.fields.end(), [](const auto& field) {
            return field.first == "value" || field.first == "ui.value";
        });
        entry.value = hasValue ? std::string() : change.after.value_or("");
        SetType(entry, change.type);
        for (const auto& [field, text] : change.fields)
            SetField(entry, field, text);
        if (!profile_.has_value() || profile_->findSection(change.section).has_value()) {
            Problem problem;
            Require(TableOf(change).add(entry, Eud::DoNotSet, &problem), problem);
        } else {
            Refuse(ExitCode::kNotFound, "there is no such section");
        }
        expectations_.Forget(change.section, change.entry);
        expectations_.Set(change, "type", change.type);
        if (change.after.has_value()) expectations_.Set(change, Expectations::kEffective, *change.after);
        for (const auto& [field, text] : change.fields)
            expectations_.Set(change, field, text);
    }

    static void SetField(Entry& entry, const std::string& field, const std::string& text) {
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
            entry.ui->control = ControlNamed(text);
        } else if (field == "ui.shown_name") {
            entry.ui->shownName = text;
        } else if (field == "ui.comment") {
            entry.ui->comment = text;
        } else if (field == "ui.value") {
            entry.ui->value = text;
        } else if (field == "ui.provider") {
            entry.ui->providerOwner = OwnerNamed(text);
        } else if (field == "ui.provider_index") {
            entry.ui->providerIndex = NumberOf(text);
        } else {
            Refuse(ExitCode::kIoError, "the library cannot write the field " + Quoted(field));
        }
    }

    void RemoveEntry(const RequestedChange& change, EntryTable& table) {
        const std::optional<Entry> entry = table.find(change.entry);
        if (entry.has_value()) RequireBefore(change, entry->effectiveValue());
        Problem problem;
        Require(table.remove(change.entry, 0, &problem), problem);
        expectations_.Forget(change.section, change.entry);
        if (!table.contains(change.entry) && !change.entry.empty())
            expectations_.SetGone(change.section, change.entry);
    }

    void ChangeField(const RequestedChange& change, EntryTable& table) {
        RequireOldField(change);
        Problem problem;
        std::optional<Entry> entry = table.find(change.entry, &problem);
        if (!entry.has_value()) Refuse(problem);
        const std::string& field = change.field;
        const std::string& text = *change.after;
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
        } else if (field == "eud" && table_.has_value()) {
            isDone = table.setEud(change.entry, text == "true", &problem);
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
        expectations_.Set(change, field, text);
    }

    // Throws a Refusal unless the entry, as it was read from the file, has the text that the change expects in the field.
    // Earlier changes in the list are not taken into account.
    void RequireOldField(const RequestedChange& change) const {
        if (!change.before.has_value()) return;
        const DocumentTable* const table =
            table_.has_value() ? &before_.tables().front() : before_.findTable(change.section);
        const DocumentEntry* const entry = table == nullptr ? nullptr : table->find(change.entry);
        if (entry == nullptr) Refuse(ExitCode::kNotFound, "there is no such entry");
        for (const auto& [name, text] : FieldsOf(*entry)) {
            if (name == change.field) RequireBefore(change, text);
        }
    }

    const Document& before_;
    std::optional<Profile> profile_{};
    std::optional<Table> table_{};
    std::optional<Section> section_{};  // of the last change
    // The names and occurrences of the entries that the changes remove with each section.
    std::map<std::string, std::set<std::pair<std::string, std::size_t>>> removedSections_{};
    std::map<std::string, TableOptions> sections_{};  // whose fields were changed
    Expectations expectations_{};
};

void MakeAll(const std::string& path, const std::vector<RequestedChange>& changes, Changer& changer) {
    std::size_t number = 0;
    for (const RequestedChange& change : changes) {
        ++number;
        try {
            changer.Make(change);
        } catch (const Refusal& refusal) {
            // The messages of the library have the place already.
            const std::string place = change.Location();
            const std::string message = refusal.what();
            const bool hasPlace = place.empty() || message.rfind(place + ": ", 0) == 0;
            throw ExitError(refusal.Code(), path + ": change " + std::to_string(number) + ": " +
                                                (hasPlace ? "" : place + ": ") + message +
                                                "; nothing was changed");
        }
    }
}

void Replace(const ApplyArguments& arguments, const std::string& bytes, const FileStamp& read) {
    ReplaceOptions options;
    if (!arguments.mayOverwrite) options.onlyIf = &read;
    if (arguments.withBackup) options.backup = Text(arguments.file.path + ".bak");
    Problem problem;
    if (replaceFile(arguments.file.path, bytes, options, nullptr, &problem)) return;
    const char* const rest = problem.reason == Reason::Changed ? "" : "; nothing was changed";
    throw ExitError(ExitCode::kIoError, problem.toString() + rest);
}

void PrintLostEud(const std::string& path, const Document& before, const Document& after, Output& output) {
    std::size_t count = 0;
    for (const Difference& difference : CompareDocuments(before, after, true)) {
        if (difference.change == Change::Changed && difference.field == "eud" && difference.after == "false")
            ++count;
    }
    if (count == 0) return;
    output.PrintMessage(path + ": note: saving removed the attribute \"eud\" from " + std::to_string(count) +
                        (count == 1 ? " section or entry" : " sections and entries"));
}

void RunApply(const ApplyArguments& arguments, Output& output) {
    if (arguments.file.path == kStdinPath)
        throw ExitError(ExitCode::kUsageError, "stdin cannot be changed (a file named \"-\" is \"./-\")");
    const std::string text = arguments.changes == kStdinPath ? ReadStdin() : ReadBytes(arguments.changes);
    const std::vector<RequestedChange> changes = ReadChanges(arguments.changes, text);
    FileStamp stamp;
    const std::string bytes = ReadBytes(arguments.file.path, &stamp);
    const Document before = ParseDocument(arguments.file.path, bytes, arguments.file.RequestedForm());
    const std::string newBytes = ChangedBytes(arguments.file.path, bytes, before, changes);
    const Document after = ParseDocument(arguments.file.path, newBytes, before.form());
    // A save of settings removes every "eud", which is no change that was asked for.
    const bool isTable = before.kind() == DocumentKind::Table;
    const std::vector<Difference> differences = CompareDocuments(before, after, isTable);
    if (arguments.isDryRun) {
        for (const Difference& difference : differences)
            output.PrintLine(LineOf(difference));
        return;
    }
    if (differences.empty()) return;  // a save would change only the layout
    Replace(arguments, newBytes, stamp);
    if (!isTable) PrintLostEud(arguments.file.path, before, after, output);
}

}  // namespace

std::string ChangedBytes(const std::string& path, std::string_view bytes, const Document& before,
                         const std::vector<RequestedChange>& changes) {
    Changer changer(path, bytes, before);
    MakeAll(path, changes, changer);
    changer.RequireAllRemoved(path);
    return changer.Bytes(path);
}

void AddApplyVerb(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<ApplyArguments>();
    CLI::App& apply = AddVerb(app, "apply", "Make the changes that \"diff --json\" prints, all or none",
                              "mox-xml apply camera.xml changes.json --dry-run\n"
                              "mox-xml diff old.xml new.xml --json | mox-xml apply camera.xml -");
    AddFileArgument(apply, arguments->file);
    apply.add_option("CHANGES", arguments->changes, "A file with the changes as JSON; \"-\" is stdin")
        ->required();
    apply.add_flag("--dry-run", arguments->isDryRun, "Print what would change, and change nothing");
    apply.add_flag("--overwrite", arguments->mayOverwrite,
                   "Replace the file even if another program has changed it in the meantime");
    AddBackupOption(apply, arguments->withBackup);
    apply.callback([arguments, &output] { RunApply(*arguments, output); });
}

}  // namespace mox::tool
