// A host program in C++: builds a table with values and presentation data, enumerates it, updates entries by
// position and by name, removes one, saves the table and loads it again.
//
//   table_demo <scratch folder>
//
// The exit code is 0 if all results were as expected.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "examples/demo_text.h"
#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"

namespace fs = std::filesystem;

namespace {

constexpr std::uint16_t kLong = 3;
constexpr std::uint16_t kDouble = 5;
constexpr std::uint16_t kWideText = 31;  // the only type whose value is set and read as 16-bit text
constexpr std::uint16_t kNumberControl = 1;
constexpr std::uint16_t kTextControl = 2;
constexpr std::uint8_t kOwnerApp = 1;

// An entry as this host represents it; texts are UTF-8.
struct Entry {
    std::string name;
    std::uint32_t id;
    std::uint16_t type;
    std::string value;
    std::string shownName;
    std::string comment;

    friend bool operator==(const Entry& a, const Entry& b) {
        return a.name == b.name && a.id == b.id && a.type == b.type && a.value == b.value &&
               a.shownName == b.shownName && a.comment == b.comment;
    }
};

// Owns a table handle.
class Table {
  public:
    explicit Table(void* handle) : handle_(handle) { Expect(handle_ != nullptr, "a table"); }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    ~Table() { xmlTableDispose(&handle_); }

    void* Get() const { return handle_; }

  private:
    void* handle_;
};

// ---- conversion between this host's entries and the records

void SetName(TableEntryBaseInfoStruct& record, const std::string& name) {
    const WideText text = Wide(name);
    Expect(text.size() < 260, "a name that fits: " + name);
    std::copy_n(text.c_str(), text.size() + 1, record.name);
}

void SetValue(TableEntryValueInfoStruct& record, const std::string& value) {
    const bool stored =
        record.type == kWideText ? record.SetVal_w(Wide(value).c_str()) : record.SetVal(value.c_str());
    Expect(stored, "a well-formed value: " + value);
}

std::string ValueOf(const TableEntryValueInfoStruct& record) {
    if (record.type != kWideText) return record.GetVal() == nullptr ? "" : record.GetVal();
    return record.GetVal_w() == nullptr ? "" : Utf8(record.GetVal_w());
}

std::string TextOf(const wchar16* text) {
    return text == nullptr ? "" : Utf8(text);
}

void FillValueRecord(const Entry& entry, TableEntryValueInfoStruct& record) {
    SetName(record, entry.name);
    record.id = entry.id;
    record.type = entry.type;
    SetValue(record, entry.value);
}

void FillUiRecord(const Entry& entry, TableEntryUInfoStruct& record) {
    FillValueRecord(entry, record);
    record.control = entry.type == kWideText ? kTextControl : kNumberControl;
    record.prov_index = 40 + entry.id;
    record.prov_owner = kOwnerApp;
    record.SetUserName_w(Wide(entry.shownName).c_str());
    record.SetComment_w(Wide(entry.comment).c_str());
}

// ---- the steps of the demo

// An entry with a value and presentation data takes two calls: the first one adds the value, the second one the
// presentation data.
void Add(const Table& table, const Entry& entry, std::uint64_t* before = nullptr) {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    FillValueRecord(entry, value);
    FillUiRecord(entry, ui);
    Expect(xmlTableEntryAdd(table.Get(), before, &value, nullptr, 0, 0), "add " + entry.name);
    Expect(xmlTableEntryAdd(table.Get(), nullptr, &value, &ui, 0, 1),
           "add presentation data to " + entry.name);
}

std::vector<Entry> ReadAll(const Table& table) {
    std::vector<Entry> entries;
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    while (xmlTableEntryGet(table.Get(), &position, &value, &ui)) {
        entries.push_back({Utf8(value.name), value.id, value.type, ValueOf(value), TextOf(ui.GetUserName_w()),
                           TextOf(ui.GetComment_w())});
    }
    return entries;
}

void Print(const char* title, const std::vector<Entry>& entries) {
    std::printf("%s\n", title);
    for (const Entry& entry : entries) {
        std::printf("  %3u %-10s = %-8s %s (%s)\n", static_cast<unsigned>(entry.id), entry.name.c_str(),
                    entry.value.c_str(), entry.shownName.c_str(), entry.comment.c_str());
    }
}

// Set writes the entry that follows the given position, so remember the position before the entry.
void UpdateByPosition(const Table& table, const std::string& name, const std::string& newValue) {
    std::uint64_t before = 0;
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    while (xmlTableEntryGet(table.Get(), &position, &value, nullptr)) {
        if (Utf8(value.name) == name) {
            SetValue(value, newValue);
            Expect(xmlTableEntrySet(table.Get(), &before, &value, nullptr, 0, 0), "set " + name);
            Expect(before == position, "the position on " + name);
            return;
        }
        before = position;
    }
    Expect(false, "an entry " + name);
}

// An update by name needs only the name: the write mask makes it leave name, type and id unchanged.
void UpdateByName(const Table& table, const std::string& name, std::uint16_t type,
                  const std::string& newValue, int force, int setEud) {
    TableEntryValueInfoStruct value;
    SetName(value, name);
    value.type = type;
    value.writeMask = 0x0002;
    SetValue(value, newValue);
    Expect(xmlTableEntrySet(table.Get(), nullptr, &value, nullptr, force, setEud), "set " + name);
}

std::string ReadByName(const Table& table, const std::string& name) {
    TableEntryValueInfoStruct value;
    SetName(value, name);
    Expect(xmlTableEntryGet(table.Get(), nullptr, &value, nullptr), "an entry " + name);
    return ValueOf(value);
}

// A presentation record stores its value only if there already is a comment and the record has none.
void PresentValue(const Table& table, Entry entry) {
    entry.comment.clear();
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    FillValueRecord(entry, value);
    FillUiRecord(entry, ui);
    Expect(xmlTableEntryAdd(table.Get(), nullptr, &value, &ui, 0, 1),
           "write the presented value of " + entry.name);
    TableEntryUInfoStruct read;
    std::uint64_t position = 0;
    Expect(xmlTableEntryGet(table.Get(), &position, nullptr, &read), "read " + entry.name);
    Expect(ValueOf(read) == entry.value && !TextOf(read.GetComment_w()).empty(), "a value and a comment");
}

// An entry with the attribute "eud" is not changed unless the write is forced.
void ProtectAndForce(const Table& table) {
    UpdateByName(table, "Speed", kLong, "1200", 0, 1);
    UpdateByName(table, "Speed", kLong, "1500", 0, 1);
    Expect(ReadByName(table, "Speed") == "1200", "a protected value");
    UpdateByName(table, "Speed", kLong, "1500", 1, 1);
    Expect(ReadByName(table, "Speed") == "1500", "a forced value");
}

// A new entry is inserted before the entry that the position refers to.
void InsertBeforeSecond(const Table& table, const Entry& entry) {
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    Expect(xmlTableEntryGet(table.Get(), &position, &value, nullptr), "a first entry");
    Expect(xmlTableEntryGet(table.Get(), &position, &value, nullptr), "a second entry");
    Add(table, entry, &position);
}

void Remove(const Table& table, const std::string& name) {
    TableEntryValueInfoStruct key;
    SetName(key, name);
    Expect(xmlTableEntryIsExist(table.Get(), &key), "an entry " + name);
    Expect(xmlTableRemoveEntry(table.Get(), &key, 0, 0), "remove " + name);
    Expect(!xmlTableEntryIsExist(table.Get(), &key), "no entry " + name);
}

void Run(const fs::path& scratch) {
    const Table table(xmlTableNew(nullptr, nullptr, 0, Wide("Tools").c_str(), 1, 1, 0x1F, 1));
    Add(table, {"Diameter", 1, kDouble, "3.0", "Drill diameter", "millimetres"});
    Add(table, {"Speed", 2, kLong, "900", "Spindle speed", "revolutions per minute"});
    Add(table, {"Holder", 3, kWideText, "ER 16 – Größe 4", "Holder", "as engraved"});
    Add(table, {"Spare", 4, kLong, "2", "Spare drills", "in the drawer"});
    InsertBeforeSecond(table, {"Length", 5, kDouble, "61.0", "Overall length", "millimetres"});
    Print("built", ReadAll(table));

    UpdateByPosition(table, "Diameter", "3.2");
    PresentValue(table, {"Diameter", 1, kDouble, "3.2", "Drill diameter", ""});
    UpdateByName(table, "Holder", kWideText, "ER 20 – Größe 5", 0, 0);
    ProtectAndForce(table);
    Remove(table, "Spare");
    const std::vector<Entry> changed = ReadAll(table);
    Print("changed", changed);

    const fs::path path = scratch / "tools.xml";
    Expect(xmlTableSave(table.Get(), WidePath(path).c_str(), 0, 0), "save " + path.string());
    const Table loaded(xmlTableNew(WidePath(path).c_str(), nullptr, 0, Wide("Tools").c_str(), 0, 0, 0, 0));
    Expect(ReadAll(loaded) == changed, "the same entries after loading");
    std::printf("saved; the loaded table has the same entries\n");
    for (const std::string& line : ReadLines(path, true))
        std::printf("  %s\n", line.c_str());

    const std::vector<Entry> expected{{"Diameter", 1, kDouble, "3.2", "Drill diameter", "millimetres"},
                                      {"Length", 5, kDouble, "61.0", "Overall length", "millimetres"},
                                      {"Speed", 2, kLong, "1500", "Spindle speed", "revolutions per minute"},
                                      {"Holder", 3, kWideText, "ER 20 – Größe 5", "Holder", "as engraved"}};
    Expect(changed == expected, "the entries that were written");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: table_demo <scratch folder>\n");
        return 2;
    }
    try {
        fs::create_directories(argv[1]);
        Run(argv[1]);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "table_demo: %s\n", problem.what());
        return 1;
    }
    return 0;
}
