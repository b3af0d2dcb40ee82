// A host program: opens two settings documents, prints them, changes some of their keys, saves them in all
// three modes and prints what changed in the files. It uses only the public header and the standard library.
//
//   profile_demo <data folder> <scratch folder>
//
// The exit code is 0 if all results were as expected.
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "examples/demo_text.h"
#include "mox_xmlApi/mox_xmlApi.h"

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<std::uint8_t>;

enum class Form { kNumber, kText, kBytes };

struct Key {
    const char* section;
    const char* key;
    Form form;
};

// A settings document and what the demo does to it.
struct Script {
    const char* file;
    bool isWide;
    std::vector<Key> known;  // the keys to print; a host knows its keys
    Key number;
    std::int32_t newNumber;
    Key text;
    const char* newText;
    Key bytes;
    Bytes newBytes;
    Key added;
    const char* addedText;
    Key deleted;
};

// Owns a profile handle.
class Profile {
  public:
    Profile(const fs::path& path, bool isWide)
        : handle_(xmlProfileNew(WidePath(path).c_str(), nullptr, 0, isWide ? 1 : 0)) {
        Expect(handle_ != nullptr, "open " + path.string());
    }
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;
    ~Profile() { xmlProfileDispose(&handle_); }

    moxSettings* Get() const { return handle_; }

  private:
    moxSettings* handle_;
};

std::string NameOf(const Key& key) {
    return std::string(key.section) + "/" + key.key;
}

// ---- reading

// The first call, without a buffer, returns the length; the second one copies the text.
std::string ReadText(moxSettings* settings, const Key& key) {
    const WideText section = Wide(key.section);
    const WideText name = Wide(key.key);
    const std::uint32_t length =
        xmlGetProfileString(settings, section.c_str(), name.c_str(), nullptr, 0, nullptr);
    WideText buffer(length + 1, wchar16{});
    const std::uint32_t copied =
        xmlGetProfileString(settings, section.c_str(), name.c_str(), buffer.data(), length + 1, nullptr);
    Expect(copied == length, "the length of " + NameOf(key));
    buffer.resize(length);
    return Utf8(buffer);
}

// Returns whether the key exists: only then do calls with different defaults return the same number.
bool ReadNumber(moxSettings* settings, const Key& key, std::int32_t& number) {
    const WideText section = Wide(key.section);
    const WideText name = Wide(key.key);
    number = xmlGetProfileInt(settings, section.c_str(), name.c_str(), 0);
    return number == xmlGetProfileInt(settings, section.c_str(), name.c_str(), 1);
}

Bytes ReadBytes(moxSettings* settings, const Key& key) {
    Bytes bytes(ReadText(settings, key).size() / 2);
    bytes.push_back(0);
    const std::uint32_t stored = xmlGetProfileData(settings, Wide(key.section).c_str(), Wide(key.key).c_str(),
                                                   bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    bytes.resize(stored);
    return bytes;
}

std::string FormatValue(moxSettings* settings, const Key& key) {
    if (key.form == Form::kText) return '"' + ReadText(settings, key) + '"';
    if (key.form == Form::kNumber) {
        std::int32_t number = 0;
        Expect(ReadNumber(settings, key, number), "read " + NameOf(key));
        return std::to_string(number);
    }
    std::string text;
    for (const std::uint8_t byte : ReadBytes(settings, key)) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(byte));
        text += (text.empty() ? "" : " ") + std::string(digits);
    }
    return text;
}

// ---- printing a document

void PrintKeys(moxSettings* settings, const std::string& section, const std::vector<Key>& known) {
    for (const Key& key : known) {
        if (section != key.section) continue;
        const std::string value = FormatValue(settings, key);
        Expect(!value.empty() && value != "\"\"", "a value of " + NameOf(key));
        std::printf("    %s = %s\n", key.key, value.c_str());
    }
}

// Enumerates to the end, which frees what the position refers to.
void PrintSections(moxSettings* settings, const std::vector<Key>& known) {
    std::uintptr_t position = 0;
    std::uint32_t editable = 0;
    wchar16 name[64];
    std::size_t count = 0;
    while (void* section = xmlEnumProfileSections(settings, &position, name, 64, &editable)) {
        xmlTableDispose(&section);
        const std::string title = Utf8(name);
        if (title.empty()) {
            std::printf("  (not a section)\n");
        } else {
            std::printf("  [%s]%s\n", title.c_str(), editable == 1 ? " editable" : "");
        }
        PrintKeys(settings, title, known);
        ++count;
    }
    Expect(position == 0, "the position after the last section");
    Expect(count > 1, "several sections");
}

// ---- changing it

void PrintChange(const Key& key, const std::string& before, const std::string& after) {
    std::printf("  %s: %s -> %s\n", NameOf(key).c_str(), before.c_str(), after.c_str());
}

void ChangeNumber(moxSettings* settings, const Script& script) {
    const std::string before = FormatValue(settings, script.number);
    Expect(xmlWriteProfileInt(settings, Wide(script.number.section).c_str(), Wide(script.number.key).c_str(),
                              script.newNumber) == 1,
           "write " + NameOf(script.number));
    PrintChange(script.number, before, FormatValue(settings, script.number));
}

bool WriteText(moxSettings* settings, const Key& key, const char* text) {
    return xmlWriteProfileString(settings, Wide(key.section).c_str(), Wide(key.key).c_str(),
                                 Wide(text).c_str()) == 1;
}

void ChangeText(moxSettings* settings, const Script& script) {
    const std::string before = FormatValue(settings, script.text);
    Expect(WriteText(settings, script.text, script.newText), "write " + NameOf(script.text));
    PrintChange(script.text, before, FormatValue(settings, script.text));
}

void ChangeBytes(moxSettings* settings, const Script& script) {
    const std::string before = FormatValue(settings, script.bytes);
    Expect(
        xmlWriteProfileData(settings, Wide(script.bytes.section).c_str(), Wide(script.bytes.key).c_str(),
                            script.newBytes.data(), static_cast<std::uint32_t>(script.newBytes.size())) == 1,
        "write " + NameOf(script.bytes));
    PrintChange(script.bytes, before, FormatValue(settings, script.bytes));
}

// Writing a missing key adds it.
void AddKey(moxSettings* settings, const Script& script) {
    Expect(ReadText(settings, script.added).empty(), "no key " + NameOf(script.added) + " yet");
    Expect(WriteText(settings, script.added, script.addedText), "add " + NameOf(script.added));
    std::printf("  %s: added, %s\n", NameOf(script.added).c_str(),
                FormatValue(settings, script.added).c_str());
}

// Writing null deletes a key.
void DeleteKey(moxSettings* settings, const Script& script) {
    const WideText section = Wide(script.deleted.section);
    const WideText name = Wide(script.deleted.key);
    Expect(xmlWriteProfileString(settings, section.c_str(), name.c_str(), nullptr) == 1,
           "delete " + NameOf(script.deleted));
    Expect(xmlWriteProfileString(settings, section.c_str(), name.c_str(), nullptr) == 0,
           "no more " + NameOf(script.deleted));
    std::printf("  %s: deleted\n", NameOf(script.deleted).c_str());
}

// The document after the changes, in memory as well as saved and loaded again.
void ExpectChanges(moxSettings* settings, const Script& script) {
    std::int32_t number = 0;
    Expect(ReadNumber(settings, script.number, number) && number == script.newNumber, NameOf(script.number));
    Expect(ReadText(settings, script.text) == script.newText, NameOf(script.text));
    Expect(ReadBytes(settings, script.bytes) == script.newBytes, NameOf(script.bytes));
    Expect(ReadText(settings, script.added) == script.addedText, NameOf(script.added));
    Expect(ReadText(settings, script.deleted).empty(), "no key " + NameOf(script.deleted));
}

// ---- saving it

fs::path Save(moxSettings* settings, const Script& script, const fs::path& folder, const char* suffix,
              std::uint32_t mode) {
    const fs::path path = folder / (fs::path(script.file).stem().string() + suffix + ".xml");
    Expect(xmlProfileSave(settings, WidePath(path).c_str(), mode, 0, script.isWide ? 1 : 0) == 1,
           "save " + path.string());
    return path;
}

void PrintHead(const fs::path& path, bool isWide) {
    const std::vector<std::string> lines = ReadLines(path, isWide);
    std::printf("%s: %zu lines; the first ones after the root:\n", path.filename().string().c_str(),
                lines.size());
    for (std::size_t i = 2; i < lines.size() && i < 14; ++i)
        std::printf("    %s\n", lines[i].c_str());
}

void RunScript(const Script& script, const fs::path& data, const fs::path& scratch) {
    const fs::path original = data / script.file;
    const Profile profile(original, script.isWide);
    std::printf("%s (%s)\n", script.file, script.isWide ? "wide" : "narrow");
    PrintSections(profile.Get(), script.known);

    std::printf("changes\n");
    ChangeNumber(profile.Get(), script);
    ChangeText(profile.Get(), script);
    ChangeBytes(profile.Get(), script);
    AddKey(profile.Get(), script);
    DeleteKey(profile.Get(), script);
    ExpectChanges(profile.Get(), script);

    // The exports first: they do not change the document, but saving it removes its "eud" attributes.
    const fs::path presentation = Save(profile.Get(), script, scratch, "-presentation", 1);
    const fs::path values = Save(profile.Get(), script, scratch, "-values", 2);
    const fs::path saved = Save(profile.Get(), script, scratch, "", 0);

    std::printf("%s: what changed (saving also removes the attributes \"eud\")\n",
                saved.filename().string().c_str());
    Expect(PrintDiff(ReadLines(original, script.isWide), ReadLines(saved, script.isWide)) > 0, "a change");
    PrintHead(values, script.isWide);
    PrintHead(presentation, script.isWide);

    ExpectChanges(Profile(saved, script.isWide).Get(), script);
    ExpectChanges(Profile(values, script.isWide).Get(), script);
    std::printf("\n");
}

std::vector<Script> Scripts() {
    return {{"camera.xml",
             false,
             {{"Camera", "Model", Form::kText},
              {"Camera", "Exposure", Form::kNumber},
              {"Camera", "ToneCurve", Form::kBytes},
              {"Lens", "Name", Form::kText},
              {"Lens", "CalibratedOn", Form::kText},
              {"Trigger", "Source", Form::kText},
              {"Trigger", "Delay", Form::kNumber},
              {"Window", "Title", Form::kText},
              {"Network", "Address", Form::kText},
              {"Network", "Port", Form::kNumber},
              {"Network", "Mask", Form::kBytes}},
             {"Camera", "Exposure", Form::kNumber},
             2400,
             {"Window", "Title", Form::kText},
             "Station <3>: \"cap, thread & seal\"",
             {"Camera", "ToneCurve", Form::kBytes},
             {0x00, 0x0C, 0x1A, 0x2B, 0x3F, 0x57, 0x73, 0x92, 0xB3, 0xD4, 0xF0, 0xFF},
             {"Camera", "Operator", Form::kText},
             "line 3, early shift",
             {"Network", "LegacyName", Form::kText}},
            {"press_line.xml",
             true,
             {{"Maschine", "Bezeichnung", Form::kText},
              {"Maschine", "Betriebsstunden", Form::kNumber},
              {"Schließeinheit", "Schließkraft", Form::kNumber},
              {"Schließeinheit", "Rampe", Form::kBytes},
              {"Heizung", "Zone1", Form::kNumber},
              {"Heizung", "Einheit", Form::kText},
              {"Rezept", "Kunde", Form::kText},
              {"Rezept", "Bediener", Form::kText},
              {"Anzeige", "Farbe", Form::kBytes},
              {"Anzeige", "Hinweis", Form::kText}},
             {"Schließeinheit", "Schließkraft", Form::kNumber},
             905,
             {"Rezept", "Artikel", Form::kText},
             "Kappe Ø42 & Dichtung „blau“",
             {"Anzeige", "Farbe", Form::kBytes},
             {0x22, 0x8B, 0x22},
             {"Heizung", "Nachlauf 🕒", Form::kText},
             "4½ min",
             {"Rezept", "Altname", Form::kText}}};
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: profile_demo <data folder> <scratch folder>\n");
        return 2;
    }
    try {
        fs::create_directories(argv[2]);
        for (const Script& script : Scripts())
            RunScript(script, argv[1], argv[2]);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "profile_demo: %s\n", problem.what());
        return 1;
    } catch (std::int32_t code) {  // the library throws these, see mox_xmlApi.h
        std::fprintf(stderr, "profile_demo: exception 0x%08X\n", static_cast<unsigned>(code));
        return 1;
    }
    return 0;
}
