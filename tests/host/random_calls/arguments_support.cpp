#include "tests/host/random_calls/arguments_support.h"

namespace host::random_calls {
namespace {

PlainValue PickValue(Arguments& arguments) {
    PlainValue record{arguments.Pick(kNames), 0, arguments.Pick(kTypes), arguments.Pick(kMasks)};
    record.id = arguments.Pick(kNumbers);
    const unsigned text = arguments.Below(kTexts.size() + 1);
    if (text < kTexts.size()) record.value = kTexts[text];
    return record;
}

PlainUi PickUi(Arguments& arguments) {
    PlainUi record;
    record.name = arguments.Pick(kNames);
    record.type = arguments.Pick(kTypes);
    const unsigned text = arguments.Below(kTexts.size() + 1);
    if (text < kTexts.size()) record.value = kTexts[text];
    record.control = arguments.Pick(kControls);
    record.index = arguments.Pick(kNumbers);
    record.owner = arguments.Pick(kOwners);
    const unsigned more = arguments.Below(7);
    if (more % 2 != 0) record.comment = more == 1 ? ""_w : "note"_w;
    if (more > 3) record.userName = more == 4 ? ""_w : "shown"_w;
    return record;
}

const wchar16* PointerTo(const std::optional<Text>& text) {
    return text ? text->c_str() : nullptr;
}

TableEntryValueInfoStruct Made(const PlainValue& plain) {
    TableEntryValueInfoStruct record;
    SetName(record, plain.name);
    record.id = plain.id;
    record.type = plain.type;
    record.writeMask = plain.mask;
    record.SetVal_w(PointerTo(plain.value));
    return record;
}

TableEntryUInfoStruct Made(const PlainUi& plain) {
    TableEntryUInfoStruct record;
    static_cast<TableEntryValueInfoStruct&>(record) = Made(static_cast<const PlainValue&>(plain));
    record.control = plain.control;
    record.prov_index = plain.index;
    record.prov_owner = plain.owner;
    record.SetComment_w(PointerTo(plain.comment));
    record.SetUserName_w(PointerTo(plain.userName));
    return record;
}

}  // namespace

Records::Records(Arguments& arguments) {
    const unsigned which = arguments.Below(3);
    hasValue = which != 1;
    hasUi = which != 0;
    plainValue = PickValue(arguments);
    plainUi = PickUi(arguments);
    Make();
}

void Records::Make() {
    realValue = Made(plainValue);
    realUi = Made(plainUi);
}

std::string Records::Expected() const {
    return (hasValue ? "\n      value " + Show(plainValue) : "") +
           (hasUi ? "\n      ui " + Show(plainUi) : "");
}

std::string Records::Actual() const {
    return (hasValue ? "\n      value " + Show(realValue) : "") + (hasUi ? "\n      ui " + Show(realUi) : "");
}

std::string Quote(const Text& text) {
    return "'" + Printable(text) + "'";
}

}  // namespace host::random_calls
