#include "tests/host/random_calls/runner_support.h"

namespace host::random_calls {
namespace {

// Whether the position moved, on both sides.
std::string Moved(bool moved) {
    return moved ? " moved" : " stayed";
}

}  // namespace

void Runner::Get(Arguments arguments) {
    std::string slotName;
    Slot& slot = PickSlot(arguments, slotName);
    const unsigned how = arguments.Below(4);  // 0 and 1: by position, 2: all bits set, 3: null
    Records records(arguments);
    if (how >= 2 && !records.hasValue) records.hasValue = arguments.Flag();
    Log(Concat("xmlTableEntryGet ", slotName,
               how < 2    ? " by position"
               : how == 2 ? " all bits set"
                          : " null",
               records.Expected()));
    model::Position modelPosition{how >= 2, slot.entry.lock()};
    std::uint64_t position = how == 2 ? kByName : slot.position;
    const std::uint64_t before = position;
    const bool result =
        xmlTableEntryGet(slot.handle, how == 3 ? nullptr : &position, records.RealValue(), records.RealUi());
    const bool expected = model::Get(*slot.table.lock(), modelPosition, records.Value(), records.Ui());
    Compare(Concat(result, Moved(position != before), records.Actual()),
            Concat(expected, Moved(modelPosition.entry != slot.entry.lock()), records.Expected()));
    if (how >= 2) return;
    slot.position = position;
    slot.entry = modelPosition.entry;
}

void Runner::Exists(Arguments arguments) {
    std::string slotName;
    const Slot& slot = PickSlot(arguments, slotName);
    const Text& name = arguments.Pick(kNames);
    Log(Concat("xmlTableEntryIsExist ", slotName, " ", Quote(name)));
    const TableEntryBaseInfoStruct record = NameRecord(name.c_str());
    Compare(Concat(xmlTableEntryIsExist(slot.handle, &record)),
            Concat(FindEntry(*slot.table.lock(), name) != nullptr));
}

void Runner::Set(Arguments arguments) {
    std::string slotName;
    Slot& slot = PickSlot(arguments, slotName);
    const bool byPosition = arguments.Flag();
    const std::int32_t force = arguments.Pick(kFlags);
    const std::int32_t eud = arguments.Pick(kFlags);
    Records records(arguments);
    Log(Concat("xmlTableEntrySet ", slotName, byPosition ? " by position" : " by name", " force ", force,
               " eud ", eud, records.Expected()));
    model::Position modelPosition{!byPosition, slot.entry.lock()};
    std::uint64_t position = slot.position;
    const bool result = xmlTableEntrySet(slot.handle, byPosition ? &position : nullptr, records.RealValue(),
                                         records.RealUi(), force, eud);
    const bool expected =
        model::Set(*slot.table.lock(), modelPosition, records.Value(), records.Ui(), force == 1, eud == 1);
    Compare(Concat(result, Moved(position != slot.position), records.Actual()),
            Concat(expected, Moved(modelPosition.entry != slot.entry.lock()), records.Expected()));
    slot.position = position;
    slot.entry = modelPosition.entry;
}

void Runner::Add(Arguments arguments) {
    std::string slotName;
    Slot& slot = PickSlot(arguments, slotName);
    // 0: null, 1: 0, 2: the position, 3: all bits set, 4: the position of another slot
    const unsigned how = arguments.Below(5);
    Slot& other = slots_[arguments.Below(4)];
    other.ForgetLostPosition();
    const std::int32_t eud = arguments.Pick(kFlags);
    const std::int32_t update = arguments.Pick(kFlags);
    Records records(arguments);
    // A presentation record alone brings its own text only when it is wide.
    if (!records.hasValue && records.plainUi.control != 0xFFFF) records.plainUi.type = 31;
    records.Make();
    Log(Concat("xmlTableEntryAdd ", slotName,
               how == 0   ? " null"
               : how == 1 ? " 0"
               : how == 2 ? " at the position"
               : how == 3 ? " all bits set"
                          : " at a position of another handle",
               " eud ", eud, " update ", update, records.Expected()));
    const Slot& from = how == 2 ? slot : other;
    const bool isAt = how == 2 || how == 4;
    const model::Position modelPosition{how == 3, isAt ? from.entry.lock() : nullptr};
    const std::uint64_t before = how == 3 ? kByName : isAt ? from.position : 0;
    std::uint64_t position = before;
    const bool result = xmlTableEntryAdd(slot.handle, how == 0 ? nullptr : &position, records.RealValue(),
                                         records.RealUi(), eud, update);
    const bool expected =
        model::Add(*slot.table.lock(), modelPosition, records.Value(), records.Ui(), eud == 1, update == 1);
    Compare(Concat(result, Moved(position != before), records.Actual()),
            Concat(expected, Moved(false), records.Expected()));
}

void Runner::Remove(Arguments arguments) {
    std::string slotName;
    const Slot& slot = PickSlot(arguments, slotName);
    const Text& name = arguments.Pick(kNames);
    const std::int32_t occurrence = arguments.Pick(kOccurrences);
    const std::int32_t all = arguments.Pick(kFlags);
    Log(Concat("xmlTableRemoveEntry ", slotName, " ", Quote(name), " occurrence ", occurrence, " all ", all));
    const TableEntryBaseInfoStruct record = NameRecord(name.c_str());
    const bool expected = RemoveEntries(*slot.table.lock(), name, occurrence, all != 0);
    Compare(Concat(xmlTableRemoveEntry(slot.handle, &record, occurrence, all)), Concat(expected));
}

void Runner::RemoveAll(Arguments arguments) {
    std::string slotName;
    const Slot& slot = PickSlot(arguments, slotName);
    Log(Concat("xmlTableRemoveEntries ", slotName));
    RemoveVars(*slot.table.lock());
    Compare(Concat(xmlTableRemoveEntries(slot.handle)), Concat(true));
}

void Runner::RestartPosition(Arguments arguments) {
    std::string slotName;
    Slot& slot = PickSlot(arguments, slotName);
    Log(Concat("position of ", slotName, " = 0"));
    slot.position = 0;
    slot.entry.reset();
}

}  // namespace host::random_calls
