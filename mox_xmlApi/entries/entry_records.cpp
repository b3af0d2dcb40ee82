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
    if (attribute == names::kComment) return &EntryUiRecord::Comment;
    if (attribute == names::kValue) return &EntryUiRecord::Value;
    if (attribute == names::kMinVal) return &EntryUiRecord::minVal;
    if (attribute == names::kMaxVal) return &EntryUiRecord::maxVal;
    if (attribute == names::kName) return &EntryUiRecord::name;
    if (attribute == names::kRegen) return &EntryUiRecord::regen;
    return nullptr;
}

}  // namespace

void ClearValueRecord(EntryValueRecord& record) noexcept {
    record = EntryValueRecord();
}

void ClearUiRecord(EntryUiRecord& record) noexcept {
    record = EntryUiRecord();
}

void FieldText::Format(WideView format, std::uint32_t number) noexcept {
    const int length = pdSwprintf(number_.data(), number_.size(), format.data(), number);
    text_ = WideView(number_.data(), length < 0 ? 0 : static_cast<std::size_t>(length));
}

bool SetValueField(EntryValueRecord& record, WideView attribute, WideView text, WideView qualifier) noexcept {
    if (attribute == names::kName) {
        record.name = text;
    } else if (attribute == names::kId) {
        record.id = ReadUnsignedDecimal(text);
    } else if (attribute == names::kType) {
        return ValueTypeFromName(text, qualifier, record.type);
    } else if (attribute == names::kValue) {
        record.Value = text;
    } else if (attribute == names::kLoc) {
        record.loc = text == names::kTrue;
    } else if (attribute == names::kLocval) {
        record.locval = text == names::kTrue;
    } else {
        return attribute == names::kArray;  // read together with "type"
    }
    return true;
}

bool GetValueField(const EntryValueRecord& record, WideView attribute, FieldText& text,
                   WideView& qualifier) noexcept {
    if (attribute == names::kName) {
        text.Refer(record.name);
    } else if (attribute == names::kValue) {
        text.Refer(record.Value);
    } else if (attribute == names::kId) {
        text.Format("%d"_w,
                    record.id);  // an id past the signed range is written negative and read back the same
    } else if (attribute == names::kType) {
        WideView typeName;
        if (!ValueTypeToName(record.type, typeName, qualifier)) return false;
        text.Refer(typeName);
    } else if (attribute == names::kLoc) {
        text.Refer(FlagText(record.loc));
    } else if (attribute == names::kLocval) {
        text.Refer(FlagText(record.locval));
    } else {
        return false;
    }
    return true;
}

bool SetUiField(EntryUiRecord& record, WideView attribute, WideView text) noexcept {
    if (auto field = UiTextField(attribute); field != nullptr) {
        record.*field = text;
    } else if (attribute == names::kControl) {
        record.control = ControlKindFromName(text);
    } else if (attribute == names::kProvIndex) {
        record.prov_index = ReadUnsignedDecimal(text);
    } else if (attribute == names::kProvOwner) {
        record.prov_owner = OwnerFromName(text);
    } else if (attribute == names::kFlags) {
        record.flags = static_cast<std::uint16_t>(ReadUnsignedHex(text) & 0xFFFF);
    } else if (attribute == names::kAccess) {
        record.access = AccessFromName(text);
    } else if (attribute == names::kLoc) {
        record.loc = text == names::kTrue;
    } else {
        return false;
    }
    return true;
}

bool GetUiField(const EntryUiRecord& record, WideView attribute, FieldText& text) noexcept {
    if (auto field = UiTextField(attribute); field != nullptr) {
        text.Refer(record.*field);
    } else if (attribute == names::kControl) {
        text.Refer(ControlKindToName(record.control));
    } else if (attribute == names::kProvIndex) {
        text.Format("%u"_w, record.prov_index);
    } else if (attribute == names::kProvOwner) {
        text.Refer(OwnerToName(record.prov_owner));
    } else if (attribute == names::kFlags) {
        text.Format("%04X"_w, record.flags);
    } else if (attribute == names::kAccess) {
        text.Refer(AccessToName(record.access));
    } else if (attribute == names::kLoc) {
        text.Refer(FlagText(record.loc));
    } else {
        return false;
    }
    return true;
}

}  // namespace mox
