// All 21 exports against null handles, and against null where a null argument has a meaning.
#include <array>
#include <ostream>

#include "tests/host/table_support.h"

namespace host {
namespace {

struct Export {
    const char* name;
    // Calls it with a null handle, and with null for each argument that may be null; expects the neutral answer in
    // the first case, and all outputs as they are promised.
    void (*check)();
};

void PrintTo(const Export& tested, std::ostream* out) {
    *out << tested.name;
}

void ProfileNew() {
    // Nothing to load: the handle of an empty document.
    EXPECT_EQ(SaveBytes(Profile(xmlProfileNew(nullptr, nullptr, 0, 0))), EmptySettingsFile());
    EXPECT_EQ(SaveBytes(Profile(xmlProfileNew(nullptr, nullptr, 10, 1))), EmptySettingsFile());
}

void ProfileDispose() {
    moxSettings* handle = nullptr;
    xmlProfileDispose(&handle);
    xmlProfileDispose(&handle);
    EXPECT_EQ(handle, nullptr);
}

void ProfileSave() {
    const ScratchFile file;
    const Profile profile = LoadSections("<Table name=\"S\" eud=\"true\"/>");
    for (const std::uint32_t mode : {0U, 1U, 2U, 3U}) {
        EXPECT_EQ(xmlProfileSave(nullptr, file.Name(), mode, 0, 0), 0U);
        EXPECT_EQ(xmlProfileSave(nullptr, nullptr, mode, 0, 0), 0U);
        EXPECT_EQ(xmlProfileSave(profile, nullptr, mode, 0, 0), 0U);
    }
    EXPECT_FALSE(file.Exists());
    // A save without a path does not remove the marks either.
    std::uint32_t eud = kGuard;
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 0, 0, 0, &eud)));
    EXPECT_EQ(eud, 1U);
}

void GetSection() {
    std::uint32_t editable = kGuard;
    EXPECT_EQ(xmlGetProfileSection(nullptr, "S"_w, &editable), nullptr);
    EXPECT_EQ(editable, 1U);
    EXPECT_EQ(xmlGetProfileSection(nullptr, "S"_w, nullptr), nullptr);
    const Profile profile = LoadEntries("");
    EXPECT_TRUE(Section(xmlGetProfileSection(profile, "S"_w, nullptr)));
}

void EnumSections() {
    std::uintptr_t position = 12345;
    std::array<wchar16, 3> name = {'x', 'y', 'z'};
    std::uint32_t editable = kGuard;
    EXPECT_EQ(xmlEnumProfileSections(nullptr, &position, name.data(), 3, &editable), nullptr);
    EXPECT_EQ(position, 12345U);
    EXPECT_EQ(name, (std::array<wchar16, 3>{0, 'y', 'z'}));
    EXPECT_EQ(editable, 1U);
    EXPECT_EQ(xmlEnumProfileSections(nullptr, &position, nullptr, 2, nullptr), nullptr);
    EXPECT_EQ(xmlEnumProfileSections(nullptr, &position, nullptr, 0, nullptr), nullptr);
    name[0] = 'x';
    EXPECT_EQ(xmlEnumProfileSections(nullptr, &position, name.data(), 0, nullptr), nullptr);
    EXPECT_EQ(name[0], 'x');

    const Profile profile = LoadEntries("");
    std::uintptr_t begin = 0;
    EXPECT_TRUE(Section(xmlEnumProfileSections(profile, &begin, nullptr, 0, nullptr)));
    EXPECT_FALSE(Section(xmlEnumProfileSections(profile, &begin, nullptr, 0, nullptr)));
    EXPECT_EQ(begin, 0U);
}

void WriteSection() {
    std::uint32_t eud = kGuard;
    EXPECT_EQ(xmlWriteProfileSection(nullptr, "S"_w, 1, 2, 3, &eud), nullptr);
    EXPECT_EQ(eud, kGuard);
    EXPECT_EQ(xmlWriteProfileSection(nullptr, "S"_w, 1, 2, 3, nullptr), nullptr);
    const Profile profile = LoadEntries("");
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "S"_w, 0, 0, 0, nullptr)));
    EXPECT_TRUE(Section(xmlWriteProfileSection(profile, "new"_w, 0, 0, 0, nullptr)));
}

void GetInt() {
    EXPECT_EQ(xmlGetProfileInt(nullptr, "S"_w, "k"_w, -9), -9);
    EXPECT_EQ(xmlGetProfileInt(nullptr, nullptr, nullptr, 8), 8);
}

void GetString() {
    using Units = std::array<wchar16, 5>;
    Units buffer = {'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(xmlGetProfileString(nullptr, "S"_w, "k"_w, buffer.data(), 4, nullptr), 0U);
    EXPECT_EQ(xmlGetProfileString(nullptr, "S"_w, "k"_w, buffer.data(), 0, "ab"_w), 0U);
    EXPECT_EQ(xmlGetProfileString(nullptr, "S"_w, "k"_w, nullptr, 4, "ab"_w), 0U);
    EXPECT_EQ(buffer, (Units{'x', 'x', 'x', 'x', 'x'}));
    EXPECT_EQ(xmlGetProfileString(nullptr, "S"_w, "k"_w, buffer.data(), 4, "ab"_w), 2U);
    EXPECT_EQ(buffer, (Units{'a', 'b', 0, 0, 'x'}));
    EXPECT_EQ(xmlGetProfileString(nullptr, "S"_w, "k"_w, buffer.data(), 4, "lengthy"_w), 3U);
    EXPECT_EQ(buffer, (Units{'l', 'e', 'n', 0, 'x'}));
}

void GetData() {
    unsigned char byte = 0x55;
    EXPECT_EQ(xmlGetProfileData(nullptr, "S"_w, "k"_w, &byte, 1), 0U);
    EXPECT_EQ(byte, 0x55);
}

void WriteInt() {
    EXPECT_EQ(xmlWriteProfileInt(nullptr, "S"_w, "k"_w, 1), 0U);
    EXPECT_EQ(xmlWriteProfileInt(nullptr, "S"_w, nullptr, 1), 0U);
    const Profile profile = LoadEntries("");
    EXPECT_EQ(xmlWriteProfileInt(profile, "none"_w, nullptr, 1), 0U);
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, nullptr, 1), 1U);
}

void WriteString() {
    EXPECT_EQ(xmlWriteProfileString(nullptr, "S"_w, "k"_w, "v"_w), 0U);
    EXPECT_EQ(xmlWriteProfileString(nullptr, "S"_w, nullptr, nullptr), 0U);
    const Profile profile = LoadEntries("<Var name=\"k\"/>");
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, nullptr), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, nullptr), 0U);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, nullptr, "v"_w), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, nullptr, nullptr), 0U);
}

void WriteData() {
    EXPECT_EQ(xmlWriteProfileData(nullptr, "S"_w, "k"_w, "v", 1), 0U);
    EXPECT_EQ(xmlWriteProfileData(nullptr, "S"_w, nullptr, nullptr, 0), 0U);
    const Profile profile = LoadEntries("<Var name=\"k\"/>");
    EXPECT_EQ(xmlWriteProfileData(profile, "S"_w, "k"_w, nullptr, 5), 1U);
    EXPECT_EQ(xmlWriteProfileData(profile, "S"_w, "k"_w, nullptr, 0), 0U);
    EXPECT_EQ(xmlWriteProfileData(profile, "S"_w, nullptr, nullptr, 0), 1U);
}

void TableNew() {
    EXPECT_EQ(SavedText(Table(xmlTableNew(nullptr, nullptr, 0, nullptr, 0, 0, 0, 0))),
              "<Table name=\"_MXTable_\"/>\n");
}

void TableSave() {
    const ScratchFile file;
    EXPECT_FALSE(xmlTableSave(nullptr, file.Name(), 0, 0));
    EXPECT_FALSE(xmlTableSave(nullptr, nullptr, 1, 1));
    EXPECT_FALSE(file.Exists());
}

void TableDispose() {
    void* handle = nullptr;
    xmlTableDispose(&handle);
    xmlTableDispose(&handle);
    EXPECT_EQ(handle, nullptr);
}

// The records that the calls below pass, and whether they still say what they said.
struct Records {
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "1", 5, 2);
    TableEntryUInfoStruct ui = UiRecord("a"_w, 7, 8, "2");
    std::uint64_t position = 0;

    Records() { ui.prov_owner = 3; }
    void ExpectUntouched() const {
        EXPECT_EQ(Show(value), "a #5 0003 '1' mask 0002");
        EXPECT_EQ(Show(ui), "a #0 0008 '2' control 7 owner 3");
        EXPECT_EQ(position, 0U);
    }
};

void EntryGet() {
    Records records;
    EXPECT_FALSE(xmlTableEntryGet(nullptr, &records.position, &records.value, &records.ui));
    EXPECT_FALSE(xmlTableEntryGet(nullptr, nullptr, &records.value, nullptr));
    EXPECT_FALSE(xmlTableEntryGet(nullptr, nullptr, nullptr, &records.ui));
    EXPECT_FALSE(xmlTableEntryGet(nullptr, nullptr, nullptr, nullptr));
    records.ExpectUntouched();
    const Table table = LoadTable("<Table><Var name=\"a\" type=\"long\"/></Table>");
    EXPECT_FALSE(xmlTableEntryGet(table, nullptr, nullptr, nullptr));
    EXPECT_FALSE(xmlTableEntryGet(table, &records.position, nullptr, nullptr));
    EXPECT_EQ(records.position, 0U);
    EXPECT_TRUE(xmlTableEntryGet(table, nullptr, &records.value, nullptr));
    EXPECT_TRUE(xmlTableEntryGet(table, nullptr, nullptr, &records.ui));
}

void EntryIsExist() {
    const Records records;
    EXPECT_FALSE(xmlTableEntryIsExist(nullptr, &records.value));
    EXPECT_FALSE(xmlTableEntryIsExist(nullptr, nullptr));
}

void EntrySet() {
    Records records;
    EXPECT_FALSE(xmlTableEntrySet(nullptr, &records.position, &records.value, &records.ui, 1, 1));
    EXPECT_FALSE(xmlTableEntrySet(nullptr, nullptr, &records.value, nullptr, 0, 0));
    EXPECT_FALSE(xmlTableEntrySet(nullptr, nullptr, nullptr, &records.ui, 0, 0));
    records.ExpectUntouched();
}

void EntryAdd() {
    Records records;
    EXPECT_FALSE(xmlTableEntryAdd(nullptr, &records.position, &records.value, &records.ui, 1, 1));
    EXPECT_FALSE(xmlTableEntryAdd(nullptr, nullptr, &records.value, nullptr, 0, 0));
    EXPECT_FALSE(xmlTableEntryAdd(nullptr, nullptr, nullptr, &records.ui, 0, 0));
    records.ExpectUntouched();
}

void RemoveEntry() {
    const Records records;
    EXPECT_FALSE(xmlTableRemoveEntry(nullptr, &records.value, -1, 1));
    EXPECT_FALSE(xmlTableRemoveEntry(nullptr, nullptr, 0, 0));
}

void RemoveEntries() {
    EXPECT_FALSE(xmlTableRemoveEntries(nullptr));
}

constexpr std::array<Export, 21> kExports = {{{"xmlProfileNew", ProfileNew},
                                              {"xmlProfileDispose", ProfileDispose},
                                              {"xmlProfileSave", ProfileSave},
                                              {"xmlGetProfileSection", GetSection},
                                              {"xmlEnumProfileSections", EnumSections},
                                              {"xmlWriteProfileSection", WriteSection},
                                              {"xmlGetProfileInt", GetInt},
                                              {"xmlGetProfileString", GetString},
                                              {"xmlGetProfileData", GetData},
                                              {"xmlWriteProfileInt", WriteInt},
                                              {"xmlWriteProfileString", WriteString},
                                              {"xmlWriteProfileData", WriteData},
                                              {"xmlTableNew", TableNew},
                                              {"xmlTableSave", TableSave},
                                              {"xmlTableDispose", TableDispose},
                                              {"xmlTableEntryGet", EntryGet},
                                              {"xmlTableEntryIsExist", EntryIsExist},
                                              {"xmlTableEntrySet", EntrySet},
                                              {"xmlTableEntryAdd", EntryAdd},
                                              {"xmlTableRemoveEntry", RemoveEntry},
                                              {"xmlTableRemoveEntries", RemoveEntries}}};

class EveryExport : public testing::TestWithParam<Export> {};

TEST_P(EveryExport, AnswersNullAsItPromises) {
    GetParam().check();
}

INSTANTIATE_TEST_SUITE_P(, EveryExport, testing::ValuesIn(kExports),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace host
