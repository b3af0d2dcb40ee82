#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <fstream>
#include <mutex>
#include <thread>

#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "tests/threads/threads.h"

namespace threads {
namespace {

constexpr int kKeys = 40;  // more than a section has without an index

std::string Settings(int keys) {
    std::string text =
        "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"><Table name=\"S\" eud=\"true\">";
    for (int i = 0; i < keys; ++i)
        text += "<Var name=\"k" + std::to_string(i) + "\" type=\"long\" eud=\"true\"><Value>" +
                std::to_string(i) + "</Value></Var>";
    return text + "</Table><Table name=\"T\"/></Settings>";
}

moxSettings* OpenText(const std::string& text) {
    return xmlProfileNew(nullptr, text.data(), static_cast<std::int32_t>(text.size()), 0);
}

WideText Key(int number) {
    return Wide("k" + std::to_string(number));
}

void NameRecord(TableEntryBaseInfoStruct& record, const WideText& name) {
    std::copy_n(name.c_str(), name.size() + 1, record.name);
}

// The files of one thread.
struct Files {
    explicit Files(int number)
        : saved(FilePath("exports_" + std::to_string(number) + ".xml")),
          table(FilePath("exports_table_" + std::to_string(number) + ".xml")) {}

    std::filesystem::path saved;
    std::filesystem::path table;
};

void CallProfileFunctions(const WideText& source, const Files& files, int number) {
    const WideText path = WidePath(files.saved);
    moxSettings* profile = xmlProfileNew(source.c_str(), nullptr, 0, 0);
    Expect(profile != nullptr, "a file that others read is opened");
    std::uint32_t flag = 7;
    void* section = xmlGetProfileSection(profile, Wide("S").c_str(), &flag);
    Expect(section != nullptr && flag == 0, "a section is found");
    xmlTableDispose(&section);
    section = xmlWriteProfileSection(profile, Wide("New").c_str(), 1, 5, 7, &flag);
    Expect(section != nullptr && flag == 0, "a section is written");
    xmlTableDispose(&section);
    for (int i = 0; i < kKeys; ++i)
        Expect(xmlGetProfileInt(profile, Wide("S").c_str(), Key(i).c_str(), -1) == i, "a number is read");
    const WideText value = Wide("v" + std::to_string(number));
    Expect(xmlWriteProfileInt(profile, Wide("T").c_str(), Wide("i").c_str(), number) == 1,
           "a number is written");
    Expect(xmlWriteProfileString(profile, Wide("T").c_str(), Wide("s").c_str(), value.c_str()) == 1,
           "a text is written");
    Expect(xmlWriteProfileData(profile, Wide("T").c_str(), Wide("d").c_str(), &number, sizeof number) == 1,
           "bytes are written");
    int read = -1;
    std::array<wchar16, 16> text{};
    Expect(
        xmlGetProfileData(profile, Wide("T").c_str(), Wide("d").c_str(), &read, sizeof read) == sizeof read &&
            read == number,
        "bytes are read");
    Expect(xmlGetProfileString(profile, Wide("T").c_str(), Wide("s").c_str(), text.data(), text.size(),
                               nullptr) == value.size() &&
               text.data() == value,
           "a text is read");
    std::uintptr_t position = 0;
    int sections = 0;
    while ((section = xmlEnumProfileSections(profile, &position, text.data(), text.size(), &flag)) !=
           nullptr) {
        ++sections;
        xmlTableDispose(&section);
    }
    Expect(sections == 3, "an enumeration visits every section");
    for (std::uint32_t mode = 0; mode < 3; ++mode)
        Expect(xmlProfileSave(profile, path.c_str(), mode, 0, number % 2) == 1, "a profile is saved");
    xmlProfileDispose(&profile);
    profile = xmlProfileNew(path.c_str(), nullptr, 0, number % 2);
    Expect(
        profile != nullptr && xmlGetProfileInt(profile, Wide("T").c_str(), Wide("i").c_str(), -1) == number,
        "each thread reads back what it has saved itself");
    xmlProfileDispose(&profile);
}

void CallTableFunctions(const Files& files, int number) {
    const WideText path = WidePath(files.table);
    void* table = xmlTableNew(nullptr, nullptr, 0, Wide("T").c_str(), 1, 1, 2, 1);
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    for (int i = 0; i < kKeys; ++i) {
        NameRecord(value, Key(i));
        value.type = 31;
        value.SetVal_w(Wide(std::to_string(number)).c_str());
        Expect(xmlTableEntryAdd(table, nullptr, &value, nullptr, 0, 0), "an entry is added");
    }
    NameRecord(value, Key(1));
    NameRecord(ui, Key(1));
    ui.control = 1;
    ui.SetComment_w(Wide("comment").c_str());
    Expect(xmlTableEntrySet(table, nullptr, &value, &ui, 1, 1), "an entry is written");
    Expect(xmlTableEntryIsExist(table, &value), "an entry is there");
    Expect(xmlTableRemoveEntry(table, &value, -1, 0), "an entry is removed");
    Expect(xmlTableSave(table, path.c_str(), 0, 0), "a table is saved");
    xmlTableDispose(&table);
    table = xmlTableNew(path.c_str(), nullptr, 0, Wide("T").c_str(), 0, 0, 0, 0);
    Expect(table != nullptr, "a table is opened");
    std::uint64_t position = 0;
    int entries = 0;
    while (xmlTableEntryGet(table, &position, &value, &ui)) {
        ++entries;
        Expect(value.GetVal_w() == Wide(std::to_string(number)), "an entry is read");
    }
    Expect(entries == kKeys - 1, "an enumeration visits every entry");
    Expect(xmlTableRemoveEntries(table), "a table is emptied");
    xmlTableDispose(&table);
}

void WriteSource(const std::filesystem::path& path) {
    std::ofstream stream(path, std::ios::binary);
    stream << Settings(kKeys);
    stream.close();
    Expect(stream.good(), "the common file is written");
}

}  // namespace

void CallAllExports(int rounds) {
    const std::filesystem::path source = FilePath("exports_source.xml");
    WriteSource(source);
    InThreads([&](int number) {
        const WideText path = WidePath(source);
        const Files files(number);
        for (int i = 0; i < rounds; ++i) {
            CallProfileFunctions(path, files, number);
            CallTableFunctions(files, number);
        }
    });
}

void ShareOneDocument(int rounds) {
    std::mutex mutex;
    int turn = 0;
    const auto isTurn = [&](int wanted) {
        const std::lock_guard<std::mutex> lock(mutex);
        return turn == wanted;
    };
    moxSettings* profile = nullptr;
    void* section = nullptr;
    InThreads([&](int number) {
        for (int i = 0; i < rounds; ++i) {
            while (!isTurn(i * kThreads + number))
                std::this_thread::yield();
            const std::lock_guard<std::mutex> lock(mutex);
            // Opened, indexed, changed and released by different threads.
            if (turn % 6 == 0) profile = OpenText(Settings(kKeys));
            for (int key = 0; key < kKeys; ++key)
                xmlGetProfileInt(profile, Wide("S").c_str(), Key(key).c_str(), -1);
            if (turn % 6 == 1) section = xmlGetProfileSection(profile, Wide("S").c_str(), nullptr);
            xmlWriteProfileInt(profile, Wide("S").c_str(), Wide("turn").c_str(), turn);
            Expect(xmlGetProfileInt(profile, Wide("S").c_str(), Wide("turn").c_str(), -1) == turn,
                   "a document can be used by one thread after the other");
            if (turn % 6 == 4 || turn + 1 == rounds * kThreads) xmlTableDispose(&section);
            if (turn % 6 == 5 || turn + 1 == rounds * kThreads) xmlProfileDispose(&profile);
            ++turn;
        }
    });
}

void LookUpFirst() {
    InThreads([](int) {
        // A wide document would be needed for other letters than bytes can give: all of them are negative units.
        moxSettings* profile = OpenText(Settings(kKeys));
        Expect(profile != nullptr, "a document is opened");
        for (int round = 0; round < 3; ++round) {
            for (int i = kKeys; i-- > 0;)
                Expect(xmlGetProfileInt(profile, Wide("S").c_str(), Key(i).c_str(), -1) == i,
                       "a first look-up finds its key");
        }
        xmlProfileDispose(&profile);
        const std::string letters = "<Settings><\xE4/></Settings>";
        Expect(OpenText(letters) == nullptr, "a byte beyond ASCII is no letter");
    });
}

void KeepParsing() {
    static std::atomic<int> started = 0;
    for (int number = 0; number < kThreads; ++number) {
        std::thread([] {
            for (bool isFirst = true;; isFirst = false) {
                moxSettings* profile = OpenText(Settings(kKeys * 10));
                for (int i = 0; i < kKeys; ++i)
                    xmlGetProfileInt(profile, Wide("S").c_str(), Key(i * 10).c_str(), -1);
                xmlProfileDispose(&profile);
                if (isFirst) ++started;
            }
        }).detach();
    }
    while (started != kThreads)
        std::this_thread::yield();
}

}  // namespace threads
