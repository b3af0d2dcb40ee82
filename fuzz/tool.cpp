// Runs the verbs of mox-xml on hostile files, with hostile names and values: no run crashes, leaves files behind or sends
// control characters to a terminal; a run that fails changes nothing; and after a verb that writes has succeeded, the file
// has what was asked for.
//
// The input: a digit that chooses the file, for some of them its text up to a zero byte, then runs. Each run is a letter or
// any other byte that chooses the verb, then its arguments as fuzz_input.h describes them. With MOX_FUZZ_TRACE in the
// environment each run is printed.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "fuzz/tool_runs.h"
#include "mox_xmlApi/mox_xmlApi.hpp"

namespace mox::fuzz {
namespace {

constexpr std::size_t kMostRuns = 6;

// S keeps its values in the entries, U in the presentation data.
constexpr std::string_view kSettings =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Settings "
    "xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">\n"
    "\t<!-- one -->\n\t<Table name=\"S\" eud=\"true\" editable=\"true\">\n"
    "\t\t<Var name=\"A\" type=\"long\" id=\"4\" eud=\"true\"><Value>1</Value><UI control=\"num\" "
    "prov_index=\"7\" "
    "prov_owner=\"app\" name=\"shown\" minVal=\"0\"><Comment>comment</Comment><Value>2</Value></UI></Var>\n"
    "\t\t<Var name=\"B\" type=\"string\"><Value>3</Value></Var><Var name=\"C\" type=\"byte\" array=\"array\">"
    "<Value>00FF</Value></Var><Var name=\"D\"/></Table>\n\t<Table name=\"U\" first_id=\"5\">"
    "<Var name=\"A\" type=\"long\"><UI control=\"num\"><Value>1</Value></UI></Var>"
    "<Var name=\"B\" type=\"bool\"><UI control=\"switch\"><Comment>c</Comment><Value>0</Value></UI></Var>"
    "</Table>\n</Settings>\n";
constexpr std::string_view kTable =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Table xmlns:noNamespaceSchemaLocation=\"MXTable.xsd\" "
    "name=\"S\">\n"
    "\t<Var name=\"A\" type=\"double\" eud=\"true\"><Value>1.5</Value><UI minVal=\"0\"/></Var>\n"
    "\t<Var name=\"B\" type=\"string\"><Value>b</Value></Var>\n</Table>\n";

std::string FileOf(std::string_view text, bool isWide) {
    std::string bytes;
    for (const char character : text) {
        bytes += character;
        if (isWide) bytes += '\0';
    }
    return bytes.append(isWide ? 2 : 1, '\0');
}

// An option with a value that may begin with anything.
std::string Option(const std::string& name, const std::string& value) {
    return name + "=" + value;
}

class Runs {
  public:
    Runs(const ToolFolder& folder, const std::uint8_t* data, std::size_t size) : input_(data, size) {
        folder.Clear();
    }

    void Execute() {
        WriteFile();
        for (std::size_t i = 0; i < kMostRuns && !input_.IsEmpty(); ++i)
            ExecuteOne();
    }

  private:
    void WriteFile() {
        const std::size_t option = input_.Below(8);
        if (option == 1 || option == 2) ToolFolder::Write(kFile, FileOf(kSettings, option == 2));
        if (option == 3) ToolFolder::Write(kFile, FileOf(kTable, true));
        if (option == 4 || option == 5) ToolFolder::Write(kFile, FileOf(input_.Until('\0'), option == 5));
        if (option == 6) ToolFolder::Write(kFile, std::string(input_.Until('\0')) + std::string("\0more", 5));
        if (option == 7) ToolFolder::Write(kFile, std::string(input_.Until('\0')));
        ToolFolder::Write(kOther, FileOf(kSettings, false));
    }

    // ---- arguments

    // Without "/" and "\", so that no path leads out of the folder, and without zeros, which no argument has.
    static std::string Harmless(std::string text) {
        for (char& character : text) {
            if (character == '/' || character == '\\' || character == ':' || character == '\0')
                character = '_';
        }
        return text;
    }

    std::string AnyText() {
        const WideString units = input_.Text();
        return Harmless(front::Utf8Of(front::UnitsView(front::Units(units.begin(), units.end()))));
    }

    std::string Name() {
        constexpr std::array<const char*, 7> kNames = {"S", "A", "B", "U", "C", "D", "N"};
        const std::size_t number = input_.Below(8);
        return number < kNames.size() ? kNames[number] : AnyText();
    }

    // Options of verbs that write.
    Run Writing(std::vector<std::string> words) {
        Run run;
        run.arguments = std::move(words);
        run.writes = kFile;
        const std::size_t flags = input_.Below(8);
        run.withBackup = (flags & 1) != 0;
        if (run.withBackup) run.arguments.emplace_back("--backup");
        if ((flags & 2) != 0) run.arguments.emplace_back("--lock");
        if ((flags & 4) != 0) run.isTerminal = true;
        return run;
    }

    // Adds what is not an option, and runs the tool. Returns whether it succeeded.
    static bool Succeeds(Run run, const std::vector<std::string>& arguments) {
        run.arguments.emplace_back("--");
        run.arguments.insert(run.arguments.end(), arguments.begin(), arguments.end());
        return ToolFolder::Execute(run).code == 0;
    }

    // ---- what the file has

    static Document Written(const std::string& name = kFile) {
        const std::optional<std::string> bytes = ToolFolder::Read(name);
        Check(bytes.has_value(), "the file that was written is there");
        std::optional<Document> document = Document::parse(*bytes);
        Check(document.has_value(), "the file that was written parses");
        return std::move(*document);
    }

    static std::optional<Document> Before() {
        const std::optional<std::string> bytes = ToolFolder::Read(kFile);
        return bytes.has_value() ? Document::parse(*bytes) : std::nullopt;
    }

    static std::string Value(const Document& document, const std::string& section, const std::string& key) {
        const DocumentEntry* const entry = document.findEntry(section, key);
        Check(entry != nullptr, "the key that was written is there");
        return entry->effectiveValue();
    }

    static std::size_t CountSections(const Document& document, const std::string& name) {
        const auto& tables = document.tables();
        return static_cast<std::size_t>(
            std::count_if(tables.begin(), tables.end(),
                          [&](const DocumentTable& table) { return table.isTable && table.name == name; }));
    }

    // All of a table but its name.
    static std::string Shown(const DocumentTable& table) {
        std::string text = std::to_string(table.firstId) + " " + std::to_string(table.type) + " " +
                           std::to_string(table.isEditable) + std::to_string(table.hasEud);
        for (const DocumentEntry& entry : table.entries) {
            text += "\n" + entry.name + " " + entry.describeType() + " " + std::to_string(entry.id) + " " +
                    std::to_string(entry.hasEud) + std::to_string(entry.isValueLocalised) + " '" +
                    entry.value + "'";
            if (entry.ui == nullptr) continue;
            const DocumentPresentation& ui = *entry.ui;
            text += " " + ui.control + " " + ui.access + " " + std::to_string(ui.flags) + " " + ui.provider +
                    " " + std::to_string(ui.providerIndex) + " " + ui.regen + " " + ui.minimum + " " +
                    ui.maximum + " '" + ui.shownName + "' '" + ui.comment + "' '" + ui.value + "'";
        }
        return text;
    }

    // ---- runs

    void ExecuteOne() {
        switch (input_.Below(16)) {
            case 0:
                return Set();
            case 1:
                return Delete();
            case 2:
                return EntrySet();
            case 3:
                return EntryAdd();
            case 4:
                return EntryRename();
            case 5:
                return EntryRemove();
            case 6:
                return SectionAdd();
            case 7:
                return SectionSet();
            case 8:
                return SectionRenameOrCopy();
            case 9:
                return SectionRemove();
            case 10:
                return New();
            case 11:
                return Convert();
            case 12:
                return Apply();
            case 13:
                return DiffAndApply();
            case 14:
                return Read();
            default:
                return Anything();
        }
    }

    void Set() {
        constexpr std::array<const char*, 6> kOptions = {"--string", "--int",       "--hex",
                                                         "--create", "--type=long", "--strict"};
        const std::size_t option = input_.Below(kOptions.size());
        Run run = Writing({"set", kOptions[option]});
        const std::string section = Name();
        const std::string key = Name();
        const std::string value = AnyText();
        const bool isInput = input_.Flag();
        run.input = value + "\n";
        if (isInput) run.arguments.emplace_back("--stdin");
        const bool isSet =
            isInput ? Succeeds(run, {kFile, section, key}) : Succeeds(run, {kFile, section, key, value});
        if (!isSet) return;
        const Document document = Written();
        const std::string found = Value(document, section, key);
        if (option == 2) {
            std::string upper = value;
            for (char& digit : upper)
                digit = digit >= 'a' && digit <= 'f' ? static_cast<char>(digit - 'a' + 'A') : digit;
            Check(found == upper, "the bytes are in the file");
        } else if (option == 1) {
            const std::optional<Profile> profile = Profile::parse(*ToolFolder::Read(kFile));
            Check(profile.has_value() && profile->get<int>(section, key).has_value(),
                  "the number is in the file");
        } else if (!isInput || value.empty() || (value.back() != '\r' && value.back() != '\n')) {
            Check(found == value, "the value is in the file");
        }
    }

    void Delete() {
        const std::optional<Document> before = Before();
        const bool hasKey = input_.Flag();
        const std::string section = Name();
        const std::string key = hasKey ? Name() : "";
        Run run = Writing({"delete"});
        if (!(hasKey ? Succeeds(run, {kFile, section, key}) : Succeeds(run, {kFile, section}))) return;
        const Document after = Written();
        const DocumentTable* const table = after.findTable(section);
        if (!hasKey) {
            Check(CountSections(after, section) + 1 == CountSections(*before, section),
                  "the section is gone");
        } else {
            Check(table != nullptr, "the section of a deleted key stays");
            const bool isGone = std::none_of(
                table->entries.begin(), table->entries.end(),
                [&](const auto& entry) { return (entry.hasName || key.empty()) && entry.name == key; });
            Check(isGone, "the key is gone");
        }
    }

    // The table that entry verbs work on: adds the option.
    std::optional<std::string> Target(Run& run) {
        if (input_.Flag()) return std::nullopt;
        const std::string section = Name();
        run.arguments.push_back(Option("--section", section));
        return section;
    }

    static const DocumentTable& TableIn(const Document& document, const std::optional<std::string>& section) {
        const DocumentTable* const table =
            section.has_value() ? document.findTable(*section) : &document.tables().front();
        Check(table != nullptr, "the table that was changed is there");
        return *table;
    }

    // Field options of entry set and entry add; sets what the file must have then.
    struct Fields {
        std::optional<std::string> value{};
        std::optional<std::string> comment{};
        std::optional<std::string> shownName{};
        std::optional<std::uint32_t> id{};
        bool isWithoutUi = false;
    };

    Fields AnyFields(Run& run) {
        Fields fields;
        const std::size_t choice = input_.Below(64);
        if ((choice & 1) != 0) fields.comment = AnyText();
        if ((choice & 2) != 0) fields.shownName = AnyText();
        if ((choice & 4) != 0) fields.id = input_.Number();
        if ((choice & 8) != 0) run.arguments.emplace_back("--no-ui");
        if ((choice & 16) != 0) run.arguments.emplace_back("--type=ulong");
        if ((choice & 32) != 0) run.arguments.emplace_back("--control=num");
        fields.isWithoutUi = (choice & 8) != 0;
        if (fields.comment.has_value()) run.arguments.push_back(Option("--comment", *fields.comment));
        if (fields.shownName.has_value()) run.arguments.push_back(Option("--shown-name", *fields.shownName));
        if (fields.id.has_value()) run.arguments.push_back(Option("--id", std::to_string(*fields.id)));
        if (input_.Flag()) fields.value = AnyText();
        return fields;
    }

    static void CheckFields(const DocumentTable& table, const std::string& name, const Fields& fields) {
        const DocumentEntry* const entry = table.find(name);
        Check(entry != nullptr, "the entry that was written is there");
        const DocumentPresentation none;
        const DocumentPresentation& ui = entry->ui == nullptr ? none : *entry->ui;
        if (fields.value.has_value())
            Check(entry->effectiveValue() == *fields.value, "the entry has the value");
        if (fields.comment.has_value()) Check(ui.comment == *fields.comment, "the entry has the comment");
        if (fields.shownName.has_value())
            Check(ui.shownName == *fields.shownName, "the entry has the shown name");
        if (fields.id.has_value()) Check(entry->id == *fields.id, "the entry has the id");
        if (fields.isWithoutUi) Check(entry->ui == nullptr, "the entry has no presentation data");
    }

    void EntrySet() {
        Run run = Writing({"entry", "set"});
        const std::optional<std::string> section = Target(run);
        const std::string name = Name();
        const Fields fields = AnyFields(run);
        const std::optional<Document> before = Before();
        std::vector<std::string> arguments{kFile, name};
        if (fields.value.has_value()) arguments.push_back(*fields.value);
        if (!Succeeds(run, arguments)) return;
        const Document after = Written();
        CheckFields(TableIn(after, section), name, fields);
        if (!fields.value.has_value()) {
            const DocumentEntry* const old = TableIn(*before, section).find(name);
            const DocumentEntry* const entry = TableIn(after, section).find(name);
            Check(old == nullptr || old->effectiveValue() == entry->effectiveValue() ||
                      old->effectiveValue().find('\n') != std::string::npos,
                  "a value that was not to be changed stays");
        }
    }

    void EntryAdd() {
        Run run = Writing({"entry", "add"});
        const std::optional<std::string> section = Target(run);
        const std::string name = Name();
        const Fields fields = AnyFields(run);
        std::string next;
        if (input_.Flag()) {
            next = Name();
            run.arguments.push_back(Option("--before", next));
        }
        std::vector<std::string> arguments{kFile, name};
        if (fields.value.has_value()) arguments.push_back(*fields.value);
        if (!Succeeds(run, arguments)) return;
        const Document after = Written();
        const DocumentTable& table = TableIn(after, section);
        CheckFields(table, name, fields);
        if (next.empty()) return;
        const auto at = [&table](const std::string& wanted) {
            return std::find_if(table.entries.begin(), table.entries.end(), [&](const DocumentEntry& entry) {
                return entry.hasName && entry.name == wanted;
            });
        };
        Check(at(name) < at(next), "the entry is before the other one");
    }

    void EntryRename() {
        Run run = Writing({"entry", "rename"});
        const std::optional<std::string> section = Target(run);
        const std::string name = Name();
        const std::string newName = Name();
        const std::optional<Document> before = Before();
        if (!Succeeds(run, {kFile, name, newName})) return;
        const Document after = Written();
        const DocumentEntry* const old = TableIn(*before, section).find(name);
        const DocumentEntry* const renamed = TableIn(after, section).find(newName);
        Check(renamed != nullptr && old != nullptr && renamed->effectiveValue() == old->effectiveValue(),
              "the entry has the new name and its value");
    }

    void EntryRemove() {
        Run run = Writing({"entry", "remove"});
        const std::optional<std::string> section = Target(run);
        const std::string name = Name();
        const bool isAll = input_.Flag();
        if (isAll) run.arguments.emplace_back("--all");
        const std::optional<Document> before = Before();
        if (!Succeeds(run, {kFile, name})) return;
        const Document after = Written();
        const auto count = [&](const Document& document) {
            const auto& entries = TableIn(document, section).entries;
            return std::count_if(entries.begin(), entries.end(), [&](const DocumentEntry& entry) {
                return (entry.hasName || name.empty()) && entry.name == name;
            });
        };
        Check(isAll ? count(after) == 0 : count(after) == count(*before) - 1, "the entry is gone");
    }

    void SectionAdd() {
        Run run = Writing({"section", "add"});
        const std::string name = Name();
        const std::uint32_t id = input_.Number();
        run.arguments.push_back(Option("--first-id", std::to_string(id)));
        const bool isEditable = input_.Flag();
        if (isEditable) run.arguments.emplace_back("--editable");
        if (!Succeeds(run, {kFile, name})) return;
        const Document after = Written();
        const DocumentTable* const table = after.findTable(name);
        Check(table != nullptr && table->entries.empty() && table->firstId == id &&
                  table->isEditable == isEditable,
              "the new section is there");
    }

    void SectionSet() {
        Run run = Writing({"section", "set"});
        const std::string name = Name();
        const std::uint32_t id = input_.Number();
        const std::size_t option = input_.Below(4);
        if ((option & 1) != 0) run.arguments.push_back(Option("--first-id", std::to_string(id)));
        run.arguments.emplace_back((option & 2) != 0 ? "--editable" : "--no-editable");
        if (!Succeeds(run, {kFile, name})) return;
        const Document after = Written();
        const DocumentTable* const table = after.findTable(name);
        Check(table != nullptr && table->isEditable == ((option & 2) != 0) &&
                  ((option & 1) == 0 || table->firstId == id),
              "the section has what it was given");
    }

    void SectionRenameOrCopy() {
        const bool isCopy = input_.Flag();
        Run run = Writing({"section", isCopy ? "copy" : "rename"});
        const std::string name = Name();
        const std::string newName = Name();
        const std::optional<Document> before = Before();
        if (!Succeeds(run, {kFile, name, newName})) return;
        const Document after = Written();
        const DocumentTable* const found = after.findTable(newName);
        Check(found != nullptr && Shown(*found) == Shown(*before->findTable(name)),
              "the section has its content under the new name");
        Check(after.tables().size() == before->tables().size() + (isCopy ? 1 : 0), "no section is lost");
        const std::size_t left = CountSections(after, name);
        Check(left == CountSections(*before, name) - (isCopy ? 0 : 1), "the old name stays only with a copy");
    }

    void SectionRemove() {
        Run run = Writing({"section", "remove"});
        const std::string name = Name();
        const std::optional<Document> before = Before();
        if (!Succeeds(run, {kFile, name})) return;
        Check(CountSections(Written(), name) + 1 == CountSections(*before, name), "the section is gone");
    }

    void New() {
        Run run = Writing({"new"});
        if (input_.Flag()) run.arguments.emplace_back("--overwrite");
        const bool isTable = input_.Flag();
        const std::string name = Name();
        if (isTable) run.arguments.push_back(Option("--table", name));
        if (!Succeeds(run, {kFile})) return;
        const Document after = Written();
        Check(after.kind() == (isTable ? DocumentKind::Table : DocumentKind::Settings),
              "the new document is there");
        if (isTable) Check(after.tables().front().name == name, "the new table has its name");
    }

    void Convert() {
        Run run = Writing({"convert"});
        const bool isNarrow = input_.Flag();
        run.arguments.emplace_back(isNarrow ? "--narrow" : "--wide");
        constexpr std::array<const char*, 4> kFrom = {"", "--from=utf-8", "--from=utf-16", "--from=latin1"};
        const std::string from = kFrom[input_.Below(kFrom.size())];
        if (!from.empty()) run.arguments.push_back(from);
        const std::optional<Document> before = Before();
        if (!Succeeds(run, {kFile}) || !from.empty()) return;
        const std::optional<Document> after =
            Document::parse(*ToolFolder::Read(kFile), isNarrow ? Form::Narrow : Form::Wide);
        Check(after.has_value() && before.has_value() && after->units() == before->units(),
              "the text is the same");
    }

    void Apply() {
        Run run = Writing({"apply"});
        const std::string section = Name();
        const std::string entry = Name();
        const std::string value = AnyText();
        nlohmann::json change = {{"section", section}, {"entry", entry}, {"value", value}};
        run.input =
            nlohmann::json::array({change}).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
        if (!Succeeds(run, {kFile, "-"})) return;
        const Document after = Written();
        const DocumentEntry* const found = after.kind() == DocumentKind::Table
                                               ? after.tables().front().find(entry)
                                               : after.findEntry(section, entry);
        // JSON has no unpaired surrogates.
        const bool isText = nlohmann::json::parse(run.input)[0]["value"] == value;
        if (isText && nlohmann::json::parse(run.input)[0]["entry"] == entry &&
            nlohmann::json::parse(run.input)[0]["section"] == section)
            Check(found != nullptr && found->effectiveValue() == value, "the value is applied");
    }

    // What diff prints, apply makes: then both files have the same content.
    void DiffAndApply() {
        Run diff;
        diff.arguments = {"diff", "--json", kFile, kOther};
        const RunResult differences = ToolFolder::Execute(diff);
        if (differences.code != 1) return;
        Run run = Writing({"apply"});
        run.input = differences.data;
        if (!Succeeds(run, {kFile, "-"})) return;
        diff.arguments = {"diff", kFile, kOther};
        const RunResult left = ToolFolder::Execute(diff);
        Check(left.code == 0, "nothing differs after the differences were applied");
    }

    void Read() {
        constexpr std::array<const char*, 7> kVerbs = {"sections", "keys",  "get",  "entries",
                                                       "show",     "check", "entry"};
        const std::size_t verb = input_.Below(kVerbs.size());
        Run run;
        run.arguments = {kVerbs[verb]};
        if (verb == 6) run.arguments.emplace_back("get");
        const std::size_t option = input_.Below(4);
        run.isTerminal = input_.Flag();
        run.hasTabs = verb == 3;
        if (option == 1) run.arguments.emplace_back("--json");
        if (option == 2) {
            run.arguments.emplace_back("-z");
            run.isExact = true;
        }
        if (verb == 5 && option == 3) run.arguments.emplace_back("--values");
        std::vector<std::string> names;
        const bool isInput = input_.Flag();
        if (isInput) run.input = ToolFolder::Read(kFile).value_or("");
        names.emplace_back(isInput ? "-" : kFile);
        if (verb == 1 || verb == 2) names.push_back(Name());
        if (verb == 2 || verb == 6) names.push_back(Name());
        if (verb == 3 || verb == 6) static_cast<void>(Target(run));
        static_cast<void>(Succeeds(run, names));
    }

    // Words without a plan. Of verbs that write, only those that write the file itself.
    void Anything() {
        constexpr std::array<const char*, 14> kWords = {
            "show",   "get",    kFile,    kOther,     "entry",        "section", "set",
            "--json", "--help", "--wide", "--narrow", "--value-from", "check",   "diff"};
        Run run;
        run.isTerminal = true;
        run.hasTabs = true;
        run.isExact = false;
        const std::size_t count = input_.Below(8);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t word = input_.Below(kWords.size() + 2);
            run.arguments.push_back(word < kWords.size() ? kWords[word] : AnyText());
        }
        const auto has = [&run](const char* word) {
            return std::any_of(run.arguments.begin(), run.arguments.end(),
                               [word](const std::string& argument) { return argument == word; });
        };
        for (const std::string& argument : run.arguments) {
            if (argument.rfind("-z", 0) == 0 || argument.rfind("--null", 0) == 0) run.isExact = true;
            if (argument.rfind("--backup", 0) == 0) run.withBackup = true;
        }
        const bool mayWriteOther = has("new") || has("export") || has("convert") || has("apply") ||
                                   has("--create") || has("--value-from");
        if (mayWriteOther || has("edit")) return;  // the editor runs until its page is closed
        run.writes =
            has("set") || has("rename") || has("copy") || has("remove") || has("add") || has("delete")
                ? WrittenBy(run.arguments)
                : "";
        static_cast<void>(ToolFolder::Execute(run));
    }

    // The file that such words write: the first of the two that is named.
    static std::string WrittenBy(const std::vector<std::string>& arguments) {
        for (const std::string& argument : arguments) {
            if (argument == kFile || argument == kOther) return argument;
        }
        return "";
    }

    FuzzInput input_;
};

}  // namespace
}  // namespace mox::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const mox::fuzz::ToolFolder folder;
    mox::fuzz::Runs(folder, data, size).Execute();
    return 0;
}
