// The table family as CallHost calls it, over tables and sections.
#include <algorithm>
#include <iterator>

#include "fuzz/call_host.h"
#include "fuzz/large_text.h"
#include "fuzz/read_everything.h"
#include "fuzz/tree_check.h"
#include "mox_xmlApi/table/table_handle.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox::fuzz {
namespace {

constexpr std::uint64_t kByName = ~std::uint64_t{0};

std::size_t CountNamed(const XmlNode& table, WideView name) {
    return static_cast<std::size_t>(
        std::count_if(table.children.begin(), table.children.end(), [&](const XmlNode* child) {
            WideView found;
            return XmlDocument::GetAttribute(child, names::kName, found) && found == name;
        }));
}

// The name in a record, which need not end.
WideView NameIn(const TableEntryBaseInfoStruct& record) {
    const auto* end = std::find(std::begin(record.name), std::end(record.name), wchar16{0});
    return {record.name, static_cast<std::size_t>(end - record.name)};
}

bool IsChild(const XmlNode& table, std::uint64_t position) {
    return std::any_of(table.children.begin(), table.children.end(), [&](const XmlNode* child) {
        return reinterpret_cast<std::uintptr_t>(child) == position;
    });
}

}  // namespace

// Table, source ('0' new, '1' memory, '2' wide file), name ('-': none); then for a new one the four flags and
// numbers, else the document.
void CallHost::OpenTable() {
    void*& table = tables_[input_.Below(tables_.size())];
    const std::size_t source = input_.Below(3);
    const WideString text = input_.Text();
    const wchar16* name = text == "-"_w ? nullptr : text.c_str();
    DisposeTable(table);
    if (source == 0) {
        const auto editable = static_cast<std::int32_t>(input_.Below(3));
        const std::uint32_t firstId = input_.Number();
        const auto type = static_cast<std::uint16_t>(input_.Number());
        const auto newDocument = static_cast<std::int32_t>(input_.Below(3));
        table = Make(Changes::Nothing, [&] {
            return xmlTableNew(nullptr, nullptr, 0, name, editable, firstId, type, newDocument);
        });
        Check(table != nullptr, "a new table is always there");
        return;
    }
    const std::string document = ChooseDocument();
    if (source == 2) {
        file_.Write(model::WideBytes(model::FromNarrowBytes(document)));
        table = Make(
            Changes::Nothing, [&] { return xmlTableNew(file_.Name(), nullptr, 0, name, 0, 0, 0, 0); },
            document.size());
    } else if (!document.empty()) {
        const auto size = static_cast<std::int32_t>(document.size());
        table = Make(
            Changes::Nothing, [&] { return xmlTableNew(nullptr, document.data(), size, name, 0, 0, 0, 0); },
            document.size());
    }
}

// Table, reserved, whether to refuse.
void CallHost::SaveTable() {
    const Table table = ChooseTable();
    const auto reserved = static_cast<std::int32_t>(input_.Below(3));
    const auto refuse = static_cast<std::int32_t>(input_.Below(3));
    file_.Remove();
    constexpr std::size_t kMostSavedDepth = 300;  // files grow with the square of the depth
    if (table.handle != nullptr && DepthBelow(*table.element) > kMostSavedDepth) return;
    const bool isWritten = SaveTable(table, file_.Name(), reserved, refuse);
    Check(isWritten == (table.handle != nullptr && reserved == 0 && refuse != 1),
          "a table is saved unless that is refused");
    Check(isWritten == file_.Exists(), "a file is there when it was written");
    if (isWritten) CheckRoundTrip(table.handle, file_);
}

bool CallHost::SaveTable(const Table& table, const wchar16* name, std::int32_t reserved,
                         std::int32_t refuse) {
    const std::uint64_t tabs = table.handle == nullptr ? 0 : SizeOfDocuments() * DepthBelow(*table.element);
    return Make(
        Changes::Nothing, [&] { return xmlTableSave(table.handle, name, reserved, refuse); }, tabs);
}

// Table, how ('0' without a position, '1' by name, others by position), which records ('0' both, '1' and '2' one, '3'
// one as both), the value record, position.
void CallHost::GetEntry() {
    const Table table = ChooseTable();
    const std::size_t how = input_.Below(5);
    const std::size_t records = input_.Below(4);
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    FillRecord(value);
    if (records == 3) static_cast<TableEntryValueInfoStruct&>(ui) = value;
    const WideString key(NameIn(value));
    const std::uint32_t id = how <= 1 && records != 1 ? value.id : 0;
    std::uint64_t position = how <= 1 ? kByName : ChoosePosition(table);
    const std::uint64_t before = position;
    const bool isRead = Make(Changes::Nothing, [&] {
        position = before;
        return xmlTableEntryGet(table.handle, how == 0 ? nullptr : &position,
                                records == 1   ? nullptr
                                : records == 3 ? &ui
                                               : &value,
                                records == 2 ? nullptr : &ui);
    });
    if (table.handle == nullptr) return Check(!isRead && position == before, "null has no entries");
    const XmlNode* entry = how <= 1 ? ScanForEntry(*table.element, records == 1 ? WideView() : key)
                                    : reinterpret_cast<const XmlNode*>(static_cast<std::uintptr_t>(position));
    Check(!isRead || entry != nullptr, "what was read is an entry");
    // One record for both holds what was written to it last.
    if (isRead && records != 3)
        CheckRecords(*entry, records == 1 ? nullptr : &value, records == 2 ? nullptr : &ui, id);
    if (how <= 1) {
        Check(position == kByName, "a look-up by name leaves the position");
        return;
    }
    Check(!isRead || position != before, "an entry that is read moves the position");
    Check(position == before || IsChild(*table.element, position), "a position is an entry of the table");
    KeepPosition(table, position);
}

// Table, record.
void CallHost::IsExist() {
    const Table table = ChooseTable();
    TableEntryValueInfoStruct record;
    FillRecord(record);
    const bool isThere = table.handle != nullptr && ScanForEntry(*table.element, NameIn(record)) != nullptr;
    Check(Make(Changes::Nothing, [&] { return xmlTableEntryIsExist(table.handle, &record); }) == isThere,
          "IsExist finds what a scan finds");
}

// Table, which records (as for GetEntry), the records, by position ('0'), without one ('1') or with one that means no
// enumeration, force, eud.
void CallHost::SetEntry() {
    const Table table = ChooseTable();
    const std::size_t records = input_.Below(4);
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    if (records != 1 && records != 3) FillRecord(value);
    if (records != 2) FillRecord(ui);
    const std::size_t how = input_.Below(3);
    const bool byName = how == 1;
    std::uint64_t position = how == 2 ? kByName : byName ? 0 : ChoosePosition(table);
    const std::uint64_t before = position;
    const auto force = static_cast<std::int32_t>(input_.Below(3));
    const auto eud = static_cast<std::int32_t>(input_.Below(3));
    const std::size_t count = table.element == nullptr ? 0 : table.element->children.Size();
    const bool isSet = Make(Changes::OneEntry, [&] {
        position = before;
        return xmlTableEntrySet(table.handle, byName ? nullptr : &position,
                                records == 1   ? nullptr
                                : records == 3 ? &ui
                                               : &value,
                                records == 2 ? nullptr : &ui, force, eud);
    });
    if (table.handle == nullptr || how == 2)
        return Check(!isSet && position == before, "null has no entries, nor has a position of none");
    Check(table.element->children.Size() == count, "Set never adds");
    if (byName) return;
    Check(isSet == (position != before), "an entry that was set moves the position");
    Check(!isSet || IsChild(*table.element, position), "a position is an entry of the table");
    KeepPosition(table, position);
}

// Table, which records (as for GetEntry), the records, position, eud, update ('3' without a position, '4' and '5' with
// one that means no enumeration, the latter with update).
void CallHost::AddEntry() {
    const Table table = ChooseTable();
    const std::size_t records = input_.Below(4);
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    if (records != 1 && records != 3) FillRecord(value);
    if (records != 2) FillRecord(ui);
    if (records == 1) ui.type = 31;  // another type would need the value record
    std::uint64_t position = ChoosePosition(table);
    const auto eud = static_cast<std::int32_t>(input_.Below(3));
    const std::size_t how = input_.Below(6);
    const bool byName = how >= 4;
    const std::int32_t update = how == 5 ? 1 : how < 3 ? static_cast<std::int32_t>(how) : 0;
    if (byName) position = kByName;
    const std::uint64_t before = position;
    const TableEntryValueInfoStruct& first = records == 1 || records == 3 ? ui : value;
    const std::size_t count = table.element == nullptr ? 0 : table.element->children.Size();
    const WideView name = NameIn(first);
    const bool isThere = table.element != nullptr && ScanForEntry(*table.element, name) != nullptr;
    const bool isAdded = Make(Changes::OneEntry, [&] {
        return xmlTableEntryAdd(table.handle, how == 3 ? nullptr : &position,
                                records == 1   ? nullptr
                                : records == 3 ? &ui
                                               : &value,
                                records == 2 ? nullptr : &ui, eud, update);
    });
    Check(position == before, "Add leaves the position");
    if (table.handle == nullptr) return Check(!isAdded, "null has no entries");
    const std::size_t more = isAdded && !(update == 1 && isThere) ? 1 : 0;
    // A presentation record without a control is ignored; alone it leaves no name to update by.
    const bool hasName = records != 1 || ui.control != 0xFFFF;
    Check(!hasName || table.element->children.Size() == count + more, "Add adds one entry, or updates one");
    if (byName) Check(!isAdded || more == 0, "without a position nothing is inserted");
    if (more == 1 && how != 3 && position != 0) {
        const auto* next = reinterpret_cast<const XmlNode*>(static_cast<std::uintptr_t>(position));
        Check(PositionOf(*next) > 0, "the new entry comes before the one that was given");
    }
    if (isAdded && records != 1 && first.writeMask == 0)
        Check(ScanForEntry(*table.element, name) != nullptr, "an added entry is found");
}

// Table, record, occurrence, whether all of them.
void CallHost::RemoveEntry() {
    const Table table = ChooseTable();
    TableEntryValueInfoStruct record;
    FillRecord(record);
    const auto occurrence = static_cast<std::int32_t>(input_.Number());
    const auto removeAll = static_cast<std::int32_t>(input_.Below(3));
    if (table.handle == nullptr)
        return Check(!xmlTableRemoveEntry(nullptr, &record, occurrence, removeAll), "null has no entries");
    const WideView name = NameIn(record);
    const std::size_t named = CountNamed(*table.element, name);
    const auto first = occurrence == -1 ? 0 : static_cast<std::uint64_t>(std::int64_t{occurrence});
    const std::size_t reached = first < named ? named - static_cast<std::size_t>(first) : 0;
    const std::size_t expected = removeAll != 0 ? reached : std::min<std::size_t>(reached, 1);
    const std::size_t before = table.element->children.Size();
    const bool isRemoved = Make(
        Changes::Nothing, [&] { return xmlTableRemoveEntry(table.handle, &record, occurrence, removeAll); });
    ForgetRemoved(table.element);
    Check(before - table.element->children.Size() == expected, "as many entries go as were asked for");
    Check(isRemoved == (expected != 0), "the result says whether entries went");
}

// Table.
void CallHost::RemoveEntries() {
    const Table table = ChooseTable();
    const bool isEmptied = Make(Changes::Nothing, [&] { return xmlTableRemoveEntries(table.handle); });
    Check(isEmptied == (table.handle != nullptr), "a table can always be emptied");
    if (table.handle == nullptr) return;
    ForgetRemoved(table.element);
    Check(std::none_of(table.element->children.begin(), table.element->children.end(),
                       [](const XmlNode* child) { return child->name.View() == names::kVar; }),
          "no entry is left");
}

// Name, type, id, mask, value ('-': never set; '=': the record's name; '^': a part of the value that it has).
void CallHost::FillRecord(TableEntryValueInfoStruct& record) {
    constexpr std::array<std::uint16_t, 10> kTypes = {8, 31, 3, 0x1003, 0x2005, 0, 17, 11, 99, 0x3008};
    const WideString name = input_.Text();
    // A name of 260 units does not end.
    std::copy_n(name.begin(), std::min(name.size(), std::size(record.name)), std::begin(record.name));
    record.type = kTypes[input_.Below(kTypes.size())];
    record.id = input_.Number();
    record.writeMask = static_cast<std::uint16_t>(input_.Number());
    const WideString value = input_.Text();
    if (value == "-"_w) return;
    if (value == "="_w && name.size() < std::size(record.name)) {
        record.SetVal_w(record.name);
        return Check(ViewOf(record.GetVal_w()) == name, "a record takes a text of its own");
    }
    if (value == "^"_w) {
        record.SetVal_w("own"_w.data());
        record.SetVal_w(record.GetVal_w() + 1);
        return Check(ViewOf(record.GetVal_w()) == "wn"_w, "a record takes a text of its own");
    }
    // A text that has no 8-bit form is given as a host of 8-bit text might get it wrong.
    if (!record.SetVal_w(value.c_str())) record.SetVal("7");
}

// As above; then control, provider and its owner, comment and displayed name ('-': never set; '=': the record's value,
// and its comment).
void CallHost::FillRecord(TableEntryUInfoStruct& record) {
    FillRecord(static_cast<TableEntryValueInfoStruct&>(record));
    record.control = static_cast<std::uint16_t>(input_.Number());
    record.prov_index = input_.Number();
    record.prov_owner = static_cast<std::uint8_t>(input_.Below(6));
    const WideString comment = input_.Text();
    if (comment != "-"_w) record.SetComment_w(comment == "="_w ? record.GetVal_w() : comment.c_str());
    const WideString userName = input_.Text();
    if (userName != "-"_w) record.SetUserName_w(userName == "="_w ? record.GetComment_w() : userName.c_str());
}

}  // namespace mox::fuzz
