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

// The value text of a host's record as 16-bit text, for the time of one call.
class HostValue {
  public:
    HostValue() = default;
    HostValue(const HostValue&) = delete;
    HostValue& operator=(const HostValue&) = delete;

    // Takes the value of `record` the way its `type` asks for: "ucstring" as 16-bit text, all others as 8-bit
    // text, converted. A value that was never set is none. False when the conversion fails. May throw
    // std::bad_alloc.
    bool Take(const TableEntryValueInfoStruct& record) { return Take(record, record.type); }
    bool Take(const TableEntryValueInfoStruct& record, std::uint16_t type);

    bool IsSet() const noexcept { return isSet_; }
    WideView View() const noexcept { return view_; }

  private:
    bool isSet_ = false;
    WideString converted_;
    WideView view_;
};

// The fields of a host's record but for the value, as views of it. Only the mask bits that hosts may set are
// taken. That of a presentation record may throw what the record's own functions throw.
EntryValueRecord FieldsOf(const TableEntryValueInfoStruct& record) noexcept;
EntryUiRecord FieldsOf(const TableEntryUInfoStruct& record);

// Whether an owner code is one that a file can hold: 0, 1, 2 or 4.
bool IsKnownOwner(std::uint8_t owner) noexcept;

// Memory for conversions, kept from one entry to the next so that an enumeration does not ask for it each time.
struct TextBuffers {
    WideString wide;
    std::string narrow;

    // Gives back what an unusually long text has taken.
    void DropLarge() noexcept {
        constexpr std::size_t kMostKept = 4096;
        if (wide.capacity() > kMostKept) WideString().swap(wide);
        if (narrow.capacity() > kMostKept) std::string().swap(narrow);
    }
};

// Fills a host's record from an entry that was read. `useUiValue`: an empty value that is not "ucstring" is
// replaced by that of the presentation data. False when a text cannot be converted; what was filled by then stays. May
// throw std::bad_alloc.
bool FillValueRecord(const EntryValueRecord& entry, const EntryUiRecord& ui, bool useUiValue,
                     TextBuffers& buffers, TableEntryValueInfoStruct& record);
bool FillUiRecord(const EntryValueRecord& entry, const EntryUiRecord& ui, TextBuffers& buffers,
                  TableEntryUInfoStruct& record);

}  // namespace mox

#endif
