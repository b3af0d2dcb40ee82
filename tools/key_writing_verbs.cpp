// set, delete: change settings documents.
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <memory>
#include <vector>

#include "mox_xmlApi/document/text_format.h"
#include "tools/arguments.h"
#include "tools/edited_file.h"
#include "tools/entry_fields.h"
#include "tools/exit_error.h"
#include "tools/value_argument.h"
#include "tools/value_check.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct KeyWritingArguments {
    EditArguments edit{};
    std::string section{};
    std::string key{};
    ValueArgument value{};
    ValueCheck check{};
    std::string type{};
    bool isInt = false;
    bool isString = false;
    bool isHex = false;
    bool mayCreate = false;
    bool hasKey = false;
    bool hasType = false;
};

std::int32_t ParseNumber(const std::string& text) {
    std::int32_t number = 0;
    const char* const begin = text.data() + (text.size() > 1 && text[0] == '+' && text[1] != '-' ? 1 : 0);
    const char* const end = text.data() + text.size();
    const auto [parsedEnd, error] = std::from_chars(begin, end, number);
    if (error == std::errc() && parsedEnd == end) return number;
    throw ExitError(ExitCode::kUsageError,
                    QuotedIfNeeded(text) + " is not a decimal number from -2147483648 to 2147483647");
}

std::uint8_t ParseDigit(char character) {
    if (character >= '0' && character <= '9') return static_cast<std::uint8_t>(character - '0');
    if (character >= 'A' && character <= 'F') return static_cast<std::uint8_t>(character - 'A' + 10);
    if (character >= 'a' && character <= 'f') return static_cast<std::uint8_t>(character - 'a' + 10);
    throw ExitError(ExitCode::kUsageError, "--hex accepts only hexadecimal digits");
}

std::vector<std::uint8_t> ParseBytes(const std::string& text) {
    if (text.size() % 2 != 0) throw ExitError(ExitCode::kUsageError, "--hex requires two digits per byte");
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < text.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(ParseDigit(text[i]) << 4 | ParseDigit(text[i + 1])));
    return bytes;
}

std::size_t CountSections(const Document& document, const std::string& name) {
    return static_cast<std::size_t>(
        std::count_if(document.tables().begin(), document.tables().end(),
                      [&](const DocumentTable& table) { return table.isTable && table.name == name; }));
}

// The text that is stored for the value.
std::string StoredText(const KeyWritingArguments& arguments, const std::string& value) {
    if (arguments.isInt) return std::to_string(ParseNumber(value));
    if (!arguments.isHex) return value;
    const std::vector<std::uint8_t> bytes = ParseBytes(value);
    return front::HexOf(bytes.data(), bytes.size());
}

// Writes a key that is missing with the type. An existing key must have it.
bool WriteTypedKey(const KeyWritingArguments& arguments, EditedFile& file, const std::string& text,
                   Problem& problem) {
    Profile& profile = file.Settings();
    std::optional<Section> section = profile.findSection(arguments.section, &problem);
    if (!section.has_value() && problem.reason == Reason::NoSuchSection)
        section = profile.makeSection(arguments.section, {}, &problem);
    if (!section.has_value()) return false;
    Entry entry;
    entry.name = arguments.key;
    entry.value = text;
    entry.type = ValueTypeOf(arguments.type);
    const std::optional<Entry> old = section->find(arguments.key);
    if (!old.has_value()) return section->add(entry, Eud::DoNotSet, &problem);
    if (old->type == entry.type && old->shape == Shape::Single)
        return profile.setString(arguments.section, arguments.key, text, &problem);
    throw ExitError(ExitCode::kUsageError,
                    file.Path() + ": the key " + QuotedIfNeeded(arguments.section) + "/" +
                        QuotedIfNeeded(arguments.key) +
                        " has another type (see \"mox-xml entry set --help\" to change it)");
}

void RunSet(const KeyWritingArguments& arguments, Output& output) {
    if (arguments.key.empty()) throw ExitError(ExitCode::kUsageError, "the key must not be empty");
    if (!arguments.value.IsGiven())
        throw ExitError(ExitCode::kUsageError, std::string("VALUE is required") + kDashHint);
    EditedFile file(arguments.edit, arguments.mayCreate ? Missing::Create : Missing::Refuse);
    Profile& profile = file.Settings();
    const std::string text = StoredText(arguments, arguments.value.Read());
    Problem problem;
    const bool isWritten = arguments.hasType
                               ? WriteTypedKey(arguments, file, text, problem)
                               : profile.setString(arguments.section, arguments.key, text, &problem);
    if (!isWritten) ThrowRefused(file, problem);
    file.Save(
        [&](const Document& after) {
            const DocumentEntry* const entry = after.findEntry(arguments.section, arguments.key);
            if (entry == nullptr || entry->effectiveValue() != text) return false;
            arguments.check.Run(file.Path(), *entry, output);
            return true;
        },
        output);
}

void RunDelete(const KeyWritingArguments& arguments, Output& output) {
    EditedFile file(arguments.edit);
    Profile& profile = file.Settings();
    Problem problem;
    const bool isRemoved = arguments.hasKey ? profile.remove(arguments.section, arguments.key, &problem)
                                            : profile.removeSection(arguments.section, &problem);
    if (!isRemoved) {
        const bool isMissing = problem.reason == Reason::NoSuchSection || problem.reason == Reason::NoSuchKey;
        if (!isMissing) ThrowRefused(file, problem);
        const std::string name = QuotedIfNeeded(arguments.section);
        throw ExitError(
            ExitCode::kNotFound,
            file.Path() + (arguments.hasKey ? ": no key " + name + "/" + QuotedIfNeeded(arguments.key)
                                            : ": no section " + name));
    }
    const std::size_t count = CountSections(*file.Before(), arguments.section);
    file.Save(
        [&](const Document& after) {
            if (!arguments.hasKey) return CountSections(after, arguments.section) < count;
            const DocumentTable* const section = after.findTable(arguments.section);
            return section != nullptr && section->findElement(arguments.key) == nullptr;
        },
        output);
}

}  // namespace

void AddKeyWritingVerbs(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<KeyWritingArguments>();

    CLI::App& set = AddVerb(app, "set", "Write a key; a missing section or key is added",
                            "mox-xml set camera.xml Camera Model \"VC-1240 M\"\n"
                            "mox-xml set camera.xml Trigger Delay --int -120 --backup\n"
                            "mox-xml set camera.xml Camera ToneCurve --hex 0010FF\n"
                            "mox-xml set new.xml Camera Model VC-1240M --create --narrow");
    arguments->edit.AddTo(set);
    set.add_option("SECTION", arguments->section, "The section")->required();
    set.add_option("KEY", arguments->key, "The key")->required();
    arguments->value.AddTo(set);
    arguments->check.AddTo(set);
    CLI::Option* const isInt =
        set.add_flag("--int", arguments->isInt, "VALUE is a decimal number of 32 bits");
    CLI::Option* const isString =
        set.add_flag("--string", arguments->isString, "VALUE is text (the default)");
    CLI::Option* const isHex =
        set.add_flag("--hex", arguments->isHex, "VALUE is bytes, two hexadecimal digits each");
    isInt->excludes(isString)->excludes(isHex);
    isString->excludes(isHex);
    set.add_flag("--create", arguments->mayCreate, "Create the file, or its root element, if it is missing");
    CLI::Option* const type =
        set.add_option("--type", arguments->type, R"(Value type of a new key, for example "long")");
    type->excludes(isHex);
    set.callback([arguments, type, &output] {
        arguments->hasType = type->count() > 0;
        RunSet(*arguments, output);
    });

    CLI::App& remove = AddVerb(app, "delete", "Delete a key, or a section with all its keys",
                               "mox-xml delete camera.xml Network LegacyName\n"
                               "mox-xml delete camera.xml Network --backup");
    const auto removed = std::make_shared<KeyWritingArguments>();
    removed->edit.AddTo(remove);
    remove.add_option("SECTION", removed->section, "The section")->required();
    CLI::Option* const key =
        remove.add_option("KEY", removed->key, "The key; by default the whole section is deleted");
    remove.callback([removed, key, &output] {
        removed->hasKey = key->count() > 0;
        RunDelete(*removed, output);
    });
}

}  // namespace mox::tool
