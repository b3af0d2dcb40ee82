#include "mox_xmlApi/entries/entry_records.h"

#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/platform/mox_porting.h"
#include "mox_xmlApi/platform/numbers.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

WideView FlagText(bool flag) noexcept {
    return flag ? names::kTrue : WideView();
}

// The text fields of a presentation record by their names; null for every other name.
WideView EntryUiRecord::*UiTextField(WideView attribute) noexcept {
    if (SameText(attribute, names::kComment)) return &EntryUiRecord::Comment;
    if (SameText(attribute, names::kValue)) return &EntryUiRecord::Value;
    if (SameText(attribute, names::kMinVal)) return &EntryUiRecord::minVal;
    if (SameText(attribute, names::kMaxVal)) return &EntryUiRecord::maxVal;
    if (SameText(attribute, names::kName)) return &EntryUiRecord::name;
    if (SameText(attribute, names::kRegen)) return &EntryUiRecord::regen;
    return nullptr;
}

}  // namespace

void ClearValueRecord(EntryValueRecord& record) noexcept {
    record = EntryValueRecord();
}

void ClearUiRecord(EntryUiRecord& record) noexcept {
    record = EntryUiRecord();
}

void FieldText::Format(WideView format, std::uint32_t number) {
    const int length = pdSwprintf(number_.data(), number_.size(), format.data(), number);
    text_ = WideView(number_.data(), length < 0 ? 0 : static_cast<std::size_t>(length));
}

bool SetValueField(EntryValueRecord& record, WideView attribute, WideView text) noexcept {
    if (SameText(attribute, names::kName)) {
        record.name = text;
    } else if (SameText(attribute, names::kId)) {
        record.id = ReadUnsignedDecimal(text);
    } else if (SameText(attribute, names::kValue)) {
        record.Value = text;
    } else if (SameText(attribute, names::kLoc)) {
        record.loc = SameText(text, names::kTrue);
    } else if (SameText(attribute, names::kLocval)) {
        record.locval = SameText(text, names::kTrue);
    } else {
        return false;
    }
    return true;
}

bool GetValueField(const EntryValueRecord& record, WideView attribute, FieldText& text, WideView& qualifier) {
    if (SameText(attribute, names::kName)) {
        text.SetView(record.name);
    } else if (SameText(attribute, names::kValue)) {
        text.SetView(record.Value);
    } else if (SameText(attribute, names::kId)) {
        text.Format("%d"_w,
                    record.id);  // an id past the signed range is written negative and read back the same
    } else if (SameText(attribute, names::kType)) {
        WideView typeName;
        if (!ValueTypeToName(record.type, typeName, qualifier)) return false;
        text.SetView(typeName);
    } else if (SameText(attribute, names::kLoc)) {
        text.SetView(FlagText(record.loc));
    } else if (SameText(attribute, names::kLocval)) {
        text.SetView(FlagText(record.locval));
    } else {
        return false;
    }
    return true;
}

bool SetUiField(EntryUiRecord& record, WideView attribute, WideView text) noexcept {
    if (auto field = UiTextField(attribute); field != nullptr) {
        record.*field = text;
    } else if (SameText(attribute, names::kControl)) {
        record.control = ControlKindFromName(text);
    } else if (SameText(attribute, names::kProvIndex)) {
        record.prov_index = ReadUnsignedDecimal(text);
    } else if (SameText(attribute, names::kProvOwner)) {
        record.prov_owner = OwnerFromName(text);
    } else if (SameText(attribute, names::kFlags)) {
        record.flags = static_cast<std::uint16_t>(ReadUnsignedHex(text) & 0xFFFF);
    } else if (SameText(attribute, names::kAccess)) {
        record.access = AccessFromName(text);
    } else if (SameText(attribute, names::kLoc)) {
        record.loc = SameText(text, names::kTrue);
    } else {
        return false;
    }
    return true;
}

bool GetUiField(const EntryUiRecord& record, WideView attribute, FieldText& text) {
    if (auto field = UiTextField(attribute); field != nullptr) {
        text.SetView(record.*field);
    } else if (SameText(attribute, names::kControl)) {
        text.SetView(ControlKindToName(record.control));
    } else if (SameText(attribute, names::kProvIndex)) {
        text.Format("%u"_w, record.prov_index);
    } else if (SameText(attribute, names::kProvOwner)) {
        text.SetView(OwnerToName(record.prov_owner));
    } else if (SameText(attribute, names::kFlags)) {
        text.Format("%04X"_w, record.flags);
    } else if (SameText(attribute, names::kAccess)) {
        text.SetView(AccessToName(record.access));
    } else if (SameText(attribute, names::kLoc)) {
        text.SetView(FlagText(record.loc));
    } else {
        return false;
    }
    return true;
}

}  // namespace mox
