// Files of released versions: each is read as it was then, and saved again byte by byte as it was then. The folders
// have a README. Beside each file there is a listing of what the exports return for it.
#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <vector>

#include "tests/host/table_support.h"

namespace host {
namespace {

std::filesystem::path Folder() {
    return std::filesystem::path("data") / "v0.1";
}

std::string KeyLine(moxSettings* profile, const WideText& section, const wchar16* key) {
    std::array<unsigned char, 256> bytes{};
    const std::uint32_t size = xmlGetProfileData(profile, section.c_str(), key, bytes.data(),
                                                 static_cast<std::uint32_t>(bytes.size()));
    std::string data;
    for (std::uint32_t i = 0; i < size; ++i)
        data += Hex(bytes[i]).substr(2);
    return "    text " + Quoted(ReadText(profile, section.c_str(), key)) + " int " +
           std::to_string(xmlGetProfileInt(profile, section.c_str(), key, -99)) + " data " +
           (data.empty() ? "none" : data) + "\n";
}

// The entries in document order: both records of each, and its key if it is one of a section.
std::string Entries(void* table, moxSettings* profile, const WideText& section) {
    std::string lines;
    std::uint64_t position = 0;
    for (std::uint64_t last = 0;; last = position) {
        TableEntryValueInfoStruct value;
        TableEntryUInfoStruct ui;
        const bool isRead = xmlTableEntryGet(table, &position, &value, &ui);
        if (position == last) return lines;
        if (!isRead) {
            lines += "  not readable\n";
            continue;
        }
        lines += "  " + Show(value) + "\n    " + Show(ui) + "\n";
        if (profile != nullptr) lines += KeyLine(profile, section, value.name);
    }
}

std::string Listing(moxSettings* profile) {
    std::string lines;
    std::uintptr_t position = 0;
    std::array<wchar16, 400> name{};
    std::uint32_t editable = 7;
    for (;;) {
        void* handle = xmlEnumProfileSections(profile, &position, name.data(), name.size(), &editable);
        if (handle == nullptr) return lines;
        const Table section(handle);
        lines += "section '" + Printable(name.data()) + "' editable " + std::to_string(editable) + "\n";
        lines += Entries(section, profile, name.data());
    }
}

class OldFiles : public testing::TestWithParam<std::string> {
  protected:
    std::filesystem::path File(const std::string& extension) const {
        return Folder() / (GetParam() + extension);
    }

    // What a save writes: the same file, unless there is another one beside it.
    std::string SavedAgain() const {
        return ReadBytes(File(std::filesystem::exists(File(".again.xml")) ? ".again.xml" : ".xml"));
    }
};

TEST_P(OldFiles, AreReadAndSavedAsBefore) {
    const WideText path = WidePath(File(".xml"));
    if (GetParam().starts_with("table_")) {
        const Table table(xmlTableNew(path.c_str(), nullptr, 0, nullptr, 0, 0, 0, 0));
        ASSERT_NE(static_cast<void*>(table), nullptr);
        EXPECT_EQ(Entries(table, nullptr, {}), ReadBytes(File(".txt")));
        const ScratchFile file;
        ASSERT_TRUE(xmlTableSave(table, file.Name(), 0, 0));
        EXPECT_EQ(file.Bytes(), SavedAgain());
        return;
    }
    const std::int32_t wide = GetParam().starts_with("wide_") ? 1 : 0;
    const Profile profile(xmlProfileNew(path.c_str(), nullptr, 0, wide));
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(Listing(profile), ReadBytes(File(".txt")));
    EXPECT_EQ(SaveBytes(profile, 0, wide), SavedAgain());
}

const std::string kNames[] = {"narrow_deep",
                              "narrow_empty",
                              "narrow_empty_sections",
                              "narrow_high_bytes",
                              "narrow_lines",
                              "narrow_many_keys",
                              "narrow_marks",
                              "narrow_names",
                              "narrow_presentation",
                              "narrow_presentation_export1",
                              "narrow_presentation_export2",
                              "narrow_second_root",
                              "narrow_settings",
                              "narrow_settings_export1",
                              "narrow_settings_export2",
                              "narrow_settings_export3",
                              "narrow_types",
                              "narrow_types_export1",
                              "narrow_types_export2",
                              "narrow_unknown",
                              "table_bare",
                              "table_empty",
                              "table_lines",
                              "table_marks_entries",
                              "table_marks_marked",
                              "table_marks_other",
                              "table_orders",
                              "table_section",
                              "wide_deep",
                              "wide_empty",
                              "wide_empty_sections",
                              "wide_high_bytes",
                              "wide_lines",
                              "wide_many_keys",
                              "wide_marks",
                              "wide_names",
                              "wide_presentation",
                              "wide_presentation_export1",
                              "wide_presentation_export2",
                              "wide_second_root",
                              "wide_settings",
                              "wide_settings_export1",
                              "wide_settings_export2",
                              "wide_settings_export3",
                              "wide_text16",
                              "wide_text16_export1",
                              "wide_text16_export2",
                              "wide_types",
                              "wide_types_export1",
                              "wide_types_export2",
                              "wide_unknown"};

INSTANTIATE_TEST_SUITE_P(Version01, OldFiles, testing::ValuesIn(kNames),
                         [](const auto& file) { return file.param; });

TEST(OldFiles, AreAllThere) {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
        const std::string name = entry.path().filename().string();
        if (name.ends_with(".txt")) files.insert(name.substr(0, name.size() - 4));
    }
    EXPECT_EQ(files, std::set<std::string>(std::begin(kNames), std::end(kNames)));
}

}  // namespace
}  // namespace host
