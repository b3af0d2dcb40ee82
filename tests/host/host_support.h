// What the host tests share: wide literals, handles that release themselves, documents in short form and
// files in a folder of the tests' own. Of the library it uses the exports alone.
#ifndef MOX_XMLAPI_TESTS_HOST_HOST_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_HOST_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <string_view>

#include "mox_xmlApi/mox_xmlApi.h"

namespace host {

// What an output has before a call, to see whether that writes it.
inline constexpr std::uint32_t kGuard = 77;

using WideText = std::basic_string<wchar16>;

// The units of a literal, kept by the compiler for as long as the program runs.
template <std::size_t Size>
struct WideLiteral {
    wchar16 units[Size]{};

    consteval WideLiteral(const char (&text)[Size]) {
        for (std::size_t i = 0; i < Size; ++i)
            units[i] = static_cast<unsigned char>(text[i]);
    }
    consteval WideLiteral(const char16_t (&text)[Size]) {
        for (std::size_t i = 0; i < Size; ++i)
            units[i] = static_cast<wchar16>(text[i]);
    }
};

// "Table"_w and u"\u0101"_w: the zero-terminated wide text that the exports take, on every system.
template <WideLiteral Literal>
const wchar16* operator""_w() {
    return Literal.units;
}

// The text in a form for messages of tests.
inline std::string Shown(const wchar16* text) {
    return testing::PrintToString(WideText(text));
}

// A profile handle that is disposed at the end of its scope; may hold null.
class Profile {
  public:
    explicit Profile(moxSettings* handle) : handle_(handle) {}
    ~Profile() { xmlProfileDispose(&handle_); }
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;

    operator moxSettings*() const { return handle_; }

  private:
    moxSettings* handle_;
};

// A section's table handle that is disposed at the end of its scope; may hold null.
class Section {
  public:
    explicit Section(void* handle) : handle_(handle) {}
    ~Section() { xmlTableDispose(&handle_); }
    Section(const Section&) = delete;
    Section& operator=(const Section&) = delete;

    explicit operator bool() const { return handle_ != nullptr; }

  private:
    void* handle_;
};

inline constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
inline constexpr std::string_view kRootStart =
    "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">";
inline constexpr std::string_view kRootEnd = "</Settings>";
inline constexpr std::string_view kEmptyRoot =
    "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"/>";

// A profile over an 8-bit text, none of which has to be zero-terminated.
inline Profile LoadText(std::string_view text) {
    return Profile(xmlProfileNew(nullptr, text.data(), static_cast<std::int32_t>(text.size()), 0));
}

// A profile over a settings document with a declaration, the usual root and these elements under it.
inline Profile LoadSections(std::string_view sections) {
    std::string text(kDeclaration);
    text.append("\n").append(kRootStart).append(sections).append(kRootEnd);
    return LoadText(text);
}

// A profile over a document whose one section is named "S" and has these elements in it.
inline Profile LoadEntries(std::string_view entries) {
    return LoadSections(std::string("<Table name=\"S\">").append(entries).append("</Table>"));
}

// A narrow file: the text, then one zero byte.
inline std::string NarrowFile(std::string_view text) {
    return std::string(text).append(1, '\0');
}

// A wide file: each byte of the text as a little-endian unit, then one zero unit.
inline std::string WideFile(std::string_view text) {
    std::string bytes(2 * text.size() + 2, '\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        bytes[2 * i] = text[i];
    return bytes;
}

// The lines, each with its line feed.
inline std::string Lines(std::initializer_list<std::string_view> lines) {
    std::string text;
    for (const std::string_view line : lines)
        text.append(line).append("\n");
    return text;
}

// The narrow file of a settings document with a declaration, the usual root and these lines between its tags.
inline std::string SettingsFile(std::initializer_list<std::string_view> lines) {
    return NarrowFile(Lines({kDeclaration, kRootStart}) + Lines(lines) + Lines({kRootEnd}));
}

// The narrow file of a settings document whose one section is named "S" and has these lines between its tags.
inline std::string SectionFile(std::initializer_list<std::string_view> lines) {
    return NarrowFile(Lines({kDeclaration, kRootStart, "\t<Table name=\"S\">"}) + Lines(lines) +
                      Lines({"\t</Table>", kRootEnd}));
}

// The narrow file of a settings document without sections.
inline std::string EmptySettingsFile() {
    return NarrowFile(Lines({kDeclaration, kEmptyRoot}));
}

inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << path;
    if (!stream.is_open()) return {};
    std::string bytes(static_cast<std::size_t>(std::filesystem::file_size(path)), '\0');
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(stream.good()) << path;
    return bytes;
}

inline void WriteBytes(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    EXPECT_TRUE(stream.good()) << path;
}

// A path as the exports take it.
inline WideText WidePath(const std::filesystem::path& path) {
    const std::u16string units = path.u16string();
    return {units.begin(), units.end()};
}

// The folder that the tests may write to: MOX_TEST_TMP, or the current one.
inline std::filesystem::path ScratchFolder() {
    const char* folder = std::getenv("MOX_TEST_TMP");
    return folder != nullptr && *folder != '\0' ? std::filesystem::path(folder)
                                                : std::filesystem::current_path();
}

// The name of a file that no other test uses; the file, if one was made, is removed at the end of the scope.
class ScratchFile {
  public:
    ScratchFile() : ScratchFile(u"host_" + NextNumber() + u".xml") {}
    explicit ScratchFile(const std::u16string& name) : path_(ScratchFolder() / name), wide_(WidePath(path_)) {
        std::filesystem::remove(path_);
    }
    ~ScratchFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    const wchar16* Name() const { return wide_.c_str(); }
    bool Exists() const { return std::filesystem::exists(path_); }
    std::string Bytes() const { return ReadBytes(path_); }

  private:
    static std::u16string NextNumber() {
        static int number = 0;
        const std::string digits = std::to_string(++number);
        return {digits.begin(), digits.end()};
    }

    std::filesystem::path path_;
    WideText wide_;
};

// The bytes that a save of the profile puts into its file.
inline std::string SaveBytes(moxSettings* profile, std::uint32_t mode = 0, std::int32_t wide = 0) {
    const ScratchFile file;
    EXPECT_EQ(xmlProfileSave(profile, file.Name(), mode, 0, wide), 1U);
    return file.Bytes();
}

// A profile over a file with these bytes.
inline Profile LoadBytes(std::string_view bytes, std::int32_t wide) {
    const ScratchFile file;
    WriteBytes(file.Path(), bytes);
    return Profile(xmlProfileNew(file.Name(), nullptr, 0, wide));
}

// The whole text of a key; empty for an unknown one and for one that has none.
inline WideText ReadText(moxSettings* profile, const wchar16* section, const wchar16* key) {
    const std::uint32_t length = xmlGetProfileString(profile, section, key, nullptr, 0, nullptr);
    WideText text(length + 1, wchar16{'?'});
    xmlGetProfileString(profile, section, key, text.data(), length + 1, nullptr);
    text.resize(length);
    return text;
}

}  // namespace host

#endif
