#include "mox_xmlApi/table/host_records.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/platform/mox_porting.h"

namespace mox {
namespace {

constexpr std::uint16_t kHostMaskBits = kWriteName | kWriteValue | kWriteType | kWriteId;

// Fills the rest of the field with zeros, whatever it held: the record's Clear need not have done so.
void FillName(WideView name, TableEntryBaseInfoStruct& record) noexcept {
    if (!name.empty()) CopyToBuffer(name, record.name, std::size(record.name));
}

// A text as the records take it, good until the next one.
const wchar16* Terminated(WideView text, TextBuffers& buffers) {
    return buffers.Hold(text).c_str();
}

// A 16-bit text is stored whatever its units; any other has to have an 8-bit form.
bool SetValue(WideView value, TextBuffers& buffers, TableEntryValueInfoStruct& record) {
    if (record.type == kTypeWideString) return record.SetVal_w(Terminated(value, buffers));
    if (value.empty()) return record.SetVal("");
    return pdConvertString(buffers.Hold(value), buffers.narrow) && record.SetVal(buffers.narrow.c_str());
}

}  // namespace

WideView NameOf(const TableEntryBaseInfoStruct& record) noexcept {
    const auto* end = std::find(std::begin(record.name), std::end(record.name), wchar16{0});
    return {record.name, static_cast<std::size_t>(end - std::begin(record.name))};
}

bool HostValue::Read(const TableEntryValueInfoStruct& record, std::uint16_t type) {
    if (type == kTypeWideString) {
        const wchar16* text = record.GetVal_w();
        isSet_ = text != nullptr;
        view_ = ViewOf(text);
        return true;
    }
    const char* text = record.GetVal();
    if (text == nullptr) return true;
    if (!pdConvertString(std::string(text), converted_)) return false;
    isSet_ = true;
    view_ = converted_;
    return true;
}

EntryValueRecord FieldsOf(const TableEntryValueInfoStruct& record) noexcept {
    EntryValueRecord fields;
    fields.writeMask = record.writeMask & kHostMaskBits;
    fields.name = NameOf(record);
    fields.type = record.type;
    fields.id = record.id;
    return fields;
}

EntryUiRecord FieldsOf(const TableEntryUInfoStruct& record) {
    EntryUiRecord fields;
    fields.control = record.control;
    fields.prov_index = record.prov_index;
    fields.prov_owner = record.prov_owner;
    fields.Comment = ViewOf(record.GetComment_w());
    fields.name = ViewOf(record.GetUserName_w());
    return fields;
}

bool IsKnownOwner(std::uint8_t owner) noexcept {
    return owner == 0 || owner == 1 || owner == 2 || owner == 4;
}

bool FillValueRecord(const EntryValueRecord& entry, const EntryUiRecord& ui, bool useUiValue,
                     TextBuffers& buffers, TableEntryValueInfoStruct& record) {
    record.id = entry.id;
    record.type = entry.type;
    // A 16-bit text never falls back to the presentation data: an empty one is a value.
    const bool fallBack = useUiValue && entry.Value.empty() && entry.type != kTypeWideString;
    if (!SetValue(fallBack ? ui.Value : entry.Value, buffers, record)) return false;
    FillName(entry.name, record);
    return true;
}

bool FillUiRecord(const EntryValueRecord& entry, const EntryUiRecord& ui, TextBuffers& buffers,
                  TableEntryUInfoStruct& record) {
    record.id = entry.id;
    record.type = entry.type;
    record.control = ui.control;
    record.prov_index = ui.prov_index;
    record.prov_owner = IsKnownOwner(ui.prov_owner) ? ui.prov_owner : std::uint8_t{0};
    if (!ui.Comment.empty()) record.SetComment_w(Terminated(ui.Comment, buffers));
    FillName(entry.name, record);
    if (!ui.name.empty()) record.SetUserName_w(Terminated(ui.name, buffers));
    return SetValue(ui.Value, buffers, record);
}

}  // namespace mox
