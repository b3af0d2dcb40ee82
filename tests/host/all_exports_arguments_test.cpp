// All 21 exports against null handles, and against null where a null argument has a meaning.
#include <array>
#include <ostream>

#include "tests/host/table_support.h"

namespace host {
namespace {

struct Export {
    const char* name;
    // Calls it with a null handle, or in place of it a null argument that it tests; whether the answer and
    // all outputs were the neutral ones.
    bool (*isNeutral)();
};

void PrintTo(const Export& tested, std::ostream* out) {
    *out << tested.name;
}

bool ProfileDisposeIsNeutral() {
    moxSettings* handle = nullptr;
    xmlProfileDispose(&handle);
    xmlProfileDispose(&handle);
    return handle == nullptr;
}

bool ProfileNewIsNeutral() {
    // Nothing to load: the handle of an empty document.
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    const Profile sized(xmlProfileNew(nullptr, nullptr, 10, 1));
    return SaveBytes(profile) == EmptySettingsFile() && SaveBytes(sized) == EmptySettingsFile();
}

bool ProfileSaveIsNeutral() {
    const ScratchFile file;
    bool neutral = true;
    for (const std::uint32_t mode : {0U, 1U, 2U, 3U}) {
        neutral = neutral && xmlProfileSave(nullptr, file.Name(), mode, 0, 0) == 0;
        neutral = neutral && xmlProfileSave(LoadEntries(""), nullptr, mode, 0, 0) == 0;
    }
    return neutral && !file.Exists();
}

bool GetSectionIsNeutral() {
    std::uint32_t editable = 7;
    const bool isNull = xmlGetProfileSection(nullptr, "S"_w, &editable) == nullptr &&
                        xmlGetProfileSection(nullptr, "S"_w, nullptr) == nullptr;
    const Profile profile = LoadEntries("");
    return isNull && editable == 1 && Section(xmlGetProfileSection(profile, "S"_w, nullptr));
}

bool EnumSectionsIsNeutral() {
    std::uintptr_t position = 9;
    std::array<wchar16, 2> name = {'x', 'y'};
    std::uint32_t editable = 7;
    const bool isNull = xmlEnumProfileSections(nullptr, &position, name.data(), 2, &editable) == nullptr &&
                        xmlEnumProfileSections(nullptr, &position, nullptr, 2, nullptr) == nullptr;
    const Profile profile = LoadEntries("");
    std::uintptr_t begin = 0;
    return isNull && position == 9 && name[0] == 0 && name[1] == 'y' && editable == 1 &&
           Section(xmlEnumProfileSections(profile, &begin, nullptr, 0, nullptr)) &&
           !Section(xmlEnumProfileSections(profile, &begin, nullptr, 0, nullptr)) && begin == 0;
}

bool WriteSectionIsNeutral() {
    std::uint32_t eud = 7;
    const bool isNull = xmlWriteProfileSection(nullptr, "S"_w, 1, 1, 1, &eud) == nullptr &&
                        xmlWriteProfileSection(nullptr, "S"_w, 1, 1, 1, nullptr) == nullptr;
    const Profile profile = LoadEntries("");
    return isNull && eud == 7 && Section(xmlWriteProfileSection(profile, "S"_w, 0, 0, 0, nullptr)) &&
           Section(xmlWriteProfileSection(profile, "new"_w, 0, 0, 0, nullptr));
}

bool GetIntIsNeutral() {
    return xmlGetProfileInt(nullptr, "S"_w, "k"_w, -3) == -3;
}

bool GetStringIsNeutral() {
    std::array<wchar16, 4> buffer = {'x', 'x', 'x', 'x'};
    const bool untouched = xmlGetProfileString(nullptr, "S"_w, "k"_w, buffer.data(), 4, nullptr) == 0 &&
                           buffer[0] == 'x' &&
                           xmlGetProfileString(nullptr, "S"_w, "k"_w, nullptr, 4, "d"_w) == 0;
    return untouched && xmlGetProfileString(nullptr, "S"_w, "k"_w, buffer.data(), 4, "d"_w) == 1 &&
           buffer == std::array<wchar16, 4>{'d', 0, 0, 0};
}

bool GetDataIsNeutral() {
    unsigned char byte = 0x55;
    return xmlGetProfileData(nullptr, "S"_w, "k"_w, &byte, 1) == 0 && byte == 0x55;
}

bool WriteIntIsNeutral() {
    const Profile profile = LoadEntries("");
    return xmlWriteProfileInt(nullptr, "S"_w, "k"_w, 1) == 0 &&
           xmlWriteProfileInt(nullptr, "S"_w, nullptr, 1) == 0 &&
           xmlWriteProfileInt(profile, "none"_w, nullptr, 1) == 0 &&
           xmlWriteProfileInt(profile, "S"_w, nullptr, 1) == 1;
}

bool WriteStringIsNeutral() {
    const Profile profile = LoadEntries("<Var name=\"k\"/>");
    return xmlWriteProfileString(nullptr, "S"_w, "k"_w, "v"_w) == 0 &&
           xmlWriteProfileString(nullptr, "S"_w, nullptr, nullptr) == 0 &&
           xmlWriteProfileString(profile, "S"_w, "k"_w, nullptr) == 1 &&
           xmlWriteProfileString(profile, "S"_w, "k"_w, nullptr) == 0 &&
           xmlWriteProfileString(profile, "S"_w, nullptr, "v"_w) == 1 &&
           xmlWriteProfileString(profile, "S"_w, nullptr, nullptr) == 0;
}

bool WriteDataIsNeutral() {
    const Profile profile = LoadEntries("<Var name=\"k\"/>");
    return xmlWriteProfileData(nullptr, "S"_w, "k"_w, "v", 1) == 0 &&
           xmlWriteProfileData(nullptr, "S"_w, nullptr, nullptr, 0) == 0 &&
           xmlWriteProfileData(profile, "S"_w, "k"_w, nullptr, 5) == 1 &&
           xmlWriteProfileData(profile, "S"_w, "k"_w, nullptr, 0) == 0 &&
           xmlWriteProfileData(profile, "S"_w, nullptr, nullptr, 0) == 1;
}

bool TableNewIsNeutral() {
    const Table table(xmlTableNew(nullptr, nullptr, 0, nullptr, 0, 0, 0, 0));
    return SavedText(table) == "<Table name=\"_MXTable_\"/>\n";
}

bool TableSaveIsNeutral() {
    const ScratchFile file;
    return !xmlTableSave(nullptr, file.Name(), 0, 0) && !xmlTableSave(nullptr, nullptr, 1, 1) &&
           !file.Exists();
}

bool TableDisposeIsNeutral() {
    void* handle = nullptr;
    xmlTableDispose(&handle);
    xmlTableDispose(&handle);
    return handle == nullptr;
}

// The records that the calls below pass; whether they still say what they said.
struct Records {
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "1", 5, 2);
    TableEntryUInfoStruct ui = UiRecord("a"_w, 7, 8, "2");
    std::uint64_t position = 0;

    Records() { ui.prov_owner = 3; }
    bool AreUntouched() const {
        return Show(value) == "a #5 0003 '1' mask 0002" && Show(ui) == "a #0 0008 '2' control 7 owner 3" &&
               position == 0;
    }
};

bool EntryGetIsNeutral() {
    Records records;
    const bool isFalse = !xmlTableEntryGet(nullptr, &records.position, &records.value, &records.ui) &&
                         !xmlTableEntryGet(nullptr, nullptr, &records.value, nullptr) &&
                         !xmlTableEntryGet(nullptr, nullptr, nullptr, &records.ui) &&
                         !xmlTableEntryGet(nullptr, nullptr, nullptr, nullptr);
    const Table table = LoadTable("<Table><Var name=\"a\" type=\"long\"/></Table>");
    return isFalse && records.AreUntouched() && !xmlTableEntryGet(table, nullptr, nullptr, nullptr) &&
           !xmlTableEntryGet(table, &records.position, nullptr, nullptr) && records.position == 0 &&
           xmlTableEntryGet(table, nullptr, &records.value, nullptr) &&
           xmlTableEntryGet(table, nullptr, nullptr, &records.ui);
}

bool EntryIsExistIsNeutral() {
    const Records records;
    return !xmlTableEntryIsExist(nullptr, &records.value) && !xmlTableEntryIsExist(nullptr, nullptr);
}

bool EntrySetIsNeutral() {
    Records records;
    return !xmlTableEntrySet(nullptr, &records.position, &records.value, &records.ui, 1, 1) &&
           !xmlTableEntrySet(nullptr, nullptr, &records.value, nullptr, 0, 0) &&
           !xmlTableEntrySet(nullptr, nullptr, nullptr, &records.ui, 0, 0) && records.AreUntouched();
}

bool EntryAddIsNeutral() {
    Records records;
    return !xmlTableEntryAdd(nullptr, &records.position, &records.value, &records.ui, 1, 1) &&
           !xmlTableEntryAdd(nullptr, nullptr, &records.value, nullptr, 0, 0) &&
           !xmlTableEntryAdd(nullptr, nullptr, nullptr, &records.ui, 0, 0) && records.AreUntouched();
}

bool RemoveEntryIsNeutral() {
    const Records records;
    return !xmlTableRemoveEntry(nullptr, &records.value, -1, 1) &&
           !xmlTableRemoveEntry(nullptr, nullptr, 0, 0);
}

bool RemoveEntriesIsNeutral() {
    return !xmlTableRemoveEntries(nullptr);
}

constexpr std::array<Export, 21> kExports = {{{"xmlProfileNew", ProfileNewIsNeutral},
                                              {"xmlProfileDispose", ProfileDisposeIsNeutral},
                                              {"xmlProfileSave", ProfileSaveIsNeutral},
                                              {"xmlGetProfileSection", GetSectionIsNeutral},
                                              {"xmlEnumProfileSections", EnumSectionsIsNeutral},
                                              {"xmlWriteProfileSection", WriteSectionIsNeutral},
                                              {"xmlGetProfileInt", GetIntIsNeutral},
                                              {"xmlGetProfileString", GetStringIsNeutral},
                                              {"xmlGetProfileData", GetDataIsNeutral},
                                              {"xmlWriteProfileInt", WriteIntIsNeutral},
                                              {"xmlWriteProfileString", WriteStringIsNeutral},
                                              {"xmlWriteProfileData", WriteDataIsNeutral},
                                              {"xmlTableNew", TableNewIsNeutral},
                                              {"xmlTableSave", TableSaveIsNeutral},
                                              {"xmlTableDispose", TableDisposeIsNeutral},
                                              {"xmlTableEntryGet", EntryGetIsNeutral},
                                              {"xmlTableEntryIsExist", EntryIsExistIsNeutral},
                                              {"xmlTableEntrySet", EntrySetIsNeutral},
                                              {"xmlTableEntryAdd", EntryAddIsNeutral},
                                              {"xmlTableRemoveEntry", RemoveEntryIsNeutral},
                                              {"xmlTableRemoveEntries", RemoveEntriesIsNeutral}}};

class EveryExport : public testing::TestWithParam<Export> {};

TEST_P(EveryExport, AnswersNullAsItPromises) {
    EXPECT_TRUE(GetParam().isNeutral());
}

INSTANTIATE_TEST_SUITE_P(, EveryExport, testing::ValuesIn(kExports),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace host
