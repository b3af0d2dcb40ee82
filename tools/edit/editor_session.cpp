#include "tools/edit/editor_session.h"

#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <tuple>
#include <utility>

#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/disk/replace_file.hpp"
#include "tools/document_diff.h"
#include "tools/edit/form_json.h"
#include "tools/exit_error.h"
#include "tools/json_depth.h"
#include "tools/open_document.h"
#include "tools/save_file.h"

namespace mox::tool {
namespace {

// {"erg:1": ["belt encoder", {"value": "2", "name": "light barrier"}]}
Json ReadChoices(const std::string& path) {
    Json choices = Json::object();
    if (path.empty()) return choices;
    const auto fail = [&path](const std::string& message) {
        throw ExitError(ExitCode::kSyntaxError, path + ": " + message);
    };
    const std::string text = ReadBytes(path);
    if (IsDeepJson(text)) fail(kTooDeepJson);
    const Json given = Json::parse(text, nullptr, false);
    if (!given.is_object()) fail("expected a JSON object with lists of choices");
    for (const auto& [provider, list] : given.items()) {
        if (!list.is_array()) fail("the choices of " + provider + " are not a list");
        Json& known = choices[provider] = Json::array();
        for (const Json& choice : list) {
            const bool isPair = choice.is_object() && choice.contains("value") &&
                                choice["value"].is_string() && choice.contains("name") &&
                                choice["name"].is_string();
            if (!choice.is_string() && !isPair)
                fail("a choice of " + provider + R"( is neither a text nor {"value": text, "name": text})");
            // Nothing else, which the page would not use.
            known.push_back(isPair ? Json({{"value", choice["value"]}, {"name", choice["name"]}}) : choice);
        }
    }
    return choices;
}

// The absolute path for people; the given one if the system does not tell.
std::string AbsolutePath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path given(std::u8string(path.begin(), path.end()));
    const std::filesystem::path absolute = std::filesystem::absolute(given, error);
    if (error) return path;
    const std::u8string text = absolute.u8string();
    return {text.begin(), text.end()};
}

// The field of a section or entry that a difference is about; the last member is empty for one that was added or
// removed.
using FieldKey = std::tuple<std::string, std::size_t, bool, std::string, std::size_t, std::string>;

// Difference::occurrence is that of the entry if there is one.
FieldKey KeyOf(const Difference& difference) {
    return {difference.table,
            difference.hasEntry ? 1 : difference.occurrence,
            difference.hasEntry,
            difference.entry,
            difference.hasEntry ? difference.occurrence : 1,
            difference.change == Change::Changed ? difference.field : ""};
}

// The three versions of one field.
struct Versions {
    std::optional<std::string> base{};
    std::optional<std::string> theirs{};
    std::optional<std::string> mine{};
    bool isTheirs = false;  // they have changed it
    bool isMine = false;
};

Json RowJson(const FieldKey& key, const Versions& versions) {
    const auto& [section, sectionNumber, hasEntry, entry, number, field] = key;
    Json row = Json::object();
    row["section"] = section;
    if (hasEntry) row["entry"] = entry;
    if (number > 1) row["occurrence"] = number;
    row["field"] = field;
    if (versions.base.has_value()) row["base"] = *versions.base;
    if (versions.theirs.has_value()) row["theirs"] = *versions.theirs;
    if (versions.mine.has_value()) row["mine"] = *versions.mine;
    row["by"] = !versions.isMine                   ? "theirs"
                : !versions.isTheirs               ? "mine"
                : versions.theirs == versions.mine ? "both"
                                                   : "conflict";
    return row;
}

std::optional<std::string> BeforeOf(const Difference& difference) {
    return difference.change == Change::Added ? std::nullopt : std::optional(difference.before);
}

std::optional<std::string> AfterOf(const Difference& difference) {
    return difference.change == Change::Removed ? std::nullopt : std::optional(difference.after);
}

}  // namespace

EditorSession::EditorSession(const SessionOptions& options) : options_(options) {
    RefuseStdin(Path());
    choices_ = ReadChoices(options_.choicesPath);
    current_.bytes = ReadBytes(Path(), &current_.stamp);
    current_.document.emplace(ParseDocument(Path(), current_.bytes, options_.file.RequestedForm()));
    current_.version = ++lastVersion_;
    RequireSettingsOrTable(Path(), *current_.document);
    if (options_.isReadOnly) {
        readOnly_ = "The file was opened for reading only.";
        return;
    }
    try {
        static_cast<void>(Changed({}));
    } catch (const ExitError& error) {
        readOnly_ = error.what();
    }
}

Json EditorSession::Form() const {
    Json json = Json::object();
    json["path"] = AbsolutePath(Path());
    json["file"] = FileNameOf(Path());
    json["version"] = current_.version;
    if (!readOnly_.empty()) json["readOnly"] = readOnly_;
    if (!choices_.empty()) json["choices"] = choices_;
    json.update(FormJson(*current_.document));
    return json;
}

Json EditorSession::Preview(std::uint64_t version, const std::vector<RequestedChange>& changes) const {
    RequireWritable();
    RequireVersion(current_, version);
    const Document after = Changed(changes).document;
    std::set<std::tuple<std::string, std::string>> asked;
    for (const RequestedChange& change : changes)
        asked.insert(
            {change.hasSection ? change.section : current_.document->tables().front().name, change.entry});
    Json json = {{"asked", Json::array()}, {"besides", Json::array()}};
    for (const Difference& difference : CompareDocuments(*current_.document, after, true)) {
        const bool isAsked = difference.hasEntry && difference.occurrence == 1 && difference.field != "eud" &&
                             asked.count({difference.table, difference.entry}) != 0;
        json[isAsked ? "asked" : "besides"].push_back(DifferenceJson(difference));
    }
    return json;
}

Json EditorSession::Save(std::uint64_t version, const std::vector<RequestedChange>& changes,
                         bool withBackup) {
    RequireWritable();
    RequireVersion(current_, version);
    return Replace(current_.stamp, changes, withBackup);
}

Json EditorSession::Overwrite(std::uint64_t version, const std::vector<RequestedChange>& changes,
                              bool withBackup) {
    RequireWritable();
    if (!onDisk_.has_value() || onDisk_->document.has_value())
        throw ExitError(ExitCode::kUsageError, "there is no unreadable file to replace");
    RequireVersion(*onDisk_, version);
    return Replace(onDisk_->stamp, changes, withBackup);
}

Json EditorSession::Rebase(std::uint64_t version) {
    RequireWritable();
    if (!onDisk_.has_value() || !onDisk_->document.has_value())
        throw ExitError(ExitCode::kUsageError, "there is no other version of the file to go on with");
    RequireVersion(*onDisk_, version);
    current_ = std::move(*onDisk_);
    onDisk_.reset();
    return Form();
}

EditorSession::State EditorSession::ReadState() const {
    State state;
    try {
        state.bytes = ReadBytes(Path(), &state.stamp);
        state.document.emplace(ParseDocument(Path(), state.bytes, options_.file.RequestedForm()));
        if (state.document->kind() != current_.document->kind()) {
            state.problem = Path() + ": found a " + describe(state.document->kind()) + ", expected a " +
                            describe(current_.document->kind());
            state.document.reset();
        }
    } catch (const ExitError& error) {
        state.problem = error.what();
    }
    return state;
}

void EditorSession::RequireVersion(const State& state, std::uint64_t version) const {
    if (state.version == version) return;
    throw ExitError(ExitCode::kUsageError, "the page shows another version of the file: load the page again");
}

void EditorSession::RequireWritable() const {
    if (!readOnly_.empty()) throw ExitError(ExitCode::kIoError, readOnly_);
}

ChangedFile EditorSession::Changed(const std::vector<RequestedChange>& changes) const {
    return MakeChangedFile(Path(), current_.bytes, current_.document->form(), changes);
}

Json EditorSession::Replace(const FileStamp& expected, const std::vector<RequestedChange>& changes,
                            bool withBackup) {
    State next;
    ChangedFile changed = Changed(changes);
    next.bytes = std::move(changed.bytes);
    next.document.emplace(std::move(changed.document));
    const bool isTable = current_.document->kind() == DocumentKind::Table;
    if (!onDisk_.has_value() && CompareDocuments(*current_.document, *next.document, isTable).empty())
        return {{"unchanged", true}};  // a save would change only the layout
    ReplaceOptions options;
    options.onlyIf = &expected;
    if (withBackup) options.backup = Text(Path() + ".bak");
    Problem problem;
    if (replaceFile(Path(), next.bytes, options, &next.stamp, &problem)) {
        next.version = ++lastVersion_;
        current_ = std::move(next);
        onDisk_.reset();
        return {{"saved", true}, {"document", Form()}};
    }
    if (problem.reason == Reason::Changed) return Conflict(*next.document);
    ThrowUnsaved(Path(), problem);
}

Json EditorSession::Conflict(const Document& mine) {
    onDisk_ = ReadState();
    onDisk_->version = ++lastVersion_;
    Json conflict = Json::object();
    conflict["version"] = onDisk_->version;
    if (!onDisk_->document.has_value()) {
        conflict["unreadable"] = onDisk_->problem;
        return {{"conflict", std::move(conflict)}};
    }
    // Not compared is "eud", which a save removes without being asked.
    std::map<FieldKey, Versions> fields;
    for (const Difference& difference : CompareDocuments(*current_.document, *onDisk_->document)) {
        const std::optional<std::string> before = BeforeOf(difference);
        fields[KeyOf(difference)] = {before, AfterOf(difference), before, true, false};
    }
    for (const Difference& difference : CompareDocuments(*current_.document, mine)) {
        Versions& versions = fields[KeyOf(difference)];
        versions.base = BeforeOf(difference);
        versions.mine = AfterOf(difference);
        versions.isMine = true;
        if (versions.isTheirs) continue;
        // They have left this field as it was, or removed the entry with it.
        FieldKey whole = KeyOf(difference);
        std::get<5>(whole).clear();
        const auto removed = fields.find(whole);
        const bool isRemoved =
            removed != fields.end() && removed->second.isTheirs && !removed->second.theirs.has_value();
        versions.isTheirs = isRemoved;
        if (!isRemoved) versions.theirs = versions.base;
    }
    Json& rows = conflict["rows"] = Json::array();
    for (const auto& [key, versions] : fields)
        rows.push_back(RowJson(key, versions));
    return {{"conflict", std::move(conflict)}};
}

}  // namespace mox::tool
