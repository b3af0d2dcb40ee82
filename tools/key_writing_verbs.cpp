// set, delete: changing settings documents.
#include <algorithm>
#include <charconv>
#include <memory>
#include <vector>

#include "tools/command_line.h"
#include "tools/document_model.h"
#include "tools/saving.h"
#include "tools/shown_text.h"
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

std::int32_t Number(const std::string& text) {
    std::int32_t number = 0;
    const char* const begin = text.data() + (text.size() > 1 && text[0] == '+' && text[1] != '-' ? 1 : 0);
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (error == std::errc() && stop == end) return number;
    throw Stop(ExitCode::kUsage,
               ShownName(text) + " is no decimal number between -2147483648 and 2147483647");
}

std::uint8_t Digit(char character) {
    if (character >= '0' && character <= '9') return static_cast<std::uint8_t>(character - '0');
    if (character >= 'A' && character <= 'F') return static_cast<std::uint8_t>(character - 'A' + 10);
    if (character >= 'a' && character <= 'f') return static_cast<std::uint8_t>(character - 'a' + 10);
    throw Stop(ExitCode::kUsage, "--hex wants hexadecimal digits alone");
}

std::vector<std::uint8_t> Bytes(const std::string& text) {
    if (text.size() % 2 != 0) throw Stop(ExitCode::kUsage, "--hex wants two digits for each byte");
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < text.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(Digit(text[i]) << 4 | Digit(text[i + 1])));
    return bytes;
}

bool Write(const KeyWritingArguments& arguments, Profile& profile) {
    if (arguments.isInt) return profile.setInt(arguments.section, arguments.key, Number(arguments.value));
    if (arguments.isHex) return profile.setData(arguments.section, arguments.key, Bytes(arguments.value));
    return profile.setString(arguments.section, arguments.key, arguments.value);
}

void SetIn(const KeyWritingArguments& arguments, Profile& profile, Form form) {
    RequireKept(arguments.file.path, form, {arguments.section, arguments.key, arguments.value});
    if (!Write(arguments, profile))
        throw Stop(ExitCode::kNoAccess, arguments.file.path + ": the key cannot be written");
    SaveProfile(profile, arguments.file.path, form, arguments.withBackup);
}

void Set(const KeyWritingArguments& arguments) {
    if (arguments.key.empty()) throw Stop(ExitCode::kUsage, "a key has a name");
    if (arguments.mayCreate && !Exists(arguments.file.path)) {
        Profile profile;
        KeyWritingArguments withoutBackup = arguments;
        withoutBackup.withBackup = false;
        SetIn(withoutBackup, profile, arguments.file.ForcedForm().value_or(Form::Wide));
        return;
    }
    const SourceFile file(arguments.file.path, arguments.file.ForcedForm());
    file.RequireParsed();
    const DocumentModel document = ReadDocument(file);
    if (document.kind != DocumentKind::Other || !arguments.mayCreate) RequireSettings(file, document);
    Profile profile = OpenProfile(file);
    SetIn(arguments, profile, file.GetForm());
}

void Delete(const KeyWritingArguments& arguments) {
    const SourceFile file(arguments.file.path, arguments.file.ForcedForm());
    file.RequireParsed();
    RequireSettings(file, ReadDocument(file));
    Profile profile = OpenProfile(file);
    const bool isRemoved = arguments.hasKey ? profile.remove(arguments.section, arguments.key)
                                            : profile.removeSection(arguments.section);
    if (!isRemoved) {
        const std::string name = ShownName(arguments.section);
        throw Stop(ExitCode::kNotFound,
                   file.Path() + (arguments.hasKey ? ": no key " + name + "/" + ShownName(arguments.key)
                                                   : ": no section " + name));
    }
    SaveProfile(profile, file.Path(), file.GetForm(), arguments.withBackup);
}

}  // namespace

void AddKeyWritingVerbs(CLI::App& app, Session& /*session*/) {
    const auto arguments = std::make_shared<KeyWritingArguments>();

    CLI::App& set = AddVerb(app, "set", "Write a key; a missing section or key is made",
                            "mox-xml set camera.xml Camera Model \"VC-1240 M\"\n"
                            "mox-xml set camera.xml Trigger Delay --int -120 --backup\n"
                            "mox-xml set camera.xml Camera ToneCurve --hex 0010FF\n"
                            "mox-xml set new.xml Camera Model VC-1240M --create --narrow");
    AddFile(set, arguments->file);
    set.add_option("SECTION", arguments->section, "The section's name")->required();
    set.add_option("KEY", arguments->key, "The key")->required();
    set.add_option("VALUE", arguments->value, "The value")->required();
    CLI::Option* const isInt =
        set.add_flag("--int", arguments->isInt, "VALUE is a decimal number of 32 bits");
    CLI::Option* const isString =
        set.add_flag("--string", arguments->isString, "VALUE is text (without any of the three, too)");
    CLI::Option* const isHex =
        set.add_flag("--hex", arguments->isHex, "VALUE is bytes, two hexadecimal digits each");
    isInt->excludes(isString)->excludes(isHex);
    isString->excludes(isHex);
    set.add_flag("--create", arguments->mayCreate,
                 "Make the file when it is missing, and a root without one");
    AddBackup(set, arguments->withBackup);
    set.callback([arguments] { Set(*arguments); });

    CLI::App& remove = AddVerb(app, "delete", "Delete a key, or a section with all its keys",
                               "mox-xml delete camera.xml Network LegacyName\n"
                               "mox-xml delete camera.xml Network --backup");
    AddFile(remove, arguments->file);
    remove.add_option("SECTION", arguments->section, "The section's name")->required();
    CLI::Option* const key = remove.add_option("KEY", arguments->key, "The key; none: the whole section");
    AddBackup(remove, arguments->withBackup);
    remove.callback([arguments, key] {
        arguments->hasKey = key->count() > 0;
        Delete(*arguments);
    });
}

}  // namespace mox::tool
