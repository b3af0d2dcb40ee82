// set, delete: change settings documents.
#include <algorithm>
#include <charconv>
#include <memory>
#include <vector>

#include "mox_xmlApi/document/text_format.h"
#include "tools/command_line.h"
#include "tools/open_document.h"
#include "tools/save_file.h"
#include "tools/system.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct KeyWritingArguments {
    FileArgument file{};
    std::string section{};
    std::string key{};
    std::string value{};
    bool isInt = false;
    bool isString = false;
    bool isHex = false;
    bool mayCreate = false;
    bool hasKey = false;
    bool withBackup = false;
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

bool WriteKey(const KeyWritingArguments& arguments, Profile& profile) {
    if (arguments.isInt)
        return profile.setInt(arguments.section, arguments.key, ParseNumber(arguments.value));
    if (arguments.isHex)
        return profile.setData(arguments.section, arguments.key, ParseBytes(arguments.value));
    return profile.setString(arguments.section, arguments.key, arguments.value);
}

// `form` is that of the file, or the one to create it in.
void WriteKeyAndSave(const KeyWritingArguments& arguments, Profile& profile, Form form) {
    RequireStorable(arguments.file.path, form, {arguments.section, arguments.key, arguments.value});
    if (!WriteKey(arguments, profile))
        throw ExitError(ExitCode::kIoError, arguments.file.path + ": cannot write the key");
    SaveProfile(profile, arguments.file.path, form, arguments.withBackup);
}

void RunSet(const KeyWritingArguments& arguments) {
    if (arguments.key.empty()) throw ExitError(ExitCode::kUsageError, "the key must not be empty");
    if (arguments.mayCreate && !Exists(arguments.file.path)) {
        Profile profile;
        KeyWritingArguments withoutBackup = arguments;  // there is no old file
        withoutBackup.withBackup = false;
        WriteKeyAndSave(withoutBackup, profile, arguments.file.RequestedForm().value_or(Form::Wide));
        return;
    }
    const Document document = ReadDocument(arguments.file.path, arguments.file.RequestedForm());
    // With --create, OpenProfile adds a root to a document of the kind Other.
    if (document.kind() != DocumentKind::Other || !arguments.mayCreate)
        RequireSettings(arguments.file.path, document);
    Profile profile = OpenProfile(arguments.file.path, document.form());
    WriteKeyAndSave(arguments, profile, document.form());
}

void RunDelete(const KeyWritingArguments& arguments) {
    const Document document = ReadDocument(arguments.file.path, arguments.file.RequestedForm());
    RequireSettings(arguments.file.path, document);
    Profile profile = OpenProfile(arguments.file.path, document.form());
    const bool isRemoved = arguments.hasKey ? profile.remove(arguments.section, arguments.key)
                                            : profile.removeSection(arguments.section);
    if (!isRemoved) {
        const std::string name = QuotedIfNeeded(arguments.section);
        throw ExitError(
            ExitCode::kNotFound,
            arguments.file.path + (arguments.hasKey ? ": no key " + name + "/" + QuotedIfNeeded(arguments.key)
                                                    : ": no section " + name));
    }
    SaveProfile(profile, arguments.file.path, document.form(), arguments.withBackup);
}

}  // namespace

void AddKeyWritingVerbs(CLI::App& app, Output& /*output*/) {
    const auto arguments = std::make_shared<KeyWritingArguments>();

    CLI::App& set = AddVerb(app, "set", "Write a key; a missing section or key is added",
                            "mox-xml set camera.xml Camera Model \"VC-1240 M\"\n"
                            "mox-xml set camera.xml Trigger Delay --int -120 --backup\n"
                            "mox-xml set camera.xml Camera ToneCurve --hex 0010FF\n"
                            "mox-xml set new.xml Camera Model VC-1240M --create --narrow");
    AddFileArgument(set, arguments->file);
    set.add_option("SECTION", arguments->section, "The section")->required();
    set.add_option("KEY", arguments->key, "The key")->required();
    set.add_option("VALUE", arguments->value, "The value")->required();
    CLI::Option* const isInt =
        set.add_flag("--int", arguments->isInt, "VALUE is a decimal number of 32 bits");
    CLI::Option* const isString =
        set.add_flag("--string", arguments->isString, "VALUE is text (the default)");
    CLI::Option* const isHex =
        set.add_flag("--hex", arguments->isHex, "VALUE is bytes, two hexadecimal digits each");
    isInt->excludes(isString)->excludes(isHex);
    isString->excludes(isHex);
    set.add_flag("--create", arguments->mayCreate, "Create the file, or its root element, if it is missing");
    AddBackupOption(set, arguments->withBackup);
    set.callback([arguments] { RunSet(*arguments); });

    CLI::App& remove = AddVerb(app, "delete", "Delete a key, or a section with all its keys",
                               "mox-xml delete camera.xml Network LegacyName\n"
                               "mox-xml delete camera.xml Network --backup");
    AddFileArgument(remove, arguments->file);
    remove.add_option("SECTION", arguments->section, "The section")->required();
    CLI::Option* const key =
        remove.add_option("KEY", arguments->key, "The key; by default the whole section is deleted");
    AddBackupOption(remove, arguments->withBackup);
    remove.callback([arguments, key] {
        arguments->hasKey = key->count() > 0;
        RunDelete(*arguments);
    });
}

}  // namespace mox::tool
