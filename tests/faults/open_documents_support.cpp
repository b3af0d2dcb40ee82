#include "tests/faults/open_documents_support.h"

#include "mox_xmlApi/profile/settings.h"
#include "mox_xmlApi/table/table_handle.h"
#include "tests/faults/failing_disk_support.h"
#include "tests/faults/failing_memory_support.h"
#include "tests/faults/tree_check_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

std::string Entries(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(10000000 + i);
        text.append("<Var name=\"n").append(number).append("\" type=\"string\"><Value>");
        text.append(number).append(number).append("</Value></Var>");
    }
    return text;
}

}  // namespace

std::string ProfileText(int keys) {
    std::string text(host::kRootStart);
    return text.append("<Table name=\"S\">").append(Entries(keys)).append("</Table></Settings>\n");
}

std::string TableText(int entries) {
    return "<Table name=\"T\">" + Entries(entries) + "</Table>\n";
}

OpenDocuments::OpenDocuments(int entries) {
    const std::string profileText = ProfileText(entries);
    const std::string tableText = TableText(entries);
    profile = xmlProfileNew(nullptr, profileText.data(), static_cast<std::int32_t>(profileText.size()), 0);
    table = xmlTableNew(nullptr, tableText.data(), static_cast<std::int32_t>(tableText.size()), nullptr, 0, 0,
                        0, 0);
    EXPECT_TRUE(profile != nullptr && table != nullptr);
    files_ = EveryFile();
}

OpenDocuments::~OpenDocuments() {
    xmlProfileDispose(&profile);
    xmlTableDispose(&table);
}

std::vector<OpenDocuments::Save> OpenDocuments::EverySave() const {
    std::vector<Save> saves;
    for (const std::uint32_t mode : {0U, 1U, 2U, 3U}) {
        for (const std::int32_t wide : {0, 1}) {
            saves.emplace_back([this, mode, wide](const wchar16* path) {
                return xmlProfileSave(profile, path, mode, 0, wide) == 1;
            });
        }
    }
    saves.emplace_back([this](const wchar16* path) { return xmlTableSave(table, path, 0, 0); });
    return saves;
}

std::vector<std::string> OpenDocuments::EveryFile() const {
    std::vector<std::string> files;
    for (const Save& save : EverySave()) {
        const host::ScratchFile file;
        EXPECT_TRUE(save(file.Name()));
        files.push_back(file.Bytes());
    }
    return files;
}

testing::AssertionResult OpenDocuments::CannotBeSavedTo(const wchar16* path) const {
    const std::uint64_t open = OpenHandles();
    int number = 0;
    for (const Save& save : EverySave()) {
        if (save(path)) return testing::AssertionFailure() << "save " << number << " says that it succeeded";
        ++number;
    }
    if (OpenHandles() != open) return testing::AssertionFailure() << "a file stays open";
    return AreUntouched();
}

testing::AssertionResult OpenDocuments::AreUntouched() const {
    if (EveryFile() != files_) return testing::AssertionFailure() << "what is saved has changed";
    const auto profileIsSound = IsSound(profile->document);
    return profileIsSound ? IsSound(static_cast<mox::TableHandle*>(table)->document) : profileIsSound;
}

testing::AssertionResult CannotBeLoaded(const wchar16* path) {
    const std::uint64_t open = OpenHandles();
    const std::int64_t blocks = LiveBlocks();
    const host::Profile narrow(xmlProfileNew(path, nullptr, 0, 0));
    const host::Profile wide(xmlProfileNew(path, nullptr, 0, 1));
    const host::Section table(xmlTableNew(path, nullptr, 0, nullptr, 0, 0, 0, 0));
    if (narrow != nullptr) return testing::AssertionFailure() << "a narrow profile was loaded";
    if (wide != nullptr) return testing::AssertionFailure() << "a wide profile was loaded";
    if (table) return testing::AssertionFailure() << "a table was loaded";
    if (LiveBlocks() != blocks) return testing::AssertionFailure() << "memory stays allocated";
    if (OpenHandles() != open) return testing::AssertionFailure() << "a file stays open";
    return testing::AssertionSuccess();
}

}  // namespace faults
