#include "tests/host/random_calls/runner_support.h"

namespace host::random_calls {
namespace {

Slot& SectionSlot(std::array<Slot, 4>& slots, Arguments& arguments, std::string& name) {
    const unsigned number = 1 + arguments.Below(3);
    name = "section " + std::to_string(number);
    return slots[number];
}

}  // namespace

void Runner::OpenSection(Arguments arguments) {
    std::string slotName;
    Slot& slot = SectionSlot(slots_, arguments, slotName);
    const Text& name = arguments.Pick(kSections);
    Log(Concat(slotName, " = xmlGetProfileSection ", Quote(name)));
    std::uint32_t editable = 7;
    void* handle = xmlGetProfileSection(profile_, name.c_str(), &editable);
    const NodePtr table = model_->Section(name);
    Compare(Concat("editable ", editable),
            Concat("editable ", table == nullptr || HasAttribute(*table, "editable", "true") ? 1 : 0));
    Fill(slot, handle, table);
}

void Runner::EnumSections(Arguments arguments) {
    std::string slotName;
    Slot& slot = SectionSlot(slots_, arguments, slotName);
    const unsigned kept = arguments.Below(3);
    const unsigned length = arguments.Pick(std::array<unsigned, 4>{300, 1, 2, 8});
    Log(Concat(slotName, " = number ", kept, " of xmlEnumProfileSections, names of ", length));
    std::uintptr_t position = 0;
    NodePtr current;
    NodePtr keptTable;
    void* keptHandle = nullptr;
    for (unsigned number = 0; outcome_.agreed; ++number) {
        Text name(length, 'x');
        std::uint32_t editable = 7;
        void* handle = xmlEnumProfileSections(profile_, &position, name.data(), length, &editable);
        current = NextElement(model_->Root(), current.get());
        Text expected(length, 'x');
        if (current != nullptr) {
            expected = AttributeOf(*current, "name").substr(0, length - 1);
            expected.resize(length, 0);
        } else {
            expected[0] = 0;
        }
        Compare(Concat(handle != nullptr, " ", Quote(name), " ", editable),
                Concat(current != nullptr, " ", Quote(expected), " ",
                       current == nullptr || HasAttribute(*current, "editable", "true") ? 1 : 0));
        if (number == kept && handle != nullptr) {
            keptHandle = handle;
            keptTable = current;
        } else {
            xmlTableDispose(&handle);
        }
        if (current == nullptr) break;
    }
    Compare(Concat("position ", position), "position 0");
    Fill(slot, keptHandle, keptTable);
}

void Runner::WriteSection(Arguments arguments) {
    std::string slotName;
    Slot& slot = SectionSlot(slots_, arguments, slotName);
    const Text& name = arguments.Pick(kSections);
    const std::uint32_t editable = arguments.Pick(std::array<std::uint32_t, 3>{0, 1, 5});
    const std::uint32_t firstId = arguments.Pick(kNumbers);
    const std::uint32_t type = arguments.Pick(std::array<std::uint32_t, 4>{0, 10, 0x1FFFF, 0xABCD});
    Log(Concat(slotName, " = xmlWriteProfileSection ", Quote(name), " editable ", editable, " first id ",
               firstId, " type ", type));
    std::uint32_t eud = 7;
    void* handle = xmlWriteProfileSection(profile_, name.c_str(), editable, firstId, type, &eud);
    bool hasEud = false;
    const NodePtr table =
        model_->WriteSection(name, editable != 0, firstId, static_cast<std::uint16_t>(type & 0xFFFF), hasEud);
    Compare(Concat("eud ", eud), Concat("eud ", hasEud ? 1 : 0));
    Fill(slot, handle, table);
}

void Runner::CloseSection(Arguments arguments) {
    std::string slotName;
    Slot& slot = SectionSlot(slots_, arguments, slotName);
    if (slot.handle == nullptr) return;
    Log(Concat("xmlTableDispose ", slotName));
    xmlTableDispose(&slot.handle);
    Compare(slot.handle == nullptr ? "null" : "not null", "null");
    slot = Slot();
}

}  // namespace host::random_calls
