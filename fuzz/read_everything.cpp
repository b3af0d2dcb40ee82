#include "fuzz/read_everything.h"

#include <iterator>
#include <memory>

#include "fuzz/fuzz_input.h"
#include "fuzz/tree_check.h"
#include "fuzz/work.h"
#include "mox_xmlApi/table/table_handle.h"
#include "tests/tree_in_model.h"

namespace mox::fuzz {
namespace {

// Look-ups by name cost a scan each: of long documents the first ones are enough.
constexpr int kMostByName = 64;

XmlNode& ElementOf(void* table) {
    return *static_cast<TableHandle*>(table)->cursor.table;
}

std::size_t CountElements(const XmlNode& parent) {
    std::size_t count = 0;
    for (const XmlNode* child : parent.children)
        count += child->kind == XmlNodeKind::Element ? 1 : 0;
    return count;
}

void ReadByName(void* table, const TableEntryValueInfoStruct& entry) {
    TableEntryValueInfoStruct found;
    std::copy(std::begin(entry.name), std::end(entry.name), std::begin(found.name));
    Measured([&] { return xmlTableEntryGet(table, nullptr, &found, nullptr); });
    const XmlNode* scanned = ScanForEntry(ElementOf(table), ViewOf(entry.name));
    const bool isThere = Measured([&] { return xmlTableEntryIsExist(table, &entry); });
    Check(isThere == (scanned != nullptr), "IsExist finds what a scan finds");
}

void ReadKey(moxSettings* profile, const wchar16* section, const wchar16* key) {
    constexpr std::int32_t kDefault = 4711;
    const XmlNode* scanned = ScanForTable(*profile->root, ViewOf(section));
    scanned = scanned == nullptr ? nullptr : ScanForEntry(*scanned, ViewOf(key));
    const EntryInModel entry = scanned == nullptr ? EntryInModel() : ReadByModel(*scanned);
    const WideView text = entry.isReadable ? entry.KeyValue() : WideView();

    const std::int32_t number = Measured([&] { return xmlGetProfileInt(profile, section, key, kDefault); });
    Check(!text.empty() || number == kDefault, "without a value there is the default");
    const std::uint32_t length = xmlGetProfileString(profile, section, key, nullptr, 0, nullptr);
    Check(length == text.size(), "a value has the length that a scan finds");

    // Buffers of just the size that was asked for: the sanitizer sees a write past them.
    const auto whole = std::make_unique<wchar16[]>(std::size_t{length} + 1);
    Check(xmlGetProfileString(profile, section, key, whole.get(), length + 1, nullptr) == length,
          "a text has the length that was announced");
    Check(WideView(whole.get()) == text, "a value is the text that a scan finds");
    const std::uint32_t half = length / 2 + 1;
    const auto cut = std::make_unique<wchar16[]>(half);
    Check(length == 0 || xmlGetProfileString(profile, section, key, cut.get(), half, nullptr) == half - 1,
          "a text is cut to the buffer");
    const auto bytes = std::make_unique<unsigned char[]>(half);
    Check(xmlGetProfileData(profile, section, key, bytes.get(), half) <= half, "data stay in their buffer");
}

}  // namespace

EntryInModel ReadByModel(const XmlNode& entry) {
    EntryInModel read;
    read.isReadable = model::ReadEntry(*test::CopyToModel(entry), read.value, read.ui);
    return read;
}

void CheckRecords(const XmlNode& element, const TableEntryValueInfoStruct* value,
                  const TableEntryUInfoStruct* ui, std::uint32_t id) {
    constexpr std::uint16_t kWide = 31;
    EntryInModel entry;
    entry.value.id = id;
    Check(model::ReadEntry(*test::CopyToModel(element), entry.value, entry.ui),
          "an entry that is read has a known type");
    if (value != nullptr) {
        Check(value->type == entry.value.type && value->id == entry.value.id,
              "type and id are read as they stand");
        const bool fallsBack = ui == nullptr && value->type != kWide && entry.value.value.empty();
        Check(ViewOf(value->GetVal_w()) == (fallsBack ? entry.ui.value : entry.value.value),
              "a value is read as it stands");
    }
    if (ui != nullptr) {
        Check(ui->type == entry.value.type && ui->id == entry.value.id, "type and id are read as they stand");
        Check(ui->control == entry.ui.control && ui->prov_index == entry.ui.index &&
                  ui->prov_owner == entry.ui.owner,
              "control and provider are read as they stand");
        Check(ViewOf(ui->GetVal_w()) == entry.ui.value, "a presented value is read as it stands");
        Check(ViewOf(ui->GetComment_w()) == entry.ui.comment, "a comment is read as it stands");
        Check(ViewOf(ui->GetUserName_w()) == entry.ui.name, "a displayed name is read as it stands");
    }
}

void ReadTable(void* table) {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    const std::size_t elements = CountElements(ElementOf(table));
    std::uint64_t position = 0;
    std::uint64_t last = 0;
    std::size_t steps = 0;
    for (;;) {
        // Both records, or the one or the other.
        auto* wantedValue = steps % 3 == 1 ? nullptr : &value;
        auto* wantedUi = steps % 3 == 2 ? nullptr : &ui;
        const bool isRead =
            Measured([&] { return xmlTableEntryGet(table, &position, wantedValue, wantedUi); });
        if (position == last) {
            Check(!isRead, "an entry that is read moves the position");
            break;
        }
        last = position;
        ++steps;
        if (isRead)
            CheckRecords(*reinterpret_cast<const XmlNode*>(static_cast<std::uintptr_t>(position)),
                         wantedValue, wantedUi);
        if (isRead && wantedValue != nullptr && steps < kMostByName) ReadByName(table, value);
    }
    Check(steps == elements, "an enumeration visits every element");
    CheckLookUps(static_cast<TableHandle*>(table)->document, ElementOf(table));
}

void ReadProfile(moxSettings* profile) {
    constexpr std::uint32_t kNameLength = 40;
    std::uintptr_t position = 0;
    std::size_t sections = 0;
    std::uint32_t editable = 0;
    for (;;) {
        const auto name = std::make_unique<wchar16[]>(kNameLength);
        void* section = Measured(
            [&] { return xmlEnumProfileSections(profile, &position, name.get(), kNameLength, &editable); });
        if (section == nullptr) break;
        if (++sections < kMostByName) {
            ReadTable(section);
            void* byName = Measured([&] { return xmlGetProfileSection(profile, name.get(), &editable); });
            const XmlNode* scanned = ScanForTable(*profile->root, WideView(name.get()));
            Check(byName == nullptr ? scanned == nullptr : &ElementOf(byName) == scanned,
                  "a section is found by its name");
            xmlTableDispose(&byName);

            int keys = 0;
            std::uint64_t entry = 0;
            TableEntryValueInfoStruct value;
            while (xmlTableEntryGet(section, &entry, &value, nullptr) && ++keys < kMostByName)
                ReadKey(profile, name.get(), value.name);
        }
        xmlTableDispose(&section);
    }
    Check(position == 0, "the end of an enumeration resets its position");
    Check(sections == CountElements(*profile->root), "an enumeration visits every section");
    CheckLookUps(profile->document, *profile->root);
}

}  // namespace mox::fuzz
