#include "tests/host/random_calls/runner_support.h"

namespace host::random_calls {
namespace {

std::string ShownBytes(const std::string& bytes) {
    std::string shown;
    for (const char byte : bytes) {
        const auto unit = static_cast<unsigned char>(byte);
        if (unit == '\n' || unit == '\t' || (unit >= 0x20 && unit < 0x7F)) {
            shown += byte;
        } else if (unit != 0) {
            shown += "\\x" + Hex(unit).substr(2);
        }
    }
    return shown;
}

}  // namespace

std::string FileBytes(const ScratchFile& file) {
    return file.Exists() ? file.Bytes() : "no file";
}

void Runner::Log(const std::string& line) {
    ++outcome_.calls;
    outcome_.log += "  " + line + "\n";
}

void Runner::Compare(const std::string& actual, const std::string& expected) {
    constexpr std::uint64_t kPrime = 0x100000001B3;
    for (const char byte : actual)
        outcome_.digest = (outcome_.digest ^ static_cast<unsigned char>(byte)) * kPrime;
    outcome_.digest = (outcome_.digest ^ actual.size()) * kPrime;

    if (actual == expected || !outcome_.agreed) return;
    outcome_.agreed = false;
    outcome_.log += "    actual   " + ShownBytes(actual) + "\n    expected " + ShownBytes(expected) + "\n";
}

void Runner::Begin(const Sequence& sequence) {
    const std::string settings = SettingsText(sequence.root, sequence.settings);
    const std::string table = TableText(sequence.table);
    outcome_.log = "settings\n" + ShownBytes(settings) + "\ntable\n" + ShownBytes(table) + "\ncalls\n";

    profile_ = xmlProfileNew(nullptr, settings.data(), static_cast<std::int32_t>(settings.size()), 0);
    const NodePtr document = model::Parse(model::FromNarrowBytes(settings));
    Compare(profile_ != nullptr ? "loaded" : "not loaded", document != nullptr ? "loaded" : "not loaded");
    model_.emplace(document);
    LoadTableDocument(model::FromNarrowBytes(table), static_cast<std::int32_t>(table.size()), nullptr);
}

// Both sides load from memory; the model's text is what the narrow bytes give. What fails is a new table.
void Runner::LoadTableDocument(const Text& text, std::int32_t size, const Text* name) {
    std::string bytes = model::NarrowBytes(text);
    Slot& slot = slots_[kOwnTable];
    xmlTableDispose(&slot.handle);
    slot = Slot();
    const wchar16* asked = name == nullptr ? nullptr : name->c_str();
    slot.handle = xmlTableNew(nullptr, bytes.data(), size, asked, 1, 1, 1, 1);
    const Text read = model::FromNarrowBytes(bytes);
    tableDocument_ = size == 0 ? nullptr : model::Parse(read);
    if (size == 0) {
        MakeTable(model::Parse(Wide("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n")),
                  name == nullptr ? "_MXTable_"_w : *name, true);
        SetAttribute(*slot.table.lock(), "first_id", "1"_w);
        SetAttribute(*slot.table.lock(), "type", "0001"_w);
        SetAttribute(*slot.table.lock(), "editable", "true"_w);
        return;
    }
    if (tableDocument_ != nullptr) {
        slot.table = model::OpenTable(*tableDocument_, name == nullptr ? Text() : *name);
        if (slot.table.expired()) tableDocument_ = nullptr;
    }
    Compare(slot.handle != nullptr ? "loaded" : "not loaded",
            tableDocument_ != nullptr ? "loaded" : "not loaded");
    if (slot.handle == nullptr || tableDocument_ == nullptr) {
        xmlTableDispose(&slot.handle);
        slot.handle = xmlTableNew(nullptr, nullptr, 0, nullptr, 0, 0, 0, 0);
        MakeTable(model::Parse(Text()), "_MXTable_"_w, false);
    }
}

void Runner::MakeTable(NodePtr document, const Text& name, bool withSchema) {
    tableDocument_ = std::move(document);
    const NodePtr table = model::NewElement("Table");
    if (withSchema) SetAttribute(*table, "xmlns:noNamespaceSchemaLocation", Wide("MXTable.xsd"));
    SetAttribute(*table, "name", name);
    tableDocument_->children.push_back(table);
    slots_[kOwnTable].table = table;
}

Slot& Runner::PickSlot(Arguments& arguments, std::string& name) {
    unsigned number = arguments.Below(4);
    if (slots_[number].handle == nullptr) number = kOwnTable;
    name = number == kOwnTable ? "table" : "section " + std::to_string(number);
    slots_[number].ForgetLostPosition();
    return slots_[number];
}

void Runner::Fill(Slot& slot, void* handle, const NodePtr& table) {
    xmlTableDispose(&slot.handle);
    slot = Slot{handle, table};
    Compare(handle != nullptr ? "a handle" : "null", table != nullptr ? "a handle" : "null");
    if (handle == nullptr || table == nullptr) {
        xmlTableDispose(&slot.handle);
        slot = Slot();
    }
}

void Runner::DropLostSections() {
    for (Slot& slot : slots_) {
        if (slot.handle == nullptr || !slot.table.expired()) continue;
        xmlTableDispose(&slot.handle);
        slot = Slot();
    }
}

void Runner::Do(const Call& call) {
    using Step = void (Runner::*)(Arguments);
    constexpr std::array<Step, static_cast<std::size_t>(Op::Count)> steps = {
        &Runner::OpenSection, &Runner::EnumSections,  &Runner::WriteSection, &Runner::CloseSection,
        &Runner::GetInt,      &Runner::GetString,     &Runner::GetData,      &Runner::WriteInt,
        &Runner::WriteString, &Runner::WriteData,     &Runner::DeleteKey,    &Runner::DeleteSection,
        &Runner::SaveProfile, &Runner::ReloadProfile, &Runner::NewTable,     &Runner::ReloadTable,
        &Runner::SaveTable,   &Runner::Get,           &Runner::Exists,       &Runner::Set,
        &Runner::Add,         &Runner::Remove,        &Runner::RemoveAll,    &Runner::RestartPosition};
    (this->*steps[static_cast<std::size_t>(call.op)])(Arguments(call));
}

// Both documents, whole.
void Runner::End() {
    SaveProfile(Arguments(Call{Op::SaveProfile, {0, 1}}));
    SaveTable(Arguments(Call{Op::SaveTable}));
}

}  // namespace host::random_calls
