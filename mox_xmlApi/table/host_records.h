// Copying between the host's entry records and the library's own.
#ifndef MOX_XMLAPI_TABLE_HOST_RECORDS_H
#define MOX_XMLAPI_TABLE_HOST_RECORDS_H

#include <string>

#include "mox_xmlApi/entries/entry_records.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

// The name in a host's record, up to its first NUL; a view of the record.
WideView NameOf(const TableEntryBaseInfoStruct& record) noexcept;

// The value text of a host's record as 16-bit text, valid during one call.
class HostValue {
  public:
    HostValue() = default;
    HostValue(const HostValue&) = delete;
    HostValue& operator=(const HostValue&) = delete;

    // Reads the value of `record`: the 16-bit text for the type "ucstring", the converted 8-bit text for all others. A
    // value that was never set leaves this one unset. False if the conversion fails. May throw std::bad_alloc.
    bool Read(const TableEntryValueInfoStruct& record) { return Read(record, record.type); }
    bool Read(const TableEntryValueInfoStruct& record, std::uint16_t type);

    bool IsSet() const noexcept { return isSet_; }
    WideView View() const noexcept { return view_; }

  private:
    bool isSet_ = false;
    WideString converted_;
    WideView view_;
};

// The fields of a host's record except the value, as views of it. Of the write mask only the bits that hosts may set
// are kept. The second one may throw what the record's own functions throw.
EntryValueRecord FieldsOf(const TableEntryValueInfoStruct& record) noexcept;
EntryUiRecord FieldsOf(const TableEntryUInfoStruct& record);

// Whether a file can store the owner code: 0, 1, 2 or 4.
bool IsKnownOwner(std::uint8_t owner) noexcept;

// Buffers for conversions, kept from one entry to the next so that an enumeration does not allocate them each time.
struct TextBuffers {
    WideString wide;
    std::string narrow;

    // Copies `text` to `wide`, which holds it until the next call, and returns that. `text` must not be a part of
    // `wide`. Throws std::bad_alloc. Clearing and appending is faster than an assignment.
    const WideString& Hold(WideView text) {
        wide.clear();
        return wide.append(text);
    }

    // Frees the memory of an unusually long text.
    void ReleaseLarge() noexcept {
        constexpr std::size_t kMaxKept = 4096;
        if (wide.capacity() > kMaxKept) WideString().swap(wide);
        if (narrow.capacity() > kMaxKept) std::string().swap(narrow);
    }
};

// Fills a host's record from an entry that was read. With `useUiValue` an empty value whose type is not "ucstring" is
// replaced by that of the presentation data. False if a text cannot be converted; what was filled before stays. May
// throw std::bad_alloc.
bool FillValueRecord(const EntryValueRecord& entry, const EntryUiRecord& ui, bool useUiValue,
                     TextBuffers& buffers, TableEntryValueInfoStruct& record);
bool FillUiRecord(const EntryValueRecord& entry, const EntryUiRecord& ui, TextBuffers& buffers,
                  TableEntryUInfoStruct& record);

}  // namespace mox

#endif
