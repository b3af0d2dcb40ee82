#include "fuzz/call_host.h"

#include <algorithm>
#include <cstring>

#include "fuzz/fixed_key.h"
#include "fuzz/large_text.h"
#include "fuzz/tree_check.h"
#include "mox_xmlApi/table/table_handle.h"

namespace mox::fuzz {
namespace {

// Enough copies for an index of them, "#" replaced by the letters from A on; two of each, the second ones last.
std::string Repeated(std::string_view pattern) {
    constexpr int kLetters = 12;
    std::string text;
    for (int i = 0; i < 2 * kLetters; ++i) {
        for (const char byte : pattern)
            text += byte == '#' ? static_cast<char>('A' + i % kLetters) : byte;
    }
    return text;
}

// Whether `after` is `before` but for attributes on the way to one node `levels` below, which may be any other or new.
bool DiffersInOneNode(const model::Node& before, const model::Node& after, int levels) {
    if (levels == 0) return true;
    if (before.kind != after.kind || before.name != after.name || before.value != after.value) return false;
    const auto isSame = [](const model::NodePtr& a, const model::NodePtr& b) {
        return model::IsSame(*a, *b);
    };
    const auto& old = before.children;
    const auto& now = after.children;
    const auto front = std::mismatch(old.begin(), old.end(), now.begin(), now.end(), isSame);
    const auto most = std::min(old.end() - front.first, now.end() - front.second);
    std::ptrdiff_t same = 0;
    while (same < most && isSame(*(old.end() - same - 1), *(now.end() - same - 1)))
        ++same;
    const auto changed = old.end() - same - front.first;
    const auto changedNow = now.end() - same - front.second;
    if (changedNow == 0) return changed == 0;
    if (changedNow > 1 || changed > 1) return false;
    return changed == 0 || DiffersInOneNode(**front.first, **front.second, levels - 1);
}

bool DiffersInAttributes(const model::Node& before, const model::Node& after) {
    return before.kind == after.kind && before.name == after.name && before.value == after.value &&
           std::equal(
               before.children.begin(), before.children.end(), after.children.begin(), after.children.end(),
               [](const model::NodePtr& a, const model::NodePtr& b) { return DiffersInAttributes(*a, *b); });
}

// Takes all that the pool can give without asking the system but for `blocks` of its smallest blocks.
void LeaveRoom([[maybe_unused]] XmlPool& pool, [[maybe_unused]] std::size_t blocks) {
#if !defined(_WIN32)
    void* taken = nullptr;  // each block holds the address of the one before
    faults::FailingMemory memory(1, faults::Failing::FromThenOn);
    while (void* block = pool.TryAllocate(XmlPool::kAlignment)) {
        std::memcpy(block, &taken, sizeof taken);
        taken = block;
    }
    memory.Stop();
    for (; blocks > 0 && taken != nullptr; --blocks) {
        void* const block = taken;
        std::memcpy(&taken, block, sizeof taken);
        pool.Free(block, XmlPool::kAlignment);
    }
#endif
}

}  // namespace

// One byte for the call, then its arguments in the order in which the functions below take them. White space
// parts calls and is skipped.
void CallHost::Step() {
    using Call = void (CallHost::*)();
    constexpr std::array<Call, 24> kCalls = {
        &CallHost::OpenProfile,        // a
        &CallHost::DisposeProfile,     // b
        &CallHost::SaveProfile,        // c
        &CallHost::GetSection,         // d
        &CallHost::EnumerateSections,  // e
        &CallHost::WriteSection,       // f
        &CallHost::ReadInt,            // g
        &CallHost::ReadString,         // h
        &CallHost::ReadData,           // i
        &CallHost::WriteInt,           // j
        &CallHost::WriteString,        // k
        &CallHost::WriteData,          // l
        &CallHost::OpenTable,          // m
        &CallHost::DisposeTable,       // n
        &CallHost::SaveTable,          // o
        &CallHost::GetEntry,           // p
        &CallHost::IsExist,            // q
        &CallHost::SetEntry,           // r
        &CallHost::AddEntry,           // s
        &CallHost::RemoveEntry,        // t
        &CallHost::RemoveEntries,      // u
        &CallHost::FailMemory,         // v
        &CallHost::FailSave,           // w
        &CallHost::OpenFromPipe,       // x
    };
    const std::uint8_t byte = input_.Byte();
    if (byte == ' ' || byte == '\n') return;
    const std::size_t number = byte >= 'a' && byte <= 'x' ? std::size_t{byte} - 'a' : byte % kCalls.size();
    (this->*kCalls[number])();

    for (const Profile& profile : profiles_) {
        if (profile.handle == nullptr) continue;
        CheckTree(*profile.handle->document.root);
        CheckLookUps(profile.handle->document, *profile.handle->root);
    }
    for (void* table : tables_) {
        if (table == nullptr) continue;
        const TableHandle& handle = *static_cast<TableHandle*>(table);
        CheckTree(*handle.document.root);
        CheckLookUps(handle.document, *handle.cursor.table);
    }
    for (const Section& section : sections_) {
        const TableHandle& handle = *static_cast<TableHandle*>(section.handle);
        if (section.element != nullptr) CheckLookUps(handle.document, *handle.cursor.table);
    }
}

// Which of the allocations to come, counted from 0, and whether all after it fail, too. The failure is over with the
// call in which it happens. Then how much room the documents have without an allocation: '0' what they have, any other
// byte counts blocks of 8 bytes, '1' none.
void CallHost::FailMemory() {
    failingAllocation_ = std::uint64_t{input_.Number()} % 64 + 1;
    failsFromThenOn_ = input_.Flag();
    const std::uint8_t room = input_.Byte();
    if (room == '0' || room == 0) return;
    const std::size_t blocks = (std::size_t{room} + 256 - '1') % 256;
    for (const Profile& profile : profiles_) {
        if (profile.handle != nullptr) LeaveRoom(profile.handle->document.Pool(), blocks);
    }
    for (void* table : tables_) {
        if (table != nullptr) LeaveRoom(static_cast<TableHandle*>(table)->document.Pool(), blocks);
    }
}

std::uint64_t CallHost::SizeOfDocuments() const {
    std::uint64_t size = 0;
    for (const Profile& profile : profiles_)
        size += profile.handle == nullptr ? 0 : profile.handle->document.Pool().BytesHeld();
    for (void* table : tables_)
        size += table == nullptr ? 0 : static_cast<TableHandle*>(table)->document.Pool().BytesHeld();
    return size / 16;
}

CallHost::Documents CallHost::CopyDocuments() const {
    Documents copies;
    for (const Profile& profile : profiles_)
        copies.push_back(profile.handle == nullptr ? nullptr : CopyTree(*profile.handle->document.root));
    for (void* table : tables_)
        copies.push_back(table == nullptr ? nullptr
                                          : CopyTree(*static_cast<TableHandle*>(table)->document.root));
    return copies;
}

void CallHost::CheckDocuments(const Documents& before, Changes changes) const {
    constexpr int kLevels = 3;  // the root, a section, an entry
    const Documents after = CopyDocuments();
    std::size_t changed = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        Check((before[i] == nullptr) == (after[i] == nullptr),
              "a call that fails opens and releases nothing");
        if (before[i] == nullptr || model::IsSame(*before[i], *after[i])) continue;
        ++changed;
        Check(changes != Changes::Nothing, "a call that changes nothing changes nothing when it fails");
        Check(changes == Changes::Eud ? DiffersInAttributes(*before[i], *after[i])
                                      : DiffersInOneNode(*before[i], *after[i], kLevels),
              "a call that fails leaves the rest of the document");
    }
    Check(changed <= 1, "a call that fails leaves other documents");
}

CallHost::~CallHost() {
    failingAllocation_ = 0;
    for (Profile& profile : profiles_)
        DisposeProfile(profile);
    for (void*& table : tables_)
        DisposeTable(table);
}

// A digit: one of the two tables, a section, or none.
CallHost::Table CallHost::ChooseTable() {
    const std::size_t number = input_.Below(tables_.size() + kMostSections + 1);
    Table chosen;
    if (number < tables_.size()) {
        chosen.handle = tables_[number];
    } else if (number - tables_.size() < sections_.size()) {
        const Section& section = sections_[number - tables_.size()];
        if (section.element != nullptr) chosen.handle = section.handle;
    }
    if (chosen.handle != nullptr) chosen.element = static_cast<TableHandle*>(chosen.handle)->cursor.table;
    return chosen;
}

// 0: before the first entry; else one that this table has given out.
std::uint64_t CallHost::ChoosePosition(const Table& table) {
    const std::size_t number = input_.Below(kMostPositions + 1);
    if (number == 0 || number > positions_.size()) return 0;
    const Position& position = positions_[number - 1];
    return position.table == table.element ? position.value : 0;
}

void CallHost::KeepSection(Profile& profile, void* handle) {
    if (handle == nullptr) return;
    sections_.push_back({handle, &profile, static_cast<TableHandle*>(handle)->cursor.table});
    if (sections_.size() <= kMostSections) return;
    xmlTableDispose(&sections_.front().handle);
    sections_.erase(sections_.begin());
}

void CallHost::KeepPosition(const Table& table, std::uint64_t position) {
    if (position == 0) return;
    if (positions_.size() == kMostPositions) positions_.erase(positions_.begin());
    positions_.push_back({table.element, position});
}

// Called right after entries of a table may have gone, before anything new can take their place in memory.
void CallHost::ForgetRemoved(const XmlNode* table) {
    const auto isGone = [&](const Position& position) {
        if (position.table != table) return false;
        return std::none_of(table->children.begin(), table->children.end(), [&](const XmlNode* child) {
            return reinterpret_cast<std::uintptr_t>(child) == position.value;
        });
    };
    positions_.erase(std::remove_if(positions_.begin(), positions_.end(), isGone), positions_.end());
}

void CallHost::ForgetSection(const XmlNode* element) {
    for (Section& section : sections_) {
        if (section.element == element) section.element = nullptr;
    }
    const auto isInside = [&](const Position& position) { return position.table == element; };
    positions_.erase(std::remove_if(positions_.begin(), positions_.end(), isInside), positions_.end());
}

void CallHost::EndEnumeration(Profile& profile) {
    while (profile.enumeration != 0) {
        void* section = xmlEnumProfileSections(profile.handle, &profile.enumeration, nullptr, 0, nullptr);
        xmlTableDispose(&section);
    }
    profile.enumerated = nullptr;
}

void CallHost::DisposeProfile() {
    DisposeProfile(ChooseProfile());
}

void CallHost::DisposeProfile(Profile& profile) {
    if (profile.handle != nullptr) EndEnumeration(profile);
    for (std::size_t i = sections_.size(); i-- > 0;) {
        if (sections_[i].profile != &profile) continue;
        if (sections_[i].element != nullptr) ForgetSection(sections_[i].element);
        xmlTableDispose(&sections_[i].handle);
        sections_.erase(sections_.begin() + static_cast<std::ptrdiff_t>(i));
    }
    // Positions outlive the handle over their section, but not the profile.
    if (profile.handle != nullptr) {
        for (const XmlNode* section : profile.handle->root->children)
            ForgetSection(section);
    }
    xmlProfileDispose(&profile.handle);
    Check(profile.handle == nullptr, "a disposed profile is null");
}

void CallHost::DisposeTable() {
    const std::size_t number = input_.Below(tables_.size() + kMostSections);
    if (number < tables_.size()) return DisposeTable(tables_[number]);
    const std::size_t section = number - tables_.size();
    if (section >= sections_.size()) return;
    xmlTableDispose(&sections_[section].handle);
    sections_.erase(sections_.begin() + static_cast<std::ptrdiff_t>(section));
}

void CallHost::DisposeTable(void*& table) {
    if (table != nullptr) ForgetSection(static_cast<TableHandle*>(table)->cursor.table);
    xmlTableDispose(&table);
    Check(table == nullptr, "a disposed table is null");
}

// "{...}" describes a document (large_text.h), a digit is one of these; any other byte the empty one.
std::string CallHost::ChooseDocument() {
    constexpr std::size_t kMostBytes = 40000;  // more than two pieces of the loader
    static const std::string manyEntries =
        "<Table name=\"T\">" + Repeated("<Var name=\"#\" type=\"string\"><Value>#</Value></Var>") +
        "</Table>";
    static const std::string manySections = "<Settings xsi:noNamespaceSchemaLocation=\"\">" +
                                            Repeated("<Table name=\"#\"/>") + manyEntries + "</Settings>";
    static const std::string collidingEntries = Expand(
        "<Settings xsi:noNamespaceSchemaLocation=\"\"><Table name=\"S\">"
        "\x11\x33<Var name=\"\x14\" type=\"string\"><Value>v</Value></Var>\x12</Table>"
        "\x11\x33<Table name=\"\x14\"/>\x12</Settings>",
        kMostBytes);
    static const std::array<std::string_view, 8> documents = {
        "",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">\n"
        "<Table name=\"S\" first_id=\"10\" type=\"0020\" editable=\"true\" eud=\"true\">"
        "<Var name=\"A\" id=\"10\" type=\"string\" array=\"\" eud=\"true\"><Value>one</Value></Var>"
        "<Var name=\"B\" id=\"11\" type=\"long\" array=\"vector\"><UI control=\"num\" prov_index=\"3\" "
        "prov_owner=\"app\" name=\"Bee\"><Comment>note</Comment><Value>2</Value></UI></Var>"
        "<!-- a comment --><Var id=\"3\"/><Other name=\"A\" type=\"ucstring\"><Value "
        "loc=\"true\">3</Value></Other>"
        "</Table><Other name=\"S\"/><Table name=\"T\"/><Table/></Settings>",
        "<Settings/>\n<Settings xsi:noNamespaceSchemaLocation=\"\"><Table name=\"S\" eud=\"true\" eud=\"x\"/>"
        "<Table name=\"S\"><Var name=\"\" type=\"string\" Value=\"v\"/></Table></Settings>",
        "<Table name=\"T\" first_id=\"-1\" type=\"00ff\"><Var name=\"A\" type=\"string\" "
        "loc=\"true\"><Value/>"
        "<UI><!--c--><Comment>c</Comment><Value>ui</Value></UI></Var><Var name=\"A\" type=\"ucstring\"/>"
        "<Var name=\"B\" type=\"float\"/></Table>",
        "<Other> text <a/> more </Other>\n<!-- between -->\n<Table name=\"T\"/>\n<Table name=\"U\"/>",
        manyEntries,
        manySections,
        collidingEntries};
    const std::uint8_t byte = input_.Byte();
    if (byte == '{') return Expand(input_.Until('}'), kMostBytes);
    return std::string(documents[byte >= '0' && byte <= '7' ? std::size_t{byte} - '0' : 0]);
}

}  // namespace mox::fuzz
